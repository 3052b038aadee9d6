#include "OS/Mac/OpenGL/Drawing/ClipRegion.h"

#include <QRegion>

namespace GLDrawing {

ClipRegion::ClipRegion(const DrawingTarget& target)
    : bounds_(target.bounds), limited_(!target.fillsViewport())
{
}

ClipRegion::ClipRegion(const QRegion& region, const DrawingTarget& target) : limited_(true)
{
    // The toolkit keeps its boxes in rows from the top, and apart; so they stay.
    for (const QRect& rect : region) {
        const Box box{nearestEdge(rect.x() * target.ratio), nearestEdge(rect.y() * target.ratio),
                      nearestEdge((double(rect.x()) + rect.width()) * target.ratio),
                      nearestEdge((double(rect.y()) + rect.height()) * target.ratio)};
        const Box seen = box.intersected(target.bounds);
        if (!seen.isEmpty())
            boxes_.push_back(seen);
    }
    if (boxes_.empty())
        return;
    bounds_ = boxes_.front();
    for (const Box& box : boxes_)
        bounds_ = {std::min(bounds_.left, box.left), std::min(bounds_.top, box.top),
                   std::max(bounds_.right, box.right), std::max(bounds_.bottom, box.bottom)};
    if (boxes_.size() == 1)
        boxes_.clear();
}

} // namespace GLDrawing
