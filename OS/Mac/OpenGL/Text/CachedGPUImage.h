#pragma once

#include <OS.h>
#include <OS/Core/iUtils.h>
#include <OS/OpenGL/iGPUImage.h>

/// A text's picture as the text-image cache holds it. Its time is that of its making: drawing it
/// again does not make it younger, deliberately.
class CachedGPUImage
{
public:
    CachedGPUImage(const Tq::Ptr<iGPUImage>& image, double ratio)
        : image_(image), ratio_(ratio), time_(OS()->utils()->timeNow())
    {
    }

    /// Null where the GPU took none.
    const Tq::Ptr<iGPUImage>& getImage() const { return image_; }
    /// Its pixels for each of a description.
    double getRatio() const { return ratio_; }
    /// iUtils::timeNow() when it was made.
    double getTime() const { return time_; }

    /// The same text for targets of another ratio.
    void replace(const Tq::Ptr<iGPUImage>& image, double ratio)
    {
        image_ = image;
        ratio_ = ratio;
    }

private:
    Tq::Ptr<iGPUImage> image_;
    double ratio_;
    double time_;
};
