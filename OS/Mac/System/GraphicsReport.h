#pragma once

#include <OS/System/iSystemInfo.h>

#include <vector>

/// Appends what the GL driver says of itself: see iSystemInfo::getGraphicsReport. OpenGLUtils has
/// been built. Takes the GL lock.
void reportDriver(std::vector<iSystemInfo::GraphicsFact>& facts);
