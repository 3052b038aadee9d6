#include "Drawing/DigitPictures.h"

#include <cmath>

namespace Vantor {

namespace {

constexpr std::size_t kMost = 64; ///< a few sizes of eleven letters

} // namespace

Tq::Ptr<iHostImage> DigitPictures::get(wchar_t letter, const Point& size, int height)
{
    if (made_.size() > kMost)
        made_.clear();
    Tq::Ptr<iHostImage>& image = made_[{letter, size.x, size.y}];
    if (image)
        return image;
    const Rect whole{0, 0, size.x, size.y};
    image = resources_.blank(whole);
    if (!image)
        return image;
    const Theme::Type type{height, false, true};
    Canvas canvas(resources_, image->getPrimitivesRenderer(true));
    canvas.textCentred(Text(1, letter), size.x / 2, baselineIn(whole, type), type, Theme::kWhite);
    return image;
}

void DigitPictures::write(Canvas& canvas, const Text& words, const Rect& plate, int height,
                          double ratio)
{
    const int advance = height * 6 / 10;
    int left = (plate.left + plate.right - advance * static_cast<int>(words.size())) / 2;
    const auto pixels = [ratio](int length) {
        return static_cast<int>(std::lround(length * ratio));
    };
    for (Text::size_type i = 0; i < words.size(); ++i, left += advance) {
        const Rect place{left, plate.top, left + advance, plate.bottom};
        const Point size{pixels(advance), pixels(plate.height())};
        canvas.stretched(get(words[i], size, pixels(height)), size, place);
    }
}

} // namespace Vantor
