#include "Drawing/Scene.h"

namespace Quay {

namespace {

void drawTopBar(Scene& scene)
{
    const Layout& l = scene.layout;
    const BoardData& data = scene.state.data;
    Canvas& canvas = scene.canvas;
    canvas.fill(l.topBar, Theme::rgb(0x272B35), Theme::mix(Theme::kHeader, Theme::kPanel, 0.5f));
    canvas.fill({0, l.topBar.bottom - 1, l.size.x, l.topBar.bottom}, Theme::kGround);

    const Text& title = data.system.application;
    int left = 16;
    left += canvas.text(canvas.fitted(title, l.size.x / 2, Theme::kProject), left,
                        baselineIn(l.topBar, Theme::kProject), Theme::kProject, Theme::kText);
    left += 12;
    const int baseline = baselineIn(l.topBar, Theme::kFact);
    const Text load = L"processors " + percentText(data.processors.all.last()) +
                      L" \u00b7 memory " + percentText(data.memory.usedPart());
    const int right = l.size.x - 16;
    const int width = canvas.textRight(canvas.fitted(load, right - left, Theme::kFact), right,
                                       baseline, Theme::kFact, Theme::kDim);
    Text facts = data.system.computer;
    if (!data.system.version.empty())
        facts += (facts.empty() ? L"" : L" \u00b7 ") + data.system.version;
    canvas.text(canvas.fitted(facts, right - width - 24 - left, Theme::kFact), left, baseline,
                Theme::kFact, Theme::kDim);
}

void drawStatusLine(Scene& scene)
{
    const Rect& rect = scene.layout.status;
    const BoardState& state = scene.state;
    Canvas& canvas = scene.canvas;
    canvas.fill(rect, Theme::kStatus);
    const int baseline = baselineIn(rect, Theme::kFact);
    const Text facts =
        L"every " + intervalText(state.preferences.refreshMs) + L" \u00b7 " +
        countText(static_cast<std::size_t>(state.data.readings), L"reading", L"readings");
    const int width = canvas.textRight(facts, rect.right - 16, baseline, Theme::kFact, Theme::kDim);
    const Text words =
        state.message.empty()
            ? Text(
                  L"Tab and arrows choose \u00b7 Return opens \u00b7 R reads anew \u00b7 U changes "
                  L"the units \u00b7 drag headers to arrange the panels")
            : state.message;
    canvas.text(canvas.fitted(words, rect.width() - 56 - width, Theme::kFact), rect.left + 16,
                baseline, Theme::kFact, state.message.empty() ? Theme::kDim : Theme::kText);
}

void drawHeader(Scene& scene, int index, const Panel& panel, const Rect& header)
{
    const BoardState& state = scene.state;
    Canvas& canvas = scene.canvas;
    const bool pressed = state.pressed.area == Area::eHeader && state.pressed.panel == index;
    const bool hovered = state.hover.area == Area::eHeader && state.hover.panel == index;
    canvas.fill(header, pressed   ? Theme::pressed(Theme::kHeader)
                        : hovered ? Theme::hovered(Theme::kHeader)
                                  : Theme::kHeader);
    const int left = header.left + 12;
    const int right = header.right - 12;
    const Text title = canvas.fitted(panel.title, right - left, Theme::kTitle);
    const int width =
        canvas.text(title, left, baselineIn(header, Theme::kTitle), Theme::kTitle, Theme::kText);
    canvas.textRight(canvas.fitted(panel.fact, right - left - width - 16, Theme::kFact), right,
                     baselineIn(header, Theme::kFact), Theme::kFact, Theme::kDim);
}

void drawPanel(Scene& scene, int index)
{
    const auto at = static_cast<std::size_t>(index);
    const PanelPlace& place = scene.layout.panels[at];
    const Rect& board = scene.layout.board;
    if (place.rect.bottom <= board.top || place.rect.top >= board.bottom)
        return;
    const Panel& panel = scene.state.panels[at];
    Canvas& canvas = scene.canvas;
    canvas.clip(place.rect);
    canvas.fill(place.body, Theme::kPanel);
    drawHeader(scene, index, panel, place.header);
    for (std::size_t r = 0; r < panel.rows.size(); ++r) {
        const Rect& row = place.rows[r];
        if (row.bottom > board.top && row.top < board.bottom)
            drawRow(scene, panel.rows[r], row, {Area::eAction, index, static_cast<int>(r), 0});
    }
    canvas.endClip();
}

void drawDrag(Scene& scene)
{
    const BoardState& state = scene.state;
    if (state.drag.kind != Drag::Kind::ePanel || !state.drag.moved)
        return;
    const auto held = static_cast<std::size_t>(state.drag.panel);
    if (held >= scene.layout.panels.size())
        return;
    scene.canvas.wash(scene.layout.panels[held].rect, Theme::kGround, 0.55f);
    const int target = dropTarget(state, scene.layout);
    if (target >= 0)
        scene.canvas.frame(scene.layout.panels[static_cast<std::size_t>(target)].rect,
                           Theme::kAccent, 2);
    // What is carried hangs at the pointer.
    const Text& title = state.panels[held].title;
    const int width = scene.canvas.width(title, Theme::kTitle) + 24;
    const Rect label{state.pointer.x + 10, state.pointer.y + 6, state.pointer.x + 10 + width,
                     state.pointer.y + 34};
    scene.canvas.fill(label, Theme::hovered(Theme::kHeader));
    scene.canvas.frame(label, Theme::kAccent);
    scene.canvas.text(title, label.left + 12, baselineIn(label, Theme::kTitle), Theme::kTitle,
                      Theme::kText);
}

void drawScrollBar(Scene& scene)
{
    const Rect bar = scene.layout.scrollBar();
    const BoardState& state = scene.state;
    if (!bar.hasArea())
        return;
    const bool held = state.drag.kind == Drag::Kind::eScrollBar;
    const bool hovered = state.hover.area == Area::eScrollBar;
    scene.canvas.fill(bar, held      ? Theme::kAccent
                           : hovered ? Theme::mix(Theme::kTick, Theme::kWhite, 0.2f)
                                     : Theme::kTick);
}

} // namespace

void drawBoard(const BoardState& state, Resources& resources,
               const Tq::Ptr<iGraphicPrimitivesRenderer>& renderer, const LiveGraphs* live)
{
    Canvas canvas(resources, renderer);
    Scene scene{canvas, state, layoutOf(state), live};
    canvas.fill({0, 0, scene.layout.size.x, scene.layout.size.y}, Theme::kGround);
    canvas.clip(scene.layout.board);
    for (std::size_t i = 0; i < state.panels.size(); ++i)
        drawPanel(scene, static_cast<int>(i));
    if (state.focusShown)
        if (const Rect ring = rectOf(state, scene.layout, state.focus); ring.hasArea())
            canvas.frame(ring, Theme::kAccent, 2);
    canvas.endClip();
    drawScrollBar(scene);
    drawTopBar(scene);
    drawStatusLine(scene);
    drawDrag(scene);
}

} // namespace Quay
