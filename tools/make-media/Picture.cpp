#include "Picture.h"

#include <OS.h>
#include <OS/Media/iMediaServices.h>

#include <cstdint>

namespace Media {

double hashed(int x, int y, int seed)
{
    auto h = static_cast<std::uint32_t>(x) * 0x8DA6B343u ^
             static_cast<std::uint32_t>(y) * 0xD8163841u ^
             static_cast<std::uint32_t>(seed) * 0xCB1AB31Fu;
    h = (h ^ (h >> 15)) * 0x2C1B3C6Du;
    h = (h ^ (h >> 12)) * 0x297A2D39u;
    return (h ^ (h >> 15)) / 4294967295.0;
}

double noise(double x, double y, int seed)
{
    const int left = static_cast<int>(std::floor(x));
    const int top = static_cast<int>(std::floor(y));
    const double u = smooth(0.0, 1.0, x - left);
    const double v = smooth(0.0, 1.0, y - top);
    const double above = hashed(left, top, seed) * (1.0 - u) + hashed(left + 1, top, seed) * u;
    const double below =
        hashed(left, top + 1, seed) * (1.0 - u) + hashed(left + 1, top + 1, seed) * u;
    return above * (1.0 - v) + below * v;
}

double clouds(double x, double y, int seed, int octaves)
{
    double sum = 0.0;
    double weight = 0.5;
    double total = 0.0;
    for (int i = 0; i < octaves; ++i, weight *= 0.5) {
        sum += noise(x, y, seed + i) * weight;
        total += weight;
        x = x * 2.03 + 11.7;
        y = y * 2.03 + 5.3;
    }
    return sum / total;
}

namespace {

// A little noise before rounding keeps slow gradients free of steps.
std::uint8_t toByte(double light, double dither)
{
    return static_cast<std::uint8_t>(std::clamp(light * 255.0 + dither, 0.0, 255.0));
}

} // namespace

Tq::Ptr<iHostImage> render(int width, int height, int grid, const Scene& scene)
{
    Tq::Ptr<iHostImage> image = OS()->mediaServices()->createHostSurface({width, height});
    const Tq::Ptr<iPixelGuard> guard = image->lock();
    for (int y = 0; y < height; ++y) {
        std::uint8_t* out =
            guard->getPixels() + static_cast<std::ptrdiff_t>(y) * guard->getStride();
        for (int x = 0; x < width; ++x, out += 4) {
            Colour sum;
            for (int j = 0; j < grid; ++j)
                for (int i = 0; i < grid; ++i)
                    sum = sum +
                          scene((x + (i + 0.5) / grid) / height, (y + (j + 0.5) / grid) / height);
            sum = sum * (1.0 / (grid * grid));
            const double dither = grid > 1 ? hashed(x, y, 99) : 0.5;
            out[0] = toByte(sum.b, dither);
            out[1] = toByte(sum.g, dither);
            out[2] = toByte(sum.r, dither);
            out[3] = 255;
        }
    }
    return image;
}

bool save(const Tq::Ptr<iHostImage>& picture, const LightweightString<wchar_t>& folder,
          const wchar_t* name)
{
    return OS()->mediaServices()->saveImage(picture, folder + L"/" + name);
}

} // namespace Media
