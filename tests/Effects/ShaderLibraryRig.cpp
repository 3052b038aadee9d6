#include "Effects/ShaderLibraryRig.h"

#include "OS/Mac/Core/PathText.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"
#include "OS/Mac/Painting/QtImage.h"

#include <OS.h>
#include <OS/Files/iShell.h>
#include <OS/Media/iMediaServices.h>
#include <OS/Primitives/iGraphicPrimitivesRenderer.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <random>

namespace {

std::filesystem::path folder()
{
    const LightweightString<wchar_t> data = OS()->shell()->getFolderLocation(iShell::eResources);
    return std::filesystem::path(OSInternal::pathToSystem(data).c_str()) / "Shaders";
}

Tq::Ptr<iGPUImage> uploaded(const QImage& picture)
{
    const Tq::Ptr<QtImage> host =
        new QtImage({picture.width(), picture.height()}, QImage::Format_ARGB32_Premultiplied, 1);
    *host->image() = picture.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    return OS()->mediaServices()->copyToGPU(host, iGPUImage::eARGB8);
}

QImage downloaded(const Tq::Ptr<iGPUImage>& image)
{
    const Tq::Ptr<QtImage> host = OS()->mediaServices()->copyToHost(image).dynamicCast<QtImage>();
    return host ? host->image()->copy() : QImage();
}

} // namespace

Picture::Picture(const QImage& image)
    : image_(image.convertToFormat(QImage::Format_ARGB32_Premultiplied))
{
}

Pixel Picture::at(int x, int y) const
{
    const QRgb word = reinterpret_cast<const QRgb*>(
        image_.constScanLine(std::clamp(y, 0, height() - 1)))[std::clamp(x, 0, width() - 1)];
    return {qRed(word) / 255.0, qGreen(word) / 255.0, qBlue(word) / 255.0, qAlpha(word) / 255.0};
}

Pixel Picture::between(double x, double y) const
{
    const double left = std::floor(x - 0.5), top = std::floor(y - 0.5);
    const double right = x - 0.5 - left, low = y - 0.5 - top;
    const int i = static_cast<int>(left), j = static_cast<int>(top);
    return (at(i, j) * (1 - right) + at(i + 1, j) * right) * (1 - low) +
           (at(i, j + 1) * (1 - right) + at(i + 1, j + 1) * right) * low;
}

ShaderLibrary::ShaderLibrary(const std::string& file)
{
    OpenGLUtils::instance();
    effect_ = OS()->mediaServices()->createShaderEffect(
        OSInternal::pathFromSystem((folder() / (file + ".fx")).string().c_str()));
}

std::vector<std::string> ShaderLibrary::names()
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder()))
        if (entry.path().extension() == ".fx")
            names.push_back(entry.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

void ShaderLibrary::set(const std::string& parameter, std::vector<float> values) const
{
    const Tq::Ptr<iShaderParam> param = effect_->getParam(parameter.c_str());
    if (param)
        param->setValues(values.data(), static_cast<unsigned int>(values.size()));
    else
        std::printf("no parameter %s\n", parameter.c_str());
}

QImage ShaderLibrary::render(const std::string& technique, const Sources& sources, QSize size) const
{
    std::vector<iShaderEffect::Source> resources;
    for (const auto& [name, picture] : sources)
        resources.push_back({name.c_str(), uploaded(picture)});
    const Tq::Ptr<iGPUImage> target =
        OS()->mediaServices()->createGPUSurface({size.width(), size.height()}, iGPUImage::eARGB8);
    if (!effect_->setTechnique(technique.c_str()) || !effect_->render(resources, target))
        return {};
    return downloaded(target);
}

QImage ShaderLibrary::drawOver(const QImage& ground, const std::string& technique,
                               const Sources& sources, const QRect& part) const
{
    const Tq::Ptr<iGPUImage> target = uploaded(ground);
    {
        ImageDescriptionEx desc;
        desc.image_ = uploaded(sources.front().second).dynamicCast<iImageBase>();
        for (std::size_t i = 1; i < sources.size(); ++i)
            desc.technique_.values_.push_back(iShaderParamValue::makeSource(
                sources[i].first.c_str(), uploaded(sources[i].second)));
        desc.technique_.effect_ = effect_;
        desc.technique_.name_ = technique.c_str();
        desc.sourceRect_ =
            desc.destRect_ = {static_cast<float>(part.left()), static_cast<float>(part.top()),
                              static_cast<float>(part.left() + part.width()),
                              static_cast<float>(part.top() + part.height())};
        desc.blend_ = true;
        target->getPrimitivesRenderer(true)->render(desc);
    }
    return downloaded(target);
}

QImage testPicture(int width, int height, bool opaque, unsigned int seed)
{
    std::mt19937 random(seed);
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const int noise = static_cast<int>(random() % 64);
            const bool square = (x / 7 + y / 5) % 3 == 0;
            const int r = square ? 255 - noise : x * 255 / (width - 1);
            const int g = (x / 16 + static_cast<int>(seed)) % 2 ? y * 255 / (height - 1) : noise;
            const int b = square ? noise * 4 : 255 - x * 128 / width;
            const int a = opaque ? 255 : std::min(255, (x + y) * 320 / (width + height));
            image.setPixel(x, y, qPremultiply(qRgba(r, g, b, a)));
        }
    return image;
}

QImage expectedPicture(QSize size, const std::function<Pixel(int x, int y)>& pixelAt)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    const auto byte = [](double value) {
        return static_cast<int>(std::lround(std::clamp(value, 0.0, 1.0) * 255.0));
    };
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x) {
            const Pixel pixel = pixelAt(x, y);
            reinterpret_cast<QRgb*>(image.scanLine(y))[x] =
                qRgba(byte(pixel.r), byte(pixel.g), byte(pixel.b), byte(pixel.a));
        }
    return image;
}
