#include "OS/Mac/Effects/ShaderUniform.h"

#include <algorithm>
#include <cmath>

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
