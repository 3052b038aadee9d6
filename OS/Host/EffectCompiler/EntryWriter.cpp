#include "OS/Host/EffectCompiler/EntryWriter.h"

#include "OS/Host/EffectCompiler/Checker.h"
#include "OS/Host/EffectCompiler/StateMatrices.h"
#include "OS/Host/EffectCompiler/Types.h"

#include <algorithm>

namespace EffectCompiler {
namespace {

using Direction = Variable::Direction;
using Scalar = Type::Scalar;

/// How many numbers behind its name a value takes: one for each element, and each row.
int indicesOf(const Type& type)
{
    int count = isGlslMatrix(type) ? type.rows : 1;
    for (const int dim : type.dims)
        count *= dim;
    return count;
}

const char* stageName(Stage stage)
{
    return stage == Stage::eVertex ? "vertex" : "fragment";
}

} // namespace

EntryWriter::EntryWriter(StageWriter& stage, const State& program)
    : stage_(stage), program_(program), function_(*program.function), values_(stage, nullptr)
{
}

void EntryWriter::write()
{
    const SourcePlace place = function_.place;
    stage_.names().startFunction();
    stage_.names().openScope();
    std::vector<const Record*> records;
    std::vector<std::string> arguments;
    std::vector<std::string> results;
    for (const Variable* parameter : function_.parameters) {
        records.push_back(nullptr);
        if (takesArgument(*parameter)) {
            const bool isInterface = parameter->type.record && parameter->type.record->isInterface;
            if (isInterface && nextArgument_ < program_.arguments.size())
                records.back() = values_.recordOf(*program_.arguments[nextArgument_]);
            arguments.push_back(given(*parameter));
        } else {
            arguments.push_back(argument(*parameter));
        }
        results.push_back(parameter->direction == Direction::eIn ? "" : arguments.back());
    }
    std::string call = stage_.instance(function_, records).name + "(";
    for (std::size_t i = 0; i < arguments.size(); ++i)
        call += (i > 0 ? ", " : "") + arguments[i];
    call += ")";
    if (isVoid(function_.result)) {
        body_.add({}, 1, call + ";");
    } else {
        const std::string result = stage_.names().local("result");
        body_.add({}, 1, stage_.declaration(function_.result, result, place) + " = " + call + ";");
        output(function_.result, result, semanticOf(function_.semantic), place);
    }
    for (std::size_t i = 0; i < results.size(); ++i) {
        const Variable& parameter = *function_.parameters[i];
        if (!results[i].empty() && !takesArgument(parameter))
            output(parameter.type, results[i], semanticOf(parameter.semantic), parameter.place);
    }
    if (stage_.stage() == Stage::eVertex && !hasPosition_)
        stage_.refuse(place, "vertex program '" + function_.name + "' has no output POSITION");
    stage_.names().closeScope();
}

/// What a parameter gets that is not of the single vertex or pixel.
std::string EntryWriter::given(const Variable& parameter)
{
    const SourcePlace place = parameter.place;
    const bool isPassed = nextArgument_ < program_.arguments.size();
    GlslValue value;
    if (isPassed)
        value = values_.value(*program_.arguments[nextArgument_++]);
    else if (parameter.initialiser)
        value = values_.value(*parameter.initialiser);
    else if (const std::string state = stateMatrix(parameter.semantic); !state.empty())
        value = {state};
    else
        value = {stage_.entryUniform(parameter)};
    values_.flush(body_, program_.place, 1);
    if (parameter.direction == Direction::eIn)
        return alone(value);
    const std::string name = stage_.names().local(parameter.name);
    body_.add({}, 1, stage_.declaration(parameter.type, name, place) + " = " + alone(value) + ";");
    return name;
}

/// An input, or a variable for an output.
std::string EntryWriter::argument(const Variable& parameter)
{
    const SourcePlace place = parameter.place;
    GlslValue value;
    if (parameter.direction == Direction::eOut) {
        value = values_.zero(parameter.type, place);
    } else if (!isRecord(parameter.type) && parameter.semantic.empty() && parameter.initialiser) {
        value = values_.value(*parameter.initialiser);
    } else if (!isRecord(parameter.type) && parameter.semantic.empty()) {
        stage_.refuse(place, "parameter '" + parameter.name + "' of '" + function_.name +
                                 "' needs a semantic, or to be uniform");
    } else {
        value = input(parameter.type, semanticOf(parameter.semantic), place);
    }
    if (parameter.direction == Direction::eIn)
        return alone(value);
    const std::string name = stage_.names().local(parameter.name);
    body_.add({}, 1, stage_.declaration(parameter.type, name, place) + " = " + alone(value) + ";");
    return name;
}

GlslValue EntryWriter::input(const Type& type, const Semantic& semantic, SourcePlace place)
{
    if (isRecord(type))
        return recordInput(type, place);
    if (isArray(type) || isGlslMatrix(type)) { // of the semantics that follow
        const Type element = elementOf(type);
        const int count = isArray(type) ? type.dims[0] : type.rows;
        if (semantic.index + indicesOf(type) > 64) {
            stage_.refuse(place, "GLSL has no so many inputs");
            return {"0"};
        }
        std::string text;
        for (int i = 0; i < count; ++i) {
            const Semantic next = {semantic.name, semantic.index + i * indicesOf(element)};
            text += (i > 0 ? ", " : "") + input(element, next, place).text;
        }
        if (type.dims.size() > 1)
            stage_.refuse(place, "an input cannot be an array of arrays");
        return {stage_.arrayTypeName(type, place) + "(" + text + ")"};
    }
    const Connection connection = inputOf(stage_.stage(), semantic);
    if (!isNumeric(type) || connection.name.empty()) {
        stage_.refuse(place, "'" + nameOf(type) + "' cannot be an input");
        return {"0"};
    }
    if (connection.isDeclared)
        inputs_.insert(connection.name);
    const Type from = connection.columns == 1 ? scalarType(Scalar::eFloat)
                                              : vectorType(Scalar::eFloat, connection.columns);
    return values_.convert({connection.name}, from, type, place);
}

GlslValue EntryWriter::recordInput(const Type& type, SourcePlace place)
{
    std::string text;
    for (const Field& field : type.record->fields) {
        const bool isInner = isRecord(field.type);
        GlslValue value;
        if (!isInner && field.semantic.empty())
            value = values_.zero(field.type, field.place); // nobody sets it
        else
            value = input(field.type, semanticOf(field.semantic), field.place);
        text += (text.empty() ? "" : ", ") + value.text;
    }
    return {stage_.typeName(type, place) + "(" + (text.empty() ? "0.0" : text) + ")"};
}

void EntryWriter::output(const Type& type, const std::string& value, const Semantic& semantic,
                         SourcePlace place)
{
    if (isRecord(type))
        return recordOutput(type, value, place);
    if (semantic.name.empty())
        return stage_.refuse(place, "what '" + function_.name + "' gives out needs a semantic");
    if (isArray(type) || isGlslMatrix(type)) {
        const Type element = elementOf(type);
        const int count = isArray(type) ? type.dims[0] : type.rows;
        if (type.dims.size() > 1 || semantic.index + indicesOf(type) > 64)
            return stage_.refuse(place, "GLSL has no so many outputs");
        for (int i = 0; i < count; ++i)
            output(element, value + "[" + std::to_string(i) + "]",
                   {semantic.name, semantic.index + i * indicesOf(element)}, place);
        return;
    }
    const Connection connection = outputOf(stage_.stage(), semantic);
    if (connection.name.empty() || !isNumeric(type))
        return stage_.refuse(place, "a " + std::string(stageName(stage_.stage())) +
                                        " program has no output " + semantic.name);
    fill(connection, type, value, place);
}

void EntryWriter::recordOutput(const Type& type, const std::string& value, SourcePlace)
{
    for (const Field& field : type.record->fields) {
        const bool isInner = isRecord(field.type);
        if (isInner || !field.semantic.empty())
            output(field.type, value + "." + stage_.fieldName(*type.record, field.name),
                   semanticOf(field.semantic), field.place);
    }
}

/// Writes an output; what a value has too little of is 0, and 1 for the last component.
void EntryWriter::fill(const Connection& connection, const Type& type, const std::string& value,
                       SourcePlace place)
{
    hasPosition_ = hasPosition_ || connection.name == "gl_Position";
    if (connection.isDeclared)
        outputs_.insert(connection.name);
    const int columns = std::min(componentsOf(type), connection.columns);
    const Type narrow =
        columns == 1 ? scalarType(Scalar::eFloat) : vectorType(Scalar::eFloat, columns);
    std::string text = values_.convert({value}, type, narrow, place).text;
    if (columns < connection.columns) {
        constexpr const char* kRest[] = {"", ", 0.0, 0.0, 1.0", ", 0.0, 1.0", ", 1.0"};
        text = "vec4(" + text + kRest[columns] + ")";
    }
    body_.add({}, 1, connection.name + " = " + text + ";");
}

std::string EntryWriter::text(const std::set<std::string>& wanted) const
{
    LineWriter out;
    out.add(function_.place, 0, "void main()");
    out.addPlain("{");
    LineWriter start;
    stage_.writeStart(start);
    out.append(start);
    out.append(body_);
    for (const std::string& name : wanted) {
        if (!outputs_.contains(name))
            out.add({}, 1, name + " = vec4(0.0, 0.0, 0.0, 1.0);");
    }
    out.addPlain("}");
    return out.text();
}

} // namespace EffectCompiler
