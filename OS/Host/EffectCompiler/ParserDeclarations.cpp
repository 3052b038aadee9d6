// The part of the parser that reads types, variables and functions.
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

std::optional<Type> Parser::typeNamed(const Token& token) const
{
    if (!token.isName())
        return {};
    if (token.text == "vector" || token.text == "matrix") {
        Type type;
        type.scalar = Type::Scalar::eFloat;
        type.columns = 4;
        type.isVector = token.text == "vector";
        type.isMatrix = !type.isVector;
        type.rows = type.isMatrix ? 4 : 1;
        return type;
    }
    if (auto type = builtInType(token.text))
        return type;
    const auto own = types_.find(std::string(token.text));
    return own == types_.end() ? std::nullopt : std::optional(own->second);
}

bool Parser::isTypeAhead() const
{
    const Token& token = peek();
    return token.isName("struct") || token.isName("interface") || token.isName("unsigned") ||
           typeNamed(token).has_value();
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

Type Parser::parseType()
{
    if (peek().isName("struct") || peek().isName("interface"))
        return parseRecordType();
    const bool isUnsigned = peek().isName("unsigned");
    if (isUnsigned)
        take();
    if (!peek().isName())
        failUnexpected();
    const bool isMatrix = peek().text == "matrix";
    if ((isMatrix || peek().text == "vector") && peek(1).is("<"))
        return parseTemplateType(isMatrix);
    auto type = typeNamed(peek());
    if (!type)
        fail("unknown type '" + std::string(peek().text) + "'");
    take();
    if (isUnsigned && type->scalar == Type::Scalar::eInt)
        type->scalar = Type::Scalar::eUint;
    return *type;
}

/// "vector<float, 3>", "matrix<half, 4, 3>"
Type Parser::parseTemplateType(bool isMatrix)
{
    const Nesting nesting(*this);
    const SourcePlace place = take().place;
    expect("<");
    Type type = parseType();
    int sizes[2] = {1, 1};
    for (int i = 0; i < (isMatrix ? 2 : 1); ++i) {
        expect(",");
        // Above "<" and ">", which end the type.
        const auto size = evaluator_.evaluateInt(*parseBinary(9));
        if (!size || *size < 1 || *size > 4)
            failAt(place, "vectors and matrices have from 1 to 4 rows and columns");
        sizes[i] = *size;
    }
    expect(">");
    if (type.isVector || type.isMatrix || !type.dims.empty() ||
        type.scalar > Type::Scalar::eFloat || type.scalar == Type::Scalar::eVoid)
        failAt(place, "vectors and matrices are made of numbers");
    type.isMatrix = isMatrix;
    type.isVector = !isMatrix;
    type.rows = static_cast<std::uint8_t>(isMatrix ? sizes[0] : 1);
    type.columns = static_cast<std::uint8_t>(isMatrix ? sizes[1] : sizes[0]);
    return type;
}

/// "struct Light { .. }", or "struct Light" of one that is known.
Type Parser::parseRecordType()
{
    const Nesting nesting(*this);
    const bool isInterface = take().text == "interface";
    if (peek().isName() && !peek(1).is("{") && !peek(1).is(":"))
        return parseType();
    Record* record = startRecord(isInterface);
    const SourcePlace place = record->place;
    openRecords_.push_back(record);
    expect("{");
    while (!peek().is("}")) {
        if (peek().kind == Token::Kind::eEnd)
            failAt(place, "'{' without '}'");
        const std::size_t start = position_;
        const std::size_t open = openRecords_.size();
        try {
            parseMember(*record);
        } catch (const Fault&) {
            openRecords_.resize(open);
            recover(start);
        }
    }
    take();
    openRecords_.pop_back();
    Type type;
    type.scalar = Type::Scalar::eRecord;
    type.record = record;
    return type;
}

/// Its name and what it implements.
Record* Parser::startRecord(bool isInterface)
{
    Record* record = &tree_.recordNodes.emplace_back();
    record->place = peek().place;
    record->isInterface = isInterface;
    if (peek().isName()) {
        record->name = expectName(isInterface ? "interface" : "struct");
        if (types_.contains(record->name))
            messages_.error(record->place, "'" + record->name + "' is a type already");
    } else {
        record->name = "struct#" + std::to_string(tree_.records.size() + 1);
    }
    Type type;
    type.scalar = Type::Scalar::eRecord;
    type.record = record;
    types_[record->name] = type;
    tree_.records.push_back(record);
    if (accept(":")) {
        const SourcePlace place = peek().place;
        const std::string base = expectName("interface");
        const auto found = types_.find(base);
        if (found == types_.end() || !found->second.record || !found->second.dims.empty() ||
            found->second.record == record)
            failAt(place, "unknown interface '" + base + "'");
        record->implements = found->second.record;
    }
    return record;
}

void Parser::parseMember(Record& record)
{
    if (accept(";"))
        return;
    parseQualifiers();
    const Type type = parseType();
    if (peek(1).is("(")) {
        const SourcePlace place = peek().place;
        Function* method = parseFunction(type, expectName("method"), place, &record);
        record.methods.push_back(method);
        tree_.functions.push_back(method);
        return;
    }
    do {
        Field field;
        field.place = peek().place;
        field.name = expectName("field");
        field.type = type;
        addDimensions(field.type, parseDimensions(), field.place);
        field.semantic = parseSemantics();
        parseAnnotations();
        addField(record, std::move(field));
    } while (accept(","));
    expect(";");
}

void Parser::addField(Record& record, Field field)
{
    const Record* inner = field.type.record;
    if (std::find(openRecords_.begin(), openRecords_.end(), inner) != openRecords_.end())
        failAt(field.place, "struct '" + inner->name + "' would contain itself");
    if (field.type.scalar == Type::Scalar::eVoid)
        failAt(field.place, "field '" + field.name + "' has no type");
    record.elements += elementsOf(field.type);
    if (inner)
        record.depth = std::max(record.depth, inner->depth + 1);
    if (record.elements > static_cast<std::size_t>(Limits::kElements) ||
        record.depth > Limits::kDepth) {
        messages_.error(field.place, "struct '" + record.name + "' is too large");
        throw Stop();
    }
    record.fields.push_back(std::move(field));
}

void Parser::parseTypedef()
{
    take();
    parseQualifiers();
    const Type type = parseType();
    do {
        const SourcePlace place = peek().place;
        const std::string name = expectName("type");
        Type named = type;
        addDimensions(named, parseDimensions(), place);
        const auto [known, isNew] = types_.try_emplace(name, named);
        if (!isNew && known->second != named)
            failAt(place, "'" + name + "' is a type already");
    } while (accept(","));
    expect(";");
}

std::vector<int> Parser::parseDimensions()
{
    std::vector<int> dimensions;
    while (peek().is("[")) {
        const SourcePlace place = take().place;
        if (accept("]")) {
            dimensions.push_back(0);
            continue;
        }
        const Expression* expression = parseExpression();
        expect("]");
        const auto size = evaluator_.evaluateInt(*expression);
        if (!size)
            failAt(place, "the size of an array must be a constant whole number");
        if (*size < 1 || *size > Limits::kElements)
            failAt(place, "an array cannot have " + std::to_string(*size) + " elements");
        dimensions.push_back(*size);
        if (dimensions.size() > 8)
            failAt(place, "arrays have at most 8 dimensions");
    }
    return dimensions;
}

/// @param outer come before those that the type has
void Parser::addDimensions(Type& type, const std::vector<int>& outer, SourcePlace place)
{
    type.dims.insert(type.dims.begin(), outer.begin(), outer.end());
    if (type.dims.size() > 8 || elementsOf(type) > static_cast<std::size_t>(Limits::kElements))
        failAt(place, "the array has more than " + std::to_string(Limits::kElements) + " elements");
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
        locals_.push_back(&variable);
    if (variable.isConst && variable.initialiser)
        evaluator_.valueOf(variable);
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
            locals_.push_back(function.parameters.back());
        } while (accept(","));
        expect(")");
    }
    function.semantic = parseSemantics();
    parseAnnotations();
    if (!accept(";"))
        function.body = parseBlock();
    locals_.resize(scope);
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
