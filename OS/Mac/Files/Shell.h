#pragma once

#include <OS/Files/iShell.h>

/// iShell.
class Shell final : public iShell
{
};
