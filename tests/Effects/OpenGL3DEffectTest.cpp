#include "OpenGL/ImageRig.h"
#include "support/ImageCompare.h"

#include "OS/Mac/Effects/OpenGL3DEffect.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

namespace {

using Sheet = i3DEffect::Sheet;
using Matrix = i3DEffect::Matrix;

class Effect3D : public GPUImageTest
{
protected:
    QImage rendered(const std::vector<Sheet>& sheets, int width = 160, int height = 90,
                    const NormalisedRGB& ground = {0, 0, 0, 1})
    {
        const Tq::Ptr<OpenGLImage> target = makeImage({width, height});
        EXPECT_TRUE(effect.render(sheets, ground, target));
        return textureOf(target);
    }

    OpenGL3DEffect effect;
};

Tq::Ptr<OpenGLImage> plain(int width, int height, const NormalisedRGB& colour)
{
    const Tq::Ptr<OpenGLImage> image = makeImage({width, height});
    clear(*image, colour);
    return image;
}

// Red grows to the right, green downwards.
Tq::Ptr<OpenGLImage> ramps(int width, int height)
{
    const Tq::Ptr<QtImage> host =
        new QtImage({width, height}, QImage::Format_ARGB32_Premultiplied, 1);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            host->image()->setPixel(x, y, qRgb(255 * x / (width - 1), 255 * y / (height - 1), 60));
    return new OpenGLImage(host, iGPUImage::eARGB8);
}

Sheet sheet(const Tq::Ptr<OpenGLImage>& picture)
{
    Sheet result;
    result.front_ = picture;
    return result;
}

Matrix moved(float x, float y, float z)
{
    Matrix matrix;
    matrix.m_[3] = x;
    matrix.m_[7] = y;
    matrix.m_[11] = z;
    return matrix;
}

// Around the y axis: the right edge comes forward for negative angles.
Matrix turned(double degrees)
{
    const double angle = degrees * std::numbers::pi / 180.0;
    Matrix matrix;
    matrix.m_[0] = matrix.m_[10] = static_cast<float>(std::cos(angle));
    matrix.m_[2] = static_cast<float>(std::sin(angle));
    matrix.m_[8] = -matrix.m_[2];
    return matrix;
}

// What the usual camera sees at the middle of a pixel of a sheet that was turned by an angle and
// lies at z: where the ray through the pixel meets it.
struct Hit
{
    bool isHit;
    double u, v, distance, facing;
};

Hit hit(int x, int y, int width, int height, double aspect, double degrees, double z)
{
    const double eye = 0.5 / std::tan(std::numbers::pi / 8.0);
    const double angle = degrees * std::numbers::pi / 180.0;
    const double rx = (2.0 * (x + 0.5) / width - 1.0) * 0.5 * width / height;
    const double ry = (1.0 - 2.0 * (y + 0.5) / height) * 0.5;
    // The ray: (rx t, ry t, eye - eye t). The sheet: along (cos, 0, -sin) and up, through (0, 0,
    // z).
    const double nx = std::sin(angle), nz = std::cos(angle);
    const double t = nz * (eye - z) / (nz * eye - nx * rx);
    const double along = rx * t / std::cos(angle);
    const double up = ry * t;
    return {t > 0.0 && std::abs(along) < aspect / 2 && std::abs(up) < 0.5, along / aspect + 0.5,
            0.5 - up, t, nz};
}

bool isNear(QRgb a, QRgb b, int most)
{
    return std::abs(qRed(a) - qRed(b)) <= most && std::abs(qGreen(a) - qGreen(b)) <= most &&
           std::abs(qBlue(a) - qBlue(b)) <= most && std::abs(qAlpha(a) - qAlpha(b)) <= most;
}

// How many pixels are further from a reference; edges, where neighbours of the reference differ,
// are left out.
template <class Reference>
int wrongPixels(const QImage& image, Reference reference, int most)
{
    int wrong = 0;
    for (int y = 1; y + 1 < image.height(); ++y)
        for (int x = 1; x + 1 < image.width(); ++x) {
            const QRgb expected = reference(x, y);
            bool isInside = true;
            for (int dy = -1; dy <= 1; ++dy)
                for (int dx = -1; dx <= 1; ++dx)
                    isInside = isInside && isNear(reference(x + dx, y + dy), expected, 24);
            wrong += isInside && !isNear(image.pixel(x, y), expected, most);
        }
    return wrong;
}

QRgb rampAt(const Hit& where, double light = 1.0)
{
    const auto byte = [](double value) {
        return static_cast<int>(std::clamp(value, 0.0, 1.0) * 255.0 + 0.5);
    };
    return qRgb(byte(where.u * light), byte(where.v * light), byte(60.0 / 255.0 * light));
}

} // namespace

TEST_F(Effect3D, APictureAsLargeAsTheTargetFillsItAtFirst)
{
    const Tq::Ptr<iHostImage> host = noise({160, 90});
    const Tq::Ptr<OpenGLImage> picture = new OpenGLImage(host, iGPUImage::eARGB8);
    EXPECT_TRUE(imagesAgree(rendered({sheet(picture)}, 160, 90, {0, 0, 0, 0}), pixelsOf(host),
                            "3d-first", {2, 0.0}));
}

// Projected by a ray through each pixel.
TEST_F(Effect3D, TurnedSheetsAreSeenInPerspective)
{
    const Tq::Ptr<OpenGLImage> picture = ramps(160, 90);
    for (const double degrees : {20.0, -35.0, 60.0}) {
        Sheet page = sheet(picture);
        page.model_ = turned(degrees);
        const QImage image = rendered({page});
        const int wrong = wrongPixels(
            image,
            [&](int x, int y) {
                const Hit where = hit(x, y, 160, 90, 160.0 / 90.0, degrees, 0.0);
                return where.isHit ? rampAt(where) : qRgb(0, 0, 0);
            },
            4);
        EXPECT_EQ(wrong, 0) << degrees;
    }
}

// Two sheets that cross each other: at each pixel the nearer one is seen, whatever their order.
TEST_F(Effect3D, NearerSheetsHideFartherOnes)
{
    Sheet red = sheet(plain(90, 90, {1, 0, 0})), green = sheet(plain(90, 90, {0, 1, 0}));
    red.model_ = turned(40.0);
    green.model_ = turned(-40.0);
    const auto reference = [](int x, int y) {
        const Hit first = hit(x, y, 160, 90, 1.0, 40.0, 0.0),
                  second = hit(x, y, 160, 90, 1.0, -40.0, 0.0);
        if (!first.isHit && !second.isHit)
            return qRgb(0, 0, 0);
        const bool firstIsNearer =
            first.isHit && (!second.isHit || first.distance < second.distance);
        return firstIsNearer ? qRgb(255, 0, 0) : qRgb(0, 255, 0);
    };
    EXPECT_EQ(wrongPixels(rendered({red, green}), reference, 1), 0);
    EXPECT_EQ(wrongPixels(rendered({green, red}), reference, 1), 0);
}

TEST_F(Effect3D, LightFallsByLambertsLawOnBothSides)
{
    const Tq::Ptr<OpenGLImage> picture = plain(90, 90, {1, 1, 1});
    i3DEffect::Light light;
    light.direction_ = {0.0f, 0.0f, -3.0f}; // from behind the viewer
    light.colour_ = {0.5f, 0.25f, 0.5f};
    light.ambient_ = {0.25f, 0.0f, 0.5f};
    effect.setLight(light);
    for (const double degrees : {0.0, 30.0, 60.0, 210.0}) {
        Sheet page = sheet(picture);
        page.model_ = turned(degrees);
        const double cosine = std::abs(std::cos(degrees * std::numbers::pi / 180.0));
        // Light comes against the front: from behind, the back is in the light.
        const QRgb middle = rendered({page}).pixel(80, 45);
        EXPECT_NEAR(qRed(middle), 255 * (0.25 + 0.5 * cosine), 2) << degrees;
        EXPECT_NEAR(qGreen(middle), 255 * 0.25 * cosine, 2) << degrees;
        EXPECT_NEAR(qBlue(middle), 255 * (0.5 + 0.5 * cosine), 2) << degrees;
    }
    light.direction_ = {0.0f, 0.0f, 1.0f};
    effect.setLight(light);
    EXPECT_NEAR(qRed(rendered({sheet(picture)}).pixel(80, 45)), 64, 2) << "lit from behind";
    effect.setLightOff();
    EXPECT_EQ(rendered({sheet(picture)}).pixel(80, 45), 0xFFFFFFFF);
}

// The left half lies flat, the right half is bent over a quarter of a cylinder towards the viewer.
TEST_F(Effect3D, AMeshBendsThePicture)
{
    Sheet page = sheet(ramps(160, 160));
    page.columns_ = 64;
    page.rows_ = 2;
    const double radius = 0.5 / (std::numbers::pi / 2.0);
    for (int row = 0; row <= 2; ++row)
        for (int column = 0; column <= 64; ++column) {
            const double u = column / 64.0, bend = std::max(u - 0.5, 0.0) / radius;
            i3DEffect::MeshPoint point;
            point.place_ = {static_cast<float>(std::min(u, 0.5) - 0.5 + radius * std::sin(bend)),
                            0.5f - static_cast<float>(row) / 2.0f,
                            static_cast<float>(radius * (1.0 - std::cos(bend)))};
            point.u_ = static_cast<float>(u);
            point.v_ = static_cast<float>(row) / 2.0f;
            page.mesh_.push_back(point);
        }
    i3DEffect::Light light;
    light.direction_ = {0.0f, 0.0f, -1.0f};
    effect.setLight(light);
    const QImage image = rendered({page}, 200, 200);
    // Along the middle row: from the camera to the curve, sought by halving.
    const double eye = 0.5 / std::tan(std::numbers::pi / 8.0);
    const auto placeAt = [&](double u, double& cosine) {
        const double bend = std::max(u - 0.5, 0.0) / radius;
        const double px = std::min(u, 0.5) - 0.5 + radius * std::sin(bend);
        const double pz = radius * (1.0 - std::cos(bend));
        cosine = std::cos(bend);
        return (px / (eye - pz) * eye / 0.5 + 1.0) * 100.0;
    };
    double cosine = 0.0;
    for (double u = 0.05; u < 0.9; u += 0.1) {
        const int x = static_cast<int>(placeAt(u, cosine));
        const QRgb pixel = image.pixel(x, 100);
        EXPECT_NEAR(qRed(pixel), 255.0 * u * cosine, 8) << "at u = " << u;
    }
}

TEST_F(Effect3D, ASheetsBackHasAPictureOfItsOwn)
{
    Sheet page = sheet(plain(90, 90, {1, 0, 0}));
    page.back_ = ramps(90, 90);
    page.model_ = turned(180.0);
    QImage image = rendered({page});
    EXPECT_NEAR(qRed(image.pixel(45, 45)), 28, 6) << "not mirrored: red grows to the right";
    EXPECT_NEAR(qRed(image.pixel(115, 45)), 227, 6);
    page.back_.reset();
    EXPECT_EQ(rendered({page}).pixel(80, 45), 0xFFFF0000);
}

TEST_F(Effect3D, TranslucentSheetsShowWhatIsBehind)
{
    Sheet far = sheet(plain(90, 90, {1, 0, 0})), near = sheet(plain(90, 90, {0, 0, 1}));
    near.model_ = moved(0.0f, 0.0f, 0.1f);
    near.opacity_ = 0.5f;
    const QRgb both = rendered({far, near}).pixel(80, 45);
    EXPECT_NEAR(qRed(both), 127, 2);
    EXPECT_NEAR(qBlue(both), 128, 2);
    // What a picture does not cover hides nothing, in any order.
    near.opacity_ = 1.0f;
    near.front_ = plain(90, 90, {0, 0, 0, 0});
    EXPECT_EQ(rendered({near, far}).pixel(80, 45), 0xFFFF0000);
    const QRgb ground = rendered({}, 8, 8, {1, 0.5, 0, 0.5}).pixel(3, 3);
    EXPECT_NEAR(qAlpha(ground), 128, 1);
}

TEST_F(Effect3D, TheViewerStandsWhereHeIsPut)
{
    const Tq::Ptr<OpenGLImage> picture = plain(90, 90, {1, 1, 1});
    EXPECT_TRUE(effect.setView({0, 0, 10}, {0, 0, 0}, {0, 1, 0}));
    EXPECT_TRUE(effect.setPerspective(90.0f, 1.0f, 20.0f));
    // 10 away, 20 are seen from top to bottom: one is a twentieth.
    QImage image = rendered({sheet(picture)}, 200, 200);
    EXPECT_EQ(image.pixel(100, 96), 0xFFFFFFFF);
    EXPECT_EQ(image.pixel(100, 94), 0xFF000000);
    EXPECT_EQ(image.pixel(103, 100), 0xFFFFFFFF);
    EXPECT_EQ(image.pixel(106, 100), 0xFF000000);
    EXPECT_TRUE(effect.setView({0, 0, -10}, {0, 0, 0}, {0, -1, 0}));
    EXPECT_EQ(rendered({sheet(picture)}, 200, 200).pixel(100, 96), 0xFFFFFFFF);
    EXPECT_TRUE(effect.setView({0, 0, 30}, {0, 0, 0}, {0, 1, 0}));
    EXPECT_EQ(rendered({sheet(picture)}, 200, 200).pixel(100, 100), 0xFF000000) << "too far";
    EXPECT_FALSE(effect.setView({0, 0, 1}, {0, 0, 1}, {0, 1, 0}));
    EXPECT_FALSE(effect.setView({0, 0, 1}, {0, 0, 0}, {0, 0, 2}));
    const float no = std::numeric_limits<float>::quiet_NaN();
    EXPECT_FALSE(effect.setView({no, 0, 1}, {0, 0, 0}, {0, 1, 0}));
    for (const auto& [degrees, nearest, farthest] : {std::array{0.0f, 1.0f, 2.0f},
                                                     {180.0f, 1.0f, 2.0f},
                                                     {45.0f, 0.0f, 2.0f},
                                                     {45.0f, 2.0f, 2.0f},
                                                     {no, 1.0f, 2.0f},
                                                     {45.0f, no, 2.0f},
                                                     {45.0f, 1.0f, no}})
        EXPECT_FALSE(effect.setPerspective(degrees, nearest, farthest));
}

TEST_F(Effect3D, WhatCannotBeDrawnIsLeftOut)
{
    const Tq::Ptr<OpenGLImage> picture = plain(8, 8, {1, 1, 1});
    Sheet wrongSize = sheet(picture), noNumber = sheet(picture), tooMany = sheet(picture),
          behind = sheet(picture), none;
    wrongSize.mesh_.resize(5);
    noNumber.model_.m_[0] = std::numeric_limits<float>::infinity();
    tooMany.columns_ = tooMany.rows_ = std::numeric_limits<int>::max();
    tooMany.mesh_.resize(1);
    behind.model_ = moved(0.0f, 0.0f, 5.0f);
    EXPECT_EQ(rendered({wrongSize, noNumber, tooMany, behind, none}).pixel(80, 45), 0xFF000000);
    EXPECT_FALSE(effect.render({}, {}, {}));
    EXPECT_FALSE(effect.render({}, {}, makeImage({16, 16}, iGPUImage::eUYVY)));
}

TEST_F(Effect3D, ATargetMayBeAmongThePictures)
{
    const Tq::Ptr<OpenGLImage> target = plain(64, 64, {0, 1, 0});
    Sheet small = sheet(target);
    small.model_.m_[0] = small.model_.m_[5] = 0.5f;
    EXPECT_TRUE(effect.render({small}, {1, 0, 0}, target));
    const QImage image = textureOf(target);
    EXPECT_EQ(image.pixel(32, 32), 0xFF00FF00);
    EXPECT_EQ(image.pixel(4, 4), 0xFFFF0000);
}
