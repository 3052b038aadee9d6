#include "OS/Mac/OpenGL/Images/PixelPacking.h"

#include "OS/Mac/OpenGL/Images/VideoColour.h"

#include <algorithm>
#include <array>

namespace {

using Word = std::uint32_t;
constexpr Word kBlack = 0xFF000000;

constexpr int red(Word word)
{
    return word >> 16 & 0xFF;
}
constexpr int green(Word word)
{
    return word >> 8 & 0xFF;
}
constexpr int blue(Word word)
{
    return word & 0xFF;
}
constexpr int alpha(Word word)
{
    return static_cast<int>(word >> 24);
}
constexpr Word opaque(int r, int g, int b)
{
    return kBlack | static_cast<Word>(r << 16 | g << 8 | b);
}

// -- Three components next to each other ----------------------------------------------------------

template <int R, int G, int B>
struct ThreeBytes
{
    using Component = std::uint8_t;
    static void split(Word word, Component* out)
    {
        out[R] = static_cast<Component>(red(word));
        out[G] = static_cast<Component>(green(word));
        out[B] = static_cast<Component>(blue(word));
    }
    static Word join(const Component* in) { return opaque(in[R], in[G], in[B]); }
    static constexpr Component kMissing[3] = {0, 0, 0};
};

struct ThreeShorts
{
    using Component = std::uint16_t;
    static void split(Word word, Component* out)
    {
        out[0] = static_cast<Component>(red(word) * 257);
        out[1] = static_cast<Component>(green(word) * 257);
        out[2] = static_cast<Component>(blue(word) * 257);
    }
    static Word join(const Component* in) { return opaque(in[0] >> 8, in[1] >> 8, in[2] >> 8); }
    static constexpr Component kMissing[3] = {0, 0, 0};
};

struct VideoBytes
{
    using Component = std::uint8_t;
    static void split(Word word, Component* out)
    {
        const auto sum = VideoColour::fromRGB(red(word), green(word), blue(word));
        out[0] = VideoColour::toByte(sum.y);
        out[1] = VideoColour::toByte(sum.cb);
        out[2] = VideoColour::toByte(sum.cr);
    }
    static Word join(const Component* in)
    {
        return VideoColour::toWord(in[0] << 8, in[1] << 8, in[2] << 8);
    }
    static constexpr Component kMissing[3] = {16, 128, 128};
};

struct VideoShorts
{
    using Component = std::uint16_t;
    static void split(Word word, Component* out)
    {
        const auto sum = VideoColour::fromRGB(red(word), green(word), blue(word));
        out[0] = VideoColour::toShort(sum.y);
        out[1] = VideoColour::toShort(sum.cb);
        out[2] = VideoColour::toShort(sum.cr);
    }
    static Word join(const Component* in) { return VideoColour::toWord(in[0], in[1], in[2]); }
    static constexpr Component kMissing[3] = {16 << 8, 128 << 8, 128 << 8};
};

// How many of a row's pixels are whole in storage, and how many components of the next one are.
struct Fit
{
    Fit(int width, int texels) : pixels(texels * 4 / 3), rest(texels * 4 % 3)
    {
        pixels = std::min(pixels, width);
    }
    int pixels;
    int rest;
};

template <class Pixel>
void packThree(const Word* words, int width, int texels, void* storage)
{
    using Component = typename Pixel::Component;
    const Fit fit(width, texels);
    auto* out = static_cast<Component*>(storage);
    for (int i = 0; i < fit.pixels; ++i)
        Pixel::split(words[i], out + 3 * i);
    if (fit.rest == 0)
        return;
    Component last[3];
    Pixel::split(words[fit.pixels], last);
    std::copy_n(last, fit.rest, out + 3 * fit.pixels);
}

template <class Pixel>
void unpackThree(const void* storage, int width, int texels, Word* words)
{
    using Component = typename Pixel::Component;
    const Fit fit(width, texels);
    const auto* in = static_cast<const Component*>(storage);
    for (int i = 0; i < fit.pixels; ++i)
        words[i] = Pixel::join(in + 3 * i);
    std::fill(words + fit.pixels, words + width, kBlack);
    if (fit.rest == 0)
        return;
    Component last[3] = {Pixel::kMissing[0], Pixel::kMissing[1], Pixel::kMissing[2]};
    std::copy_n(in + 3 * fit.pixels, fit.rest, last);
    words[fit.pixels] = Pixel::join(last);
}

// -- Two pixels in a texel ------------------------------------------------------------------------

// Where the bytes of a texel stand.
template <int FirstLuma, int Cb, int SecondLuma, int Cr>
struct PairOrder
{
    static void pack(const Word* words, int texels, std::uint8_t* out)
    {
        for (int i = 0; i < texels; ++i, words += 2, out += 4) {
            const int r[] = {red(words[0]), red(words[1])};
            const int g[] = {green(words[0]), green(words[1])};
            const int b[] = {blue(words[0]), blue(words[1])};
            out[FirstLuma] = VideoColour::toByte(VideoColour::fromRGB(r[0], g[0], b[0]).y);
            out[SecondLuma] = VideoColour::toByte(VideoColour::fromRGB(r[1], g[1], b[1]).y);
            // The differences of both together, which is twice what they share.
            const auto both = VideoColour::fromRGB(r[0] + r[1], g[0] + g[1], b[0] + b[1]);
            out[Cb] = VideoColour::toByte((both.cb + (128 << 16)) / 2);
            out[Cr] = VideoColour::toByte((both.cr + (128 << 16)) / 2);
        }
    }

    static void unpack(const std::uint8_t* in, int width, int texels, Word* words)
    {
        for (int i = 0; i < texels; ++i, in += 4) {
            const int cb = in[Cb] << 8, cr = in[Cr] << 8;
            words[2 * i] = VideoColour::toWord(in[FirstLuma] << 8, cb, cr);
            words[2 * i + 1] = VideoColour::toWord(in[SecondLuma] << 8, cb, cr);
        }
        std::fill(words + 2 * texels, words + width, kBlack);
    }
};

// -- One texel a pixel ----------------------------------------------------------------------------

constexpr Word tenBits(int byte)
{
    return static_cast<Word>((byte * 1023 + 127) / 255);
}
constexpr Word eightBits(Word ten)
{
    return ((ten & 1023) * 255 + 511) / 1023;
}

// 85 over each alpha, with sixteen bits behind the point: 85 is what one of two bits stands for.
constexpr std::array<int, 256> makeShares()
{
    std::array<int, 256> shares{};
    for (int a = 1; a < 256; ++a)
        shares[static_cast<std::size_t>(a)] = (85 << 16) / a;
    return shares;
}
constexpr std::array<int, 256> kShares = makeShares();

// Two bits of alpha are coarse: the colours follow it, so that none is brighter than it allows.
Word toTenBits(Word word)
{
    const int coarse = (alpha(word) * 3 + 127) / 255;
    const int scale = coarse * kShares[word >> 24];
    const auto channel = [&](int c) {
        return tenBits(std::min((c * scale + 0x8000) >> 16, coarse * 85));
    };
    return static_cast<Word>(coarse) << 30 | channel(red(word)) << 20 | channel(green(word)) << 10 |
           channel(blue(word));
}

Word fromTenBits(Word word)
{
    return (word >> 30) * 85 << 24 | eightBits(word >> 20) << 16 | eightBits(word >> 10) << 8 |
           eightBits(word);
}

void packShorts(const Word* words, int width, std::uint16_t* out)
{
    for (int i = 0; i < width; ++i, out += 4) {
        out[0] = static_cast<std::uint16_t>(blue(words[i]) * 257);
        out[1] = static_cast<std::uint16_t>(green(words[i]) * 257);
        out[2] = static_cast<std::uint16_t>(red(words[i]) * 257);
        out[3] = static_cast<std::uint16_t>(alpha(words[i]) * 257);
    }
}

void unpackShorts(const std::uint16_t* in, int width, Word* words)
{
    for (int i = 0; i < width; ++i, in += 4)
        words[i] = static_cast<Word>(in[3] >> 8) << 24 | static_cast<Word>(in[2] >> 8) << 16 |
                   static_cast<Word>(in[1] >> 8) << 8 | static_cast<Word>(in[0] >> 8);
}

} // namespace

namespace {

// Runs code with the kind of three-component pixel that a format has.
template <class Code>
void withThree(iGPUImage::eFormat format, Code code)
{
    switch (format) {
    case iGPUImage::eRGB8:
        return code(ThreeBytes<0, 1, 2>());
    case iGPUImage::eBGR8:
        return code(ThreeBytes<2, 1, 0>());
    case iGPUImage::eYUV8:
        return code(VideoBytes());
    case iGPUImage::eRGB16:
        return code(ThreeShorts());
    default:
        return code(VideoShorts());
    }
}

// Runs code with the order of bytes that a 4:2:2 format has.
template <class Code>
void withPairs(iGPUImage::eFormat format, Code code)
{
    switch (format) {
    case iGPUImage::eUYVY:
        return code(PairOrder<1, 0, 3, 2>());
    case iGPUImage::eYUY2:
        return code(PairOrder<0, 1, 2, 3>());
    case iGPUImage::eYVYU:
        return code(PairOrder<0, 3, 2, 1>());
    default:
        return code(PairOrder<1, 2, 3, 0>());
    }
}

} // namespace

int PixelPacking::bitsPerPixel() const
{
    switch (format_) {
    case iGPUImage::eRGB8:
    case iGPUImage::eBGR8:
    case iGPUImage::eYUV8:
        return 24;
    case iGPUImage::eRGB16:
    case iGPUImage::eYUV16:
        return 48;
    case iGPUImage::eARGB16:
        return 64;
    case iGPUImage::eUYVY:
    case iGPUImage::eYUY2:
    case iGPUImage::eYVYU:
    case iGPUImage::eVYUY:
        return 16;
    default:
        return 32;
    }
}

int PixelPacking::texelsInRow(int width) const
{
    switch (bitsPerPixel()) {
    case 24:
    case 48:
        return static_cast<int>(3ll * width / 4);
    case 16:
        return width / 2;
    default:
        return width;
    }
}

std::size_t PixelPacking::rowBytes(int width) const
{
    const bool shorts = bitsPerPixel() >= 48;
    return static_cast<std::size_t>(std::max(texelsInRow(width), 0)) * (shorts ? 8 : 4);
}

bool PixelPacking::isPlain() const
{
    return bitsPerPixel() == 32 && format_ != iGPUImage::eRGB32 &&
           format_ != iGPUImage::eARGB2101010;
}

void PixelPacking::packRow(const std::uint32_t* words, int width, void* storage) const
{
    const int texels = texelsInRow(width);
    switch (bitsPerPixel()) {
    case 24:
    case 48:
        return withThree(format_, [&](auto pixel) {
            packThree<decltype(pixel)>(words, width, texels, storage);
        });
    case 16:
        return withPairs(format_, [&](auto order) {
            decltype(order)::pack(words, texels, static_cast<std::uint8_t*>(storage));
        });
    case 64:
        return packShorts(words, width, static_cast<std::uint16_t*>(storage));
    default:
        break;
    }
    auto* out = static_cast<Word*>(storage);
    if (format_ == iGPUImage::eARGB2101010)
        std::transform(words, words + width, out, toTenBits);
    else if (format_ == iGPUImage::eRGB32)
        std::transform(words, words + width, out, [](Word word) { return word | kBlack; });
    else
        std::copy_n(words, width, out);
}

void PixelPacking::unpackRow(const void* storage, int width, std::uint32_t* words) const
{
    const int texels = texelsInRow(width);
    switch (bitsPerPixel()) {
    case 24:
    case 48:
        return withThree(format_, [&](auto pixel) {
            unpackThree<decltype(pixel)>(storage, width, texels, words);
        });
    case 16:
        return withPairs(format_, [&](auto order) {
            decltype(order)::unpack(static_cast<const std::uint8_t*>(storage), width, texels,
                                    words);
        });
    case 64:
        return unpackShorts(static_cast<const std::uint16_t*>(storage), width, words);
    default:
        break;
    }
    const auto* in = static_cast<const Word*>(storage);
    if (format_ == iGPUImage::eARGB2101010)
        std::transform(in, in + width, words, fromTenBits);
    else if (format_ == iGPUImage::eRGB32)
        std::transform(in, in + width, words, [](Word word) { return word | kBlack; });
    else
        std::copy_n(in, width, words);
}
