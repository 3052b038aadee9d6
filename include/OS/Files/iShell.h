#pragma once

#include <OS/Core/iObject.h>

/// The desktop's shell, reached as OS()->shell().
class OS_API iShell : public iObject
{
};
