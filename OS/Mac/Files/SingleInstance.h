#pragma once

#include "OS/Mac/Core/Descriptor.h"

#include <OS/Core/Ptr.h>
#include <OS/Core/iObject.h>

/// The claim to be the only running instance: an advisory lock (flock) on the file
/// ".thereCanBeOnlyOne" in the preferences folder, held until this object goes or the process ends.
///
/// The file is never removed: its being there says nothing. A second claim in the same process
/// fails like any other. Programs started through iProcessManager do not hold the lock; a forked
/// child that has not exec'ed does, as long as it lives.
class SingleInstance final : public iObject
{
public:
    /// @return null when another claim is held. Where the file can not be made or locked (a
    ///         read-only home, a network folder without locks) the claim is granted without it
    static Tq::Ptr<iObject> claim();

private:
    explicit SingleInstance(OSInternal::Descriptor lock);

    OSInternal::Descriptor lock_;
};
