#pragma once

#include <OS/Core/InternalRefCount.h>

/// The root of every shared interface: an object held through Tq::Ptr and deleted, on the thread
/// that lets go last, when its count falls to 0.
///
/// It derives virtually from the count, so a class that reaches iObject along several paths has
/// exactly one. The managers that OS() lends are iObjects too, but belong to the root: never hold
/// one of them in a Tq::Ptr.
class OS_API iObject : public virtual Tq::InternalRefCount
{
public:
    ~iObject() override = default;
};
