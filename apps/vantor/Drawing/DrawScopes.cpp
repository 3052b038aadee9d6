// The panel beside the timeline: waveform, vectorscope and histogram of the viewer's picture.
#include "Drawing/Scene.h"

namespace Vantor {

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
    using Scope = ScopePictures::Scope;
    for (const auto& [scope, rect] :
         {std::pair{Scope::eWaveform, l.waveform}, std::pair{Scope::eVectorscope, l.vectorscope},
          std::pair{Scope::eHistogram, l.histogram}})
        canvas.picture(scene.stores.scopes.get(scope, reading.counts, rect), rect);
}

} // namespace Vantor
