#pragma once

#include <OS/System/iSystemInfo.h>

#include <string>
#include <vector>

namespace App {

/// What the graphics driver says of itself, for people or as one JSON array of objects with "name"
/// and "value"; UTF-8.
std::string writeReport(const std::vector<iSystemInfo::GraphicsFact>& facts, bool json);

/// Prints the report of this machine. Starts GL, and ends it again.
void printGraphicsReport(bool json);

} // namespace App
