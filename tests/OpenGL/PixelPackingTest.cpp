#include "OS/Mac/OpenGL/Images/PixelPacking.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

using F = iGPUImage;
using Words = std::vector<std::uint32_t>;
using Bytes = std::vector<int>;

constexpr std::uint32_t kRed = 0xFFFF0000, kGreen = 0xFF00FF00, kBlue = 0xFF0000FF,
                        kBlack = 0xFF000000, kWhite = 0xFFFFFFFF;

iGPUImage::eFormat format(int value)
{
    return static_cast<iGPUImage::eFormat>(value);
}

// A packed row, and a watch that nothing is written behind it.
std::vector<std::uint8_t> packed(iGPUImage::eFormat format, const Words& words)
{
    const PixelPacking packing(format);
    const int width = static_cast<int>(words.size());
    const std::size_t bytes = packing.rowBytes(width);
    std::vector<std::uint8_t> row(bytes + 8, 0xCD);
    packing.packRow(words.data(), width, row.data());
    EXPECT_EQ(std::count(row.begin() + static_cast<long>(bytes), row.end(), 0xCD), 8)
        << "format " << format << " width " << width;
    row.resize(bytes);
    return row;
}

Words thereAndBack(iGPUImage::eFormat format, const Words& words)
{
    const auto row = packed(format, words);
    Words back(words.size() + 1, 0x12345678);
    PixelPacking(format).unpackRow(row.data(), static_cast<int>(words.size()), back.data());
    EXPECT_EQ(back.back(), 0x12345678u) << "format " << format;
    back.pop_back();
    return back;
}

Bytes asInts(const std::vector<std::uint8_t>& row)
{
    return Bytes(row.begin(), row.end());
}

// The furthest that a channel is off.
int distance(std::uint32_t a, std::uint32_t b)
{
    int worst = 0;
    for (int shift : {0, 8, 16, 24})
        worst = std::max(worst, std::abs(static_cast<int>(a >> shift & 0xFF) -
                                         static_cast<int>(b >> shift & 0xFF)));
    return worst;
}

} // namespace

TEST(PixelPacking, LaysBytesOutAsEachFormatSays)
{
    // The numbers of the video formats are those of the standard's colour bars.
    const struct
    {
        iGPUImage::eFormat format;
        Words words;
        Bytes bytes;
    } cases[] = {
        {F::eRGB8, {kRed, kGreen, kBlue, 0xFF010203}, {255, 0, 0, 0, 255, 0, 0, 0, 255, 1, 2, 3}},
        {F::eBGR8, {kRed, kGreen, kBlue, 0xFF010203}, {0, 0, 255, 0, 255, 0, 255, 0, 0, 3, 2, 1}},
        {F::eYUV8,
         {kRed, kGreen, kBlue, kWhite},
         {63, 102, 240, 173, 42, 26, 32, 240, 118, 235, 128, 128}},
        {F::eARGB8, {0x80402010}, {0x10, 0x20, 0x40, 0x80}},
        {F::eRGB32, {0x80402010}, {0x10, 0x20, 0x40, 0xFF}},
        {F::eARGB16, {0x80402010}, {0x10, 0x10, 0x20, 0x20, 0x40, 0x40, 0x80, 0x80}},
        {F::eARGB2101010, {kWhite, kRed, 0}, {255, 255, 255, 255, 0, 0, 0xF0, 0xFF, 0, 0, 0, 0}},
        {F::eUYVY, {kRed, kRed}, {102, 63, 240, 63}},
        {F::eYUY2, {kRed, kRed}, {63, 102, 63, 240}},
        {F::eYVYU, {kRed, kRed}, {63, 240, 63, 102}},
        {F::eVYUY, {kRed, kRed}, {240, 63, 102, 63}},
        {F::eUYVY, {kBlack, kWhite}, {128, 16, 128, 235}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(asInts(packed(c.format, c.words)), c.bytes) << "format " << c.format;

    const auto shorts = packed(F::eRGB16, {kRed, kGreen, kBlue, 0xFF010203});
    std::uint16_t components[12];
    ASSERT_EQ(shorts.size(), sizeof components);
    std::memcpy(components, shorts.data(), sizeof components);
    EXPECT_EQ(components[0], 0xFFFF);
    EXPECT_EQ(components[10], 0x0202);
    const auto video = packed(F::eYUV16, {kWhite, kBlack, kWhite, kBlack});
    std::memcpy(components, video.data(), sizeof components);
    EXPECT_EQ((Bytes(components, components + 6)),
              (Bytes{235 << 8, 128 << 8, 128 << 8, 16 << 8, 128 << 8, 128 << 8}));
}

TEST(PixelPacking, RowsHoldOnlyWholeTexels)
{
    const struct
    {
        int width;
        int three, pairs; // texels
    } cases[] = {{0, 0, 0}, {1, 0, 0},    {2, 1, 1},         {3, 2, 1},        {4, 3, 2},
                 {5, 3, 2}, {-5, -3, -2}, {1920, 1440, 960}, {1921, 1440, 960}};
    for (const auto& c : cases) {
        for (const auto f : {F::eRGB8, F::eBGR8, F::eYUV8, F::eRGB16, F::eYUV16})
            EXPECT_EQ(PixelPacking(f).texelsInRow(c.width), c.three) << c.width;
        for (const auto f : {F::eUYVY, F::eYUY2, F::eYVYU, F::eVYUY})
            EXPECT_EQ(PixelPacking(f).texelsInRow(c.width), c.pairs) << c.width;
        for (const auto f : {F::eARGB8, F::eRGB32, F::eARGB16, F::eARGB2101010, format(77)})
            EXPECT_EQ(PixelPacking(f).texelsInRow(c.width), c.width);
        EXPECT_EQ(PixelPacking(F::eRGB8).rowBytes(c.width),
                  static_cast<std::size_t>(std::max(c.three, 0)) * 4);
        EXPECT_EQ(PixelPacking(F::eRGB16).rowBytes(c.width),
                  static_cast<std::size_t>(std::max(c.three, 0)) * 8);
    }
}

TEST(PixelPacking, NamesTheBitsOfAPixel)
{
    const int expected[] = {24, 48, 24, 32, 32, 64, 32, 24, 48, 16, 16, 16, 16};
    for (int value = 0; value < 13; ++value)
        EXPECT_EQ(PixelPacking(format(value)).bitsPerPixel(), expected[value]) << value;
    EXPECT_EQ(PixelPacking(format(13)).bitsPerPixel(), 32);
    EXPECT_EQ(PixelPacking(format(-1)).bitsPerPixel(), 32);
}

TEST(PixelPacking, OpaquePixelsComeBackAtEveryWidthButForWhatDoesNotFit)
{
    std::mt19937 random(7);
    for (int width = 1; width <= 17; ++width) {
        Words words(static_cast<std::size_t>(width));
        for (auto& word : words)
            word = static_cast<std::uint32_t>(random()) | kBlack;
        for (int value = 0; value < 13; ++value) {
            const bool video = value == F::eYUV8 || value == F::eYUV16;
            const bool pairs = value >= F::eUYVY;
            const bool three = PixelPacking(format(value)).bitsPerPixel() % 24 == 0;
            Words source = words;
            for (std::size_t i = 0; pairs && i + 1 < source.size(); i += 2)
                source[i + 1] = source[i]; // pixels that share their colour lose nothing
            const Words back = thereAndBack(format(value), source);
            const std::size_t whole = three   ? static_cast<std::size_t>(width) * 3 / 4 * 4 / 3
                                      : pairs ? static_cast<std::size_t>(width) / 2 * 2
                                              : static_cast<std::size_t>(width);
            for (std::size_t i = 0; i < whole; ++i)
                EXPECT_LE(distance(back[i], source[i]), video || pairs ? 3 : 0)
                    << "format " << value << " width " << width << " pixel " << i;
            for (std::size_t i = whole; i < back.size(); ++i)
                EXPECT_EQ(back[i] >> 24, 255u);
        }
    }
}

TEST(PixelPacking, WhatDoesNotFitComesBackBlackAndHalfPixelsWithWhatIsThere)
{
    const Words white(3, kWhite);
    EXPECT_EQ(thereAndBack(F::eRGB8, {kWhite}), (Words{kBlack}));
    EXPECT_EQ(thereAndBack(F::eRGB8, {kWhite, kWhite}), (Words{kWhite, kRed}));
    EXPECT_EQ(thereAndBack(F::eRGB8, white), (Words{kWhite, kWhite, 0xFFFFFF00}));
    EXPECT_EQ(thereAndBack(F::eBGR8, white), (Words{kWhite, kWhite, 0xFF00FFFF}));
    EXPECT_EQ(thereAndBack(F::eYUV8, white), white) << "a missing difference is none";
    EXPECT_EQ(thereAndBack(F::eYUY2, white), (Words{kWhite, kWhite, kBlack}));
}

TEST(PixelPacking, TranslucentPixelsKeepTheirAlphaWhereThereIsRoomForIt)
{
    for (std::uint32_t alpha = 0; alpha < 256; ++alpha) {
        const std::uint32_t word = alpha << 24 | alpha << 16 | (alpha / 2) << 8;
        for (const auto f : {F::eARGB8, F::eARGB16, format(50)})
            EXPECT_EQ(thereAndBack(f, {word})[0], word);
        EXPECT_EQ(thereAndBack(F::eRGB32, {word})[0], word | kBlack) << "over black";

        const std::uint32_t coarse = thereAndBack(F::eARGB2101010, {word})[0];
        EXPECT_LE(std::abs(static_cast<int>(coarse >> 24) - static_cast<int>(alpha)), 43);
        EXPECT_LE(coarse >> 16 & 0xFF, coarse >> 24) << "no colour brighter than its alpha";
        if (alpha % 85 == 0) {
            EXPECT_EQ(coarse, word);
        }
    }
}

TEST(PixelPacking, GreysHaveNoColourInVideo)
{
    for (std::uint32_t grey = 0; grey < 256; ++grey) {
        const std::uint32_t word = kBlack | grey << 16 | grey << 8 | grey;
        const auto row = packed(F::eUYVY, {word, word});
        EXPECT_EQ(row[0], 128);
        EXPECT_EQ(row[2], 128);
        EXPECT_LE(distance(thereAndBack(F::eYUV8, {word, word})[0], word), 1);
        EXPECT_EQ(thereAndBack(F::eYUV16, {word, word})[0], word);
    }
}

TEST(PixelPacking, ValuesOutsideTheVideoRangeAreCut)
{
    const std::uint8_t extremes[][4] = {{0, 0, 0, 0}, {255, 255, 255, 255}, {255, 0, 0, 255}};
    for (const auto& texel : extremes) {
        std::uint32_t words[2];
        PixelPacking(F::eYUY2).unpackRow(texel, 2, words);
        for (const auto word : words)
            EXPECT_EQ(word >> 24, 255u);
    }
    std::uint32_t words[2];
    const std::uint8_t superWhite[] = {255, 128, 0, 128};
    PixelPacking(F::eYUY2).unpackRow(superWhite, 2, words);
    EXPECT_EQ(words[0], kWhite);
    EXPECT_EQ(words[1], kBlack);
}
