#pragma once

#include "OS/Mac/Effects/OpenGLShaderParam.h"
#include "OS/Mac/Effects/SamplerStates.h"
#include "OS/Mac/Effects/ShaderProgram.h"

#include <OS/Core/Ptr.h>
#include <OS/OpenGL/iGPUImage.h>
#include <OS/Primitives/XY.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

/// A sampler of an effect.
struct EffectSampler
{
    const EffectCompiler::Parameter* parameter = nullptr;
    std::string texture; ///< the parameter that its texture state names; empty for none
    SamplerStates states;
};

/// What a pass may draw into before another one reads it. Its texture parameter's annotations may
/// say how large: "Width" and "Height", or "Dimensions", in pixels; or "ViewportRatio", shares of
/// what the effect draws, which is also what it is without any. "Format" with a 16 in it
/// ("A16B16G16R16") asks for 16 bits a component.
struct EffectTarget
{
    struct Side
    {
        double value = 1.0;
        bool isShare = true; ///< of what is drawn; else pixels
    };

    std::string name;
    Side width;
    Side height;
    iGPUImage::eFormat format = iGPUImage::eARGB8;

    static EffectTarget of(const EffectCompiler::Parameter& parameter);
    /// @param whole what is drawn, pixels
    XY<int> sizeFor(const XY<int>& whole) const;
};

/// A pass of a technique, and where it draws.
struct EffectPass
{
    static constexpr int kOutput = -1;

    const EffectCompiler::Pass* pass = nullptr;
    int target = kOutput; ///< index of a render target
};

/// A pass made ready for GL.
struct PreparedPass
{
    /// A uniform and where its numbers come from: the pass, or a parameter.
    struct Value
    {
        ShaderUniform uniform;
        std::vector<float> fixed;
        int param = -1; ///< -1: fixed
    };
    struct Unit
    {
        GLenum target = GL_TEXTURE_2D;
        int sampler = -1; ///< -1: reads nothing
    };

    const EffectCompiler::Pass* pass = nullptr;
    int target = EffectPass::kOutput;
    std::shared_ptr<ShaderProgram> program;
    std::vector<Value> values;
    std::vector<Unit> units;
    bool coversAll = false; ///< it surely gives every pixel of its target a new value
};

/// What one loading of an effect file brought: the valid techniques, and the parameters sorted into
/// plain ones, samplers, render targets and inputs. Only the values of parameters change.
///
/// Made and used under the GL lock with a context current; released anywhere.
class EffectContents
{
public:
    struct Technique
    {
        std::string name;
        std::size_t index; ///< in the file
        std::vector<EffectPass> passes;
    };

    /// @param listing gets what is said about techniques that are not valid
    EffectContents(std::unique_ptr<EffectCompiler::Effect> effect,
                   EffectCompiler::iProgramBuilder& builder, std::string& listing);
    EffectContents(const EffectContents&) = delete;
    EffectContents& operator=(const EffectContents&) = delete;

    /// Those that the driver takes, in file order. Without one the rest is empty.
    const std::vector<Technique>& techniques() const { return techniques_; }
    /// -1 where there is none of that name.
    int findTechnique(const std::string& name) const;
    const std::vector<Tq::Ptr<OpenGLShaderParam>>& params() const { return params_; }
    int findParam(const std::string& name) const;
    const std::vector<EffectSampler>& samplers() const { return samplers_; }
    const std::vector<std::string>& inputs() const { return inputs_; }
    const std::vector<EffectTarget>& targets() const { return targets_; }
    const EffectCompiler::Effect& effect() const { return *effect_; }

    /// Index of the input, or of the render target, of that name; -1 for none.
    int findInput(const std::string& name) const;
    int findTarget(const std::string& name) const;

    /// The passes of a technique with their programs, made at its first use.
    /// @return null where that failed, with the reason in the log
    const std::vector<PreparedPass>* prepare(std::size_t technique, int glslVersion,
                                             std::string& log);

private:
    void findTechniques(EffectCompiler::iProgramBuilder& builder, std::string& listing);
    void findParameters();
    void findInputs();
    void findPasses();
    int targetOf(const EffectCompiler::Pass& pass) const;
    const EffectCompiler::Parameter* findTexture(const std::string& name) const;
    std::optional<PreparedPass> preparePass(const Technique& technique, std::size_t pass,
                                            int glslVersion, std::string& log) const;

    const std::shared_ptr<const EffectCompiler::Effect> effect_;
    std::vector<Technique> techniques_;
    std::vector<Tq::Ptr<OpenGLShaderParam>> params_;
    std::vector<EffectSampler> samplers_;
    std::vector<const EffectCompiler::Parameter*> textures_;
    std::vector<std::string> inputs_;
    std::vector<EffectTarget> targets_;
    std::vector<std::optional<std::vector<PreparedPass>>> prepared_; // by technique
};
