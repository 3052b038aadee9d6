#pragma once

#include <OS/Core/Ptr.h>
#include <OS/Painting/iHostImage.h>
#include <OS/Windowing/iMouseCursor.h>

#include <QCursor>

/// iMouseCursor on the toolkit's cursor.
class QtMouseCursor final : public iMouseCursor
{
public:
    explicit QtMouseCursor(const QCursor& cursor) : cursor_(cursor) {}

    static Tq::Ptr<iMouseCursor> create(eStockCursor stock);
    /// @param hotSpot in logical pixels of the image; one outside is brought to its nearest pixel
    /// @return null when the image is null or has no pixels
    static Tq::Ptr<iMouseCursor> create(Tq::Ptr<iHostImage> image, const XY<int>& hotSpot);

    const QCursor& getCursor() const { return cursor_; }

private:
    QCursor cursor_;
};
