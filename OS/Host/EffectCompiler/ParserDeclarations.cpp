// The part of the parser that reads variables and functions.
#include "OS/Host/EffectCompiler/Literals.h"
#include "OS/Host/EffectCompiler/Parser.h"

#include <algorithm>
#include <array>

namespace EffectCompiler {
namespace {

constexpr std::array<std::string_view, 19> kQualifiers = {
    "static",   "const",   "uniform",       "extern",       "shared",
    "volatile", "varying", "row_major",     "column_major", "inline",
    "in",       "out",     "inout",         "precise",      "nointerpolation",
    "centroid", "linear",  "noperspective", "sample"};

bool isSampler(const Type& type)
{
    return type.scalar == Type::Scalar::eSampler;
}

} // namespace

void Parser::parseTopLevel()
{
    if (accept(";"))
        return;
    if (peek().isName("typedef"))
        return parseTypedef();
    if (isTechniqueAhead())
        return parseTechnique();
    const Qualifiers qualifiers = parseQualifiers();
    const Type type = parseType();
    if (accept(";")) // of a struct
        return;
    if (peek(1).is("(")) {
        const SourcePlace place = peek().place;
        tree_.functions.push_back(parseFunction(type, expectName("function"), place, nullptr));
        return;
    }
    parseDeclarators(qualifiers, type, tree_.globals, true);
    expect(";");
}

/// "technique {", "technique Name <", but not a variable of that name.
bool Parser::isTechniqueAhead() const
{
    const Token& token = peek();
    const Token& behind = peek(1).isName() ? peek(2) : peek(1);
    return (behind.is("{") || behind.is("<")) &&
           (isKeyword(token, "technique") || isKeyword(token, "technique9") ||
            isKeyword(token, "technique10") || isKeyword(token, "technique11"));
}

Parser::Qualifiers Parser::parseQualifiers()
{
    Qualifiers qualifiers;
    bool isIn = false, isOut = false;
    // A name that no name follows is no qualifier.
    while (peek().isName() && peek(1).isName() &&
           std::find(kQualifiers.begin(), kQualifiers.end(), peek().text) != kQualifiers.end()) {
        const std::string_view text = take().text;
        qualifiers.isStatic |= text == "static";
        qualifiers.isConst |= text == "const";
        qualifiers.isUniform |= text == "uniform";
        isIn |= text == "in" || text == "inout";
        isOut |= text == "out" || text == "inout";
    }
    if (isOut)
        qualifiers.direction = isIn ? Variable::Direction::eInOut : Variable::Direction::eOut;
    return qualifiers;
}

/// Whether a statement declares: "float4 x", "const float x", "Light light", "struct { .. } x",
/// "vector<float, 3> x"; but "shared = 1" and "float4(1).x" do not.
bool Parser::isDeclarationAhead() const
{
    if (!peek().isName())
        return false;
    if (peek().text == "typedef" || peek().text == "struct")
        return true;
    if ((peek().text == "vector" || peek().text == "matrix") && peek(1).is("<")) {
        std::size_t ahead = 2;
        while (peek(ahead).kind == Token::Kind::eName || peek(ahead).kind == Token::Kind::eNumber ||
               peek(ahead).is(","))
            ++ahead;
        return peek(ahead).is(">") && peek(ahead + 1).isName();
    }
    // Two names in a row can be nothing else.
    return peek(1).isName();
}

/// ": TEXCOORD0", ": register(s0)", ": state.matrix.mvp": as written; places are for other systems.
std::string Parser::parseSemantics()
{
    std::string semantic;
    while (accept(":")) {
        if (!peek().isName())
            failUnexpected();
        std::string name(take().text);
        if (peek().is("(")) {
            skipBrackets();
            continue;
        }
        for (;;) {
            if (peek().is(".") && peek(1).isName()) {
                take();
                name.append(".").append(take().text);
            } else if (peek().is("[") && peek(1).kind == Token::Kind::eNumber && peek(2).is("]")) {
                take();
                name.append("[").append(take().text).append("]");
                take();
            } else {
                break;
            }
        }
        semantic = std::move(name);
    }
    return semantic;
}

void Parser::parseDeclarators(const Qualifiers& qualifiers, const Type& type,
                              std::vector<Variable*>& variables, bool isGlobal)
{
    if (type.scalar == Type::Scalar::eVoid)
        fail("variables cannot be void");
    do
        variables.push_back(parseDeclarator(qualifiers, type, isGlobal));
    while (accept(","));
}

Variable* Parser::parseDeclarator(const Qualifiers& qualifiers, const Type& type, bool isGlobal)
{
    Variable& variable = tree_.variables.emplace_back();
    variable.place = peek().place;
    variable.name = expectName("variable");
    variable.type = type;
    variable.isGlobal = isGlobal;
    variable.isStatic = qualifiers.isStatic;
    variable.isConst = qualifiers.isConst;
    variable.isUniform = qualifiers.isUniform;
    addDimensions(variable.type, parseDimensions(), variable.place);
    variable.semantic = parseSemantics();
    if (isGlobal)
        variable.annotations = parseAnnotations();
    const bool hasInitialiser = accept("=");
    if (isSampler(type) && (peek().is("{") || isKeyword(peek(), "sampler_state"))) {
        acceptKeyword("sampler_state");
        expect("{");
        variable.states = &tree_.stateLists.emplace_back(parseStates());
        expect("}");
    } else if (hasInitialiser) {
        variable.initialiser = parseInitialiser();
    }
    sizeFromInitialiser(variable);
    declare(variable);
    return &variable;
}

/// "float2 o[] = { .. }" is as long as what it starts with.
void Parser::sizeFromInitialiser(Variable& variable)
{
    std::vector<int>& dims = variable.type.dims;
    if (dims.empty() || dims[0] != 0 || !variable.initialiser)
        return;
    Type element = variable.type;
    element.dims.erase(element.dims.begin());
    const std::size_t wanted = numbersOf(element);
    const auto& items = variable.initialiser->operands;
    std::size_t numbers = 0;
    bool isFlat = wanted > 1 && variable.initialiser->kind == Expression::Kind::eList;
    for (const Expression* item : items) {
        const bool isMade = item->kind == Expression::Kind::eConstructor;
        isFlat = isFlat && (isMade || item->kind == Expression::Kind::eNumber ||
                            item->kind == Expression::Kind::eUnary);
        numbers += isMade ? numbersOf(item->castType) : 1;
    }
    std::size_t size = isFlat ? numbers / wanted : items.size();
    if (variable.initialiser->kind != Expression::Kind::eList) {
        const auto value = evaluator_.evaluate(*variable.initialiser);
        size =
            value && !value->type.dims.empty() ? static_cast<std::size_t>(value->type.dims[0]) : 0;
    }
    if (size == 0 || size > static_cast<std::size_t>(Limits::kElements))
        failAt(variable.place, "the size of array '" + variable.name + "' is not known");
    dims[0] = static_cast<int>(size);
    addDimensions(variable.type, {}, variable.place);
}

void Parser::declare(Variable& variable)
{
    if (variable.isGlobal)
        globals_.try_emplace(variable.name, &variable);
    else
        enterLocal(variable);
    if (variable.isConst && variable.initialiser)
        evaluator_.valueOf(variable);
}

void Parser::enterLocal(const Variable& variable)
{
    locals_.push_back(&variable);
    localsByName_[variable.name].push_back(&variable);
}

void Parser::leaveScope(std::size_t locals)
{
    for (; locals_.size() > locals; locals_.pop_back())
        localsByName_[locals_.back()->name].pop_back();
}

const Variable* Parser::find(std::string_view name) const
{
    const auto local = localsByName_.find(name);
    if (local != localsByName_.end() && !local->second.empty())
        return local->second.back();
    const auto global = globals_.find(name);
    return global == globals_.end() ? nullptr : global->second;
}

Function* Parser::parseFunction(const Type& result, std::string name, SourcePlace place,
                                const Record* owner)
{
    Function& function = tree_.functionNodes.emplace_back();
    function.name = std::move(name);
    function.place = place;
    function.result = result;
    function.owner = owner;
    const std::size_t scope = locals_.size();
    expect("(");
    if (peek().isName("void") && peek(1).is(")"))
        take();
    if (!accept(")")) {
        do {
            function.parameters.push_back(parseParameter());
            enterLocal(*function.parameters.back());
        } while (accept(","));
        expect(")");
    }
    function.semantic = parseSemantics();
    parseAnnotations();
    if (!accept(";"))
        function.body = parseBlock();
    leaveScope(scope);
    return &function;
}

Variable* Parser::parseParameter()
{
    const Qualifiers qualifiers = parseQualifiers();
    Variable& variable = tree_.variables.emplace_back();
    variable.isParameter = true;
    variable.isConst = qualifiers.isConst;
    variable.isUniform = qualifiers.isUniform;
    variable.direction = qualifiers.direction;
    variable.place = peek().place;
    variable.type = parseType();
    if (variable.type.scalar == Type::Scalar::eVoid)
        failAt(variable.place, "parameters cannot be void");
    if (peek().isName()) {
        variable.place = peek().place;
        variable.name = expectName("parameter");
    }
    addDimensions(variable.type, parseDimensions(), variable.place);
    variable.semantic = parseSemantics();
    parseAnnotations();
    if (accept("="))
        variable.initialiser = parseInitialiser();
    return &variable;
}

} // namespace EffectCompiler
