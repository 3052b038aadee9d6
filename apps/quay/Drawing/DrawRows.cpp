#include "Drawing/Scene.h"

#include <algorithm>
#include <cmath>

namespace Quay {

namespace {

const NormalisedRGB kWell = Theme::rgb(0x15171C); ///< what bars and graphs are cut into
constexpr int kRowGap = 12;                       ///< between a label and its value
constexpr int kGraphText = 28;                    ///< above a graph, for its words
constexpr int kCellText = 17;                     ///< above a small one
constexpr int kPlaceWidth = 50;                   ///< of the place of bytes
constexpr int kNumberWidth = 19;                  ///< of a byte as a number
constexpr int kCharacterWidth = 8;

struct RowDrawer
{
    Scene& scene;
    Canvas& canvas;
    const Rect rect;
    const Hit at;

    bool isHovered(int part) const { return is(scene.state.hover, part); }
    bool isPressed(int part) const { return is(scene.state.pressed, part) && isHovered(part); }
    bool is(const Hit& hit, int part) const
    {
        return hit == Hit{Area::eAction, at.panel, at.row, part};
    }

    void operator()(const FactRow& row) const
    {
        const int baseline = baselineIn(rect, Theme::kFact);
        const int valueWidth = canvas.width(row.value, Theme::kFact);
        // A long label takes what its value leaves it, but at most the half.
        const int least = labelWidth(rect.width());
        const int room = std::max({least, rect.width() / 2, rect.width() - valueWidth}) - kRowGap;
        const Text label = canvas.fitted(row.label, room, Theme::kFact);
        const int left = rect.left + std::max(least, canvas.width(label, Theme::kFact) + kRowGap);
        canvas.text(label, rect.left, baseline, Theme::kFact, Theme::kDim);
        canvas.text(cut(row.value, rect.right - left, row.isPath), left, baseline, Theme::kFact,
                    Theme::kText);
    }

    void operator()(const HeadingRow& row) const
    {
        const Rect line{rect.left, rect.bottom - 20, rect.right, rect.bottom};
        if (at.row > 0)
            canvas.fill({rect.left, rect.top + 5, rect.right, rect.top + 6},
                        Theme::mix(Theme::kPanel, Theme::kTick, 0.45f));
        const Text text = canvas.fitted(row.text, line.width() * 2 / 3, Theme::kFact);
        const int width = canvas.text(text, line.left, baselineIn(line, Theme::kFact), Theme::kFact,
                                      Theme::kText);
        canvas.textRight(cut(row.fact, line.width() - width - 16, row.isPath), line.right,
                         baselineIn(line, Theme::kFact), Theme::kFact, Theme::kDim);
    }

    void operator()(const NoteRow& row) const
    {
        canvas.text(canvas.fitted(row.text, rect.width(), Theme::kFact), rect.left,
                    baselineIn(rect, Theme::kFact), Theme::kFact,
                    Theme::mix(Theme::kPanel, Theme::kDim, 0.8f));
    }

    void operator()(const GraphRow& row) const
    {
        canvas.fill(rect, kWell);
        if (!scene.live || !scene.live->has(at.panel, at.row))
            drawGraph(canvas, row, graphRect(rect));
        const int width =
            canvas.textRight(row.value, rect.right - 8, rect.top + 21, Theme::kClock, Theme::kText);
        canvas.text(canvas.fitted(row.label, rect.width() - width - 32, Theme::kSmall),
                    rect.left + 8, rect.top + 17, Theme::kSmall, Theme::kDim);
    }

    void operator()(const CellsRow& row) const
    {
        const int count = static_cast<int>(row.cells.size());
        for (int i = 0; i < count; ++i)
            drawCell(row, i, cellRect(rect, count, i));
    }

    void operator()(const MeterRow& row) const
    {
        const Rect line{rect.left, rect.top, rect.right, rect.top + 18};
        const int baseline = baselineIn(line, Theme::kFact);
        const int tagWidth = row.tag.empty() ? 0 : canvas.width(row.tag, Theme::kSmall) + 18;
        const Text value = canvas.fitted(row.value, rect.width() * 2 / 3, Theme::kFact);
        const int valueWidth =
            canvas.textRight(value, rect.right, baseline, Theme::kFact, Theme::kDim);
        const int room = rect.width() - valueWidth - kRowGap;
        const bool tagFits = tagWidth > 0 && room - tagWidth >= 32;
        const Text label = canvas.fitted(row.label, room - (tagFits ? tagWidth : 0), Theme::kLabel);
        const int width = canvas.text(label, rect.left, baselineIn(line, Theme::kLabel),
                                      Theme::kLabel, Theme::kText);
        if (tagFits)
            drawTag(row.tag, rect.left + width + 8, line);
        const Rect bar{rect.left, rect.top + 20, rect.right, rect.top + 26};
        drawBar(row, bar);
        if (!row.detail.empty())
            canvas.text(canvas.fitted(row.detail, rect.width(), Theme::kSmall), rect.left,
                        bar.bottom + 14, Theme::kSmall, Theme::kDim);
    }

    void operator()(const MapRow& row) const
    {
        canvas.fill(rect, kWell);
        for (const MapRow::Place& place : row.places)
            drawPlace(place, mapRect(row, rect, place.full), mapRect(row, rect, place.inner));
    }

    void operator()(const ItemRow& row) const
    {
        const bool opens = row.action.kind != Action::Kind::eNone;
        if (opens && isHovered(0))
            canvas.fill(actionRect(Row(row), rect, 0), isPressed(0)
                                                           ? Theme::pressed(Theme::kHeader)
                                                           : Theme::hovered(Theme::kHeader));
        const int middle = (rect.top + rect.bottom) / 2;
        const Rect dot{rect.left, middle - 3, rect.left + 7, middle + 4};
        if (row.there)
            canvas.ellipse(dot, brightOf(row.tone));
        else
            canvas.ellipse(dot, kWell, Theme::kTick);

        const int baseline = baselineIn(rect, Theme::kFact);
        const int tagWidth =
            canvas.textRight(row.tag, rect.right, baseline, Theme::kFact,
                             row.there ? Theme::kDim : Theme::disabled(Theme::kDim, Theme::kPanel));
        const int start = rect.left + 15;
        const int room = rect.right - tagWidth - kRowGap - start;
        const Text label = canvas.fitted(row.label, room, Theme::kFact);
        const int width = canvas.text(label, start, baseline, Theme::kFact,
                                      row.there ? Theme::kText : Theme::kDim);
        const int left = std::max(rect.left + labelWidth(rect.width()), start + width + kRowGap);
        canvas.text(cut(row.detail, rect.right - tagWidth - kRowGap - left, true), left, baseline,
                    Theme::kFact, opens && isHovered(0) ? Theme::kText : Theme::kDim);
    }

    void operator()(const BytesRow& row) const
    {
        const int baseline = baselineIn(rect, Theme::kFact);
        canvas.text(row.place, rect.left, baseline, Theme::kFact, Theme::kDim);
        const int numbers = rect.left + kPlaceWidth;
        const int characters = numbers + static_cast<int>(BytesRow::kBytes) * kNumberWidth + 6;
        for (int i = 0; i < static_cast<int>(row.bytes.size()); ++i) {
            const std::uint8_t byte = row.bytes[static_cast<std::size_t>(i)];
            const bool printable = byte > 0x20 && byte < 0x7F;
            const int middle = characters + i * kCharacterWidth + kCharacterWidth / 2;
            canvas.text(hexText(byte, 2), numbers + i * kNumberWidth, baseline, Theme::kFact,
                        Theme::kText);
            if (middle + kCharacterWidth / 2 <= rect.right)
                canvas.textCentred(printable ? Text(1, static_cast<wchar_t>(byte)) : L"\u00b7",
                                   middle, baseline, Theme::kFact,
                                   printable ? Theme::kText : Theme::kDim);
        }
    }

    void operator()(const ChoiceRow& row) const
    {
        canvas.text(canvas.fitted(row.label, labelWidth(rect.width()) - 8, Theme::kFact), rect.left,
                    baselineIn(rect, Theme::kFact), Theme::kFact, Theme::kDim);
        const Row whole(row);
        for (int i = 0; i < static_cast<int>(row.options.size()); ++i) {
            const Rect box = actionRect(whole, rect, i);
            const Rect button{box.left, box.top + 2, box.right - 1, box.bottom - 2};
            const bool chosen = i == row.chosen;
            NormalisedRGB ground =
                chosen ? Theme::mix(Theme::kHeader, Theme::kAccent, 0.45f) : Theme::kHeader;
            if (isHovered(i))
                ground = isPressed(i) ? Theme::pressed(ground) : Theme::hovered(ground);
            canvas.fill(button, ground);
            canvas.textCentred(canvas.fitted(row.options[static_cast<std::size_t>(i)].label,
                                             button.width() - 4, Theme::kFact),
                               (button.left + button.right) / 2, baselineIn(button, Theme::kFact),
                               Theme::kFact, chosen ? Theme::kText : Theme::kDim);
        }
    }

    Text cut(const Text& text, int width, bool isPath) const
    {
        return isPath ? canvas.fittedPath(text, width, Theme::kFact)
                      : canvas.fitted(text, width, Theme::kFact);
    }

    void drawTag(const Text& tag, int left, const Rect& line) const
    {
        const int middle = (line.top + line.bottom) / 2;
        const Rect box{left, middle - 7, left + canvas.width(tag, Theme::kSmall) + 10, middle + 8};
        canvas.frame(box, Theme::mix(Theme::kPanel, Theme::kTick, 0.8f));
        canvas.text(tag, box.left + 5, baselineIn(box, Theme::kSmall), Theme::kSmall, Theme::kDim);
    }

    void drawBar(const MeterRow& row, const Rect& bar) const
    {
        canvas.fill(bar, kWell);
        double from = 0.0;
        for (const MeterRow::Part& part : row.parts) {
            const double to = std::clamp(from + part.part, from, 1.0);
            int left = bar.left + static_cast<int>(std::lround(bar.width() * from));
            const int right = bar.left + static_cast<int>(std::lround(bar.width() * to));
            // What is not nothing can be seen.
            if (part.part > 0.0 && right <= left)
                left = std::max(bar.left, right - 1);
            const Theme::Gradient& look = lookOf(part.tone);
            canvas.fill(
                {left, bar.top, std::max(right, left + (part.part > 0.0 ? 1 : 0)), bar.bottom},
                brightOf(part.tone), look.top);
            from = to;
        }
    }

    void drawCell(const CellsRow& row, int index, const Rect& cell) const
    {
        const History& history = row.cells[static_cast<std::size_t>(index)];
        const Theme::Gradient& look = lookOf(row.tone);
        canvas.fill(cell, kWell);
        const Rect meter{cell.left, cell.bottom - 3, cell.right, cell.bottom};
        const bool words = cell.height() >= 36;
        drawHistory(canvas, history,
                    {cell.left, cell.top + (words ? kCellText : 1), cell.right, meter.top - 1},
                    look, false);
        canvas.fill(meter, Theme::kHeader);
        const double load = history.last();
        canvas.fill({meter.left, meter.top,
                     meter.left + static_cast<int>(std::lround(meter.width() * load)),
                     meter.bottom},
                    load >= 0.9 ? brightOf(Tone::eRed) : brightOf(row.tone));
        if (!words)
            return;
        // All cells tell the same, whatever their numbers are.
        const int most = static_cast<int>(row.cells.size());
        const int nameWidth = canvas.width(decimal(most), Theme::kSmall);
        const int baseline = cell.top + 13;
        if (nameWidth + 8 <= cell.width())
            canvas.text(decimal(index + 1), cell.left + 5, baseline, Theme::kSmall, Theme::kDim);
        if (nameWidth + canvas.width(L"100 %", Theme::kSmall) + 16 <= cell.width())
            canvas.textRight(percentText(load), cell.right - 5, baseline, Theme::kSmall,
                             Theme::kText);
    }

    void drawPlace(const MapRow::Place& place, const Rect& full, const Rect& inner) const
    {
        const Rect box{full.left, full.top, std::max(full.right - 1, full.left + 2),
                       std::max(full.bottom - 1, full.top + 2)};
        canvas.fill(box, Theme::kHeader);
        canvas.fill(inner.intersection(box), Theme::kBlue.top, Theme::kBlue.bottom);
        canvas.frame(box, place.marked ? Theme::mix(Theme::kBlue.top, Theme::kWhite, 0.35f)
                                       : Theme::mix(Theme::kBlue.top, Theme::kWhite, 0.1f));
        const int x = (box.left + box.right) / 2;
        const int y = (box.top + box.bottom) / 2;
        const int room = box.width() - 12;
        if (box.height() < 20 || room < 16)
            return;
        const bool both = box.height() >= 40 && canvas.width(place.fact, Theme::kSmall) <= room;
        canvas.textCentred(canvas.fitted(place.name, room, Theme::kFact), x, both ? y - 2 : y + 4,
                           Theme::kFact, Theme::kText);
        if (both)
            canvas.textCentred(place.fact, x, y + 13, Theme::kSmall,
                               Theme::mix(Theme::kBlue.top, Theme::kText, 0.7f));
    }
};

} // namespace

const Theme::Gradient& lookOf(Tone tone)
{
    switch (tone) {
    case Tone::eBlue:
        return Theme::kBlue;
    case Tone::ePurple:
        return Theme::kPurple;
    case Tone::eGold:
        return Theme::kGold;
    case Tone::eRed:
        return Theme::kRed;
    default:
        return Theme::kTeal;
    }
}

NormalisedRGB brightOf(Tone tone)
{
    return Theme::mix(lookOf(tone).top, Theme::kWhite, 0.25f);
}

Rect graphRect(const Rect& row)
{
    return {row.left, row.top + kGraphText, row.right, row.bottom};
}

void drawGraph(Canvas& canvas, const GraphRow& row, const Rect& graph)
{
    canvas.fill(graph, kWell);
    for (int quarter = 0; quarter < 4; ++quarter) {
        const int y = graph.top + graph.height() * quarter / 4;
        canvas.fill({graph.left, y, graph.right, y + 1}, Theme::mix(kWell, Theme::kTick, 0.3f));
    }
    drawHistory(canvas, row.history, graph, lookOf(row.tone), true);
}

void drawRow(Scene& scene, const Row& row, const Rect& rect, const Hit& at)
{
    std::visit(RowDrawer{scene, scene.canvas, rect, at}, row);
}

void drawHistory(Canvas& canvas, const History& history, const Rect& rect,
                 const Theme::Gradient& look, bool smooth)
{
    const int count = static_cast<int>(history.values.size());
    if (count == 0 || rect.width() < 2 || rect.height() < 2)
        return;
    const double step = static_cast<double>(rect.width()) / (History::kLength - 1);
    const auto value = [&](int i) {
        return static_cast<double>(history.values[static_cast<std::size_t>(i)]);
    };
    const auto xOf = [&](int i) {
        return rect.right - static_cast<int>(std::lround((count - 1 - i) * step));
    };
    const auto yOf = [&](double v) {
        return rect.bottom - 1 - static_cast<int>(std::lround((rect.height() - 2) * v));
    };
    const NormalisedRGB bright = Theme::mix(look.top, Theme::kWhite, 0.3f);
    int above = yOf(value(0));
    for (int x = std::max(rect.left, xOf(0)); x < rect.right; ++x) {
        const double place =
            std::clamp(count - 1 - (rect.right - x) / step, 0.0, static_cast<double>(count - 1));
        const int before = static_cast<int>(place);
        const int after = std::min(before + 1, count - 1);
        const int y = yOf(std::lerp(value(before), value(after), place - before));
        // One gradient for all of the graph: what is higher is brighter.
        const auto depth =
            static_cast<float>(y - rect.top) / static_cast<float>(std::max(1, rect.height()));
        // Each reaches under the next one: at scales between whole ones no seam is seen.
        canvas.fill({x, y, std::min(x + 2, rect.right), rect.bottom},
                    Theme::mix(look.top, look.bottom, depth), look.bottom);
        if (!smooth)
            canvas.fill({x, std::min(y, above), x + 1, std::max(y + 1, above)}, bright);
        above = y;
    }
    // A level stretch is one piece: where pieces meet their smooth ends add up.
    for (int i = 0, next = 1; smooth && next < count; i = next++) {
        const int level = yOf(value(i));
        while (next + 1 < count && yOf(value(next)) == level && yOf(value(next + 1)) == level)
            ++next;
        const Point from{xOf(i), level};
        const Point to{xOf(next), yOf(value(next))};
        canvas.curve(from, from, to, to, bright, 1);
    }
}

} // namespace Quay
