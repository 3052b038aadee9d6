#pragma once

#include "Drawing/Composition.h"
#include "Drawing/PictureStore.h"
#include "Play/FrameReader.h"
#include "Play/Passages.h"
#include "common/Icons.h"
#include "common/Resources.h"

#include <functional>

namespace Vantor {

/// Draws whole frames of an edit in main memory, for one thread.
class FrameMaker
{
public:
    FrameMaker();

    /// The frame as a picture of the size asked for; null when memory is short.
    Tq::Ptr<iHostImage> draw(const FrameRequest& request, int frame);
    /// The same on the GPU; in main memory where the GPU takes none.
    Tq::Ptr<iImage> make(const FrameRequest& request, int frame);

private:
    using Layers = std::function<void(const Composition&)>;
    Tq::Ptr<iHostImage> drawn(const FrameRequest& request, int frame, const Layers& layers);
    Tq::Ptr<iGPUImage> onGPU(const FrameRequest& request, int frame, const Layers& layers);
    Tq::Ptr<iGPUImage> passage(const FrameRequest& request, int frame, const Passage& passage);
    void drawOn(const Tq::Ptr<iGPUImage>& image, const FrameRequest& request, int frame,
                const Layers& layers);

    Resources resources_;
    Resources onGPU_ = Resources::onGPU();
    Icons icons_;
    PictureStore pictures_;
    Passages passages_;
    Tq::Ptr<iHostImage> surface_; ///< used again for frames that went to the GPU
};

} // namespace Vantor
