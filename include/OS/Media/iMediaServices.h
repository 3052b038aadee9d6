#pragma once

#include <OS/Compute/GPUComputeDevice.h>
#include <OS/Compute/iGPUComputeContext.h>
#include <OS/Core/LightweightString.h>
#include <OS/Core/Ptr.h>
#include <OS/Core/iDLL.h>
#include <OS/Core/iObject.h>
#include <OS/Effects/i3DEffect.h>
#include <OS/Effects/iFXFile.h>
#include <OS/Effects/iShaderEffect.h>
#include <OS/Media/iAudioBuffer.h>
#include <OS/OpenGL/iGPUImage.h>
#include <OS/OpenGL/iGPUImage3D.h>
#include <OS/Painting/iFont.h>
#include <OS/Painting/iHostImage.h>
#include <OS/Painting/iHostImage3D.h>
#include <OS/Threads/iCriticalSection.h>

#include <vector>

/// Still images and surfaces, in main memory and on the GPU, reached as OS()->mediaServices().
///
/// Loading and saving may run on any thread, each image on one thread at a time. So may what is of
/// the GPU, after its first use on the thread of the Qt application object, which starts GL (a
/// window for video does so too). Where GL cannot be used each call prints
/// "OpenGLUtils::instance() : %s\n" with the reason, and answers null.
class OS_API iMediaServices : public iObject
{
public:
    /// One kind of image file.
    struct ImageType
    {
        std::vector<LightweightString<wchar_t>> extensions_; ///< upper case, without the dot
        LightweightString<wchar_t> description_;
    };

    /// Appends the kinds of image file that can be loaded.
    virtual void getLoadableImageTypes(std::vector<ImageType>& types) = 0;
    /// Appends exactly the loadable kinds.
    virtual void getSavableImageTypes(std::vector<ImageType>& types) = 0;

    /// Reads a picture; the reader is chosen by the file name's extension.
    ///
    /// @return null when there is no such file. A file that cannot be read gives an image without
    /// pixels,
    ///         after "QtImage::QtImage( %s ) failed\n".
    /// @throw Tq::Exception::RuntimeError when a JPEG stream is broken
    virtual Tq::Ptr<iHostImage> loadImage(const LightweightString<wchar_t>& path) = 0;
    /// Always null: pictures in resource files are not supported.
    virtual Tq::Ptr<iHostImage> loadImage(const iDLL::Resource& resource) = 0;
    /// Always null: thumbnails are the caller's to make.
    virtual Tq::Ptr<iHostImage> loadThumbnail(const LightweightString<wchar_t>& path,
                                              unsigned int size) = 0;

    /// Writes a picture in the format that the extension names.
    /// @return false when the image has no pixels, the format is unknown or the file cannot be
    /// written
    virtual bool saveImage(const Tq::Ptr<iHostImage>& image,
                           const LightweightString<wchar_t>& path) = 0;

    /// A picture in main memory, 32 bits premultiplied, transparent black, scale 1.
    /// @return null when a side is below 1 or the picture would exceed 512 megapixels
    virtual Tq::Ptr<iHostImage> createHostSurface(const XY<int>& size) = 0;
    /// A font for drawing on host surfaces.
    /// @param name a typeface; one that is not installed falls back to the default font's family
    /// @param size pixels
    /// @param flags iFont::eStyle bits
    virtual Tq::Ptr<iFont> createHostSurfaceFont(const LightweightString<wchar_t>& name,
                                                 unsigned int size, unsigned int flags) = 0;

    /// An image on the GPU, to be drawn on; its pixels are whatever was there.
    /// @param size pixels; sides below 0 give an image without a texture, deliberately
    /// @return null when a side is 0 or larger than the driver allows
    virtual Tq::Ptr<iGPUImage> createGPUSurface(const XY<int>& size, iGPUImage::eFormat format) = 0;
    /// A picture in main memory that copyToGPU in the same format uploads as it is: for decoders,
    /// which write through its guard. Rows lie next to each other as iGPUImage::eFormat says, and
    /// are black at first; those of 32-bit words are a plain surface, transparent black.
    /// It can be locked, also without GL, but drawn on only where it is of 32-bit words.
    /// @return null when a side is below 1, when the picture would exceed 512 megapixels, or is
    /// too narrow for the format
    virtual Tq::Ptr<iHostImage> createGPUReadySurface(const XY<int>& size,
                                                      iGPUImage::eFormat format) = 0;
    /// Reads an image back as it is stored, in 32-bit words: packed formats come with the width of
    /// their texture, deliberately, and 16-bit components as 8 bits.
    /// @return null for an image that has no texture, such as a window's back buffer
    virtual Tq::Ptr<iHostImage> copyToHost(const Tq::Ptr<iGPUImage>& image) = 0;
    /// Copies a picture to the GPU, premultiplied; video formats are ITU-R BT.709 in video range.
    /// @return null for an image without pixels, and for one that is too large for the driver or
    /// too narrow for the format
    virtual Tq::Ptr<iGPUImage> copyToGPU(const Tq::Ptr<iHostImage>& image,
                                         iGPUImage::eFormat format) = 0;
    /// The lock that all work with GL happens under.
    virtual Tq::Ptr<iCriticalSection> getGPULock() = 0;
    /// Makes no GL context current on the calling thread; quiet without GL.
    virtual void resetGPUContext() = 0;
    /// Gives back the memory that is kept for later: on the GPU for images and drawing, in main
    /// memory for pictures of the screen. Quiet without GL.
    virtual void clearCaches() = 0;
    /// Always null: cubes of colours are the effects' to make.
    virtual Tq::Ptr<iGPUImage3D> createGPUImage3D(const Tq::Ptr<iHostImage3D>& image) = 0;
    /// Always null.
    virtual Tq::Ptr<iHostImage3D> copyToHost(const Tq::Ptr<iGPUImage3D>& image) = 0;

    /// A picture of the whole main display as it is now, in the display's own pixels: it can be
    /// locked but not drawn on. The argument is not used. On the thread of the event loop.
    /// @return null, after "MediaServices::grabScreen() : %s\n" with the reason, where the desktop
    /// does not allow it
    virtual Tq::Ptr<iHostImage> grabScreen(XY<int> size) = 0;
    /// Records the whole display, with the mouse, into the movie "ScreenCaptureTest.mov" in the
    /// user's movies folder, in place of an earlier one: H.264, or MPEG-4 where the system has no
    /// encoder for that. A test facility, deliberately: it blocks for the movie's five seconds, and
    /// has nothing to give back. Any thread.
    ///
    /// A recording that fails, or that the desktop does not allow (Wayland), leaves an earlier
    /// movie, and prints "MediaServices::beginScreenCapture() : %s\n" with the reason and an
    /// assertion.
    ///
    /// @param path becomes the movie's, when there is one
    /// @param options not used
    /// @return null
    virtual Tq::Ptr<iObject> beginScreenCapture(LightweightString<wchar_t>& path,
                                                const LightweightString<char>& options) = 0;
    /// Does nothing, deliberately: a recording ends by itself.
    virtual void endScreenCapture() = 0;

    /// Always null: sound is not this library's.
    virtual Tq::Ptr<iAudioBuffer> createAudioBuffer(unsigned int size) = 0;
    /// Always 0.
    virtual unsigned int getNumAudioOutputChannels() = 0;

    /// Loads an effect file: techniques made of passes, with parameters, textures and samplers.
    ///
    /// Writes "Compiling shader : %s .. " with the path, and "done\n" or "FAILED\n", to standard
    /// error; iShaderEffect says what else an effect does. What is wrong with the file is printed:
    /// "Failed to load shader : %s (%s)\n" with the compiler's listing.
    /// @return null where it cannot be loaded, or none of its techniques can be used
    virtual Tq::Ptr<iShaderEffect> createShaderEffect(const LightweightString<wchar_t>& path) = 0;
    /// What an effect file says, and what becomes of it, without GL. Prints nothing: the answer has
    /// the listing. Never null.
    virtual Tq::Ptr<iFXFile> compileFXFile(const LightweightString<wchar_t>& path) = 0;
    /// Pictures in space.
    virtual Tq::Ptr<i3DEffect> create3DEffect() = 0;

    /// A font for drawing on what lives on the GPU: images, and the back buffers of video windows.
    /// Text in it is drawn there only, as text in a font for host surfaces is drawn on those only.
    /// @param name, size, flags as for createHostSurfaceFont
    virtual Tq::Ptr<iFont> createGPUSurfaceFont(const LightweightString<wchar_t>& name,
                                                unsigned int size, unsigned int flags) = 0;

    /// A context for compute on a GPU, which shares images with GL where GL has been started: make
    /// something on the GPU first. Any thread; takes the GL lock.
    /// @return null for another type than iGPUComputeContext::eOpenCL, and after the timed log line
    ///         "OpenCLContext::make() : Failed to find any CL platforms" or
    ///         "OpenCLContext::make() : Failed to create a cl_context"
    virtual Tq::Ptr<iGPUComputeContext> createGPUComputeContext(iGPUComputeContext::eType type) = 0;
    /// Appends every device that a compute runtime offers, GPU or not, and which of them a context
    /// made now would be on: it tries them as that does, without a line. Any thread; takes the GL
    /// lock.
    virtual void getGPUComputeDevices(std::vector<GPUComputeDevice>& devices) = 0;
};
