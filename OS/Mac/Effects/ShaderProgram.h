#pragma once

#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Host/EffectCompiler/EffectRuntime.h"

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

class QOpenGLContext;

/// A uniform of a linked program.
struct ShaderUniform
{
    GLint location = -1;
    GLenum type = GL_FLOAT;
    GLint elements = 1; ///< of an array

    /// Gives it numbers: row by row, element by element. Those that are missing count as 0, further
    /// ones are not used. With its program in use.
    void set(const std::vector<float>& numbers) const;
};

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

/// The programs of all effects, one for each pair of texts: an effect that is loaded again, and
/// others with the same passes, find theirs here.
///
/// Under the GL lock, with a context of the sharing group current. Those that nobody holds any more
/// are kept for the next; beyond kKept they are deleted, where that is safe. Beyond kMost no more
/// are made.
class ShaderPrograms
{
public:
    static constexpr std::size_t kKept = 128;
    static constexpr std::size_t kMost = 2048;

    static ShaderPrograms& instance();
    ShaderPrograms(const ShaderPrograms&) = delete;
    ShaderPrograms& operator=(const ShaderPrograms&) = delete;

    /// @param hasAlphaTest it will be drawn with under an alpha test
    /// @return null where there is none, with the reason in the log
    std::shared_ptr<ShaderProgram> find(const EffectCompiler::ProgramText& given, std::string& log,
                                        bool hasAlphaTest = false);
    std::size_t size() const { return all_.size(); }

    /// How many textures a pass may read: what the driver has, at most 8.
    static unsigned int textureUnits();

private:
    ShaderPrograms() = default;
    void makeRoom();

    std::map<std::string, std::shared_ptr<ShaderProgram>> all_; // by both texts
};

/// Tries programs for the compiler.
class ShaderProgramBuilder final : public EffectCompiler::iProgramBuilder
{
public:
    int glslVersion() const override;
    bool build(const EffectCompiler::ProgramText& text, std::string& log) override;
};
