#pragma once

#include "OS/Host/EffectCompiler/Lexer.h"
#include "OS/Host/EffectCompiler/Messages.h"
#include "OS/Host/EffectCompiler/SourceFiles.h"
#include "OS/Host/EffectCompiler/Token.h"

#include <deque>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace EffectCompiler {

/// Turns a file with its includes into tokens, as C's preprocessor does (ISO/IEC 9899, 6.10), with
/// some liberties that effect files take: directives within a macro's arguments, an empty
/// __VA_ARGS__, and any text in what is skipped. Tokens keep the lines that they stand on; what a
/// macro makes stands where its name does.
///
/// It stops with one error when what it makes exceeds Limits.
class Preprocessor
{
public:
    /// @param files and this keep the texts that tokens point into, and must live as long as they
    Preprocessor(SourceFiles& files, Messages& messages) : files_(files), messages_(messages) {}

    /// "-DNAME=VALUE", "-DNAME", "-IFOLDER"; anything else is a warning.
    void addArgument(const std::string& argument);
    /// @return what is left of the file, the last one eEnd
    std::vector<Token> run(const SourceFiles::File& file);

    /// Whether an include was not found.
    bool isFileMissing() const { return isFileMissing_; }

private:
    struct Macro
    {
        bool isFunction = false;
        bool isVariadic = false;
        bool isActive = false; ///< being expanded
        std::vector<std::string_view> parameters;
        std::vector<Token> body;

        bool isSameAs(const Macro& other) const;
        /// @return its index, or -1
        int parameterOf(const Token& token) const;
    };
    using MacroRef = std::shared_ptr<Macro>;
    using Arguments = std::vector<std::vector<Token>>;

    /// Tokens waiting to be read again.
    struct Frame
    {
        MacroRef macro; ///< whose expansion it is; may be null
        std::vector<Token> tokens;
        std::size_t next = 0;
    };

    struct Conditional
    {
        SourcePlace place;
        bool isParentActive = true;
        bool isActive = true;
        bool wasTaken = false;
        bool hasElse = false;
    };

    struct OpenFile
    {
        const SourceFiles::File* file;
        Lexer lexer;
        bool isLineStart = true;
        std::vector<Conditional> conditionals;
    };

    // Reading
    Token pull();
    Token pullFromFile();
    Token expandNext();
    std::vector<Token> expandAll(std::vector<Token> tokens);
    void pushBack(const Token& token);
    void openFile(const SourceFiles::File& file, SourcePlace from);
    void closeFile();
    bool isSkipping() const;

    // Macros: Macros.cpp
    bool expandMacro(const Token& name, const MacroRef& macro);
    bool collectArguments(const Token& name, const Macro& macro, Arguments& arguments);
    std::vector<Token> substitute(const Token& name, const Macro& macro,
                                  const Arguments& arguments);
    Token pasted(const Token& left, const Token& right, bool& isOne);
    Token stringized(const std::vector<Token>& tokens, SourcePlace place);
    bool expandBuiltIn(Token& token);

    // Directives: Directives.cpp
    void readDirective(const Token& hash);
    bool readConditional(const Token& name);
    void readDefine(const Token& directive);
    bool readParameters(std::vector<Token>& line, Macro& macro);
    void readUndefine(const Token& directive);
    void readInclude(const Token& directive);
    void readLine(const Token& directive, const std::vector<Token>& line);
    void readPragma();
    bool evaluateCondition(const Token& directive);
    Token readDefined(const Token& keyword);
    std::vector<Token> takeLine();

    /// Counts work, and stops when there is too much of it.
    bool spend(std::size_t tokens);
    void stop(SourcePlace place, const std::string& why);
    std::string_view keep(std::string text);
    Token makeToken(Token::Kind kind, std::string text, SourcePlace place);

    SourceFiles& files_;
    Messages& messages_;
    std::unordered_map<std::string_view, MacroRef> macros_;
    std::vector<OpenFile> open_;
    std::vector<Frame> frames_;
    std::size_t barrier_ = 0; ///< frames below are not read
    std::set<std::string> once_;
    std::deque<std::string> madeTexts_;
    std::string predefined_;
    SourcePlace end_;
    std::size_t work_ = 0;
    std::size_t bytes_ = 0;
    std::size_t includes_ = 0;
    int nesting_ = 0;
    bool isInCondition_ = false; ///< "defined" means something
    bool isStopped_ = false;
    bool isFileMissing_ = false;
};

} // namespace EffectCompiler
