#pragma once

#include <OS/Core/iObject.h>

class OS_API iThreadManager : public iObject
{
};
