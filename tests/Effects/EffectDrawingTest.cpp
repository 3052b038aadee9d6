#include "Effects/EffectDrawingRig.h"
#include "support/ImageCompare.h"
#include "support/OutputCapture.h"

#include "OS/Mac/Effects/EffectTextures.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"
#include "OS/Mac/OpenGL/Images/OpenGLImage3D.h"
#include "OS/Mac/Painting/QtRegion.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace EffectDrawingRig;

namespace {

class EffectDrawing : public GPUImageTest
{
};

// Of red 0 to 7: one more for each texel.
Tq::Ptr<OpenGLImage3D> twoByTwoByTwo()
{
    const OpenGLContextProtector protector;
    GLubyte texels[8][4] = {};
    for (GLubyte i = 0; i < 8; ++i) {
        texels[i][0] = i;
        texels[i][3] = 255;
    }
    GLuint name = 0;
    glGenTextures(1, &name);
    glBindTexture(GL_TEXTURE_3D, name);
    glTexParameteri(GL_TEXTURE_3D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_3D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexImage3D(GL_TEXTURE_3D, 0, GL_RGBA, 2, 2, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels);
    glBindTexture(GL_TEXTURE_3D, 0);
    return new OpenGLImage3D(name);
}

int at(QRgb pixel, int channel)
{
    return static_cast<int>(pixel >> (8 * channel) & 0xFF);
}

} // namespace

// An effect that returns what it samples draws what the image itself draws.
TEST_F(EffectDrawing, AnEffectDrawsWhereTheImageWould)
{
    const Tq::Ptr<OpenGLShaderEffect> effect = loaded(identity());
    const Tq::Ptr<iHostImage> host = noise({40, 30});
    const Tq::Ptr<OpenGLImage> image = uploaded(host);
    const Tq::Ptr<QtImage> doubled = new QtImage({20, 15}, QtImage::getDefaultFormat(), 2);
    *doubled->image() = pixelsOf(host);
    struct Case
    {
        const char* name;
        Tq::Ptr<iImageBase> image;
        Rect from, to;
        double ratio;
    };
    const Case cases[] = {
        {"whole", image, {0, 0, 40, 30}, {5, 6, 45, 36}, 1.0},
        {"a part", image, {10, 5, 30, 25}, {8, 9, 28, 29}, 1.0},
        {"beyond the target", image, {0, 0, 40, 30}, {-20, -10, 20, 20}, 1.0},
        {"beyond the image", image, {-10, -5, 50, 40}, {0, 0, 60, 45}, 1.0},
        {"twice the pixels", image, {0, 0, 40, 30}, {5, 6, 25, 21}, 2.0},
        {"from main memory", host, {0, 0, 40, 30}, {5, 6, 45, 36}, 1.0},
        {"of two pixels for each", doubled, {0, 0, 20, 15}, {5, 6, 45, 36}, 1.0},
        {"a part of two pixels for each", doubled, {2.5f, 1, 12, 10}, {5, 6, 24, 24}, 1.0},
        {"a part from main memory", host, {10, 5, 30, 25}, {8, 9, 28, 29}, 1.0},
        {"enlarged", image, {0, 0, 40, 30}, {0, 0, 60, 45}, 1.0},
        {"a part enlarged", image, {10, 5, 30, 25}, {0, 0, 50, 50}, 1.0},
    };
    for (const Case& each : cases)
        for (const auto orientation : {Renderer::eTexture, Renderer::eWindow}) {
            ImageDescriptionEx desc = through(effect, each.image, each.from, each.to);
            const QImage actual = drawn(desc, 60, 50, each.ratio, orientation);
            desc.technique_ = {};
            const QImage expected = drawn(desc, 60, 50, each.ratio, orientation);
            EXPECT_TRUE(imagesAgree(actual, expected, "effect-place", {3, 0.0}))
                << each.name << ", orientation " << orientation;
        }
}

TEST_F(EffectDrawing, AnUnknownTechniqueDrawsNothing)
{
    const Tq::Ptr<OpenGLShaderEffect> effect = loaded(identity());
    const Tq::Ptr<OpenGLImage> image = plain(8, 8, {1, 0, 0});
    ImageDescriptionEx desc = through(effect, image, {0, 0, 8, 8}, {0, 0, 8, 8});
    desc.technique_.name_ = "nosuch";
    EXPECT_EQ(drawn(desc, 8, 8).pixel(4, 4), kGround);
    desc.technique_.name_ = "t";
    EXPECT_EQ(drawn(desc, 8, 8).pixel(4, 4), 0xFFFF0000);
}

// Others are drawn around it, in order.
TEST_F(EffectDrawing, ImagesWithAndWithoutEffectsKeepTheirOrder)
{
    WrittenEffect inverting;
    inverting.input("Image").technique(
        "t", {{"", "result = vec4(1.0 - texture2D(ImageSampler, uv).rgb, 1.0);", {}, ""}});
    const Tq::Ptr<OpenGLShaderEffect> effect = loaded(inverting);
    const Tq::Ptr<OpenGLImage> image = plain(8, 8, {1, 0, 0});
    const ImageDescriptionEx descs[] = {
        through({}, image, {0, 0, 8, 8}, {0, 0, 8, 8}),
        through(effect, image, {0, 0, 8, 8}, {4, 0, 12, 8}),
        through({}, image, {0, 0, 8, 8}, {8, 0, 16, 8}),
        through({}, {}, {0, 0, 8, 8}, {0, 0, 16, 8}),
        through(effect, {}, {0, 0, 8, 8}, {0, 0, 16, 8}),
    };
    const QImage result = DrawingRig(16, 8).withGL(
        [&](iGraphicPrimitivesRenderer& renderer) { renderer.renderMulti(descs, 5); });
    EXPECT_EQ(result.pixel(2, 4), 0xFFFF0000);
    EXPECT_EQ(result.pixel(6, 4), 0xFF00FFFF);
    EXPECT_EQ(result.pixel(10, 4), 0xFFFF0000);
}

TEST_F(EffectDrawing, TheClipRegionLimitsTheOutput)
{
    WrittenEffect twoPasses;
    twoPasses.input("Image").target("First").technique(
        "t", {{"First", "result = texture2D(ImageSampler, uv);", {}, ""},
              {"", "result = texture2D(FirstSampler, uv);", {}, ""}});
    const Tq::Ptr<OpenGLShaderEffect> effect = loaded(twoPasses);
    const Tq::Ptr<OpenGLImage> image = uploaded(noise({32, 32}));
    const QImage full = drawnWhole(effect, image);
    const QRegion region = QRegion(3, 2, 10, 7) + QRegion(20, 5, 6, 20) + QRegion(6, 20, 8, 4);
    const ImageDescriptionEx desc = through(effect, image, whole({32, 32}), whole({32, 32}));
    for (const auto orientation : {Renderer::eTexture, Renderer::eWindow}) {
        const QImage clipped =
            DrawingRig(32, 32, 1.0, orientation).withGL([&](iGraphicPrimitivesRenderer& renderer) {
                renderer.setClipRegion(new QtRegion(region));
                renderer.renderMulti(&desc, 1);
            });
        for (int y = 0; y < 32; ++y)
            for (int x = 0; x < 32; ++x)
                ASSERT_EQ(clipped.pixel(x, y),
                          region.contains(QPoint(x, y)) ? full.pixel(x, y) : kGround)
                    << x << ", " << y << ", orientation " << orientation;
    }
}

// A colour of half opacity over the ground, by (source alpha, one minus source alpha).
TEST_F(EffectDrawing, BlendingUsesTheSourcesAlpha)
{
    WrittenEffect effect;
    effect.input("Image").technique("t", {{"", "result = vec4(1.0, 0.5, 0.0, 0.5);", {}, ""}});
    const Tq::Ptr<OpenGLImage> image = plain(4, 4, {});
    const QRgb blended =
        drawn(through(loaded(effect), image, {0, 0, 4, 4}, {0, 0, 4, 4}, true), 4, 4).pixel(1, 1);
    const int expected[] = {0x40 / 2, (128 + 0x20) / 2, (255 + 0x10) / 2, 255};
    for (int i = 0; i < 4; ++i)
        EXPECT_NEAR(at(blended, i), expected[i], 1) << i;
    const QRgb replaced =
        drawn(through(loaded(effect), image, {0, 0, 4, 4}, {0, 0, 4, 4}), 4, 4).pixel(1, 1);
    EXPECT_NEAR(at(replaced, 3), 128, 1);
    EXPECT_NEAR(at(replaced, 2), 255, 0);
}

// Halves the picture into a target, then doubles what it reads three pixels to the left.
TEST_F(EffectDrawing, LaterPassesReadWhatEarlierOnesDrew)
{
    WrittenEffect effect;
    effect.input("Image")
        .target("Half")
        .number("size", {0, 0}, "VIEWPORTPIXELSIZE")
        .technique("t", {{"Half", "result = texture2D(ImageSampler, uv) * 0.5;", {}, ""},
                         {"",
                          "result = texture2D(HalfSampler, uv - vec2(3.0, 0.0) / size) +"
                          " texture2D(ImageSampler, uv) * 0.5;",
                          {},
                          ""}});
    const Tq::Ptr<iHostImage> host = noise({37, 23});
    const QImage source = pixelsOf(host);
    QImage expected(37, 23, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < 23; ++y)
        for (int x = 0; x < 37; ++x) {
            const QRgb here = reinterpret_cast<const QRgb*>(source.constScanLine(y))[x];
            const QRgb left =
                reinterpret_cast<const QRgb*>(source.constScanLine(y))[std::max(x - 3, 0)];
            QRgb sum = 0;
            for (int i = 0; i < 4; ++i)
                sum |= static_cast<QRgb>((at(here, i) + at(left, i)) / 2) << (8 * i);
            reinterpret_cast<QRgb*>(expected.scanLine(y))[x] = sum;
        }
    EXPECT_TRUE(imagesAgree(drawnWhole(loaded(effect), uploaded(host)), expected, "effect-passes",
                            {2, 0.0}));
}

TEST_F(EffectDrawing, RenderTargetsAreAsLargeAsTheirAnnotationsSay)
{
    struct Case
    {
        std::vector<EffectCompiler::Annotation> annotations;
        XY<int> size;
    };
    const Case cases[] = {
        {{}, {40, 20}},
        {{annotation("ViewportRatio", {0.5, 0.25})}, {20, 5}},
        {{annotation("Width", {7}), annotation("height", {9})}, {7, 9}},
        {{annotation("Width", {7})}, {7, 20}},
        {{annotation("Dimensions", {3, 4})}, {3, 4}},
        {{annotation("Width", {-5}), annotation("Height", {0})}, {1, 1}},
        {{annotation("ViewportRatio", {0.0001, 0.0001})}, {1, 1}},
    };
    for (const Case& each : cases) {
        WrittenEffect effect;
        effect.input("Image")
            .target("T", each.annotations)
            .number("inside", {0, 0}, "VIEWPORTPIXELSIZE")
            .technique("t", {{"T", "result = vec4(inside / 255.0, 0.0, 1.0);", {}, ""},
                             {"", "result = texture2D(TSampler, vec2(0.5));", {}, ""}});
        const QRgb pixel =
            drawn(through(loaded(effect), plain(4, 4, {}), {0, 0, 4, 4}, {0, 0, 40, 20}), 40, 20)
                .pixel(5, 5);
        EXPECT_EQ(XY<int>(qRed(pixel), qGreen(pixel)), each.size);
    }
}

// Whatever image had the texture before.
TEST_F(EffectDrawing, NobodySeesWhatARenderTargetHadBefore)
{
    plain(16, 16, {1, 1, 1, 1}).reset();
    WrittenEffect effect;
    effect.input("Image").target("T").technique(
        "t", {{"T", "if (uv.x < 0.5) discard; result = vec4(0.0, 1.0, 0.0, 1.0);", {}, ""},
              {"", "result = texture2D(TSampler, uv);", {}, ""}});
    const QImage result = drawnWhole(loaded(effect), plain(16, 16, {}));
    EXPECT_EQ(result.pixel(3, 8), 0u);
    EXPECT_EQ(result.pixel(12, 8), 0xFF00FF00);
}

TEST_F(EffectDrawing, APassMayReadTheTargetThatItDrawsInto)
{
    WrittenEffect effect;
    effect.input("Image").target("T").technique(
        "t", {{"T", "result = vec4(0.25, 0.0, 0.0, 1.0);", {}, ""},
              {"T", "result = texture2D(TSampler, uv) * vec4(2.0, 1.0, 1.0, 1.0);", {}, ""},
              {"T", "if (uv.x < 0.5) discard; result = texture2D(TSampler, uv).grba;", {}, ""},
              {"", "result = texture2D(TSampler, uv);", {}, ""}});
    const QImage result = drawnWhole(loaded(effect), plain(16, 16, {}));
    EXPECT_NEAR(qRed(result.pixel(3, 8)), 128, 2);
    EXPECT_NEAR(qGreen(result.pixel(12, 8)), 128, 2);
    EXPECT_EQ(qRed(result.pixel(12, 8)), 0);
}

TEST_F(EffectDrawing, InputsWithoutAPictureAreTransparentBlack)
{
    WrittenEffect effect;
    effect.input("Image")
        .input("Other")
        .input("Cube", {}, EffectCompiler::TextureKind::e3D)
        .technique("t", {{"",
                          "result = texture2D(ImageSampler, uv) + texture2D(OtherSampler, uv) +"
                          " texture3D(CubeSampler, vec3(0.5));",
                          {},
                          ""}});
    EXPECT_EQ(drawnWhole(loaded(effect), plain(4, 4, {0, 0, 1})).pixel(2, 2), 0xFF0000FF);
}

TEST_F(EffectDrawing, ACubeOfColoursIsReadInThreeDimensions)
{
    WrittenEffect written;
    written.input("Image")
        .input("Cube", {}, EffectCompiler::TextureKind::e3D)
        .technique(
            "t",
            {{"",
              "result = texture3D(CubeSampler, (texture2D(ImageSampler, uv).rgb + 0.5) / 2.0);",
              {},
              ""}});
    ImageDescriptionEx desc =
        through(loaded(written), plain(4, 4, {1, 0, 1}), {0, 0, 4, 4}, {0, 0, 4, 4});
    desc.technique_.values_ = {iShaderParamValue::makeSource("Cube", twoByTwoByTwo())};
    EXPECT_EQ(drawn(desc, 4, 4).pixel(1, 1), 0xFF050000);
    // A flat picture in its place is none.
    desc.technique_.values_ = {iShaderParamValue::makeSource("Cube", plain(2, 2, {1, 1, 1}))};
    EXPECT_EQ(drawn(desc, 4, 4).pixel(1, 1), 0u);
}

TEST_F(EffectDrawing, ValuesPutNumbersAndPicturesInForOneDrawing)
{
    WrittenEffect written;
    written.input("Image")
        .input("Other")
        .number("amount", {0.0})
        .number("tint", {0, 0, 0, 0})
        .technique("t", {{"",
                          "result = texture2D(OtherSampler, uv) + vec4(amount, 0.0, 0.0, 0.0) +"
                          " tint;",
                          {},
                          ""}});
    const Tq::Ptr<OpenGLShaderEffect> effect = loaded(written);
    const Tq::Ptr<OpenGLImage> image = plain(4, 4, {});
    ImageDescriptionEx desc = through(effect, image, {0, 0, 4, 4}, {0, 0, 4, 4});
    using Value = iShaderParamValue;
    desc.technique_.values_ = {Value::makeFloat("amount", 1.0f),
                               Value::makeColour("tint", {0, 0, 1, 0}),
                               Value::makeSource("Other", plain(2, 2, {0, 1, 0})),
                               Value::makeFloat("nosuch", 1.0f),
                               Value::makeSource("nosuch", plain(2, 2, {0, 1, 0})),
                               {}};
    EXPECT_EQ(drawn(desc, 4, 4).pixel(1, 1), 0xFFFFFFFF);
    desc.technique_.values_.clear();
    EXPECT_EQ(drawn(desc, 4, 4).pixel(1, 1), 0u);
    EXPECT_TRUE(effect->setColour("tint", {1, 0, 0, 1}));
    EXPECT_FALSE(effect->setFloat("nosuch", 1.0f));
    EXPECT_EQ(drawn(desc, 4, 4).pixel(1, 1), 0xFFFF0000);
}

TEST_F(EffectDrawing, SamplersReadAsTheirStatesSayAndTexturesStayAsTheyWere)
{
    bool readsApart = false; // two samplers of one texture, where the driver can
    {
        const OpenGLContextProtector protector;
        readsApart = EffectTextureResources::instance().sampler({}) != 0;
    }
    WrittenEffect effect;
    effect
        .input("Image", {state("AddressU", {GL_REPEAT}), state("addressv", {GL_CLAMP}),
                         state("MagFilter", {GL_NEAREST})})
        .input("Other")
        .sampler("Clamped", readsApart ? "Image" : "Other",
                 {state("AddressU", {GL_CLAMP_TO_BORDER}), state("BorderColor", {0, 0, 1, 1})})
        .technique("t", {{"",
                          "result = uv.y < 0.5 ? texture2D(ImageSampler, uv * vec2(2.0, 1.0)) :"
                          " texture2D(Clamped, uv * vec2(2.0, 1.0));",
                          {},
                          ""}});
    const Tq::Ptr<QtImage> host = new QtImage({2, 2}, QImage::Format_ARGB32_Premultiplied, 1);
    host->image()->fill(0xFF00FF00);
    host->image()->setPixel(0, 0, 0xFFFF0000);
    host->image()->setPixel(0, 1, 0xFFFF0000);
    const Tq::Ptr<OpenGLImage> image = uploaded(host);
    const QImage result =
        drawn(through(loaded(effect), image, {0, 0, 2, 2}, {0, 0, 32, 32}), 32, 32);
    EXPECT_EQ(result.pixel(2, 4), 0xFFFF0000);
    EXPECT_EQ(result.pixel(7, 4), 0xFFFF0000) << "not softened";
    EXPECT_EQ(result.pixel(18, 4), 0xFFFF0000) << "repeated";
    EXPECT_EQ(result.pixel(31, 4), 0xFF00FF00);
    EXPECT_EQ(result.pixel(28, 28), readsApart ? 0xFF0000FF : 0u) << "the border";
    const Tq::Ptr<iObject> held = image->lock();
    GLint states[4] = {};
    glBindTexture(GL_TEXTURE_2D, image->getTextureID());
    glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, &states[0]);
    glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, &states[1]);
    glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, &states[2]);
    glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, &states[3]);
    glBindTexture(GL_TEXTURE_2D, 0);
    EXPECT_THAT(states,
                testing::ElementsAre(GL_CLAMP_TO_EDGE, GL_CLAMP_TO_EDGE, GL_LINEAR, GL_LINEAR));
}

TEST_F(EffectDrawing, PassStatesHoldForTheirPass)
{
    WrittenEffect effect;
    effect.input("Image").target("T").technique(
        "t", {{"T", "result = vec4(0.25, 0.25, 0.0, 1.0);", {}, ""},
              {"T",
               "result = vec4(0.25, 0.25, 0.25, 0.0);",
               {state("BlendEnable", {1}), state("BlendFunc", {GL_ONE, GL_ONE}),
                state("ColorMask", {1, 0, 1, 1})},
               ""},
              {"T",
               "result = vec4(1.0, 1.0, 1.0, uv.x);",
               {state("AlphaTestEnable", {1}), state("AlphaFunc", {GL_GREATER, 0.5})},
               ""},
              {"", "result = texture2D(TSampler, uv);", {}, ""}});
    const QImage result = drawnWhole(loaded(effect), plain(16, 16, {}));
    const QRgb left = result.pixel(3, 8);
    EXPECT_NEAR(qRed(left), 128, 2);
    EXPECT_NEAR(qGreen(left), 64, 2);
    EXPECT_NEAR(qBlue(left), 64, 2);
    EXPECT_EQ(qRed(result.pixel(14, 8)), 255);
}

TEST_F(EffectDrawing, AVertexProgramMovesTheCorners)
{
    WrittenEffect effect;
    effect.input("Image").technique("t", {{"", "result = vec4(uv, 0.0, 1.0);", {}, R"(
ATTRIBUTE vec4 cga_POSITION, cga_TEXCOORD0;
VARYING vec4 cgi_TEXCOORD0, cgi_TEXCOORD1, cgi_TEXCOORD7;
void main()
{
    gl_Position = vec4(cga_POSITION.xy * 0.5, 0.0, 1.0);
    cgi_TEXCOORD0 = cga_TEXCOORD0;
    cgi_TEXCOORD1 = cgi_TEXCOORD7 = vec4(0.0);
}
)"}});
    const QImage result = drawnWhole(loaded(effect), plain(16, 16, {}));
    EXPECT_EQ(result.pixel(1, 1), kGround);
    EXPECT_NEAR(qRed(result.pixel(4, 4)), 16, 2);
    EXPECT_NEAR(qRed(result.pixel(11, 11)), 239, 2);
}

TEST_F(EffectDrawing, NinePicturesAreOneTooMany)
{
    WrittenEffect effect;
    std::string sum;
    for (int i = 0; i < 9; ++i) {
        effect.input("I" + std::to_string(i));
        sum += "result += texture2D(I" + std::to_string(i) + "Sampler, uv);";
    }
    effect.technique("nine", {{"", sum, {}, ""}});
    const std::string said = outputOf([&] { EXPECT_FALSE(loaded(effect)); });
    EXPECT_NE(said.find("reads 9 textures, of which only 8 can be bound"), std::string::npos);
    effect.technique("eight", {{"", sum.substr(0, sum.rfind("result")), {}, ""}});
    const Tq::Ptr<OpenGLShaderEffect> fewer = loaded(effect);
    ASSERT_TRUE(fewer);
    EXPECT_EQ(fewer->numTextureUnits(), 8u);
    EXPECT_EQ(fewer->getTechniqueName(0), "eight");
    EXPECT_EQ(fewer->getNumTechniques(), 1u);
}

TEST_F(EffectDrawing, RenderDrawsOverAWholeImageAlsoFromItself)
{
    WrittenEffect written;
    written.input("Image").technique(
        "t", {{"", "result = texture2D(ImageSampler, uv.yx).bgra;", {}, ""}});
    const Tq::Ptr<OpenGLShaderEffect> effect = loaded(written);
    const Tq::Ptr<iHostImage> host = noise({16, 16});
    QImage expected = pixelsOf(host).rgbSwapped().mirrored().transformed(QTransform().rotate(90));
    const Tq::Ptr<OpenGLImage> target = makeImage({16, 16});
    EXPECT_TRUE(effect->render({{"Image", uploaded(host)}}, target));
    EXPECT_TRUE(imagesAgree(textureOf(target), expected, "effect-render"));
    const Tq::Ptr<OpenGLImage> itself = uploaded(host);
    EXPECT_TRUE(effect->render({{"Image", itself}}, itself));
    EXPECT_TRUE(imagesAgree(textureOf(itself), expected, "effect-render"));
    EXPECT_FALSE(effect->render({}, {}));
    EXPECT_FALSE(effect->render({{"Image", target}}, makeImage({16, 16}, iGPUImage::eUYVY)));
}

// What packs pixels, or has no alpha, is unpacked first.
TEST_F(EffectDrawing, PicturesOfEveryFormatReachTheEffectAsColours)
{
    const Tq::Ptr<OpenGLShaderEffect> effect = loaded(identity());
    const Tq::Ptr<QtImage> host = new QtImage({16, 8}, QImage::Format_ARGB32_Premultiplied, 1);
    host->image()->fill(0xFF4080C0);
    for (const auto format : {iGPUImage::eRGB8, iGPUImage::eRGB16, iGPUImage::eRGB32,
                              iGPUImage::eARGB16, iGPUImage::eYUV8, iGPUImage::eUYVY}) {
        const Tq::Ptr<OpenGLImage> image = new OpenGLImage(host, format);
        const QRgb pixel =
            drawn(through(effect, image, whole({16, 8}), whole({16, 8})), 16, 8).pixel(5, 3);
        for (int i = 0; i < 4; ++i)
            EXPECT_NEAR(at(pixel, i), at(0xFF4080C0, i), 2) << format << ", channel " << i;
    }
}
