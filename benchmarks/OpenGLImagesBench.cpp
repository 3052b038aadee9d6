// Pictures of 1920 x 1080 on their way to the GPU and back, against copying the same bytes in main
// memory. Milliseconds. Run it in a display: tests/support/with-display build/release/...
#include "support/PairedRuns.h"

#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"
#include "OS/Mac/OpenGL/Images/GPUReadySurface.h"
#include "OS/Mac/OpenGL/Images/OpenGLImage.h"
#include "OS/Mac/OpenGL/Images/OpenGLTextureCache.h"
#include "OS/Mac/Painting/QtImage.h"

#include <cstring>
#include <memory>

namespace {

constexpr int kWidth = 1920, kHeight = 1080;
constexpr std::size_t kBytes = std::size_t{kWidth} * kHeight * 4;
constexpr int kTimes = 10;
constexpr double kMs = 1e6;
// What an upload may take beside the copy itself: finding the texture, the lock, the context.
constexpr double kFixedMs = 0.1;

Tq::Ptr<QtImage> picture()
{
    const Tq::Ptr<QtImage> image(new QtImage({kWidth, kHeight}, QtImage::getDefaultFormat(), 1));
    for (std::size_t i = 0; i < kBytes; ++i)
        image->image()->bits()[i] = static_cast<unsigned char>(i * 31 >> 3);
    return image;
}

// Milliseconds of one call among several.
template <class Code>
double each(Code code)
{
    return Bench::timed(kTimes * kMs, [&] {
        for (int i = 0; i < kTimes; ++i)
            code();
    });
}

// Milliseconds of one call, with what comes before it not counted.
template <class Before, class Code>
double eachAfter(Before before, Code code)
{
    double sum = 0;
    for (int i = 0; i < kTimes; ++i) {
        before();
        sum += Bench::timed(kTimes * kMs, code);
    }
    return sum;
}

void finish()
{
    const OpenGLContextProtector protector;
    glFinish();
}

} // namespace

int main()
{
    OpenGLUtils::instance();
    if (!OpenGLUtils::isInitialised())
        return 1;
    const Tq::Ptr<QtImage> host = picture();
    const auto memory = std::make_unique<unsigned char[]>(kBytes);
    std::memset(memory.get(), 1, kBytes);
    const unsigned char* pixels = host->image()->constBits();

    const auto upload = [&] {
        Bench::keep(Tq::Ptr<OpenGLImage>(new OpenGLImage(host, iGPUImage::eARGB8)));
        finish();
    };
    const Bench::Contender copy{"memcpy", [&] {
                                    return each([&] {
                                        std::memcpy(memory.get(), pixels, kBytes);
                                        Bench::keep(memory[kBytes / 2]);
                                    });
                                }};
    const Bench::Contender copyIntoNew{
        "memcpy into a new image", [&] {
            return each([&] {
                const Tq::Ptr<QtImage> made(
                    new QtImage({kWidth, kHeight}, QtImage::getDefaultFormat(), 1));
                std::memcpy(made->image()->bits(), pixels, kBytes);
                Bench::keep(made->image()->constBits()[kBytes / 2]);
            });
        }};

    Bench::printHeader("Uploads", "ms");
    Bench::compare("recycled texture, 0.1 ms taken off",
                   {{"ours", [&] { return each(upload) - kFixedMs; }}, copy}, {{{"memcpy"}, 1.3}});
    Bench::compare(
        "new texture",
        {{"ours",
          [&] { return eachAfter([] { OpenGLTextureCache::instance().clear(); }, upload); }},
         copy},
        {{{"memcpy"}, 10.0}});

    Bench::printHeader("Reading back", "ms");
    const Tq::Ptr<OpenGLImage> image(new OpenGLImage(host, iGPUImage::eARGB8));
    const Bench::Contender read{
        "ours",
        [&] { return each([&] { Bench::keep(OpenGLUtils::instance().copyToHost(image)); }); }};
    Bench::compare("copyToHost", {read, copy, copyIntoNew},
                   {{{"memcpy"}, 1.7}, {{"memcpy into a new image"}, 1.7}});

    Bench::printHeader("Packed formats, recycled", "ms");
    const struct
    {
        const char* name;
        iGPUImage::eFormat format;
    } formats[] = {{"RGB, 24 bits", iGPUImage::eRGB8},
                   {"ARGB, 64 bits", iGPUImage::eARGB16},
                   {"ARGB 2:10:10:10", iGPUImage::eARGB2101010},
                   {"4:2:2", iGPUImage::eUYVY}};
    for (const auto& f : formats) {
        const auto uploadPacked = [&](const Tq::Ptr<iHostImage>& source) {
            return each([&] {
                Bench::keep(Tq::Ptr<OpenGLImage>(new OpenGLImage(source, f.format)));
                finish();
            });
        };
        const Tq::Ptr<iHostImage> ready = GPUReadySurface::create({kWidth, kHeight}, f.format);
        Bench::compare(f.name,
                       {{"packed on the way", [&] { return uploadPacked(host); }},
                        {"as it is", [&] { return uploadPacked(ready); }}},
                       {{{"as it is"}, 0.0}});
    }
    OpenGLUtils::shutdown();
    return 0;
}
