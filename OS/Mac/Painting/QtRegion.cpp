#include "OS/Mac/Painting/QtRegion.h"

#include "OS/Mac/Core/Assertion.h"

#include <algorithm>
#include <array>
#include <atomic>

namespace {

std::uint32_t nextID()
{
    static std::atomic<std::uint32_t> last{0};
    return ++last;
}

QRect toQRect(const Tq::Rectangle<int>& rectangle)
{
    return QRect(QPoint(rectangle.left, rectangle.top),
                 QPoint(rectangle.right - 1, rectangle.bottom - 1));
}

QRegion together(const std::vector<Tq::Rectangle<int>>& data)
{
    if (data.size() >= QtRegion::kMaxSize)
        OSInternal::reportAssertion("data.size() < kMaxSize", "OS/Mac/QtRegion line 39");
    std::array<QRect, QtRegion::kMaxSize> rectangles;
    std::transform(data.begin(),
                   data.begin() +
                       static_cast<std::ptrdiff_t>(std::min(data.size(), QtRegion::kMaxSize)),
                   rectangles.begin(), toQRect);
    QRegion region;
    for (const QRect& rectangle : rectangles)
        region += rectangle; // null rectangles add nothing
    return region;
}

} // namespace

QtRegion::QtRegion(const QRegion& region) : uniqueID_(nextID()), region_(region)
{
    calcBBX();
}

QtRegion::QtRegion(const Tq::Rectangle<int>& rectangle) : QtRegion(QRegion(toQRect(rectangle))) {}

QtRegion::QtRegion(const std::vector<Tq::Rectangle<int>>& data) : QtRegion(together(data)) {}

bool QtRegion::isRectangular() const
{
    return region_.rectCount() == 1;
}

bool QtRegion::contains(const XY<int>& point) const
{
    return region_.contains(QPoint(point.x, point.y));
}

void QtRegion::translate(int dx, int dy)
{
    if (dx == 0 && dy == 0)
        return;
    region_.translate(dx, dy);
    bounds_ = bounds_.translated(dx, dy);
}

Tq::Ptr<iRegion> QtRegion::clone() const
{
    return new QtRegion(region_);
}

// The toolkit's right and bottom lie inside, ours outside: an empty region comes out all zero.
void QtRegion::calcBBX()
{
    const QRect box = region_.boundingRect();
    bounds_ = {box.left(), box.top(), box.right() + 1, box.bottom() + 1};
}
