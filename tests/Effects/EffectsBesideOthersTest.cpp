#include "Effects/EffectDrawingRig.h"
#include "support/BackgroundThread.h"
#include "support/ImageCompare.h"
#include "support/OutputCapture.h"

#include "OS/Mac/Effects/EffectTextures.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"

#include <OS/Primitives/GraphicPrimitivesList.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <initializer_list>

using namespace EffectDrawingRig;

namespace {

// Other drawing, other contexts, other threads.
class EffectsBesideOthers : public GPUImageTest
{
};

} // namespace

TEST_F(EffectsBesideOthers, GLsStateIsAsItWas)
{
    WrittenEffect effect;
    effect.input("Image").target("T").technique(
        "t", {{"T", "result = texture2D(ImageSampler, uv);", {state("CullFaceEnable", {0})}, ""},
              {"",
               "result = texture2D(TSampler, uv);",
               {state("BlendEnable", {1}), state("DepthTestEnable", {1}),
                state("ColorMask", {1, 0, 1, 0})},
               ""}});
    const auto snapshot = [] {
        std::vector<GLint> all;
        for (const GLenum name : std::initializer_list<GLenum>{GL_CURRENT_PROGRAM,
                                                               GL_ARRAY_BUFFER_BINDING,
                                                               GL_ACTIVE_TEXTURE,
                                                               GL_CLIENT_ACTIVE_TEXTURE,
                                                               GL_TEXTURE_BINDING_2D,
                                                               GL_TEXTURE_BINDING_3D,
                                                               GL_SAMPLER_BINDING,
                                                               GL_BLEND,
                                                               GL_BLEND_SRC_RGB,
                                                               GL_BLEND_DST_ALPHA,
                                                               GL_DEPTH_TEST,
                                                               GL_SCISSOR_TEST,
                                                               GL_MATRIX_MODE,
                                                               GL_MODELVIEW_STACK_DEPTH,
                                                               GL_ATTRIB_STACK_DEPTH,
                                                               GL_CLIENT_ATTRIB_STACK_DEPTH,
                                                               GL_VERTEX_ARRAY,
                                                               GL_TEXTURE_COORD_ARRAY,
                                                               GL_DRAW_FRAMEBUFFER_BINDING,
                                                               GL_READ_FRAMEBUFFER_BINDING}) {
            GLint value = -1;
            glGetIntegerv(name, &value);
            all.push_back(value);
        }
        GLint box[4], mask[4];
        glGetIntegerv(GL_VIEWPORT, box);
        all.insert(all.end(), box, box + 4);
        glGetIntegerv(GL_COLOR_WRITEMASK, mask);
        all.insert(all.end(), mask, mask + 4);
        for (GLuint i = 0; i < 16; ++i) {
            GLint enabled = 0;
            glGetVertexAttribiv(i, GL_VERTEX_ATTRIB_ARRAY_ENABLED, &enabled);
            all.push_back(enabled);
        }
        all.push_back(static_cast<GLint>(glGetError()));
        return all;
    };
    const Tq::Ptr<OpenGLShaderEffect> used = loaded(effect);
    const Tq::Ptr<OpenGLImage> image = uploaded(noise({16, 16}));
    const TextureTarget target(16, 16, kGround);
    const std::vector<GLint> before = snapshot();
    {
        OpenGLGraphicPrimitivesRenderer renderer({16, 16}, 1.0, Renderer::eTexture);
        const ImageDescriptionEx desc =
            through(used, image, whole({16, 16}), whole({16, 16}), true);
        renderer.renderMulti(&desc, 1);
    }
    EXPECT_EQ(snapshot(), before);
}

// Each context has values of its own of a program that they share.
TEST_F(EffectsBesideOthers, EveryContextDrawsWithTheValuesOfTheDrawing)
{
    WrittenEffect written;
    written.input("Image")
        .number("level", {0.0})
        .technique("t", {{"", "result = vec4(level, 0.0, 0.0, 1.0);", {}, ""}});
    const Tq::Ptr<OpenGLShaderEffect> effect = loaded(written);
    const Tq::Ptr<OpenGLImage> image = plain(4, 4, {});
    const auto draw = [&](float level) {
        ImageDescriptionEx desc = through(effect, image, {0, 0, 4, 4}, {0, 0, 4, 4});
        desc.technique_.values_ = {iShaderParamValue::makeFloat("level", level)};
        return qRed(drawn(desc, 4, 4).pixel(1, 1));
    };
    for (const float level : {0.2f, 1.0f, 0.2f, 0.2f, 1.0f}) {
        const int expected = static_cast<int>(level * 255.0f + 0.5f);
        EXPECT_EQ(draw(level), expected);
        BackgroundThread other([&] { return draw(1.0f - level); });
        EXPECT_EQ(other.result(), 255 - expected);
    }
}

// Values come from one thread, releases from another, while a third draws.
TEST_F(EffectsBesideOthers, ValuesMayChangeWhileItIsDrawn)
{
    WrittenEffect written;
    written.input("Image")
        .number("colour", {1, 0, 0, 1})
        .technique("t", {{"", "result = colour;", {}, ""}});
    Tq::Ptr<OpenGLShaderEffect> effect = loaded(written);
    const Tq::Ptr<OpenGLImage> image = plain(4, 4, {});
    const ImageDescriptionEx desc = through(effect, image, {0, 0, 4, 4}, {0, 0, 4, 4});
    std::atomic<bool> isOver{false};
    BackgroundThread setter([&isOver, effect] {
        for (int i = 0; !isOver; ++i)
            effect->setColour("colour", i % 2 ? NormalisedRGB(1, 0, 0) : NormalisedRGB(0, 1, 1));
        return true;
    });
    effect.reset();
    int mixed = 0;
    for (int i = 0; i < 200; ++i) {
        const QRgb pixel = drawn(desc, 4, 4).pixel(1, 1);
        mixed += pixel != 0xFFFF0000 && pixel != 0xFF00FFFF;
    }
    EXPECT_EQ(mixed, 0);
    isOver = true;
    EXPECT_TRUE(setter.result());
}

TEST_F(EffectsBesideOthers, ARecordedFrameKeepsItsEffect)
{
    Tq::Ptr<OpenGLShaderEffect> effect = loaded(identity());
    Tq::Ptr<OpenGLImage> image = plain(8, 8, {1, 0, 0});
    const std::weak_ptr<EffectContents> contents = effect->contents();
    struct Player final : GraphicPrimitivesList::iPrimitivesProcessor
    {
        explicit Player(iGraphicPrimitivesRenderer& to) : renderer(to) {}
        iGraphicPrimitivesRenderer& renderer;
        void process(const RectDescription*, unsigned int, const Tq::Ptr<iRegion>&) override {}
        void process(const EllipseDescription*, unsigned int, const Tq::Ptr<iRegion>&) override {}
        void process(const LineDescription*, unsigned int, const Tq::Ptr<iRegion>&) override {}
        void process(const TextDescription*, unsigned int, const Tq::Ptr<iRegion>&) override {}
        void process(const AlphaRectDescription*, unsigned int, const Tq::Ptr<iRegion>&) override {}
        void process(const BezierCurveDescription*, unsigned int, const Tq::Ptr<iRegion>&) override
        {
        }
        void process(const ImageDescription*, unsigned int, const Tq::Ptr<iRegion>&) override {}
        void process(const ImageDescriptionEx* descs, unsigned int count,
                     const Tq::Ptr<iRegion>&) override
        {
            renderer.renderMulti(descs, count);
        }
    };
    {
        Tq::Ptr<GraphicPrimitivesList> list = new GraphicPrimitivesList;
        {
            const ImageDescriptionEx desc = through(effect, image, whole({8, 8}), whole({8, 8}));
            list->push_back(&desc, 1, {});
        }
        effect.reset();
        image.reset();
        EXPECT_FALSE(contents.expired());
        const QImage result = DrawingRig(8, 8).withGL([&](iGraphicPrimitivesRenderer& renderer) {
            Player player(renderer);
            list->process(player);
        });
        EXPECT_EQ(result.pixel(4, 4), 0xFFFF0000);
    }
    EXPECT_TRUE(contents.expired());
}
