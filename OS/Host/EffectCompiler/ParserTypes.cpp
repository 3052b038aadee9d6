// The part of the parser that reads types: names of them, structs, typedefs and the sizes of
// arrays.
#include "OS/Host/EffectCompiler/Literals.h"
#include "OS/Host/EffectCompiler/Parser.h"

#include <algorithm>

namespace EffectCompiler {

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

} // namespace EffectCompiler
