#include "OS/Mac/Files/QtFile.h"

#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/Core/QtText.h"
#include "OS/Mac/Threads/LockRank.h"

#include <OS.h>
#include <OS/Threads/iThreadManager.h>

#include <QDateTime>

#include <mutex>

namespace {

using Lock = std::lock_guard<iCriticalSection>;

QIODevice::OpenMode openMode(unsigned int access)
{
    return access == iFile::eAccessReadWrite ? QIODevice::ReadWrite
           : access == iFile::eAccessWrite   ? QIODevice::WriteOnly
                                             : QIODevice::ReadOnly;
}

bool isUnsupported(const char* place)
{
    OSInternal::reportAssertion("false", place);
    return false;
}

} // namespace

QtFile::QtFile(const LightweightString<wchar_t>& name, unsigned int access,
               eOpenBehaviour /*behaviour*/, eShareMode /*share*/, std::uint32_t flags)
    : file_(OSInternal::toQString(name)), deleteOnClose_((flags & eDeleteOnClose) != 0), name_(name)
{
    file_.open(openMode(access));
    flags &= ~static_cast<std::uint32_t>(eDeleteOnClose);
    if (flags != 0)
        OSInternal::printLine("QtFile::QtFile() : Unexpected flags %d\n", static_cast<int>(flags));
    lock_ = OS()->threadMgr()->createCriticalSection(0);
    OSInternal::setLockRank(*lock_, OSInternal::LockRank::eFile);
}

QtFile::~QtFile()
{
    if (!isOpen())
        return;
    file_.close();
    if (deleteOnClose_)
        file_.remove();
}

bool QtFile::isOpen() const
{
    return file_.handle() >= 0;
}

unsigned int QtFile::read(void* buffer, unsigned int length)
{
    const Lock lock(*lock_);
    if (!file_.isReadable()) // the toolkit would print a warning
        return 0;
    const qint64 count = file_.read(static_cast<char*>(buffer), length);
    return count < 0 ? 0 : static_cast<unsigned int>(count);
}

unsigned int QtFile::readAt(unsigned long long offset, void* buffer, unsigned int length)
{
    const Lock lock(*lock_);
    positionAt(offset);
    return read(buffer, length);
}

bool QtFile::write(void* buffer, unsigned int length)
{
    const Lock lock(*lock_);
    return file_.isWritable() &&
           file_.write(static_cast<const char*>(buffer), length) == static_cast<qint64>(length);
}

bool QtFile::writeAt(unsigned long long offset, void* buffer, unsigned int length)
{
    const Lock lock(*lock_);
    positionAt(offset);
    return write(buffer, length);
}

bool QtFile::positionAt(unsigned long long offset)
{
    return file_.seek(static_cast<qint64>(offset));
}

std::int64_t QtFile::getPosition() const
{
    return file_.pos();
}

std::int64_t QtFile::getSize() const
{
    return isOpen() ? file_.size() : 0;
}

std::uint64_t QtFile::getTime(eTimeType type) const
{
    QDateTime time;
    if (type == eLastWriteTime)
        time = file_.fileTime(QFileDevice::FileModificationTime);
    else if (type == eCreationTime)
        OSInternal::reportAssertion("false", "OS/Mac/QtFile line 134");
    else
        time = file_.fileTime(QFileDevice::FileAccessTime);
    return static_cast<std::uint64_t>(time.toMSecsSinceEpoch());
}

bool QtFile::setTime(eTimeType /*type*/, const unsigned long long& /*time*/)
{
    return false;
}

bool QtFile::truncate(unsigned long long /*size*/)
{
    return isUnsupported("OS/Mac/QtFile line 152");
}

bool QtFile::readAsync(void*, unsigned int, Tq::Ptr<iAsyncContext>)
{
    return isUnsupported("OS/Mac/QtFile line 66");
}

bool QtFile::readAtAsync(unsigned long long, void*, unsigned int, Tq::Ptr<iAsyncContext>)
{
    return isUnsupported("OS/Mac/QtFile line 72");
}

bool QtFile::writeAsync(void*, unsigned int, Tq::Ptr<iAsyncContext>)
{
    return isUnsupported("OS/Mac/QtFile line 87");
}

bool QtFile::writeAtAsync(unsigned long long, void*, unsigned int, Tq::Ptr<iAsyncContext>)
{
    return isUnsupported("OS/Mac/QtFile line 102");
}
