#include "OS/Mac/Effects/ShaderProgram.h"

#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"

#include <QOpenGLContext>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace {

// What the numbers of a uniform's type are, and how many an element has.
struct Shape
{
    enum Kind
    {
        eFloats,
        eInts,
        eMatrix,
        eOther
    };
    Kind kind;
    int components;
};

Shape shapeOf(GLenum type)
{
    switch (type) {
    case GL_FLOAT:
        return {Shape::eFloats, 1};
    case GL_FLOAT_VEC2:
        return {Shape::eFloats, 2};
    case GL_FLOAT_VEC3:
        return {Shape::eFloats, 3};
    case GL_FLOAT_VEC4:
        return {Shape::eFloats, 4};
    case GL_INT:
    case GL_BOOL:
        return {Shape::eInts, 1};
    case GL_INT_VEC2:
    case GL_BOOL_VEC2:
        return {Shape::eInts, 2};
    case GL_INT_VEC3:
    case GL_BOOL_VEC3:
        return {Shape::eInts, 3};
    case GL_INT_VEC4:
    case GL_BOOL_VEC4:
        return {Shape::eInts, 4};
    case GL_FLOAT_MAT2:
        return {Shape::eMatrix, 4};
    case GL_FLOAT_MAT2x3:
    case GL_FLOAT_MAT3x2:
        return {Shape::eMatrix, 6};
    case GL_FLOAT_MAT2x4:
    case GL_FLOAT_MAT4x2:
        return {Shape::eMatrix, 8};
    case GL_FLOAT_MAT3:
        return {Shape::eMatrix, 9};
    case GL_FLOAT_MAT3x4:
    case GL_FLOAT_MAT4x3:
        return {Shape::eMatrix, 12};
    case GL_FLOAT_MAT4:
        return {Shape::eMatrix, 16};
    default:
        return {Shape::eOther, 0};
    }
}

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

void sendMatrices(GLint location, GLenum type, GLsizei count, const GLfloat* numbers)
{
    switch (type) {
    case GL_FLOAT_MAT2:
        return glUniformMatrix2fv(location, count, GL_FALSE, numbers);
    case GL_FLOAT_MAT2x3:
        return glUniformMatrix2x3fv(location, count, GL_FALSE, numbers);
    case GL_FLOAT_MAT2x4:
        return glUniformMatrix2x4fv(location, count, GL_FALSE, numbers);
    case GL_FLOAT_MAT3:
        return glUniformMatrix3fv(location, count, GL_FALSE, numbers);
    case GL_FLOAT_MAT3x2:
        return glUniformMatrix3x2fv(location, count, GL_FALSE, numbers);
    case GL_FLOAT_MAT3x4:
        return glUniformMatrix3x4fv(location, count, GL_FALSE, numbers);
    case GL_FLOAT_MAT4:
        return glUniformMatrix4fv(location, count, GL_FALSE, numbers);
    case GL_FLOAT_MAT4x2:
        return glUniformMatrix4x2fv(location, count, GL_FALSE, numbers);
    default:
        return glUniformMatrix4x3fv(location, count, GL_FALSE, numbers);
    }
}

void sendFloats(GLint location, int components, GLsizei count, const GLfloat* numbers)
{
    (components == 1   ? glUniform1fv
     : components == 2 ? glUniform2fv
     : components == 3 ? glUniform3fv
                       : glUniform4fv)(location, count, numbers);
}

void sendInts(GLint location, int components, GLsizei count, const GLfloat* numbers)
{
    std::vector<GLint> whole(static_cast<std::size_t>(components * count));
    std::transform(numbers, numbers + whole.size(), whole.begin(), [](GLfloat number) {
        constexpr GLfloat kFar = 2147483520.0f; // the largest that is below 2^31
        return static_cast<GLint>(std::isnan(number) ? 0.0f
                                                     : std::clamp(std::round(number), -kFar, kFar));
    });
    (components == 1   ? glUniform1iv
     : components == 2 ? glUniform2iv
     : components == 3 ? glUniform3iv
                       : glUniform4iv)(location, count, whole.data());
}

void send(const ShaderUniform& uniform, const Shape& shape, const GLfloat* numbers)
{
    if (shape.kind == Shape::eMatrix)
        sendMatrices(uniform.location, uniform.type, uniform.elements, numbers);
    else if (shape.kind == Shape::eFloats)
        sendFloats(uniform.location, shape.components, uniform.elements, numbers);
    else
        sendInts(uniform.location, shape.components, uniform.elements, numbers);
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

bool isMesaInSoftware()
{
    const auto* renderer = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
    return renderer && std::strstr(renderer, "llvmpipe");
}

// Mesa in software takes a short cut where a program only copies a texture, and another one under
// an alpha test: the first forgets the order of the components, the second the test. A sum, and a
// discard that never happens, keep it off them.
std::string withoutShortCuts(const std::string& fragment, bool hasAlphaTest)
{
    const std::size_t firstLine = fragment.find('\n');
    if (firstLine == std::string::npos || fragment.find("gl_FragData[0]") == std::string::npos)
        return fragment;
    std::string text = fragment;
    text.insert(firstLine + 1, "#define main cga_main\n#line 1\n");
    text += "\n#undef main\nuniform vec4 cga_zero;\nvoid main()\n{\n    cga_main();\n";
    if (hasAlphaTest)
        text += "    if (cga_zero.x != 0.0)\n        discard;\n";
    return text + "    gl_FragData[0] += cga_zero;\n}\n";
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

// Contexts share their programs, and a driver may take no notice of a value that another context
// gave last, although this one still draws with an older value of its own: so every value comes
// after a different one.
void ShaderUniform::set(const std::vector<float>& numbers) const
{
    const Shape shape = shapeOf(type);
    if (shape.kind == Shape::eOther)
        return;
    std::vector<float> given(static_cast<std::size_t>(shape.components * elements));
    std::copy_n(numbers.begin(), std::min(numbers.size(), given.size()), given.begin());
    std::vector<float> different(given.size());
    for (std::size_t i = 0; i < given.size(); ++i)
        different[i] = given[i] == 0.0f ? 1.0f : 0.0f;
    send(*this, shape, different.data());
    send(*this, shape, given.data());
}

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

ShaderPrograms& ShaderPrograms::instance()
{
    static auto* const programs = new ShaderPrograms;
    return *programs;
}

unsigned int ShaderPrograms::textureUnits()
{
    return std::min(OpenGLUtils::getNumTextureUnits(), 8u);
}

std::shared_ptr<ShaderProgram> ShaderPrograms::find(const EffectCompiler::ProgramText& given,
                                                    std::string& log, bool hasAlphaTest)
{
    EffectCompiler::ProgramText text = given;
    static const bool needsCare = isMesaInSoftware();
    if (needsCare)
        text.fragment = withoutShortCuts(given.fragment, hasAlphaTest);
    std::string key = text.vertex;
    key += '\0';
    key += text.fragment;
    const auto found = all_.find(key);
    if (found != all_.end())
        return found->second;
    makeRoom();
    if (all_.size() >= kMost) {
        log += "too many different programs\n";
        return {};
    }
    std::shared_ptr<ShaderProgram> made = ShaderProgram::link(text, textureUnits(), log);
    if (made)
        all_.emplace(std::move(key), made);
    return made;
}

void ShaderPrograms::makeRoom()
{
    if (all_.size() < kKept)
        return;
    std::erase_if(all_, [](const auto& entry) {
        return entry.second.use_count() == 1 && entry.second->destroy();
    });
}

int ShaderProgramBuilder::glslVersion() const
{
    const auto* version = reinterpret_cast<const char*>(glGetString(GL_SHADING_LANGUAGE_VERSION));
    if (!version)
        return 120;
    char* rest = nullptr;
    const long major = std::strtol(version, &rest, 10);
    const long minor = *rest == '.' ? std::strtol(rest + 1, nullptr, 10) : 0;
    return major > 1 || minor >= 30 ? 130 : 120;
}

bool ShaderProgramBuilder::build(const EffectCompiler::ProgramText& text, std::string& log)
{
    return ShaderPrograms::instance().find(text, log) != nullptr;
}
