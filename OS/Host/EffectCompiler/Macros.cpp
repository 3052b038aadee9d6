// The part of the preprocessor that expands macros.
#include "OS/Host/EffectCompiler/Preprocessor.h"
#include "OS/Host/EffectCompiler/Syntax.h"

#include <algorithm>
#include <optional>

namespace EffectCompiler {

bool Preprocessor::Macro::isSameAs(const Macro& other) const
{
    const auto isSame = [](const Token& a, const Token& b) {
        return a.kind == b.kind && a.text == b.text;
    };
    return isFunction == other.isFunction && isVariadic == other.isVariadic &&
           parameters == other.parameters &&
           std::equal(body.begin(), body.end(), other.body.begin(), other.body.end(), isSame);
}

int Preprocessor::Macro::parameterOf(const Token& token) const
{
    if (token.kind != Token::Kind::eName)
        return -1;
    const auto found = std::find(parameters.begin(), parameters.end(), token.text);
    return found == parameters.end() ? -1 : static_cast<int>(found - parameters.begin());
}

/// @return whether the name was one to expand: what it makes is read next
bool Preprocessor::expandMacro(const Token& name, const MacroRef& macro)
{
    Arguments arguments;
    if (macro->isFunction) {
        const Token open = pull();
        if (!open.is("(")) {
            pushBack(open);
            return false;
        }
        if (!collectArguments(name, *macro, arguments))
            return true;
    }
    std::vector<Token> tokens = substitute(name, *macro, arguments);
    if (!spend(tokens.size()))
        return true;
    if (!tokens.empty())
        tokens.front().spaceBefore = name.spaceBefore;
    macro->isActive = true;
    frames_.push_back({macro, std::move(tokens), 0});
    return true;
}

bool Preprocessor::collectArguments(const Token& name, const Macro& macro, Arguments& arguments)
{
    arguments.emplace_back();
    int depth = 0;
    for (;;) {
        Token token = pull();
        if (token.kind == Token::Kind::eEnd) {
            if (!isStopped_)
                messages_.error(name.place, "the arguments of macro '" + std::string(name.text) +
                                                "' do not end");
            return false;
        }
        if (token.is(")") && depth-- == 0)
            break;
        depth += token.is("(");
        const bool isRest = macro.isVariadic && arguments.size() >= macro.parameters.size();
        if (token.is(",") && depth == 0 && !isRest)
            arguments.emplace_back();
        else
            arguments.back().push_back(token);
    }
    const std::size_t wanted = macro.parameters.size();
    if (wanted == 0 && arguments.size() == 1 && arguments[0].empty())
        arguments.clear();
    if (macro.isVariadic && arguments.size() + 1 == wanted)
        arguments.emplace_back();
    if (arguments.size() == wanted)
        return true;
    messages_.error(name.place, "macro '" + std::string(name.text) + "' takes " +
                                    std::to_string(wanted) + " arguments, not " +
                                    std::to_string(arguments.size()));
    return false;
}

std::vector<Token> Preprocessor::substitute(const Token& name, const Macro& macro,
                                            const Arguments& arguments)
{
    std::vector<Token> result;
    std::vector<std::optional<std::vector<Token>>> expanded(arguments.size());
    bool isPasting = false;
    bool isLeftEmpty = true; // of what may be pasted to
    const auto append = [&](const std::vector<Token>& tokens) {
        std::size_t first = 0;
        if (isPasting && !isLeftEmpty && !tokens.empty()) {
            bool isOne = false;
            const Token joined = pasted(result.back(), tokens.front(), isOne);
            if (isOne) {
                result.back() = joined;
                first = 1;
            }
        }
        isLeftEmpty = tokens.empty() && (!isPasting || isLeftEmpty);
        isPasting = false;
        if (spend(tokens.size()))
            result.insert(result.end(), tokens.begin() + static_cast<std::ptrdiff_t>(first),
                          tokens.end());
    };

    const std::vector<Token>& body = macro.body;
    for (std::size_t i = 0; i < body.size() && !isStopped_; ++i) {
        Token token = body[i];
        token.place = name.place;
        if (token.is("##") && i != 0 && i + 1 < body.size()) {
            isPasting = true;
            // ", ## __VA_ARGS__" without any takes the comma away.
            const bool isRest = macro.isVariadic && macro.parameterOf(body[i + 1]) + 1 ==
                                                        static_cast<int>(macro.parameters.size());
            if (isRest && !result.empty() && result.back().is(",")) {
                if (arguments.back().empty())
                    result.pop_back();
                isLeftEmpty = true;
            }
            continue;
        }
        const int stringized = macro.isFunction && token.is("#") && i + 1 < body.size()
                                   ? macro.parameterOf(body[i + 1])
                                   : -1;
        if (stringized >= 0) {
            append({this->stringized(arguments[static_cast<std::size_t>(stringized)], name.place)});
            ++i;
            continue;
        }
        const int parameter = macro.parameterOf(token);
        if (parameter < 0) {
            append({token});
            continue;
        }
        const auto index = static_cast<std::size_t>(parameter);
        const bool isOperand = isPasting || (i + 1 < body.size() && body[i + 1].is("##"));
        if (!isOperand && !expanded[index])
            expanded[index] = expandAll(arguments[index]);
        append(isOperand ? arguments[index] : *expanded[index]);
    }
    return result;
}

/// @param isOne gets whether they make one token together
Token Preprocessor::pasted(const Token& left, const Token& right, bool& isOne)
{
    const std::string_view text = keep(std::string(left.text).append(right.text));
    Lexer lexer(text, left.place);
    Token token = lexer.next();
    isOne = token.text.size() == text.size() && token.kind != Token::Kind::eOther;
    token.spaceBefore = left.spaceBefore;
    return token;
}

Token Preprocessor::stringized(const std::vector<Token>& tokens, SourcePlace place)
{
    std::string text = "\"";
    for (const Token& token : tokens) {
        if (token.spaceBefore && text.size() > 1)
            text += ' ';
        const bool isQuoted =
            token.kind == Token::Kind::eString || token.kind == Token::Kind::eCharacter;
        for (const char character : token.text) {
            if (isQuoted && (character == '"' || character == '\\'))
                text += '\\';
            text += character;
        }
        if (text.size() > Limits::kSourceBytes)
            break;
    }
    return makeToken(Token::Kind::eString, text + "\"", place);
}

bool Preprocessor::expandBuiltIn(Token& token)
{
    if (token.text == "__LINE__") {
        token = makeToken(Token::Kind::eNumber, std::to_string(token.place.line), token.place);
        return true;
    }
    if (token.text == "__FILE__") {
        std::string text = "\"";
        for (const char character : messages_.files()[token.place.file]) {
            if (character == '"' || character == '\\')
                text += '\\';
            text += character;
        }
        token = makeToken(Token::Kind::eString, text + "\"", token.place);
        return true;
    }
    return false;
}

} // namespace EffectCompiler
