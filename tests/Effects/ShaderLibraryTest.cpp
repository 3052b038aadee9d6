// Each effect of Shaders/ beside a reference that is worked out pixel by pixel, here, from the
// formulae that the effects' files name.
#include "Effects/ShaderLibraryRig.h"
#include "support/ImageCompare.h"

#include "OS/Mac/OpenGL/Images/PixelPacking.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

const QSize kSize(64, 36);

const QImage& picture()
{
    static const QImage image = testPicture(64, 36, false);
    return image;
}
const QImage& other()
{
    static const QImage image = testPicture(64, 36, false, 2);
    return image;
}

// -- ITU-R BT.709-6: luma and colour difference of straight colours

double luma(const Pixel& p)
{
    return 0.2126 * p.r + 0.7152 * p.g + 0.0722 * p.b;
}

struct Difference
{
    double blue, red;
};

Difference difference(const Pixel& p)
{
    return {(p.b - luma(p)) / 1.8556, (p.r - luma(p)) / 1.5748};
}

Pixel colourOf(double y, const Difference& d)
{
    Pixel p;
    p.r = y + 1.5748 * d.red;
    p.b = y + 1.8556 * d.blue;
    p.g = (y - 0.2126 * p.r - 0.0722 * p.b) / 0.7152;
    return p;
}

double limited(double value)
{
    return std::clamp(value, 0.0, 1.0);
}

template <class Code>
Pixel each(const Pixel& p, Code code)
{
    return {code(p.r), code(p.g), code(p.b), p.a};
}

// Straight colours; alpha stays.
Pixel straight(const Pixel& p)
{
    if (p.a <= 0)
        return {0, 0, 0, 0};
    return each(p, [&](double c) { return limited(c / p.a); });
}

Pixel premultiplied(const Pixel& p)
{
    return each(p, [&](double c) { return limited(c) * p.a; });
}

Pixel over(const Pixel& upper, const Pixel& lower)
{
    return upper + lower * (1 - upper.a);
}

Pixel mix(const Pixel& a, const Pixel& b, double share)
{
    return a * (1 - share) + b * share;
}

double smoothStep(double low, double high, double x)
{
    const double t = limited((x - low) / (high - low));
    return t * t * (3 - 2 * t);
}

// What GL draws agrees with a reference, up to rounding.
void expectPicture(const ShaderLibrary& library, const std::string& technique,
                   const ShaderLibrary::Sources& sources,
                   const std::function<Pixel(int x, int y)>& reference, const std::string& name,
                   ImageTolerance tolerance = {2, 0.0}, QSize size = kSize)
{
    const QImage drawn = library.render(technique, sources, size);
    ASSERT_FALSE(drawn.isNull()) << name << " " << technique;
    EXPECT_TRUE(imagesAgree(drawn, expectedPicture(size, reference), name.c_str(), tolerance));
}

} // namespace

TEST(ShaderLibrary, AllLoadAndSayHowTheyAreSet)
{
    const std::vector<std::string> names = ShaderLibrary::names();
    EXPECT_GE(names.size(), 13u);
    for (const std::string& name : names) {
        const ShaderLibrary library(name);
        ASSERT_TRUE(library.isLoaded()) << name;
        EXPECT_EQ(library.effect().getListing(), "") << name;
        EXPECT_GT(library.effect().getNumTechniques(), 0u);
        for (unsigned int i = 0; i < library.effect().getNumParams(); ++i) {
            const Tq::Ptr<iShaderParam> param = library.effect().getParam(i);
            const std::string what = name + " " + param->getName().c_str();
            if (!param->getSemantic().empty())
                continue; // filled in by whoever draws
            EXPECT_TRUE(param->hasAnnotation("UIName", iShaderParam::eString)) << what;
            const bool number = param->getType() == iShaderParam::eFloat;
            if (!number)
                continue;
            const float low = param->getAnnotationFloatValue("UIMin");
            const float high = param->getAnnotationFloatValue("UIMax");
            EXPECT_LT(low, high) << what;
            EXPECT_GT(param->getAnnotationFloatValue("UIStep"), 0.0f) << what;
            EXPECT_GE(param->getDefaultFloatValue(), low) << what;
            EXPECT_LE(param->getDefaultFloatValue(), high) << what;
        }
    }
}

TEST(ShaderLibrary, ColourCorrectLiftsBendsAndGains)
{
    const ShaderLibrary library("ColourCorrect");
    const Picture source(picture());
    expectPicture(
        library, "ColourCorrect", {{"Picture", picture()}},
        [&](int x, int y) { return source.at(x, y); }, "correct nothing");
    struct Case
    {
        double lift[3], gamma[3], gain[3], saturation;
    };
    const Case cases[] = {{{0.1, 0, -0.2}, {1, 1, 1}, {1, 1, 1}, 1},
                          {{0, 0, 0}, {2.2, 0.5, 1}, {1, 1, 1}, 1},
                          {{0, 0, 0}, {1, 1, 1}, {1.5, 0.5, 0}, 1},
                          {{0, 0, 0}, {1, 1, 1}, {1, 1, 1}, 0},
                          {{0.05, -0.1, 0}, {0.8, 1.2, 1}, {1.1, 1, 0.9}, 2.5}};
    for (const Case& c : cases) {
        const auto three = [](const double(&v)[3]) {
            return std::vector<float>{float(v[0]), float(v[1]), float(v[2])};
        };
        library.set("Lift", three(c.lift));
        library.set("Gamma", three(c.gamma));
        library.set("Gain", three(c.gain));
        library.set("Saturation", {float(c.saturation)});
        const auto bent = [&](double v, int i) {
            return std::pow(std::max(c.gain[i] * (v + c.lift[i] * (1 - v)), 0.0), 1 / c.gamma[i]);
        };
        expectPicture(
            library, "ColourCorrect", {{"Picture", picture()}},
            [&](int x, int y) {
                const Pixel from = straight(source.at(x, y));
                const Pixel to{bent(from.r, 0), bent(from.g, 1), bent(from.b, 2), from.a};
                const double grey = luma(to);
                return premultiplied(
                    each(to, [&](double v) { return grey + c.saturation * (v - grey); }));
            },
            "correct");
    }
}

TEST(ShaderLibrary, CurvesLookEachComponentUpInAStrip)
{
    const ShaderLibrary library("Lookup");
    const Picture source(picture());
    for (const int size : {2, 16, 256}) {
        QImage strip(size, 1, QImage::Format_ARGB32_Premultiplied);
        for (int i = 0; i < size; ++i) {
            const double v = double(i) / (size - 1);
            strip.setPixel(i, 0,
                           qRgb(int(255 * v * v), int(255 * (1 - v)), int(255 * std::sqrt(v))));
        }
        const Picture table(strip);
        library.set("Size", {float(size)});
        for (const double amount : {1.0, 0.25}) {
            library.set("Amount", {float(amount)});
            expectPicture(
                library, "Curves", {{"Picture", picture()}, {"Table", strip}},
                [&](int x, int y) {
                    const Pixel from = straight(source.at(x, y));
                    const auto at = [&](double v) {
                        return table.between(v * (size - 1) + 0.5, 0.5);
                    };
                    const Pixel to{at(from.r).r, at(from.g).g, at(from.b).b, from.a};
                    return premultiplied(mix(from, to, amount));
                },
                "curves " + std::to_string(size));
        }
    }
}

TEST(ShaderLibrary, ACubeOfColoursLiesInAStripToo)
{
    const ShaderLibrary library("Lookup");
    const Picture source(picture());
    constexpr int kEdge = 9;
    const auto mapped = [](const Pixel& p) { // turns colours round, and bends them
        return Pixel{p.g * p.g, 1 - p.b, 0.5 * p.r + 0.5 * p.g * p.b, p.a};
    };
    QImage strip(kEdge * kEdge, kEdge, QImage::Format_ARGB32_Premultiplied);
    for (int b = 0; b < kEdge; ++b)
        for (int g = 0; g < kEdge; ++g)
            for (int r = 0; r < kEdge; ++r) {
                const Pixel p = mapped({r / 8.0, g / 8.0, b / 8.0, 1});
                strip.setPixel(b * kEdge + r, g,
                               qRgb(int(p.r * 255), int(p.g * 255), int(p.b * 255)));
            }
    const Picture table(strip);
    library.set("Size", {float(kEdge)});
    library.set("Amount", {1.0f});
    expectPicture(
        library, "Cube", {{"Picture", picture()}, {"Table", strip}},
        [&](int x, int y) {
            const Pixel from = straight(source.at(x, y));
            const double blue = from.b * (kEdge - 1);
            const double low = std::min(std::floor(blue), double(kEdge - 2));
            const auto square = [&](double b) {
                return table.between(b * kEdge + from.r * (kEdge - 1) + 0.5,
                                     from.g * (kEdge - 1) + 0.5);
            };
            Pixel to = mix(square(low), square(low + 1), blue - low);
            to.a = from.a;
            return premultiplied(to);
        },
        "cube");
}

TEST(ShaderLibrary, DissolvesAndAdds)
{
    const Picture from(picture()), to(other());
    const ShaderLibrary dissolve("Dissolve"), add("Add");
    for (const double t : {0.0, 0.3, 0.5, 1.0}) {
        dissolve.set("Progress", {float(t)});
        add.set("Amount", {float(t)});
        const ShaderLibrary::Sources both{{"From", picture()}, {"To", other()}};
        expectPicture(
            dissolve, "Dissolve", both,
            [&](int x, int y) { return mix(from.at(x, y), to.at(x, y), t); }, "dissolve");
        expectPicture(
            dissolve, "Additive", both,
            [&](int x, int y) {
                return from.at(x, y) * limited(2 - 2 * t) + to.at(x, y) * limited(2 * t);
            },
            "additive");
        expectPicture(
            add, "Add", {{"Picture", picture()}, {"Light", other()}},
            [&](int x, int y) { return from.at(x, y) + to.at(x, y) * t; }, "add");
    }
}

TEST(ShaderLibrary, WipesAlongTheirWays)
{
    const ShaderLibrary library("Wipe");
    const Picture from(picture()), to(other());
    const ShaderLibrary::Sources both{{"From", picture()}, {"To", other()}};
    const auto middle = [](int x, int y) {
        return std::pair((x + 0.5) / 64 - 0.5, (y + 0.5) / 36 - 0.5);
    };
    struct Way
    {
        const char* technique;
        double angle;
        std::function<double(double, double)> at;
    };
    const auto straightWay = [](double degrees) {
        const double c = std::cos(degrees * M_PI / 180), s = std::sin(degrees * M_PI / 180);
        return
            [=](double x, double y) { return (x * c + y * s) / (std::abs(c) + std::abs(s)) + 0.5; };
    };
    const Way ways[] = {
        {"Straight", 0, straightWay(0)},
        {"Straight", 90, straightWay(90)},
        {"Straight", 215, straightWay(215)},
        {"Clock", 0,
         [](double x, double y) {
             const double turn = std::atan2(x * 64, -y * 36) / (2 * M_PI);
             return turn < 0 ? turn + 1 : turn;
         }},
        {"Circle", 0,
         [](double x, double y) { return std::hypot(x * 64, y * 36) / std::hypot(32.0, 18.0); }},
    };
    for (const Way& way : ways)
        for (const double progress : {0.0, 0.4, 1.0})
            for (const double softness : {0.3, 0.05}) {
                library.set("Angle", {float(way.angle)});
                library.set("Progress", {float(progress)});
                library.set("Softness", {float(softness)});
                expectPicture(
                    library, way.technique, both,
                    [&](int x, int y) {
                        const auto [mx, my] = middle(x, y);
                        const double share =
                            limited((progress * (1 + softness) - way.at(mx, my)) / softness);
                        return mix(from.at(x, y), to.at(x, y), share);
                    },
                    way.technique);
            }
}

TEST(ShaderLibrary, KeysByColour)
{
    const ShaderLibrary library("ChromaKey");
    const Picture source(picture()), ground(other());
    struct Case
    {
        Pixel key;
        double tolerance, softness, spill;
        bool invert;
    };
    const Case cases[] = {{{0.1, 0.8, 0.2, 1}, 0.2, 0.2, 0, false},
                          {{0.1, 0.8, 0.2, 1}, 0.2, 0.2, 0, true},
                          {{0.9, 0.1, 0.3, 1}, 0.25, 0.15, 1, false},
                          {{0.2, 0.2, 1.0, 1}, 0.1, 0.4, 0.5, false}};
    for (const Case& c : cases) {
        library.set("KeyColour", {float(c.key.r), float(c.key.g), float(c.key.b)});
        library.set("Tolerance", {float(c.tolerance)});
        library.set("Softness", {float(c.softness)});
        library.set("Spill", {float(c.spill)});
        library.set("Invert", {c.invert ? 1.0f : 0.0f});
        const auto keyed = [&](int x, int y) {
            const Pixel from = straight(source.at(x, y));
            Difference d = difference(from);
            const Difference key = difference(c.key);
            double share = smoothStep(c.tolerance, c.tolerance + c.softness,
                                      std::hypot(d.blue - key.blue, d.red - key.red));
            if (c.invert)
                share = 1 - share;
            const double length = std::hypot(key.blue, key.red);
            const double along =
                std::max((d.blue * key.blue + d.red * key.red) / length, 0.0) * c.spill / length;
            d = {d.blue - along * key.blue, d.red - along * key.red};
            Pixel to = each(colourOf(luma(from), d), limited);
            to.a = from.a * share;
            return to;
        };
        const auto key = [&](int x, int y) { return premultiplied(keyed(x, y)); };
        expectPicture(library, "Key", {{"Picture", picture()}}, key, "chroma key", {3, 0.0});
        expectPicture(library, "KeyBlend", {{"Picture", picture()}}, keyed, "chroma key, straight",
                      {3, 0.0});
        // Drawn with blending, straight colours come out as the effect puts them over the ground.
        EXPECT_TRUE(imagesAgree(
            library.drawOver(other(), "KeyBlend", {{"Picture", picture()}}, picture().rect()),
            expectedPicture(kSize, [&](int x, int y) { return over(key(x, y), ground.at(x, y)); }),
            "chroma key blended", {3, 0.0}));
    }
}

TEST(ShaderLibrary, KeysByBrightness)
{
    const ShaderLibrary library("LumaKey");
    const Picture source(picture());
    struct Case
    {
        double low, high, softness;
        bool invert;
    };
    for (const Case& c : {Case{0.3, 1, 0.2, false}, {0.3, 1, 0.2, true}, {0.2, 0.5, 0.1, false}}) {
        library.set("Low", {float(c.low)});
        library.set("High", {float(c.high)});
        library.set("Softness", {float(c.softness)});
        library.set("Invert", {c.invert ? 1.0f : 0.0f});
        const auto keyed = [&](int x, int y) {
            Pixel p = straight(source.at(x, y));
            const double y709 = luma(p);
            const double share = smoothStep(c.low - c.softness, c.low, y709) *
                                 (1 - smoothStep(c.high, c.high + c.softness, y709));
            p.a *= c.invert ? 1 - share : share;
            return p;
        };
        expectPicture(library, "Key", {{"Picture", picture()}},
                      [&](int x, int y) { return premultiplied(keyed(x, y)); }, "luma key",
                      {3, 0.0});
        expectPicture(library, "KeyBlend", {{"Picture", picture()}}, keyed, "luma key, straight",
                      {3, 0.0});
    }
}

TEST(ShaderLibrary, BlursByABellAlongRowsThenColumns)
{
    const ShaderLibrary library("Blur");
    const Picture source(picture());
    for (const double radius : {0.0, 1.0, 4.0, 12.5, 32.0}) {
        library.set("Radius", {float(radius)});
        std::vector<double> weights;
        for (int i = 0; i <= radius; ++i)
            weights.push_back(std::exp(-2.0 * i * i / std::max(radius * radius, 0.01)));
        const auto blurred = [&](const auto& at) {
            Pixel sum = at(0);
            double all = 1;
            for (int i = 1; i < int(weights.size()); ++i) {
                sum = sum + (at(i) + at(-i)) * weights[std::size_t(i)];
                all += 2 * weights[std::size_t(i)];
            }
            return sum * (1 / all);
        };
        const Picture rows(expectedPicture(kSize, [&](int x, int y) {
            return blurred([&](int i) { return source.at(x + i, y); });
        }));
        expectPicture(
            library, "Blur", {{"Picture", picture()}},
            [&](int x, int y) { return blurred([&](int i) { return rows.at(x, y + i); }); },
            "blur " + std::to_string(radius));
    }
}

TEST(ShaderLibrary, DrawsPartsAsIfTheyWereAll)
{
    const QRect part(9, 5, 40, 22);
    const QImage whole = testPicture(64, 36, true), second = testPicture(40, 22, true, 3);
    const auto expectPart = [&](const ShaderLibrary& library, const std::string& technique,
                                ShaderLibrary::Sources sources) {
        const QImage drawn = library.drawOver(other(), technique, sources, part);
        sources.front().second = whole.copy(part);
        EXPECT_TRUE(imagesAgree(drawn.copy(part), library.render(technique, sources, part.size()),
                                ("part " + technique).c_str(), {2, 0.0}));
        EXPECT_EQ(drawn.pixel(part.left() - 1, part.top()), other().pixel(8, 5));
    };
    const ShaderLibrary blur("Blur"), dissolve("Dissolve");
    expectPart(blur, "Blur", {{"Picture", whole}});
    expectPart(dissolve, "Dissolve", {{"From", whole}, {"To", second}});
    expectPart(dissolve, "Additive", {{"From", whole}, {"To", second}});
}

TEST(ShaderLibrary, SharpensByWhatASmallBlurTakesAway)
{
    const ShaderLibrary library("Sharpen");
    const Picture source(picture());
    for (const double amount : {0.0, 0.5, 3.0})
        for (const int radius : {1, 3}) {
            library.set("Amount", {float(amount)});
            library.set("Radius", {float(radius)});
            expectPicture(library, "Sharpen", {{"Picture", picture()}},
                          [&](int x, int y) {
                              Pixel sum;
                              for (int j = -1; j <= 1; ++j)
                                  for (int i = -1; i <= 1; ++i)
                                      sum =
                                          sum + source.at(x + i * radius, y + j * radius) *
                                                    ((2 - std::abs(i)) * (2 - std::abs(j)) / 16.0);
                              const Pixel from = source.at(x, y);
                              const auto sharper = [&](double c, double blurred) {
                                  return std::clamp(c + amount * (c - blurred), 0.0, from.a);
                              };
                              return Pixel{sharper(from.r, sum.r), sharper(from.g, sum.g),
                                           sharper(from.b, sum.b), from.a};
                          },
                          "sharpen", {3, 0.0});
        }
}

TEST(ShaderLibrary, TransformsWithCropAndBorder)
{
    const ShaderLibrary library("Transform");
    const Picture source(picture());
    struct Case
    {
        double left, top, right, bottom, scale, rotation, x, y, border;
    };
    const Case cases[] = {{0, 0, 0, 0, 1, 0, 0, 0, 0},
                          {0.25, 0.1, 0.1, 0.3, 1, 0, 0, 0, 0},
                          {0, 0, 0, 0, 0.5, 0, 0.2, -0.1, 0.05},
                          {0.1, 0.1, 0.1, 0.1, 0.8, 30, -0.05, 0.1, 0.1},
                          {0, 0, 0, 0, 2.5, -90, 0, 0, 0}};
    const Pixel border{1, 0.5, 0, 0.8}, ground{0, 0, 0.4, 0.5};
    library.set("BorderColour", {1, 0.5f, 0, 0.8f});
    library.set("Ground", {0, 0, 0.4f, 0.5f});
    for (const Case& c : cases) {
        const std::pair<const char*, double> values[] = {
            {"CropLeft", c.left},     {"CropTop", c.top}, {"CropRight", c.right},
            {"CropBottom", c.bottom}, {"Scale", c.scale}, {"Rotation", c.rotation},
            {"PositionX", c.x},       {"PositionY", c.y}, {"BorderWidth", c.border}};
        for (const auto& [name, value] : values)
            library.set(name, {float(value)});
        const double aspect = 64.0 / 36.0, turn = c.rotation * M_PI / 180;
        expectPicture(
            library, "Transform", {{"Picture", picture()}},
            [&](int px, int py) {
                const double x = ((px + 0.5) / 64 - 0.5 - c.x) * aspect;
                const double y = (py + 0.5) / 36 - 0.5 - c.y;
                const double u = (std::cos(turn) * x + std::sin(turn) * y) / c.scale / aspect + 0.5;
                const double v = (std::cos(turn) * y - std::sin(turn) * x) / c.scale + 0.5;
                const double outside = std::max(std::max(c.left - u, u - (1 - c.right)) * aspect,
                                                std::max(c.top - v, v - (1 - c.bottom)));
                const double pixel = 1 / 36.0 / c.scale;
                const double inner = limited(0.5 - outside / pixel);
                const double outer = limited(0.5 - (outside - c.border) / pixel);
                return premultiplied(ground) * (1 - outer) +
                       premultiplied(border) * (outer - inner) +
                       source.between(u * 64, v * 36) * inner;
            },
            "transform", {3, 0.0});
    }
}

TEST(ShaderLibrary, DeinterlacesForALook)
{
    const ShaderLibrary library("Deinterlace");
    for (const int height : {36, 35}) {
        const QImage image = picture().copy(0, 0, 64, height);
        const Picture source(image);
        for (const int parity : {0, 1})
            expectPicture(
                library, parity ? "BottomField" : "TopField", {{"Picture", image}},
                [&](int x, int y) {
                    if (y % 2 == parity)
                        return source.at(x, y);
                    const int above = y > 0 ? y - 1 : y + 1;
                    const int below = y + 1 < height ? y + 1 : y - 1;
                    return (source.at(x, above) + source.at(x, below)) * 0.5;
                },
                "field", {1, 0.0}, QSize(64, height));
        expectPicture(
            library, "Blend", {{"Picture", image}},
            [&](int x, int y) {
                return source.at(x, y) * 0.5 + (source.at(x, y - 1) + source.at(x, y + 1)) * 0.25;
            },
            "fields blended", {1, 0.0}, QSize(64, height));
    }
}

// Storage formats: PixelPacking packs and unpacks them in main memory.
TEST(ShaderLibrary, ConvertsStorageFormatsBothWays)
{
    const ShaderLibrary library("Formats");
    const std::pair<const char*, iGPUImage::eFormat> formats[] = {
        {"RGB8", iGPUImage::eRGB8}, {"BGR8", iGPUImage::eBGR8}, {"YUV8", iGPUImage::eYUV8},
        {"UYVY", iGPUImage::eUYVY}, {"YUY2", iGPUImage::eYUY2}, {"YVYU", iGPUImage::eYVYU},
        {"VYUY", iGPUImage::eVYUY}};
    for (const int width : {64, 63, 61}) // some pixels are not stored whole
        for (const auto& [name, format] : formats) {
            const QImage pixels = testPicture(width, 36, true);
            const PixelPacking packing(format);
            const int texels = packing.texelsInRow(width);
            QImage storage(texels, 36, QImage::Format_ARGB32_Premultiplied);
            QImage back(width, 36, QImage::Format_ARGB32_Premultiplied);
            for (int y = 0; y < 36; ++y) {
                packing.packRow(reinterpret_cast<const std::uint32_t*>(pixels.constScanLine(y)),
                                width, storage.scanLine(y));
                packing.unpackRow(storage.constScanLine(y), width,
                                  reinterpret_cast<std::uint32_t*>(back.scanLine(y)));
            }
            const std::string what = std::string(name) + " " + std::to_string(width);
            library.set("Width", {float(width)});
            EXPECT_TRUE(imagesAgree(
                library.render(std::string("From") + name, {{"Picture", storage}}, pixels.size()),
                back, ("from " + what).c_str(), {1, 0.0}));
            EXPECT_TRUE(imagesAgree(
                library.render(std::string("To") + name, {{"Picture", pixels}}, storage.size()),
                storage, ("to " + what).c_str(), {1, 0.0}));
        }
}
