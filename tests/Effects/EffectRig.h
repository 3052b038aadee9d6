#pragma once

#include "OS/Mac/Effects/OpenGLShaderEffect.h"

#include "OS/Host/EffectCompiler/EffectRuntime.h"

#include <QImage>
#include <string>
#include <vector>

/// An effect written down by a test: its parameters, and its programs as GLSL. For drawing, which
/// has nothing to do with how programs come about.
class WrittenEffect final : public EffectCompiler::Effect
{
public:
    /// A pass: where it draws ("" is the output), and its fragment program's body, which has uv and
    /// gives result.
    struct Pass
    {
        std::string target;
        std::string body;
        std::vector<EffectCompiler::StateAssignment> states;
        std::string vertex; ///< "" is the usual one
    };

    /// A texture "NAME" that a sampler "NAMESampler" reads.
    WrittenEffect& input(const std::string& name,
                         std::vector<EffectCompiler::StateAssignment> states = {},
                         EffectCompiler::TextureKind kind = EffectCompiler::TextureKind::e2D);
    /// The same, drawn into by passes.
    WrittenEffect& target(const std::string& name,
                          std::vector<EffectCompiler::Annotation> annotations = {});
    /// A second sampler "NAME" of a texture.
    WrittenEffect& sampler(const std::string& name, const std::string& texture,
                           std::vector<EffectCompiler::StateAssignment> states);
    WrittenEffect& number(const std::string& name, std::vector<double> initial,
                          const std::string& semantic = "");
    WrittenEffect& technique(const std::string& name, std::vector<Pass> passes);

    const std::vector<EffectCompiler::Parameter>& parameters() const override
    {
        return parameters_;
    }
    const std::vector<EffectCompiler::Technique>& techniques() const override
    {
        return techniques_;
    }
    const std::vector<std::string>& files() const override { return files_; }
    std::optional<EffectCompiler::ProgramText> translate(std::size_t technique, std::size_t pass,
                                                         int version,
                                                         std::string& listing) const override;
    bool validate(std::size_t technique, EffectCompiler::iProgramBuilder& builder,
                  std::string& listing) const override;

private:
    std::vector<EffectCompiler::Parameter> parameters_;
    std::vector<EffectCompiler::Technique> techniques_;
    std::vector<std::vector<Pass>> passes_;
    std::vector<std::string> files_{"/nowhere/written.fx"};
};

EffectCompiler::StateAssignment state(const std::string& name, std::vector<double> numbers);
EffectCompiler::Annotation annotation(const std::string& name, std::vector<double> numbers);

/// The effect as it would have been loaded.
Tq::Ptr<OpenGLShaderEffect> loaded(const WrittenEffect& effect);

/// Returns what it samples.
WrittenEffect identity();
