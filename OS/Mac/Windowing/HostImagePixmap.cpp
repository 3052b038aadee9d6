#include "OS/Mac/Windowing/HostImagePixmap.h"

#include <QImage>

QPixmap toPixmap(const Tq::Ptr<iHostImage>& image)
{
    const Tq::Ptr<iPixelGuard> guard = image ? image->lock() : nullptr;
    if (!guard || !guard->getSize().x || !guard->getSize().y)
        return {};
    const auto format =
        image->isAlphaPreMultiplied() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_ARGB32;
    const XY<int> size = guard->getSize();
    const QImage wrapped(guard->getPixels(), size.x, size.y, guard->getStride(), format);
    QPixmap pixmap = QPixmap::fromImage(wrapped.copy());
    if (image->getSize().x > 0)
        pixmap.setDevicePixelRatio(double(size.x) / image->getSize().x);
    return pixmap;
}
