#include <OS/Shared/HeapFactory.h>

#include "OS/Shared/TqHeap_Debug.h"

#include <OS.h>
#include <OS/Files/iSettings.h>
#include <OS/Files/iShell.h>
#include <OS/Shared/MTHeap.h>

namespace Tq {

std::unique_ptr<iHeap> createHeap()
{
    const Tq::Ptr<iSettings> settings = OS()->shell()->getSettings(iSettings::eGlobal);
    if (settings && settings->getValue("DebugHeap", "0", nullptr) == "1")
        return std::make_unique<DebugHeap>(DebugHeap::quarantineMbFrom(
            settings->getValue("DebugHeapQuarantineMb", nullptr, nullptr).c_str()));
    return std::make_unique<MTHeap>();
}

} // namespace Tq
