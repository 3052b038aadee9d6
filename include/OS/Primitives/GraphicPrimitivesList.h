#pragma once

#include <OS/Core/iObject.h>

class OS_API GraphicPrimitivesList : public virtual iObject
{
};
