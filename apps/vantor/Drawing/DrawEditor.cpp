#include "Drawing/Scene.h"

#include "Model/Timecode.h"

#include <algorithm>
#include <cmath>

namespace Vantor {

void drawEditor(Scene& scene)
{
    scene.canvas.fill({0, 0, scene.layout.size.x, scene.layout.size.y}, Theme::kGround);
    drawTopBar(scene);
    drawMediaBin(scene);
    drawViewer(scene);
    drawEffects(scene);
    drawTimeline(scene);
    drawScopes(scene);
    drawStatusLine(scene);
    for (const auto& [edge, area] : {std::pair{scene.layout.binEdge, Area::eBinEdge},
                                     std::pair{scene.layout.timelineEdge, Area::eTimelineEdge}}) {
        if (scene.state.hover.area != area && scene.state.pressed.area != area)
            continue;
        const bool upright = edge.height() > edge.width();
        const int x = (edge.left + edge.right) / 2;
        const int y = (edge.top + edge.bottom) / 2;
        scene.canvas.fill(upright ? Rect{x - 1, y - 20, x + 1, y + 20}
                                  : Rect{x - 20, y - 1, x + 20, y + 1},
                          scene.state.pressed.area == area ? Theme::kAccent : Theme::kTick);
    }
}

namespace {

/// The controller's name behind a light that is on while something comes from it.
void drawController(Scene& scene)
{
    const Rect& box = scene.layout.controller;
    const EditorState& state = scene.state;
    Canvas& canvas = scene.canvas;
    const bool none = state.controller.kind == ControllerPlace::Kind::eNone;
    const bool hovered = state.hover.area == Area::eController;
    const Text device = state.controller.name;
    const Text name = none                          ? Text(L"no controller")
                      : device.startsWith(L"/dev/") ? device.substr(5)
                                                    : device;
    const int right = box.right - 22;
    const int width = canvas.textRight(
        canvas.fitted(name, box.width() - 34, Theme::kFact), right, baselineIn(box, Theme::kFact),
        Theme::kFact, hovered || state.controllerOpen ? Theme::kText : Theme::kDim);
    const int y = centreOf(box).y;
    const NormalisedRGB light = state.controllerLit    ? Theme::kKey
                                : state.controllerOpen ? Theme::rgb(0x4FA36A)
                                                       : Theme::kTick;
    const int x = right - width - 12;
    canvas.ellipse({x - 4, y - 4, x + 4, y + 4}, light);
}

} // namespace

void drawTopBar(Scene& scene)
{
    const Layout& l = scene.layout;
    const EditorState& state = scene.state;
    Canvas& canvas = scene.canvas;
    const NormalisedRGB bottom = Theme::mix(Theme::kHeader, Theme::kPanel, 0.5f);
    canvas.fill(l.topBar, Theme::rgb(0x272B35), bottom);
    canvas.fill({0, l.topBar.bottom - 1, l.size.x, l.topBar.bottom}, Theme::kGround);

    const bool editing = state.focus == Focus::eTitle;
    NormalisedRGB ground = Theme::mix(Theme::rgb(0x272B35), bottom, 0.5f);
    if (editing)
        canvas.fill(l.title, ground = Theme::kGround);
    else if (state.hover.area == Area::eTitle)
        canvas.fill(l.title, ground = Theme::hovered(ground));
    if (editing)
        canvas.frame(l.title, Theme::kAccent);
    drawFieldText(scene, Focus::eTitle, l.title, state.titleField, Theme::kProject, Theme::kText,
                  ground);

    const int changes = state.changes();
    const Text saved = changes == 0   ? Text(L"no changes")
                       : changes == 1 ? Text(L"1 change")
                                      : decimal(changes) + L" changes";
    const int baseline = baselineIn(l.topBar, Theme::kFact);
    canvas.textRight(saved, l.size.x - 16, baseline, Theme::kFact, Theme::kDim);
    drawController(scene);
    const int left = l.title.right + 3;
    const Text facts =
        L"sequence 1 \u00b7 1920 x 1080 \u00b7 " + state.player.rate().text() + L" fps";
    canvas.text(canvas.fitted(facts, l.controller.left - 12 - left, Theme::kFact), left, baseline,
                Theme::kFact, Theme::kDim);
}

namespace {

Text countOf(std::uint64_t count)
{
    return decimal(static_cast<int>(std::min<std::uint64_t>(count, 999999999)));
}

/// The rate that is really shown while playing, else the one asked for; what became of the frames;
/// and what draws them.
Text playFacts(const EditorState& state)
{
    const Transport& player = state.player;
    Text facts;
    if (player.playing()) {
        facts = (player.speed() < 0 ? Text(L"reverse ") : Text(L"playing ")) +
                decimal(std::abs(player.speed())) + L"x \u00b7 ";
        if (state.shown.rate > 0.0) {
            const int tenths = static_cast<int>(std::lround(state.shown.rate * 10.0));
            facts += decimal(tenths / 10) + L"." + decimal(tenths % 10) + L" of ";
        }
    }
    return facts + player.rate().text() + L" fps \u00b7 " + countOf(state.shown.presented) +
           L" presented \u00b7 " + countOf(state.shown.dropped) + L" dropped \u00b7 " +
           (state.shown.byGL ? L"GL" : L"Qt");
}

} // namespace

void drawStatusLine(Scene& scene)
{
    const Rect& rect = scene.layout.status;
    const EditorState& state = scene.state;
    Canvas& canvas = scene.canvas;
    canvas.fill(rect, Theme::kStatus);

    const Text facts = playFacts(state);
    const int baseline = baselineIn(rect, Theme::kFact);
    const int width = canvas.textRight(facts, rect.right - 16, baseline, Theme::kFact, Theme::kDim);

    Text words = state.message;
    const bool selected = state.selectedClip != Project::kNone;
    if (words.empty() && selected) {
        const Clip& clip = state.project.clips[static_cast<std::size_t>(state.selectedClip)];
        words = clip.name + L" \u00b7 in " + Timecode::full(clip.start, state.player.rate()) +
                L" \u00b7 " + Timecode::length(clip.length, state.player.rate());
    } else if (words.empty()) {
        words = L"space plays \u00b7 J K L shuttle \u00b7 Return fills the screen \u00b7 the wheel "
                L"zooms \u00b7 drag clips and their ends";
    }
    const int room = rect.width() - 56 - width;
    canvas.text(canvas.fitted(words, room, Theme::kFact), rect.left + 16, baseline, Theme::kFact,
                state.message.empty() ? Theme::kDim : Theme::kText);
}

void drawFieldText(Scene& scene, Focus field, const Rect& rect, const TextField& text,
                   const Theme::Type& type, const NormalisedRGB& colour,
                   const NormalisedRGB& ground)
{
    Canvas& canvas = scene.canvas;
    const bool editing = scene.state.focus == field;
    const int baseline = baselineIn(rect, type);
    const std::vector<int> edges = canvas.boundaries(text.text, type);
    const int left = fieldTextLeft(scene.layout, field, editing ? text.caret : 0, edges);
    if (!editing) {
        canvas.text(canvas.fitted(text.text, rect.right - 6 - left, type), left, baseline, type,
                    colour);
        return;
    }
    canvas.clip(inset(rect, 2));
    canvas.selectedText(
        text.text, left, baseline, type, colour, Theme::mix(ground, Theme::kAccent, 0.55f),
        static_cast<int>(text.selectionStart()), static_cast<int>(text.selectionEnd()));
    if (scene.state.caretShown && text.caret < edges.size()) {
        const int x = left + edges[text.caret];
        const int middle = (rect.top + rect.bottom) / 2;
        canvas.fill({x, middle - 8, x + 1, middle + 8}, Theme::kText);
    }
    canvas.endClip();
}

void drawMissing(Canvas& canvas, Icons& icons, const Rect& rect, const Text& words)
{
    canvas.fill(rect, Theme::rgb(0x15171C));
    canvas.frame(rect, Theme::mix(Theme::kHeader, Theme::kTick, 0.5f));
    const int x = (rect.left + rect.right) / 2;
    const int y = (rect.top + rect.bottom) / 2;
    if (words.empty() || rect.height() < 44) {
        const int half = std::min({8, rect.height() / 2 - 3, rect.width() / 2 - 3});
        const Rect icon{x - half, y - half, x + half, y + half};
        canvas.picture(icons.get(Icons::Shape::eMissing, icon, Theme::kDim), icon);
        return;
    }
    const Rect icon{x - 9, y - 17, x + 9, y + 1};
    canvas.picture(icons.get(Icons::Shape::eMissing, icon, Theme::kDim), icon);
    canvas.textCentred(canvas.fitted(words, rect.width() - 12, Theme::kFact), x, y + 17,
                       Theme::kFact, Theme::kDim);
}

void drawFocusRing(Scene& scene, const Rect& rect, Focus focus)
{
    if (scene.state.focusShown && scene.state.focus == focus)
        scene.canvas.frame(rect, Theme::kAccent, 2);
}

} // namespace Vantor
