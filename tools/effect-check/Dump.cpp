#include "Dump.h"

#include <OS.h>
#include <OS/Core/iUtils.h>

#include <array>
#include <charconv>

namespace {

std::string plain(const iFXFile::Text& text)
{
    return {text.data(), text.size()};
}

std::string number(double value)
{
    std::array<char, 32> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    return {digits.data(), end};
}

std::string valueText(const iFXFile::Value& value)
{
    if (value.numbers_.empty())
        return plain(value.type_) == "string" ? '"' + plain(value.text_) + '"' : plain(value.text_);
    if (value.numbers_.size() == 1)
        return number(value.numbers_[0]);
    std::string text;
    for (const double each : value.numbers_)
        text += (text.empty() ? "{" : ", ") + number(each);
    return text + "}";
}

std::string annotationText(const std::vector<iFXFile::Annotation>& annotations)
{
    std::string text;
    for (const iFXFile::Annotation& each : annotations)
        text += " " + plain(each.value_.type_) + " " + plain(each.name_) + " = " +
                valueText(each.value_) + ";";
    return text.empty() ? text : " <" + text + " >";
}

std::string stateText(const std::vector<iFXFile::State>& states, const std::string& indent)
{
    std::string text;
    for (const iFXFile::State& each : states) {
        text += indent + plain(each.name_);
        if (each.index_ >= 0)
            text += "[" + std::to_string(each.index_) + "]";
        text += " = " + valueText(each.value_) + "\n";
    }
    return text;
}

std::string indented(const std::string& text, const std::string& indent)
{
    std::string result;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        result += indent + text.substr(start, end - start) + "\n";
        start = end + 1;
    }
    return result;
}

std::string parameterText(const iFXFile::Parameter& parameter)
{
    std::string text = "  " + plain(parameter.type_) + " " + plain(parameter.name_);
    if (parameter.hasSemantic_)
        text += " : " + plain(parameter.semantic_);
    text += annotationText(parameter.annotations_);
    if (parameter.hasInitial_)
        text += " = " + valueText(parameter.initial_);
    return text + "\n" + stateText(parameter.states_, "    ");
}

std::string passText(const iFXFile::Pass& pass)
{
    std::string text = "  pass " + plain(pass.name_) + annotationText(pass.annotations_) + "\n";
    text += stateText(pass.states_, "    ");
    if (!pass.isTranslated_)
        return text + "    not translated:\n" + indented(plain(pass.listing_), "      ");
    text += pass.hasVertexProgram_ ? "    vertex program:\n" : "    vertex program (standard):\n";
    text += indented(plain(pass.vertexText_), "      ");
    text += pass.hasFragmentProgram_ ? "    fragment program:\n" : "    no fragment program\n";
    return text + indented(plain(pass.fragmentText_), "      ");
}

} // namespace

std::string dump(const iFXFile& file)
{
    std::string text;
    for (const LightweightString<wchar_t>& path : file.getFiles())
        text += "file " + plain(OS()->utils()->toUTF8(path)) + "\n";
    text += "parameters\n";
    for (const iFXFile::Parameter& parameter : file.getParameters())
        text += parameterText(parameter);
    for (const iFXFile::Technique& technique : file.getTechniques()) {
        text +=
            "technique " + plain(technique.name_) + annotationText(technique.annotations_) + "\n";
        for (const iFXFile::Pass& pass : technique.passes_)
            text += passText(pass);
    }
    return text;
}
