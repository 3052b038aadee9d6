#pragma once

#include <OS/Core/LightweightString.h>

#include <QString>

/// Between this library's strings and the toolkit's.
namespace OSInternal {

inline QString toQString(const LightweightString<wchar_t>& text)
{
    return QString::fromWCharArray(text.c_str(), static_cast<int>(text.size()));
}

inline LightweightString<wchar_t> fromQString(const QString& text)
{
    LightweightString<wchar_t> result;
    result.resizeFor(static_cast<std::size_t>(text.size()));
    if (wchar_t* chars = result.writableData())
        result.resize(static_cast<std::uint32_t>(text.toWCharArray(chars)));
    return result;
}

} // namespace OSInternal
