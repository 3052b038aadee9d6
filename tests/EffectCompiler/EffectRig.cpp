#define GL_GLEXT_PROTOTYPES
#include "EffectRig.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <GL/glx.h>

#include <cstdlib>
#include <map>
#include <vector>

using namespace EffectCompiler;

namespace {

constexpr int kSize = 8;

void storeTexels(GLenum target, const unsigned char* red)
{
    constexpr unsigned char kFour[] = {255, 0, 0,   255, 0,   255, 0,   255,
                                       0,   0, 255, 255, 255, 255, 255, 255};
    constexpr unsigned char kGreen[] = {0, 255, 0, 255};
    constexpr float kMiddle[] = {0.25F, 0.25F, 0.5F, 1.0F};
    switch (target) {
    case GL_TEXTURE_1D:
        glTexImage1D(target, 0, GL_RGBA8, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, red);
        break;
    case GL_TEXTURE_2D:
        glTexImage2D(target, 0, GL_RGBA8, 2, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE, kFour);
        break;
    case GL_TEXTURE_3D:
        glTexImage3D(target, 0, GL_RGBA32F, 1, 1, 1, 0, GL_RGBA, GL_FLOAT, kMiddle);
        break;
    case GL_TEXTURE_RECTANGLE:
        glTexImage2D(target, 0, GL_RGBA8, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, red);
        break;
    default:
        for (unsigned int side = 0; side < 6; ++side)
            glTexImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_X + side, 0, GL_RGBA8, 1, 1, 0, GL_RGBA,
                         GL_UNSIGNED_BYTE, side == 4 ? kGreen : red);
        break;
    }
}

GLuint makeTexture(GLenum target)
{
    constexpr unsigned char kRed[] = {255, 0, 0, 255};
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(target, texture);
    storeTexels(target, kRed);
    glTexParameteri(target, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(target, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    return texture;
}

GLenum targetOf(TextureKind kind)
{
    switch (kind) {
    case TextureKind::e1D:
        return GL_TEXTURE_1D;
    case TextureKind::e3D:
        return GL_TEXTURE_3D;
    case TextureKind::eCube:
        return GL_TEXTURE_CUBE_MAP;
    case TextureKind::eRect:
        return GL_TEXTURE_RECTANGLE;
    default:
        return GL_TEXTURE_2D;
    }
}

std::vector<float> valuesOf(const Effect& effect, const Uniform& uniform, std::size_t count)
{
    static const std::map<std::string, std::vector<float>> kKnown = {
        {"k", {0.25F, 0.5F, 0.75F, 1.0F}}, {"kf", {0.5F}},     {"ki", {2.0F}},     {"kb", {1.0F}},
        {"ua", {0.1F, 0.2F, 0.3F}},        {"ustr.x", {0.5F}}, {"ustr.y", {0.25F}}};
    std::vector<float> values(count);
    const auto known = kKnown.find(uniform.parameter);
    if (known != kKnown.end()) {
        for (std::size_t i = 0; i < count; ++i)
            values[i] = i < known->second.size() ? known->second[i] : 0.0F;
        return values;
    }
    for (const Parameter& parameter : effect.parameters()) {
        if (parameter.name != uniform.parameter || !parameter.initial)
            continue;
        for (std::size_t i = 0; i < std::min(count, parameter.initial->numbers.size()); ++i)
            values[i] = static_cast<float>(parameter.initial->numbers[i]);
        return values;
    }
    if (uniform.type.rows > 1) {
        for (std::size_t i = 0; i < count; ++i)
            values[i] = static_cast<float>(i) / 16.0F;
    }
    return values;
}

void setFloats(GLint location, const ValueType& type, GLsizei count, const float* values)
{
    using Setter = void (*)(GLint, GLsizei, GLboolean, const GLfloat*);
    static const std::map<std::pair<int, int>, Setter> kMatrices = {
        {{2, 2}, glUniformMatrix2fv},   {{3, 3}, glUniformMatrix3fv},
        {{4, 4}, glUniformMatrix4fv},   {{2, 3}, glUniformMatrix2x3fv},
        {{2, 4}, glUniformMatrix2x4fv}, {{3, 2}, glUniformMatrix3x2fv},
        {{3, 4}, glUniformMatrix3x4fv}, {{4, 2}, glUniformMatrix4x2fv},
        {{4, 3}, glUniformMatrix4x3fv}};
    const auto matrix = kMatrices.find({type.rows, type.columns});
    if (matrix != kMatrices.end())
        return matrix->second(location, count, GL_FALSE, values);
    switch (type.rows * type.columns) {
    case 1:
        return glUniform1fv(location, count, values);
    case 2:
        return glUniform2fv(location, count, values);
    case 3:
        return glUniform3fv(location, count, values);
    default:
        return glUniform4fv(location, count, values);
    }
}

void setInts(GLint location, const ValueType& type, GLsizei count, const std::vector<float>& values)
{
    const std::vector<GLint> whole(values.begin(), values.end());
    switch (type.rows * type.columns) {
    case 1:
        return glUniform1iv(location, count, whole.data());
    case 2:
        return glUniform2iv(location, count, whole.data());
    case 3:
        return glUniform3iv(location, count, whole.data());
    default:
        return glUniform4iv(location, count, whole.data());
    }
}

void setUniform(GLuint program, const Effect& effect, const Uniform& uniform, GLint& unit)
{
    const GLint location = glGetUniformLocation(program, uniform.name.c_str());
    GLsizei count = 1;
    for (const int size : uniform.type.arraySizes)
        count *= size;
    if (uniform.type.base == BaseType::eSampler) {
        for (GLsizei i = 0; i < count; ++i, ++unit) {
            glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
            glBindTexture(targetOf(uniform.type.texture),
                          makeTexture(targetOf(uniform.type.texture)));
            glUniform1i(location + i, unit);
        }
        glActiveTexture(GL_TEXTURE0);
        return;
    }
    const auto each = static_cast<std::size_t>(uniform.type.rows * uniform.type.columns);
    const auto values = valuesOf(effect, uniform, each * static_cast<std::size_t>(count));
    if (uniform.type.base == BaseType::eFloat)
        setFloats(location, uniform.type, count, values.data());
    else
        setInts(location, uniform.type, count, values);
}

GLuint compile(GLenum kind, const std::string& text, std::string& log)
{
    const GLuint shader = glCreateShader(kind);
    const char* source = text.c_str();
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    GLint isFit = 0;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &isFit);
    char buffer[4000] = "";
    glGetShaderInfoLog(shader, sizeof buffer, nullptr, buffer);
    log += buffer;
    return isFit ? shader : 0;
}

} // namespace

namespace {

// Never closed: the driver would be unloaded with it, and what it still holds would look lost.
Display* sharedDisplay()
{
    static Display* const display = XOpenDisplay(nullptr);
    return display;
}

} // namespace

struct EffectRig::Connection
{
    Display* display = sharedDisplay();
    GLXContext context = nullptr;
    GLXPbuffer buffer = 0;
};

EffectRig::EffectRig() : connection_(std::make_unique<Connection>())
{
    Display* display = connection_->display;
    if (!display)
        std::abort();
    constexpr int kWanted[] = {GLX_DRAWABLE_TYPE, GLX_PBUFFER_BIT, GLX_RENDER_TYPE, GLX_RGBA_BIT,
                               0};
    int count = 0;
    GLXFBConfig* configs = glXChooseFBConfig(display, DefaultScreen(display), kWanted, &count);
    constexpr int kBuffer[] = {GLX_PBUFFER_WIDTH, kSize, GLX_PBUFFER_HEIGHT, kSize, 0};
    connection_->buffer = glXCreatePbuffer(display, configs[0], kBuffer);
    connection_->context = glXCreateNewContext(display, configs[0], GLX_RGBA_TYPE, nullptr, True);
    XFree(configs);
    glXMakeContextCurrent(display, connection_->buffer, connection_->buffer, connection_->context);
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA32F, kSize, kSize, 0, GL_RGBA, GL_FLOAT, nullptr);
    GLuint target = 0;
    glGenFramebuffers(1, &target);
    glBindFramebuffer(GL_FRAMEBUFFER, target);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
    glClampColor(GL_CLAMP_FRAGMENT_COLOR, GL_FALSE);
    glClampColor(GL_CLAMP_READ_COLOR, GL_FALSE);
    glClampColor(GL_CLAMP_VERTEX_COLOR, GL_FALSE);
    glViewport(0, 0, kSize, kSize);
}

EffectRig::~EffectRig()
{
    glXMakeContextCurrent(connection_->display, 0, 0, nullptr);
    glXDestroyContext(connection_->display, connection_->context);
    glXDestroyPbuffer(connection_->display, connection_->buffer);
}

unsigned int EffectRig::link(const ProgramText& text, std::string& log)
{
    const GLuint vertex = compile(GL_VERTEX_SHADER, text.vertex, log);
    const GLuint fragment = compile(GL_FRAGMENT_SHADER, text.fragment, log);
    if (!vertex || !fragment)
        return 0;
    const GLuint program = glCreateProgram();
    glAttachShader(program, vertex);
    glAttachShader(program, fragment);
    glBindAttribLocation(program, 0, "cga_POSITION");
    glBindAttribLocation(program, 2, "cga_NORMAL");
    glBindAttribLocation(program, 3, "cga_COLOR0");
    glBindAttribLocation(program, 4, "cga_COLOR1");
    for (GLuint i = 0; i < 8; ++i)
        glBindAttribLocation(program, 8 + i, ("cga_TEXCOORD" + std::to_string(i)).c_str());
    glLinkProgram(program);
    GLint isFit = 0;
    glGetProgramiv(program, GL_LINK_STATUS, &isFit);
    char buffer[4000] = "";
    glGetProgramInfoLog(program, sizeof buffer, nullptr, buffer);
    log += buffer;
    return isFit ? program : 0;
}

bool EffectRig::draw(const Effect& effect, const ProgramText& text, Pixel& pixel, std::string& log)
{
    const GLuint program = link(text, log);
    if (!program)
        return false;
    glUseProgram(program);
    GLint unit = 0;
    for (const Uniform& uniform : text.uniforms)
        setUniform(program, effect, uniform, unit);
    glClearColor(-9.0F, -9.0F, -9.0F, -9.0F);
    glClear(GL_COLOR_BUFFER_BIT);
    glColor4f(1, 0, 1, 1);
    glNormal3f(0, 0, 1);
    glMultiTexCoord4f(GL_TEXTURE0, 0.25F, 0.25F, 0, 1);
    glMultiTexCoord4f(GL_TEXTURE1, 0.75F, 0.5F, 0, 1);
    glVertexAttrib4f(2, 0, 0, 1, 1); // programs of the effect's own have attributes of their own
    glVertexAttrib4f(3, 1, 0, 1, 1);
    glVertexAttrib4f(8, 0.25F, 0.25F, 0, 1);
    glVertexAttrib4f(9, 0.75F, 0.5F, 0, 1);
    glBegin(GL_QUADS);
    for (const auto& [x, y] : {std::pair{-1, -1}, {1, -1}, {1, 1}, {-1, 1}})
        glVertex2i(x, y);
    glEnd();
    glReadPixels(kSize / 2, kSize / 2, 1, 1, GL_RGBA, GL_FLOAT, pixel.data());
    const GLenum error = glGetError();
    if (error != GL_NO_ERROR)
        log += "GL error " + std::to_string(error);
    return error == GL_NO_ERROR;
}

std::string EffectRig::draw(const Effect& effect, int version, Pixel& pixel)
{
    std::string listing;
    const auto text = effect.translate(0, 0, version, listing);
    if (!text)
        return listing.empty() ? "no listing" : listing;
    std::string log;
    if (draw(effect, *text, pixel, log))
        return {};
    return log + "\n" + text->vertex + "\n" + text->fragment;
}

std::unique_ptr<Effect> loadFragment(const std::string& source, std::string& listing)
{
    Context context;
    const std::string pass =
        source.find("\ntechnique ") != std::string::npos
            ? ""
            : "\ntechnique t { pass p { FragmentProgram = compile glslf main(); } }\n";
    auto effect = context.createFromText(source + pass, "shader.fx", {"-DPROFILE=glslf"});
    listing = context.listing();
    return effect;
}
