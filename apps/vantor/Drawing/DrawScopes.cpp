// The panel beside the timeline: waveform, vectorscope and histogram of the viewer's picture.
#include "Drawing/Scene.h"

#include <cmath>

namespace Vantor {

namespace {

void drawReading(Scene& scene, const Tq::Ptr<iHostImage>& picture, const Rect& rect)
{
    scene.canvas.fill(rect, Theme::kGround);
    if (picture)
        scene.canvas.picture(picture, rect);
}

} // namespace

void drawScopes(Scene& scene)
{
    const Layout& l = scene.layout;
    if (!l.scopes.hasArea())
        return;
    Canvas& canvas = scene.canvas;
    const ScopeReading& reading = scene.state.scopes;
    canvas.fill(l.scopes, Theme::kPanel);
    canvas.fill(l.scopesHeader, Theme::kHeader);
    canvas.text(L"Scopes", l.scopesHeader.left + 12, baselineIn(l.scopesHeader, Theme::kTitle),
                Theme::kTitle, Theme::kText);
    if (!reading.trouble.empty()) {
        const Rect room{l.waveform.left, l.waveform.top, l.waveform.right, l.histogram.bottom};
        canvas.textCentred(canvas.fitted(reading.trouble, room.width(), Theme::kFact),
                           centreOf(room).x, centreOf(room).y, Theme::kFact, Theme::kDim);
        return;
    }
    drawReading(scene, reading.waveform, l.waveform);
    drawReading(scene, reading.vectorscope, l.vectorscope);
    drawReading(scene, reading.histogram, l.histogram);
}

} // namespace Vantor
