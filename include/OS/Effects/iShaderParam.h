#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/iObject.h>
#include <OS/Primitives/NormalisedRGB.h>

/// A parameter of a shader effect: its value, and what its file says about it (annotations such as
/// "UIName", "UIMin" and "UIMax", by which a host makes its controls).
///
/// Lives as long as it is held, also after its effect; once the effect was loaded anew it belongs
/// to the version before and changes nothing. Any thread.
class OS_API iShaderParam : public iObject
{
public:
    enum eType : int
    {
        eUnknown = 0, ///< a struct, an array, a matrix
        eFloat = 1,   ///< one number with a fraction, or two: a vector of them
        eInt = 2,
        eBool = 3,
        eColour = 4, ///< three or four numbers with a fraction
        eString = 5
    };

    ~iShaderParam() override = default;

    virtual LightweightString<char> getName() const = 0;
    virtual eType getType() const = 0;
    /// As written in the file; empty for none.
    virtual LightweightString<char> getSemantic() const = 0;
    /// How many numbers it holds.
    virtual unsigned int getNumComponents() const = 0;

    /// The first component.
    virtual float getFloatValue() const = 0;
    /// The first components; those it does not have are 0, alpha 1.
    virtual NormalisedRGB getColourValue() const = 0;
    /// Sets each component.
    virtual void setFloatValue(float value) = 0;
    /// Sets the first components, as many as it has.
    virtual void setColourValue(const NormalisedRGB& value) = 0;
    /// Sets all components; those not given keep their values, further ones are passed over.
    virtual void setValues(const float* values, unsigned int count) = 0;
    /// What the file gives it.
    virtual float getDefaultFloatValue() const = 0;
    virtual NormalisedRGB getDefaultColourValue() const = 0;

    /// Whether there is an annotation of that name and type. Names are compared with their case.
    virtual bool hasAnnotation(const LightweightString<char>& name, eType type) const = 0;
    /// "" where there is none, or it is no string.
    virtual LightweightString<char>
    getAnnotationStringValue(const LightweightString<char>& name) const = 0;
    /// The first number; 0 where there is none.
    virtual float getAnnotationFloatValue(const LightweightString<char>& name) const = 0;
    /// Whether it is a number other than 0.
    virtual bool getAnnotationBoolValue(const LightweightString<char>& name) const = 0;
};
