#include "OS/Mac/Effects/EffectDrawing.h"

#include "OS/Mac/Effects/EffectText.h"
#include "OS/Mac/Effects/GLStateKeeper.h"
#include "OS/Mac/Effects/PassStates.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"
#include "OS/Mac/OpenGL/Images/OpenGLImage.h"

#include <OS/OpenGL/iGPUImage3D.h>

#include <algorithm>
#include <cmath>
#include <string_view>

using GLDrawing::ReadablePicture;

namespace {

constexpr GLuint kTexCoords = 8; // places, and the first one's attribute

} // namespace

// A render target as what GL draws into, for a scope; then it is the output again. Through a
// framebuffer object of its own: an image's may be the output's, where contexts do not share them.
class EffectDrawing::TargetInUse
{
public:
    TargetInUse(const iOpenGLImage& image, const GLStateKeeper& state) : state_(state)
    {
        glPushAttrib(GLStateKeeper::kAttributes);
        glGenFramebuffers(1, &framebuffer_);
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D,
                               image.getTextureID(), 0);
        const XY<int> size = image.getPhysicalSize();
        glViewport(0, 0, size.x, size.y);
        glDisable(GL_SCISSOR_TEST);
        glDisable(GL_BLEND);
    }
    ~TargetInUse()
    {
        state_.bindOutput();
        glDeleteFramebuffers(1, &framebuffer_);
        glPopAttrib();
    }
    TargetInUse(const TargetInUse&) = delete;
    TargetInUse& operator=(const TargetInUse&) = delete;

private:
    const GLStateKeeper& state_;
    GLuint framebuffer_ = 0;
};

namespace {

bool isWhole(const iShaderEffectBase::Picture& picture)
{
    return picture.left_ == 0.0f && picture.top_ == 0.0f && picture.right_ == 1.0f &&
           picture.bottom_ == 1.0f;
}

// A target may be as large as the driver can have it, but no larger than the largest pictures.
XY<int> limited(const XY<int>& size, const XY<int>& most)
{
    constexpr double kMostTexels = 8192.0 * 4320.0;
    double x = std::min(size.x, most.x), y = std::min(size.y, most.y);
    const double shrink = x * y > kMostTexels ? std::sqrt(kMostTexels / (x * y)) : 1.0;
    return {std::max(static_cast<int>(x * shrink), 1), std::max(static_cast<int>(y * shrink), 1)};
}

EffectTexture textureOf(const Tq::Ptr<iGPUResource>& resource, std::vector<ReadablePicture>& keep)
{
    if (const auto* cube = dynamic_cast<const iGPUImage3D*>(resource.get())) {
        const XYZ<unsigned char> size = cube->getPhysicalSize();
        return {GL_TEXTURE_3D, cube->getTextureID(), {size.x, size.y}};
    }
    keep.push_back(GLDrawing::readablePicture(dynamic_cast<const iImageBase*>(resource.get()),
                                              GLDrawing::drawnTexture()));
    return {GL_TEXTURE_2D, keep.back().texture, keep.back().size};
}

} // namespace

EffectDrawing::EffectDrawing(const EffectContents& contents,
                             const std::vector<PreparedPass>& passes,
                             const iShaderEffectBase::Drawing& drawing)
    : contents_(contents), passes_(passes), drawing_(drawing)
{
}

bool EffectDrawing::draw(std::string& fault)
{
    findTextures();
    if (!makeTargets(fault))
        return false;
    const GLStateKeeper state;
    for (const PreparedPass& pass : passes_) {
        defineTargets(pass, state);
        if (pass.target == EffectPass::kOutput)
            drawToOutput(pass);
        else
            drawToTarget(pass, state);
    }
    return true;
}

void EffectDrawing::findTextures()
{
    inputs_.resize(contents_.inputs().size());
    const std::size_t given = std::min(inputs_.size(), drawing_.pictures_.size());
    for (std::size_t i = 0; i < given; ++i)
        inputs_[i] = {GL_TEXTURE_2D, drawing_.pictures_[i].textureID_, drawing_.pictures_[i].size_};
    for (const Tq::Ptr<iShaderParamValue>& value : drawing_.values_) {
        if (!value || value->getType() != iShaderParamValue::eSource)
            continue;
        const int input = contents_.findInput(EffectText::standard(value->getName()));
        if (input >= 0)
            inputs_[static_cast<std::size_t>(input)] = ::textureOf(value->getSource(), copies_);
    }
}

int EffectDrawing::targetRead(const PreparedPass::Unit& unit) const
{
    if (unit.sampler < 0)
        return -1;
    return contents_.findTarget(
        contents_.samplers()[static_cast<std::size_t>(unit.sampler)].texture);
}

bool EffectDrawing::makeTarget(int index, std::string& fault)
{
    if (index < 0 || targets_[static_cast<std::size_t>(index)].image)
        return true;
    const EffectTarget& wanted = contents_.targets()[static_cast<std::size_t>(index)];
    const XY<int> size = limited(wanted.sizeFor(drawing_.size_), OpenGLUtils::getMaxTextureSize());
    const Tq::Ptr<iOpenGLImage> image =
        OpenGLImage::create(size, wanted.format).dynamicCast<iOpenGLImage>();
    if (!image || image->getTextureID() == 0) {
        fault = "render target " + wanted.name + " cannot be made";
        return false;
    }
    targets_[static_cast<std::size_t>(index)] = {image, false};
    return true;
}

bool EffectDrawing::makeTargets(std::string& fault)
{
    targets_.resize(contents_.targets().size());
    for (const PreparedPass& pass : passes_) {
        if (!makeTarget(pass.target, fault))
            return false;
        for (const PreparedPass::Unit& unit : pass.units)
            if (!makeTarget(targetRead(unit), fault))
                return false;
    }
    return true;
}

// A target's texture comes with the pixels of whoever had it before.
void EffectDrawing::defineTargets(const PreparedPass& pass, const GLStateKeeper& state)
{
    const auto define = [&](int index) {
        if (index < 0 || targets_[static_cast<std::size_t>(index)].isDefined)
            return;
        Target& target = targets_[static_cast<std::size_t>(index)];
        target.isDefined = true;
        const TargetInUse inUse(*target.image, state);
        glClearColor(0.0f, 0.0f, 0.0f, 0.0f);
        glClear(GL_COLOR_BUFFER_BIT);
    };
    for (const PreparedPass::Unit& unit : pass.units)
        define(targetRead(unit));
    if (!pass.coversAll)
        define(pass.target);
}

void EffectDrawing::drawToOutput(const PreparedPass& pass)
{
    glPushAttrib(GLStateKeeper::kAttributes);
    if (drawing_.blend_) {
        glEnable(GL_BLEND);
        glBlendEquation(GL_FUNC_ADD);
        glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    } else {
        glDisable(GL_BLEND);
    }
    drawPass(pass, outputVertices(), drawing_.outputSize_);
    glPopAttrib();
}

// GL must not read what it draws into: a pass that does gets another texture to draw into.
void EffectDrawing::drawToTarget(const PreparedPass& pass, const GLStateKeeper& state)
{
    Target& target = targets_[static_cast<std::size_t>(pass.target)];
    Tq::Ptr<iOpenGLImage> drawn = target.image;
    const XY<int> size = drawn->getPhysicalSize();
    const bool readsItself =
        std::any_of(pass.units.begin(), pass.units.end(), [&](const PreparedPass::Unit& unit) {
            return targetRead(unit) == pass.target;
        });
    if (readsItself) {
        drawn = drawn->createCompatibleImage(size).dynamicCast<iOpenGLImage>();
        if (!drawn || drawn->getTextureID() == 0)
            return;
        if (!pass.coversAll) {
            const TargetInUse before(*target.image, state);
            glBindTexture(GL_TEXTURE_2D, drawn->getTextureID());
            glCopyTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 0, 0, size.x, size.y);
            glBindTexture(GL_TEXTURE_2D, 0);
        }
    }
    {
        const TargetInUse inUse(*drawn, state);
        drawPass(pass, targetVertices(), size);
    }
    target.image = drawn;
    target.isDefined = true;
}

void EffectDrawing::drawPass(const PreparedPass& pass, const Vertices& vertices,
                             const XY<int>& size)
{
    pass.program->use();
    for (const PreparedPass::Value& value : pass.values)
        value.uniform.set(
            value.param < 0
                ? value.fixed
                : numbersOf(*contents_.params()[static_cast<std::size_t>(value.param)], size));
    EffectTexturesInUse textures;
    for (const PreparedPass::Unit& unit : pass.units)
        textures.bind(unit.target, textureOf(unit),
                      unit.sampler < 0
                          ? SamplerStates()
                          : contents_.samplers()[static_cast<std::size_t>(unit.sampler)].states);
    applyPassStates(pass.pass->states);
    send(pass, vertices);
    glUseProgram(0);
}

EffectTexture EffectDrawing::textureOf(const PreparedPass::Unit& unit) const
{
    if (unit.sampler < 0)
        return {};
    return textureNamed(contents_.samplers()[static_cast<std::size_t>(unit.sampler)].texture);
}

EffectTexture EffectDrawing::textureNamed(const std::string& name) const
{
    const int input = contents_.findInput(name);
    if (input >= 0)
        return inputs_[static_cast<std::size_t>(input)];
    const int index = contents_.findTarget(name);
    if (index < 0 || !targets_[static_cast<std::size_t>(index)].image)
        return {};
    const Tq::Ptr<iOpenGLImage>& image = targets_[static_cast<std::size_t>(index)].image;
    return {GL_TEXTURE_2D, image->getTextureID(), image->getPhysicalSize()};
}

std::vector<float> EffectDrawing::numbersOf(const OpenGLShaderParam& param,
                                            const XY<int>& size) const
{
    static const std::string kNone;
    const std::string& semantic = param.parameter().semantic ? *param.parameter().semantic : kNone;
    const auto sizeNumbers = [](const XY<int>& xy) {
        return std::vector<float>{static_cast<float>(xy.x), static_cast<float>(xy.y)};
    };
    if (EffectText::equalsNoCase(semantic, "VIEWPORTPIXELSIZE"))
        return sizeNumbers(size);
    if (EffectText::equalsNoCase(semantic, "TEXTUREPIXELSIZE")) {
        const LightweightString<char> named = param.getAnnotationStringValue("ResourceName");
        if (!named.empty())
            return sizeNumbers(textureNamed(EffectText::standard(named)).size);
        return sizeNumbers(inputs_.empty() ? XY<int>() : inputs_.front().size);
    }
    std::vector<float> numbers = param.values();
    for (const Tq::Ptr<iShaderParamValue>& value : drawing_.values_)
        if (value && value->getName() == std::string_view(param.parameter().name))
            overrideBy(*value, numbers);
    return numbers;
}

void EffectDrawing::overrideBy(const iShaderParamValue& value, std::vector<float>& numbers)
{
    const auto all = [&](float number) { std::fill(numbers.begin(), numbers.end(), number); };
    switch (value.getType()) {
    case iShaderParamValue::eFloat:
        return all(value.getFloat());
    case iShaderParamValue::eInt:
        return all(static_cast<float>(value.getInt()));
    case iShaderParamValue::eColour: {
        const NormalisedRGB colour = value.getColour();
        const float components[] = {colour.red, colour.green, colour.blue, colour.alpha};
        std::copy_n(components, std::min<std::size_t>(numbers.size(), 4), numbers.begin());
        return;
    }
    case iShaderParamValue::eSource:
        return;
    }
}

// -- Vertices
// --------------------------------------------------------------------------------------

void EffectDrawing::startVertices(Vertices& vertices) const
{
    const std::size_t pictures = std::min<std::size_t>(drawing_.pictures_.size(), kTexCoords - 1);
    vertices.areWhole = std::all_of(drawing_.pictures_.begin(), drawing_.pictures_.end(), isWhole);
    vertices.sets = vertices.areWhole ? 1 : pictures + 1;
}

void EffectDrawing::addVertex(Vertices& vertices, float x, float y, float s, float t) const
{
    vertices.numbers.insert(vertices.numbers.end(), {x, y});
    if (!vertices.areWhole)
        for (std::size_t i = 0; i + 1 < vertices.sets; ++i) {
            const iShaderEffectBase::Picture& picture = drawing_.pictures_[i];
            vertices.numbers.push_back(picture.left_ + s * (picture.right_ - picture.left_));
            vertices.numbers.push_back(picture.top_ + t * (picture.bottom_ - picture.top_));
        }
    vertices.numbers.insert(vertices.numbers.end(), {s, t});
    ++vertices.count;
}

EffectDrawing::Vertices EffectDrawing::outputVertices() const
{
    Vertices vertices;
    startVertices(vertices);
    const float(&toClip)[4] = drawing_.toClip_;
    for (const iShaderEffectBase::Corner& corner : drawing_.corners_)
        addVertex(vertices, corner.x_ * toClip[0] + toClip[2], corner.y_ * toClip[1] + toClip[3],
                  corner.s_, corner.t_);
    return vertices;
}

// Row 0 of a texture is its top row, and GL's bottom one.
EffectDrawing::Vertices EffectDrawing::targetVertices() const
{
    Vertices vertices;
    startVertices(vertices);
    constexpr float kCorners[][2] = {{0.0f, 0.0f}, {1.0f, 0.0f}, {1.0f, 1.0f}, {0.0f, 1.0f}};
    for (const auto& [s, t] : kCorners)
        addVertex(vertices, 2.0f * s - 1.0f, 2.0f * t - 1.0f, s, t);
    return vertices;
}

void EffectDrawing::send(const PreparedPass& pass, const Vertices& vertices)
{
    const auto stride = static_cast<GLsizei>((2 + 2 * vertices.sets) * sizeof(float));
    const float* const places = vertices.numbers.data();
    const auto coordinates = [&](GLuint place) {
        std::size_t set = place + 1 < vertices.sets ? place : 0;
        if (place == kTexCoords - 1)
            set = vertices.sets - 1;
        return places + 2 + 2 * set;
    };
    if (pass.program->readsAttributes()) {
        glVertexAttribPointer(0, 2, GL_FLOAT, GL_FALSE, stride, places);
        glEnableVertexAttribArray(0);
        glVertexAttrib3f(2, 0.0f, 0.0f, 1.0f);
        glVertexAttrib4f(3, 1.0f, 1.0f, 1.0f, 1.0f);
        glVertexAttrib4f(4, 0.0f, 0.0f, 0.0f, 1.0f);
        for (GLuint i = 0; i < kTexCoords; ++i) {
            glVertexAttribPointer(8 + i, 2, GL_FLOAT, GL_FALSE, stride, coordinates(i));
            glEnableVertexAttribArray(8 + i);
        }
        glDrawArrays(GL_QUADS, 0, vertices.count);
        for (GLuint i = 0; i < kTexCoords; ++i)
            glDisableVertexAttribArray(8 + i);
        glDisableVertexAttribArray(0);
        return;
    }
    glVertexPointer(2, GL_FLOAT, stride, places);
    glEnableClientState(GL_VERTEX_ARRAY);
    for (GLuint i = 0; i < kTexCoords; ++i) {
        glClientActiveTexture(GL_TEXTURE0 + i);
        glTexCoordPointer(2, GL_FLOAT, stride, coordinates(i));
        glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    }
    glDrawArrays(GL_QUADS, 0, vertices.count);
    for (GLuint i = kTexCoords; i-- > 0;) {
        glClientActiveTexture(GL_TEXTURE0 + i);
        glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    }
    glDisableClientState(GL_VERTEX_ARRAY);
}
