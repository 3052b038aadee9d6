// Open files against the bare system calls and the toolkit's file; listings against the two usual
// walkers, which do the same work for each entry.

#include "support/PairedRuns.h"

#include <OS.h>
#include <OS/Files/iFileManager.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFile>

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kFileBytes = 64u << 20;
constexpr int kEntries = 100'000;

// One file through the four doors. Offsets repeat in all of them.
class OpenFile
{
public:
    explicit OpenFile(const std::string& path) : raw_(open(path.c_str(), O_RDWR | O_CLOEXEC))
    {
        ours_ = OS()->fileMgr()->openFile(fs::path(path).wstring().c_str(), iFile::eAccessReadWrite,
                                          iFile::eOpenExisting, iFile::eShareNone, 0);
        buffered_ = std::make_unique<QFile>(QString::fromStdString(path));
        unbuffered_ = std::make_unique<QFile>(QString::fromStdString(path));
        if (raw_ < 0 || !ours_ || !buffered_->open(QIODevice::ReadWrite) ||
            !unbuffered_->open(QIODevice::ReadWrite | QIODevice::Unbuffered))
            std::abort();
    }
    ~OpenFile() { close(raw_); }

    int raw_;
    Tq::Ptr<iFile> ours_;
    std::unique_ptr<QFile> buffered_;
    std::unique_ptr<QFile> unbuffered_;
};

struct Access
{
    std::vector<off_t> offsets_;
    bool sequential_;
    unsigned int block_;
};

Access sequentialAccess(unsigned int block)
{
    Access access{{}, true, block};
    for (std::size_t at = 0; at + block <= kFileBytes; at += block)
        access.offsets_.push_back(static_cast<off_t>(at));
    return access;
}

Access randomAccess(unsigned int block)
{
    Access access = sequentialAccess(block);
    std::shuffle(access.offsets_.begin(), access.offsets_.end(), std::mt19937(1));
    access.sequential_ = false;
    return access;
}

// One repetition: a step for each offset, after a rewind.
std::function<double()> repeat(const Access& access, const std::function<void()>& rewind,
                               const std::function<void(const std::vector<off_t>&)>& walk)
{
    return [&access, rewind, walk] {
        rewind();
        return Bench::timed(static_cast<double>(access.offsets_.size()),
                            [&] { walk(access.offsets_); });
    };
}

void check(bool done)
{
    if (!done)
        std::abort();
}

std::vector<char>& buffer()
{
    static std::vector<char> bytes(1u << 20, 'x');
    return bytes;
}

void compareReads(const char* what, OpenFile& file, const Access& access, double aim)
{
    const unsigned int block = access.block_;
    char* const to = buffer().data();
    const auto qt = [=](QFile& qtFile) {
        return repeat(
            access, [&] { qtFile.seek(0); },
            [&qtFile, &access, to, block](const std::vector<off_t>& offsets) {
                for (const off_t offset : offsets)
                    check((access.sequential_ || qtFile.seek(offset)) &&
                          qtFile.read(to, block) == block);
            });
    };
    Bench::compare(
        what,
        {{"ours", repeat(
                      access, [&] { file.ours_->positionAt(0); },
                      [&, to, block](const std::vector<off_t>& offsets) {
                          if (access.sequential_)
                              for (std::size_t i = 0; i < offsets.size(); ++i)
                                  check(file.ours_->read(to, block) == block);
                          else
                              for (const off_t offset : offsets)
                                  check(file.ours_->readAt(static_cast<unsigned long long>(offset),
                                                           to, block) == block);
                      })},
         {"pread", repeat(
                       access, [] {},
                       [&, to, block](const std::vector<off_t>& offsets) {
                           for (const off_t offset : offsets)
                               check(pread(file.raw_, to, block, offset) == block);
                       })},
         {"QFile", qt(*file.buffered_)},
         {"QFile unbuffered", qt(*file.unbuffered_)}},
        {{{"pread"}, aim}, {{"QFile"}, 0}, {{"QFile unbuffered"}, 0}});
}

void compareWrites(const char* what, OpenFile& file, const Access& access, double aim)
{
    const unsigned int block = access.block_;
    char* const from = buffer().data();
    const auto qt = [=](QFile& qtFile) {
        return repeat(
            access, [&] { qtFile.seek(0); },
            [&qtFile, &access, from, block](const std::vector<off_t>& offsets) {
                for (const off_t offset : offsets)
                    check((access.sequential_ || qtFile.seek(offset)) &&
                          qtFile.write(from, block) == block);
                qtFile.flush();
            });
    };
    Bench::compare(
        what,
        {{"ours", repeat(
                      access, [&] { file.ours_->positionAt(0); },
                      [&, from, block](const std::vector<off_t>& offsets) {
                          if (access.sequential_)
                              for (std::size_t i = 0; i < offsets.size(); ++i)
                                  check(file.ours_->write(from, block));
                          else
                              for (const off_t offset : offsets)
                                  check(file.ours_->writeAt(static_cast<unsigned long long>(offset),
                                                            from, block));
                      })},
         {"pwrite", repeat(
                        access, [] {},
                        [&, from, block](const std::vector<off_t>& offsets) {
                            for (const off_t offset : offsets)
                                check(pwrite(file.raw_, from, block, offset) == block);
                        })},
         {"QFile", qt(*file.buffered_)},
         {"QFile unbuffered", qt(*file.unbuffered_)}},
        {{{"pwrite"}, aim}, {{"QFile"}, 0}, {{"QFile unbuffered"}, 0}});
}

void compareTransfers(const fs::path& folder)
{
    const std::string path = (folder / "transfers").string();
    check(close(open(path.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600)) == 0);
    fs::resize_file(path, kFileBytes);
    OpenFile file(path);
    const Access small = sequentialAccess(4096), smallRandom = randomAccess(4096);
    const Access middle = sequentialAccess(64 << 10), middleRandom = randomAccess(64 << 10);
    const Access large = sequentialAccess(1 << 20);
    for (const off_t offset : large.offsets_)
        check(pwrite(file.raw_, buffer().data(), 1 << 20, offset) == 1 << 20);

    Bench::printHeader("Open files: transfers of a cached file, each call");
    compareReads("read, 4 KiB blocks", file, small, 1.2);
    compareReads("readAt, 4 KiB at random", file, smallRandom, 1.2);
    compareReads("read, 64 KiB blocks", file, middle, 1.05);
    compareReads("readAt, 64 KiB at random", file, middleRandom, 1.05);
    compareReads("read, 1 MiB blocks", file, large, 1.05);
    compareWrites("write, 4 KiB blocks", file, small, 1.2);
    compareWrites("writeAt, 4 KiB at random", file, smallRandom, 1.2);
    compareWrites("write, 64 KiB blocks", file, middle, 1.05);
    compareWrites("write, 1 MiB blocks", file, large, 1.05);
}

// -- Listings: name, kind, size and time of each entry

struct Entry
{
    std::wstring name_;
    bool isDirectory_;
    std::uintmax_t size_;
    std::int64_t time_;
};

std::size_t listByStandard(const fs::path& folder)
{
    std::vector<Entry> entries;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        const bool isDirectory = entry.is_directory();
        entries.push_back({entry.path().filename().wstring(), isDirectory,
                           isDirectory ? 0 : entry.file_size(),
                           entry.last_write_time().time_since_epoch().count()});
    }
    return entries.size();
}

std::size_t listByToolkit(const fs::path& folder)
{
    std::vector<Entry> entries;
    QDirIterator walk(QString::fromStdString(folder.string()),
                      QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    while (walk.hasNext()) {
        walk.next();
        const QFileInfo info = walk.fileInfo();
        entries.push_back({walk.fileName().toStdWString(), info.isDir(),
                           static_cast<std::uintmax_t>(info.size()),
                           info.lastModified().toMSecsSinceEpoch()});
    }
    return entries.size();
}

std::size_t listByUs(const LightweightString<wchar_t>& folder)
{
    std::vector<iFileManager::DirectoryItem> entries;
    check(OS()->fileMgr()->getDirectoryContents(folder, entries, true, true));
    return entries.size();
}

void compareListings(const fs::path& folder)
{
    const fs::path listed = folder / "listed";
    fs::create_directory(listed);
    std::mt19937 random(2);
    for (int i = 0; i < kEntries; ++i) {
        const std::string name =
            "clip_" + std::to_string(random() % 1000) + "_" + std::to_string(i) + ".mov";
        check(close(open((listed / name).c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600)) == 0);
    }
    const LightweightString<wchar_t> wide(listed.wstring().c_str());
    const auto run = [](const std::function<std::size_t()>& list) {
        return [list] {
            return Bench::timed(kEntries, [&] { check(list() == std::size_t(kEntries)); });
        };
    };
    Bench::printHeader("Listing 100,000 entries with kind, size and time, each entry");
    Bench::compare("getDirectoryContents",
                   {{"ours (sorted)", run([&] { return listByUs(wide); })},
                    {"std::filesystem", run([&] { return listByStandard(listed); })},
                    {"QDirIterator", run([&] { return listByToolkit(listed); })}},
                   {{{"std::filesystem"}, 0},
                    {{"QDirIterator"}, 0},
                    {{"std::filesystem", "QDirIterator"}, 1.0}});
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    std::string name = (fs::temp_directory_path() / "files-bench-XXXXXX").string();
    check(mkdtemp(name.data()) != nullptr);
    compareTransfers(name);
    compareListings(name);
    fs::remove_all(name);
}
