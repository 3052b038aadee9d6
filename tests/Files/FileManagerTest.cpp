#include <OS/Files/PathFunctions.h>
#include "support/OutputCapture.h"

#include <OS.h>
#include <OS/Files/iFileManager.h>

#include <gtest/gtest.h>

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
