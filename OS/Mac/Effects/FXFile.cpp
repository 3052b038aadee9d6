#include "OS/Mac/Effects/FXFile.h"

#include "OS/Host/EffectCompiler/EffectRuntime.h"
#include "OS/Mac/Core/PathText.h"
#include "OS/Mac/Effects/EffectText.h"

namespace {

using EffectText::text;

iFXFile::Value valueOf(const EffectCompiler::Value& value)
{
    return {text(value.type.name), value.numbers, text(value.text)};
}

std::vector<iFXFile::Annotation>
annotationsOf(const std::vector<EffectCompiler::Annotation>& annotations)
{
    std::vector<iFXFile::Annotation> result;
    for (const EffectCompiler::Annotation& annotation : annotations)
        result.push_back({text(annotation.name), valueOf(annotation.value)});
    return result;
}

std::vector<iFXFile::State> statesOf(const std::vector<EffectCompiler::StateAssignment>& states)
{
    std::vector<iFXFile::State> result;
    for (const EffectCompiler::StateAssignment& state : states)
        result.push_back({text(state.name), state.index, valueOf(state.value)});
    return result;
}

iFXFile::Parameter parameterOf(const EffectCompiler::Parameter& parameter)
{
    iFXFile::Parameter result;
    result.name_ = text(parameter.name);
    std::string type = parameter.type.name;
    for (const int size : parameter.type.arraySizes)
        type += "[" + std::to_string(size) + "]";
    result.type_ = text(type);
    result.hasSemantic_ = parameter.semantic.has_value();
    result.semantic_ = text(parameter.semantic.value_or(""));
    result.annotations_ = annotationsOf(parameter.annotations);
    result.hasInitial_ = parameter.initial.has_value();
    if (parameter.initial)
        result.initial_ = valueOf(*parameter.initial);
    result.states_ = statesOf(parameter.states);
    return result;
}

iFXFile::Pass passOf(const EffectCompiler::Effect& effect, std::size_t technique, std::size_t pass)
{
    constexpr int kVersion = 130;
    const EffectCompiler::Pass& from = effect.techniques()[technique].passes[pass];
    iFXFile::Pass result;
    result.name_ = text(from.name);
    result.annotations_ = annotationsOf(from.annotations);
    result.states_ = statesOf(from.states);
    result.hasVertexProgram_ = from.hasVertexProgram;
    result.hasFragmentProgram_ = from.hasFragmentProgram;
    std::string listing;
    const auto program = effect.translate(technique, pass, kVersion, listing);
    result.isTranslated_ = program.has_value();
    result.listing_ = text(listing);
    if (program) {
        result.vertexText_ = text(program->vertex);
        result.fragmentText_ = text(program->fragment);
    }
    return result;
}

iFXFile::Technique techniqueOf(const EffectCompiler::Effect& effect, std::size_t technique)
{
    const EffectCompiler::Technique& from = effect.techniques()[technique];
    iFXFile::Technique result{text(from.name), annotationsOf(from.annotations), {}};
    for (std::size_t i = 0; i < from.passes.size(); ++i)
        result.passes_.push_back(passOf(effect, technique, i));
    return result;
}

} // namespace

FXFile::FXFile(const LightweightString<wchar_t>& path)
{
    EffectCompiler::Context context;
    const auto effect = context.createFromFile(EffectText::standard(OSInternal::pathToSystem(path)),
                                               {"-DPROFILE=glslf"});
    listing_ = text(context.listing());
    isCompiled_ = effect != nullptr;
    if (!effect)
        return;
    for (const EffectCompiler::Parameter& parameter : effect->parameters())
        parameters_.push_back(parameterOf(parameter));
    for (std::size_t i = 0; i < effect->techniques().size(); ++i)
        techniques_.push_back(techniqueOf(*effect, i));
    for (const std::string& file : effect->files())
        files_.push_back(OSInternal::pathFromSystem(text(file)));
}
