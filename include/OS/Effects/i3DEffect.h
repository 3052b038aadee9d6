#pragma once

#include <OS/Core/Ptr.h>
#include <OS/Core/iObject.h>
#include <OS/OpenGL/iGPUImage.h>
#include <OS/Primitives/NormalisedRGB.h>
#include <OS/Primitives/XYZ.h>

#include <vector>

/// Pictures in space: for page turns and moves of a picture in a picture. Made by
/// OS()->mediaServices()->create3DEffect().
///
/// Space is seen as a right-handed system: x to the right, y upwards, z towards the viewer. A
/// picture without a mesh is a rectangle around the origin, one high and as wide as its sides ask
/// for, seen from its front. Matrices are rows, and columns are transformed by them: place' = M *
/// place. One thread at a time; drawing takes the GL lock.
class OS_API i3DEffect : public iObject
{
public:
    /// Row by row: the translation is at 3, 7 and 11.
    struct Matrix
    {
        float m_[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    };

    struct MeshPoint
    {
        XYZ<float> place_;
        float u_ = 0.0f; ///< in the picture: 0 left, 1 right
        float v_ = 0.0f; ///< 0 top, 1 bottom
    };

    /// A picture on a grid of quads.
    struct Sheet
    {
        Tq::Ptr<iGPUImage> front_;
        Tq::Ptr<iGPUImage> back_; ///< seen from behind, not mirrored; null shows the front's
        Matrix model_;
        float opacity_ = 1.0f;
        /// (columns_ + 1) points for each of (rows_ + 1) rows, from the top left on, row by row.
        /// Empty: the rectangle.
        std::vector<MeshPoint> mesh_;
        int columns_ = 1;
        int rows_ = 1;
    };

    struct Light
    {
        XYZ<float> direction_; ///< in which it shines, in space; its length does not matter
        NormalisedRGB colour_{1.0f, 1.0f, 1.0f};
        NormalisedRGB ambient_{0.0f, 0.0f, 0.0f}; ///< what reaches everything
    };

    ~i3DEffect() override = default;

    /// From space to the viewer's place: he is at the origin and looks along -z. At first he stands
    /// on the z axis where a picture without a mesh, as large as the target, fills it.
    virtual void setView(const Matrix& view) = 0;
    /// The usual one: stands at eye and looks at a place. Where the three do not say which way is
    /// up, nothing changes and the answer is false.
    virtual bool setView(const XYZ<float>& eye, const XYZ<float>& at, const XYZ<float>& up) = 0;
    /// @param verticalDegrees what is seen from top to bottom, above 0 and below 180
    /// @param nearest, farthest distances, 0 < nearest < farthest
    /// @return false, and nothing changes, for others. At first 45, 0.1 and 100.
    virtual bool setPerspective(float verticalDegrees, float nearest, float farthest) = 0;

    /// Light falls by Lambert's law on both sides of a sheet, and each point's normal is that of
    /// the quads around it. Off, deliberately, until a light is set: pictures keep their colours.
    virtual void setLight(const Light& light) = 0;
    virtual void setLightOff() = 0;

    /// Draws sheets on a ground that replaces all of an image. Nearer ones hide farther ones,
    /// whatever their order; where they are translucent, farther ones come first in the list. A
    /// sheet without pictures, or whose mesh has another number of points than its columns and rows
    /// ask for, is left out; so is what is not in front of the viewer. Edges are softened where the
    /// driver can. A target may be among the pictures.
    /// @param target of a format that has a texel for each pixel
    /// @param ground not premultiplied
    /// @return false where the target cannot be drawn on
    virtual bool render(const std::vector<Sheet>& sheets, const NormalisedRGB& ground,
                        const Tq::Ptr<iGPUImage>& target) = 0;
};
