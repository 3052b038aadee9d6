#include "OS/Mac/Windowing/QtMouseCursor.h"

#include "OS/Mac/Windowing/HostImagePixmap.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr Qt::CursorShape kStockShapes[] = {
    Qt::SizeAllCursor,   Qt::SizeHorCursor,   Qt::SizeHorCursor,   Qt::SizeHorCursor,
    Qt::SizeVerCursor,   Qt::SizeVerCursor,   Qt::SizeVerCursor,   Qt::SizeBDiagCursor,
    Qt::SizeBDiagCursor, Qt::SizeBDiagCursor, Qt::SizeFDiagCursor, Qt::SizeFDiagCursor,
    Qt::SizeFDiagCursor, Qt::WaitCursor,      Qt::ForbiddenCursor, Qt::IBeamCursor,
};

} // namespace

Tq::Ptr<iMouseCursor> QtMouseCursor::create(eStockCursor stock)
{
    const Qt::CursorShape shape =
        stock < std::size(kStockShapes) ? kStockShapes[stock] : Qt::ArrowCursor;
    return new QtMouseCursor(QCursor(shape));
}

Tq::Ptr<iMouseCursor> QtMouseCursor::create(Tq::Ptr<iHostImage> image, const XY<int>& hotSpot)
{
    const QPixmap pixmap = toPixmap(image);
    if (pixmap.isNull())
        return nullptr;
    // The server refuses a hot spot outside the picture.
    const QSize size = (QSizeF(pixmap.size()) / pixmap.devicePixelRatioF()).toSize();
    const int x = std::clamp(hotSpot.x, 0, std::max(size.width() - 1, 0));
    const int y = std::clamp(hotSpot.y, 0, std::max(size.height() - 1, 0));
    return new QtMouseCursor(QCursor(pixmap, x, y));
}
