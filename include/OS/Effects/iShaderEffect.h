#pragma once

#include <OS/Effects/iShaderEffectBase.h>
#include <OS/Effects/iShaderParam.h>
#include <OS/OpenGL/iGPUImage.h>

/// A shader effect loaded from a file: made by OS()->mediaServices()->createShaderEffect().
///
/// Any thread, from each operation on its own; what draws or loads takes the GL lock.
class OS_API iShaderEffect : public iShaderEffectBase
{
public:
    /// What is put at an input: an iGPUImage or an iGPUImage3D.
    struct Source
    {
        LightweightString<char> name_;
        Tq::Ptr<iGPUResource> resource_;
    };

    ~iShaderEffect() override = default;

    /// The valid techniques, in file order.
    virtual unsigned int getNumTechniques() const = 0;
    /// "" beyond the last.
    virtual LightweightString<char> getTechniqueName(unsigned int index) const = 0;
    /// Of the current one.
    virtual LightweightString<char> getTechniqueName() const = 0;

    /// The textures that the effect reads and the host supplies, in the order of its samplers.
    virtual unsigned int getNumInputs() const = 0;
    /// "" beyond the last.
    virtual LightweightString<char> getInputName(unsigned int index) const = 0;

    /// The parameters that are neither textures nor samplers, in file order.
    virtual unsigned int getNumParams() const = 0;
    /// Null beyond the last, and where there is none of that name.
    virtual Tq::Ptr<iShaderParam> getParam(unsigned int index) const = 0;
    virtual Tq::Ptr<iShaderParam> getParam(const LightweightString<char>& name) const = 0;

    /// Draws over the whole of an image, replacing what is there. Inputs without a source are
    /// transparent black; names that are not known are passed over.
    /// @return false where nothing was drawn
    virtual bool render(const std::vector<Source>& sources, const Tq::Ptr<iGPUImage>& target) = 0;

    virtual LightweightString<wchar_t> getPath() const = 0;
    /// The file and all that it includes.
    virtual std::vector<LightweightString<wchar_t>> getFiles() const = 0;
    /// Looks whether the files have changed, at most twice a second, and loads them anew:
    /// parameters keep their values by name. Where that fails the effect stays as it was; the
    /// listing says why. Drawing does the same. @return whether it was loaded anew
    virtual bool reloadIfChanged() = 0;
    /// Counts the times it was loaded anew: parameters are to be asked for again.
    virtual unsigned int getRevision() const = 0;
    /// What was said of the last attempt to load it: a line for each fault, warnings too; empty for
    /// none.
    virtual LightweightString<char> getListing() const = 0;
    /// Whether the last attempt failed: what is drawn with is older than the file.
    virtual bool isOutdated() const = 0;
};
