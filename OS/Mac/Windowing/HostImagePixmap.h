#pragma once

#include <OS/Painting/iHostImage.h>

#include <QPixmap>

/// A copy of a host image's pixels for icons and cursors, at the image's logical size.
/// @return a null pixmap when the image is null or has no pixels
QPixmap toPixmap(const Tq::Ptr<iHostImage>& image);
