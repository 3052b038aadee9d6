#pragma once

#include "OS/Mac/Effects/ShaderUniform.h"

#include "OS/Host/EffectCompiler/EffectRuntime.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

class QOpenGLContext;

/// A GL program, linked. Its samplers read from texture units of their own, for good.
class ShaderProgram
{
public:
    /// A texture unit that the program reads from.
    struct Unit
    {
        std::string sampler; ///< as the GLSL text calls it
        GLenum target = GL_TEXTURE_2D;
    };

    /// @param most texture units that it may read from @param log gets the driver's words
    /// @return null where the driver refuses the texts, or they read from more
    static std::unique_ptr<ShaderProgram> link(const EffectCompiler::ProgramText& text,
                                               unsigned int most, std::string& log);
    ShaderProgram(const ShaderProgram&) = delete;
    ShaderProgram& operator=(const ShaderProgram&) = delete;

    GLuint name() const { return name_; }
    const std::vector<Unit>& units() const { return units_; }
    /// Null where the program has none of that name.
    const ShaderUniform* uniform(const std::string& name) const;
    /// Whether it reads numbered attributes; else the conventional ones.
    bool readsAttributes() const { return readsAttributes_; }

    /// To be called by whoever draws with it.
    void use();
    /// Deletes it, if that is safe here: Mesa crashes in a context that has drawn with a program
    /// which another one deletes.
    bool destroy();

private:
    explicit ShaderProgram(GLuint name);
    bool readUniforms(unsigned int most, std::string& log);
    void addUnits(const std::string& name, GLint location, GLenum target, GLint elements);

    GLuint name_;
    std::vector<Unit> units_;
    std::map<std::string, ShaderUniform> uniforms_;
    bool readsAttributes_ = false;
    const QOpenGLContext* usedIn_;
    bool usedInSeveral_ = false;
};
