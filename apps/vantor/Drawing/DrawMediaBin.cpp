#include "Drawing/Scene.h"

#include "Model/Timecode.h"

#include <algorithm>

namespace Vantor {

namespace {

Text countOf(const EditorState& state, std::size_t visible)
{
    const std::size_t all = state.bin.items.size();
    if (visible != all)
        return decimal(static_cast<int>(visible)) + L" of " + decimal(static_cast<int>(all));
    return decimal(static_cast<int>(all)) + (all == 1 ? L" item" : L" items");
}

void drawHeader(Scene& scene, std::size_t visible)
{
    const Layout& l = scene.layout;
    const EditorState& state = scene.state;
    Canvas& canvas = scene.canvas;
    const bool editing = state.focus == Focus::eFilter;
    canvas.fill(l.binHeader, Theme::kHeader);
    canvas.text(L"Media", l.binHeader.left + 12, baselineIn(l.binHeader, Theme::kTitle),
                Theme::kTitle, Theme::kText);
    canvas.textRight(countOf(state, visible), l.binHeader.right - 12,
                     baselineIn(l.binHeader, Theme::kFact), Theme::kFact, Theme::kDim);

    NormalisedRGB ground = Theme::mix(Theme::kHeader, Theme::kGround, 0.45f);
    if (editing)
        ground = Theme::kGround;
    else if (state.hover.area == Area::eFilter)
        ground = Theme::hovered(ground);
    canvas.fill(l.filter, ground);
    if (editing)
        canvas.frame(l.filter, Theme::kAccent);
    const int middle = (l.filter.top + l.filter.bottom) / 2;
    const Rect icon{l.filter.left + 6, middle - 5, l.filter.left + 17, middle + 6};
    canvas.picture(scene.stores.icons.get(Icons::Shape::eSearch, icon, Theme::kDim), icon);
    if (state.filterField.text.empty())
        canvas.text(L"Filter", l.filter.left + 22, baselineIn(l.filter, Theme::kFact), Theme::kFact,
                    Theme::mix(ground, Theme::kDim, 0.75f));
    drawFieldText(scene, Focus::eFilter, l.filter, state.filterField, Theme::kFact, Theme::kText,
                  ground);
}

void drawTile(Scene& scene, int index, const Rect& tile)
{
    Canvas& canvas = scene.canvas;
    const EditorState& state = scene.state;
    const MediaItem& item = state.bin.items[static_cast<std::size_t>(index)];
    const Rect thumb = scene.layout.thumb(tile);
    const bool selected = state.bin.selected == index;
    const bool hovered = state.hover.is(Area::eTile, index);

    if (hovered)
        canvas.fill(Rect{tile.left - 4, tile.top - 4, tile.right + 4, tile.bottom - 2},
                    state.pressed.is(Area::eTile, index) ? Theme::pressed(Theme::kHeader)
                                                         : Theme::hovered(Theme::kHeader));
    drawThumbnail(scene, &item, item.frames() / 3, thumb, L"missing");
    if (item.frames() > 0) {
        const Text length = Timecode::length(item.frames(), state.player.rate());
        const int plate = canvas.width(length, Theme::kSmall) + 10;
        const Rect tag{thumb.right - plate - 4, thumb.bottom - 19, thumb.right - 4,
                       thumb.bottom - 4};
        canvas.wash(tag, Theme::kBlack, 0.62f);
        canvas.text(length, tag.left + 5, baselineIn(tag, Theme::kSmall), Theme::kSmall,
                    Theme::kText);
    }
    if (selected)
        canvas.frame(inset(thumb, -2), Theme::kAccent, 2);

    const Rect label{tile.left, thumb.bottom + 1, tile.right, tile.bottom - 3};
    const int baseline = baselineIn(label, Theme::kFact);
    const int width =
        canvas.textRight(item.format, label.right, baseline, Theme::kFact, Theme::kDim);
    canvas.text(canvas.fitted(item.name, label.width() - width - 8, Theme::kFact), label.left,
                baseline, Theme::kFact, selected || hovered ? Theme::kText : Theme::kDim);
}

void drawEmpty(Scene& scene)
{
    const Rect& room = scene.layout.tiles;
    Canvas& canvas = scene.canvas;
    const int x = (room.left + room.right) / 2;
    const int y = (room.top + room.bottom) / 2;
    if (!scene.state.bin.items.empty()) {
        canvas.textCentred(L"No name holds the filter", x, y + 4, Theme::kLabel, Theme::kDim);
        return;
    }
    const Rect box = inset(room, 12);
    for (const int edge : {box.left, box.right - 1})
        canvas.dottedLine({edge, box.top}, {edge, box.bottom}, Theme::kTick);
    for (const int edge : {box.top, box.bottom - 1})
        canvas.dottedLine({box.left, edge}, {box.right, edge}, Theme::kTick);
    canvas.textCentred(L"Drop pictures here", x, y - 2, Theme::kLabel, Theme::kText);
    canvas.textCentred(L"PNG, JPEG, BMP, TIFF or PPM", x, y + 16, Theme::kFact, Theme::kDim);
}

void drawScrollBar(Scene& scene, int count)
{
    const Layout& l = scene.layout;
    const int range = l.scrollRange(count);
    if (range == 0)
        return;
    const int track = l.tiles.height() - 8;
    const int length = std::max(24, track * l.tiles.height() / (l.tiles.height() + range));
    const int top = l.tiles.top + 4 + (track - length) * scene.state.bin.scroll / range;
    scene.canvas.fill({l.tiles.right - 6, top, l.tiles.right - 3, top + length}, Theme::kTick);
}

} // namespace

void drawThumbnail(Scene& scene, const MediaItem* media, int frame, const Rect& rect,
                   const Text& missing)
{
    if (media && media->kind == MediaItem::Kind::eTestClip) {
        scene.canvas.clip(rect);
        drawTestClip(scene.canvas, rect, frame, scene.state.player.rate());
        scene.canvas.endClip();
        return;
    }
    const Text path = media ? media->fileAt(frame) : Text();
    const Tq::Ptr<iHostImage> image =
        path.empty() ? nullptr
                     : scene.stores.pictures.scaled(path, rect, PictureStore::Fit::eCover);
    if (image)
        scene.canvas.picture(image, rect);
    else if (path.empty() || scene.stores.pictures.isMissing(path))
        drawMissing(scene.canvas, scene.stores.icons, rect, missing);
    else
        scene.canvas.fill(rect, Theme::kHeader);
}

void drawMediaBin(Scene& scene)
{
    const Layout& l = scene.layout;
    const std::vector<int> visible = scene.state.bin.visible();
    scene.canvas.fill(l.bin, Theme::kPanel);
    drawHeader(scene, visible.size());
    if (visible.empty())
        drawEmpty(scene);

    scene.canvas.clip(l.tiles);
    for (std::size_t place = 0; place < visible.size(); ++place) {
        const Rect tile = l.tile(static_cast<int>(place), scene.state.bin.scroll);
        if (tile.bottom > l.tiles.top && tile.top < l.tiles.bottom)
            drawTile(scene, visible[place], tile);
    }
    scene.canvas.endClip();
    drawScrollBar(scene, static_cast<int>(visible.size()));
    drawFocusRing(scene, l.bin, Focus::eBin);
}

} // namespace Vantor
