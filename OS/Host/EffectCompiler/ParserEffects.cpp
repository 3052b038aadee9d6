// The part of the parser that reads what makes a program an effect: annotations, techniques, passes
// and states.
#include "OS/Host/EffectCompiler/EffectValues.h"
#include "OS/Host/EffectCompiler/Literals.h"
#include "OS/Host/EffectCompiler/Parser.h"

#include <algorithm>

namespace EffectCompiler {

/// "< string UIName = "Gain"; float UIMax = 4; >", or nothing.
std::vector<Annotation> Parser::parseAnnotations()
{
    std::vector<Annotation> annotations;
    if (!accept("<"))
        return annotations;
    while (!peek().is(">") && !peek().is(">=")) {
        if (peek().kind == Token::Kind::eEnd)
            failUnexpected();
        try {
            if (!accept(";"))
                parseAnnotation(annotations);
        } catch (const Fault&) {
            while (!peek().is(";") && !peek().is(">") && !peek().is("{") && !peek().is("}") &&
                   peek().kind != Token::Kind::eEnd)
                take();
            if (!peek().is(";") && !peek().is(">"))
                throw;
        }
    }
    // "< .. >= 1" ends the annotations and begins the value.
    if (peek().is(">="))
        tokens_[position_].text.remove_prefix(1);
    else
        take();
    return annotations;
}

void Parser::parseAnnotation(std::vector<Annotation>& annotations)
{
    parseQualifiers();
    const SourcePlace start = peek().place;
    const Type base = parseType();
    if (base.scalar == Type::Scalar::eVoid || base.scalar > Type::Scalar::eString)
        failAt(start, "annotations are bool, int, float or string, not " + nameOf(base));
    do {
        const SourcePlace place = peek().place;
        Annotation annotation;
        annotation.name = expectName("annotation");
        Type type = base;
        addDimensions(type, parseDimensions(), place);
        expect("=");
        // No comparison: ">" ends it all.
        const Expression* value = peek().is("{") ? parseInitialiser() : parseBinary(9);
        if (!type.dims.empty() && type.dims[0] == 0)
            type.dims[0] = static_cast<int>(std::max<std::size_t>(value->operands.size(), 1));
        const auto result = valueOf(*value, type, evaluator_);
        if (!result)
            failAt(place, "the value of annotation '" + annotation.name + "' is no constant " +
                              nameOf(type));
        annotation.value = *result;
        annotations.push_back(std::move(annotation));
    } while (accept(","));
    if (!peek().is(">") && !peek().is(">="))
        expect(";");
}

void Parser::parseTechnique()
{
    TechniqueSyntax technique;
    const Token keyword = take();
    technique.place = keyword.place;
    if (peek().isName())
        technique.name = take().text;
    technique.annotations = parseAnnotations();
    if (keyword.text.ends_with("10") || keyword.text.ends_with("11")) {
        // Their passes call functions where ours have states.
        messages_.warning(technique.place, "techniques of this kind are left out");
        return skipBrackets();
    }
    expect("{");
    while (!peek().is("}")) {
        if (peek().kind == Token::Kind::eEnd)
            failAt(technique.place, "'{' without '}'");
        const std::size_t start = position_;
        try {
            parsePass(technique);
        } catch (const Fault&) {
            recover(start);
        }
    }
    take();
    accept(";");
    tree_.techniques.push_back(std::move(technique));
}

void Parser::parsePass(TechniqueSyntax& technique)
{
    if (accept(";"))
        return;
    if (!isKeyword(peek(), "pass"))
        fail("expected a pass before '" + std::string(peek().text) + "'");
    PassSyntax pass;
    pass.place = take().place;
    if (peek().isName())
        pass.name = take().text;
    pass.annotations = parseAnnotations();
    expect("{");
    pass.states = parseStates();
    expect("}");
    technique.passes.push_back(std::move(pass));
}

/// Up to the "}".
std::vector<State> Parser::parseStates()
{
    std::vector<State> states;
    while (!peek().is("}")) {
        if (peek().kind == Token::Kind::eEnd)
            failUnexpected();
        const std::size_t start = position_;
        try {
            if (!accept(";"))
                states.push_back(parseState());
        } catch (const Fault&) {
            recover(start);
        }
    }
    return states;
}

State Parser::parseState()
{
    State state;
    state.place = peek().place;
    if (!peek().isName())
        failUnexpected();
    state.name = take().text;
    if (accept("[")) {
        const auto index = evaluator_.evaluateInt(*parseExpression());
        expect("]");
        if (!index || *index < 0 || *index > Limits::kElements)
            failAt(state.place,
                   "the index of '" + state.name + "' must be a constant whole number");
        state.index = *index;
    }
    expect("=");
    parseStateValue(state);
    if (!peek().is("}")) // the last of a block may go without
        expect(";");
    return state;
}

void Parser::parseStateValue(State& state)
{
    const SourcePlace place = peek().place;
    if (isKeyword(peek(), "compile") && peek(1).isName() && peek(2).isName()) {
        take();
        state.profile = take().text;
        state.entry = take().text;
        state.arguments = parseArguments();
    } else if (isKeyword(peek(), "asm") && peek(1).is("{")) {
        take();
        state.profile = "asm";
        skipBrackets();
    } else if (accept("<")) {
        if (!peek().isName())
            failUnexpected();
        state.value = make(Expression::Kind::eName, place, {}, std::string(take().text));
        if (accept("[")) {
            state.value = make(Expression::Kind::eIndex, place, {state.value, parseExpression()});
            expect("]");
        }
        expect(">");
    } else {
        state.value = parseInitialiser();
    }
}

} // namespace EffectCompiler
