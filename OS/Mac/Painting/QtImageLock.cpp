#include "OS/Mac/Painting/QtImageLock.h"

#include "OS/Mac/Painting/QtImage.h"

QtImageLock::QtImageLock(const Tq::Ptr<const QtImage>& owner)
    : owner_(owner), image_(owner->image())
{
}

// Not bits(): that would move the pixels away from under an open painter if somebody had copied the
// image.
std::uint8_t* QtImageLock::getPixels()
{
    return const_cast<std::uint8_t*>(image_->constBits());
}

const std::uint8_t* QtImageLock::getPixels() const
{
    return image_->constBits();
}
