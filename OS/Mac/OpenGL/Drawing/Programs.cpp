#include "OS/Mac/OpenGL/Drawing/Programs.h"

#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/OpenGL/Drawing/Shaders.h"
#include "OS/Mac/OpenGL/Drawing/VertexLayout.h"

namespace GLDrawing {

namespace {

/// A shader until it is linked.
class Shader
{
public:
    Shader(GLenum stage, const char* header, const std::string& definitions, const char* source)
        : name_(glCreateShader(stage))
    {
        const char* const parts[] = {header, definitions.c_str(), source};
        glShaderSource(name_, 3, parts, nullptr);
        glCompileShader(name_);
    }
    ~Shader() { glDeleteShader(name_); }
    Shader(const Shader&) = delete;
    Shader& operator=(const Shader&) = delete;

    bool isCompiled() const
    {
        GLint compiled = GL_FALSE;
        glGetShaderiv(name_, GL_COMPILE_STATUS, &compiled);
        return compiled == GL_TRUE;
    }
    std::string complaint() const
    {
        char text[512] = "";
        glGetShaderInfoLog(name_, sizeof text, nullptr, text);
        return text;
    }
    GLuint name() const { return name_; }

private:
    GLuint name_;
};

std::string define(const char* name, const std::string& value = "")
{
    return std::string("#define ") + name + " " + value + "\n";
}

} // namespace

std::string ImageProgram::definitions() const
{
    std::string text = define("LAYOUT", std::to_string(layout));
    if (layout != eWords) {
        text += define("ORDER", order);
        text += define("UNIT", hasShorts ? "255.99609375" : "255.0"); // 65535 / 256
        if (isVideo)
            text += define("VIDEO");
    }
    if (layout == ePairs) {
        text += define("LUMA1", std::string(1, lumas[0]));
        text += define("LUMA2", std::string(1, lumas[1]));
    }
    if (isOpaque)
        text += define("OPAQUE");
    if (isStraight)
        text += define("STRAIGHT");
    if (isScaled)
        text += define("SCALED");
    if (hasOpacity)
        text += define("OPACITY");
    return text;
}

const Program& Programs::makeShape(Shape shape)
{
    struct Source
    {
        const char *definitions, *vertex, *fragment;
    };
    constexpr Source kSources[kShapes] = {
        {"#define FILL\n", Shaders::kFillVertex, Shaders::kFillFragment},
        {"#define LINE\n", Shaders::kLineVertex, Shaders::kLineFragment},
        {"#define ELLIPSE\n", Shaders::kEllipseVertex, Shaders::kEllipseFragment},
        {"#define PIE\n", Shaders::kEllipseVertex, Shaders::kEllipseFragment},
    };
    const Source& source = kSources[shape];
    Program& program = find(source.definitions, source.vertex, source.fragment);
    program.isPlain = shape == eFill;
    shapes_[shape] = &program;
    return program;
}

const Program& Programs::image(const ImageProgram& kind)
{
    if (!lastImage_ || !(kind == lastKind_)) {
        Program& program = find(kind.definitions(), Shaders::kImageVertex, Shaders::kImageFragment);
        program.isPlain = kind.layout == ImageProgram::eWords && !kind.isScaled;
        lastImage_ = &program;
        lastKind_ = kind;
    }
    return *lastImage_;
}

Program& Programs::find(const std::string& definitions, const char* vertex, const char* fragment)
{
    const auto found = all_.find(definitions);
    if (found != all_.end())
        return found->second;
    return all_.emplace(definitions, make(definitions, vertex, fragment)).first->second;
}

Program Programs::make(const std::string& definitions, const char* vertex, const char* fragment)
{
    Program program;
    std::string complaint;
    if (modern_)
        program.name = link(definitions, vertex, fragment, true, complaint);
    if (program.name == 0) {
        program.name = link(definitions, vertex, fragment, false, complaint);
        if (program.name != 0)
            modern_ = false;
    }
    if (program.name == 0) {
        OSInternal::printLine("OpenGLGraphicPrimitivesRenderer : %s\n", complaint.c_str());
        return program;
    }
    program.toClip = glGetUniformLocation(program.name, "toClip");
    program.sharpness = glGetUniformLocation(program.name, "sharpness");
    program.opacity = glGetUniformLocation(program.name, "opacity");
    program.perPixel = glGetUniformLocation(program.name, "perPixel");
    program.texels = glGetUniformLocation(program.name, "texels");
    return program;
}

GLuint Programs::link(const std::string& definitions, const char* vertex, const char* fragment,
                      bool modern, std::string& complaint)
{
    const Shader vertexShader(GL_VERTEX_SHADER,
                              modern ? Shaders::kModernVertexHeader : Shaders::kOldVertexHeader,
                              definitions, vertex);
    const Shader fragmentShader(
        GL_FRAGMENT_SHADER, modern ? Shaders::kModernFragmentHeader : Shaders::kOldFragmentHeader,
        definitions, fragment);
    for (const Shader* shader : {&vertexShader, &fragmentShader})
        if (!shader->isCompiled()) {
            complaint = shader->complaint();
            return 0;
        }
    const GLuint program = glCreateProgram();
    glAttachShader(program, vertexShader.name());
    glAttachShader(program, fragmentShader.name());
    for (const auto& [name, location] : kAttributeNames)
        glBindAttribLocation(program, location, name);
    glLinkProgram(program);
    GLint linked = GL_FALSE;
    glGetProgramiv(program, GL_LINK_STATUS, &linked);
    if (linked == GL_TRUE)
        return program;
    char text[512] = "";
    glGetProgramInfoLog(program, sizeof text, nullptr, text);
    complaint = text;
    glDeleteProgram(program);
    return 0;
}

} // namespace GLDrawing
