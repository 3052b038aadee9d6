#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Painting/iHostImage.h>

#include <algorithm>
#include <cmath>
#include <functional>

namespace Media {

/// A colour of light: 0 to 1, more where it is brighter than the picture can show.
struct Colour
{
    double r = 0.0;
    double g = 0.0;
    double b = 0.0;

    friend Colour operator+(const Colour& a, const Colour& c)
    {
        return {a.r + c.r, a.g + c.g, a.b + c.b};
    }
    friend Colour operator*(const Colour& a, double f) { return {a.r * f, a.g * f, a.b * f}; }
};

inline Colour hex(unsigned int rgb)
{
    return {((rgb >> 16) & 0xFF) / 255.0, ((rgb >> 8) & 0xFF) / 255.0, (rgb & 0xFF) / 255.0};
}
inline Colour mix(const Colour& a, const Colour& b, double t)
{
    t = std::clamp(t, 0.0, 1.0);
    return a * (1.0 - t) + b * t;
}
inline double smooth(double from, double to, double x)
{
    const double t = std::clamp((x - from) / (to - from), 0.0, 1.0);
    return t * t * (3.0 - 2.0 * t);
}

/// Even noise of 0 to 1, the same on every machine.
double hashed(int x, int y, int seed);
/// Smooth noise of 0 to 1 with a period of about 1.
double noise(double x, double y, int seed);
/// Noise with finer noise on it.
double clouds(double x, double y, int seed, int octaves);

/// The light at a point: x from 0 at the left to the picture's width by height, y from 0 to 1 down.
using Scene = std::function<Colour(double x, double y)>;

/// Draws a scene with `grid` by `grid` samples for each pixel.
Tq::Ptr<iHostImage> render(int width, int height, int grid, const Scene& scene);
/// Writes a picture into a folder. @return whether it could be written
bool save(const Tq::Ptr<iHostImage>& picture, const LightweightString<wchar_t>& folder,
          const wchar_t* name);

// The pictures, each with its size.
Tq::Ptr<iHostImage> colourBars();
Tq::Ptr<iHostImage> ramps();
Tq::Ptr<iHostImage> zonePlate();
Tq::Ptr<iHostImage> testChart();
Tq::Ptr<iHostImage> titleCard();
Tq::Ptr<iHostImage> dawn();
Tq::Ptr<iHostImage> pier();
Tq::Ptr<iHostImage> quay();

} // namespace Media
