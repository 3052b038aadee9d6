#include "OS/Mac/Effects/OpenGL3DEffect.h"

#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/Effects/EffectTextures.h"
#include "OS/Mac/Effects/GLStateKeeper.h"
#include "OS/Mac/Effects/SceneTarget.h"
#include "OS/Mac/Effects/ShaderPrograms.h"
#include "OS/Mac/Effects/SpaceMath.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"
#include "OS/Mac/OpenGL/Drawing/ReadablePicture.h"

#include <OS/OpenGL/iOpenGLImage.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

using namespace SpaceMath;

namespace {

constexpr char kVertex[] = R"(
ATTRIBUTE vec4 cga_POSITION;
ATTRIBUTE vec4 cga_TEXCOORD0;
VARYING vec3 picture;
void main()
{
    gl_Position = cga_POSITION;
    picture = cga_TEXCOORD0.xyz;
}
)";

// Seen from behind, a picture of its own reads from left to right. Nothing of a picture hides
// nothing. A side that the light does not reach has the ambient alone.
constexpr char kFragment[] = R"(
VARYING vec3 picture;
uniform sampler2D front;
uniform sampler2D back;
uniform float mirrorsBack;
uniform float opacity;
uniform vec3 ambient;
uniform vec3 light;
void main()
{
    vec2 behind = vec2(mix(picture.x, 1.0 - picture.x, mirrorsBack), picture.y);
    vec4 colour = gl_FrontFacing ? texture2D(front, picture.xy) : texture2D(back, behind);
    float facing = gl_FrontFacing ? picture.z : -picture.z;
    if (colour.a * opacity <= 0.0)
        discard;
    colour.rgb *= ambient + light * max(facing, 0.0);
    gl_FragData[0] = clamp(colour, 0.0, 1.0) * opacity;
}
)";

std::string header(int version, bool isVertex)
{
    if (version < 130)
        return "#version 120\n#define ATTRIBUTE attribute\n#define VARYING varying\n";
    return std::string("#version 130\n#define ATTRIBUTE in\n#define VARYING ") +
           (isVertex ? "out\n" : "in\n");
}

std::vector<float> verticesOf(const SheetMesh& mesh)
{
    std::vector<float> numbers;
    numbers.reserve(mesh.points.size() * 7);
    for (const SheetMesh::Point& point : mesh.points) {
        numbers.insert(numbers.end(), point.place, point.place + 4);
        numbers.insert(numbers.end(), {point.u, point.v, point.facing});
    }
    return numbers;
}

bool isDeep(const iGPUImage& image)
{
    return image.getFormat() == iGPUImage::eARGB16 || image.getFormat() == iGPUImage::eARGB2101010;
}

} // namespace

// A sheet ready for GL, and the pictures on it.
struct OpenGL3DEffect::Drawable
{
    SheetMesh mesh;
    GLDrawing::ReadablePicture front, back;
    float opacity = 1.0f;
};

// The rectangle of a picture as large as the target fills it.
OpenGL3DEffect::OpenGL3DEffect()
{
    camera_.view.m_[11] = -1.20710678f; // half of 1, over the tangent of half of 45 degrees
}

bool OpenGL3DEffect::setView(const XYZ<float>& eye, const XYZ<float>& at, const XYZ<float>& up)
{
    const Vector from = vector(eye);
    const Vector backwards = unit(from - vector(at));
    const Vector right = unit(cross(unit(vector(up)), backwards));
    const Vector upwards = cross(backwards, right);
    if (!(dot(right, right) > 0.5) || !(dot(backwards, backwards) > 0.5))
        return false;
    const auto f = [](double number) { return static_cast<float>(number); };
    Matrix view;
    int row = 0;
    for (const Vector& axis : {right, upwards, backwards}) {
        float* const m = view.m_ + 4 * row++;
        m[0] = f(axis.x);
        m[1] = f(axis.y);
        m[2] = f(axis.z);
        m[3] = f(-dot(axis, from));
    }
    camera_.view = view;
    return true;
}

bool OpenGL3DEffect::setPerspective(float verticalDegrees, float nearest, float farthest)
{
    if (!(verticalDegrees > 0.0f && verticalDegrees < 180.0f && nearest > 0.0f &&
          farthest > nearest && std::isfinite(farthest)))
        return false;
    verticalDegrees_ = verticalDegrees;
    nearest_ = nearest;
    farthest_ = farthest;
    return true;
}

OpenGL3DEffect::Matrix OpenGL3DEffect::projectionFor(const XY<int>& size) const
{
    const double half = static_cast<double>(verticalDegrees_) * std::numbers::pi / 360.0;
    const double near = static_cast<double>(nearest_), far = static_cast<double>(farthest_);
    const double scale = 1.0 / std::tan(half);
    const auto f = [](double number) { return static_cast<float>(number); };
    Matrix projection;
    projection.m_[0] = f(scale * size.y / size.x);
    projection.m_[5] = f(scale);
    projection.m_[10] = f((far + near) / (near - far));
    projection.m_[11] = f(2.0 * far * near / (near - far));
    projection.m_[14] = -1.0f;
    projection.m_[15] = 0.0f;
    return projection;
}

bool OpenGL3DEffect::makeProgram()
{
    if (program_)
        return true;
    const int version = ShaderProgramBuilder().glslVersion();
    std::string log;
    program_ = ShaderPrograms::instance().find(
        {header(version, true) + kVertex, header(version, false) + kFragment, {}}, log);
    if (!program_)
        OSInternal::printLine("OpenGL3DEffect::render() : %s\n", log.c_str());
    return program_ != nullptr;
}

std::vector<OpenGL3DEffect::Drawable> OpenGL3DEffect::drawablesOf(const std::vector<Sheet>& sheets,
                                                                  const XY<int>& size,
                                                                  GLuint output) const
{
    std::vector<Drawable> drawables;
    SheetMesh::Camera camera = camera_;
    camera.projection = projectionFor(size);
    for (const Sheet& sheet : sheets) {
        const Tq::Ptr<iGPUImage>& shape = sheet.front_ ? sheet.front_ : sheet.back_;
        if (!shape || !(sheet.opacity_ > 0.0f))
            continue;
        std::optional<SheetMesh> mesh =
            SheetMesh::of(sheet, shape->getSize(), camera, light_ ? &light_->direction_ : nullptr);
        if (!mesh)
            continue;
        Drawable drawable;
        drawable.mesh = std::move(*mesh);
        drawable.front = GLDrawing::readablePicture(sheet.front_.get(), output);
        if (sheet.back_)
            drawable.back = GLDrawing::readablePicture(sheet.back_.get(), output);
        drawable.opacity = std::min(sheet.opacity_, 1.0f);
        if (drawable.front.texture != 0 || drawable.back.texture != 0)
            drawables.push_back(std::move(drawable));
    }
    return drawables;
}

void OpenGL3DEffect::setValue(const char* name, const std::vector<float>& numbers) const
{
    if (const ShaderUniform* uniform = program_->uniform(name))
        uniform->set(numbers);
}

void OpenGL3DEffect::draw(const Drawable& drawable) const
{
    const bool hasBack = drawable.back.texture != 0;
    setValue("opacity", {drawable.opacity});
    setValue("mirrorsBack", {hasBack ? 1.0f : 0.0f});
    EffectTexturesInUse textures;
    for (const ShaderProgram::Unit& unit : program_->units()) {
        const GLDrawing::ReadablePicture& picture =
            unit.sampler == "back" && hasBack ? drawable.back : drawable.front;
        textures.bind(unit.target, {GL_TEXTURE_2D, picture.texture, picture.size}, {});
    }
    constexpr GLsizei kStride = 7 * sizeof(float);
    const std::vector<float> vertices = verticesOf(drawable.mesh);
    glVertexAttribPointer(0, 4, GL_FLOAT, GL_FALSE, kStride, vertices.data());
    glVertexAttribPointer(8, 3, GL_FLOAT, GL_FALSE, kStride, vertices.data() + 4);
    glEnableVertexAttribArray(0);
    glEnableVertexAttribArray(8);
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(drawable.mesh.triangles.size()),
                   GL_UNSIGNED_INT, drawable.mesh.triangles.data());
    glDisableVertexAttribArray(8);
    glDisableVertexAttribArray(0);
}

bool OpenGL3DEffect::draw(const std::vector<Drawable>& drawables, const NormalisedRGB& ground,
                          GLuint texture, const XY<int>& size, bool isDeepTarget)
{
    const GLStateKeeper state;
    SceneTarget scene(texture, size, isDeepTarget);
    if (!scene.isComplete())
        return false;
    glViewport(0, 0, size.x, size.y);
    glDisable(GL_SCISSOR_TEST);
    glClearColor(ground.red * ground.alpha, ground.green * ground.alpha, ground.blue * ground.alpha,
                 ground.alpha);
    glClearDepth(1.0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glFrontFace(GL_CW); // y points downwards here
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    program_->use();
    const auto colour = [](const NormalisedRGB& rgb) {
        return std::vector<float>{rgb.red, rgb.green, rgb.blue};
    };
    setValue("ambient", light_ ? colour(light_->ambient_) : std::vector<float>{1.0f, 1.0f, 1.0f});
    setValue("light", light_ ? colour(light_->colour_) : std::vector<float>{0.0f, 0.0f, 0.0f});
    for (const Drawable& drawable : drawables)
        draw(drawable);
    scene.finish();
    return true;
}

bool OpenGL3DEffect::render(const std::vector<Sheet>& sheets, const NormalisedRGB& ground,
                            const Tq::Ptr<iGPUImage>& target)
{
    const OpenGLContextProtector protector;
    const Tq::Ptr<iOpenGLImage> image = target.dynamicCast<iOpenGLImage>();
    if (!OpenGLContextProtector::hasContext() || !image || image->getTextureID() == 0 ||
        image->getPhysicalSize() != image->getSize() || !makeProgram())
        return false;
    const XY<int> size = image->getPhysicalSize();
    const std::vector<Drawable> drawables = drawablesOf(sheets, size, image->getTextureID());
    const bool drawn = draw(drawables, ground, image->getTextureID(), size, isDeep(*image));
    if (!drawn)
        OSInternal::printLine("OpenGL3DEffect::render() : the target cannot be drawn on\n");
    glFlush();
    return drawn;
}
