// Any bytes as a file of settings: what was read and saved is read again the same, and saving that
// changes nothing.

#include "OS/Mac/Core/FileHandle.h"
#include "OS/Mac/Files/SettingsText.h"

#include <cstdint>
#include <cstdlib>

namespace {

SettingsText::Sections read(const void* bytes, std::size_t size)
{
    SettingsText::Sections sections;
    if (size == 0)
        return sections; // the C library opens no empty memory
    const OSInternal::FileHandle stream(fmemopen(const_cast<void*>(bytes), size, "r"));
    SettingsText::read(stream.get(), sections);
    return sections;
}

std::string write(const SettingsText::Sections& sections)
{
    SettingsText::Losses losses;
    std::string text;
    SettingsText::write(
        sections,
        [&](std::string_view piece) {
            text += piece;
            return true;
        },
        losses);
    if (losses.count > 0)
        std::abort(); // what a file held fits into one
    return text;
}

// A line of three bytes is written, but deliberately not read.
bool isTooShort(const SettingsText::Values::value_type& value)
{
    return value.first.size() + value.second.size() < 2;
}

void removeWhatIsNotRead(SettingsText::Sections& sections)
{
    for (auto& section : sections)
        std::erase_if(section.second, isTooShort);
    std::erase_if(sections, [](const auto& section) { return section.second.empty(); });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    SettingsText::Sections first = read(data, size);
    const std::string text = write(first);
    const SettingsText::Sections second = read(text.data(), text.size());
    removeWhatIsNotRead(first);
    if (first != second || write(second) != write(first))
        std::abort();
    return 0;
}
