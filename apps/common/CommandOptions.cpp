#include "common/CommandOptions.h"

#include <OS.h>
#include <OS/Core/iUtils.h>

#include <algorithm>
#include <charconv>
#include <string_view>

namespace App {

namespace {

bool number(std::string_view text, int& value)
{
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

bool parseSize(std::string_view text, const SizeLimits& limits, Point& size)
{
    const std::size_t cross = text.find('x');
    return cross != std::string_view::npos && number(text.substr(0, cross), size.x) &&
           number(text.substr(cross + 1), size.y) && size.x >= limits.smallest.x &&
           size.x <= limits.largest.x && size.y >= limits.smallest.y && size.y <= limits.largest.y;
}

bool parseScale(std::string_view text, double& scale)
{
    static constexpr struct
    {
        std::string_view text;
        double scale;
    } kScales[] = {{"1", 1.0},   {"1.0", 1.0}, {"1.25", 1.25},
                   {"1.5", 1.5}, {"2", 2.0},   {"2.0", 2.0}};
    for (const auto& known : kScales)
        if (known.text == text) {
            scale = known.scale;
            return true;
        }
    return false;
}

Text wide(const char* text)
{
    return OS()->utils()->fromUTF8(text, -1);
}

Text sizeText(const Point& size)
{
    return decimal(size.x) + L"x" + decimal(size.y);
}

/// Reads one option's value. @return what is wrong with it, or nothing
Text parseOption(std::string_view option, const char* value, const SizeLimits& limits,
                 CommandOptions& options)
{
    if (option == "--frame") {
        options.frameFile = wide(value);
        return options.frameFile.empty() ? Text(L"--frame needs the name of a file") : Text();
    }
    if (option == "--grab") {
        options.grabFile = wide(value);
        return options.grabFile.empty() ? Text(L"--grab needs the name of a file") : Text();
    }
    if (option == "--size")
        return parseSize(value, limits, options.size)
                   ? Text()
                   : L"--size takes WxH between " + sizeText(limits.smallest) + L" and " +
                         sizeText(limits.largest) + L", not \"" + wide(value) + L"\"";
    if (option == "--scale")
        return parseScale(value, options.scale)
                   ? Text()
                   : L"--scale takes 1, 1.25, 1.5 or 2, not \"" + wide(value) + L"\"";
    return number(value, options.seconds) && options.seconds >= 1 && options.seconds <= 86400
               ? Text()
               : L"--seconds takes a number from 1 to 86400, not \"" + wide(value) + L"\"";
}

} // namespace

Text parseOptions(int count, const char* const* arguments, const SizeLimits& limits,
                  CommandOptions& options, const std::vector<OwnOption>& ownOptions)
{
    for (int i = 0; i < count; ++i) {
        const std::string_view argument = arguments[i];
        const auto own = std::find_if(ownOptions.begin(), ownOptions.end(),
                                      [&](const OwnOption& o) { return argument == o.name; });
        if (own != ownOptions.end()) {
            if (own->takesValue && i + 1 >= count)
                return wide(arguments[i]) + L" needs a value";
            options.own[own->name] = own->takesValue ? wide(arguments[++i]) : Text();
        } else if (argument == "--help" || argument == "-h") {
            options.help = true;
        } else if (argument == "--version") {
            options.version = true;
        } else if (argument == "--gl-report") {
            options.glReport = true;
        } else if (argument == "--json") {
            options.json = true;
        } else if (argument == "--frame" || argument == "--grab" || argument == "--size" ||
                   argument == "--scale" || argument == "--seconds") {
            if (i + 1 >= count)
                return wide(arguments[i]) + L" needs a value";
            const Text wrong = parseOption(argument, arguments[++i], limits, options);
            if (!wrong.empty())
                return wrong;
        } else if (argument.starts_with("-") && argument.size() > 1) {
            return L"unknown option \"" + wide(arguments[i]) + L"\"";
        } else {
            options.others.push_back(wide(arguments[i]));
        }
    }
    if (options.json && !options.glReport)
        return L"--json goes with --gl-report";
    return {};
}

} // namespace App
