#include "Model/Session.h"

#include "Model/TimeView.h"
#include "View/Layout.h"
#include "common/StoredValues.h"

namespace Vantor {

namespace {

constexpr const char* kSection = "Editor";

} // namespace

Session readSession(const Tq::Ptr<iSettings>& settings)
{
    Session session;
    session.place = readPlace(settings, session.place, Layout::kSmallest, Layout::kLargest);
    const StoredValues values(settings, kSection);
    session.folder = values.text("Folder", Text());
    session.zoom = values.number("Zoom", 0.0, TimeView::kCoarsest, TimeView::kFinest);
    return session;
}

void writeSession(const Tq::Ptr<iSettings>& settings, const Session& session)
{
    writePlace(settings, session.place);
    StoredValues values(settings, kSection);
    if (session.folder.empty())
        values.remove("Folder");
    else
        values.setText("Folder", session.folder);
    if (session.zoom > 0.0)
        values.setNumber("Zoom", session.zoom);
}

} // namespace Vantor
