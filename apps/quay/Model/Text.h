#pragma once

#include "common/Geometry.h"
#include "common/Text.h"

namespace Quay {

// What the sample applications share goes by its plain name here.
using namespace App;

} // namespace Quay
