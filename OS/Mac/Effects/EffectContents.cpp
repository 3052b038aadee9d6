#include "OS/Mac/Effects/EffectContents.h"

#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/Effects/EffectText.h"
#include "OS/Mac/Effects/ShaderPrograms.h"

#include <algorithm>
#include <cmath>
#include <string_view>

using namespace EffectCompiler;
using EffectText::equalsNoCase;

namespace {

constexpr std::string_view kTargetSemantic = "RENDERCOLORTARGET";

bool isSampler(const ValueType& type)
{
    return type.base == BaseType::eSampler &&
           (type.texture == TextureKind::e2D || type.texture == TextureKind::e3D ||
            type.texture == TextureKind::eAny);
}

std::vector<float> floatsOf(const Value& value)
{
    return {value.numbers.begin(), value.numbers.end()};
}

std::size_t countOf(const ValueType& type)
{
    if (type.base != BaseType::eFloat && type.base != BaseType::eInt &&
        type.base != BaseType::eBool)
        return 0;
    auto count = static_cast<std::size_t>(type.rows * type.columns);
    for (const int size : type.arraySizes)
        count *= static_cast<std::size_t>(std::max(size, 1));
    return count;
}

// Whether a parameter is one of the matrices that take a place in space to the screen: effects
// draw flat, so they change nothing.
bool isTransform(const Parameter& parameter)
{
    if (!parameter.semantic || parameter.type.rows != 4 || parameter.type.columns != 4)
        return false;
    for (const char* stem : {"World", "View", "Projection", "WorldView", "ViewProjection",
                             "WorldViewProjection", "ModelView", "ModelViewProjection", "Model"})
        for (const char* form : {"", "Inverse", "Transpose", "InverseTranspose"})
            if (equalsNoCase(*parameter.semantic, std::string(stem) + form))
                return true;
    return false;
}

std::vector<float> defaultsOf(const Parameter& parameter)
{
    std::vector<float> numbers;
    if (parameter.initial)
        numbers = floatsOf(*parameter.initial);
    else if (isTransform(parameter))
        numbers = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    numbers.resize(countOf(parameter.type));
    return numbers;
}

// A state that may leave pixels as they were, or mix them with what was there.
bool keepsPixels(const StateAssignment& state)
{
    const bool isOff = !state.value.numbers.empty() && state.value.numbers[0] == 0.0;
    if (isOff)
        for (const char* name :
             {"AlphaBlendEnable", "BlendEnable", "AlphaTestEnable", "ZEnable", "DepthTestEnable",
              "StencilEnable", "StencilTestEnable", "CullFaceEnable", "ScissorTestEnable",
              "ZWriteEnable", "DepthMask", "FogEnable", "LightingEnable"})
            if (equalsNoCase(state.name, name))
                return false;
    return true;
}

bool hasAlphaTest(const Pass& pass)
{
    return std::any_of(pass.states.begin(), pass.states.end(), [](const StateAssignment& state) {
        return equalsNoCase(state.name, "AlphaTestEnable");
    });
}

} // namespace

EffectTarget EffectTarget::of(const Parameter& parameter)
{
    EffectTarget target;
    target.name = parameter.name;
    for (const Annotation& annotation : parameter.annotations) {
        const std::vector<double>& numbers = annotation.value.numbers;
        if (equalsNoCase(annotation.name, "Format") &&
            annotation.value.text.find("16") != std::string::npos)
            target.format = iGPUImage::eARGB16;
        if (numbers.empty())
            continue;
        const double second = numbers.size() > 1 ? numbers[1] : numbers[0];
        if (equalsNoCase(annotation.name, "Width")) {
            target.width = {numbers[0], false};
        } else if (equalsNoCase(annotation.name, "Height")) {
            target.height = {numbers[0], false};
        } else if (equalsNoCase(annotation.name, "Dimensions")) {
            target.width = {numbers[0], false};
            target.height = {second, false};
        } else if (equalsNoCase(annotation.name, "ViewportRatio")) {
            target.width = {numbers[0], true};
            target.height = {second, true};
        }
    }
    return target;
}

XY<int> EffectTarget::sizeFor(const XY<int>& whole) const
{
    const auto texels = [](const Side& side, int all) {
        const double wanted = side.isShare ? side.value * all : side.value;
        return wanted >= 1.0 ? static_cast<int>(std::min(wanted + 0.5, 1e6)) : 1; // no number: 1
    };
    return {texels(width, whole.x), texels(height, whole.y)};
}

EffectContents::EffectContents(std::unique_ptr<Effect> effect, iProgramBuilder& builder,
                               std::string& listing)
    : effect_(std::move(effect))
{
    findTechniques(builder, listing);
    if (techniques_.empty())
        return;
    findParameters();
    findInputs();
    findPasses();
    prepared_.resize(techniques_.size());
}

void EffectContents::findTechniques(iProgramBuilder& builder, std::string& listing)
{
    for (std::size_t i = 0; i < effect_->techniques().size(); ++i) {
        std::string said;
        if (effect_->validate(i, builder, said))
            techniques_.push_back({effect_->techniques()[i].name, i, {}});
        listing += said;
    }
}

void EffectContents::findParameters()
{
    for (const Parameter& parameter : effect_->parameters()) {
        if (isSampler(parameter.type)) {
            EffectSampler sampler{&parameter, "", SamplerStates::of(parameter.states)};
            for (const StateAssignment& state : parameter.states)
                if (equalsNoCase(state.name, "Texture"))
                    sampler.texture = state.value.text;
            samplers_.push_back(sampler);
        } else if (parameter.type.base == BaseType::eTexture) {
            textures_.push_back(&parameter);
        } else {
            params_.push_back(new OpenGLShaderParam(effect_, parameter, defaultsOf(parameter)));
        }
    }
}

const Parameter* EffectContents::findTexture(const std::string& name) const
{
    for (const Parameter* texture : textures_)
        if (texture->name == name)
            return texture;
    return nullptr;
}

void EffectContents::findInputs()
{
    for (const EffectSampler& sampler : samplers_) {
        const Parameter* texture = findTexture(sampler.texture);
        if (!texture || findInput(texture->name) >= 0 || findTarget(texture->name) >= 0)
            continue;
        if (!texture->semantic)
            OSInternal::reportAssertion("semantic != NULL", "OS/Mac/OpenGLShaderEffect line 214");
        if (texture->semantic == kTargetSemantic)
            targets_.push_back(EffectTarget::of(*texture));
        else
            inputs_.push_back(texture->name);
    }
}

// A script is written with a semicolon at its end.
int EffectContents::targetOf(const Pass& pass) const
{
    constexpr std::string_view kPrefix = "RENDERCOLORTARGET0 = ";
    for (const Annotation& annotation : pass.annotations) {
        if (annotation.name != "Script")
            continue;
        const std::string_view script = annotation.value.text;
        if (script.size() <= kPrefix.size() ||
            !equalsNoCase(script.substr(0, kPrefix.size()), kPrefix))
            return EffectPass::kOutput;
        return findTarget(
            std::string(script.substr(kPrefix.size(), script.size() - kPrefix.size() - 1)));
    }
    return EffectPass::kOutput;
}

void EffectContents::findPasses()
{
    for (Technique& technique : techniques_)
        for (const Pass& pass : effect_->techniques()[technique.index].passes)
            technique.passes.push_back({&pass, targetOf(pass)});
}

namespace {

template <class List, class Is>
int findIn(const List& list, Is is)
{
    const auto found = std::find_if(list.begin(), list.end(), is);
    return found == list.end() ? -1 : static_cast<int>(found - list.begin());
}

} // namespace

int EffectContents::findTechnique(const std::string& name) const
{
    return findIn(techniques_, [&](const Technique& technique) { return technique.name == name; });
}

int EffectContents::findParam(const std::string& name) const
{
    return findIn(params_, [&](const Tq::Ptr<OpenGLShaderParam>& param) {
        return param->parameter().name == name;
    });
}

int EffectContents::findInput(const std::string& name) const
{
    return findIn(inputs_, [&](const std::string& input) { return input == name; });
}

int EffectContents::findTarget(const std::string& name) const
{
    return findIn(targets_, [&](const EffectTarget& target) { return target.name == name; });
}

const std::vector<PreparedPass>* EffectContents::prepare(std::size_t technique, int glslVersion,
                                                         std::string& log)
{
    std::optional<std::vector<PreparedPass>>& prepared = prepared_[technique];
    if (prepared)
        return &*prepared;
    std::vector<PreparedPass> passes;
    for (std::size_t i = 0; i < techniques_[technique].passes.size(); ++i) {
        std::optional<PreparedPass> pass = preparePass(techniques_[technique], i, glslVersion, log);
        if (!pass)
            return nullptr;
        passes.push_back(std::move(*pass));
    }
    prepared = std::move(passes);
    return &*prepared;
}

std::optional<PreparedPass> EffectContents::preparePass(const Technique& technique,
                                                        std::size_t pass, int glslVersion,
                                                        std::string& log) const
{
    const std::optional<ProgramText> text =
        effect_->translate(technique.index, pass, glslVersion, log);
    if (!text)
        return {};
    PreparedPass prepared;
    prepared.pass = technique.passes[pass].pass;
    prepared.program = ShaderPrograms::instance().find(*text, log, hasAlphaTest(*prepared.pass));
    if (!prepared.program)
        return {};
    prepared.target = technique.passes[pass].target;
    for (const ShaderProgram::Unit& unit : prepared.program->units())
        prepared.units.push_back({unit.target, -1});
    for (const Uniform& uniform : text->uniforms) {
        if (uniform.type.base == BaseType::eSampler) {
            const int sampler = findIn(samplers_, [&](const EffectSampler& each) {
                return each.parameter->name == uniform.parameter;
            });
            for (std::size_t i = 0; i < prepared.units.size(); ++i)
                if (prepared.program->units()[i].sampler == uniform.name)
                    prepared.units[i].sampler = sampler;
        } else if (const ShaderUniform* place = prepared.program->uniform(uniform.name)) {
            const int param = uniform.fixed ? -1 : findParam(uniform.parameter);
            if (uniform.fixed)
                prepared.values.push_back({*place, floatsOf(*uniform.fixed), param});
            else if (param >= 0)
                prepared.values.push_back({*place, {}, param});
        }
    }
    prepared.coversAll =
        !prepared.pass->hasVertexProgram && text->fragment.find("discard") == std::string::npos &&
        std::none_of(prepared.pass->states.begin(), prepared.pass->states.end(), keepsPixels);
    return prepared;
}
