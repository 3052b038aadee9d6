#include "support/BackgroundThread.h"
#include "support/OutputCapture.h"
#include <OS/Files/PathFunctions.h>

#include <OS.h>
#include <OS/Files/iFileManager.h>

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

using Items = std::vector<iFileManager::DirectoryItem>;

class DirectoryTest : public testing::Test
{
protected:
    DirectoryTest() : folder_(fs::path(testing::TempDir()) / ("listing" + std::to_string(getpid())))
    {
        fs::create_directories(folder_ / "b folder");
        std::ofstream(folder_ / "Clip01.MOV") << "12345";
        std::ofstream(folder_ / "a.b.c") << "";
        std::ofstream(folder_ / "no\xFFutf8.png") << "1";
        fs::create_symlink("b folder", folder_ / "link");
        fs::create_symlink("nowhere", folder_ / "dangling");
    }
    ~DirectoryTest() override { fs::remove_all(folder_); }

    std::wstring path(const wchar_t* rest) const { return folder_.wstring() + L"/" + rest; }
    Items list(const wchar_t* rest, bool files, bool directories) const
    {
        Items items;
        EXPECT_TRUE(
            OS()->fileMgr()->getDirectoryContents(path(rest).c_str(), items, files, directories));
        return items;
    }

    fs::path folder_;
};

} // namespace

TEST_F(DirectoryTest, ListsFilesAndFoldersByName)
{
    const Items all = list(L"", true, true);
    ASSERT_EQ(all.size(), 6u);
    EXPECT_EQ(all[0].name_, L"Clip01.MOV");
    EXPECT_EQ(all[0].sizeBytes_, 5u);
    EXPECT_FALSE(all[0].isDirectory_);
    EXPECT_GT(all[0].modified100ns_, 16'000'000'000'000'000u) << "100 ns units since 1970";
    EXPECT_EQ(all[2].name_, L"b folder");
    EXPECT_TRUE(all[2].isDirectory_);
    EXPECT_EQ(all[3].name_, L"dangling");
    EXPECT_TRUE(all[3].isLink_ && !all[3].isDirectory_);
    EXPECT_TRUE(all[4].isLink_ && all[4].isDirectory_) << "a link to a folder is one";
    EXPECT_EQ(list(L"", true, false).size(), 4u);
    EXPECT_EQ(list(L"", false, true).size(), 2u);
    EXPECT_EQ(list(L"*.mov", true, true).size(), 1u);
}

TEST_F(DirectoryTest, NamesThatAreNoUtf8OpenTheirFile)
{
    const Items found = list(L"no?utf8*", true, false);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_TRUE(OS()->fileMgr()->fileExists(path(L"").c_str() + found[0].name_));
}

TEST_F(DirectoryTest, WhatCannotBeReadAppendsNothing)
{
    Items items(1);
    iFileManager* files = OS()->fileMgr();
    EXPECT_FALSE(files->getDirectoryContents(path(L"missing").c_str(), items, true, true));
    EXPECT_FALSE(files->getDirectoryContents(path(L"a.b.c").c_str(), items, true, true));
    EXPECT_FALSE(files->getDirectoryContents(L"", items, true, true));
    EXPECT_EQ(items.size(), 1u);
    EXPECT_TRUE(files->fileExists(path(L"b folder").c_str()));
    EXPECT_FALSE(files->fileExists(path(L"dangling").c_str()));
    EXPECT_FALSE(files->fileExists(L""));
}

TEST_F(DirectoryTest, ListsBehindWhatIsThereAndInTheOrderOfCharacters)
{
    const fs::path odd = folder_ / "b folder";
    for (const char* name : {"b", "\xFF", "\xEF\xBF\xBD", "\xF0\x9F\x8E\xAC", "a", "B", " ", "\n"})
        std::ofstream(odd / name) << name;
    Items items(1);
    ASSERT_TRUE(
        OS()->fileMgr()->getDirectoryContents(path(L"b folder").c_str(), items, true, true));
    std::vector<std::wstring> names;
    for (const auto& item : items)
        names.emplace_back(item.name_.view());
    // The byte that is no character travels as U+DCFF.
    EXPECT_EQ(names, (std::vector<std::wstring>{L"", L"\n", L" ", L"B", L"a", L"b",
                                                std::wstring(1, static_cast<wchar_t>(0xDCFF)),
                                                L"\uFFFD", L"\U0001F3AC"}));
}

TEST_F(DirectoryTest, WildcardsStandOnlyInTheLastPart)
{
    std::ofstream(folder_ / "b folder" / "what?") << "1";
    EXPECT_EQ(list(L"b folder/*", true, false).size(), 1u);
    EXPECT_EQ(list(L"b folder/nothing*", true, true).size(), 0u);
    EXPECT_EQ(list(L"?????", false, true).size(), 0u);
    EXPECT_EQ(list(L"????", false, true).size(), 1u) << "the link to a folder";
    fs::create_directory(folder_ / "all*");
    std::ofstream(folder_ / "all*" / "inside") << "";
    EXPECT_EQ(list(L"all*", true, true).size(), 1u) << "a folder of that very name comes first";
    Items items;
    EXPECT_FALSE(OS()->fileMgr()->getDirectoryContents(path(L"b*/x*").c_str(), items, true, true));
}

// Every answer is a whole one: false, or the entries that were there all the time.
TEST_F(DirectoryTest, EntriesAndFoldersMayVanishMeanwhile)
{
    std::atomic<bool> stop{false};
    for (const char* name : {"steady1", "steady2"})
        std::ofstream(folder_ / "b folder" / name) << "1";
    BackgroundThread changer([&] {
        for (int i = 0; !stop; ++i) {
            const fs::path file = folder_ / "b folder" / ("passing" + std::to_string(i % 50));
            std::ofstream(file) << "1";
            fs::create_directory(folder_ / "passing");
            fs::remove(file);
            fs::remove(folder_ / "passing");
        }
    });
    for (int i = 0; i < 300; ++i) {
        const Items items = list(L"b folder/steady*", true, false);
        EXPECT_EQ(items.size(), 2u);
        Items passing(3);
        if (!OS()->fileMgr()->getDirectoryContents(path(L"passing").c_str(), passing, true, true)) {
            EXPECT_EQ(passing.size(), 3u);
        }
        list(L"b folder", true, true);
    }
    stop = true;
}

TEST(FileManager, KnowsTheRunningProgram)
{
    iFileManager* files = OS()->fileMgr();
    LightweightString<wchar_t> folder, name;
    EXPECT_EQ(outputOf([&] {
                  folder = files->getAppPath();
                  name = files->getAppName();
              }),
              "");
    EXPECT_EQ(name, L"test_files");
    EXPECT_TRUE(folder.endsWith(L"/"));
    EXPECT_TRUE(files->fileExists(folder + name));
    EXPECT_EQ(files->getAppDescription(), name) << "a name of its own";
    EXPECT_EQ(files->getPathSeparator(), L'/');
}

TEST(Wildcards, MatchInOnePass)
{
    struct Case
    {
        const wchar_t* name;
        const wchar_t* pattern;
        bool matches;
    };
    for (const Case& c : {
             Case{L"Clip01.MOV", L"clip??.mov", true},
             Case{L"a.b.c", L"*.c", true},
             Case{L"abc", L"abc*", false},
             Case{L"abab", L"*b", false},
             Case{L"ab", L"*b", true},
             Case{L"abc", L"*", true},
             Case{L"", L"", true},
             Case{L"", L"*", false},
             Case{L"abc", L"a?", false},
             Case{L"abc", L"a*?*", true},
             Case{L"name", L"*.", true},
             Case{L"name.x", L"*.y", false},
             Case{L"a.b", L"*..b", true},
             Case{L"abC", L"*c", false},
             Case{L"abc", L"", false},
         })
        EXPECT_EQ(matchingFile(c.name, c.pattern), c.matches)
            << std::string(c.name, c.name + wcslen(c.name)) << " against "
            << std::string(c.pattern, c.pattern + wcslen(c.pattern));
}
