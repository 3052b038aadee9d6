#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace EffectCompiler {

/// A line of one of the files that an effect was read from.
struct SourcePlace
{
    std::uint16_t file = 0; ///< index into Messages' files
    std::uint32_t line = 0; ///< from 1; 0 where there is none

    friend bool operator==(const SourcePlace&, const SourcePlace&) = default;
};

/// What is wrong with an effect, collected while it is read: at most kMost errors, after which
/// isFull() tells everybody to stop, and as many warnings.
class Messages
{
public:
    static constexpr std::size_t kMost = 100;

    /// @return its index, the same for the same name, and for all beyond 65,535
    std::uint16_t addFile(const std::string& name);
    const std::vector<std::string>& files() const { return files_; }

    /// The same text at the same place is kept once.
    void error(SourcePlace place, const std::string& text);
    void warning(SourcePlace place, const std::string& text);

    bool hasErrors() const { return errors_ != 0; }
    bool isFull() const { return errors_ >= kMost; }
    /// "file(line) : error : text\n" each, in the order they were found; without "(line)" where
    /// there is none.
    std::string listing() const;

private:
    struct Line
    {
        SourcePlace place;
        bool isError;
        std::string text;

        friend bool operator==(const Line&, const Line&) = default;
    };
    void add(SourcePlace place, bool isError, const std::string& text);

    std::vector<std::string> files_;
    std::unordered_map<std::string, std::uint16_t> fileIndices_;
    std::vector<Line> lines_;
    std::size_t errors_ = 0;
    std::size_t warnings_ = 0;
};

} // namespace EffectCompiler
