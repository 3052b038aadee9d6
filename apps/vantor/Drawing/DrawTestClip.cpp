#include "Drawing/Composition.h"
#include "Model/Timecode.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace Vantor {

namespace {

// 75 % bars, and below them a ramp.
constexpr unsigned int kBars[] = {0xBFBFBF, 0xBFBF00, 0x00BFBF, 0x00BF00,
                                  0xBF00BF, 0xBF0000, 0x0000BF};

/// A rectangle in thousandths of another.
Rect partOf(const Rect& r, int left, int top, int right, int bottom)
{
    return {r.left + r.width() * left / 1000, r.top + r.height() * top / 1000,
            r.left + r.width() * right / 1000, r.top + r.height() * bottom / 1000};
}

void drawBars(Canvas& canvas, const Rect& rect)
{
    for (int i = 0; i < 7; ++i)
        canvas.fill(partOf(rect, i * 1000 / 7, 0, (i + 1) * 1000 / 7, 720), Theme::rgb(kBars[i]));
    canvas.fill(partOf(rect, 1000 * 6 / 7, 0, 1000, 720), Theme::rgb(kBars[6]));
    const Rect ramp = partOf(rect, 0, 720, 1000, 800);
    constexpr int kSteps = 32;
    for (int i = 0; i < kSteps; ++i) {
        const float level = static_cast<float>(i) / (kSteps - 1);
        canvas.fill({ramp.left + ramp.width() * i / kSteps, ramp.top,
                     ramp.left + ramp.width() * (i + 1) / kSteps, ramp.bottom},
                    Theme::mix(Theme::kBlack, Theme::kWhite, level));
    }
    canvas.fill(partOf(rect, 0, 800, 1000, 1000), Theme::rgb(0x101318), Theme::rgb(0x0A0C10));
}

/// A dial whose hand goes round once a second: a frame that is left out is seen as a jump.
void drawDial(Canvas& canvas, const Rect& rect, int frame, const FrameRate& rate)
{
    const int radius = rect.height() * 24 / 100;
    const int x = (rect.left + rect.right) / 2;
    const int y = rect.top + rect.height() * 37 / 100;
    canvas.ellipse({x - radius, y - radius, x + radius, y + radius}, Theme::rgb(0x101318),
                   Theme::rgb(0xE8EAEE));
    const auto at = [&](double turn, double part) {
        const double angle = turn * 2.0 * std::numbers::pi;
        return Point{x + static_cast<int>(std::lround(std::sin(angle) * radius * part)),
                     y - static_cast<int>(std::lround(std::cos(angle) * radius * part))};
    };
    const int nominal = rate.nominal();
    const int dot = std::max(1, radius / 22);
    for (int i = 0; i < nominal; ++i) {
        const Point p = at(static_cast<double>(i) / nominal, 0.88);
        const int size = i % 5 == 0 ? dot * 3 / 2 : dot;
        canvas.ellipse({p.x - size, p.y - size, p.x + size, p.y + size}, Theme::rgb(0x868E9B));
    }
    const Point hand = at(static_cast<double>(frame % nominal) / nominal, 0.8);
    canvas.curve({x, y}, {x, y}, hand, hand, Theme::kTime, std::max(2, radius / 14));
    const int hub = std::max(2, radius / 12);
    canvas.ellipse({x - hub, y - hub, x + hub, y + hub}, Theme::rgb(0xE8EAEE));
}

} // namespace

void drawTestClip(Canvas& canvas, const Rect& rect, int frame, const FrameRate& rate)
{
    if (rect.width() < 16 || rect.height() < 9)
        return;
    drawBars(canvas, rect);
    drawDial(canvas, rect, frame, rate);
    // A block that crosses the picture in two seconds, and back.
    const int lap = 2 * rate.nominal();
    const int phase = frame % (2 * lap);
    const int place = phase < lap ? phase : 2 * lap - phase;
    const Rect track = partOf(rect, 70, 926, 930, 940);
    const int block = std::max(2, track.width() / 24);
    canvas.fill(track, Theme::rgb(0x2A2F39));
    const int left = track.left + (track.width() - block) * place / lap;
    canvas.fill({left, track.top, left + block, track.bottom}, Theme::kTime);

    const Theme::Type type{std::max(6, rect.height() * 8 / 100), false, true};
    if (rect.height() < 120)
        return;
    const Rect line = partOf(rect, 70, 812, 930, 918);
    canvas.text(Timecode::full(frame, rate), line.left, baselineIn(line, type), type,
                Theme::kWhite);
    canvas.textRight(decimal(frame, 4), line.right, baselineIn(line, type), type, Theme::kKey);
}

} // namespace Vantor
