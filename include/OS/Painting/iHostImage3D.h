#pragma once

#include <OS/Core/iObject.h>
#include <OS/Primitives/NormalisedRGB.h>
#include <OS/Primitives/XYZ.h>

/// A cube of colours in main memory, supplied by the application: a colour look-up table.
class OS_API iHostImage3D : public virtual iObject
{
public:
    ~iHostImage3D() override = default;

    virtual XYZ<unsigned char> getSize() const = 0;
    /// @param x,y,z below the size
    /// @return a colour whose components may lie outside 0 to 1
    virtual NormalisedRGB getColour(unsigned char x, unsigned char y, unsigned char z) const = 0;
};
