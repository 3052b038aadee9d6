#include "support/ImageCompare.h"

#include <QDir>

#include <algorithm>
#include <cstdlib>

namespace {

int distance(QRgb a, QRgb b)
{
    return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                     std::abs(qBlue(a) - qBlue(b)), std::abs(qAlpha(a) - qAlpha(b))});
}

struct Comparison
{
    long strays = 0;
    int worst = 0;
    QPoint worstAt;
    QImage difference;
};

Comparison compare(const QImage& actual, const QImage& expected, int tolerated)
{
    Comparison result;
    result.difference = QImage(actual.size(), QImage::Format_RGB32);
    for (int y = 0; y < actual.height(); ++y)
        for (int x = 0; x < actual.width(); ++x) {
            const int apart = distance(actual.pixel(x, y), expected.pixel(x, y));
            const int shown = std::min(255, apart * 8); // small differences shall be seen
            result.difference.setPixel(x, y, qRgb(shown, shown, shown));
            result.strays += apart > tolerated;
            if (apart > result.worst) {
                result.worst = apart;
                result.worstAt = QPoint(x, y);
            }
        }
    return result;
}

} // namespace

testing::AssertionResult imagesAgree(const QImage& actual, const QImage& expected, const char* name,
                                     const ImageTolerance& tolerance)
{
    const QString base = QStringLiteral("image-failures/%1-").arg(QLatin1String(name));
    const auto save = [&](const QImage& image, const char* what) {
        QDir().mkpath(QStringLiteral("image-failures"));
        image.save(base + QLatin1String(what) + QStringLiteral(".png"));
    };
    if (actual.size() != expected.size()) {
        save(actual, "actual");
        save(expected, "expected");
        return testing::AssertionFailure()
               << name << ": " << actual.width() << "x" << actual.height() << " instead of "
               << expected.width() << "x" << expected.height();
    }
    constexpr auto kCommon = QImage::Format_ARGB32_Premultiplied;
    const Comparison found = compare(actual.convertToFormat(kCommon),
                                     expected.convertToFormat(kCommon), tolerance.channel);
    const double pixels = std::max(1.0, double(actual.width()) * actual.height());
    if (static_cast<double>(found.strays) <= tolerance.strayShare * pixels)
        return testing::AssertionSuccess();
    save(actual, "actual");
    save(expected, "expected");
    save(found.difference, "difference");
    return testing::AssertionFailure()
           << name << ": " << found.strays << " pixels differ by more than " << tolerance.channel
           << ", the worst by " << found.worst << " at (" << found.worstAt.x() << ", "
           << found.worstAt.y() << "); see " << base.toStdString() << "*.png";
}
