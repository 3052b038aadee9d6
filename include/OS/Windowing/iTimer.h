#pragma once

#include <OS/Core/iObject.h>

#include <cstdint>

/// A timer that ticks until it is released. Ticks go to an event handler on the thread of the event
/// loop; they are coarse (5 % of the interval) and late ones are not made up for.
class OS_API iTimer : public iObject
{
public:
    /// The number that this timer's events carry.
    virtual std::uint32_t getID() const = 0;
    virtual unsigned int getIntervalMs() const = 0;
};
