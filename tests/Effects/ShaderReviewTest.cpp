// Writes what a person should look at: every effect on the sample media, into the folder "review"
// of the working directory.
#include "Effects/ShaderLibraryRig.h"

#include "OS/Mac/Core/PathText.h"
#include "OS/Mac/Painting/QtImage.h"

#include <QDir>
#include <QPainter>
#include <filesystem>
#include <gtest/gtest.h>

namespace {

constexpr int kWidth = 320, kHeight = 180;

QImage media(const char* name)
{
    const std::filesystem::path root =
        std::filesystem::path(OS_TEST_DATA).parent_path().parent_path();
    const std::string path = root / "apps/vantor/media" / name;
    const Tq::Ptr<QtImage> image = new QtImage(OSInternal::pathFromSystem(path.c_str()));
    return image->image()
        ->convertToFormat(QImage::Format_ARGB32_Premultiplied)
        .scaled(kWidth, kHeight, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

struct Shot
{
    const char* effect;
    const char* technique;
    std::vector<std::pair<std::string, const char*>> pictures; ///< input, file
    std::vector<std::pair<const char*, std::vector<float>>> values;
};

// A table of curves: more contrast, warm lights and cold shadows.
QImage curves()
{
    QImage strip(256, 1, QImage::Format_ARGB32_Premultiplied);
    for (int i = 0; i < 256; ++i) {
        const double x = i / 255.0, bent = x * x * (3 - 2 * x);
        strip.setPixel(
            i, 0,
            qRgb(int(255 * bent), int(255 * (0.5 * x + 0.5 * bent)), int(255 * (0.1 + 0.8 * x))));
    }
    return strip;
}

// Lines of one picture and of the same a little later.
QImage interlaced()
{
    QImage image = media("pier.jpg");
    const QImage later = image.copy(-12, 0, kWidth, kHeight);
    for (int y = 1; y < kHeight; y += 2)
        std::copy_n(later.constScanLine(y), kWidth * 4, image.scanLine(y));
    return image;
}

// A subject in front of green.
QImage green()
{
    QImage image(kWidth, kHeight, QImage::Format_ARGB32_Premultiplied);
    image.fill(QColor(30, 170, 60));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.drawImage(QRect(90, 30, 140, 120), media("dawn.jpg"));
    painter.setPen(QPen(QColor(240, 200, 160), 6));
    painter.setBrush(QColor(180, 60, 40));
    painter.drawEllipse(QPoint(70, 110), 45, 55);
    return image;
}

QImage pictureOf(const char* name)
{
    const std::string what = name;
    return what == "curves"       ? curves()
           : what == "interlaced" ? interlaced()
           : what == "green"      ? green()
                                  : media(name);
}

const std::vector<Shot>& shots()
{
    static const std::vector<Shot> all{
        {"ColourCorrect", "ColourCorrect", {{"Picture", "pier.jpg"}}, {}},
        {"ColourCorrect",
         "ColourCorrect",
         {{"Picture", "pier.jpg"}},
         {{"Lift", {0.05f, 0.0f, -0.05f}},
          {"Gamma", {1.2f, 1.1f, 1.0f}},
          {"Gain", {1.1f, 1.0f, 0.9f}},
          {"Saturation", {1.4f}}}},
        {"ColourCorrect", "ColourCorrect", {{"Picture", "bars.png"}}, {{"Saturation", {0.3f}}}},
        {"Lookup", "Curves", {{"Picture", "pier.jpg"}, {"Table", "curves"}}, {}},
        {"Dissolve", "Dissolve", {{"From", "pier.jpg"}, {"To", "dawn.jpg"}}, {}},
        {"Dissolve", "Additive", {{"From", "pier.jpg"}, {"To", "dawn.jpg"}}, {}},
        {"Add", "Add", {{"Picture", "pier.jpg"}, {"Light", "dawn.jpg"}}, {{"Amount", {0.6f}}}},
        {"Wipe", "Straight", {{"From", "pier.jpg"}, {"To", "dawn.jpg"}}, {{"Angle", {30.0f}}}},
        {"Wipe",
         "Clock",
         {{"From", "pier.jpg"}, {"To", "dawn.jpg"}},
         {{"Progress", {0.35f}}, {"Softness", {0.02f}}}},
        {"Wipe", "Circle", {{"From", "pier.jpg"}, {"To", "dawn.jpg"}}, {}},
        {"ChromaKey",
         "Key",
         {{"Picture", "green"}},
         {{"KeyColour", {30 / 255.0f, 170 / 255.0f, 60 / 255.0f}}}},
        {"LumaKey", "Key", {{"Picture", "dawn.jpg"}}, {{"Low", {0.5f}}}},
        {"Blur", "Blur", {{"Picture", "pier.jpg"}}, {{"Radius", {12.0f}}}},
        {"Sharpen", "Sharpen", {{"Picture", "pier.jpg"}}, {{"Amount", {2.0f}}}},
        {"Transform",
         "Transform",
         {{"Picture", "pier.jpg"}},
         {{"CropLeft", {0.2f}},
          {"CropBottom", {0.1f}},
          {"Scale", {0.7f}},
          {"Rotation", {12.0f}},
          {"BorderWidth", {0.03f}},
          {"Ground", {0.1f, 0.1f, 0.3f, 1.0f}}}},
        {"Deinterlace", "Blend", {{"Picture", "interlaced"}}, {}},
        {"Deinterlace", "TopField", {{"Picture", "interlaced"}}, {}},
        {"Deinterlace", "BottomField", {{"Picture", "interlaced"}}, {}},
    };
    return all;
}

void drawLabelled(QPainter& painter, int place, const QImage& image, const QString& label)
{
    constexpr int kColumns = 4;
    const int x = place % kColumns * (kWidth + 8) + 8, y = place / kColumns * (kHeight + 24) + 4;
    painter.fillRect(x, y, kWidth, kHeight, QBrush(QColor(90, 90, 90), Qt::Dense4Pattern));
    painter.drawImage(x, y, image);
    painter.drawText(x, y + kHeight + 14, label);
}

} // namespace

TEST(ShaderReview, PutsEveryEffectOnASheet)
{
    const int places = static_cast<int>(shots().size()) + 8;
    QImage sheet(4 * (kWidth + 8) + 8, (places + 3) / 4 * (kHeight + 24) + 8, QImage::Format_RGB32);
    sheet.fill(QColor(30, 30, 34));
    QPainter painter(&sheet);
    painter.setPen(Qt::white);
    QFont font;
    font.setPixelSize(13);
    painter.setFont(font);
    int place = 0;
    for (const Shot& shot : shots()) {
        const ShaderLibrary library(shot.effect);
        ASSERT_TRUE(library.isLoaded()) << shot.effect;
        ShaderLibrary::Sources sources;
        for (const auto& [input, name] : shot.pictures)
            sources.emplace_back(input, pictureOf(name));
        for (const auto& [name, values] : shot.values)
            library.set(name, values);
        drawLabelled(painter, place++,
                     library.render(shot.technique, sources, QSize(kWidth, kHeight)),
                     QStringLiteral("%1: %2").arg(shot.effect, shot.technique));
    }
    // To storage, as it looks when taken for pixels, and back.
    const ShaderLibrary formats("Formats");
    for (const auto& [name, texels] : {std::pair("UYVY", kWidth / 2),
                                       {"VYUY", kWidth / 2},
                                       {"RGB8", kWidth * 3 / 4},
                                       {"YUV8", kWidth * 3 / 4}}) {
        const QImage storage = formats.render(
            std::string("To") + name, {{"Picture", media("bars.png")}}, QSize(texels, kHeight));
        drawLabelled(painter, place++, storage.convertToFormat(QImage::Format_ARGB32),
                     QStringLiteral("Formats: To%1").arg(name));
        drawLabelled(painter, place++,
                     formats.render(std::string("From") + name, {{"Picture", storage}},
                                    QSize(kWidth, kHeight)),
                     QStringLiteral("Formats: From%1").arg(name));
    }
    painter.end();
    QDir().mkpath(QStringLiteral("review"));
    EXPECT_TRUE(sheet.save(QStringLiteral("review/effects.png")));
}
