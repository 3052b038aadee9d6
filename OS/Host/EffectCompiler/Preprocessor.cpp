#include "OS/Host/EffectCompiler/Preprocessor.h"

#include "OS/Host/EffectCompiler/Syntax.h"

namespace EffectCompiler {
namespace {

constexpr std::size_t kMostWork = 2 * Limits::kTokens;
constexpr std::size_t kMostIncludes = 20'000;

} // namespace

void Preprocessor::addArgument(const std::string& argument)
{
    if (argument.starts_with("-I") && argument.size() > 2) {
        files_.addIncludeFolder(argument.substr(2));
        return;
    }
    if (!argument.starts_with("-D") || argument.size() < 3) {
        messages_.warning({}, "unknown argument '" + argument + "'");
        return;
    }
    std::string definition = argument.substr(2);
    const std::size_t equals = definition.find('=');
    if (equals == std::string::npos)
        definition += " 1";
    else
        definition[equals] = ' ';
    predefined_ += "#define " + definition + "\n";
}

std::vector<Token> Preprocessor::run(const SourceFiles::File& file)
{
    // The last opened is read first: what arguments define, at no line of the file.
    openFile(file, {});
    const SourceFiles::File arguments{file.path, keep(cleaned(predefined_))};
    open_.push_back(
        {&arguments, Lexer(arguments.text, {messages_.addFile(file.path), 0}), true, {}});

    std::vector<Token> result;
    while (!isStopped_) {
        Token token = expandNext();
        if (token.kind == Token::Kind::eEnd)
            break;
        if (token.kind == Token::Kind::eOther) {
            const bool isString = token.text.front() == '"';
            messages_.error(token.place, isString             ? "a string does not end"
                                         : token.text == "/*" ? "a comment does not end"
                                                              : "unexpected character '" +
                                                                    std::string(token.text) + "'");
            continue;
        }
        bytes_ += token.text.size();
        result.push_back(token);
        if (result.size() > Limits::kTokens || bytes_ > Limits::kSourceBytes)
            stop(token.place, "the effect is too long");
    }
    open_.clear();
    Token end;
    end.place = end_;
    result.push_back(end);
    return result;
}

Token Preprocessor::pull()
{
    while (!isStopped_ && spend(1)) {
        if (frames_.size() > barrier_) {
            Frame& top = frames_.back();
            if (top.next < top.tokens.size())
                return top.tokens[top.next++];
            if (top.macro)
                top.macro->isActive = false;
            frames_.pop_back();
            continue;
        }
        if (barrier_ != 0)
            break;
        return pullFromFile();
    }
    return {};
}

Token Preprocessor::pullFromFile()
{
    while (!open_.empty() && !isStopped_) {
        OpenFile& top = open_.back();
        Token token = top.lexer.next();
        token.spaceBefore = token.spaceBefore || top.isLineStart;
        if (!spend(1))
            break;
        if (token.kind == Token::Kind::eEnd) {
            closeFile();
            continue;
        }
        if (token.kind == Token::Kind::eNewline) {
            top.isLineStart = true;
            continue;
        }
        const bool isDirective = top.isLineStart && token.is("#");
        top.isLineStart = false;
        if (isDirective)
            readDirective(token);
        else if (!isSkipping() || token.text == "/*")
            return token;
    }
    return {};
}

Token Preprocessor::expandNext()
{
    for (;;) {
        Token token = pull();
        if (token.kind != Token::Kind::eName || token.isFinal)
            return token;
        if (isInCondition_ && token.text == "defined")
            return readDefined(token);
        if (expandBuiltIn(token))
            return token;
        const auto found = macros_.find(token.text);
        if (found == macros_.end())
            return token;
        const MacroRef macro = found->second;
        if (macro->isActive) {
            token.isFinal = true;
            return token;
        }
        if (!expandMacro(token, macro))
            return token;
    }
}

std::vector<Token> Preprocessor::expandAll(std::vector<Token> tokens)
{
    std::vector<Token> result;
    if (tokens.empty())
        return result;
    if (++nesting_ > Limits::kDepth) {
        stop(tokens.front().place, "macros are nested too deeply");
        return result;
    }
    // A barrier of 0 means that the file is read behind it: a frame below keeps it from 0.
    frames_.push_back({});
    const std::size_t outer = std::exchange(barrier_, frames_.size());
    frames_.push_back({nullptr, std::move(tokens), 0});
    for (Token token = expandNext(); token.kind != Token::Kind::eEnd; token = expandNext())
        result.push_back(token);
    frames_.resize(barrier_ - 1);
    barrier_ = outer;
    --nesting_;
    return result;
}

void Preprocessor::pushBack(const Token& token)
{
    if (token.kind != Token::Kind::eEnd)
        frames_.push_back({nullptr, {token}, 0});
}

void Preprocessor::openFile(const SourceFiles::File& file, SourcePlace from)
{
    bytes_ += file.text.size() / 4; // what includes itself soon ends
    if (open_.size() > static_cast<std::size_t>(Limits::kDepth))
        return stop(from, "includes are nested too deeply");
    if (++includes_ > kMostIncludes || bytes_ > Limits::kSourceBytes)
        return stop(from, "the effect includes too much");
    const SourcePlace place{messages_.addFile(file.path), 1};
    open_.push_back({&file, Lexer(file.text, place), true, {}});
}

void Preprocessor::closeFile()
{
    for (const Conditional& conditional : open_.back().conditionals)
        messages_.error(conditional.place, "#if without #endif");
    end_ = open_.back().lexer.place();
    open_.pop_back();
}

bool Preprocessor::isSkipping() const
{
    return !open_.empty() && !open_.back().conditionals.empty() &&
           !open_.back().conditionals.back().isActive;
}

bool Preprocessor::spend(std::size_t tokens)
{
    work_ += tokens;
    if (work_ > kMostWork)
        stop(open_.empty() ? end_ : open_.back().lexer.place(), "macros make too much text");
    return !isStopped_;
}

void Preprocessor::stop(SourcePlace place, const std::string& why)
{
    if (!isStopped_)
        messages_.error(place, why);
    isStopped_ = true;
}

std::string_view Preprocessor::keep(std::string text)
{
    bytes_ += text.size();
    if (bytes_ > Limits::kSourceBytes)
        stop(open_.empty() ? end_ : open_.back().lexer.place(), "macros make too much text");
    return madeTexts_.emplace_back(std::move(text));
}

Token Preprocessor::makeToken(Token::Kind kind, std::string text, SourcePlace place)
{
    Token token;
    token.kind = kind;
    token.text = keep(std::move(text));
    token.place = place;
    return token;
}

} // namespace EffectCompiler
