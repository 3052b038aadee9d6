#pragma once

#include "OS/Mac/OpenGL/Contexts/GL.h"

#include <map>
#include <string>

namespace GLDrawing {

/// A linked program and where its uniforms are; -1 where it has none of that name.
struct Program
{
    GLuint name = 0; ///< 0: the driver refused it
    /// It only fills or copies: a driver in software draws whole rectangles of it at once.
    bool isPlain = false;
    GLint toClip = -1;
    GLint sharpness = -1;
    GLint opacity = -1;
    GLint perPixel = -1;
    GLint texels = -1;
};

/// What a program for images has to do.
struct ImageProgram
{
    enum Layout : int
    {
        eWords,  ///< a pixel in each texel
        eThrees, ///< three components next to each other
        ePairs   ///< 4:2:2
    };
    Layout layout = eWords;
    const char* order = ""; ///< of the components; for pairs, of the two differences
    const char* lumas = ""; ///< for pairs: the components of the first and of the second pixel
    bool isVideo = false;
    bool hasShorts = false;
    bool isOpaque = false;   ///< its alpha counts as 1
    bool isStraight = false; ///< its colours are not premultiplied
    bool isScaled = false;
    bool hasOpacity = false;

    /// The definitions that its source begins with.
    std::string definitions() const;
    friend bool operator==(const ImageProgram&, const ImageProgram&) = default;
};

/// Gives a program a value. Contexts share their programs, and a driver may take no notice of a
/// value that another context gave last, although this one still draws with an older value of its
/// own: so every value comes after a different one.
template <class... Values>
void setUniform(GLint location, Values... values)
{
    const GLfloat given[] = {values...};
    GLfloat different[sizeof...(values)] = {};
    different[0] = given[0] == 0.0f ? 1.0f : 0.0f;
    for (const GLfloat* value : {static_cast<const GLfloat*>(different), given})
        if constexpr (sizeof...(values) == 1)
            glUniform1fv(location, 1, value);
        else if constexpr (sizeof...(values) == 2)
            glUniform2fv(location, 1, value);
        else
            glUniform4fv(location, 1, value);
}

/// The programs of one sharing group, each made when it is first asked for.
///
/// In version 1.30 of the language, or 1.20 where that is all there is. A source that the driver
/// refuses prints "OpenGLGraphicPrimitivesRenderer : %s\n" with the driver's words, once. They go
/// with the group: Mesa crashes in a context that has drawn with a program which another deletes.
class Programs
{
public:
    Programs() = default;
    Programs(const Programs&) = delete;
    Programs& operator=(const Programs&) = delete;

    enum Shape
    {
        eFill,
        eLine,
        eEllipse,
        ePie,
        kShapes
    };
    const Program& shape(Shape shape)
    {
        return shapes_[shape] ? *shapes_[shape] : makeShape(shape);
    }
    const Program& image(const ImageProgram& kind);

    /// Tries only the older version of the language, to test it. Before the first program is made.
    void useOldLanguage() { modern_ = false; }

private:
    const Program& makeShape(Shape shape);
    Program& find(const std::string& definitions, const char* vertex, const char* fragment);
    Program make(const std::string& definitions, const char* vertex, const char* fragment);
    GLuint link(const std::string& definitions, const char* vertex, const char* fragment,
                bool modern, std::string& complaint);

    std::map<std::string, Program> all_;
    const Program* shapes_[kShapes] = {};
    ImageProgram lastKind_; // most runs of images are of one kind
    const Program* lastImage_ = nullptr;
    bool modern_ = true;
};

} // namespace GLDrawing
