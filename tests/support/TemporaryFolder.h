#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>
#include <string>
#include <sys/stat.h>

/// A new empty folder, removed with all that is in it when it goes out of scope.
class TemporaryFolder
{
public:
    TemporaryFolder()
    {
        std::string name = (std::filesystem::temp_directory_path() / "os-test-XXXXXX").string();
        if (!mkdtemp(name.data()))
            throw std::runtime_error("no temporary folder");
        path_ = name;
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder()
    {
        std::error_code ignored;
        chmod(path_.c_str(), 0700);
        std::filesystem::remove_all(path_, ignored);
    }

    std::string path() const { return path_; }
    std::string path(const std::string& name) const { return path_ + "/" + name; }

    std::string write(const std::string& name, const std::string& bytes) const
    {
        std::ofstream(path(name), std::ios::binary) << bytes;
        return path(name);
    }
    /// The bytes of a file; "(none)" when there is none.
    std::string read(const std::string& name) const
    {
        std::ifstream file(path(name), std::ios::binary);
        if (!file)
            return "(none)";
        return {std::istreambuf_iterator<char>(file), {}};
    }
    std::set<std::string> names() const
    {
        std::set<std::string> result;
        for (const auto& entry : std::filesystem::directory_iterator(path_))
            result.insert(entry.path().filename().string());
        return result;
    }
    /// Permission bits of a file, 0 when there is none.
    unsigned int mode(const std::string& name) const
    {
        struct stat info;
        return stat(path(name).c_str(), &info) == 0 ? info.st_mode & 07777u : 0;
    }

private:
    std::string path_;
};
