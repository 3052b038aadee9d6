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
    session.rate = values.integer("Rate", kUsualRate, 0, static_cast<int>(kFrameRates.size()) - 1);
    session.loops = values.flag("Loop", false);
    ViewerChoices& viewer = session.viewer;
    viewer.zoom = static_cast<ViewerZoom>(values.integer("ViewerZoom", 0, 0, kViewerZooms - 1));
    viewer.safeAreas = values.flag("SafeAreas", viewer.safeAreas);
    viewer.timeCode = values.flag("TimeCode", viewer.timeCode);
    viewer.frameNumber = values.flag("FrameNumber", viewer.frameNumber);
    session.effects = values.flag("Effects", true);
    session.scopes = values.flag("Scopes", true);
    session.effect = values.text("Effect", Text());
    session.controller = values.text("Controller", Text());
    session.stillType = values.integer("StillType", 0, 0, 99);
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
    values.setInteger("Rate", session.rate);
    values.setFlag("Loop", session.loops);
    values.setInteger("ViewerZoom", static_cast<int>(session.viewer.zoom));
    values.setFlag("SafeAreas", session.viewer.safeAreas);
    values.setFlag("TimeCode", session.viewer.timeCode);
    values.setFlag("FrameNumber", session.viewer.frameNumber);
    values.setFlag("Effects", session.effects);
    values.setFlag("Scopes", session.scopes);
    values.setInteger("StillType", session.stillType);
    if (session.controller.empty())
        values.remove("Controller");
    else
        values.setText("Controller", session.controller);
    if (session.effect.empty())
        values.remove("Effect");
    else
        values.setText("Effect", session.effect);
}

} // namespace Vantor
