#pragma once

#include "OS/Mac/OpenGL/Images/PixelPacking.h"
#include "OS/Mac/Painting/HostPixels.h"

#include <OS/Painting/iHostImage.h>

#include <memory>

/// A host image's pixels as rows of a storage format: the image's own memory where that is what
/// they are, else a packed copy. The image stays open while this lives.
///
/// Colours are premultiplied on the way where the host's are not; pixels without alpha are opaque.
class HostUpload
{
public:
    /// @param host null, an image without pixels, or one of other than 32-bit words that is no
    /// GPUReadySurface gives nothing to upload
    HostUpload(const Tq::Ptr<iHostImage>& host, iGPUImage::eFormat format);

    /// Null where there is nothing to upload. Of an impossible size nothing is packed.
    const void* data() const { return data_; }
    /// All of the image's pixels: more than its logical size where its scale is not 1.
    XY<int> size() const { return size_; }
    /// Texels from one row to the next.
    int texelsToNextRow() const { return texelsToNextRow_; }

private:
    void takeWords(QImage words);

    PixelPacking packing_;
    HostPixels host_;
    Tq::Ptr<iPixelGuard> ready_;
    QImage words_;
    std::unique_ptr<unsigned char[]> packed_;
    XY<int> size_;
    const void* data_ = nullptr;
    int texelsToNextRow_ = 0;
};
