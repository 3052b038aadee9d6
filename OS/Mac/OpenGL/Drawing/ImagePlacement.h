#pragma once

#include "OS/Mac/OpenGL/Drawing/DrawingTarget.h"
#include "OS/Mac/OpenGL/Drawing/Quads.h"

#include <OS/Primitives/ImageDescriptionEx.h>
#include <OS/Primitives/Rectangle.h>

#include <vector>

namespace GLDrawing {

/// What part of an image is drawn where: a source in the image's pixels, a destination in pixels of
/// the target. Pure.
class ImagePlacement
{
public:
    /// Both rectangles start at their left and top, with their width and height.
    ImagePlacement(const Tq::Rectangle<int>& source, const Tq::Rectangle<int>& dest, double ratio);
    /// What is no number, or turned round, draws nothing.
    ImagePlacement(const ImageDescriptionEx::Rect& source, const ImageDescriptionEx::Rect& dest,
                   double ratio);
    /// A whole image of the target's own pixels.
    static ImagePlacement pixels(int left, int top, int width, int height);

    bool isEmpty() const;
    /// Counts the source in other pixels: so many for each that it counted.
    ImagePlacement scaled(double x, double y) const;
    /// What is left of it in an image of that size.
    ImagePlacement within(const XY<int>& size) const;
    /// What of it can be seen.
    ImagePlacement within(const Box& visible) const;
    /// With the source counted from a pixel of the image.
    ImagePlacement relativeTo(const XY<int>& pixel) const;

    /// The whole pixels of the image that are looked at.
    Tq::Rectangle<int> sourcePixels() const;
    /// Each pixel of the image covers exactly one of the target's.
    bool isOneToOne() const;

    /// Softening may look at everything that an image of that size has: the driver's own limit, its
    /// edges, is enough.
    bool takesInAll(const XY<int>& size) const;

    ImageDescriptionEx::Rect source() const;
    ImageDescriptionEx::Rect dest() const;
    /// With the source counted in shares of itself.
    ImagePlacement asShares() const;

    void addTo(std::vector<ImageVertex>& quads) const;
    void addTo(std::vector<ScaledImageVertex>& quads) const;

private:
    struct Area
    {
        double left, top, right, bottom;
    };
    ImagePlacement(const Area& source, const Area& dest)
        : source_(source), dest_(dest), limits_(source)
    {
    }
    void cutSource(const Area& area);
    void cutDest(const Area& area);
    Box destBox() const;
    double sourceX(double x) const;
    double sourceY(double y) const;

    Area source_, dest_;
    Area limits_; // the source before what cannot be seen was cut off: softening looks that far
};

} // namespace GLDrawing
