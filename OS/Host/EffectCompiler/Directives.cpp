// The part of the preprocessor that reads its directives.
#include "OS/Host/EffectCompiler/ConditionExpression.h"
#include "OS/Host/EffectCompiler/Preprocessor.h"
#include "OS/Host/EffectCompiler/Syntax.h"

#include <charconv>
#include <filesystem>

namespace EffectCompiler {
namespace {

constexpr std::size_t kMostParameters = 255;

/// The same for the same file, whatever way it was reached.
std::string identityOf(const std::string& path)
{
    std::error_code error;
    const auto canonical = std::filesystem::weakly_canonical(path, error);
    return error ? path : canonical.string();
}

std::string inQuotes(std::string_view text)
{
    return "'" + std::string(text) + "'";
}

} // namespace

void Preprocessor::readDirective(const Token& hash)
{
    // A newline stays for takeLine().
    Lexer ahead = open_.back().lexer;
    const Token name = ahead.next();
    if (name.kind == Token::Kind::eNewline || name.kind == Token::Kind::eEnd)
        return;
    open_.back().lexer = ahead;
    if (name.kind == Token::Kind::eName && readConditional(name))
        return;
    if (isSkipping()) {
        takeLine();
    } else if (name.isName("define")) {
        readDefine(name);
    } else if (name.isName("undef")) {
        readUndefine(name);
    } else if (name.isName("include")) {
        readInclude(name);
    } else if (name.isName("line")) {
        readLine(name, takeLine());
    } else if (name.isName("pragma")) {
        readPragma();
    } else if (name.isName("error") || name.isName("warning")) {
        std::string text(open_.back().lexer.restOfLine());
        text.erase(0, text.find_first_not_of(" \t"));
        if (name.text == "error")
            messages_.error(hash.place, "#error " + text);
        else
            messages_.warning(hash.place, "#warning " + text);
    } else if (name.kind == Token::Kind::eNumber) {
        std::vector<Token> line = takeLine();
        line.insert(line.begin(), name);
        readLine(name, line);
    } else {
        takeLine();
        messages_.error(hash.place, "unknown directive #" + std::string(name.text));
    }
}

/// @return whether it is a directive of that kind
bool Preprocessor::readConditional(const Token& name)
{
    std::vector<Conditional>& stack = open_.back().conditionals;
    if (name.text == "if" || name.text == "ifdef" || name.text == "ifndef") {
        Conditional conditional;
        conditional.place = name.place;
        conditional.isParentActive = !isSkipping();
        bool holds = false;
        if (!conditional.isParentActive) {
            takeLine();
        } else if (name.text == "if") {
            holds = evaluateCondition(name);
        } else {
            const std::vector<Token> line = takeLine();
            if (line.empty() || !line[0].isName())
                messages_.error(name.place, "#" + std::string(name.text) + " without a name");
            else
                holds = macros_.contains(line[0].text) == (name.text == "ifdef");
        }
        conditional.isActive = conditional.wasTaken = holds;
        open_.back().conditionals.push_back(conditional);
        return true;
    }
    const bool isElse = name.text == "else" || name.text == "elif";
    if (!isElse && name.text != "endif")
        return false;
    if (stack.empty() || (isElse && stack.back().hasElse)) {
        takeLine();
        messages_.error(name.place, "#" + std::string(name.text) + " without #if");
        return true;
    }
    Conditional& top = stack.back();
    if (!isElse) {
        takeLine();
        stack.pop_back();
    } else if (name.text == "else" || top.wasTaken || !top.isParentActive) {
        takeLine();
        top.hasElse = name.text == "else";
        top.isActive = name.text == "else" && top.isParentActive && !top.wasTaken;
        top.wasTaken = top.wasTaken || top.isActive;
    } else {
        const bool holds = evaluateCondition(name);
        stack.back().isActive = stack.back().wasTaken = holds;
    }
    return true;
}

bool Preprocessor::evaluateCondition(const Token& directive)
{
    isInCondition_ = true;
    const std::vector<Token> line = expandAll(takeLine());
    isInCondition_ = false;
    std::string fault;
    const auto value = EffectCompiler::evaluateCondition(line, fault);
    if (!value && !isStopped_)
        messages_.error(directive.place, fault);
    return value.value_or(0) != 0;
}

/// "defined NAME" or "defined(NAME)", whose name is not expanded.
Token Preprocessor::readDefined(const Token& keyword)
{
    Token name = pull();
    const bool hasParen = name.is("(");
    if (hasParen)
        name = pull();
    if (!name.isName() || (hasParen && !pull().is(")")))
        messages_.error(keyword.place, "'defined' without a name");
    Token value = keyword;
    value.kind = Token::Kind::eNumber;
    value.text = macros_.contains(name.text) ? "1" : "0";
    return value;
}

void Preprocessor::readDefine(const Token& directive)
{
    std::vector<Token> line = takeLine();
    if (line.empty() || !line[0].isName() || line[0].text == "defined") {
        messages_.error(directive.place, "#define without a name");
        return;
    }
    const std::string_view name = line[0].text;
    auto macro = std::make_shared<Macro>();
    line.erase(line.begin());
    if (!line.empty() && line[0].is("(") && !line[0].spaceBefore && !readParameters(line, *macro)) {
        messages_.error(directive.place,
                        "the parameters of macro " + inQuotes(name) + " do not end");
        return;
    }
    if (macro->parameters.size() > kMostParameters) {
        messages_.error(directive.place, "macro " + inQuotes(name) + " has too many parameters");
        return;
    }
    macro->body = std::move(line);
    MacroRef& known = macros_[name];
    if (known && !known->isSameAs(*macro))
        messages_.warning(directive.place, "macro " + inQuotes(name) + " is defined anew");
    known = macro;
}

/// Takes them from the front of the line.
bool Preprocessor::readParameters(std::vector<Token>& line, Macro& macro)
{
    macro.isFunction = true;
    std::size_t i = 1;
    for (; i < line.size() && !line[i].is(")"); ++i) {
        if (line[i].is("...")) {
            macro.isVariadic = true;
            // "rest..." names what is __VA_ARGS__ otherwise.
            if (i == 1 || line[i - 1].is(","))
                macro.parameters.push_back("__VA_ARGS__");
        } else if (line[i].isName() && !macro.isVariadic) {
            macro.parameters.push_back(line[i].text);
        } else if (!line[i].is(",")) {
            return false;
        }
    }
    if (i >= line.size())
        return false;
    line.erase(line.begin(), line.begin() + static_cast<std::ptrdiff_t>(i) + 1);
    return true;
}

void Preprocessor::readUndefine(const Token& directive)
{
    const std::vector<Token> line = takeLine();
    if (line.empty() || !line[0].isName())
        messages_.error(directive.place, "#undef without a name");
    else
        macros_.erase(line[0].text);
}

void Preprocessor::readInclude(const Token& directive)
{
    bool isSystem = false;
    std::string name;
    if (const auto header = open_.back().lexer.headerName(isSystem)) {
        name = *header;
        takeLine();
    } else {
        const std::vector<Token> line = expandAll(takeLine());
        if (!line.empty() && line[0].kind == Token::Kind::eString) {
            name = line[0].text.substr(1, line[0].text.size() - 2);
        } else if (line.size() > 2 && line[0].is("<")) {
            isSystem = true;
            for (std::size_t i = 1; i < line.size() && !line[i].is(">"); ++i)
                name += line[i].text;
        }
    }
    if (isStopped_)
        return;
    if (name.empty()) {
        messages_.error(directive.place, "#include without a file");
        return;
    }
    const SourceFiles::File* file = files_.find(name, open_.back().file->path, isSystem);
    if (!file) {
        isFileMissing_ = true;
        messages_.error(directive.place, "cannot read " + inQuotes(name));
    } else if (once_.empty() || !once_.contains(identityOf(file->path))) {
        openFile(*file, directive.place);
    }
}

void Preprocessor::readLine(const Token& directive, const std::vector<Token>& line)
{
    const std::vector<Token> tokens = expandAll(line);
    std::uint32_t number = 0;
    const std::string_view digits = tokens.empty() ? "" : tokens[0].text;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (digits.empty() || error != std::errc() || end != digits.data() + digits.size()) {
        if (!isStopped_)
            messages_.error(directive.place, "#line without a number");
        return;
    }
    SourcePlace place{directive.place.file, number};
    if (tokens.size() > 1 && tokens[1].kind == Token::Kind::eString)
        place.file =
            messages_.addFile(std::string(tokens[1].text.substr(1, tokens[1].text.size() - 2)));
    open_.back().lexer.placeNextLine(place);
}

void Preprocessor::readPragma()
{
    const std::vector<Token> line = takeLine();
    if (!line.empty() && line[0].isName("once"))
        once_.insert(identityOf(open_.back().file->path));
}

/// What is left of the directive; its newline stays.
std::vector<Token> Preprocessor::takeLine()
{
    std::vector<Token> line;
    Lexer& lexer = open_.back().lexer;
    for (;;) {
        Lexer ahead = lexer;
        const Token token = ahead.next();
        if (token.kind == Token::Kind::eNewline || token.kind == Token::Kind::eEnd || !spend(1))
            return line;
        lexer = ahead;
        line.push_back(token);
    }
}

} // namespace EffectCompiler
