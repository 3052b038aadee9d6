#include "Picture.h"

#include <initializer_list>
#include <utility>

namespace Media {

namespace {

/// A ridge against the sky: its height above the horizon at x.
double ridge(double x, double period, double height, int seed)
{
    return height * (0.35 + clouds(x / period, 0.5, seed, 5));
}

/// A gradient through several colours, from the top down.
Colour gradient(std::initializer_list<std::pair<double, unsigned int>> stops, double t)
{
    auto from = stops.begin();
    for (auto to = from; to != stops.end(); from = to++)
        if (t <= to->first)
            return to == stops.begin()
                       ? hex(to->second)
                       : mix(hex(from->second), hex(to->second), smooth(from->first, to->first, t));
    return hex(from->second);
}

/// Where a reflected ray meets the scene: waves are wider near the viewer.
struct Ripple
{
    double dx;
    double y; ///< of the mirrored scene
    double crest;
};

Ripple ripple(double x, double y, double horizon, int seed)
{
    const double depth = (y - horizon) / (1.0 - horizon);
    const double far = 1.0 / (0.03 + depth);
    const double wave = clouds(x * (2.0 + far * 0.7), far * 7.0, seed, 4) - 0.5;
    const double fine = clouds(x * (9.0 + far * 3.0), far * 26.0, seed + 20, 3) - 0.5;
    const double push = wave * 0.16 + fine * 0.10;
    return {push * 0.20 * (0.2 + depth), horizon - (y - horizon) * (0.9 + push * 1.4) - 0.004,
            wave + fine};
}

// -- Dawn: the sun over the water

constexpr double kDawnHorizon = 0.60;
constexpr double kSunX = 1.12;
constexpr double kSunY = 0.535;

/// @param disc whether the sun itself is drawn: on the water it is the glints that show it
Colour dawnSky(double x, double y, bool disc)
{
    Colour sky = gradient(
        {{0.0, 0x34476F}, {0.26, 0x7C6A8E}, {0.44, 0xD98A78}, {0.56, 0xF6B26F}, {0.62, 0xFFD391}},
        y);
    const double distance = std::hypot(x - kSunX, (y - kSunY) * 1.1);
    sky = sky + hex(0xFFB060) * (0.42 * std::exp(-distance * 5.0));
    sky = sky + hex(0xFFE2B0) * (0.55 * std::exp(-distance * 22.0));
    // Bands of cloud, lit from below where they are near the sun.
    const double band = clouds(x * 1.5 + 3.0, y * 9.0, 5, 6);
    const double cover = smooth(0.50, 0.74, band) * smooth(0.60, 0.34, y) * smooth(-0.1, 0.16, y);
    const Colour lit = mix(hex(0x5C5273), hex(0xFFC48C),
                           smooth(0.05, 0.55, y) * std::exp(-std::abs(x - kSunX) * 0.9));
    sky = mix(sky, lit, cover * 0.75);
    if (!disc)
        return sky;
    const double edge = smooth(0.0475, 0.0455, std::hypot(x - kSunX, y - kSunY));
    return mix(sky, hex(0xFFF3D6), edge);
}

Colour dawnLand(double x, double y, bool disc)
{
    Colour colour = dawnSky(x, y, disc);
    static constexpr struct
    {
        double period, height, fade;
        int seed;
        unsigned int colour;
    } kRidges[] = {{0.55, 0.075, 0.35, 41, 0xB07A80},
                   {0.35, 0.048, 0.55, 52, 0x7B5A72},
                   {0.24, 0.026, 1.0, 63, 0x47405E}};
    for (const auto& r : kRidges) {
        // The land falls away towards the sun, where the water is open.
        const double open = smooth(0.05, 0.6, std::abs(x - kSunX - 0.05)) * (x < kSunX ? 1.0 : 0.7);
        const double top = kDawnHorizon - ridge(x, r.period, r.height, r.seed) * open;
        const double haze = std::exp(-std::abs(x - kSunX) * 2.2) * 0.5;
        colour = mix(colour, mix(hex(r.colour), hex(0xF3B07C), haze),
                     smooth(top - 0.0008, top + 0.0008, y));
    }
    return colour;
}

bool inBoat(double x, double y)
{
    const double bx = x - 0.52;
    const double by = y - 0.655;
    const bool hull = by > 0.0 && by < 0.018 && std::abs(bx) < 0.062 - by * 1.2;
    const bool mast = std::abs(bx) < 0.0016 && by < 0.002 && by > -0.158;
    const bool sail = by < -0.010 && by > -0.150 && bx > 0.004 && bx < 0.052 * (by + 0.150) / 0.14;
    const bool jib =
        by < -0.006 && by > -0.132 && bx < -0.004 && bx > -0.042 * (by + 0.132) / 0.126;
    return hull || mast || sail || jib;
}

Colour dawnScene(double x, double y)
{
    if (inBoat(x, y))
        return mix(hex(0x3A2E45), hex(0x1F1B2C), smooth(0.5, 0.68, y));
    if (y < kDawnHorizon)
        return dawnLand(x, y, true);
    const double depth = (y - kDawnHorizon) / (1.0 - kDawnHorizon);
    const Ripple at = ripple(x, y, kDawnHorizon, 7);
    Colour water = mix(dawnLand(x + at.dx, std::min(at.y, kDawnHorizon), false), hex(0x1C2A48),
                       0.22 + 0.55 * depth);
    // The sun's path: glints that thin out to both sides and towards the viewer.
    const double aside = std::abs(x - kSunX + at.dx * 1.5) / (0.03 + depth * 0.16);
    const double glint =
        smooth(-0.02 + aside * 0.12, 0.22 + aside * 0.16, at.crest) * std::exp(-aside * 0.9);
    water = water + hex(0xFFC98A) * (glint * (0.95 - 0.45 * depth));
    // The boat's own reflection, broken by the waves.
    const double mirrored = 0.673 - (y - 0.673) * 0.8;
    if (y > 0.673 && inBoat(x + at.dx * 2.5, mirrored))
        water = mix(water, hex(0x2A2438), 0.62 * smooth(0.90, 0.68, y));
    return water * (1.0 - 0.18 * smooth(0.6, 1.0, depth));
}

// -- Pier: planks that run out to sea

constexpr double kPierHorizon = 0.44;
constexpr double kPierX = 0.80;

Colour pierSky(double x, double y)
{
    Colour sky =
        gradient({{0.0, 0x2E5F7E}, {0.22, 0x5E93A3}, {0.36, 0xE0B795}, {0.44, 0xF7C48E}}, y);
    const double band = clouds(x * 1.1 + 8.0, y * 5.0 + 2.0, 15, 6);
    sky = mix(sky, mix(hex(0x54708A), hex(0xFFD3AE), smooth(0.0, 0.4, y)),
              smooth(0.48, 0.75, band) * 0.7);
    return sky + hex(0xFFAF6A) * (0.35 * std::exp(-std::hypot(x - 0.35, (y - 0.42) * 1.6) * 4.5));
}

Colour planks(double x, double y, double half)
{
    const double depth = 0.11 / (y - kPierHorizon);
    const double across = (x - kPierX) / half;
    const double row = depth * 16.0;
    const double tone = 0.72 + 0.28 * hashed(static_cast<int>(row), 3, 31);
    const double grain = clouds(across * 3.0 + std::floor(row) * 7.0, row * 9.0, 33, 4);
    Colour wood = mix(hex(0x4A362C), hex(0xA77B58), grain * tone);
    const double gap = std::abs(row - std::floor(row) - 0.5) * 2.0;
    wood = wood * (1.0 - 0.75 * smooth(0.86, 0.97, gap) * smooth(5.0, 1.0, depth * 3.0));
    // The low sun from the left warms that side.
    wood = wood + hex(0xFFB070) * (0.16 * smooth(0.6, -1.0, across));
    return mix(wood, hex(0xE8B68C), smooth(0.35, 2.6, depth) * 0.75);
}

/// The posts along both edges. @return the colour where one covers the point
bool pierPost(double x, double y, Colour& colour)
{
    for (int i = 0; i < 9; ++i) {
        const double depth = 0.20 * std::pow(1.5, i);
        const double foot = kPierHorizon + 0.11 / depth;
        const double half = (foot - kPierHorizon) * 0.95;
        const double width = 0.010 / depth * 0.30;
        const double tall = 0.085 / depth * 0.30 * 2.6;
        for (const int side : {-1, 1}) {
            const double dx = x - kPierX - side * half;
            if (std::abs(dx) < width && y < foot && y > foot - tall) {
                const Colour wood =
                    mix(hex(0xA8724A), hex(0x2C211E), smooth(-1.0, 0.4, dx / width));
                colour = mix(wood, hex(0xDDB08C), smooth(0.4, 4.5, depth) * 0.7);
                return true;
            }
        }
    }
    return false;
}

/// A small pavilion at the pier's end.
bool pavilion(double x, double y)
{
    const double dx = std::abs(x - kPierX);
    const double dy = kPierHorizon + 0.012 - y;
    if (dy < 0.0)
        return false;
    if (dy < 0.05)
        return dx < 0.046 && (dy < 0.006 || dy > 0.042 || std::fmod(dx + 0.004, 0.0185) < 0.006);
    return dy < 0.094 && dx < 0.060 * (0.096 - dy) / 0.044;
}

Colour pierScene(double x, double y)
{
    Colour post;
    if (pierPost(x, y, post))
        return post;
    if (pavilion(x, y))
        return mix(hex(0x5A4A4C), hex(0x8A6A5C), smooth(kPierX + 0.05, kPierX - 0.05, x));
    if (y < kPierHorizon)
        return pierSky(x, y);
    const double half = (y - kPierHorizon) * 0.98;
    if (std::abs(x - kPierX) < half && y > kPierHorizon + 0.010)
        return planks(x, y, half);
    const double depth = (y - kPierHorizon) / (1.0 - kPierHorizon);
    const Ripple at = ripple(x, y, kPierHorizon, 17);
    Colour water = mix(pierSky(x + at.dx, std::max(0.0, at.y)), hex(0x173F4C), 0.35 + 0.45 * depth);
    const double glint = smooth(0.08, 0.34, at.crest) * std::exp(-std::abs(x - 0.35) * 3.2) *
                         (1.0 - 0.75 * smooth(0.1, 0.9, depth));
    water = water + hex(0xFFCFA0) * (glint * 0.55);
    // The pier shades the water beside it.
    return water *
           (1.0 - 0.45 * smooth(half * 1.35, half, std::abs(x - kPierX)) * smooth(0.0, 0.2, depth));
}

// -- Quay: houses and lamps at dusk

constexpr double kQuayLine = 0.62;

Colour quaySky(double x, double y)
{
    const Colour sky =
        gradient({{0.0, 0x0B1A33}, {0.35, 0x1B3F63}, {0.55, 0x4F7C8E}, {0.64, 0xC79A7C}}, y);
    const double band = clouds(x * 1.3, y * 7.0, 71, 5);
    return mix(sky, hex(0x7C7F93), smooth(0.52, 0.8, band) * 0.45 * smooth(0.02, 0.3, y));
}

Colour house(double x, double y, Colour behind)
{
    const int number = static_cast<int>(std::floor(x / 0.115));
    const double inside = x / 0.115 - number;
    const double top = kQuayLine - 0.13 - 0.16 * hashed(number, 1, 73);
    const bool gabled = hashed(number, 2, 73) > 0.4;
    const double roof = gabled ? top - 0.06 * (1.0 - 2.0 * std::abs(inside - 0.5)) : top;
    if (y < roof)
        return behind;
    Colour wall = mix(hex(0x1A2638), hex(0x3A2F3E), hashed(number, 4, 73)) *
                  (0.8 + 0.4 * hashed(number, 5, 73));
    if (y < top)
        return wall * 0.7;
    // Windows in rows; two thirds of them are lit.
    const double column = inside * 4.0;
    const double row = (kQuayLine - 0.03 - y) / 0.042;
    const double u = column - std::floor(column);
    const double v = row - std::floor(row);
    const bool window =
        u > 0.28 && u < 0.76 && v > 0.22 && v < 0.78 && y > top + 0.02 && y < kQuayLine - 0.03;
    if (window) {
        const int id = number * 64 + static_cast<int>(row) * 8 + static_cast<int>(column);
        const double on = hashed(id, 6, 73);
        return on < 0.38
                   ? wall * 0.6
                   : mix(hex(0xFFC873), hex(0xFFE9BE), hashed(id, 7, 73)) * (0.55 + 0.45 * on);
    }
    return wall;
}

Colour quayTown(double x, double y)
{
    Colour colour = house(x + 0.03, y, quaySky(x, y));
    if (y > kQuayLine - 0.012)
        colour = hex(0x141A24);   // the quay's wall
    for (int i = 0; i < 7; ++i) { // lamps along the edge
        const double lx = 0.12 + i * 0.26;
        const double ly = kQuayLine - 0.075;
        if (std::abs(x - lx) < 0.002 && y > ly)
            colour = hex(0x0C0F16);
        const double distance = std::hypot(x - lx, y - ly);
        colour = colour + hex(0xFFC27A) * (0.9 * std::exp(-distance * 46.0)) +
                 hex(0xFFF2D8) * smooth(0.0085, 0.006, distance);
    }
    return colour;
}

Colour quayScene(double x, double y)
{
    if (y < kQuayLine)
        return quayTown(x, y);
    const double depth = (y - kQuayLine) / (1.0 - kQuayLine);
    const Ripple at = ripple(x, y, kQuayLine, 77);
    // Still harbour water: reflections are drawn out downwards.
    Colour sum;
    for (int i = 0; i < 7; ++i)
        sum = sum + quayTown(x + at.dx * 0.5,
                             std::max(0.0, at.y - 0.02 - (i - 3) * 0.022 * (0.3 + depth)));
    const Colour water = mix(sum * (1.0 / 7.0), hex(0x0A1626), 0.20 + 0.50 * depth);
    return water * (0.92 + 0.5 * at.crest);
}

} // namespace

Tq::Ptr<iHostImage> dawn()
{
    return render(1280, 720, 2, dawnScene);
}

Tq::Ptr<iHostImage> pier()
{
    return render(1280, 720, 2, pierScene);
}

Tq::Ptr<iHostImage> quay()
{
    return render(480, 270, 3, quayScene);
}

} // namespace Media
