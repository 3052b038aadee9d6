#pragma once

#include <OS/Core/iObject.h>

/// A window that shows video.
class OS_API iVideoWindow : public iObject
{
};
