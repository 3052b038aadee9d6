#pragma once

#include "OS/Mac/OpenGL/Drawing/Programs.h"
#include "OS/Mac/OpenGL/Drawing/QuadPainter.h"
#include "OS/Mac/OpenGL/Drawing/Quads.h"
#include "OS/Mac/OpenGL/Drawing/TexturePool.h"

#include <OS/Effects/iShaderEffect.h>

#include <vector>

namespace GLDrawing {

/// Quads that show one picture of a text in one colour.
struct TextRun
{
    Tq::Ptr<iGPUImage> image;
    NormalisedRGB colour;
    std::vector<ImageVertex> quads; ///< texture coordinates
    std::vector<Box> boxes;         ///< where they are
};

/// What all renderers of the sharing group use: programs, a vertex buffer, and the caches. Made by
/// the first renderer; everything under the GL lock, with a context of the group current.
class DrawingResources
{
public:
    static constexpr std::size_t kMostUploadBytes = 64u << 20;

    static DrawingResources& instance();
    /// Null before the first renderer, and after shutdown.
    static DrawingResources* existing() { return instance_; }
    /// Releases everything, before the group's last context goes. The next renderer makes it anew.
    static void shutdown();

    DrawingResources(const DrawingResources&) = delete;
    DrawingResources& operator=(const DrawingResources&) = delete;

    void clearCaches();

    Programs programs;
    GLuint vertexBuffer = 0;
    QuadRun run; ///< what was drawn last, by any renderer
    TexturePool uploads{kMostUploadBytes};

    /// Asked for once, when the first text is drawn; without it none is.
    Tq::Ptr<iShaderEffectBase> textEffects;
    bool hasAskedForTextEffects = false;
    const LightweightString<char> textTechnique{"ClearTypeBlend"};
    const LightweightString<char> faceColour{"FaceColour1"};

    // Room for one call's quads, kept for the next one's.
    std::vector<FillVertex> fills;
    std::vector<LineVertex> lines;
    std::vector<EllipseVertex> ellipses;
    std::vector<PieVertex> pies;
    std::vector<ImageVertex> images;
    std::vector<ScaledImageVertex> scaledImages;
    std::vector<TextRun> textRuns;
    iShaderEffectBase::Drawing textDrawing;

private:
    DrawingResources();
    ~DrawingResources();

    static inline DrawingResources* instance_ = nullptr;
};

} // namespace GLDrawing
