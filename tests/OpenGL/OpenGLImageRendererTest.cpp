#include "OpenGL/ImageRig.h"
#include "support/BackgroundThread.h"

#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLSharedContext.h"
#include "OS/Mac/OpenGL/Images/FramebufferNames.h"

#include <OS/Primitives/iGraphicPrimitivesRenderer.h>

#include <QGLFramebufferObject>

#include <atomic>
#include <cstdlib>
#include <string>

namespace {

void fill(iGraphicPrimitivesRenderer& renderer, const Tq::Rectangle<int>& area,
          const NormalisedRGB& colour)
{
    RectDescription rect;
    rect.rect_ = area;
    rect.topColour_ = rect.bottomColour_ = colour;
    renderer.render(rect);
}

GLint bound(GLenum what)
{
    GLint value = 0;
    glGetIntegerv(what, &value);
    return value;
}

// Each test runs as the driver has it, and as where contexts share no framebuffer names.
class OpenGLImageRendererTest : public GPUImageTest, public testing::WithParamInterface<bool>
{
protected:
    OpenGLImageRendererTest()
    {
        if (GetParam())
            setenv(kPerContext, "1", 1);
        probe();
    }
    ~OpenGLImageRendererTest() override
    {
        if (!outside_)
            unsetenv(kPerContext);
        probe();
    }

private:
    static constexpr char kPerContext[] = "VANTOR_GL_FBO_PER_CONTEXT";
    static void probe()
    {
        const OpenGLContextProtector protector(OpenGLUtils::getSharedContext());
        FramebufferNames::probe();
    }

    const bool outside_ = std::getenv(kPerContext) != nullptr; // all tests run like that
};

} // namespace

TEST_P(OpenGLImageRendererTest, DrawsUprightIntoTheTexture)
{
    EXPECT_FALSE(GetParam() && FramebufferNames::areShared());
    const auto image = makeImage({40, 30});
    {
        const auto renderer = image->getPrimitivesRenderer(false);
        fill(*renderer, {0, 0, 40, 30}, {0, 0, 0});
        fill(*renderer, {3, 5, 11, 6}, {1, 0, 0});
    }
    QImage expected(40, 30, QImage::Format_ARGB32_Premultiplied);
    expected.fill(Qt::black);
    for (int x = 3; x < 11; ++x)
        expected.setPixel(x, 5, 0xFFFF0000u);
    EXPECT_EQ(textureOf(image), expected) << "row 0 is the top row, and edges are where they are";
}

TEST_P(OpenGLImageRendererTest, DrawsInTexelsAndInEveryFormat)
{
    for (int value = 0; value < 13; ++value) {
        const auto image = makeImage({40, 8}, static_cast<iGPUImage::eFormat>(value));
        const XY<int> texels = image->getPhysicalSize();
        fill(*image->getPrimitivesRenderer(false), {0, 0, texels.x, 8}, {0, 1, 0});
        const QImage back = textureOf(image);
        if (value != iGPUImage::eARGB2101010) {
            EXPECT_EQ(back.pixel(texels.x - 1, 7), 0xFF00FF00u) << value;
        } else {
            EXPECT_EQ(back.pixel(texels.x - 1, 7), 0xC00FFC00u) << value;
        }
    }
}

TEST_P(OpenGLImageRendererTest, KeepsTheImageAndTheGLLockUntilItIsReleased)
{
    auto image = makeImage({8, 8});
    const unsigned int name = image->getTextureID();
    auto renderer = image->getPrimitivesRenderer(true);
    image.reset();
    EXPECT_EQ(OpenGLTextureCache::instance().size(), 0u);
    BackgroundThread other([] { return OpenGLUtils::instance().getTextureDimensions(0).x; });
    EXPECT_TRUE(other.waitUntilBlocked());
    fill(*renderer, {0, 0, 8, 8}, {1, 1, 0});
    renderer.reset();
    EXPECT_EQ(other.result(), 0);
    image = makeImage({8, 8});
    EXPECT_EQ(image->getTextureID(), name);
    EXPECT_EQ(textureOf(image).pixel(0, 0), 0xFFFFFF00u);
    EXPECT_FALSE(OpenGLContextProtector::hasContext());
}

TEST_P(OpenGLImageRendererTest, SeveralAreOpenSideBySide)
{
    const auto first = makeImage({16, 16}), second = makeImage({40, 8});
    auto a = first->getPrimitivesRenderer(false);
    fill(*a, {0, 0, 16, 16}, {1, 0, 0});
    auto b = second->getPrimitivesRenderer(false);
    fill(*b, {0, 0, 40, 8}, {0, 1, 0});
    fill(*a, {0, 0, 8, 16}, {0, 0, 1});
    const auto third = makeImage({99, 9}); // the toolkit binds what it makes
    fill(*b, {20, 0, 40, 8}, {1, 1, 1});
    a.reset(); // not in the order in which they were opened
    fill(*b, {0, 0, 10, 8}, {1, 1, 0});
    b.reset();

    const QImage one = textureOf(first), two = textureOf(second);
    EXPECT_EQ(one.pixel(0, 15), 0xFF0000FFu);
    EXPECT_EQ(one.pixel(15, 15), 0xFFFF0000u);
    EXPECT_EQ(two.pixel(9, 7), 0xFFFFFF00u);
    EXPECT_EQ(two.pixel(10, 7), 0xFF00FF00u);
    EXPECT_EQ(two.pixel(39, 0), 0xFFFFFFFFu);
}

TEST_P(OpenGLImageRendererTest, LeavesWhatIsBoundAroundItAsItWas)
{
    const OpenGLContextProtector protector;
    QGLFramebufferObject window(64, 64, GL_TEXTURE_2D); // as if a window were drawn
    glBindFramebuffer(GL_FRAMEBUFFER, window.handle());
    glViewport(1, 2, 33, 44);
    const auto isAsItWas = [&] {
        GLint viewport[4] = {};
        glGetIntegerv(GL_VIEWPORT, viewport);
        return bound(GL_DRAW_FRAMEBUFFER_BINDING) == static_cast<GLint>(window.handle()) &&
               bound(GL_READ_FRAMEBUFFER_BINDING) == static_cast<GLint>(window.handle()) &&
               viewport[0] == 1 && viewport[1] == 2 && viewport[2] == 33 && viewport[3] == 44;
    };
    const auto image = makeImage({16, 16});
    EXPECT_TRUE(isAsItWas()) << "after making an image";
    auto renderer = image->getPrimitivesRenderer(true);
    EXPECT_TRUE(isAsItWas()) << "after making a renderer";
    fill(*renderer, {0, 0, 16, 16}, {1, 0, 0});
    EXPECT_TRUE(isAsItWas()) << "between its operations";
    renderer.reset();
    EXPECT_TRUE(isAsItWas()) << "after it";
    EXPECT_EQ(textureOf(image).pixel(15, 0), 0xFFFF0000u);
    EXPECT_TRUE(isAsItWas()) << "after reading back";
    OpenGLTextureCache::instance().clear();
    EXPECT_TRUE(isAsItWas()) << "after deleting others";
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
}

TEST_P(OpenGLImageRendererTest, OutlivesItsContextsTurns)
{
    const auto image = makeImage({16, 16});
    auto renderer = image->getPrimitivesRenderer(false);
    fill(*renderer, {0, 0, 16, 16}, {1, 0, 0});
    OpenGLUtils::resetContext(); // a client may
    fill(*renderer, {0, 0, 8, 16}, {0, 1, 0});
    {
        const OpenGLContextProtector protector(OpenGLUtils::getSharedContext());
        fill(*renderer, {0, 0, 4, 16}, {0, 0, 1});
    }
    fill(*renderer, {0, 0, 2, 16}, {1, 1, 1});
    renderer.reset();
    const QImage back = textureOf(image);
    EXPECT_EQ(back.pixel(1, 0), 0xFFFFFFFFu);
    EXPECT_EQ(back.pixel(3, 0), 0xFF0000FFu);
    EXPECT_EQ(back.pixel(7, 0), 0xFF00FF00u);
    EXPECT_EQ(back.pixel(15, 0), 0xFFFF0000u);
}

TEST_P(OpenGLImageRendererTest, EightThreadsDrawAndReadWithContextsOfTheirOwn)
{
    constexpr int kThreads = 8, kRounds = 25;
    std::atomic<int> wrong{0};
    std::atomic<unsigned int> next{0};
    Tq::Ptr<OpenGLImage> handedOver[kThreads];
    BackgroundThreads threads(kThreads, [&] {
        const unsigned int me = next++;
        const int side = 16 + static_cast<int>(me);
        for (int round = 0; round < kRounds; ++round) {
            const auto image = makeImage({side, side});
            const auto shade = static_cast<float>(round) / 255.0f;
            fill(*image->getPrimitivesRenderer(false), {0, 0, side, side},
                 {shade, static_cast<float>(me) / 255.0f, 1});
            const QRgb expected = qRgb(round, static_cast<int>(me), 255);
            const QImage back = textureOf(image);
            wrong += back.pixel(0, 0) != expected || back.pixel(side - 1, side - 1) != expected;
            const Tq::Ptr<iHostImage> host = noise({side, side}, me);
            wrong += textureOf(new OpenGLImage(host, iGPUImage::eARGB8)) != pixelsOf(host);
            handedOver[me] = image;
        }
    });
    threads.join();
    EXPECT_EQ(wrong, 0);

    // The threads have ended, with their contexts: what they drew is there, and goes cleanly.
    for (int i = 0; i < kThreads; ++i) {
        const auto& image = handedOver[i];
        EXPECT_EQ(textureOf(image).pixel(15, 15), qRgb(kRounds - 1, i, 255));
        fill(*image->getPrimitivesRenderer(false), {0, 0, 2, 2}, {0, 1, 0});
        EXPECT_EQ(textureOf(image).pixel(1, 1), 0xFF00FF00u);
    }
}

INSTANTIATE_TEST_SUITE_P(FramebufferNames, OpenGLImageRendererTest, testing::Bool(),
                         [](const auto& instance) {
                             return instance.param ? std::string("OfEachContext")
                                                   : std::string("AsTheDriverHasThem");
                         });
