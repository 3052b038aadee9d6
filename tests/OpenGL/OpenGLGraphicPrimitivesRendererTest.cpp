#include "OpenGL/DrawingRig.h"
#include "OpenGL/DrawingScenes.h"
#include "support/ImageCompare.h"
#include "support/OutputCapture.h"
#include "support/UnknowingEffect.h"

#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"
#include "OS/Mac/OpenGL/Drawing/DrawingResources.h"
#include "OS/Mac/OpenGL/Images/OpenGLImage.h"
#include "OS/Mac/OpenGL/Text/OpenGLFont.h"
#include "OS/Mac/Painting/QtFont.h"
#include "OS/Mac/Painting/QtImage.h"
#include "OS/Mac/Painting/QtRegion.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <set>

namespace {

using Renderer = OpenGLGraphicPrimitivesRenderer;
using GLDrawing::DrawingResources;
constexpr QRgb kGround = DrawingRig::kGround;

RectDescription rect(const Tq::Rectangle<int>& area, const NormalisedRGB& colour)
{
    RectDescription desc;
    desc.rect_ = area;
    desc.topColour_ = desc.bottomColour_ = colour;
    return desc;
}

ImageDescription image(const Tq::Ptr<iImageBase>& source, const Tq::Rectangle<int>& from,
                       const Tq::Rectangle<int>& to)
{
    ImageDescription desc;
    desc.image_ = source;
    desc.sourceROI_ = from;
    desc.destROI_ = to;
    desc.blend_ = false;
    return desc;
}

// Squares of four pixels in different colours, opaque.
Tq::Ptr<QtImage> squares(int width, int height)
{
    const Tq::Ptr<QtImage> result =
        new QtImage({width, height}, QImage::Format_ARGB32_Premultiplied, 1);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            result->image()->setPixel(
                x, y, qRgb(x / 2 * 50 % 256, y / 2 * 70 % 256, (x / 2 + y / 2) * 40 % 256));
    return result;
}

// A texture of others'.
class BareTexture final : public iImageBase, public iOpenGLTexture
{
public:
    explicit BareTexture(unsigned int name) : name_(name) {}
    unsigned int getTextureID() const override { return name_; }

private:
    unsigned int name_;
};

class ForeignRegion final : public iRegion
{
public:
    Tq::Rectangle<int> getBounds() const override { return {}; }
    std::uint32_t getUniqueID() const override { return 0; }
    bool isRectangular() const override { return false; }
    bool contains(const XY<int>&) const override { return false; }
    void translate(int, int) override {}
    Tq::Ptr<iRegion> clone() const override { return new ForeignRegion; }
};

} // namespace

TEST(GLRenderer, SoftensEdgesUnlessToldNotTo)
{
    EllipseDescription desc;
    desc.rect_ = {1, 1, 19, 19};
    desc.fillColour_ = {1, 1, 1};
    const auto levelsOf = [&](const DrawingRig::Code& code) {
        const QImage drawn = DrawingRig(20, 20).withGL([&](iGraphicPrimitivesRenderer& r) {
            code(r);
            r.render(desc);
        });
        std::set<QRgb> levels;
        for (int x = 0; x < 20; ++x)
            for (int y = 0; y < 20; ++y)
                levels.insert(drawn.pixel(x, y));
        return levels.size();
    };
    EXPECT_GT(levelsOf([](iGraphicPrimitivesRenderer&) {}), 6u);
    EXPECT_EQ(levelsOf([](iGraphicPrimitivesRenderer& r) { r.setAntialiasingEnabled(false); }), 2u);
}

TEST(GLRenderer, KeepsTheAlphaOfTextures)
{
    const DrawingRig rig(40, 10, 1.0, Renderer::eTexture, 0);
    const QImage drawn = rig.withGL([](iGraphicPrimitivesRenderer& r) {
        r.setAntialiasingEnabled(true);
        r.render(rect({0, 0, 10, 10}, {1, 1, 1, 0.5f}));
        AlphaRectDescription alpha;
        alpha.rect_ = {5, 0, 20, 10};
        alpha.alpha_ = 0.5f;
        r.render(alpha);
        r.render(rect({20, 0, 30, 10}, {1, 0, 0, 0.2f})); // over nothing
    });
    EXPECT_EQ(drawn.pixel(2, 5), 0x7F7F7F7Fu) << "replaced, and premultiplied";
    EXPECT_NEAR(qAlpha(drawn.pixel(7, 5)), 191, 1) << "over half of white";
    EXPECT_EQ(qAlpha(drawn.pixel(15, 5)), 127);
    EXPECT_EQ(qAlpha(drawn.pixel(25, 5)), 51);
    EXPECT_EQ(drawn.pixel(35, 5), 0u);
}

TEST(GLRenderer, LeavesAnOpaqueGroundOpaqueWhereItBlends)
{
    const char* const kReplacing[] = {"images", "one box", "twelve boxes", "star", "nothing"};
    for (const DrawingScene& scene : drawingScenes()) {
        if (std::count(std::begin(kReplacing), std::end(kReplacing), scene.name) > 0)
            continue; // they draw images, which ends the blending
        const DrawingRig rig(DrawingScene::kWidth, DrawingScene::kHeight);
        const QImage drawn = rig.withGL([&](iGraphicPrimitivesRenderer& r) {
            r.setAntialiasingEnabled(true);
            r.render(AlphaRectDescription());
            scene.draw(r);
        });
        for (int y = 0; y < drawn.height(); ++y)
            for (int x = 0; x < drawn.width(); ++x)
                ASSERT_EQ(qAlpha(drawn.pixel(x, y)), 255) << scene.name << " " << x << "," << y;
    }
}

TEST(GLRenderer, DrawsNothingOfWhatHasNoExtent)
{
    const NormalisedRGB white(1, 1, 1);
    const auto ellipse = [](const Tq::Rectangle<int>& area, int style) {
        EllipseDescription desc;
        desc.rect_ = area;
        desc.fillStyle_ = style;
        desc.lineWidth_ = 0;
        return desc;
    };
    struct
    {
        const char* name;
        DrawingRig::Code code;
    } const cases[] = {
        {"nothing at all",
         [](auto& r) {
             r.renderMulti(static_cast<const RectDescription*>(nullptr), 0);
             r.renderMulti(static_cast<const EllipseDescription*>(nullptr), 0);
             r.renderMulti(static_cast<const LineDescription*>(nullptr), 0);
             r.renderMulti(static_cast<const TextDescription*>(nullptr), 0);
             r.renderMulti(static_cast<const AlphaRectDescription*>(nullptr), 0);
             r.renderMulti(static_cast<const BezierCurveDescription*>(nullptr), 0);
             r.renderMulti(static_cast<const ImageDescription*>(nullptr), 0);
             r.renderMulti(static_cast<const ImageDescriptionEx*>(nullptr), 0);
         }},
        {"flat rectangles",
         [&](auto& r) {
             r.render(rect({5, 5, 5, 9}, white));
             r.render(rect({5, 5, 9, 5}, white));
         }},
        {"flat ellipses",
         [&](auto& r) {
             r.render(ellipse({5, 5, 5, 5}, 0));
             r.render(ellipse({5, 5, 9, 5}, 0));
             r.render(ellipse({5, 5, 9, 9}, 7)); // no style
         }},
        {"a curve of no length", [](auto& r) { r.render(BezierCurveDescription()); }},
        {"no image",
         [](auto& r) {
             r.render(ImageDescription());
             r.render(ImageDescriptionEx());
             r.render(image(new QtImage({0, 0}, QtImage::getDefaultFormat(), 1), {0, 0, 9, 9},
                            {0, 0, 9, 9}));
             r.render(image(new BareTexture(0), {0, 0, 9, 9}, {0, 0, 9, 9}));
         }},
        {"no part of an image",
         [](auto& r) {
             r.render(image(squares(8, 8), {0, 0, 0, 8}, {0, 0, 8, 8}));
             r.render(image(squares(8, 8), {0, 0, 8, 8}, {3, 3, 3, 8}));
             r.render(image(squares(8, 8), {20, 20, 28, 28}, {0, 0, 8, 8}));
         }},
        {"no text",
         [&](auto& r) {
             r.render(TextDescription(L"x", {5, 5}, white, eTextDefault, nullptr));
             r.render(TextDescription(L"", {5, 5}, white, eTextDefault,
                                      OpenGLFont::make(L"Tahoma", 13, 0, 0)));
         }},
        {"an effect that is not known",
         [](auto& r) {
             ImageDescriptionEx desc;
             desc.image_ = squares(8, 8);
             desc.sourceRect_ = desc.destRect_ = {0, 0, 8, 8};
             desc.technique_.effect_ = new UnknowingEffect;
             r.render(desc);
         }},
        {"an empty clip region",
         [&](auto& r) {
             r.setClipRegion(new QtRegion(QRegion()));
             r.render(rect({0, 0, 9, 9}, white));
             r.render(ellipse({5, 5, 9, 9}, 2));
         }},
    };
    for (const bool soft : {false, true})
        for (const auto& c : cases) {
            const QImage drawn = DrawingRig(20, 20).withGL([&](iGraphicPrimitivesRenderer& r) {
                r.setAntialiasingEnabled(soft);
                c.code(r);
            });
            QImage expected(20, 20, QImage::Format_ARGB32_Premultiplied);
            expected.fill(kGround);
            EXPECT_TRUE(imagesAgree(drawn, expected, c.name)) << c.name;
        }
}

TEST(GLRenderer, DrawsShortArcsOnTheirOwnSideOnly)
{
    EllipseDescription desc;
    desc.rect_ = {2, 2, 58, 58};
    desc.fillStyle_ = EllipseDescription::eOutline;
    desc.lineColour_ = {1, 1, 1};
    desc.lineWidth_ = 14;
    desc.startAngle_ = 260;
    desc.endAngle_ = 280; // at the top
    const QImage drawn =
        DrawingRig(60, 60).withGL([&](iGraphicPrimitivesRenderer& r) { r.render(desc); });
    EXPECT_EQ(drawn.pixel(30, 8), 0xFFFFFFFF);
    for (int y = 30; y < 60; ++y)
        for (int x = 0; x < 60; ++x)
            ASSERT_EQ(drawn.pixel(x, y), kGround) << x << "," << y;
}

TEST(GLRenderer, SurvivesCoordinatesFarAway)
{
    constexpr int kMost = (1 << 30) - 1, kLeast = -(1 << 30); // as far as widths can be counted
    const QImage drawn = DrawingRig(64, 48).withGL([&](iGraphicPrimitivesRenderer& r) {
        r.setAntialiasingEnabled(true);
        r.render(rect({kLeast, kLeast, kMost, kMost}, {0, 1, 0}));
        EllipseDescription ellipse;
        ellipse.rect_ = {kLeast, kLeast, kMost, kMost};
        ellipse.fillStyle_ = 2;
        ellipse.fillColour_ = {0, 0, 1};
        r.render(ellipse); // its middle is far inside
        ellipse.endAngle_ = 90;
        r.render(ellipse);
        LineDescription line;
        for (const int style : {0, 1})
            for (const XY<int>& end : {XY<int>(kMost, kMost), XY<int>(kMost, kLeast)}) {
                line.start_ = {kLeast, kLeast};
                line.end_ = end;
                line.lineStyle_ = style;
                line.lineWidth_ = style ? 1 : kMost;
                line.colour_ = {1, 1, 1, 0.5f};
                r.render(line);
            }
        BezierCurveDescription curve;
        curve.start_ = {kLeast, 0};
        curve.control1_ = {kMost, kMost};
        curve.control2_ = {kLeast, kLeast};
        curve.end_ = {kMost, 40};
        r.render(curve);
        r.render(
            image(squares(8, 8), {kLeast, kLeast, kMost, kMost}, {kLeast, kLeast, kMost, kMost}));
        r.render(TextDescription(L"far", {kMost - 20, kLeast}, {}, eTextDefault,
                                 OpenGLFont::make(L"Tahoma", 13, 0, 0)));
    });
    EXPECT_NE(drawn.pixel(32, 24), kGround);
}

TEST(GLRenderer, RefusesRegionsOfOthers)
{
    OutputCapture output;
    const QImage drawn = DrawingRig(10, 10).withGL([](iGraphicPrimitivesRenderer& r) {
        r.setClipRegion(new QtRegion(Tq::Rectangle<int>{0, 0, 5, 10}));
        r.setClipRegion(new ForeignRegion);
        r.render(rect({0, 0, 10, 10}, {1, 1, 1}));
    });
    EXPECT_EQ(output.text(), "assertion failed rgnImpl at OS/Mac/OpenGLGraphicPrimitivesRenderer "
                             "line 88\n");
    EXPECT_EQ(drawn.pixel(2, 2), 0xFFFFFFFF);
    EXPECT_EQ(drawn.pixel(7, 2), kGround);
}

TEST(GLRenderer, StaysInsideOfItsViewport)
{
    const DrawingRig rig(40, 30, 1.0, Renderer::eWindow);
    const QImage drawn =
        rig.withGL([](iGraphicPrimitivesRenderer&) {},
                   [] {
                       glViewport(10, 5, 20, 10);
                       Renderer renderer({20, 10}, 1.0, Renderer::eWindow);
                       renderer.setClipRegion(new QtRegion(Tq::Rectangle<int>{0, 0, 99, 4}));
                       renderer.render(rect({-99, -99, 99, 99}, {1, 1, 1}));
                       renderer.setClipRegion(nullptr);
                       renderer.render(rect({0, 9, 1, 10}, {1, 0, 0})); // its bottom left pixel
                   });
    EXPECT_EQ(drawn.pixel(10, 15), 0xFFFFFFFF);
    EXPECT_EQ(drawn.pixel(29, 18), 0xFFFFFFFF);
    EXPECT_EQ(drawn.pixel(9, 15), kGround);
    EXPECT_EQ(drawn.pixel(10, 14), kGround);
    EXPECT_EQ(drawn.pixel(10, 19), kGround);
    EXPECT_EQ(drawn.pixel(10, 24), 0xFFFF0000);
}

TEST(GLRenderer, PutsTheStateOfGLBack)
{
    DrawingRig(8, 8).withGL(
        [](iGraphicPrimitivesRenderer&) {},
        [] {
            GLuint buffer = 0, texture = 0;
            glGenBuffers(1, &buffer);
            glGenTextures(1, &texture);
            glBindBuffer(GL_ARRAY_BUFFER, buffer);
            glActiveTexture(GL_TEXTURE0);
            glBindTexture(GL_TEXTURE_2D, texture);
            glActiveTexture(GL_TEXTURE1);
            glEnable(GL_BLEND);
            glBlendFunc(GL_ONE, GL_DST_ALPHA);
            glEnable(GL_SCISSOR_TEST);
            glScissor(1, 2, 3, 4);
            {
                Renderer renderer({8, 8}, 1.0, Renderer::eTexture);
                renderer.setAntialiasingEnabled(true);
                renderer.setClipRegion(new QtRegion(Tq::Rectangle<int>{0, 0, 5, 5}));
                for (const DrawingScene& scene : drawingScenes())
                    scene.draw(renderer);
                EXPECT_EQ(glIsEnabled(GL_BLEND), GL_FALSE) << "between calls";
            }
            const auto integer = [](GLenum name) {
                GLint value = -1;
                glGetIntegerv(name, &value);
                return value;
            };
            EXPECT_EQ(integer(GL_CURRENT_PROGRAM), 0);
            EXPECT_EQ(integer(GL_ARRAY_BUFFER_BINDING), static_cast<GLint>(buffer));
            EXPECT_EQ(integer(GL_ACTIVE_TEXTURE), GL_TEXTURE1);
            EXPECT_EQ(integer(GL_BLEND_DST_RGB), GL_DST_ALPHA);
            EXPECT_EQ(glIsEnabled(GL_BLEND), GL_TRUE);
            EXPECT_EQ(glIsEnabled(GL_SCISSOR_TEST), GL_TRUE);
            GLint scissor[4] = {};
            glGetIntegerv(GL_SCISSOR_BOX, scissor);
            EXPECT_EQ(scissor[3], 4);
            GLint enabled = -1;
            for (GLuint i = 0; i < 6; ++i) {
                glGetVertexAttribiv(i, GL_VERTEX_ATTRIB_ARRAY_ENABLED, &enabled);
                EXPECT_EQ(enabled, 0);
            }
            glActiveTexture(GL_TEXTURE0);
            EXPECT_EQ(integer(GL_TEXTURE_BINDING_2D), static_cast<GLint>(texture));
            EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
            glDisable(GL_BLEND);
            glDisable(GL_SCISSOR_TEST);
            glBindTexture(GL_TEXTURE_2D, 0);
            glBindBuffer(GL_ARRAY_BUFFER, 0);
            glDeleteTextures(1, &texture);
            glDeleteBuffers(1, &buffer);
        });
}

TEST(GLRenderer, WorksInTheOlderLanguage)
{
    const DrawingRig rig(DrawingScene::kWidth, DrawingScene::kHeight);
    for (const DrawingScene& scene : drawingScenes()) {
        const auto code = [&](iGraphicPrimitivesRenderer& r) {
            r.setAntialiasingEnabled(true);
            scene.draw(r);
        };
        const QImage modern = rig.withGL(code);
        const QImage old = rig.withGL(code, [] {
            Renderer::shutdown();
            DrawingResources::instance().programs.useOldLanguage();
        });
        EXPECT_TRUE(imagesAgree(old, modern, ("old " + scene.name).c_str(), {2, 0.002}));
        rig.withGL([](auto&) {}, [] { Renderer::shutdown(); });
    }
}

TEST(GLRendererImages, AreReadFromEveryStorageFormat)
{
    OpenGLUtils::instance();
    constexpr int kSize = 24;
    const Tq::Ptr<QtImage> host = squares(kSize, kSize);
    const auto draw = [&](const Tq::Ptr<iImageBase>& source, const Tq::Rectangle<int>& to) {
        return DrawingRig(64, 64).withGL([&](iGraphicPrimitivesRenderer& r) {
            r.render(image(source, {0, 0, kSize, kSize}, to));
        });
    };
    for (int format = 0; format <= 12; ++format) {
        const Tq::Ptr<iImageBase> source(
            new OpenGLImage(host, static_cast<iGPUImage::eFormat>(format)));
        const std::string name = "format " + std::to_string(format);
        // 4:2:2 halves the colours' resolution, but the squares are as wide as its pairs.
        EXPECT_TRUE(imagesAgree(draw(source, {3, 5, 3 + kSize, 5 + kSize}),
                                draw(host, {3, 5, 3 + kSize, 5 + kSize}), name.c_str(), {3, 0.0}));
        EXPECT_TRUE(imagesAgree(draw(source, {0, 0, 60, 40}), draw(host, {0, 0, 60, 40}),
                                (name + " scaled").c_str(), {6, format >= 9 ? 1.0 : 0.0}));
    }
}

TEST(GLRendererImages, LoseOnlyWhatAStorageFormatLoses)
{
    OpenGLUtils::instance();
    const Tq::Ptr<QtImage> host = squares(7, 4); // 21 bytes in 5 texels; 3 pairs
    for (const auto format : {iGPUImage::eRGB8, iGPUImage::eYUV8, iGPUImage::eUYVY}) {
        const QImage drawn = DrawingRig(8, 4).withGL([&](iGraphicPrimitivesRenderer& r) {
            r.render(image(new OpenGLImage(host, format), {0, 0, 7, 4}, {0, 0, 7, 4}));
        });
        for (int x = 0; x < 6; ++x)
            EXPECT_NEAR(qGreen(drawn.pixel(x, 3)), qGreen(host->image()->pixel(x, 3)), 3);
        EXPECT_TRUE(format == iGPUImage::eYUV8 || qBlue(drawn.pixel(6, 3)) == 0) << "dropped";
        EXPECT_EQ(drawn.pixel(7, 0), kGround);
    }
}

TEST(GLRendererImages, AreScaledWithoutWhatLiesAround)
{
    const Tq::Ptr<QtImage> host = new QtImage({30, 30}, QtImage::getDefaultFormat(), 1);
    host->image()->fill(0xFF00FF00);
    for (int y = 10; y < 20; ++y)
        for (int x = 10; x < 20; ++x)
            host->image()->setPixel(x, y, 0xFFFF0000);
    const QImage drawn = DrawingRig(40, 40).withGL([&](iGraphicPrimitivesRenderer& r) {
        r.render(image(host, {10, 10, 20, 20}, {0, 0, 40, 40}));
    });
    for (int i = 0; i < 40; ++i)
        for (const QPoint& p : {QPoint(0, i), QPoint(39, i), QPoint(i, 0), QPoint(i, 39)})
            EXPECT_EQ(drawn.pixel(p), 0xFFFF0000);
    // The same through fractions of pixels, and where most of it cannot be seen.
    ImageDescriptionEx desc;
    desc.image_ = host;
    desc.sourceRect_ = {10, 10, 20, 20};
    desc.destRect_ = {-360.5f, -360.5f, 39.5f, 39.5f};
    desc.blend_ = false;
    const QImage part =
        DrawingRig(40, 40).withGL([&](iGraphicPrimitivesRenderer& r) { r.render(desc); });
    EXPECT_EQ(part.pixel(0, 0), 0xFFFF0000);
    EXPECT_EQ(part.pixel(38, 38), 0xFFFF0000);
}

TEST(GLRendererImages, OfTheHostShowWhatWasWrittenLast)
{
    const Tq::Ptr<QtImage> host = squares(8, 8);
    const Tq::Ptr<iPixelGuard> guard = host->lock(); // leaves no trace of what it writes
    const QImage drawn = DrawingRig(20, 10).withGL([&](iGraphicPrimitivesRenderer& r) {
        for (const QRgb colour : {0xFFFF0000, 0xFF00FF00, 0xFF0000FF}) {
            std::fill_n(reinterpret_cast<QRgb*>(guard->getPixels()), 64, colour);
            r.render(image(host, {0, 0, 8, 8}, {0, 0, 8, 8}));
        }
        // Two images in one call, one of them twice.
        const Tq::Ptr<QtImage> other = squares(8, 8);
        other->image()->fill(0xFFFFFFFF);
        const ImageDescription descs[] = {image(host, {0, 0, 4, 4}, {8, 0, 12, 4}),
                                          image(other, {0, 0, 4, 4}, {12, 0, 16, 4}),
                                          image(host, {4, 4, 8, 8}, {16, 0, 20, 4})};
        r.renderMulti(descs, 3);
    });
    EXPECT_EQ(drawn.pixel(4, 4), 0xFF0000FF);
    EXPECT_EQ(drawn.pixel(9, 1), 0xFF0000FF);
    EXPECT_EQ(drawn.pixel(13, 1), 0xFFFFFFFF);
    EXPECT_EQ(drawn.pixel(17, 1), 0xFF0000FF);
}

TEST(GLRendererImages, OfTheHostTakeNoMoreThanTheirShare)
{
    DrawingRig(64, 64).withGL([&](iGraphicPrimitivesRenderer& r) {
        std::vector<ImageDescription> descs; // 40 x 4 MiB in one call
        for (int i = 0; i < 40; ++i)
            descs.push_back(image(squares(1024, 1024), {0, 0, 1024, 1024}, {i, 0, i + 64, 64}));
        r.renderMulti(descs.data(), 40);
        EXPECT_LE(DrawingResources::instance().uploads.bytes(), DrawingResources::kMostUploadBytes);
        Renderer::clearCaches();
        EXPECT_EQ(DrawingResources::instance().uploads.bytes(), 0u);
    });
}

TEST(GLRendererImages, MayBeDrawnOnThemselves)
{
    OpenGLUtils::instance();
    const Tq::Ptr<QtImage> start = squares(16, 16);
    // Up, down and across by less than the height: what is read has been written to.
    for (const XY<int>& by : {XY<int>(0, -3), XY<int>(0, 3), XY<int>(2, 5)}) {
        const TextureTarget target(16, 16, kGround);
        {
            Renderer renderer({16, 16}, 1.0, Renderer::eTexture);
            renderer.render(image(start, {0, 0, 16, 16}, {0, 0, 16, 16}));
            renderer.render(image(new BareTexture(target.texture()), {0, 4, 14, 11},
                                  {by.x, 4 + by.y, 14 + by.x, 11 + by.y}));
        }
        const QImage drawn = target.read();
        for (int y = 4; y < 11; ++y)
            for (int x = 0; x < 14; ++x)
                ASSERT_EQ(drawn.pixel(x + by.x, y + by.y), start->image()->pixel(x, y));
    }
}
