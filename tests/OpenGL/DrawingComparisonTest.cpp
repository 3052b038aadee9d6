// What GL draws, beside what the toolkit's renderer draws.
#include "OpenGL/DrawingRig.h"
#include "OpenGL/DrawingScenes.h"
#include "support/ImageCompare.h"

#include "OS/Mac/OpenGL/Drawing/DrawingResources.h"

#include <QDir>
#include <QPainter>
#include <gtest/gtest.h>

namespace {

struct Setting
{
    double ratio;
    bool antialias;
    DrawingRig::Orientation orientation;
};

constexpr auto kWindow = OpenGLGraphicPrimitivesRendererBase::eWindow;
constexpr auto kTexture = OpenGLGraphicPrimitivesRendererBase::eTexture;

const std::vector<Setting>& settings()
{
    static const std::vector<Setting> all{{1.0, true, kTexture}, {1.0, false, kWindow},
                                          {1.25, true, kWindow}, {1.25, false, kTexture},
                                          {1.5, true, kTexture}, {1.5, false, kWindow},
                                          {2.0, true, kWindow},  {2.0, false, kTexture}};
    return all;
}

std::string nameOf(const DrawingScene& scene, const Setting& setting)
{
    return scene.name + " x" + std::to_string(setting.ratio).substr(0, 4) +
           (setting.antialias ? " soft" : " hard") +
           (setting.orientation == kWindow ? " window" : " texture");
}

struct Pair
{
    QImage toolkit, gl;
};

Pair drawBoth(const DrawingScene& scene, const Setting& setting)
{
    const DrawingRig rig(DrawingScene::kWidth, DrawingScene::kHeight, setting.ratio,
                         setting.orientation);
    const auto code = [&](iGraphicPrimitivesRenderer& renderer) {
        renderer.setAntialiasingEnabled(setting.antialias);
        scene.draw(renderer);
    };
    return {rig.withToolkit(code), rig.withGL(code)};
}

// Sixteen times the difference.
QImage differenceOf(const Pair& pair)
{
    QImage result(pair.gl.size(), QImage::Format_RGB32);
    const auto times = [](int a, int b) { return std::min(255, std::abs(a - b) * 16); };
    for (int y = 0; y < result.height(); ++y)
        for (int x = 0; x < result.width(); ++x) {
            const QRgb a = pair.toolkit.pixel(x, y), b = pair.gl.pixel(x, y);
            result.setPixel(x, y,
                            qRgb(times(qRed(a), qRed(b)), times(qGreen(a), qGreen(b)),
                                 times(qBlue(a), qBlue(b))));
        }
    return result;
}

class SceneDrawing : public testing::TestWithParam<Setting>
{
};

TEST_P(SceneDrawing, LooksAsTheToolkitDrawsIt)
{
    const Setting setting = GetParam();
    for (const DrawingScene& scene : drawingScenes()) {
        const Pair pair = drawBoth(scene, setting);
        const bool whole = setting.ratio == std::floor(setting.ratio);
        EXPECT_TRUE(
            imagesAgree(pair.gl, pair.toolkit, nameOf(scene, setting).c_str(),
                        {scene.channel, whole ? scene.strayShare : scene.strayAtFractions}));
    }
}
INSTANTIATE_TEST_SUITE_P(Settings, SceneDrawing, testing::ValuesIn(settings()));

// Writes what a person should look at: each scene by the toolkit, by GL, and their difference times
// sixteen, into the folder "review" of the working directory.
TEST(DrawingReview, PutsTheScenesSideBySide)
{
    QDir().mkpath(QStringLiteral("review"));
    for (const Setting& setting : settings()) {
        if (setting.ratio == 1.25)
            continue;
        const int width = int(std::ceil(DrawingScene::kWidth * setting.ratio));
        const int height = int(std::ceil(DrawingScene::kHeight * setting.ratio));
        const int scenes = int(drawingScenes().size());
        QImage sheet((width + 4) * 6, (height + 4) * ((scenes + 1) / 2), QImage::Format_RGB32);
        sheet.fill(Qt::darkGray);
        QPainter painter(&sheet);
        for (int i = 0; i < scenes; ++i) {
            const Pair pair = drawBoth(drawingScenes()[std::size_t(i)], setting);
            const int x = i % 2 * 3 * (width + 4), y = i / 2 * (height + 4);
            painter.drawImage(x, y, pair.toolkit);
            painter.drawImage(x + width + 2, y, pair.gl);
            painter.drawImage(x + 2 * width + 4, y, differenceOf(pair));
        }
        painter.end();
        const QString name = QStringLiteral("review/drawing-x%1-%2.png")
                                 .arg(setting.ratio)
                                 .arg(QLatin1String(setting.antialias ? "soft" : "hard"));
        EXPECT_TRUE(sheet.save(name));
    }
}

} // namespace
