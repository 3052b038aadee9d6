#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/Ptr.h>
#include <OS/Core/iObject.h>
#include <OS/OpenGL/iGPUResource.h>
#include <OS/Primitives/NormalisedRGB.h>

/// A value for one parameter of a shader effect, or a picture for one of its inputs, as a
/// description carries it to the renderer. Never changes; any thread.
class OS_API iShaderParamValue : public iObject
{
public:
    enum eType : int
    {
        eFloat = 0,
        eInt = 1,
        eColour = 2,
        eSource = 3 ///< an image on the GPU, or a cube of colours
    };

    ~iShaderParamValue() override = default;

    virtual eType getType() const = 0;
    /// Of the parameter, or of the input.
    virtual const LightweightString<char>& getName() const = 0;
    /// 0 where it is of another type; so are the three below, each with its own nothing.
    virtual float getFloat() const = 0;
    virtual int getInt() const = 0;
    virtual NormalisedRGB getColour() const = 0;
    virtual Tq::Ptr<iGPUResource> getSource() const = 0;

    static Tq::Ptr<iShaderParamValue> makeFloat(const LightweightString<char>& name, float value);
    static Tq::Ptr<iShaderParamValue> makeInt(const LightweightString<char>& name, int value);
    static Tq::Ptr<iShaderParamValue> makeColour(const LightweightString<char>& name,
                                                 const NormalisedRGB& value);
    /// @param resource an iGPUImage or an iGPUImage3D; kept until the value goes
    static Tq::Ptr<iShaderParamValue> makeSource(const LightweightString<char>& name,
                                                 const Tq::Ptr<iGPUResource>& resource);
};
