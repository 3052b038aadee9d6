#pragma once

#include <OS/System/iSystemInfo.h>

#include <optional>
#include <string>

/// The system's memory record, from the kernel's text files (proc(5)).
///
/// @param meminfo text of /proc/meminfo @param statm text of /proc/self/statm
/// @return nothing when the first has no total, free, active or inactive memory
std::optional<iSystemInfo::MemoryInfo>
parseMemoryInfo(const std::string& meminfo, const std::string& statm, std::uint64_t pageSize);
