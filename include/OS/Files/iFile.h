#pragma once

#include <OS/Core/iObject.h>

/// An open file, made by the file manager and shared through Tq::Ptr; closed with its last
/// reference.
class OS_API iFile : public iObject
{
};
