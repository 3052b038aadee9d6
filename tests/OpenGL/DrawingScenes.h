#pragma once

#include <OS/Primitives/iGraphicPrimitivesRenderer.h>

#include <functional>
#include <string>
#include <vector>

/// Drawings that the two renderers are compared by: 160 by 120 logical pixels each.
struct DrawingScene
{
    static constexpr int kWidth = 160, kHeight = 120;

    std::string name;
    std::function<void(iGraphicPrimitivesRenderer&)> draw;
    int channel;             ///< how far channels may be apart inside of shapes
    double strayShare;       ///< the share of pixels that may be further apart: edges
    double strayAtFractions; ///< the same where edges lie between pixels
};

const std::vector<DrawingScene>& drawingScenes();
