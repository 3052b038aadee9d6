#include "OS/Mac/OpenGL/Drawing/TextImages.h"

#include "OS/Mac/Core/QtText.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"
#include "OS/Mac/OpenGL/Drawing/DrawingTarget.h"
#include "OS/Mac/Painting/QtFont.h"
#include "OS/Mac/Painting/QtGraphicPrimitivesRenderer.h"

#include <tuple>

namespace GLDrawing {

namespace {

std::uint32_t bytesOf(const NormalisedRGB& colour)
{
    const auto byte = [](float component) {
        return static_cast<std::uint32_t>(NormalisedRGB::toByte(component));
    };
    return byte(colour.alpha) << 24 | byte(colour.red) << 16 | byte(colour.green) << 8 |
           byte(colour.blue);
}

// How many pixels of descriptions are a whole number of the target's; 1 where no small number is.
int periodOf(double ratio)
{
    for (int period = 1; period <= 20; ++period)
        if (std::abs(period * ratio - std::round(period * ratio)) < 1e-6)
            return period;
    return 1;
}

// The multiple of the period at or below a place, and what is left.
struct Place
{
    Place(int place, int period)
        : phase(((place % period) + period) % period), origin(double(place) - phase)
    {
    }
    int phase;
    double origin;
};

// Far enough around a text's box for what glyphs, halo and underline draw outside of it.
struct Margins
{
    Margins(const QtFont& font, const QString& text, int period)
    {
        const QRect ink = font.metrics().boundingRect(text);
        const int ascent = font.metrics().ascent(), descent = font.metrics().descent();
        const int width = std::max(font.width(text), 0);
        const int slack = 3 + font.metrics().height() / 4;
        left = roundedUp(std::max(-ink.left(), 0) + slack, period);
        top = roundedUp(std::max(-ink.top(), ascent) + slack, period);
        right = std::max(ink.right() + 1, width) + slack;
        bottom = std::max(ink.bottom() + 1, descent) + slack;
    }
    static int roundedUp(int value, int period) { return (value + period - 1) / period * period; }

    int left, top, right, bottom; // from the origin
};

} // namespace

bool TextImages::Key::operator<(const Key& other) const
{
    const auto numbers = [](const Key& k) {
        return std::tie(k.font, k.colour, k.backColour, k.style, k.highlightStart, k.highlightEnd,
                        k.phaseX, k.phaseY, k.manner);
    };
    if (numbers(*this) != numbers(other))
        return numbers(*this) < numbers(other);
    return text < other.text;
}

TextImage TextImages::find(const TextDescription& desc, const TextManner& manner,
                           const std::function<void()>& beforeMaking)
{
    const int period = periodOf(manner.ratio);
    const Place x(desc.pos_.x, period), y(desc.pos_.y, period);
    const bool usesBack =
        desc.textStyle_ == TextDescription::eHalo || desc.highlightStart_ != desc.highlightEnd_;
    const Key key{desc.font_.get(),
                  desc.text_,
                  bytesOf(desc.colour_),
                  usesBack ? bytesOf(desc.backColour_) : 0,
                  desc.textStyle_,
                  desc.highlightStart_,
                  desc.highlightEnd_,
                  x.phase,
                  y.phase,
                  manner};
    const Entry* entry = nullptr;
    const auto found = entries_.find(key);
    if (found != entries_.end()) {
        entry = &found->second;
        ages_.splice(ages_.end(), ages_, entry->age);
    } else {
        beforeMaking();
        entry = make(key, desc);
    }
    if (!entry)
        return {};
    return {entry->texture.name(), nearestEdge(x.origin * manner.ratio) + entry->left,
            nearestEdge(y.origin * manner.ratio) + entry->top, entry->texture.width(),
            entry->texture.height()};
}

const TextImages::Entry* TextImages::make(const Key& key, const TextDescription& desc)
{
    const auto* font = dynamic_cast<const QtFont*>(desc.font_.get());
    if (!font || desc.text_.empty())
        return nullptr;
    const Tq::Ptr<QtFont> own = font->copyForThread();
    const int period = periodOf(key.manner.ratio);
    const Margins margins(*own, OSInternal::toQString(desc.text_), period);
    const auto pixels = [&](int size) {
        return static_cast<int>(std::ceil(size * key.manner.ratio));
    };
    const int width = pixels(margins.left + key.phaseX + margins.right);
    const int height = pixels(margins.top + key.phaseY + margins.bottom);
    const XY<int> most = OpenGLUtils::getMaxTextureSize();
    if (most.x > 0 && (width > most.x || height > most.y))
        return nullptr;

    Tq::Ptr<QImage> picture = new QImage(width, height, QImage::Format_ARGB32_Premultiplied);
    if (picture->isNull())
        return nullptr;
    picture->fill(0u);
    picture->setDevicePixelRatio(key.manner.ratio);
    {
        QtGraphicPrimitivesRenderer renderer(picture, 1);
        renderer.setAntialiasingEnabled(key.manner.antialias);
        TextDescription moved = desc;
        moved.font_ = own;
        moved.pos_ = {margins.left + key.phaseX, margins.top + key.phaseY};
        renderer.render(moved);
    }
    Texture texture(width, height);
    texture.upload(picture->constBits(), static_cast<int>(picture->bytesPerLine() / 4));
    makeRoom(texture.bytes());
    bytes_ += texture.bytes();
    const int left = -nearestEdge(margins.left * key.manner.ratio);
    const int top = -nearestEdge(margins.top * key.manner.ratio);
    const auto made =
        entries_.emplace(key, Entry{desc.font_, std::move(texture), left, top, ages_.end()}).first;
    made->second.age = ages_.insert(ages_.end(), &made->first);
    return &made->second;
}

void TextImages::makeRoom(std::size_t bytes)
{
    while (!ages_.empty() && bytes_ + bytes > mostBytes_) {
        const auto oldest = entries_.find(*ages_.front());
        ages_.pop_front();
        bytes_ -= oldest->second.texture.bytes();
        entries_.erase(oldest);
    }
}

void TextImages::clear()
{
    ages_.clear();
    entries_.clear();
    bytes_ = 0;
}

} // namespace GLDrawing
