#pragma once

#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace EffectCompiler {

/// Finds and reads the files of one effect. Their texts stay where they are until it ends.
class SourceFiles
{
public:
    struct File
    {
        std::string path; ///< as messages call it
        std::string_view text;
    };

    void addIncludeFolder(std::string folder) { folders_.push_back(std::move(folder)); }

    /// @return nothing for what is no readable file of text of at most Limits::kSourceBytes
    const File* read(const std::string& path);
    /// Finds a file as "#include" names it, "\" and "/" alike and without regard to case where the
    /// name as written does not exist: beside the file that includes it, then in the include
    /// folders; those first if it is in angle brackets.
    const File* find(std::string_view name, const std::string& includer, bool isSystem);
    /// A file that is in memory.
    const File* add(const std::string& path, std::string text);

    /// What was read, in the order of first reading.
    const std::vector<std::string>& paths() const { return paths_; }

private:
    std::string locate(const std::string& folder, std::string_view name) const;

    std::vector<std::string> folders_;
    std::map<std::string, File*> byPath_;
    std::map<std::pair<std::string, std::string>, std::string> located_; ///< "": nowhere
    std::deque<File> files_;
    std::deque<std::string> texts_;
    std::vector<std::string> paths_;
};

} // namespace EffectCompiler
