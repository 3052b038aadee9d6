// A picture of 1920 x 1080 through an effect of two passes, against the same GLSL bound by hand.
// Milliseconds of process time. Run it in a display: tests/support/with-display build/release/...
#include "support/PairedRuns.h"

#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Mac/Effects/OpenGLShaderEffect.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"
#include "OS/Mac/OpenGL/Drawing/OpenGLGraphicPrimitivesRenderer.h"
#include "OS/Mac/OpenGL/Images/OpenGLImage.h"
#include "OS/Mac/Painting/QtImage.h"

#include <OS/Primitives/ImageDescriptionEx.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr double kNsPerMs = 1e6;
constexpr char kEffect[] = R"(
texture Picture : SOURCE;
texture Rows : RENDERCOLORTARGET;
sampler2D PictureSampler = sampler_state { Texture = <Picture>; };
sampler2D RowsSampler = sampler_state { Texture = <Rows>; };
float4 Gain = { 1.1, 1.0, 0.9, 1.0 };
float2 size : VIEWPORTPIXELSIZE;
float4 blurred(sampler2D source, float2 at, float2 next)
{
    return (tex2D(source, at - 2.0 * next) + 4.0 * tex2D(source, at - next) + 6.0 * tex2D(source, at) +
            4.0 * tex2D(source, at + next) + tex2D(source, at + 2.0 * next)) / 16.0;
}
float4 alongRows(float2 at : TEXCOORD0) : COLOR { return blurred(PictureSampler, at, float2(1.0 / size.x, 0.0)); }
float4 alongColumns(float2 at : TEXCOORD0) : COLOR
{
    return blurred(RowsSampler, at, float2(0.0, 1.0 / size.y)) * Gain;
}
technique Blur
{
    pass a < string Script = "RENDERCOLORTARGET0 = Rows;"; > { FragmentProgram = compile PROFILE alongRows(); }
    pass b { FragmentProgram = compile PROFILE alongColumns(); }
}
)";

// A program and what it takes to draw with it, as a careful author would write it for one effect.
class HandBound
{
public:
    /// @param isCareful with the sum that keeps Mesa in software off a faulty short cut, as the
    /// library has it
    HandBound(const EffectCompiler::Effect& effect, std::size_t pass, bool isCareful)
    {
        std::string listing;
        auto text = effect.translate(0, pass, 130, listing);
        if (isCareful) {
            text->fragment.insert(text->fragment.find('\n') + 1, "#define main own\n");
            text->fragment += "\n#undef main\nuniform vec4 zero;\n"
                              "void main() { own(); gl_FragData[0] += zero; }\n";
        }
        program_ = glCreateProgram();
        for (const auto& [kind, source] : {std::pair(GL_VERTEX_SHADER, text->vertex.c_str()),
                                           std::pair(GL_FRAGMENT_SHADER, text->fragment.c_str())}) {
            const GLuint shader = glCreateShader(static_cast<GLenum>(kind));
            glShaderSource(shader, 1, &source, nullptr);
            glCompileShader(shader);
            glAttachShader(program_, shader);
        }
        glLinkProgram(program_);
        for (const EffectCompiler::Uniform& uniform : text->uniforms) {
            const GLint location = glGetUniformLocation(program_, uniform.name.c_str());
            (uniform.parameter == "size"   ? size_
             : uniform.parameter == "Gain" ? gain_
                                           : sampler_) = location;
        }
    }

    void draw(GLuint framebuffer, GLuint texture, int width, int height) const
    {
        constexpr float kCorners[] = {-1, -1, 0, 0, 1, -1, 1, 0, 1, 1, 1, 1, -1, 1, 0, 1};
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
        glViewport(0, 0, width, height);
        glUseProgram(program_);
        glUniform2f(size_, static_cast<float>(width), static_cast<float>(height));
        glUniform4f(gain_, 1.1f, 1.0f, 0.9f, 1.0f);
        glUniform1i(sampler_, 0);
        glBindTexture(GL_TEXTURE_2D, texture);
        glVertexPointer(2, GL_FLOAT, 4 * sizeof(float), kCorners);
        glTexCoordPointer(2, GL_FLOAT, 4 * sizeof(float), kCorners + 2);
        glEnableClientState(GL_VERTEX_ARRAY);
        glEnableClientState(GL_TEXTURE_COORD_ARRAY);
        glDrawArrays(GL_QUADS, 0, 4);
        glDisableClientState(GL_TEXTURE_COORD_ARRAY);
        glDisableClientState(GL_VERTEX_ARRAY);
        glBindTexture(GL_TEXTURE_2D, 0);
        glUseProgram(0);
    }

private:
    GLuint program_ = 0;
    GLint size_ = -1, gain_ = -1, sampler_ = -1;
};

GLuint framebufferOf(GLuint texture)
{
    GLuint framebuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    return framebuffer;
}

// Process time: all threads of the driver's, whatever else the machine does.
double processMs()
{
    timespec now = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / kNsPerMs;
}

template <class Code>
double each(int times, Code code)
{
    const OpenGLContextProtector protector;
    glFinish();
    const double before = processMs();
    for (int i = 0; i < times; ++i) {
        code();
        glFinish();
    }
    return (processMs() - before) / times;
}

void compareAt(const XY<int>& size, int times, OpenGLShaderEffect& effect,
               const HandBound (&plain)[2], const HandBound (&careful)[2], const char* what,
               double aim)
{
    const Tq::Ptr<QtImage> host(new QtImage(size, QtImage::getDefaultFormat(), 1));
    const int bytes = size.x * size.y * 4;
    for (int i = 0; i < bytes; ++i)
        host->image()->bits()[i] = static_cast<unsigned char>(i * 31 >> 3);
    const Tq::Ptr<OpenGLImage> source(new OpenGLImage(host, iGPUImage::eARGB8));
    const Tq::Ptr<OpenGLImage> rows(new OpenGLImage(size, iGPUImage::eARGB8));
    const Tq::Ptr<OpenGLImage> target(new OpenGLImage(size, iGPUImage::eARGB8));
    const OpenGLContextProtector protector;
    const GLuint rowsBuffer = framebufferOf(rows->getTextureID());
    const GLuint targetBuffer = framebufferOf(target->getTextureID());
    const auto byHand = [&](const HandBound(&passes)[2]) {
        return each(times, [&] {
            passes[0].draw(rowsBuffer, source->getTextureID(), size.x, size.y);
            passes[1].draw(targetBuffer, rows->getTextureID(), size.x, size.y);
            glBindFramebuffer(GL_FRAMEBUFFER, 0);
        });
    };
    const auto byEffect = [&] {
        return each(times, [&] { effect.render({{"Picture", source}}, target); });
    };
    Bench::compare(what,
                   {{"effect", byEffect},
                    {"by hand", [&] { return byHand(plain); }},
                    {"by hand, as careful", [&] { return byHand(careful); }}},
                   {{{"by hand"}, aim}, {{"by hand, as careful"}, aim}});
}

} // namespace

int main()
{
    OpenGLUtils::instance();
    char folder[] = "/tmp/effects-bench-XXXXXX";
    if (!OpenGLUtils::isInitialised() || !mkdtemp(folder))
        return 1;
    const std::string path = std::string(folder) + "/blur.fx";
    std::ofstream(path) << kEffect;
    EffectCompiler::Context context;
    const Tq::Ptr<OpenGLShaderEffect> effect =
        OpenGLShaderEffect::load(
            &context, "glslf",
            LightweightString<wchar_t>(std::wstring(path.begin(), path.end()).c_str()))
            .effect;
    if (!effect)
        return 1;
    const OpenGLContextProtector protector;
    const EffectCompiler::Effect& text = effect->contents()->effect();
    const HandBound plain[2] = {{text, 0, false}, {text, 1, false}};
    const HandBound careful[2] = {{text, 0, true}, {text, 1, true}};
    Bench::printHeader("An effect of two passes, process time", "ms");
    compareAt({1920, 1080}, 3, *effect, plain, careful, "1920 x 1080", 1.05);
    compareAt({64, 64}, 200, *effect, plain, careful, "64 x 64: what binding costs", 0.0);
    std::remove(path.c_str());
    return rmdir(folder);
}
