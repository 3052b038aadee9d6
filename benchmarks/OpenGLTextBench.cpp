// Text with GL, beside the toolkit's painter on its framebuffer object: cached texts, and what the
// first drawing of a text costs. Process time, all threads: a software driver draws on several.
// Run it in a display: tests/support/with-display build/release/benchmarks/OpenGLTextBench
#include "support/PairedRuns.h"

#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"
#include "OS/Mac/OpenGL/Drawing/OpenGLGraphicPrimitivesRenderer.h"
#include "OS/Mac/OpenGL/Images/OpenGLImage.h"
#include "OS/Mac/OpenGL/Text/OpenGLFont.h"
#include "OS/Mac/OpenGL/Text/TextImageCache.h"
#include "OS/Mac/Painting/PainterValues.h"
#include "OS/Mac/Painting/QtFont.h"

#include <QGLFramebufferObject>
#include <QPainter>

#include <ctime>
#include <random>
#include <string>

namespace {

constexpr int kWidth = 1280, kHeight = 720, kTexts = 300;

double processMs()
{
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) / 1e6;
}

struct Texts
{
    /// @param different how many texts there are @param colours and in how many colours
    Texts(int different, int colours)
    {
        std::mt19937 random(1);
        const auto below = [&](int limit) { return static_cast<int>(random() % unsigned(limit)); };
        for (int i = 0; i < kTexts; ++i) {
            const std::wstring text =
                L"Clip " + std::to_wstring(i % different * 37) + L" of the reel";
            const auto part = [&](int n) { return static_cast<float>(n % colours + 1) / 4.0f; };
            const NormalisedRGB colour =
                colours == 1 ? NormalisedRGB(1, 1, 1) : NormalisedRGB(part(i), part(i / 2), 1);
            descs.emplace_back(text.c_str(), XY<int>(below(1150), 20 + below(680)), colour,
                               eTextDefault, font);
            strings.push_back(QString::fromStdWString(text));
        }
    }
    Tq::Ptr<iFont> font = OpenGLFont::make(L"Tahoma", 13, 0, 0);
    QFont hostFont = QtFont::make(L"Tahoma", 13, 0, 0).dynamicCast<QtFont>()->font();
    std::vector<TextDescription> descs;
    std::vector<QString> strings;
};

class Frames
{
public:
    Frames() : ours_(new OpenGLImage({kWidth, kHeight}, iGPUImage::eARGB8))
    {
        const OpenGLContextProtector protector;
        toolkit_ = std::make_unique<QGLFramebufferObject>(kWidth, kHeight, GL_TEXTURE_2D);
    }
    ~Frames()
    {
        const OpenGLContextProtector protector;
        toolkit_.reset();
    }

    double ours(const Texts& texts)
    {
        const OpenGLContextProtector protector;
        glFinish();
        const double start = processMs();
        ours_->bind();
        glViewport(0, 0, kWidth, kHeight);
        clear();
        {
            OpenGLGraphicPrimitivesRenderer renderer({kWidth, kHeight}, 1.0,
                                                     OpenGLGraphicPrimitivesRendererBase::eTexture);
            renderer.renderMulti(texts.descs.data(), kTexts);
        }
        ours_->unbind();
        glFinish();
        return processMs() - start;
    }
    double painters(const Texts& texts)
    {
        const OpenGLContextProtector protector;
        glFinish();
        const double start = processMs();
        toolkit_->bind();
        clear();
        {
            QPainter painter(toolkit_.get());
            painter.setFont(texts.hostFont);
            for (std::size_t i = 0; i < texts.descs.size(); ++i) {
                painter.setPen(PainterValues::toQColor(texts.descs[i].colour_));
                painter.drawText(texts.descs[i].pos_.x, texts.descs[i].pos_.y, texts.strings[i]);
            }
        }
        toolkit_->release();
        glFinish();
        return processMs() - start;
    }

private:
    static void clear()
    {
        glClearColor(0, 0, 0, 1);
        glClear(GL_COLOR_BUFFER_BIT);
    }

    Tq::Ptr<OpenGLImage> ours_;
    std::unique_ptr<QGLFramebufferObject> toolkit_;
};

void compare(Frames& frames, const char* name, const Texts& texts, double aim)
{
    Bench::compare(name,
                   {{"ours", [&] { return frames.ours(texts); }},
                    {"painter on GL", [&] { return frames.painters(texts); }}},
                   {{{"painter on GL"}, aim}}, 15);
}

// Microseconds for each of 25 texts: all pictures made, or none.
double picturesUs(const Texts& texts, bool made)
{
    const OpenGLContextProtector protector;
    auto* const font = dynamic_cast<OpenGLFontBase*>(texts.font.get());
    const auto all = [&] {
        for (std::size_t i = 0; i < 25; ++i)
            font->renderText(texts.descs[i]);
    };
    OpenGLFontBase::cache().clear();
    if (made)
        all();
    glFinish();
    const double start = processMs();
    constexpr int kRounds = 20;
    for (int round = 0; round < kRounds; ++round) {
        all();
        if (!made)
            OpenGLFontBase::cache().clear();
    }
    glFinish();
    return (processMs() - start) * 1000.0 / (25 * kRounds);
}

} // namespace

int main()
{
    OpenGLUtils::instance();
    if (!OpenGLUtils::isInitialised())
        return 1;
    {
        Frames frames;
        const Texts twenty(20, 1), coloured(20, 3), single(1, 1), many(300, 1);
        Bench::printHeader("300 texts with GL, 1280 x 720, process time", "ms");
        compare(frames, "20 texts in one colour", twenty, 0.65);
        compare(frames, "20 texts in several colours", coloured, 0.0);
        compare(frames, "one text", single, 0.0);
        compare(frames, "300 texts, all misses", many, 0.0);
        Bench::printHeader("A text's picture", "us");
        Bench::compare("a miss vs a hit",
                       {{"miss", [&] { return picturesUs(many, false); }},
                        {"hit", [&] { return picturesUs(many, true); }}},
                       {{{"hit"}, 0.0}}, 9);
    }
    OpenGLUtils::shutdown();
}
