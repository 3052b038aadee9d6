#include "OS/Mac/Effects/OpenGLShaderEffect.h"

#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/Core/PathText.h"
#include "OS/Mac/Effects/EffectText.h"
#include "OS/Mac/Effects/ShaderPrograms.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

using namespace EffectCompiler;

namespace {

// The files that a listing's lines, "file(line) : error : text", speak of.
void addFilesNamedIn(const std::string& listing, std::vector<std::string>& files)
{
    std::size_t start = 0;
    while (start < listing.size()) {
        const std::size_t end = std::min(listing.find('\n', start), listing.size());
        const std::string line = listing.substr(start, end - start);
        const std::string file = line.substr(0, line.find("("));
        if (!file.empty() && std::find(files.begin(), files.end(), file) == files.end())
            files.push_back(file);
        start = end + 1;
    }
}

} // namespace

void OpenGLShaderEffect::reportFailure(const Context& context, const LightweightString<char>& path,
                                       std::string& listing)
{
    std::fputs("FAILED\n", stderr);
    if (context.error() == Error::eInvalidProfile) {
        OSInternal::printLine("Failed to load shader : %s (CG_INVALID_PROFILE_ERROR)\n",
                              path.c_str());
        return;
    }
    listing = context.listing();
    if (listing.empty())
        OSInternal::printLine("Failed to load shader : %s\n", path.c_str());
    else
        OSInternal::printLine("Failed to load shader : %s (%s)\n", path.c_str(), listing.c_str());
}

std::shared_ptr<EffectContents>
OpenGLShaderEffect::loadContents(Context& context, const LightweightString<char>& profile,
                                 const LightweightString<wchar_t>& path, std::string& listing)
{
    const LightweightString<char> systemPath = OSInternal::pathToSystem(path);
    std::fprintf(stderr, "Compiling shader : %s .. ", systemPath.c_str());
    std::unique_ptr<Effect> effect = context.createFromFile(
        EffectText::standard(systemPath), {"-DPROFILE=" + EffectText::standard(profile)});
    if (!effect) {
        reportFailure(context, systemPath, listing);
        return {};
    }
    listing = context.listing();
    ShaderProgramBuilder builder;
    auto contents = std::make_shared<EffectContents>(std::move(effect), builder, listing);
    if (contents->techniques().empty()) {
        OSInternal::printLine("OpenGLShaderEffect::load( %s ) : no valid techniques\n",
                              systemPath.c_str());
        contents.reset();
    }
    std::fputs("done\n", stderr);
    return contents;
}

OpenGLShaderEffect::Loaded OpenGLShaderEffect::load(Context* context,
                                                    const LightweightString<char>& profile,
                                                    const LightweightString<wchar_t>& path)
{
    const OpenGLContextProtector protector;
    if (!context || !OpenGLContextProtector::hasContext())
        return {};
    std::string listing;
    const std::shared_ptr<EffectContents> contents = loadContents(*context, profile, path, listing);
    Loaded loaded;
    loaded.listing = EffectText::text(listing);
    if (!contents)
        return loaded;
    loaded.effect = new OpenGLShaderEffect(path, profile, contents);
    loaded.effect->listing_ = listing;
    return loaded;
}

OpenGLShaderEffect::OpenGLShaderEffect(const LightweightString<wchar_t>& path,
                                       const LightweightString<char>& profile,
                                       std::shared_ptr<EffectContents> contents)
    : path_(path), profile_(profile), numTextureUnits_(ShaderPrograms::textureUnits()),
      contents_(std::move(contents))
{
    watch_.watch(contents_->effect().files());
}

std::shared_ptr<EffectContents> OpenGLShaderEffect::contents() const
{
    const std::lock_guard lock(guard_);
    return contents_;
}

// -- Techniques, parameters and inputs
// -------------------------------------------------------------

bool OpenGLShaderEffect::setTechnique(const LightweightString<char>& name)
{
    const std::lock_guard lock(guard_);
    const int found = contents_->findTechnique(EffectText::standard(name));
    if (found >= 0)
        current_ = found;
    return found >= 0;
}

bool OpenGLShaderEffect::setTechnique(unsigned int index)
{
    const std::lock_guard lock(guard_);
    if (index >= contents_->techniques().size())
        return false;
    current_ = static_cast<int>(index);
    return true;
}

int OpenGLShaderEffect::techniqueFor(const LightweightString<char>& name) const
{
    const std::lock_guard lock(guard_);
    return name.empty() ? current_ : contents_->findTechnique(EffectText::standard(name));
}

bool OpenGLShaderEffect::hasTechnique(const LightweightString<char>& name)
{
    const OpenGLContextProtector protector;
    update();
    return techniqueFor(name) >= 0;
}

unsigned int OpenGLShaderEffect::getNumTechniques() const
{
    return static_cast<unsigned int>(contents()->techniques().size());
}

LightweightString<char> OpenGLShaderEffect::getTechniqueName(unsigned int index) const
{
    const std::shared_ptr<EffectContents> all = contents();
    return index < all->techniques().size() ? EffectText::text(all->techniques()[index].name)
                                            : LightweightString<char>();
}

LightweightString<char> OpenGLShaderEffect::getTechniqueName() const
{
    const std::lock_guard lock(guard_);
    return EffectText::text(contents_->techniques()[static_cast<std::size_t>(current_)].name);
}

unsigned int OpenGLShaderEffect::getNumInputs() const
{
    return static_cast<unsigned int>(contents()->inputs().size());
}

LightweightString<char> OpenGLShaderEffect::getInputName(unsigned int index) const
{
    const std::shared_ptr<EffectContents> all = contents();
    return index < all->inputs().size() ? EffectText::text(all->inputs()[index])
                                        : LightweightString<char>();
}

unsigned int OpenGLShaderEffect::getNumParams() const
{
    return static_cast<unsigned int>(contents()->params().size());
}

Tq::Ptr<iShaderParam> OpenGLShaderEffect::getParam(unsigned int index) const
{
    const std::shared_ptr<EffectContents> all = contents();
    if (index >= all->params().size())
        return {};
    return all->params()[index];
}

Tq::Ptr<OpenGLShaderParam> OpenGLShaderEffect::findParam(const LightweightString<char>& name) const
{
    const std::shared_ptr<EffectContents> all = contents();
    const int found = all->findParam(EffectText::standard(name));
    return found < 0 ? Tq::Ptr<OpenGLShaderParam>()
                     : all->params()[static_cast<std::size_t>(found)];
}

Tq::Ptr<iShaderParam> OpenGLShaderEffect::getParam(const LightweightString<char>& name) const
{
    return findParam(name);
}

bool OpenGLShaderEffect::setFloat(const LightweightString<char>& name, float value)
{
    const Tq::Ptr<OpenGLShaderParam> param = findParam(name);
    if (!param || param->getNumComponents() == 0)
        return false;
    param->setFloatValue(value);
    return true;
}

bool OpenGLShaderEffect::setInt(const LightweightString<char>& name, int value)
{
    return setFloat(name, static_cast<float>(value));
}

bool OpenGLShaderEffect::setColour(const LightweightString<char>& name, const NormalisedRGB& value)
{
    const Tq::Ptr<OpenGLShaderParam> param = findParam(name);
    if (!param || param->getNumComponents() == 0)
        return false;
    param->setColourValue(value);
    return true;
}

// -- Loading anew
// ----------------------------------------------------------------------------------

void OpenGLShaderEffect::takeOver(const std::shared_ptr<EffectContents>& contents)
{
    const std::lock_guard lock(guard_);
    for (const Tq::Ptr<OpenGLShaderParam>& param : contents->params()) {
        const int before = contents_->findParam(param->parameter().name);
        if (before >= 0)
            param->copyValues(*contents_->params()[static_cast<std::size_t>(before)]);
    }
    const std::string& technique = contents_->techniques()[static_cast<std::size_t>(current_)].name;
    current_ = std::max(contents->findTechnique(technique), 0);
    contents_ = contents;
    ++revision_;
}

void OpenGLShaderEffect::update()
{
    if (!OpenGLContextProtector::hasContext() || !watch_.hasChanged())
        return;
    // Stamped before it is read: what is written meanwhile is another change.
    watch_.watch(watch_.paths());
    Context context;
    std::string listing;
    const std::shared_ptr<EffectContents> contents =
        loadContents(context, profile_, path_, listing);
    if (contents) {
        takeOver(contents);
        printed_.clear();
        if (contents->effect().files() != watch_.paths())
            watch_.watch(contents->effect().files());
    } else {
        std::vector<std::string> files = watch_.paths();
        addFilesNamedIn(listing, files);
        if (files.size() != watch_.paths().size())
            watch_.watch(std::move(files));
    }
    const std::lock_guard lock(guard_);
    listing_ = std::move(listing);
    isOutdated_ = !contents;
}

bool OpenGLShaderEffect::reloadIfChanged()
{
    const OpenGLContextProtector protector;
    if (!OpenGLContextProtector::hasContext())
        return false;
    const unsigned int before = getRevision();
    update();
    return getRevision() != before;
}

std::vector<LightweightString<wchar_t>> OpenGLShaderEffect::getFiles() const
{
    std::vector<LightweightString<wchar_t>> files;
    for (const std::string& file : contents()->effect().files())
        files.push_back(OSInternal::pathFromSystem(EffectText::text(file)));
    return files;
}

unsigned int OpenGLShaderEffect::getRevision() const
{
    const std::lock_guard lock(guard_);
    return revision_;
}

LightweightString<char> OpenGLShaderEffect::getListing() const
{
    const std::lock_guard lock(guard_);
    return EffectText::text(listing_);
}

bool OpenGLShaderEffect::isOutdated() const
{
    const std::lock_guard lock(guard_);
    return isOutdated_;
}
