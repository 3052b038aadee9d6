#include "OS/Mac/Effects/FileWatch.h"

#include <sys/stat.h>

#include <utility>

FileWatch::Stamp FileWatch::Stamp::of(const std::string& path)
{
    struct stat found = {};
    if (::stat(path.c_str(), &found) != 0)
        return {};
    return {found.st_dev, found.st_ino, found.st_size, found.st_mtim.tv_sec, found.st_mtim.tv_nsec};
}

void FileWatch::watch(std::vector<std::string> paths)
{
    paths_ = std::move(paths);
    stamps_.clear();
    for (const std::string& path : paths_)
        stamps_.push_back(Stamp::of(path));
}

bool FileWatch::hasChanged(Clock::time_point now)
{
    constexpr auto kPause = std::chrono::milliseconds(500);
    if (now < next_)
        return false;
    next_ = now + kPause;
    for (std::size_t i = 0; i < paths_.size(); ++i) {
        const Stamp stamp = Stamp::of(paths_[i]);
        if (i == 0 && stamp == Stamp())
            return false;
        if (!(stamp == stamps_[i]))
            return true;
    }
    return false;
}
