#pragma once

#include "common/Text.h"

#include <OS/Core/Ptr.h>
#include <OS/Painting/iHostImage.h>

namespace App {

/// Writes a picture in the format that the extension names: .png, .jpg, .bmp, .tif or .ppm.
/// @return what went wrong, in one line, or nothing
Text savePicture(const Tq::Ptr<iHostImage>& image, const Text& path);

} // namespace App
