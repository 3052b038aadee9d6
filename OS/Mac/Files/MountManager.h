#pragma once

#include <OS/Files/iMountManager.h>

/// iMountManager. No state.
class MountManager final : public iMountManager
{
};
