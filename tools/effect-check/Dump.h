#pragma once

#include <OS/Effects/iFXFile.h>

#include <string>

/// All that an effect file says, and its programs as GLSL, for people to read.
std::string dump(const iFXFile& file);
