#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/Ptr.h>
#include <OS/Core/iObject.h>
#include <OS/Effects/iShaderParamValue.h>
#include <OS/Primitives/NormalisedRGB.h>
#include <OS/Primitives/XY.h>

#include <vector>

/// A loaded shader effect, as a description carries it to the renderer: what it takes to draw with
/// it.
///
/// Values may be set on any thread. Drawing, and asking for techniques, happens under the GL lock
/// with a context of the library current. An effect may be released at any time and on any thread:
/// whoever draws with it holds it.
///
/// What is drawn has pictures at the effect's inputs, quads, and an output: what GL draws into at
/// the time, with its viewport, or one of the effect's own render targets on the way there.
/// Pictures are premultiplied, their row 0 is the top one, their texture coordinates run from 0 to
/// 1 each way, downwards from the top. TEXCOORDn is the place in the picture of input n, and that
/// of input 0 where there is none; TEXCOORD7 is the place in the whole of what is drawn, which is
/// also where a later pass finds what an earlier one drew.
class OS_API iShaderEffectBase : public iObject
{
public:
    ~iShaderEffectBase() override = default;

    /// Chooses what is drawn with from now on. @return false, and nothing changes, where no valid
    /// technique has that name
    virtual bool setTechnique(const LightweightString<char>& name) = 0;
    /// @param index among the valid techniques, in file order
    virtual bool setTechnique(unsigned int index) = 0;
    /// Whether there is a valid technique of that name; "" is the current one. Looks first whether
    /// the effect's files have changed, at most twice a second, and takes them over.
    virtual bool hasTechnique(const LightweightString<char>& name) = 0;

    /// Sets a parameter, each of its components to the same number. @return false where there is no
    /// such parameter, or it is not of numbers
    virtual bool setFloat(const LightweightString<char>& name, float value) = 0;
    virtual bool setInt(const LightweightString<char>& name, int value) = 0;
    /// Sets a parameter's first components to red, green, blue and alpha, as many as it has.
    virtual bool setColour(const LightweightString<char>& name, const NormalisedRGB& value) = 0;

    /// What is put at an input.
    struct Picture
    {
        unsigned int textureID_ = 0; ///< a 2D texture of the library's sharing group
        XY<int> size_;               ///< texels
        // The part of it that is drawn, texture coordinates.
        float left_ = 0.0f;
        float top_ = 0.0f;
        float right_ = 1.0f;
        float bottom_ = 1.0f;
    };

    /// Quads come as four corners each, in turn around them.
    struct Corner
    {
        float x_ = 0.0f; ///< on the output, in any unit: see Drawing::toClip_
        float y_ = 0.0f;
        float s_ = 0.0f; ///< in what is drawn: 0 left, 1 right
        float t_ = 0.0f; ///< 0 top, 1 bottom
    };

    struct Drawing
    {
        /// For the inputs in their order. Further inputs are transparent black, unless values_ has
        /// pictures for them; further pictures are not used.
        std::vector<Picture> pictures_;
        std::vector<Corner> corners_;
        /// Turns corners into GL's clip space: factors for x and y, then what is added to x and y.
        float toClip_[4] = {1.0f, 1.0f, 0.0f, 0.0f};
        /// How large the whole is drawn, pixels of the output: render targets are as large, unless
        /// the effect says otherwise.
        XY<int> size_;
        /// The output's size in pixels.
        XY<int> outputSize_;
        /// True: source alpha and one minus source alpha, the output's own alpha adding up. The
        /// colours that an effect returns are then not premultiplied; where it replaces, they are.
        bool blend_ = true;
        LightweightString<char> technique_; ///< "" is the current one
        /// For this drawing only; names that are not known are passed over.
        std::vector<Tq::Ptr<iShaderParamValue>> values_;
    };

    /// Draws, and leaves GL's state as it found it.
    ///
    /// Respects what limits drawing at the time, such as the scissor; only passes into render
    /// targets do not.
    ///
    /// @return false where nothing was drawn: the technique is not known, or could not be used
    virtual bool draw(const Drawing& drawing) = 0;
};
