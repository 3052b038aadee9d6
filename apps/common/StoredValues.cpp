#include "common/StoredValues.h"

#include <OS.h>
#include <OS/Core/iUtils.h>

#include <charconv>
#include <cmath>

namespace App {

double StoredValues::number(const char* name, double fallback, double least, double most) const
{
    if (!settings_)
        return fallback;
    const LightweightString<char> text = settings_->getValue(name, "", section_);
    double value = 0.0;
    const auto result = std::from_chars(text.begin(), text.end(), value);
    const bool sound = result.ec == std::errc() && result.ptr == text.end() && value >= least &&
                       value <= most; // false for what is no number, too
    return sound ? value : fallback;
}

int StoredValues::integer(const char* name, int fallback, int least, int most) const
{
    return static_cast<int>(std::lround(number(name, fallback, least, most)));
}

bool StoredValues::flag(const char* name, bool fallback) const
{
    return integer(name, fallback ? 1 : 0, 0, 1) != 0;
}

Text StoredValues::text(const char* name, const Text& fallback) const
{
    if (!settings_)
        return fallback;
    const LightweightString<char> value = settings_->getValue(name, "", section_);
    return value.empty() ? fallback
                         : OS()->utils()->fromUTF8(value.c_str(), static_cast<int>(value.size()));
}

void StoredValues::setNumber(const char* name, double value)
{
    char digits[64];
    const auto result = std::to_chars(digits, digits + sizeof digits - 1, value);
    *result.ptr = 0;
    if (settings_)
        settings_->setValue(name, digits, section_);
}

void StoredValues::setInteger(const char* name, int value)
{
    setNumber(name, value);
}

void StoredValues::setText(const char* name, const Text& value)
{
    Text line = value;
    line.replaceAll(L"\n", L" ").replaceAll(L"\r", L" ");
    if (settings_)
        settings_->setValue(name, OS()->utils()->toUTF8(line).c_str(), section_);
}

void StoredValues::remove(const char* name)
{
    if (settings_)
        settings_->removeValue(name, section_);
}

} // namespace App
