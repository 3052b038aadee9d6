#include "OS/Mac/Files/FileManager.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

std::string system(const wchar_t* path)
{
    return FileManager::TqtoOS(path).c_str();
}

std::wstring wide(const char* path)
{
    return std::wstring(FileManager::OStoTq(path).view());
}

} // namespace

TEST(PathText, TranslatesNetworkPathsOneWayOnly)
{
    EXPECT_EQ(system(L"//nas/media/clip"), "smb://nas/media/clip");
    EXPECT_EQ(wide("smb://nas/media/clip"), L"/nas/media/clip");
    EXPECT_EQ(system(L"/Users/x//y"), "/Users/x//y");
    EXPECT_EQ(system(L"//"), "smb://");
    EXPECT_EQ(system(L""), "");
    EXPECT_EQ(wide("smb:/x"), L"smb:/x");
    EXPECT_TRUE(FileManager::isURI(LightweightString<wchar_t>(L"smb://x")));
    EXPECT_FALSE(FileManager::isURI(LightweightString<char>("/a:/b")));
}

TEST(PathText, EncodesEveryPlaneAsUtf8)
{
    EXPECT_EQ(system(L"/\u00E9\u20AC\U0001F3AC"), "/\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xAC");
    EXPECT_EQ(wide("/\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xAC"), L"/\u00E9\u20AC\U0001F3AC");
    const wchar_t beyond[] = {L'/', static_cast<wchar_t>(0x110000), 0};
    EXPECT_EQ(system(beyond), "/\xEF\xBF\xBD");
}

// Any name that the system can hold comes back byte for byte.
TEST(PathText, CarriesBytesThatAreNoUtf8)
{
    for (const char* name : {"/\xFF", "/\xC3(", "/\xE2\x82", "/\xC0\xAF", "/\xED\xA0\x80",
                             "/\xF4\x90\x80\x80", "/ok\x80\xC3\xA9"})
        EXPECT_EQ(FileManager::TqtoOS(FileManager::OStoTq(name)), name);
    EXPECT_EQ(wide("/\xFF"), (std::wstring{L'/', static_cast<wchar_t>(0xDCFF)}));

    std::mt19937 random(3);
    for (int i = 0; i < 20'000; ++i) {
        std::string name = "x";
        for (auto n = random() % 12; n > 0; --n)
            name += static_cast<char>(1 + random() % 255);
        ASSERT_EQ(FileManager::TqtoOS(FileManager::OStoTq(name.c_str())), name.c_str());
    }
}
