#include "Effects/EffectRig.h"

#include "OS/Mac/Effects/ShaderPrograms.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"

using namespace EffectCompiler;

namespace {

constexpr char kVertex[] = R"(
VARYING vec4 cgi_TEXCOORD0, cgi_TEXCOORD1, cgi_TEXCOORD7;
void main()
{
    gl_Position = gl_ModelViewProjectionMatrix * gl_Vertex;
    cgi_TEXCOORD0 = gl_MultiTexCoord0;
    cgi_TEXCOORD1 = gl_MultiTexCoord1;
    cgi_TEXCOORD7 = gl_MultiTexCoord7;
}
)";

std::string header(int version, bool isVertex)
{
    if (version < 130)
        return "#version 120\n#define VARYING varying\n#define ATTRIBUTE attribute\n";
    return std::string("#version 130\n#define ATTRIBUTE in\n#define VARYING ") +
           (isVertex ? "out\n" : "in\n");
}

const char* samplerType(TextureKind kind)
{
    return kind == TextureKind::e3D ? "sampler3D" : "sampler2D";
}

const char* numberType(std::size_t count)
{
    switch (count) {
    case 1:
        return "float";
    case 2:
        return "vec2";
    case 3:
        return "vec3";
    case 4:
        return "vec4";
    default:
        return "mat4";
    }
}

} // namespace

StateAssignment state(const std::string& name, std::vector<double> numbers)
{
    StateAssignment result;
    result.name = name;
    result.value.type = {
        BaseType::eInt, TextureKind::eNone, 1, static_cast<int>(numbers.size()), {}, "int"};
    result.value.numbers = std::move(numbers);
    return result;
}

Annotation annotation(const std::string& name, std::vector<double> numbers)
{
    Annotation result;
    result.name = name;
    result.value.type = {
        BaseType::eFloat, TextureKind::eNone, 1, static_cast<int>(numbers.size()), {}, "float"};
    result.value.numbers = std::move(numbers);
    return result;
}

WrittenEffect& WrittenEffect::sampler(const std::string& name, const std::string& texture,
                                      std::vector<StateAssignment> states)
{
    Parameter parameter;
    parameter.name = name;
    parameter.type = {BaseType::eSampler, TextureKind::e2D, 1, 1, {}, "sampler2D"};
    for (const Parameter& each : parameters_)
        if (each.name == texture)
            parameter.type.texture = each.type.texture;
    StateAssignment reads;
    reads.name = "texture";
    reads.value.type.base = BaseType::eTexture;
    reads.value.text = texture;
    parameter.states = std::move(states);
    parameter.states.push_back(reads);
    parameters_.push_back(parameter);
    return *this;
}

WrittenEffect& WrittenEffect::input(const std::string& name, std::vector<StateAssignment> states,
                                    TextureKind kind)
{
    Parameter parameter;
    parameter.name = name;
    parameter.type = {BaseType::eTexture, kind, 1, 1, {}, "texture"};
    parameter.semantic = name;
    parameters_.push_back(parameter);
    return sampler(name + "Sampler", name, std::move(states));
}

WrittenEffect& WrittenEffect::target(const std::string& name, std::vector<Annotation> annotations)
{
    input(name);
    Parameter& texture = parameters_[parameters_.size() - 2];
    texture.semantic = "RENDERCOLORTARGET";
    texture.annotations = std::move(annotations);
    return *this;
}

WrittenEffect& WrittenEffect::number(const std::string& name, std::vector<double> initial,
                                     const std::string& semantic)
{
    Parameter parameter;
    parameter.name = name;
    const bool isMatrix = initial.size() == 16;
    const int columns = static_cast<int>(initial.size());
    parameter.type = {BaseType::eFloat,
                      TextureKind::eNone,
                      isMatrix ? 4 : 1,
                      isMatrix ? 4 : columns,
                      {},
                      "float" + std::to_string(columns)};
    parameter.initial = Value{parameter.type, std::move(initial), ""};
    if (!semantic.empty())
        parameter.semantic = semantic;
    parameters_.push_back(parameter);
    return *this;
}

WrittenEffect& WrittenEffect::technique(const std::string& name, std::vector<Pass> passes)
{
    Technique technique;
    technique.name = name;
    for (const Pass& pass : passes) {
        EffectCompiler::Pass syntax;
        syntax.name = "p" + std::to_string(technique.passes.size());
        syntax.states = pass.states;
        syntax.hasVertexProgram = !pass.vertex.empty();
        syntax.hasFragmentProgram = true;
        if (!pass.target.empty()) {
            Annotation script;
            script.name = "Script";
            script.value.type.base = BaseType::eString;
            script.value.text = "RENDERCOLORTARGET0 = " + pass.target + ";";
            syntax.annotations.push_back(script);
        }
        technique.passes.push_back(syntax);
    }
    techniques_.push_back(technique);
    passes_.push_back(std::move(passes));
    return *this;
}

std::optional<ProgramText> WrittenEffect::translate(std::size_t technique, std::size_t index,
                                                    int version, std::string&) const
{
    const Pass& pass = passes_[technique][index];
    ProgramText text;
    text.vertex = header(version, true) + (pass.vertex.empty() ? kVertex : pass.vertex);
    text.fragment =
        header(version, false) + "VARYING vec4 cgi_TEXCOORD0, cgi_TEXCOORD1, cgi_TEXCOORD7;\n";
    for (const Parameter& parameter : parameters_) {
        if (parameter.type.base == BaseType::eTexture)
            continue;
        const bool isSampler = parameter.type.base == BaseType::eSampler;
        const char* type = isSampler ? samplerType(parameter.type.texture)
                                     : numberType(parameter.initial->numbers.size());
        text.fragment += std::string("uniform ") + type + " " + parameter.name + ";\n";
        text.uniforms.push_back({parameter.name, parameter.name, parameter.type, {}});
    }
    text.fragment += "void main()\n{\n vec2 uv = cgi_TEXCOORD0.xy;\n vec4 result = vec4(0.0);\n" +
                     pass.body + "\n gl_FragData[0] = result;\n}\n";
    return text;
}

bool WrittenEffect::validate(std::size_t technique, iProgramBuilder& builder,
                             std::string& listing) const
{
    for (std::size_t i = 0; i < passes_[technique].size(); ++i)
        if (!builder.build(*translate(technique, i, builder.glslVersion(), listing), listing))
            return false;
    return true;
}

Tq::Ptr<OpenGLShaderEffect> loaded(const WrittenEffect& effect)
{
    OpenGLUtils::instance();
    const OpenGLContextProtector protector;
    ShaderProgramBuilder builder;
    std::string listing;
    auto contents =
        std::make_shared<EffectContents>(std::make_unique<WrittenEffect>(effect), builder, listing);
    if (contents->techniques().empty()) {
        std::printf("%s\n", listing.c_str());
        return {};
    }
    return new OpenGLShaderEffect(L"/nowhere/written.fx", "glslf", contents);
}

WrittenEffect identity()
{
    return WrittenEffect().input("Image").technique(
        "t", {{"", "result = texture2D(ImageSampler, uv);", {}, ""}});
}
