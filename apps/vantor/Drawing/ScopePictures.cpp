#include "Drawing/ScopePictures.h"

#include "common/Theme.h"

#include <OS/Painting/iPixelGuard.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace Vantor {

namespace {

constexpr int kLevels = ScopeCounts::kLevels;
constexpr float kScale =
    0.62f; ///< of Cb and Cr that reaches the vectorscope's edge: more than any colour has

struct Colour
{
    float red, green, blue;
};
constexpr Colour kGround{0.071f, 0.078f, 0.098f};
constexpr Colour kLine{0.20f, 0.22f, 0.26f};
constexpr Colour kTarget{0.42f, 0.45f, 0.50f};

/// The pixels of one picture while it is drawn, as sums of light.
class Plot
{
public:
    explicit Plot(const Point& size)
        : size_(size),
          light_(static_cast<std::size_t>(size.x) * static_cast<std::size_t>(size.y), kGround)
    {
    }
    const Point& size() const { return size_; }
    bool holds(int x, int y) const { return x >= 0 && y >= 0 && x < size_.x && y < size_.y; }

    void set(int x, int y, const Colour& colour)
    {
        if (holds(x, y))
            at(x, y) = colour;
    }
    void add(int x, int y, const Colour& colour, float share)
    {
        if (!holds(x, y))
            return;
        Colour& light = at(x, y);
        light.red += colour.red * share;
        light.green += colour.green * share;
        light.blue += colour.blue * share;
    }
    void horizontal(int y, const Colour& colour)
    {
        for (int x = 0; x < size_.x; ++x)
            set(x, y, colour);
    }
    void write(iPixelGuard& guard) const
    {
        const auto byte = [](float value) {
            return static_cast<std::uint8_t>(std::clamp(value, 0.0f, 1.0f) * 255.0f + 0.5f);
        };
        for (int y = 0; y < size_.y; ++y) {
            std::uint8_t* out =
                guard.getPixels() + static_cast<std::ptrdiff_t>(y) * guard.getStride();
            for (int x = 0; x < size_.x; ++x, out += 4) {
                const Colour& light = light_[index(x, y)];
                out[0] = byte(light.blue);
                out[1] = byte(light.green);
                out[2] = byte(light.red);
                out[3] = 255;
            }
        }
    }

private:
    std::size_t index(int x, int y) const
    {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(size_.x) +
               static_cast<std::size_t>(x);
    }
    Colour& at(int x, int y) { return light_[index(x, y)]; }

    Point size_;
    std::vector<Colour> light_;
};

/// Counts that lie between pixels, shared among the four around them.
class Sums
{
public:
    explicit Sums(const Point& size)
        : size_(size),
          sums_(static_cast<std::size_t>(size.x) * static_cast<std::size_t>(size.y), 0.0f)
    {
    }
    float at(int x, int y) const { return sums_[index(x, y)]; }
    void add(float x, float y, float count)
    {
        const float left = std::floor(x);
        const float top = std::floor(y);
        const float right = x - left;
        const float bottom = y - top;
        const int column = static_cast<int>(left);
        const int row = static_cast<int>(top);
        put(column, row, count * (1.0f - right) * (1.0f - bottom));
        put(column + 1, row, count * right * (1.0f - bottom));
        put(column, row + 1, count * (1.0f - right) * bottom);
        put(column + 1, row + 1, count * right * bottom);
    }

private:
    std::size_t index(int x, int y) const
    {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(size_.x) +
               static_cast<std::size_t>(x);
    }
    void put(int x, int y, float count)
    {
        if (x >= 0 && y >= 0 && x < size_.x && y < size_.y)
            sums_[index(x, y)] += count;
    }
    Point size_;
    std::vector<float> sums_;
};

/// How bright a trace is for a number of pixels: few can be seen, many do not burn out.
float glow(float count, float usual)
{
    return count < 0.02f ? 0.0f : 1.0f - std::exp(-(0.12f + count / std::max(usual, 1.0f)));
}

int rowOf(const Plot& plot, float share)
{
    return static_cast<int>(std::lround((1.0f - share) * static_cast<float>(plot.size().y - 1)));
}

void drawWaveform(Plot& plot, const ScopeCounts* counts)
{
    for (const float share : {0.0f, 0.25f, 0.5f, 0.75f, 1.0f})
        plot.horizontal(rowOf(plot, share), kLine);
    if (!counts || counts->columns <= 0)
        return;
    const Point size = plot.size();
    Sums sums(size);
    for (int level = 0; level < kLevels; ++level)
        for (int column = 0; column < counts->columns; ++column) {
            const std::uint32_t count =
                counts->waveform[static_cast<std::size_t>(level * counts->columns + column)];
            if (count > 0)
                sums.add((static_cast<float>(column) + 0.5f) / static_cast<float>(counts->columns) *
                                 static_cast<float>(size.x) -
                             0.5f,
                         (1.0f - static_cast<float>(level) / (kLevels - 1)) *
                             static_cast<float>(size.y - 1),
                         static_cast<float>(count));
        }
    const float usual = static_cast<float>(counts->pixels) / static_cast<float>(size.x) * 0.04f;
    constexpr Colour kTrace{0.62f, 0.92f, 0.72f};
    for (int y = 0; y < size.y; ++y)
        for (int x = 0; x < size.x; ++x)
            plot.add(x, y, kTrace, glow(sums.at(x, y), usual));
}

struct Place
{
    float x, y;
};

float halfOf(const Plot& plot)
{
    return static_cast<float>(std::min(plot.size().x, plot.size().y) - 1) / 2.0f;
}

Place placeOf(const Plot& plot, const Vector& vector)
{
    const float half = halfOf(plot);
    return {half + vector.cb / kScale * half, half - vector.cr / kScale * half};
}

Point pixelOf(const Plot& plot, const Vector& vector)
{
    const Place place = placeOf(plot, vector);
    return {static_cast<int>(std::lround(place.x)), static_cast<int>(std::lround(place.y))};
}

/// The vector of a pixel.
Vector vectorOn(const Plot& plot, int x, int y)
{
    const float half = halfOf(plot);
    return {(static_cast<float>(x) / half - 1.0f) * kScale,
            (1.0f - static_cast<float>(y) / half) * kScale};
}

/// The vector of a count.
Vector vectorAt(int column, int row)
{
    return {static_cast<float>(column) / (kLevels - 1) - 0.5f,
            static_cast<float>(row) / (kLevels - 1) - 0.5f};
}

void drawVectorScale(Plot& plot)
{
    const Point middle = pixelOf(plot, {0.0f, 0.0f});
    for (int i = 0; i < std::min(plot.size().x, plot.size().y); ++i) {
        plot.set(i, middle.y, kLine);
        plot.set(middle.x, i, kLine);
    }
    for (int i = 0; i < 720; ++i) {
        const float angle = static_cast<float>(i) * 3.14159265f / 360.0f;
        const Point at = pixelOf(plot, {0.5f * std::cos(angle), 0.5f * std::sin(angle)});
        plot.set(at.x, at.y, kLine);
    }
    // Boxes for the six colours of bars at 75 %.
    for (int bits = 1; bits < 7; ++bits) {
        const auto part = [bits](int bit) { return (bits & bit) != 0 ? 0.75f : 0.0f; };
        const Point at = pixelOf(plot, vectorOf(part(1), part(2), part(4)));
        for (int i = -3; i <= 3; ++i)
            for (const auto& [x, y] : {Point(i, -3), Point(i, 3), Point(-3, i), Point(3, i)})
                plot.set(at.x + x, at.y + y, kTarget);
    }
}

/// The colour of a vector at a pleasant brightness.
Colour colourOf(const Vector& vector)
{
    const float luma = 0.6f;
    const float red = luma + 1.5748f * vector.cr;
    const float blue = luma + 1.8556f * vector.cb;
    return {std::clamp(red, 0.15f, 1.0f),
            std::clamp((luma - 0.2126f * red - 0.0722f * blue) / 0.7152f, 0.15f, 1.0f),
            std::clamp(blue, 0.15f, 1.0f)};
}

void drawVectors(Plot& plot, const ScopeCounts* counts)
{
    drawVectorScale(plot);
    if (!counts)
        return;
    Sums sums(plot.size());
    for (int row = 0; row < kLevels; ++row)
        for (int column = 0; column < kLevels; ++column) {
            const std::uint32_t count =
                counts->vectors[static_cast<std::size_t>(row * kLevels + column)];
            const Place at = placeOf(plot, vectorAt(column, row));
            if (count > 0)
                sums.add(at.x, at.y, static_cast<float>(count));
        }
    const float usual = static_cast<float>(counts->pixels) * 0.004f;
    for (int y = 0; y < plot.size().y; ++y)
        for (int x = 0; x < plot.size().x; ++x)
            plot.add(x, y, colourOf(vectorOn(plot, x, y)), glow(sums.at(x, y), usual));
}

void drawHistogram(Plot& plot, const ScopeCounts* counts)
{
    const Point size = plot.size();
    for (const float share : {0.25f, 0.5f, 0.75f}) {
        const int x = static_cast<int>(share * static_cast<float>(size.x - 1));
        for (int y = 0; y < size.y; ++y)
            plot.set(x, y, kLine);
    }
    plot.horizontal(size.y - 1, kLine);
    if (!counts)
        return;
    constexpr Colour kInks[] = {
        {0.62f, 0.12f, 0.12f}, {0.10f, 0.52f, 0.16f}, {0.14f, 0.22f, 0.68f}};
    // One tall spike, a black border say, must not flatten the rest: heights grow as square roots.
    const float most = std::sqrt(static_cast<float>(counts->pixels) * 0.06f);
    for (int channel = 0; channel < 3; ++channel)
        for (int x = 0; x < size.x; ++x) {
            const int from = x * kLevels / size.x;
            const int to = std::max(from + 1, (x + 1) * kLevels / size.x);
            std::uint32_t count = 0;
            for (int level = from; level < to; ++level)
                count = std::max(
                    count, counts->histogram[static_cast<std::size_t>(channel * kLevels + level)]);
            const float share = std::min(1.0f, std::sqrt(static_cast<float>(count)) / most);
            const int top = rowOf(plot, share);
            for (int y = top; y < size.y && count > 0; ++y)
                plot.add(x, y, kInks[channel], y == top ? 1.4f : 0.9f);
        }
}

} // namespace

Vector vectorOf(float red, float green, float blue)
{
    const float luma = 0.2126f * red + 0.7152f * green + 0.0722f * blue;
    return {(blue - luma) / 1.8556f, (red - luma) / 1.5748f};
}

Tq::Ptr<iHostImage> ScopePictures::get(Scope scope,
                                       const std::shared_ptr<const ScopeCounts>& counts,
                                       const App::Rect& rect)
{
    Kept& kept = kept_[static_cast<std::size_t>(scope)];
    if (kept.image && kept.counts == counts && kept.size == rect.size())
        return kept.image;
    kept = {counts, rect.size(), resources_.blank(rect)};
    const Tq::Ptr<iPixelGuard> guard = kept.image ? kept.image->lock() : nullptr;
    if (!guard)
        return kept.image;
    Plot plot(guard->getSize());
    if (scope == Scope::eWaveform)
        drawWaveform(plot, counts.get());
    else if (scope == Scope::eVectorscope)
        drawVectors(plot, counts.get());
    else
        drawHistogram(plot, counts.get());
    plot.write(*guard);
    return kept.image;
}

} // namespace Vantor
