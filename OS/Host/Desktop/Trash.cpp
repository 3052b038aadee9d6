#include "OS/Host/Desktop/Trash.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>
#include <QString>

#include <gio/gio.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

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

// Whether a trash can be in the top folder of the file system that holds a path, and belongs there:
// the toolkit prints a warning where it cannot make one.
bool mayHaveTrash(const QString& path)
{
    const QStorageInfo volume(QFileInfo(path).absolutePath());
    const QString top = volume.rootPath();
    if (!volume.isValid() || top == QStorageInfo(QDir::homePath()).rootPath())
        return false;
    const QFileInfo trash(top + QStringLiteral("/.Trash-") + QString::number(geteuid()));
    return trash.exists() ? trash.isDir() && trash.isWritable() : QFileInfo(top).isWritable();
}

// The toolkit also makes a trash on file systems that GIO takes for the system's own, such as
// memory; but it takes only names that its own text can hold.
bool trashByToolkit(const char* path)
{
    const QString name = QFile::decodeName(path);
    return QFile::encodeName(name) == path && mayHaveTrash(name) && QFile::moveToTrash(name);
}

} // namespace

bool moveToTrash(const LightweightString<char>& path)
{
    struct stat info;
    if (path.contains('\0') || lstat(path.c_str(), &info) != 0)
        return false;
    return trashByGio(path.c_str()) || trashByToolkit(path.c_str());
}

} // namespace OSInternal
