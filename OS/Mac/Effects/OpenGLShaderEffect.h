#pragma once

#include "OS/Mac/Effects/EffectContents.h"
#include "OS/Mac/Effects/FileWatch.h"

#include "OS/Host/EffectCompiler/EffectRuntime.h"

#include <OS/Effects/iShaderEffect.h>

#include <memory>
#include <mutex>
#include <set>
#include <string>

/// A shader effect loaded from a file, drawn with GL.
///
/// What was loaded is an EffectContents, which a later loading replaces; its parameters keep their
/// values by name, and the current technique stays by name. Under the GL lock but for what only
/// reads or sets values: those take a lock that is a leaf.
class OpenGLShaderEffect final : public iShaderEffect
{
public:
    using Sampler = EffectSampler;

    /// What load() answers.
    struct Loaded
    {
        Tq::Ptr<OpenGLShaderEffect> effect; ///< null on failure
        LightweightString<char> listing;    ///< then the compiler's; warnings otherwise
    };

    /// Loads a file, under the GL lock, which it takes.
    ///
    /// Writes "Compiling shader : %s .. " with the path to standard error, and "done\n" or
    /// "FAILED\n". On standard output: "Failed to load shader : %s (CG_INVALID_PROFILE_ERROR)\n",
    /// "Failed to load shader : %s (%s)\n" with the listing, "Failed to load shader : %s\n" where
    /// there is none, or "OpenGLShaderEffect::load( %s ) : no valid techniques\n". A texture that a
    /// sampler reads and that has no semantic prints the assertion report for "semantic != NULL" at
    /// "OS/Mac/OpenGLShaderEffect line 214", and is an input.
    /// @param context of the compiler; null answers nothing
    /// @param profile what the file's PROFILE is: "glslf"
    static Loaded load(EffectCompiler::Context* context, const LightweightString<char>& profile,
                       const LightweightString<wchar_t>& path);

    OpenGLShaderEffect(const LightweightString<wchar_t>& path,
                       const LightweightString<char>& profile,
                       std::shared_ptr<EffectContents> contents);

    bool setTechnique(const LightweightString<char>& name) override;
    bool setTechnique(unsigned int index) override;
    bool hasTechnique(const LightweightString<char>& name) override;
    bool setFloat(const LightweightString<char>& name, float value) override;
    bool setInt(const LightweightString<char>& name, int value) override;
    bool setColour(const LightweightString<char>& name, const NormalisedRGB& value) override;
    bool draw(const Drawing& drawing) override;

    unsigned int getNumTechniques() const override;
    LightweightString<char> getTechniqueName(unsigned int index) const override;
    LightweightString<char> getTechniqueName() const override;
    unsigned int getNumInputs() const override;
    LightweightString<char> getInputName(unsigned int index) const override;
    unsigned int getNumParams() const override;
    Tq::Ptr<iShaderParam> getParam(unsigned int index) const override;
    Tq::Ptr<iShaderParam> getParam(const LightweightString<char>& name) const override;
    bool render(const std::vector<Source>& sources, const Tq::Ptr<iGPUImage>& target) override;
    LightweightString<wchar_t> getPath() const override { return path_; }
    std::vector<LightweightString<wchar_t>> getFiles() const override;
    bool reloadIfChanged() override;
    unsigned int getRevision() const override;
    LightweightString<char> getListing() const override;
    bool isOutdated() const override;

    std::shared_ptr<EffectContents> contents() const;
    /// How many textures a pass may read.
    unsigned int numTextureUnits() const { return numTextureUnits_; }

private:
    static std::shared_ptr<EffectContents> loadContents(EffectCompiler::Context& context,
                                                        const LightweightString<char>& profile,
                                                        const LightweightString<wchar_t>& path,
                                                        std::string& listing);
    static void reportFailure(const EffectCompiler::Context& context,
                              const LightweightString<char>& path, std::string& listing);
    Tq::Ptr<OpenGLShaderParam> findParam(const LightweightString<char>& name) const;
    int techniqueFor(const LightweightString<char>& name) const;
    void update();
    void takeOver(const std::shared_ptr<EffectContents>& contents);
    void printOnce(const std::string& fault);

    const LightweightString<wchar_t> path_;
    const LightweightString<char> profile_;
    const unsigned int numTextureUnits_;
    FileWatch watch_;
    std::set<std::string> printed_; // faults of drawing with what is loaded

    mutable std::mutex guard_; // a leaf; of what follows
    std::shared_ptr<EffectContents> contents_;
    int current_ = 0; // among the valid techniques
    std::string listing_;
    unsigned int revision_ = 0;
    bool isOutdated_ = false;
};
