#include "OS/Mac/Effects/ShaderProgram.h"

#include <QOpenGLContext>
#include <algorithm>

namespace {

// What a sampler's type reads; 0 for what is no sampler.
GLenum targetOf(GLenum type)
{
    switch (type) {
    case GL_SAMPLER_1D:
    case GL_SAMPLER_1D_SHADOW:
        return GL_TEXTURE_1D;
    case GL_SAMPLER_2D:
    case GL_SAMPLER_2D_SHADOW:
        return GL_TEXTURE_2D;
    case GL_SAMPLER_3D:
        return GL_TEXTURE_3D;
    case GL_SAMPLER_CUBE:
        return GL_TEXTURE_CUBE_MAP;
    case GL_SAMPLER_2D_RECT:
    case GL_SAMPLER_2D_RECT_SHADOW:
        return GL_TEXTURE_RECTANGLE;
    default:
        return 0;
    }
}

class Stage
{
public:
    Stage(GLenum kind, const std::string& text) : name_(glCreateShader(kind))
    {
        const char* source = text.c_str();
        glShaderSource(name_, 1, &source, nullptr);
        glCompileShader(name_);
    }
    ~Stage() { glDeleteShader(name_); }
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    bool attachTo(GLuint program, std::string& log) const
    {
        GLint compiled = GL_FALSE, length = 0;
        glGetShaderiv(name_, GL_COMPILE_STATUS, &compiled);
        glGetShaderiv(name_, GL_INFO_LOG_LENGTH, &length);
        std::string text(static_cast<std::size_t>(std::clamp(length, 1, 1 << 16)), '\0');
        glGetShaderInfoLog(name_, static_cast<GLsizei>(text.size()), &length, text.data());
        log.append(text, 0, static_cast<std::size_t>(std::max(length, 0)));
        glAttachShader(program, name_);
        return compiled == GL_TRUE;
    }

private:
    GLuint name_;
};

// Attaches the stages that there are, and links.
bool linkTexts(GLuint program, const EffectCompiler::ProgramText& text, std::string& log)
{
    bool compiled = true;
    if (!text.vertex.empty())
        compiled = Stage(GL_VERTEX_SHADER, text.vertex).attachTo(program, log);
    if (!text.fragment.empty())
        compiled = Stage(GL_FRAGMENT_SHADER, text.fragment).attachTo(program, log) && compiled;
    if (!compiled)
        return false;
    glBindAttribLocation(program, 0, "cga_POSITION");
    glBindAttribLocation(program, 2, "cga_NORMAL");
    glBindAttribLocation(program, 3, "cga_COLOR0");
    glBindAttribLocation(program, 4, "cga_COLOR1");
    for (GLuint i = 0; i < 8; ++i)
        glBindAttribLocation(program, 8 + i, ("cga_TEXCOORD" + std::to_string(i)).c_str());
    glLinkProgram(program);
    GLint linked = GL_FALSE;
    glGetProgramiv(program, GL_LINK_STATUS, &linked);
    char words[2048] = "";
    GLsizei length = 0;
    glGetProgramInfoLog(program, sizeof words, &length, words);
    log.append(words, static_cast<std::size_t>(std::max(length, 0)));
    return linked == GL_TRUE;
}

std::string withoutIndex(std::string name)
{
    if (name.ends_with("[0]"))
        name.resize(name.size() - 3);
    return name;
}

bool readsNumberedAttributes(GLuint program)
{
    GLint count = 0;
    glGetProgramiv(program, GL_ACTIVE_ATTRIBUTES, &count);
    for (GLint i = 0; i < count; ++i) {
        char name[64] = "";
        GLint size = 0;
        GLenum type = 0;
        glGetActiveAttrib(program, static_cast<GLuint>(i), sizeof name, nullptr, &size, &type,
                          name);
        if (std::string(name).starts_with("cga_"))
            return true;
    }
    return false;
}

} // namespace

ShaderProgram::ShaderProgram(GLuint name) : name_(name), usedIn_(QOpenGLContext::currentContext())
{
}

std::unique_ptr<ShaderProgram> ShaderProgram::link(const EffectCompiler::ProgramText& text,
                                                   unsigned int most, std::string& log)
{
    const GLuint name = glCreateProgram();
    if (name == 0 || !linkTexts(name, text, log)) {
        glDeleteProgram(name);
        return {};
    }
    std::unique_ptr<ShaderProgram> program(new ShaderProgram(name));
    program->readsAttributes_ = readsNumberedAttributes(name);
    if (program->readUniforms(most, log))
        return program;
    glDeleteProgram(name);
    return {};
}

void ShaderProgram::addUnits(const std::string& name, GLint location, GLenum target, GLint elements)
{
    std::vector<GLint> numbers;
    for (GLint i = 0; i < elements; ++i) {
        numbers.push_back(static_cast<GLint>(units_.size()));
        units_.push_back({name, target});
    }
    glUniform1iv(location, elements, numbers.data());
}

bool ShaderProgram::readUniforms(unsigned int most, std::string& log)
{
    GLint count = 0, longest = 0, before = 0;
    glGetProgramiv(name_, GL_ACTIVE_UNIFORMS, &count);
    glGetProgramiv(name_, GL_ACTIVE_UNIFORM_MAX_LENGTH, &longest);
    glGetIntegerv(GL_CURRENT_PROGRAM, &before);
    glUseProgram(name_);
    std::string name(static_cast<std::size_t>(longest) + 1, '\0');
    for (GLint i = 0; i < count; ++i) {
        ShaderUniform uniform;
        glGetActiveUniform(name_, static_cast<GLuint>(i), longest + 1, nullptr, &uniform.elements,
                           &uniform.type, name.data());
        uniform.location = glGetUniformLocation(name_, name.c_str());
        if (uniform.location < 0)
            continue; // one of the built-in ones
        const std::string plain = withoutIndex(name.c_str());
        if (const GLenum target = targetOf(uniform.type))
            addUnits(plain, uniform.location, target, uniform.elements);
        else
            uniforms_.emplace(plain, uniform);
    }
    glUseProgram(static_cast<GLuint>(before));
    if (units_.size() <= most)
        return true;
    log += "the program reads " + std::to_string(units_.size()) + " textures, of which only " +
           std::to_string(most) + " can be bound\n";
    return false;
}

const ShaderUniform* ShaderProgram::uniform(const std::string& name) const
{
    const auto found = uniforms_.find(name);
    return found == uniforms_.end() ? nullptr : &found->second;
}

void ShaderProgram::use()
{
    const QOpenGLContext* const context = QOpenGLContext::currentContext();
    if (usedIn_ != context)
        usedInSeveral_ = true;
    glUseProgram(name_);
}

bool ShaderProgram::destroy()
{
    if (usedInSeveral_ || usedIn_ != QOpenGLContext::currentContext())
        return false;
    glDeleteProgram(name_);
    return true;
}
