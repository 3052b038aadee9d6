#include "Model/Units.h"

#include <algorithm>
#include <cmath>

namespace Quay {

namespace {

constexpr const wchar_t* kBinary[] = {L" B", L" KiB", L" MiB", L" GiB", L" TiB", L" PiB", L" EiB"};
constexpr const wchar_t* kDecimal[] = {L" B", L" kB", L" MB", L" GB", L" TB", L" PB", L" EB"};

Text whole(std::uint64_t value)
{
    return std::to_wstring(value).c_str();
}

} // namespace

Text sizeText(std::uint64_t bytes, Units units)
{
    const std::uint64_t step = units == Units::eBinary ? 1024 : 1000;
    const auto& names = units == Units::eBinary ? kBinary : kDecimal;
    if (bytes < step)
        return whole(bytes) + names[0];
    int power = 0;
    double value = static_cast<double>(bytes);
    // What would be rounded up to a whole next unit is told in that unit.
    while (power < 6 && value >= static_cast<double>(step) - 0.5) {
        value /= static_cast<double>(step);
        ++power;
    }
    const bool tenths = value < 99.95;
    const auto rounded = static_cast<std::uint64_t>(std::llround(value * (tenths ? 10.0 : 1.0)));
    if (!tenths)
        return whole(rounded) + names[power];
    return whole(rounded / 10) + (rounded % 10 != 0 ? L"." + whole(rounded % 10) : Text()) +
           names[power];
}

Text percentText(double part)
{
    if (!(part > 0.0))
        return L"0 %";
    if (part >= 1.0)
        return L"100 %";
    return decimal(std::clamp(static_cast<int>(std::lround(part * 100.0)), 1, 99)) + L" %";
}

Text shortNumber(double value)
{
    if (!std::isfinite(value) || std::abs(value) > 1e9)
        return L"\u2013";
    const long long hundredths = std::llround(std::abs(value) * 100.0);
    Text text = whole(static_cast<std::uint64_t>(hundredths / 100));
    if (const int rest = static_cast<int>(hundredths % 100); rest != 0)
        text += L"." + (rest % 10 == 0 ? decimal(rest / 10) : decimal(rest, 2));
    return value < 0.0 && hundredths != 0 ? L"-" + text : text;
}

Text countText(std::size_t count, const wchar_t* one, const wchar_t* many)
{
    return whole(count) + L" " + (count == 1 ? one : many);
}

Text hexText(std::uint64_t value, int digits)
{
    Text text;
    for (int shift = (digits - 1) * 4; shift >= 0; shift -= 4)
        text += L"0123456789ABCDEF"[value >> shift & 0xF];
    return text;
}

Text intervalText(int ms)
{
    return ms == 500 ? Text(L"\u00BD s") : shortNumber(ms / 1000.0) + L" s";
}

} // namespace Quay
