#include "OS/Host/EffectCompiler/SourceFiles.h"

#include "OS/Host/EffectCompiler/Lexer.h"
#include "OS/Host/EffectCompiler/Syntax.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace EffectCompiler {
namespace {

namespace fs = std::filesystem;

std::string lowered(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character + 32) : character;
    });
    return text;
}

/// One step of a path: the entry of a folder with this name, or one that differs in case only.
fs::path entryOf(const fs::path& folder, const std::string& name)
{
    std::error_code error;
    fs::path exact = folder / name;
    if (fs::exists(exact, error))
        return exact;
    const std::string wanted = lowered(name);
    const fs::path listed = folder.empty() ? fs::path(".") : folder;
    fs::path best;
    for (fs::directory_iterator entry(listed, error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string found = entry->path().filename().string();
        // The first in order of bytes, so that it is the same on every file system.
        if (lowered(found) == wanted && (best.empty() || found < best.filename().string()))
            best = folder / found;
    }
    return best;
}

std::optional<std::string> readText(const std::string& path)
{
    std::error_code error;
    if (!fs::is_regular_file(path, error))
        return {};
    const auto size = fs::file_size(path, error);
    std::ifstream stream(path, std::ios::binary);
    if (!stream || error || size > Limits::kSourceBytes)
        return {};
    std::string text(static_cast<std::size_t>(size), '\0');
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (stream.bad())
        return {};
    text.resize(static_cast<std::size_t>(stream.gcount()));
    return text;
}

} // namespace

const SourceFiles::File* SourceFiles::read(const std::string& path)
{
    const auto known = byPath_.find(path);
    if (known != byPath_.end())
        return known->second;
    auto text = readText(path);
    return text ? add(path, std::move(*text)) : nullptr;
}

const SourceFiles::File* SourceFiles::add(const std::string& path, std::string text)
{
    texts_.push_back(cleaned(std::move(text)));
    files_.push_back({path, texts_.back()});
    byPath_[path] = &files_.back();
    paths_.push_back(path);
    return &files_.back();
}

const SourceFiles::File* SourceFiles::find(std::string_view name, const std::string& includer,
                                           bool isSystem)
{
    const std::string beside = fs::path(includer).parent_path().string();
    std::vector<std::string> folders = folders_;
    folders.insert(isSystem ? folders.end() : folders.begin(), beside);
    for (const std::string& folder : folders) {
        const auto [entry, isNew] = located_.try_emplace({folder, std::string(name)});
        if (isNew)
            entry->second = locate(folder, name);
        if (!entry->second.empty()) {
            if (const File* file = read(entry->second))
                return file;
        }
    }
    return nullptr;
}

std::string SourceFiles::locate(const std::string& folder, std::string_view name) const
{
    std::string slashed(name);
    std::replace(slashed.begin(), slashed.end(), '\\', '/');
    std::error_code error;
    const fs::path wanted(slashed);
    fs::path path = wanted.is_absolute() ? wanted.root_path() : fs::path(folder);
    if (fs::is_regular_file(path / wanted.relative_path(), error))
        return (path / wanted.relative_path()).lexically_normal().string();
    for (const fs::path& part : wanted.relative_path()) {
        path = entryOf(path, part.string());
        if (path.empty())
            return {};
    }
    return fs::is_regular_file(path, error) ? path.lexically_normal().string() : std::string();
}

} // namespace EffectCompiler
