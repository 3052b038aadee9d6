#include "Picture.h"

#include <OS.h>
#include <OS/Media/iMediaServices.h>
#include <OS/Primitives/iGraphicPrimitivesRenderer.h>

#include <iterator>
#include <numbers>

namespace Media {

namespace {

constexpr double kWide = 16.0 / 9.0;

} // namespace

Tq::Ptr<iHostImage> colourBars()
{
    static const unsigned int kBars[] = {0xBFBFBF, 0xBFBF00, 0x00BFBF, 0x00BF00,
                                         0xBF00BF, 0xBF0000, 0x0000BF};
    static const unsigned int kReversed[] = {0x0000BF, 0x131313, 0xBF00BF, 0x131313,
                                             0x00BFBF, 0x131313, 0xBFBFBF};
    static const unsigned int kLevels[] = {0x00214C, 0xFFFFFF, 0x32006A, 0x131313,
                                           0x090909, 0x131313, 0x1D1D1D};
    return render(640, 360, 1, [](double x, double y) {
        const auto bar = static_cast<std::size_t>(std::min(6.0, x / kWide * 7.0));
        return hex(y < 0.67 ? kBars[bar] : y < 0.75 ? kReversed[bar] : kLevels[bar]);
    });
}

Tq::Ptr<iHostImage> ramps()
{
    return render(480, 270, 1, [](double x, double y) -> Colour {
        const double t = x / kWide;
        switch (static_cast<int>(y * 5.0)) {
        case 0:
            return {t, 0.0, 0.0};
        case 1:
            return {0.0, t, 0.0};
        case 2:
            return {0.0, 0.0, t};
        case 3:
            return {t, t, t};
        default: {
            const double step = std::floor(t * 11.0) / 10.0;
            return {step, step, step};
        }
        }
    });
}

Tq::Ptr<iHostImage> zonePlate()
{
    return render(480, 270, 3, [](double x, double y) -> Colour {
        const double dx = x - kWide / 2.0;
        const double dy = y - 0.5;
        // The rings reach the finest that the pixels hold at the left and right edges.
        const double light =
            0.5 + 0.5 * std::cos(std::numbers::pi * 135.0 * (dx * dx + dy * dy) / kWide * 2.0);
        return {light, light, light};
    });
}

namespace {

Colour chartPatch(double x, double y)
{
    static const unsigned int kPatches[] = {
        0x735244, 0xC29682, 0x627A9D, 0x576C43, 0x8580B1, 0x67BDAA, 0xD67E2C, 0x505BA6, 0xC15A63,
        0x5E3C6C, 0x9DBC40, 0xE0A32E, 0x383D96, 0x469449, 0xAF363C, 0xE7C71F, 0xBB5695, 0x0885A1};
    const int column = std::clamp(static_cast<int>(x * 6.0), 0, 5);
    const int row = std::clamp(static_cast<int>(y * 3.0), 0, 2);
    const double u = x * 6.0 - column;
    const double v = y * 3.0 - row;
    if (std::min({u, v, 1.0 - u, 1.0 - v}) < 0.06)
        return hex(0x2A2C30);
    return hex(kPatches[row * 6 + column]);
}

Colour chart(double x, double y)
{
    const Colour ground = hex(0xBFC2C6);
    const Colour ink = hex(0x1A1C20);
    const double dx = x - kWide / 2.0;
    const double dy = y - 0.5;
    const double ring = std::hypot(dx, dy);
    if (std::abs(dx) < 0.42 && std::abs(dy) < 0.21)
        return chartPatch((dx + 0.42) / 0.84, (dy + 0.21) / 0.42);
    if (std::abs(dx) < 0.5 && y > 0.79 && y < 0.88) { // grey steps
        const double step = std::floor((dx + 0.5) * 10.0) / 9.0;
        return {step, step, step};
    }
    if (std::abs(dx) < 0.5 && y > 0.12 && y < 0.21) // finer and finer lines
        return std::fmod((dx + 0.5) * (dx + 0.7) * 60.0, 1.0) < 0.5 ? ink : hex(0xF4F5F6);
    if (std::abs(ring - 0.47) < 0.005)
        return ink;
    // Corners and the middle are marked, so that a cut or a shift is seen.
    const double edgeX = std::min(x, kWide - x);
    const double edgeY = std::min(y, 1.0 - y);
    if (std::min(edgeX, edgeY) < 0.012)
        return ink;
    if (std::hypot(edgeX - 0.16, edgeY - 0.16) < 0.1) {
        const double angle = std::atan2(edgeY - 0.16, edgeX - 0.16);
        return std::fmod(angle + 10.0, std::numbers::pi / 12.0) < std::numbers::pi / 24.0
                   ? ink
                   : hex(0xF4F5F6);
    }
    if ((std::abs(dx) < 0.003 || std::abs(dy) < 0.003) && ring > 0.44)
        return ink;
    const bool line = std::fmod(x, 0.1) < 0.004 || std::fmod(y, 0.1) < 0.004;
    return line ? ground * 0.86 : ground;
}

void write(iGraphicPrimitivesRenderer& renderer, const wchar_t* words, int baseline,
           unsigned int size, unsigned int flags, const NormalisedRGB& colour)
{
    const Tq::Ptr<iFont> font =
        OS()->mediaServices()->createHostSurfaceFont(L"DejaVu Sans", size, flags);
    const int width = font->measure(words).x;
    renderer.render(
        TextDescription(words, {(640 - width) / 2, baseline}, colour, eTextDefault, font));
}

} // namespace

Tq::Ptr<iHostImage> testChart()
{
    return render(480, 270, 3, chart);
}

Tq::Ptr<iHostImage> titleCard()
{
    const Tq::Ptr<iHostImage> card = render(640, 360, 2, [](double x, double y) {
        const double glow =
            std::exp(-std::pow((y - 1.02) / 0.34, 2.0) - std::pow((x - 1.1) / 0.9, 2.0));
        return mix(hex(0x141A28), hex(0x0A0C12), y) + hex(0xE0783C) * (glow * 0.62);
    });
    const Tq::Ptr<iGraphicPrimitivesRenderer> renderer = card->getPrimitivesRenderer(true);
    renderer->setAntialiasingEnabled(true);
    write(*renderer, L"H A R B O U R", 166, 48, iFont::eBold, {0.96f, 0.91f, 0.84f});
    write(*renderer, L"A T   D A W N", 216, 22, iFont::ePlain, {0.93f, 0.66f, 0.44f});
    RectDescription rule;
    for (const int top : {104, 240}) {
        rule.rect_ = {240, top, 400, top + 2};
        rule.topColour_ = rule.bottomColour_ = {0.88f, 0.47f, 0.24f};
        renderer->render(rule);
    }
    return card;
}

} // namespace Media
