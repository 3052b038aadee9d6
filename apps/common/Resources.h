#pragma once

#include "common/Text.h"
#include "common/Theme.h"

#include <OS/Painting/iFont.h>
#include <OS/Painting/iHostImage.h>
#include <OS/Primitives/Rectangle.h>
#include <OS/Windowing/iRootWindow.h>

#include <map>

namespace App {

/// Fonts and blank pictures for one target: a window, which scales by itself, a host surface, for
/// which everything is made at its scale, or an image on the GPU.
class Resources
{
public:
    /// For a host surface of `scale` pixels for each logical one.
    explicit Resources(double scale) : scale_(scale) {}
    explicit Resources(Tq::Ptr<iRootWindow> window) : window_(std::move(window)) {}
    /// For images on the GPU: GL draws the text.
    static Resources onGPU()
    {
        Resources resources(1.0);
        resources.onGPU_ = true;
        return resources;
    }

    /// Target pixels for each logical pixel that a canvas has to draw.
    double scale() const { return scale_; }
    Tq::Ptr<iFont> font(const Theme::Type& type);
    /// A logical length or position in the target's units.
    int scaled(int length) const;
    Tq::Rectangle<int> scaled(const Tq::Rectangle<int>& rect) const;
    /// A picture that covers a logical rectangle; in a window its pixels may be finer still. Null
    /// for an empty one.
    Tq::Ptr<iHostImage> blank(const Tq::Rectangle<int>& rect) const;

private:
    Tq::Ptr<iRootWindow> window_;
    double scale_ = 1.0;
    bool onGPU_ = false;
    std::map<Theme::Type, Tq::Ptr<iFont>> fonts_;
};

} // namespace App
