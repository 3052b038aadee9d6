#include "OS/Mac/Files/Settings.h"

#include "OS/Mac/Core/PathText.h"
#include "support/BackgroundThread.h"
#include "support/ChildProcess.h"
#include "support/HomeFolder.h"
#include "support/OutputCapture.h"
#include "support/SystemSteps.h"

#include <OS.h>
#include <OS/Files/iFileManager.h>
#include <OS/Files/iShell.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <random>
#include <sched.h>
#include <sys/mount.h>

namespace {

using Names = std::set<std::string>;
using Pairs = std::vector<std::pair<std::string, std::string>>;

// A home for each test, in which the files of both scopes can be read and written.
class SettingsFile : public testing::Test
{
protected:
    SettingsFile()
    {
        const std::string program =
            OSInternal::pathToSystem(OS()->fileMgr()->getAppDescription()).c_str();
        folder_ = program + "/Preferences";
        std::filesystem::create_directories(home_.path(folder_));
    }

    std::string name(iSettings::eType type) const
    {
        return folder_ + (type == iSettings::eGlobal ? "/GlobalSettings.txt" : "/UserSettings.txt");
    }
    std::string path(iSettings::eType type = iSettings::eUser) const
    {
        return home_.path(name(type));
    }
    void write(const std::string& bytes, iSettings::eType type = iSettings::eUser) const
    {
        home_.write(name(type), bytes);
    }
    std::string read(iSettings::eType type = iSettings::eUser) const
    {
        return home_.read(name(type));
    }
    Names names() const
    {
        Names result;
        for (const auto& entry : std::filesystem::directory_iterator(home_.path(folder_)))
            result.insert(entry.path().filename().string());
        return result;
    }

    HomeFolder home_;
    std::string folder_;
};

// All values of a section as text; "(no section)" alone when there is none.
Pairs valuesOf(iSettings& settings, const char* section)
{
    std::vector<iSettings::NameValuePair> values;
    if (!settings.getMultipleValues(values, section))
        return {{"(no section)", ""}};
    Pairs result;
    for (const auto& value : values)
        result.emplace_back(value.name.view(), value.value.view());
    return result;
}

std::string big(char fill, std::size_t bytes = 300'000)
{
    return std::string(bytes, fill);
}

} // namespace

TEST_F(SettingsFile, HoldsGlobalValuesInTheConfigurationSection)
{
    Settings settings(iSettings::eGlobal);
    EXPECT_EQ(settings.getValue("VirtualPoolSizeMb", "1048576", nullptr), "1048576");
    EXPECT_TRUE(settings.setValue("VirtualPoolSizeMb", "2048", nullptr));
    settings.persist();
    EXPECT_EQ(read(iSettings::eGlobal), "[Configuration]\nVirtualPoolSizeMb=2048\n\n");
    EXPECT_EQ(settings.getValue("VirtualPoolSizeMb", "", "Configuration"), "2048");
    EXPECT_EQ(read(iSettings::eUser), "(none)");
}

TEST_F(SettingsFile, HoldsUserValuesInTheSectionWithoutAName)
{
    Settings settings(iSettings::eUser);
    settings.setValue("b", "2", nullptr);
    settings.setValue("a", "", "");
    settings.setValue("x", "y", "Zoo");
    settings.setValue("x", "y=z", "Apes");
    settings.setValue(nullptr, nullptr, "Apes");
    settings.persist();
    EXPECT_EQ(read(), "[]\na=\nb=2\n\n[Apes]\n=\nx=y=z\n\n[Zoo]\nx=y\n\n");
}

TEST_F(SettingsFile, ReadsLineByLine)
{
    const std::string longName(1022, 'n');
    const struct
    {
        const char* about;
        std::string file;
        const char* section;
        Pairs values;
    } cases[] = {
        {"three bytes", "a=\n", "", {{"(no section)", ""}}},
        {"four bytes", "ab=\n", "", {{"ab", ""}}},
        {"spaces", "key = value \r\n", "", {{"key ", " value "}}},
        {"controls at the end", "key=\tva\tlue\t\x01\x7F\n", "", {{"key", "\tva\tlue"}}},
        {"characters at the end stay", "key=caf\u00e9\n", "", {{"key", "caf\u00e9"}}},
        {"bytes that are no UTF-8", "k\xFF=v\xFE\n", "", {{"k\xFF", "v\xFE"}}},
        {"no line feed at the end", "key=value", "", {{"key", "value"}}},
        {"last line of three bytes", "ab=", "", {{"(no section)", ""}}},
        {"first = splits", "a=b=c\n", "", {{"a", "b=c"}}},
        {"no name", "=value\n", "", {{"", "value"}}},
        {"no =", "nonsense\nab=c\n", "", {{"ab", "c"}}},
        {"the later one counts", "ab=1\nab=2\n", "", {{"ab", "2"}}},
        {"section", "[S]\nab=c\n", "S", {{"ab", "c"}}},
        {"text behind ]", "[S] and = more]\nab=c\n", "S", {{"ab", "c"}}},
        {"[ without ]", "[S]\n[T=1\nab=c\n", "S", {{"ab", "c"}}},
        {"[ inside a name", "a[b]=c\n", "", {{"a[b]", "c"}}},
        {"section twice", "[S]\nab=1\n[T]\n[S]\ncd=2\n", "S", {{"ab", "1"}, {"cd", "2"}}},
        {"byte order", "[S]\nb=1x\n\xFF=2\nB=3x\n", "S", {{"B", "3x"}, {"b", "1x"}, {"\xFF", "2"}}},
        {"a section without values is none", "[S]\n", "S", {{"(no section)", ""}}},
        {"0 ends a piece", std::string("ab=c\0d=e\nfg=h\n", 14), "", {{"ab", "c"}, {"fg", "h"}}},
        {"1023 bytes", "k=" + std::string(1020, 'v') + "\n", "", {{"k", std::string(1020, 'v')}}},
        {"1024 bytes", "k=" + std::string(1021, 'v') + "\n", "", {{"k", std::string(1021, 'v')}}},
        {"two pieces",
         "k=" + std::string(1021, 'v') + "x=2\n",
         "",
         {{"k", std::string(1021, 'v')}, {"x", "2"}}},
        {"[ begins the second piece",
         "k=" + std::string(1021, 'v') + "[S]\nab=c\n",
         "S",
         {{"ab", "c"}}},
        {"= in the second piece", longName + "nn=v\n", "", {{"n", "v"}}},
    };
    for (const auto& c : cases) {
        write(c.file);
        Settings settings(iSettings::eUser);
        EXPECT_EQ(valuesOf(settings, c.section), c.values) << c.about;
        settings.persist();
        EXPECT_EQ(read(), c.file) << c.about << ": what was read makes nothing dirty";
    }
}

TEST_F(SettingsFile, MakesItsFolder)
{
    std::filesystem::remove_all(home_.path(folder_).substr(0, home_.path(folder_).rfind('/')));
    Settings settings(iSettings::eUser);
    settings.setValue("ab", "1", nullptr);
    settings.persist();
    EXPECT_EQ(read(), "[]\nab=1\n\n");
}

TEST_F(SettingsFile, StaysOpenForReading)
{
    write("ab=1\n");
    const auto streams = [&] {
        int count = 0;
        for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
            std::error_code gone;
            count += std::filesystem::read_symlink(entry.path(), gone) == path();
        }
        return count;
    };
    {
        const Settings settings(iSettings::eUser);
        EXPECT_EQ(streams(), 1);
    }
    EXPECT_EQ(streams(), 1);
}

TEST_F(SettingsFile, WritesOnlyWhatHasChanged)
{
    write("ab=1\nnonsense\n");
    Settings settings(iSettings::eUser);
    settings.setValue("ab", "1", nullptr);
    EXPECT_FALSE(settings.removeValue("cd", nullptr));
    EXPECT_FALSE(settings.removeValue("ab", "S"));
    settings.persist();
    EXPECT_EQ(read(), "ab=1\nnonsense\n");

    settings.setValue("ab", "2", nullptr);
    EXPECT_EQ(settings.getValue("ab", "3", nullptr), "2");
    EXPECT_EQ(read(), "ab=1\nnonsense\n") << "not before persist";
    settings.persist();
    EXPECT_EQ(read(), "[]\nab=2\n\n");

    write("changed by another\n");
    settings.persist();
    EXPECT_EQ(read(), "changed by another\n") << "nothing changed since";
}

TEST_F(SettingsFile, LeavesOutSectionsThatHaveLostTheirValues)
{
    write("[S]\nab=1\n\n[T]\ncd=2\n\n");
    Settings settings(iSettings::eUser);
    EXPECT_TRUE(settings.removeValue("ab", "S"));
    EXPECT_EQ(settings.getValue("ab", nullptr, "S"), "");
    EXPECT_EQ(valuesOf(settings, "S"), Pairs{}) << "empty, but there";
    settings.persist();
    EXPECT_EQ(read(), "[T]\ncd=2\n\n");
}

TEST_F(SettingsFile, AppendsTheValuesOfASection)
{
    write("[S]\nab=1\n\n");
    Settings settings(iSettings::eUser);
    std::vector<iSettings::NameValuePair> out{{"mine", "first"}};
    EXPECT_FALSE(settings.getMultipleValues(out, "T"));
    EXPECT_EQ(out.size(), 1u);
    EXPECT_TRUE(settings.getMultipleValues(out, "S"));
    ASSERT_EQ(out.size(), 2u);
    EXPECT_EQ(out[0].name, "mine");
    EXPECT_EQ(out[1].value, "1");
}

TEST_F(SettingsFile, WhatTheFileCanNotHoldHarmsNothingElse)
{
    const std::string tail = big('v', 1100);
    const struct
    {
        const char* about;
        std::string name, value, section;
        Pairs afterwards; // beside "keep"
    } cases[] = {
        {"line break in a value", "ab", "1\nkeep=lost\n[T]", "S", {{"ab", "1"}}},
        {"line break at a value's end", "ab", "1\n", "S", {{"ab", "1"}}},
        {"line break in a name", "a\nb", "1", "S", {}},
        {"= in a name", "keep=", "lost", "S", {}},
        {"name of a header", "[T]", "1", "S", {}},
        {"name that begins like one", "[T", "1", "S", {}},
        {"] in a section", "keep", "lost", "S]x", {}},
        {"line break in a section", "keep", "lost", "T\n[S", {}},
        {"a long name", big('n', 1023), "1", "S", {}},
        {"a long section", "keep", "lost", big('s', 1022), {}},
        {"a long value", "ab", tail, "S", {{"ab", tail.substr(0, 1020)}}},
        {"a long value, then a name",
         "ab",
         tail + "keep=lost",
         "S",
         {{"ab", tail.substr(0, 1020)}}},
        {"a long value, then a header",
         "ab",
         big('v', 1020) + "[T]",
         "S",
         {{"ab", big('v', 1020)}}},
    };
    for (const auto& c : cases) {
        std::filesystem::remove(path());
        {
            Settings settings(iSettings::eUser);
            settings.setValue("keep", "kept", "S");
            settings.setValue("zz", "last", "S");
            settings.setValue(c.name.c_str(), c.value.c_str(), c.section.c_str());
            const std::string line = outputOf([&] { settings.persist(); });
            EXPECT_EQ(std::count(line.begin(), line.end(), '\n'),
                      c.about == std::string("a long value") ? 0 : 1)
                << c.about << ": " << line;
            EXPECT_EQ(settings.getValue(c.name.c_str(), "", c.section.c_str()), c.value.c_str());
        }
        Settings again(iSettings::eUser);
        Pairs expected = c.afterwards;
        expected.insert(expected.end(), {{"keep", "kept"}, {"zz", "last"}});
        EXPECT_EQ(valuesOf(again, "S"), expected) << c.about;
        EXPECT_EQ(valuesOf(again, "T"), (Pairs{{"(no section)", ""}})) << c.about;
    }
}

TEST_F(SettingsFile, KeepsTenThousandValues)
{
    {
        Settings settings(iSettings::eUser);
        for (int i = 0; i < 10'000; ++i)
            settings.setValue(("name " + std::to_string(i)).c_str(),
                              ("value " + std::to_string(i * i)).c_str(),
                              ("section " + std::to_string(i % 100)).c_str());
        settings.persist();
    }
    Settings again(iSettings::eUser);
    std::size_t wrong = 0;
    for (int i = 0; i < 10'000; ++i)
        wrong += again.getValue(("name " + std::to_string(i)).c_str(), "",
                                ("section " + std::to_string(i % 100)).c_str()) !=
                 ("value " + std::to_string(i * i)).c_str();
    EXPECT_EQ(wrong, 0u);
}

TEST_F(SettingsFile, MayBeUsedFromManyThreads)
{
    Settings settings(iSettings::eUser);
    std::atomic<int> next{0};
    BackgroundThreads threads(4, [&] {
        const std::string mine = std::to_string(next.fetch_add(1));
        for (int i = 0; i < 500; ++i) {
            settings.setValue(mine.c_str(), std::to_string(i).c_str(), nullptr);
            settings.setValue("shared", mine.c_str(), nullptr);
            settings.getValue("shared", "", nullptr);
            settings.removeValue("shared", nullptr);
        }
    });
    threads.join();
    for (const char* name : {"0", "1", "2", "3"})
        EXPECT_EQ(settings.getValue(name, "", nullptr), "499");
}

TEST_F(SettingsFile, LeavesAFileAloneThatMayNotBeWritten)
{
    write("ab=1\n");
    chmod(path().c_str(), 0444);
    Settings settings(iSettings::eUser);
    settings.setValue("ab", "2", nullptr);
    {
        const WithoutPrivilege ordinary;
        EXPECT_EQ(outputOf([&] { settings.persist(); }), "") << "silently";
    }
    EXPECT_EQ(read(), "ab=1\n");
    chmod(path().c_str(), 0644);
    settings.persist();
    EXPECT_EQ(read(), "ab=1\n") << "clean all the same";
}

TEST_F(SettingsFile, WritesInPlaceWhereTheFolderRefusesNewFiles)
{
    write("ab=1\n");
    const std::string folder = home_.path(folder_);
    chmod(folder.c_str(), 0555);
    Settings settings(iSettings::eUser);
    settings.setValue("ab", "2", nullptr);
    {
        const WithoutPrivilege ordinary;
        settings.persist();
        Settings missing(iSettings::eGlobal);
        missing.setValue("ab", "2", nullptr);
        EXPECT_EQ(outputOf([&] { missing.persist(); }), "");
    }
    chmod(folder.c_str(), 0755);
    EXPECT_EQ(read(), "[]\nab=2\n\n");
    EXPECT_EQ(names(), Names{"UserSettings.txt"});
}

TEST_F(SettingsFile, FollowsALinkAndKeepsTheMode)
{
    home_.write("real", "ab=1\n");
    chmod(home_.path("real").c_str(), 0640);
    ASSERT_EQ(symlink("../../real", path().c_str()), 0);
    Settings settings(iSettings::eUser);
    EXPECT_EQ(settings.getValue("ab", "", nullptr), "1");
    settings.setValue("ab", "2", nullptr);
    settings.persist();
    EXPECT_EQ(home_.read("real"), "[]\nab=2\n\n");
    EXPECT_EQ(home_.mode("real"), 0640u);
    EXPECT_TRUE(std::filesystem::is_symlink(path()));
}

TEST_F(SettingsFile, AFullDiskKeepsTheOldFileAndTheChanges)
{
    write("[]\nab=old\n\n");
    const auto fails = [&](Settings& settings) {
        const std::string line = outputOf([&] { settings.persist(); });
        return line.find(path() + ": ") != line.npos && line.ends_with("\n") &&
               read() == "[]\nab=old\n\n" && names() == Names{"UserSettings.txt"};
    };
    EXPECT_EQ(inChild([&] {
                  limitFileSize(100'000);
                  Settings settings(iSettings::eUser);
                  settings.setValue("big", big('b').c_str(), nullptr);
                  if (!fails(settings) || !fails(settings))
                      return 1;
                  settings.setValue("big", "small", nullptr);
                  settings.persist();
                  return read() == "[]\nab=old\nbig=small\n\n" ? 0 : 2;
              }),
              0);

    const int status = inChild([&] {
        const std::string folder = home_.path(folder_);
        if (unshare(CLONE_NEWNS) != 0 ||
            mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            mount("none", folder.c_str(), "tmpfs", 0, "size=64k") != 0)
            return 77;
        write("[]\nab=old\n\n");
        Settings settings(iSettings::eUser);
        settings.setValue("big", big('b').c_str(), nullptr);
        return fails(settings) && fails(settings) ? 0 : 1;
    });
    if (status == 77)
        GTEST_SKIP() << "mounting a small disk is not permitted";
    EXPECT_EQ(status, 0);
}

TEST_F(SettingsFile, AProcessThatEndsAtAnyStepOfSavingLeavesAWholeFile)
{
    const std::string before = "[]\nab=old\n\n", after = "[]\nab=new\n\n";
    int exits = 0;
    for (int step = 1;; ++step) {
        write(before);
        const int status = inChild([&] {
            Settings settings(iSettings::eUser);
            settings.setValue("ab", "new", nullptr);
            SystemSteps::exitAt(step);
            settings.persist();
            return 0;
        });
        const std::string found = read();
        EXPECT_TRUE(found == before || found == after) << "step " << step << ": " << found;
        EXPECT_LE(names().size(), 2u) << "what is left does not pile up";
        if (status == 0)
            break;
        ASSERT_EQ(status, SystemSteps::kExitStatus);
        ++exits;
    }
    EXPECT_GE(exits, 8) << "the calls are not seen";
    EXPECT_EQ(read(), after);
    EXPECT_EQ(names(), Names{"UserSettings.txt"});
}

TEST_F(SettingsFile, AnyStepOfSavingMayFail)
{
    const std::string before = "[]\nab=old\n\n", after = "[]\nab=new\n\n";
    for (const int error : {EIO, ENOSPC, EACCES})
        for (int step = 1, last = step; step <= last; ++step) {
            write(before);
            Settings settings(iSettings::eUser);
            settings.setValue("ab", "new", nullptr);
            OutputCapture capture;
            SystemSteps::failAt(step, error);
            settings.persist();
            last = SystemSteps::count();
            SystemSteps::reset();
            const std::string found = read();
            EXPECT_TRUE(found == before || found == after) << "step " << step << ": " << found;
            if (found == before) {
                const bool reported = !capture.text().empty();
                settings.persist();
                EXPECT_EQ(read(), reported ? after : before) << "tried again after a line only";
            }
        }
}

TEST_F(SettingsFile, IsWholeWheneverItsWriterIsKilled)
{
    const std::string old = "[]\nab=" + big('o') + "\n\n", young = "[]\nab=" + big('y') + "\n\n";
    write(old);
    std::minstd_rand random(1);
    for (int kill = 0; kill < 60; ++kill) {
        ForkedChild writer([&] {
            Settings settings(iSettings::eUser);
            for (int i = 0;; ++i) {
                settings.setValue("ab", big(i % 2 ? 'o' : 'y').c_str(), nullptr);
                settings.persist();
            }
            return 0;
        });
        usleep(static_cast<useconds_t>(random() % 8'000));
        writer.kill();
        writer.status();
        const std::string found = read();
        ASSERT_TRUE(found == old || found == young) << found.size() << " bytes";
        ASSERT_LE(names().size(), 2u);
    }
}

TEST_F(SettingsFile, TwoProcessesThatSaveAtOnceLeaveTheFileOfOne)
{
    const auto writer = [&](char fill) {
        return [fill] {
            Settings settings(iSettings::eUser);
            for (int i = 0; i < 50; ++i) {
                settings.setValue("ab", (big(fill) + std::to_string(i)).c_str(), nullptr);
                settings.persist();
            }
            return 0;
        };
    };
    ForkedChild first(writer('f')), second(writer('s'));
    EXPECT_EQ(first.status(), 0);
    EXPECT_EQ(second.status(), 0);
    const std::string found = read();
    EXPECT_TRUE(found == "[]\nab=" + big('f') + "49\n\n" ||
                found == "[]\nab=" + big('s') + "49\n\n");
    EXPECT_EQ(names(), Names{"UserSettings.txt"});
}

TEST_F(SettingsFile, LiesBelowAHomeOfAnyBytes)
{
    HomeFolder odd("h\xFFme \u65e5");
    const auto location = OS()->shell()->getFolderLocation(iShell::ePreferences);
    std::filesystem::create_directories(OSInternal::pathToSystem(location).c_str());
    {
        Settings settings(iSettings::eUser);
        settings.setValue("ab", "1", nullptr);
        settings.persist();
    }
    EXPECT_EQ(odd.read("h\xFFme \u65e5/" + name(iSettings::eUser)), "[]\nab=1\n\n");
    EXPECT_EQ(OSInternal::pathToSystem(Settings::getPath(iSettings::eGlobal)),
              odd.path("h\xFFme \u65e5/" + name(iSettings::eGlobal)).c_str());
}
