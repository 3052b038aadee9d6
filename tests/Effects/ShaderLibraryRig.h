#pragma once

#include <OS/Effects/iShaderEffect.h>

#include <QImage>
#include <array>
#include <functional>
#include <string>
#include <utility>
#include <vector>

/// Four numbers with a fraction: red, green, blue and alpha, premultiplied, unless said otherwise.
struct Pixel
{
    double r = 0, g = 0, b = 0, a = 0;

    friend Pixel operator+(const Pixel& x, const Pixel& y)
    {
        return {x.r + y.r, x.g + y.g, x.b + y.b, x.a + y.a};
    }
    friend Pixel operator*(const Pixel& x, double by)
    {
        return {x.r * by, x.g * by, x.b * by, x.a * by};
    }
};

/// A picture as references look at it: pixels by number, repeated beyond its edges.
class Picture
{
public:
    explicit Picture(const QImage& image);

    int width() const { return image_.width(); }
    int height() const { return image_.height(); }
    const QImage& image() const { return image_; }
    Pixel at(int x, int y) const;
    /// Between the centres of pixels: x and y count pixels from the corner.
    Pixel between(double x, double y) const;

private:
    QImage image_;
};

/// The effects that are installed, drawn by GL: ShaderLibrary("Blur").
class ShaderLibrary
{
public:
    using Sources = std::vector<std::pair<std::string, QImage>>;

    explicit ShaderLibrary(const std::string& file);

    bool isLoaded() const { return static_cast<bool>(effect_); }
    iShaderEffect& effect() const { return *effect_; }
    void set(const std::string& parameter, std::vector<float> values) const;
    /// @return a null image where nothing was drawn
    QImage render(const std::string& technique, const Sources& sources, QSize size) const;
    /// The same as a description draws it with a renderer, blended over a ground: a part of the
    /// first picture, at its place in there.
    QImage drawOver(const QImage& ground, const std::string& technique, const Sources& sources,
                    const QRect& part) const;

    /// The files of the library, without the extension.
    static std::vector<std::string> names();

private:
    Tq::Ptr<iShaderEffect> effect_;
};

/// A picture that shows mistakes: ramps, hard edges, noise, and all degrees of alpha.
QImage testPicture(int width, int height, bool opaque, unsigned int seed = 1);

/// What a reference says of every pixel.
QImage expectedPicture(QSize size, const std::function<Pixel(int x, int y)>& pixelAt);
