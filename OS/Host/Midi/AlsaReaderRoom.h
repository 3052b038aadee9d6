#pragma once

#include <cstddef>

namespace OSInternal {

/// Whether a program that reads from the sequencer has room for one more event. The kernel drops
/// what a slow reader has no room for, and tells only the reader.
/// @param descriptor of any client @param reader its number; the kernel's own and those that have
/// gone always have room: they refuse for themselves
/// @param dataBytes of a variable length, behind the event's own cell
bool hasAlsaReaderRoom(int descriptor, int reader, std::size_t dataBytes);

} // namespace OSInternal
