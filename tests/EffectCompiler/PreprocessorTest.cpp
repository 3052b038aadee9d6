#include "OS/Host/EffectCompiler/Preprocessor.h"

#include "OS/Host/EffectCompiler/Syntax.h"

#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <ostream>

using namespace EffectCompiler;

namespace {

struct Outcome
{
    std::string text; ///< tokens with a space between
    std::string listing;
    std::vector<SourcePlace> places;
    std::vector<std::string> files;
};

Outcome preprocess(const std::string& text, const std::vector<std::string>& arguments = {},
                   const std::string& path = "/nowhere/e.fx")
{
    SourceFiles files;
    Messages messages;
    Preprocessor preprocessor(files, messages);
    for (const std::string& argument : arguments)
        preprocessor.addArgument(argument);
    Outcome outcome;
    for (const Token& token : preprocessor.run(*files.add(path, text))) {
        if (token.kind == Token::Kind::eEnd)
            break;
        outcome.text += (outcome.text.empty() ? "" : " ") + std::string(token.text);
        outcome.places.push_back(token.place);
    }
    outcome.listing = messages.listing();
    outcome.files = files.paths();
    return outcome;
}

struct Case
{
    std::string source;
    std::string tokens;
};

void PrintTo(const Case& each, std::ostream* stream)
{
    *stream << each.source;
}

class PreprocessorText : public testing::TestWithParam<Case>
{
};

/// A folder with files in it.
class Tree
{
public:
    void write(const std::string& name, const std::string& text)
    {
        const std::string path = folder_.path(name);
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        std::ofstream(path, std::ios::binary) << text;
    }
    std::string path(const std::string& name) const { return folder_.path(name); }

private:
    TemporaryFolder folder_;
};

} // namespace

TEST_P(PreprocessorText, Becomes)
{
    const Outcome outcome = preprocess(GetParam().source);
    EXPECT_EQ(outcome.text, GetParam().tokens);
    EXPECT_EQ(outcome.listing, "");
}

INSTANTIATE_TEST_SUITE_P(Tokens, PreprocessorText,
                         testing::Values(Case{"a+++b>>=c", "a ++ + b >>= c"},
                                         Case{"1.5h .5 2. 1.e3 1e-3f", "1.5h .5 2. 1.e3 1e-3f"},
                                         Case{"1.xxx 0.5.xx 1.f 0x1Fu 4x4",
                                              "1 . xxx 0.5 . xx 1.f 0x1Fu 4x4"},
                                         Case{"a/* b */c // d\n/* /* */e", "a c e"},
                                         Case{"\"a\\\"b//\" 'c'", "\"a\\\"b//\" 'c'"},
                                         Case{"\xEF\xBB\xBF"
                                              "a",
                                              "a"},
                                         Case{"a\\\nb c\\\r\nd", "ab cd"},
                                         Case{"// \xE4\xF6 bytes of any kind\r\rb", "b"}));

INSTANTIATE_TEST_SUITE_P(
    MacroExpansion, PreprocessorText,
    testing::Values(
        Case{"#define A B\n#define B 1\nA B", "1 1"}, Case{"#define A A B\n#define B A\nA", "A A"},
        Case{"#define f(x) x f\nf(1)(2)", "1 f ( 2 )"},
        Case{"#define f(x) [x]\nf\n(\na\n) f", "[ a ] f"},
        Case{"#define f(x,y) x-y\nf((1,2),f(3,4))", "( 1 , 2 ) - 3 - 4"},
        Case{"#define f() z\nf() f( )", "z z"}, Case{"#define f(x) <x>\nf()", "< >"},
        Case{"#define g(x) f(x)\n#define f(x) g(x)\nf(1)", "f ( 1 )"},
        Case{"#define O (\n#define f(x) x\nf O 1)", "f ( 1 )"},
        Case{"#define N 2\n#define C(a,b) a##b\nC(tex,2D) C(N,N) C(,x) C(x,) C(,)", "tex2D NN x x"},
        Case{"#define C(a,b) a##b\n#define D(a,b) C(a,b)\n#define N 2\nD(x,N)", "x2"},
        Case{"#define S(x) #x\nS( a  +\n\"b\\n\" ) S()", "\"a + \\\"b\\\\n\\\"\" \"\""},
        Case{"#define S(x) #x\n#define A 1\nS(A)", "\"A\""},
        Case{"#define P(f, ...) f(__VA_ARGS__);\nP(a) P(b,1) P(c,1,(2,3))",
             "a ( ) ; b ( 1 ) ; c ( 1 , ( 2 , 3 ) ) ;"},
        Case{"#define P(f, ...) f(0, ##__VA_ARGS__)\nP(a) P(b,1,2)", "a ( 0 ) b ( 0 , 1 , 2 )"},
        Case{"#define P(rest...) [rest]\nP(1,2) P()", "[ 1 , 2 ] [ ]"},
        Case{"#define A (x)\nA", "( x )"}, Case{"#define A 1\n#undef A\nA", "A"},
        Case{"a\n__LINE__ __FILE__", "a 2 \"/nowhere/e.fx\""},
        Case{"#define f(a) a\nf(\n#ifdef X\n1\n#else\n2\n#endif\n)", "2"}));

INSTANTIATE_TEST_SUITE_P(
    Conditions, PreprocessorText,
    testing::Values(
        Case{"#if 0\ndon't \"stop @ #error\n#else\na\n#endif", "a"},
        Case{"#ifdef A\n1\n#elif 1\n2\n#elif 1/0\n3\n#else\n4\n#endif", "2"},
        Case{"#if 0\n#if 1\n1\n#else\n2\n#endif\n#elif 0\n#else\n3\n#endif", "3"},
        Case{"#define A\n#if defined A && defined(A) && !defined(B)\n1\n#endif", "1"},
        Case{"#define D defined(A)\n#define A\n#if D\n1\n#endif", "1"},
        Case{"#define V(a,b) ((a)*100+(b))\n#if V(3,1) >= 301\n1\n#endif", "1"},
        Case{"#if 1 ? 2 : 1/0\n1\n#endif\n#if 0 && 1/0\n#else\n2\n#endif", "1 2"},
        Case{"#if -1 < 0 && ~0 == -1 && (7 % 4 | 8) == 11 && 010 == 8 && 'a' == 97\n1\n#endif",
             "1"},
        Case{"#if NAME\n#else\n1\n#endif\n#ifndef A\n2\n#endif // A", "1 2"},
        Case{"  #  if 1 /* multi\nline */\n1\n#\n# endif", "1"},
        Case{"#pragma pack_matrix(row_major)\n#if 0\n#nonsense\n#endif\n1", "1"}));

TEST(Preprocessor, TakesDefinitionsFromArguments)
{
    const Outcome outcome = preprocess("PROFILE ONE f(2) EMPTY",
                                       {"-DPROFILE=glslf", "-DONE", "-Df(x)=x*x", "-DEMPTY="});
    EXPECT_EQ(outcome.text, "glslf 1 2 * 2");
    EXPECT_EQ(outcome.listing, "");
    EXPECT_EQ(preprocess("a", {"-O3"}).listing,
              "/nowhere/e.fx : warning : unknown argument '-O3'\n");
}

TEST(Preprocessor, KeepsLines)
{
    const Outcome outcome =
        preprocess("#define T a \\\n b\n\n/*\n*/ T c\\\n\nd\n#line 70 \"o.fx\"\ne\n\nf");
    ASSERT_EQ(outcome.text, "a b c d e f");
    std::vector<std::uint32_t> lines;
    for (const SourcePlace place : outcome.places)
        lines.push_back(place.line);
    EXPECT_EQ(lines, (std::vector<std::uint32_t>{5, 5, 5, 7, 70, 72}));
    EXPECT_EQ(outcome.places[3].file, 0);
    EXPECT_EQ(outcome.places[5].file, 1);
}

TEST(Preprocessor, ReportsFaultsWhereTheyAre)
{
    const Case cases[] = {
        {"a\n#if 1\nb", "/nowhere/e.fx(2) : error : #if without #endif\n"},
        {"#endif", "/nowhere/e.fx(1) : error : #endif without #if\n"},
        {"#if 1\n#else\n#else\n#endif", "/nowhere/e.fx(3) : error : #else without #if\n"},
        {"\n#error no \"GPU\" here", "/nowhere/e.fx(2) : error : #error no \"GPU\" here\n"},
        {"#if\n#endif", "/nowhere/e.fx(1) : error : #if has no value\n"},
        {"#if defined +\n#endif", "/nowhere/e.fx(1) : error : 'defined' without a name\n"},
        {"#if (1\n#endif", "/nowhere/e.fx(1) : error : expected ')' in #if\n"},
        {"#if 1/0\n#endif", "/nowhere/e.fx(1) : error : division by zero in #if\n"},
        {"#if 2D\n#endif", "/nowhere/e.fx(1) : error : '2D' is no whole number\n"},
        {"#define f(x) x\nf(1,2)",
         "/nowhere/e.fx(2) : error : macro 'f' takes 1 arguments, not 2\n"},
        {"#define f(x) x\nf(1",
         "/nowhere/e.fx(2) : error : the arguments of macro 'f' do not end\n"},
        {"#define f(x", "/nowhere/e.fx(1) : error : the parameters of macro 'f' do not end\n"},
        {"#define 1", "/nowhere/e.fx(1) : error : #define without a name\n"},
        {"#define A 1\n#define A 2", "/nowhere/e.fx(2) : warning : macro 'A' is defined anew\n"},
        {"#define A 1\n#define A 1", ""},
        {"#frob", "/nowhere/e.fx(1) : error : unknown directive #frob\n"},
        {"a\n\"b", "/nowhere/e.fx(2) : error : a string does not end\n"},
        {"a\n/*\nb", "/nowhere/e.fx(2) : error : a comment does not end\n"},
        {"a @ b\nc \x01", "/nowhere/e.fx(1) : error : unexpected character '@'\n"
                          "/nowhere/e.fx(2) : error : unexpected character '\\x01'\n"},
        {"#include", "/nowhere/e.fx(1) : error : #include without a file\n"},
        {"\n#include \"gone.fxh\"\na", "/nowhere/e.fx(2) : error : cannot read 'gone.fxh'\n"},
    };
    for (const Case& each : cases)
        EXPECT_EQ(preprocess(each.source).listing, each.tokens) << each.source;
}

TEST(Preprocessor, FindsIncludesAsAuthorsWriteThem)
{
    Tree tree;
    tree.write("main/e.fx", "");
    tree.write("main/Sub/Common.fxh", "sub\n#include \"..\\inc.fxh\"\n#include <beside.fxh>");
    tree.write("main/inc.fxh", "inc");
    tree.write("main/Sub/beside.fxh", "beside");
    tree.write("path/inc.fxh", "wrong");
    tree.write("path/only.fxh", "only");
    const Outcome outcome =
        preprocess("#include \"sub\\common.FXH\"\n#define NAME <ONLY.fxh>\n#include NAME\n"
                   "#include \"only.fxh\"",
                   {"-I" + tree.path("path")}, tree.path("main/e.fx"));
    EXPECT_EQ(outcome.text, "sub inc beside only only");
    EXPECT_EQ(outcome.listing, "");
    EXPECT_EQ(outcome.files,
              (std::vector<std::string>{tree.path("main/e.fx"), tree.path("main/Sub/Common.fxh"),
                                        tree.path("main/inc.fxh"), tree.path("main/Sub/beside.fxh"),
                                        tree.path("path/only.fxh")}));
    // In angle brackets the folders come first.
    EXPECT_EQ(
        preprocess("#include <inc.fxh>", {"-I" + tree.path("path")}, tree.path("main/e.fx")).text,
        "wrong");
}

TEST(Preprocessor, NamesTheIncludedFileInItsFaults)
{
    Tree tree;
    tree.write("inc.fxh", "\n\n#error here");
    EXPECT_EQ(preprocess("#include \"inc.fxh\"", {}, tree.path("e.fx")).listing,
              tree.path("inc.fxh") + "(3) : error : #error here\n");
}

TEST(Preprocessor, ReadsAFileOnceWhereItSaysSo)
{
    Tree tree;
    tree.write("once.fxh", "#pragma once\n1");
    tree.write("guard.fxh", "#ifndef G\n#define G\n2\n#include \"guard.fxh\"\n#endif");
    const std::string twice =
        "#include \"once.fxh\"\n#include \"./ONCE.fxh\"\n#include \"guard.fxh\"\n"
        "#include \"guard.fxh\"";
    EXPECT_EQ(preprocess(twice, {}, tree.path("e.fx")).text, "1 2");
}

TEST(Preprocessor, RefusesWhatIsNoFile)
{
    Tree tree;
    std::filesystem::create_directories(tree.path("folder.fxh"));
    ASSERT_EQ(mkfifo(tree.path("fifo.fxh").c_str(), 0600), 0);
    for (const std::string name : {"folder.fxh", "fifo.fxh", "/dev/zero", ".", ""})
        EXPECT_NE(preprocess("#include \"" + name + "\"", {}, tree.path("e.fx")).listing, "")
            << name;
}

TEST(Preprocessor, StopsAtRingsOfIncludes)
{
    Tree tree;
    tree.write("a.fxh", "#include \"b.fxh\"\n#include \"b.fxh\"");
    tree.write("b.fxh", "#include \"a.fxh\"\n#include \"a.fxh\"");
    const std::string listing = preprocess("#include \"a.fxh\"", {}, tree.path("e.fx")).listing;
    EXPECT_NE(listing.find("includes are nested too deeply\n"), std::string::npos);
    EXPECT_EQ(std::count(listing.begin(), listing.end(), '\n'), 1);
}

TEST(Preprocessor, StopsWithOneErrorWhereTextExplodes)
{
    Tree tree;
    // Each step doubles: 2^60 of all.
    std::string objects = "#define A0 x x\n";
    std::string functions = "#define D(x) x x\n";
    std::string calls = "a";
    for (int i = 1; i <= 60; ++i) {
        const std::string name = "A" + std::to_string(i), before = "A" + std::to_string(i - 1);
        objects.append("#define ").append(name + " " + before + " " + before + "\n");
        calls.insert(0, "D(");
        calls += ")";
        tree.write(name, "#include \"" + before + "\"\n#include \"" + before + "\"\n");
    }
    tree.write("A0", "");
    std::string joined =
        "#define X0 xxxxxxxxxxxxxxxx\n#define J(a,b) a##b\n#define K(a,b) J(a,b)\n";
    for (int i = 1; i <= 40; ++i) {
        const std::string before = "X" + std::to_string(i - 1);
        joined += "#define X" + std::to_string(i) + " K(" + before + "," + before + ")\n";
    }
    const std::string cases[] = {objects + "A60", functions + calls, "#include \"A60\"",
                                 joined + "X40", std::string(Limits::kSourceBytes + 1, 'x')};
    for (const std::string& each : cases) {
        const Outcome outcome = preprocess(each, {}, tree.path("e.fx"));
        EXPECT_EQ(std::count(outcome.listing.begin(), outcome.listing.end(), '\n'), 1)
            << each.substr(0, 40) << outcome.listing;
        EXPECT_LE(outcome.places.size(), Limits::kTokens + 1);
    }
    // Nesting of another kind.
    EXPECT_NE(preprocess("#if " + std::string(100'000, '(') + "\n#endif").listing, "");
    EXPECT_NE(preprocess("#if " + std::string(100'000, '!') + "1\n#endif").listing, "");
    std::string deep = "a";
    for (int i = 0; i < 1000; ++i)
        deep = "D(" + deep + ")";
    EXPECT_NE(preprocess("#define D(x) x\n" + deep).listing, "");
}
