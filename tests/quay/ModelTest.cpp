#include "MadeUpData.h"
#include "Model/Gather.h"
#include "Model/ProcessorTimes.h"
#include "Model/SettingsFile.h"

#include <OS.h>
#include <OS/Core/iUtils.h>

#include <gtest/gtest.h>

#include <limits>
#include <map>

namespace Quay {
namespace {

std::string narrow(const Text& text)
{
    return OS()->utils()->toUTF8(text).c_str();
}

TEST(UnitsTest, SizesAreToldWithTheDigitsThatMatter)
{
    static const struct
    {
        std::uint64_t bytes;
        const char* binary;
        const char* decimal;
    } kCases[] = {
        {0, "0 B", "0 B"},
        {999, "999 B", "999 B"},
        {1000, "1000 B", "1 kB"},
        {1023, "1023 B", "1 kB"},
        {1024, "1 KiB", "1 kB"},
        {1536, "1.5 KiB", "1.5 kB"},
        {102297, "99.9 KiB", "102 kB"},
        {102399, "100 KiB", "102 kB"},
        {999500, "976 KiB", "1 MB"},
        {1048575, "1 MiB", "1 MB"},
        {499963174912, "466 GiB", "500 GB"},
        {std::numeric_limits<std::uint64_t>::max(), "16 EiB", "18.4 EB"},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(narrow(sizeText(c.bytes, Units::eBinary)), c.binary) << c.bytes;
        EXPECT_EQ(narrow(sizeText(c.bytes, Units::eDecimal)), c.decimal) << c.bytes;
    }
}

TEST(UnitsTest, PercentSaysNothingAndAllOnlyWhereItIsTrue)
{
    EXPECT_EQ(percentText(0.0), L"0 %");
    EXPECT_EQ(percentText(0.0001), L"1 %");
    EXPECT_EQ(percentText(0.5), L"50 %");
    EXPECT_EQ(percentText(0.9999), L"99 %");
    EXPECT_EQ(percentText(1.0), L"100 %");
    EXPECT_EQ(percentText(-1.0), L"0 %");
    EXPECT_EQ(percentText(std::numeric_limits<double>::quiet_NaN()), L"0 %");
}

TEST(UnitsTest, NumbersAreShort)
{
    EXPECT_EQ(shortNumber(1.0), L"1");
    EXPECT_EQ(shortNumber(1.25), L"1.25");
    EXPECT_EQ(shortNumber(1.5), L"1.5");
    EXPECT_EQ(shortNumber(59.9401), L"59.94");
    EXPECT_EQ(shortNumber(2.05), L"2.05");
    EXPECT_EQ(shortNumber(-0.5), L"-0.5");
    EXPECT_EQ(shortNumber(-0.001), L"0");
    EXPECT_EQ(shortNumber(1e300), L"\u2013");
}

TEST(ProcessorTimesTest, ReadsWhatTheKernelTells)
{
    const auto times = parseProcessorTimes("cpu  100 10 50 800 40 0 5 0 7 7\n"
                                           "cpu0 60 5 25 400 20 0 5 0\n"
                                           "cpu2 40 5 25 400 20 0 0 0\n"
                                           "intr 12345 0 0\nctxt 99\n");
    ASSERT_EQ(times.size(), 4u) << "the missing one in between has its place";
    EXPECT_EQ(times[0].busy, 165u) << "guests are counted in user already";
    EXPECT_EQ(times[0].idle, 840u);
    EXPECT_EQ(times[1].busy, 95u);
    EXPECT_EQ(times[2].busy + times[2].idle, 0u);
    EXPECT_EQ(times[3].busy, 70u);
}

TEST(ProcessorTimesTest, DamagedTextsDoNoHarm)
{
    for (const char* text : {"", "\n\n", "cpu", "cpux 1 2 3", "cpu99999999999999999999 1 2",
                             "rubbish", "cpu4000000000 1 2 3 4", "cpu  -1 2", "cpu\t1 2 3"})
        for (const ProcessorTimes& times : parseProcessorTimes(text))
            EXPECT_EQ(times.busy + times.idle, 0u) << text;
}

TEST(ProcessorTimesTest, LoadIsTheBusyPartOfTheTimeBetween)
{
    EXPECT_DOUBLE_EQ(loadBetween({100, 100}, {130, 110}), 0.75);
    EXPECT_DOUBLE_EQ(loadBetween({100, 100}, {100, 100}), 0.0);
    EXPECT_DOUBLE_EQ(loadBetween({100, 100}, {110, 90}), 1.0) << "idle stepped back";
    EXPECT_DOUBLE_EQ(loadBetween({100, 100}, {0, 0}), 0.0) << "the counts began anew";
}

TEST(ProcessorTimesTest, ProcessorsThatComeAndGoKeepTheirHistories)
{
    Processors processors;
    addLoads(processors, {}, {{1, 1}, {1, 1}});
    EXPECT_TRUE(processors.all.values.empty()) << "one reading makes no load";
    addLoads(processors, {{0, 0}, {0, 0}}, {{5, 5}, {5, 5}, {1, 9}});
    ASSERT_EQ(processors.each.size(), 2u);
    EXPECT_DOUBLE_EQ(processors.each[0].last(), 0.5);
    EXPECT_DOUBLE_EQ(processors.each[1].last(), 0.0);
    addLoads(processors, {{5, 5}, {5, 5}, {1, 9}}, {{6, 6}});
    ASSERT_EQ(processors.each.size(), 2u);
    for (int i = 0; i < 200; ++i)
        addLoads(processors, {{0, 0}, {0, 0}}, {{1, 0}, {1, 0}});
    EXPECT_EQ(processors.all.values.size(), History::kLength);
}

TEST(SettingsFileTest, SectionsAndTheirValues)
{
    const std::string_view text =
        "[]\nLoose=1\n\n[Board]\nOrder=a b\nEmpty=\nSum=1+1=2\n\n[Board]\n"
        "Again=1\nno value\n[Last]";
    const auto names = sectionNames(text);
    ASSERT_EQ(names.size(), 3u);
    EXPECT_EQ(names[0], "");
    EXPECT_EQ(names[1], "Board");
    EXPECT_EQ(names[2], "Last");
    const auto values = sectionValues(text, "Board");
    ASSERT_EQ(values.size(), 4u);
    EXPECT_EQ(values[1].value, L"");
    EXPECT_EQ(values[2].value, L"1+1=2");
    EXPECT_EQ(values[3].name, L"Again");
    EXPECT_TRUE(sectionValues("", "Board").empty());
}

/// A store in memory.
class FakeSettings final : public iSettings
{
public:
    bool setValue(const char* name, const char* value, const char* section) override
    {
        values[{section, name}] = value;
        return true;
    }
    LightweightString<char> getValue(const char* name, const char* fallback,
                                     const char* section) const override
    {
        const auto found = values.find({section, name});
        return found == values.end() ? fallback : found->second.c_str();
    }
    bool removeValue(const char* name, const char* section) override
    {
        return values.erase({section, name}) > 0;
    }
    bool getMultipleValues(std::vector<NameValuePair>&, const char*) override { return false; }
    void persist() override {}

    std::map<std::pair<std::string, std::string>, std::string> values;
};

TEST(PreferencesTest, WhatIsWrittenIsRead)
{
    const Tq::Ptr<FakeSettings> settings(new FakeSettings);
    Preferences preferences;
    preferences.units = Units::eDecimal;
    preferences.refreshMs = 5000;
    preferences.order = {L"system", L"memory"};
    writePreferences(settings, preferences);
    EXPECT_TRUE(readPreferences(settings) == preferences);
}

TEST(PreferencesTest, NonsenseGivesTheDefaults)
{
    EXPECT_TRUE(readPreferences(nullptr) == Preferences());
    for (const char* value : {"", "x", "nan", "-1", "1e300", "750", "1000 "}) {
        const Tq::Ptr<FakeSettings> settings(new FakeSettings);
        settings->values[{"Board", "RefreshMs"}] = value;
        settings->values[{"Board", "Units"}] = value;
        EXPECT_EQ(readPreferences(settings).refreshMs, 1000) << value;
        EXPECT_EQ(readPreferences(settings).units, Units::eBinary) << value;
    }
}

std::vector<Text> keysOf(const std::vector<Panel>& panels)
{
    std::vector<Text> keys;
    for (const Panel& panel : panels)
        keys.push_back(panel.key);
    return keys;
}

TEST(PanelsTest, ADeviceThatDoesNotComputeSaysWhy)
{
    const auto textsOf = [](const Panel& panel) {
        std::wstring all;
        for (const Row& row : panel.rows) {
            if (const auto* note = std::get_if<NoteRow>(&row))
                all += std::wstring(note->text.c_str()) + L"|";
            if (const auto* heading = std::get_if<HeadingRow>(&row))
                all += std::wstring(heading->text.c_str()) + L" " + heading->fact.c_str() + L"|";
            if (const auto* fact = std::get_if<FactRow>(&row))
                all += std::wstring(fact->value.c_str()) + L"|";
        }
        return all;
    };
    EXPECT_EQ(textsOf(computePanel({})), L"The runtimes have not answered yet|");
    EXPECT_EQ(textsOf(computePanel({true, {}})), L"No runtime for compute is installed|");
    const ComputeDevice processor{L"R", L"CPU 1", L"3.0", false, false, false, L"it is no GPU"};
    const ComputeDevice card{L"S", L"Card", L"1.2", true, true, true, L""};
    EXPECT_EQ(textsOf(computePanel({true, {processor}})),
              L"None of them computes for OpenGL|CPU 1 no GPU|R|3.0|apart|it is no GPU|");
    EXPECT_EQ(textsOf(computePanel({true, {card, processor}})),
              L"Card chosen|S|1.2|shares images|CPU 1 no GPU|R|3.0|apart|it is no GPU|");
}

TEST(PanelsTest, TheUsersOrderComesFirst)
{
    Preferences preferences;
    preferences.order = {L"system", L"no-such-panel", L"memory"};
    const std::vector<Text> keys = keysOf(makePanels({}, preferences));
    ASSERT_EQ(keys.size(), 11u);
    EXPECT_EQ(keys[0], L"system");
    EXPECT_EQ(keys[1], L"memory");
    EXPECT_EQ(keys[2], L"processors");

    const std::vector<Panel> panels = makePanels({}, {});
    EXPECT_EQ(movedOrder(panels, 0, 2)[2], L"processors");
    EXPECT_EQ(movedOrder(panels, 7, 0)[0], L"system");
    EXPECT_EQ(movedOrder(panels, 3, 99), keysOf(panels));
}

TEST(PanelsTest, EveryPanelSaysSomethingWhenThereIsNothing)
{
    for (const Panel& panel : makePanels({}, {}))
        EXPECT_FALSE(panel.rows.empty()) << narrow(panel.key);
}

TEST(PanelsTest, DrivesTellHowFullTheyAre)
{
    Drives drives;
    drives.read = true;
    drives.drives = {{L"full", L"/full/", L"ext4", iDiskDrive::eFixed, false, 1000, 10},
                     {L"disc", L"/disc/", L"iso9660", iDiskDrive::eOptical, true, 1000, 0},
                     {L"odd", L"/odd/", L"ext4", iDiskDrive::eFixed, false, 10, 1000},
                     {L"gone", L"/gone/", L"nfs4", iDiskDrive::eNetwork, false, 0, 0}};
    const Panel panel = drivesPanel(drives, Units::eDecimal);
    const auto row = [&](std::size_t i) { return std::get<MeterRow>(panel.rows[i]); };
    EXPECT_EQ(row(0).value, L"10 B free of 1 kB");
    EXPECT_EQ(row(0).parts[0].tone, Tone::eRed);
    EXPECT_EQ(row(1).parts[0].tone, Tone::eGold) << "a disc is full by its nature";
    EXPECT_EQ(row(1).tag, L"read only");
    EXPECT_DOUBLE_EQ(row(2).parts[0].part, 0.0) << "more free than there is";
    EXPECT_EQ(row(3).value, L"size unknown");
}

// What is gathered from this machine makes sense, whatever machine it is.
TEST(GatherTest, TellsOfThisMachine)
{
    BoardData data;
    Meters meters;
    meters.read(data);
    meters.read(data);
    EXPECT_GT(data.processors.configured, 0u);
    const bool told = !parseProcessorTimes(readText(L"/proc/stat")).empty();
    EXPECT_EQ(data.processors.all.values.size(), told ? 1u : 0u) << "read twice";
    EXPECT_GT(data.memory.total, data.memory.resident);
    EXPECT_EQ(data.memory.used.values.size(), 2u);

    const Volumes volumes = gatherVolumes({});
    EXPECT_EQ(volumes.folders.size(), 10u);
    for (const Folder& folder : volumes.folders)
        EXPECT_TRUE(folder.path.empty() || folder.path.endsWith(L'/')) << narrow(folder.label);
    for (const Drive& drive : volumes.drives.drives)
        EXPECT_LE(drive.free, drive.total) << narrow(drive.path);
    EXPECT_EQ(gatherSettings().size(), 2u);
    EXPECT_FALSE(gatherSystem().programFolder.empty());
}

TEST(GatherTest, FilesThatAreNotThereReadAsNothing)
{
    EXPECT_TRUE(readText(L"/no/such/file").empty());
    EXPECT_TRUE(readText(L"/").empty());
    EXPECT_TRUE(readText(Text()).empty());
}

} // namespace
} // namespace Quay
