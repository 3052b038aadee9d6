#include "OS/Host/Desktop/Trash.h"

#include <QFile>
#include <QString>

#include <gio/gio.h>
#include <memory>

namespace OSInternal {

namespace {

struct Unreference
{
    void operator()(void* object) const { g_object_unref(object); }
};

bool trashByGio(const char* path)
{
    const std::unique_ptr<GFile, Unreference> file(g_file_new_for_path(path));
    return g_file_trash(file.get(), nullptr, nullptr) != FALSE;
}

// The toolkit also makes a trash on file systems that GIO takes for the system's own, such as
// tmpfs; but it takes only names that its own text can hold.
bool trashByToolkit(const char* path)
{
    const QString name = QFile::decodeName(path);
    return QFile::encodeName(name) == path && QFile::moveToTrash(name);
}

} // namespace

bool moveToTrash(const LightweightString<char>& path)
{
    if (path.empty() || path.contains('\0'))
        return false;
    return trashByGio(path.c_str()) || trashByToolkit(path.c_str());
}

} // namespace OSInternal
