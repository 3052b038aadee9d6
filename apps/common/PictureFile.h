#pragma once

#include "common/Text.h"

#include <OS/Core/Ptr.h>
#include <OS/Painting/iHostImage.h>

namespace App {

/// Writes a picture in the format that the extension names: .png, .jpg, .bmp, .tif or .ppm.
///
/// Written beside the target under another name and moved there: an old file stays whole until the
/// new one is.
///
/// @return what went wrong, in one line, or nothing
Text savePicture(const Tq::Ptr<iHostImage>& image, const Text& path);

/// Writes a picture into a folder, which is made where it is missing, under a name that nothing has
/// yet: "NAME.png", "NAME 2.png" and so on.
///
/// @param name without what a file name cannot hold, see fileNameOf
/// @param path gets the file's path @return what went wrong, in one line, or nothing
Text saveNewPicture(const Tq::Ptr<iHostImage>& image, const Text& folder, const Text& name,
                    Text& path, const Text& extension = L"png");

/// A text as a part of a file name: of a sound length, without separators, control characters and
/// what other systems do not take, and not hidden. Never empty.
Text fileNameOf(const Text& text);

} // namespace App
