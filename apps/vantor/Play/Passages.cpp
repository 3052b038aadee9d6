#include "Play/Passages.h"

#include "Model/Text.h"

#include <OS.h>
#include <OS/Files/iShell.h>
#include <OS/Media/iMediaServices.h>
#include <OS/Primitives/iGraphicPrimitivesRenderer.h>

#include <cmath>
#include <numbers>

namespace Vantor {

namespace {

constexpr int kColumns = 48;
constexpr float kRoll = 0.16f;    ///< the cylinder's radius, page heights
constexpr float kDistance = 2.6f; ///< of the eye, page heights
constexpr float kPi = std::numbers::pi_v<float>;

/// What an effect of two pictures calls its share of the second.
constexpr const char* kProgress = "Progress";

} // namespace

std::vector<i3DEffect::MeshPoint> turnedPage(float aspect, float progress, int columns, int rows)
{
    // The cylinder's line on the page goes from its right edge until the whole page has gone past.
    const float left = -0.5f * aspect;
    const float travel = aspect + kPi * kRoll + aspect;
    const float line = 0.5f * aspect - progress * travel;
    std::vector<i3DEffect::MeshPoint> mesh;
    for (int row = 0; row <= rows; ++row)
        for (int column = 0; column <= columns; ++column) {
            i3DEffect::MeshPoint point;
            point.u_ = static_cast<float>(column) / static_cast<float>(columns);
            point.v_ = static_cast<float>(row) / static_cast<float>(rows);
            const float x = left + point.u_ * aspect;
            const float beyond = x - line;
            point.place_.y = 0.5f - point.v_;
            point.place_.x = x;
            point.place_.z = 0.0f;
            if (beyond > kPi * kRoll) {
                point.place_.x = line - (beyond - kPi * kRoll);
                point.place_.z = 2.0f * kRoll;
            } else if (beyond > 0.0f) {
                point.place_.x = line + kRoll * std::sin(beyond / kRoll);
                point.place_.z = kRoll * (1.0f - std::cos(beyond / kRoll));
            }
            mesh.push_back(point);
        }
    return mesh;
}

Tq::Ptr<iGPUImage> Passages::make(Entrance kind, float progress, const Tq::Ptr<iGPUImage>& from,
                                  const Tq::Ptr<iGPUImage>& to)
{
    if (!from || !to)
        return nullptr;
    const Tq::Ptr<iGPUImage> target =
        OS()->mediaServices()->createGPUSurface(from->getSize(), iGPUImage::eARGB8);
    if (!target)
        return nullptr;
    bool made = false;
    if (kind == Entrance::ePageTurn)
        made = turnPage(progress, from, to, target);
    else
        made = mix(kind == Entrance::eWipe ? wipe_ : dissolve_, progress, from, to, target);
    return made ? target : nullptr;
}

bool Passages::mix(Mixer& mixer, float progress, const Tq::Ptr<iGPUImage>& from,
                   const Tq::Ptr<iGPUImage>& to, const Tq::Ptr<iGPUImage>& target)
{
    if (!mixer.tried) {
        mixer.tried = true;
        mixer.effect = OS()->mediaServices()->createShaderEffect(
            OS()->shell()->getFolderLocation(iShell::eResources) + L"Shaders/" + mixer.file);
    }
    if (!mixer.effect || mixer.effect->getNumInputs() < 2)
        return false;
    mixer.effect->setFloat(kProgress, progress);
    return mixer.effect->render(
        {{mixer.effect->getInputName(0), from}, {mixer.effect->getInputName(1), to}}, target);
}

bool Passages::prepareSpace()
{
    if (space_)
        return true;
    iMediaServices* media = OS()->mediaServices();
    paper_ = media->createGPUSurface({8, 8}, iGPUImage::eARGB8);
    if (!paper_)
        return false;
    RectDescription all;
    all.rect_ = {0, 0, 8, 8};
    all.topColour_ = all.bottomColour_ = {0.86f, 0.85f, 0.82f};
    paper_->getPrimitivesRenderer(false)->renderMulti(&all, 1);
    space_ = media->create3DEffect();
    if (!space_)
        return false;
    // At the page's distance the view is just as high as the page.
    const float degrees = 2.0f * std::atan(0.5f / kDistance) * 180.0f / kPi;
    space_->setView({0.0f, 0.0f, kDistance}, {0.0f, 0.0f, 0.0f}, {0.0f, 1.0f, 0.0f});
    space_->setPerspective(degrees, 0.1f, 10.0f);
    // What lies flat keeps its colours.
    i3DEffect::Light light;
    light.direction_ = {0.9f, 0.0f, -1.0f};
    light.colour_ = {0.87f, 0.87f, 0.87f};
    light.ambient_ = {0.353f, 0.353f, 0.353f};
    space_->setLight(light);
    return true;
}

bool Passages::turnPage(float progress, const Tq::Ptr<iGPUImage>& from,
                        const Tq::Ptr<iGPUImage>& to, const Tq::Ptr<iGPUImage>& target)
{
    if (!prepareSpace())
        return false;
    const XY<int> size = from->getSize();
    const float aspect = static_cast<float>(size.x) / static_cast<float>(size.y);
    i3DEffect::Sheet below;
    below.front_ = to;
    i3DEffect::Sheet page;
    page.front_ = from;
    page.back_ = paper_;
    page.mesh_ = turnedPage(aspect, progress, kColumns, 1);
    page.columns_ = kColumns;
    page.rows_ = 1;
    // Just above the next page while it lies.
    page.model_.m_[11] = 0.002f;
    return space_->render({below, page}, {0.0f, 0.0f, 0.0f, 1.0f}, target);
}

} // namespace Vantor
