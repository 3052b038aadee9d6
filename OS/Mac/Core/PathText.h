#pragma once

#include <OS/Core/LightweightString.h>

#include <string_view>

/// Paths as text: between the wide form of the interfaces and the UTF-8 of the system.
namespace OSInternal {

/// A wide path for the system. A leading "//" becomes "smb://"; characters U+DC80 to U+DCFF become
/// the bytes that they stand for.
LightweightString<char> pathToSystem(const LightweightString<wchar_t>& path);

/// The reverse. "smb://" loses its first five characters, so that a network path comes back with
/// one leading "/": deliberate, the two are no inverses. A byte that is no UTF-8 becomes U+DC00
/// plus its value.
LightweightString<wchar_t> pathFromSystem(const LightweightString<char>& path);

/// The same two, but nothing is said about networks: for texts that are no paths, such as addresses
/// and labels.
LightweightString<char> textToSystem(std::wstring_view text);
LightweightString<wchar_t> textFromSystem(std::string_view text);

/// The extension of a system path's last part, in lower case and without its dot; empty when there
/// is none.
LightweightString<char> extensionOf(const LightweightString<char>& path);

} // namespace OSInternal
