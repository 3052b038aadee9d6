// Saving pictures against the libraries called directly, and pictures of the screen against the
// server's own shared memory. Files go to memory, where flushing is free: the libraries called
// directly would not flush.

#include "support/PairedRuns.h"

#include <OS.h>
#include <OS/Media/iMediaServices.h>

#include <QImage>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>

#include <tiffio.h>

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XShm.h>
#include <sys/ipc.h>
#include <sys/shm.h>

namespace {

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;

iMediaServices* media()
{
    return OS()->mediaServices();
}

class Folder
{
public:
    Folder()
    {
        char name[] = "/dev/shm/media-bench-XXXXXX";
        if (!mkdtemp(name))
            std::abort();
        path_ = name;
    }
    ~Folder() { std::filesystem::remove_all(path_); }
    std::string file(const char* name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

LightweightString<wchar_t> wide(const std::string& path)
{
    return LightweightString<wchar_t>(std::wstring(path.begin(), path.end()).c_str());
}

// A picture with some of everything: gradients, noise, flat and translucent parts.
QImage makePicture()
{
    QImage image(kWidth, kHeight, QImage::Format_ARGB32);
    std::uint32_t noise = 1;
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) {
            noise = noise * 1664525 + 1013904223;
            const int grain = x > kWidth / 2 ? static_cast<int>(noise >> 28) : 0;
            image.setPixel(x, y, qRgba(x / 8, y / 5, grain * 8, y > 1000 ? 128 : 255));
        }
    return image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

Tq::Ptr<iHostImage> surfaceOf(const QImage& image)
{
    const Tq::Ptr<iHostImage> surface = media()->createHostSurface({kWidth, kHeight});
    const Tq::Ptr<iPixelGuard> guard = surface->lock();
    std::memcpy(guard->getPixels(), image.constBits(),
                static_cast<std::size_t>(image.sizeInBytes()));
    return surface;
}

double saveOurs(const Tq::Ptr<iHostImage>& surface, const std::string& path)
{
    const LightweightString<wchar_t> file = wide(path);
    return Bench::timed(1e6, [&] {
        if (!media()->saveImage(surface, file))
            std::abort();
    });
}

double saveWithLibtiff(const QImage& image, const std::string& path)
{
    return Bench::timed(1e6, [&] {
        TIFF* tiff = TIFFOpen(path.c_str(), "w");
        for (const auto& [tag, value] : {std::pair(TIFFTAG_IMAGEWIDTH, kWidth),
                                         {TIFFTAG_IMAGELENGTH, kHeight},
                                         {TIFFTAG_SAMPLESPERPIXEL, 4},
                                         {TIFFTAG_BITSPERSAMPLE, 8},
                                         {TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT},
                                         {TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG},
                                         {TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB}})
            TIFFSetField(tiff, static_cast<std::uint32_t>(tag), value);
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff, 0));
        const QImage rows = image.convertToFormat(QImage::Format_RGBA8888);
        for (int y = 0; y < kHeight; ++y)
            TIFFWriteScanline(tiff, const_cast<uchar*>(rows.constScanLine(y)),
                              static_cast<std::uint32_t>(y), 0);
        TIFFClose(tiff);
    });
}

double saveWithToolkit(const QImage& image, const std::string& path)
{
    return Bench::timed(1e6, [&] {
        if (!image.save(QString::fromStdString(path), "PNG"))
            std::abort();
    });
}

double loadOurs(const std::string& path)
{
    const LightweightString<wchar_t> file = wide(path);
    return Bench::timed(1e6, [&] { Bench::keep(media()->loadImage(file)); });
}

double loadWithLibtiff(const std::string& path)
{
    return Bench::timed(1e6, [&] {
        TIFF* tiff = TIFFOpen(path.c_str(), "r");
        QImage image(kWidth, kHeight, QImage::Format_ARGB32);
        TIFFReadRGBAImageOriented(tiff, kWidth, kHeight,
                                  reinterpret_cast<std::uint32_t*>(image.bits()),
                                  ORIENTATION_TOPLEFT, 1);
        TIFFClose(tiff);
        Bench::keep(image.rgbSwapped());
    });
}

// The whole screen into one segment of shared memory, as a program would that does nothing else.
class SharedScreen
{
public:
    SharedScreen() : display_(XOpenDisplay(nullptr))
    {
        const int screen = DefaultScreen(display_);
        image_ =
            XShmCreateImage(display_, DefaultVisual(display_, screen),
                            static_cast<unsigned>(DefaultDepth(display_, screen)), ZPixmap, nullptr,
                            &segment_, static_cast<unsigned>(DisplayWidth(display_, screen)),
                            static_cast<unsigned>(DisplayHeight(display_, screen)));
        segment_.shmid = shmget(IPC_PRIVATE, bytes(), IPC_CREAT | 0600);
        segment_.shmaddr = image_->data = static_cast<char*>(shmat(segment_.shmid, nullptr, 0));
        segment_.readOnly = False;
        XShmAttach(display_, &segment_);
        XSync(display_, False);
        shmctl(segment_.shmid, IPC_RMID, nullptr);
    }
    ~SharedScreen()
    {
        XShmDetach(display_, &segment_);
        XDestroyImage(image_);
        XCloseDisplay(display_);
    }

    std::size_t bytes() const
    {
        return static_cast<std::size_t>(image_->bytes_per_line) *
               static_cast<std::size_t>(image_->height);
    }
    void grab() { XShmGetImage(display_, DefaultRootWindow(display_), image_, 0, 0, AllPlanes); }
    const char* pixels() const { return image_->data; }

private:
    Display* display_;
    XShmSegmentInfo segment_{};
    XImage* image_;
};

void saving()
{
    const Folder folder;
    const QImage picture = makePicture();
    const Tq::Ptr<iHostImage> surface = surfaceOf(picture);
    const std::string ours = folder.file("ours.tif"), theirs = folder.file("theirs.tif");
    const std::string oursPng = folder.file("ours.png"), theirsPng = folder.file("theirs.png");
    Bench::printHeader("Saving 1920 x 1080, and loading", "ms");
    Bench::compare("TIFF, saving",
                   {{"ours", [&] { return saveOurs(surface, ours); }},
                    {"libtiff", [&] { return saveWithLibtiff(picture, theirs); }}},
                   {{{"libtiff"}, 1.05}}, 21);
    Bench::compare("TIFF, loading",
                   {{"ours", [&] { return loadOurs(theirs); }},
                    {"libtiff", [&] { return loadWithLibtiff(theirs); }}},
                   {{{"libtiff"}, 1.05}}, 21);
    Bench::compare("PNG, saving",
                   {{"ours", [&] { return saveOurs(surface, oursPng); }},
                    {"QImage::save", [&] { return saveWithToolkit(picture, theirsPng); }}},
                   {{{"QImage::save"}, 1.05}}, 9);
}

void grabbing()
{
    SharedScreen shared;
    std::unique_ptr<char[]> copy(new char[shared.bytes()]);
    const auto picture = [] {
        const Tq::Ptr<iHostImage> grabbed = media()->grabScreen({});
        if (!grabbed)
            std::abort();
        return grabbed;
    };
    Bench::printHeader("A picture of a screen of 1280 x 1024", "us");
    constexpr int kGrabs = 20;
    const auto many = [](auto code) {
        return Bench::timed(kGrabs * 1e3, [&] {
            for (int i = 0; i < kGrabs; ++i)
                code();
        });
    };
    Bench::compare("taken",
                   {{"ours", [&] { return many([&] { Bench::keep(picture()); }); }},
                    {"XShmGetImage", [&] { return many([&] { shared.grab(); }); }}},
                   {{{"XShmGetImage"}, 1.1}}, 31);
    Bench::compare("taken and locked",
                   {{"ours", [&] { return many([&] { Bench::keep(picture()->lock()); }); }},
                    {"XShmGetImage and a copy",
                     [&] {
                         return many([&] {
                             shared.grab();
                             copy.reset(new char[shared.bytes()]);
                             std::memcpy(copy.get(), shared.pixels(), shared.bytes());
                             Bench::keep(copy);
                         });
                     }}},
                   {{{"XShmGetImage and a copy"}, 1.1}}, 31);
}

} // namespace

int main()
{
    TIFFSetWarningHandler(nullptr);
    saving();
    if (std::getenv("DISPLAY")) {
        media()->createHostSurfaceFont(L"", 12, 0); // brings the application up
        grabbing();
    }
}
