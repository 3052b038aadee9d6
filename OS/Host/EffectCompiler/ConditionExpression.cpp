#include "OS/Host/EffectCompiler/ConditionExpression.h"

#include "OS/Host/EffectCompiler/Operators.h"
#include "OS/Host/EffectCompiler/Syntax.h"

#include <charconv>
#include <limits>

namespace EffectCompiler {
namespace {

/// Wraps around, as the machine does.
std::int64_t wrapped(std::uint64_t value)
{
    return static_cast<std::int64_t>(value);
}

std::int64_t applied(std::string_view symbol, std::int64_t a, std::int64_t b)
{
    const auto ua = static_cast<std::uint64_t>(a);
    const auto ub = static_cast<std::uint64_t>(b);
    const bool isOverflow = b == -1 && a == std::numeric_limits<std::int64_t>::min();
    if (symbol == "||")
        return a != 0 || b != 0;
    if (symbol == "&&")
        return a != 0 && b != 0;
    if (symbol == "|")
        return a | b;
    if (symbol == "^")
        return a ^ b;
    if (symbol == "&")
        return a & b;
    if (const std::optional<bool> holds = compared(symbol, a, b))
        return *holds;
    if (symbol == "<<")
        return ub < 64 ? wrapped(ua << ub) : 0;
    if (symbol == ">>")
        return a >> (ub < 64 ? ub : 63);
    if (symbol == "+")
        return wrapped(ua + ub);
    if (symbol == "-")
        return wrapped(ua - ub);
    if (symbol == "*")
        return wrapped(ua * ub);
    if (b == 0 || isOverflow)
        return 0;
    return symbol == "/" ? a / b : a % b;
}

class Evaluator
{
public:
    explicit Evaluator(const std::vector<Token>& tokens) : tokens_(tokens) {}

    std::optional<std::int64_t> run(std::string& fault)
    {
        const std::int64_t value = conditional(true);
        if (position_ < tokens_.size())
            fail("unexpected '" + std::string(tokens_[position_].text) + "' in #if");
        fault = fault_;
        return fault_.empty() ? std::optional(value) : std::nullopt;
    }

private:
    bool accept(std::string_view symbol)
    {
        if (position_ >= tokens_.size() || !tokens_[position_].is(symbol))
            return false;
        ++position_;
        return true;
    }

    void fail(const std::string& text)
    {
        if (fault_.empty())
            fault_ = text;
        position_ = tokens_.size();
    }

    /// @param isUsed whether the value counts; a division by zero in what is not used is no fault
    std::int64_t conditional(bool isUsed)
    {
        if (++depth_ > Limits::kDepth)
            fail("#if is nested too deeply");
        const std::int64_t condition = binary(1, isUsed);
        std::int64_t result = condition;
        if (accept("?")) {
            const std::int64_t first = conditional(isUsed && condition != 0);
            if (!accept(":"))
                fail("expected ':' in #if");
            const std::int64_t second = conditional(isUsed && condition == 0);
            result = condition != 0 ? first : second;
        }
        --depth_;
        return result;
    }

    std::int64_t binary(int lowest, bool isUsed)
    {
        std::int64_t left = unary(isUsed);
        for (;;) {
            const BinaryOperator* found = nullptr;
            for (const BinaryOperator& each : kBinaryOperators) {
                if (position_ < tokens_.size() && tokens_[position_].is(each.symbol))
                    found = &each;
            }
            if (!found || found->precedence < lowest)
                return left;
            ++position_;
            const bool isDecided =
                (found->symbol == "&&" && left == 0) || (found->symbol == "||" && left != 0);
            const std::int64_t right = binary(found->precedence + 1, isUsed && !isDecided);
            if (isUsed && right == 0 && found->precedence == 10 && found->symbol != "*")
                fail("division by zero in #if");
            left = applied(found->symbol, left, right);
        }
    }

    std::int64_t unary(bool isUsed)
    {
        if (position_ >= tokens_.size()) {
            fail("#if has no value");
            return 0;
        }
        if (++depth_ > Limits::kDepth)
            fail("#if is nested too deeply");
        std::int64_t value = 0;
        if (accept("!"))
            value = unary(isUsed) == 0;
        else if (accept("-"))
            value = wrapped(0 - static_cast<std::uint64_t>(unary(isUsed)));
        else if (accept("+"))
            value = unary(isUsed);
        else if (accept("~"))
            value = ~unary(isUsed);
        else
            value = primary(isUsed);
        --depth_;
        return value;
    }

    std::int64_t primary(bool isUsed)
    {
        if (accept("(")) {
            const std::int64_t value = conditional(isUsed);
            if (!accept(")"))
                fail("expected ')' in #if");
            return value;
        }
        if (position_ >= tokens_.size()) {
            fail("#if has no value");
            return 0;
        }
        const Token& token = tokens_[position_++];
        if (token.kind == Token::Kind::eName)
            return token.text == "true";
        if (token.kind == Token::Kind::eCharacter && token.text.size() == 3)
            return static_cast<unsigned char>(token.text[1]);
        if (token.kind == Token::Kind::eNumber)
            return number(token);
        fail("unexpected '" + std::string(token.text) + "' in #if");
        return 0;
    }

    std::int64_t number(const Token& token)
    {
        std::string_view digits = token.text;
        const bool isHex = digits.starts_with("0x") || digits.starts_with("0X");
        if (isHex)
            digits.remove_prefix(2);
        std::uint64_t value = 0;
        const int base = isHex ? 16 : digits.starts_with("0") && digits.size() > 1 ? 8 : 10;
        const auto [end, error] =
            std::from_chars(digits.data(), digits.data() + digits.size(), value, base);
        digits.remove_prefix(static_cast<std::size_t>(end - digits.data()));
        if (error != std::errc() || digits.find_first_not_of("uUlL") != std::string_view::npos)
            fail("'" + std::string(token.text) + "' is no whole number");
        return wrapped(value);
    }

    const std::vector<Token>& tokens_;
    std::size_t position_ = 0;
    std::string fault_;
    int depth_ = 0;
};

} // namespace

std::optional<std::int64_t> evaluateCondition(const std::vector<Token>& tokens, std::string& fault)
{
    return Evaluator(tokens).run(fault);
}

} // namespace EffectCompiler
