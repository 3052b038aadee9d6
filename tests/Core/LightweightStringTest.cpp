#include <OS/Core/LightweightString.h>

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

using Narrow = LightweightString<char>;
using Wide = LightweightString<wchar_t>;

} // namespace

TEST(LightweightString, RecordsHaveThePublishedCapacities)
{
    struct Case
    {
        std::uint32_t length, exact, growing;
    };
    for (const Case& c :
         {Case{1, 2, 2}, Case{5, 6, 8}, Case{7, 8, 8}, Case{8, 9, 16}, Case{255, 256, 256}}) {
        EXPECT_EQ(Narrow(c.length, 'x').capacity(), c.exact) << c.length;
        Narrow growing;
        growing.resizeFor(c.length);
        EXPECT_EQ(growing.capacity(), c.growing) << c.length;
    }
    EXPECT_EQ(Narrow("").capacity(), 0u) << "an empty string has no record";
}

TEST(LightweightString, ResizeForKeepsARecordOfItsOwnAndReplacesASharedOne)
{
    Narrow text;
    text.resizeFor(7);
    const char* record = text.c_str();
    text.resizeFor(3);
    EXPECT_EQ(text.c_str(), record);
    EXPECT_EQ(text.size(), 3u);
    EXPECT_EQ(text.c_str()[3], 0);
    const Narrow copy = text;
    text.resizeFor(3);
    EXPECT_NE(text.c_str(), record);
    EXPECT_EQ(copy.c_str(), record);
    text.resizeFor(0);
    EXPECT_TRUE(text.empty());
}

TEST(LightweightString, AWriteNeverReachesACopy)
{
    const std::vector<void (*)(Narrow&)> writes = {
        [](Narrow& s) { s.push_back('!'); },
        [](Narrow& s) { s.append("more"); },
        [](Narrow& s) { s.resize(2); },
        [](Narrow& s) { s.resize(20, '-'); },
        [](Narrow& s) { s.writableData()[0] = 'X'; },
        [](Narrow& s) { s.assign("other"); },
        [](Narrow& s) { s.erase(1, 2); },
        [](Narrow& s) { s.insert(1, "in"); },
        [](Narrow& s) { s.replaceAll("l", "L"); },
        [](Narrow& s) { s.pop_back(); },
        [](Narrow& s) { s.reserve(100); },
        [](Narrow& s) { s.clear(); },
    };
    for (std::size_t i = 0; i < writes.size(); ++i) {
        Narrow text("hello");
        const Narrow copy = text;
        writes[i](text);
        EXPECT_EQ(copy, "hello") << "write " << i;
    }
}

TEST(LightweightString, TextFromItsOwnRecordIsSafe)
{
    Narrow text("abcdef");
    text.append(text.view());
    EXPECT_EQ(text, "abcdefabcdef");
    text.assign(text.c_str() + 3, 3);
    EXPECT_EQ(text, "def");
    text.insert(1, text.view());
    EXPECT_EQ(text, "ddefef");
    for (int i = 0; i < 5; ++i)
        text.append(text.c_str() + 1, 1);
    EXPECT_EQ(text, "ddefefddddd");
}

// The same random operations on std::wstring give the same text.
TEST(LightweightString, BehavesLikeTheStandardStringUnderRandomWrites)
{
    std::mt19937 random(7);
    const auto below = [&](std::size_t n) { return static_cast<std::uint32_t>(random() % n); };
    Wide ours;
    std::wstring theirs;
    std::vector<std::pair<Wide, std::wstring>> copies;
    for (int step = 0; step < 20'000; ++step) {
        const std::wstring piece(below(9), static_cast<wchar_t>(L'a' + below(3)));
        const auto at = below(theirs.size() + 1);
        switch (below(9)) {
        case 0:
            ours.push_back(L'p');
            theirs.push_back(L'p');
            break;
        case 1:
            ours.append(piece);
            theirs.append(piece);
            break;
        case 2:
            ours.insert(at, piece);
            theirs.insert(at, piece);
            break;
        case 3:
            ours.erase(at, static_cast<std::uint32_t>(piece.size()));
            theirs.erase(at, piece.size());
            break;
        case 4:
            ours.resize(at, L'f');
            theirs.resize(at, L'f');
            break;
        case 5:
            ours = ours + piece.c_str();
            theirs = theirs + piece;
            break;
        case 6:
            ours = ours.substr(at / 2, 60);
            theirs = theirs.substr(at / 2, 60);
            break;
        case 7:
            copies.emplace_back(ours, theirs);
            break;
        case 8:
            EXPECT_EQ(ours.find(piece), theirs.find(piece) == std::wstring::npos
                                            ? Wide::npos
                                            : static_cast<std::uint32_t>(theirs.find(piece)));
            break;
        }
        ASSERT_EQ(ours.view(), theirs);
        ASSERT_EQ(ours.c_str()[ours.size()], 0);
        if (ours.size() > 300)
            ours.clear(), theirs.clear();
    }
    for (const auto& [copy, expected] : copies)
        ASSERT_EQ(copy.view(), expected);
}

TEST(LightweightString, FindsFromBothEnds)
{
    const Narrow path("/media/clips/clip.mov");
    EXPECT_EQ(path.find("clip"), 7u);
    EXPECT_EQ(path.find("clip", 8), 13u);
    EXPECT_EQ(path.rfind("clip"), 13u);
    EXPECT_EQ(path.rfind("clip", 12), 7u);
    EXPECT_EQ(path.find_last_of('/'), 12u);
    EXPECT_EQ(path.find_last_of("./"), 17u);
    EXPECT_EQ(path.find_first_of("cd"), 3u);
    EXPECT_EQ(path.find_first_not_of("/me"), 3u);
    EXPECT_EQ(path.find_last_not_of("vom"), 17u);
    EXPECT_EQ(path.find('x'), Narrow::npos);
    EXPECT_EQ(path.find("", 500), Narrow::npos);
    EXPECT_EQ(Narrow().find(""), 0u);
    EXPECT_TRUE(path.startsWith("/media") && path.endsWith(".mov") && path.contains("clips/"));
    EXPECT_FALSE(path.startsWith("/media/clips/clip.mov/more"));
    EXPECT_TRUE(Narrow().startsWith(""));
}

TEST(LightweightString, OrdersBytesUnsignedAndWideCharactersByValue)
{
    EXPECT_LT(Narrow("a"), Narrow("b"));
    EXPECT_LT(Narrow("ab"), Narrow("abc"));
    EXPECT_LT(Narrow("z"), Narrow("\xC3\xA9")) << "a byte above 127 is the larger";
    EXPECT_LT(Wide(L"z"), Wide(L"\u00E9"));
    EXPECT_LT(Narrow(), Narrow("a"));
    EXPECT_EQ(Narrow("a\0b", 3).compare(Narrow("a\0c", 3)), -1) << "a NUL ends nothing";
    EXPECT_NE(Narrow("a\0b", 3), Narrow("a"));
    EXPECT_EQ(Narrow(), "");
    EXPECT_EQ(Narrow(static_cast<const char*>(nullptr)), Narrow());
}

TEST(LightweightString, ComparesWithoutCase)
{
    EXPECT_TRUE(Narrow("Clip.MOV").equalsNoCase("clip.mov"));
    EXPECT_FALSE(Narrow("\xC3\x89").equalsNoCase("\xC3\xA9")) << "bytes beyond ASCII have no case";
    EXPECT_TRUE(Wide(L"\u00C9T\u00C9 \u0416").equalsNoCase(L"\u00E9t\u00E9 \u0436"));
    EXPECT_LT(Wide(L"ABC").compareNoCase(L"abd"), 0);
    EXPECT_GT(Wide(L"abcd").compareNoCase(L"ABC"), 0);
    EXPECT_EQ(Wide(L"\u00E9").toUpper(), L"\u00C9");
    EXPECT_EQ(Narrow("MiXed 1").toLower(), "mixed 1");
}

TEST(LightweightString, JoinsReplacesAndTrims)
{
    const std::vector<Narrow> parts = {"a", "", "b"};
    EXPECT_EQ(Narrow::join(parts, ", "), "a, , b");
    EXPECT_EQ(Narrow::join(std::vector<Narrow>(), ", "), "");
    EXPECT_EQ(Narrow("aaa").replaceAll("aa", "b"), "ba");
    EXPECT_EQ(Narrow("aXbX").replaceAll("X", "XX"), "aXXbXX");
    EXPECT_EQ(Narrow("abc").replaceAll("", "x"), "abc");
    EXPECT_EQ(Narrow(" \t text \n").trimmed(), "text");
    EXPECT_EQ(Narrow(" \n").trimmed(), "");
    EXPECT_EQ('<' + Narrow("x") + ">" + '!', "<x>!");
    EXPECT_EQ("pre" + Narrow("fix"), "prefix");
}

TEST(LightweightString, ServesAsAKey)
{
    std::unordered_map<Wide, int> hashed;
    std::map<Narrow, int> ordered;
    hashed[L"one"] = 1;
    ordered["b"] = 2;
    ordered["a"] = 1;
    EXPECT_EQ(hashed.at(Wide(L"one")), 1);
    EXPECT_EQ(ordered.begin()->first, "a");
    std::wstring_view view = hashed.begin()->first;
    EXPECT_EQ(Wide(view), L"one");
    int sum = 0;
    for (const wchar_t c : Wide(L"abc"))
        sum += static_cast<int>(c);
    EXPECT_EQ(sum, 'a' + 'b' + 'c');
}

TEST(LightweightString, RefusesLengthsBeyondItsRange)
{
    Narrow text("x");
    EXPECT_THROW(text.resizeFor(std::size_t(1) << 31), std::length_error);
    EXPECT_EQ(text, "x") << "a refused write loses nothing";
}
