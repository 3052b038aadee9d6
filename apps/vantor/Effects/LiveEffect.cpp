#include "Effects/LiveEffect.h"

#include <OS.h>
#include <OS/Core/iUtils.h>
#include <OS/Files/iFileManager.h>
#include <OS/Files/iShell.h>
#include <OS/Media/iMediaServices.h>

#include <algorithm>

namespace Vantor {

namespace {

constexpr Text::size_type kTroubleColumns = 32;
constexpr double kRetryMs = 1000.0; ///< until a file that could not be used is looked at again

Text wide(const LightweightString<char>& text)
{
    return OS()->utils()->fromUTF8(text.c_str(), -1);
}

/// Another for a file that was edited; never 0.
std::uint64_t stampOf(const Text& path)
{
    const Tq::Ptr<iFile> file = OS()->fileMgr()->openFile(
        path, iFile::eAccessRead, iFile::eOpenExisting, iFile::eShareRead, 0);
    if (!file)
        return 1;
    return file->getTime(iFile::eLastWriteTime) + static_cast<std::uint64_t>(file->getSize()) + 2;
}

/// The textures that the host supplies.
int inputsOf(const iFXFile& file)
{
    int inputs = 0;
    for (const iFXFile::Parameter& parameter : file.getParameters())
        if (parameter.type_.startsWith("texture") && parameter.hasSemantic_ &&
            !(parameter.semantic_ == "RENDERCOLORTARGET"))
            ++inputs;
    return inputs;
}

/// Breaks a line where words end, so that the panel holds it.
Text broken(const Text& line)
{
    Text result;
    Text::size_type at = 0;
    while (line.size() - at > kTroubleColumns) {
        Text::size_type end = at + kTroubleColumns;
        for (Text::size_type i = end; i > at + kTroubleColumns / 2; --i)
            if (line[i] == L' ') {
                end = i;
                break;
            }
        result += line.substr(at, end - at) + L"\n";
        at = line[end] == L' ' ? end + 1 : end;
    }
    return result + line.substr(at) + L"\n";
}

/// One line of a listing: "file(line) : error : text".
Text explained(const Text& line, const Text& effectPath)
{
    const Text::size_type open = line.find(L"(");
    const Text::size_type close = line.find(L") : ");
    if (open == Text::npos || close == Text::npos || close < open)
        return line;
    const Text file = line.substr(0, open);
    Text words = line.substr(close + 4);
    if (words.startsWith(L"error : "))
        words = words.substr(8);
    return (file == effectPath ? Text() : nameOf(file) + L", ") + L"line " +
           line.substr(open + 1, close - open - 1) + L": " + words;
}

/// For programs, not for people: the first technique says so.
bool isHidden(const iFXFile& file)
{
    if (file.getTechniques().empty())
        return false;
    const auto& annotations = file.getTechniques().front().annotations_;
    return std::any_of(annotations.begin(), annotations.end(), [](const auto& annotation) {
        return annotation.name_ == "UIHidden" && !annotation.value_.numbers_.empty() &&
               annotation.value_.numbers_.front() != 0.0;
    });
}

EffectControl controlOf(const iShaderParam& param)
{
    EffectControl control;
    control.parameter = param.getName();
    const LightweightString<char> name = param.getAnnotationStringValue("UIName");
    control.label = wide(name.empty() ? param.getName() : name);
    if (param.hasAnnotation("UIMin", iShaderParam::eFloat))
        control.least = param.getAnnotationFloatValue("UIMin");
    if (param.hasAnnotation("UIMax", iShaderParam::eFloat))
        control.most = param.getAnnotationFloatValue("UIMax");
    control.step = param.getType() == iShaderParam::eFloat || control.isColour
                       ? param.getAnnotationFloatValue("UIStep")
                       : 1.0f;
    return control;
}

/// In the order of GradeValues.
std::vector<EffectControl> gradeControls()
{
    const auto control = [](const wchar_t* label, float least, float most, float initial) {
        EffectControl slider;
        slider.parameter = LightweightString<char>("grade");
        slider.label = label;
        slider.least = least;
        slider.most = most;
        slider.initial = slider.value = initial;
        return slider;
    };
    std::vector<EffectControl> controls{
        control(L"Lift", -0.5f, 0.5f, 0.0f), control(L"Gamma", 0.2f, 3.0f, 1.0f),
        control(L"Gain", 0.0f, 2.0f, 1.0f), control(L"Saturation", 0.0f, 2.0f, 1.0f)};
    for (std::size_t i = 0; i < controls.size(); ++i)
        controls[i].component = static_cast<int>(i);
    return controls;
}

std::vector<Tq::Ptr<iShaderParamValue>> valuesOf(const std::vector<EffectControl>& controls)
{
    std::vector<Tq::Ptr<iShaderParamValue>> values;
    for (std::size_t i = 0; i < controls.size(); ++i) {
        const EffectControl& control = controls[i];
        if (!control.isColour)
            values.push_back(iShaderParamValue::makeFloat(control.parameter, control.value));
        else if (control.component == 0 && i + 2 < controls.size())
            values.push_back(iShaderParamValue::makeColour(
                control.parameter,
                {control.value, controls[i + 1].value, controls[i + 2].value, 1.0f}));
    }
    return values;
}

} // namespace

Text effectNameOf(const Text& path)
{
    Text file = nameOf(path);
    const Text::size_type dot = file.rfind(L'.');
    if (dot != Text::npos)
        file = file.substr(0, dot);
    Text name;
    for (Text::size_type i = 0; i < file.size(); ++i) {
        const bool startsWord = i > 0 && file[i] >= L'A' && file[i] <= L'Z' &&
                                !(file[i - 1] >= L'A' && file[i - 1] <= L'Z');
        if (startsWord)
            name += L" ";
        name.push_back(file[i]);
    }
    return name;
}

Text troubleOf(const Text& listing, const Text& effectPath)
{
    Text result;
    for (Text::size_type at = 0; at < listing.size();) {
        const Text::size_type end = std::min(listing.find(L'\n', at), listing.size());
        if (end > at)
            result += broken(explained(listing.substr(at, end - at), effectPath));
        at = end + 1;
    }
    return result;
}

std::vector<EffectFile> findEffects()
{
    const Text folder = OS()->shell()->getFolderLocation(iShell::eResources) + L"Shaders/";
    std::vector<iFileManager::DirectoryItem> items;
    std::vector<EffectFile> found;
    OS()->fileMgr()->getDirectoryContents(folder + L"*.fx", items, true, false);
    for (const iFileManager::DirectoryItem& item : items) {
        const Text path = folder + item.name_;
        const Tq::Ptr<iFXFile> file = OS()->mediaServices()->compileFXFile(path);
        if (!file->isCompiled() || (inputsOf(*file) == 1 && !isHidden(*file)))
            found.push_back({path, effectNameOf(path)});
    }
    std::sort(found.begin(), found.end(),
              [](const EffectFile& a, const EffectFile& b) { return a.name < b.name; });
    found.push_back({Text(), L"Colour Correct (compute)"});
    return found;
}

std::vector<EffectControl> controlsOf(const iShaderEffect& effect)
{
    static const wchar_t* const kComponents[] = {L" red", L" green", L" blue"};
    std::vector<EffectControl> controls;
    for (unsigned int i = 0; i < effect.getNumParams(); ++i) {
        const Tq::Ptr<iShaderParam> param = effect.getParam(i);
        if (!param->getSemantic().empty() && !param->hasAnnotation("UIName", iShaderParam::eString))
            continue;
        EffectControl control = controlOf(*param);
        switch (param->getType()) {
        case iShaderParam::eFloat:
        case iShaderParam::eInt:
        case iShaderParam::eBool:
            control.initial = control.value = param->getDefaultFloatValue();
            controls.push_back(control);
            break;
        case iShaderParam::eColour: {
            const NormalisedRGB initial = param->getDefaultColourValue();
            const float values[] = {initial.red, initial.green, initial.blue};
            const Text label = control.label;
            control.isColour = true;
            for (control.component = 0; control.component < 3; ++control.component) {
                control.label = label + kComponents[control.component];
                control.initial = control.value = values[control.component];
                controls.push_back(control);
            }
            break;
        }
        default:
            break;
        }
    }
    return controls;
}

void LiveEffect::follow(EffectPanel& panel)
{
    const EffectFile file = panel.chosen == EffectPanel::kNone
                                ? EffectFile()
                                : panel.files[static_cast<std::size_t>(panel.chosen)];
    if (!(file == file_))
        take(file);
    else if (effect_)
        effect_->reloadIfChanged();
    else if (!file.path.empty())
        retry(file.path);
    if (effect_) {
        isNew_ = isNew_ || revision_ != effect_->getRevision();
        revision_ = effect_->getRevision();
        trouble_ =
            effect_->isOutdated() ? troubleOf(wide(effect_->getListing()), file.path) : Text();
    }
    if (isNew_)
        panel.offer(offered(), techniques());
    panel.trouble = trouble_;
    keepPath(panel);
    isNew_ = false;
}

void LiveEffect::take(const EffectFile& file)
{
    file_ = file;
    isGrade_ = file.path.empty() && !file.name.empty();
    load(file.path);
    if (!isGrade_)
        return;
    device_ = ComputeDevice::instance();
    if (!device_->context()) {
        trouble_ = troubleOf(kNoComputeDevice, Text());
        isGrade_ = false;
    }
}

std::vector<EffectControl> LiveEffect::offered() const
{
    if (isGrade_)
        return gradeControls();
    return effect_ ? controlsOf(*effect_) : std::vector<EffectControl>();
}

std::vector<Text> LiveEffect::techniques() const
{
    std::vector<Text> names;
    for (unsigned int i = 0; effect_ && i < effect_->getNumTechniques(); ++i)
        names.push_back(effectNameOf(wide(effect_->getTechniqueName(i))));
    return names;
}

void LiveEffect::load(const Text& path)
{
    effect_.reset();
    trouble_.clear();
    refused_ = 0;
    isNew_ = true;
    lookedMs_ = OS()->utils()->timeNow();
    if (path.empty())
        return;
    effect_ = OS()->mediaServices()->createShaderEffect(path);
    if (effect_) {
        revision_ = effect_->getRevision();
        return;
    }
    const Tq::Ptr<iFXFile> file = OS()->mediaServices()->compileFXFile(path);
    const Text listing = wide(file->getListing());
    trouble_ =
        listing.empty() ? Text(L"this effect cannot be used here") : troubleOf(listing, path);
    refused_ = file->isCompiled() ? stampOf(path) : 0;
}

// Nothing more is loaded, and printed, until the file can be compiled; where it can be but is of no
// use here, until it is another.
void LiveEffect::retry(const Text& path)
{
    const double now = OS()->utils()->timeNow();
    if (now - lookedMs_ < kRetryMs)
        return;
    lookedMs_ = now;
    if (refused_ != 0 && refused_ == stampOf(path))
        return;
    const Tq::Ptr<iFXFile> file = OS()->mediaServices()->compileFXFile(path);
    if (file->isCompiled())
        load(path);
    else
        trouble_ = troubleOf(wide(file->getListing()), path);
}

void LiveEffect::keepPath(const EffectPanel& panel)
{
    if (!isNew_ && panel.controls == used_ && panel.technique == usedTechnique_)
        return;
    used_ = panel.controls;
    usedTechnique_ = panel.technique;
    shown_.reset();
    if (isGrade_ && used_.size() == 4) {
        auto path = std::make_shared<PicturePath>();
        path->grade = GradeValues{used_[0].value, used_[1].value, used_[2].value, used_[3].value};
        shown_ = std::move(path);
    } else if (effect_) {
        auto path = std::make_shared<PicturePath>();
        path->technique.effect_ = effect_;
        path->technique.name_ =
            effect_->getTechniqueName(static_cast<unsigned int>(usedTechnique_));
        path->technique.values_ = valuesOf(used_);
        shown_ = std::move(path);
    }
}

} // namespace Vantor
