// Settings: 10,000 values in 100 sections, read, put into text, and saved.

#include "OS/Mac/Core/FileHandle.h"
#include "OS/Mac/Core/ReplacementFile.h"
#include "OS/Mac/Files/SettingsText.h"
#include "support/PairedRuns.h"

#include <QSettings>

#include <array>
#include <filesystem>
#include <fstream>

namespace {

constexpr int kValues = 10'000;
constexpr int kSections = 100;

std::string sectionOf(int i)
{
    return "section" + std::to_string(i % kSections);
}
std::string nameOf(int i)
{
    return "window.panel" + std::to_string(i);
}
std::string valueOf(int i)
{
    return "a value of usual length " + std::to_string(i * 7919);
}

SettingsText::Sections makeSections()
{
    SettingsText::Sections sections;
    for (int i = 0; i < kValues; ++i)
        sections[sectionOf(i).c_str()][nameOf(i).c_str()] = valueOf(i).c_str();
    return sections;
}

void write(const SettingsText::Sections& sections, const SettingsText::Sink& sink)
{
    SettingsText::Losses losses;
    SettingsText::write(sections, sink, losses);
}

void writeFile(const SettingsText::Sections& sections, const std::string& path)
{
    std::ofstream file(path);
    write(sections, [&](std::string_view piece) { return bool(file << piece); });
}

// In memory where there is such a folder, so that no disk is measured.
std::string folder()
{
    const bool hasMemory = std::filesystem::is_directory("/dev/shm");
    return (hasMemory ? "/dev/shm" : std::filesystem::temp_directory_path().string());
}

void fill(QSettings& settings)
{
    for (int i = 0; i < kValues; ++i)
        settings.setValue(QString::fromStdString(sectionOf(i) + "/" + nameOf(i)),
                          QString::fromStdString(valueOf(i)));
}

SettingsText::Sections readFile(const std::string& path)
{
    SettingsText::Sections sections;
    const OSInternal::FileHandle stream(std::fopen(path.c_str(), "re"));
    SettingsText::read(stream.get(), sections);
    return sections;
}

double loadCost(const std::string& path)
{
    SettingsText::Sections sections;
    return Bench::timed(kValues, [&] { sections = readFile(path); });
}

// Right after the values were set, like the peer.
double textCost()
{
    const SettingsText::Sections sections = makeSections();
    std::size_t length = 0;
    const double cost = Bench::timed(kValues, [&] {
        write(sections, [&](std::string_view piece) { return (length += piece.size()) > 0; });
    });
    Bench::keep(length);
    return cost;
}

double toolkitLoadCost(const std::string& path)
{
    // The toolkit keeps what it has read for the next object of the same file: a new name each
    // time.
    static int copies = 0;
    const std::string copy = path + std::to_string(copies++);
    std::filesystem::copy_file(path, copy);
    const double cost = Bench::timed(kValues, [&] {
        const QSettings settings(QString::fromStdString(copy), QSettings::IniFormat);
        // A section is taken apart when it is first asked for a value.
        for (int i = 0; i < kSections; ++i)
            Bench::keep(settings.value(QString::fromStdString(sectionOf(i) + "/" + nameOf(i))));
    });
    std::filesystem::remove(copy);
    return cost;
}

double toolkitSaveCost(const std::string& path)
{
    std::filesystem::remove(path);
    QSettings settings(QString::fromStdString(path), QSettings::IniFormat);
    fill(settings);
    return Bench::timed(kValues, [&] { settings.sync(); });
}

double saveCost(const std::string& path)
{
    const SettingsText::Sections sections = makeSections();
    return Bench::timed(kValues, [&] {
        OSInternal::ReplacementFile file(path.c_str());
        write(sections,
              [&](std::string_view piece) { return file.write(piece.data(), piece.size()); });
        if (!file.commit())
            std::abort();
    });
}

} // namespace

int main()
{
    const std::string ours = folder() + "/settings-bench.txt";
    const std::string toolkits = folder() + "/settings-bench.ini";
    const std::string onDisk =
        (std::filesystem::temp_directory_path() / "settings-bench.txt").string();
    const std::string toolkitOnDisk = onDisk + ".ini";
    writeFile(makeSections(), ours);
    toolkitSaveCost(toolkits);

    Bench::printHeader("Settings: 10,000 values, each");
    Bench::compare("load",
                   {{"ours", [&] { return loadCost(ours); }},
                    {"QSettings (INI)", [&] { return toolkitLoadCost(toolkits); }}},
                   {{{"QSettings (INI)"}, 0.4}});
    Bench::compare(
        "into text; the peer into a file in memory",
        {{"ours", textCost}, {"QSettings (INI)", [&] { return toolkitSaveCost(toolkits); }}},
        {{{"QSettings (INI)"}, 0.1}});
    Bench::compare("save, with the flush to the disk; the peer does not flush",
                   {{"ours", [&] { return saveCost(onDisk); }},
                    {"QSettings (INI)", [&] { return toolkitSaveCost(toolkitOnDisk); }}},
                   {{{"QSettings (INI)"}, 0.0}});
    for (const std::string& path : {ours, toolkits, onDisk, toolkitOnDisk})
        std::filesystem::remove(path);
}
