#include "OS/Shared/TqHeap_Debug.h"

#include <OS.h>
#include <OS/Files/iSettings.h>
#include <OS/Files/iShell.h>
#include <OS/Shared/HeapFactory.h>
#include <OS/Shared/MTHeap.h>

#include <gtest/gtest.h>

TEST(HeapFactory, TheGlobalSettingChoosesTheDebugHeapForHeapsMadeLater)
{
    const auto settings = OS()->shell()->getSettings(iSettings::eGlobal);
    ASSERT_TRUE(settings);
    const auto before = Tq::createHeap();
    EXPECT_NE(dynamic_cast<Tq::MTHeap*>(before.get()), nullptr);

    settings->setValue("DebugHeap", "1", nullptr);
    settings->setValue("DebugHeapQuarantineMb", "0", nullptr);
    const auto heap = Tq::createHeap();
    settings->setValue("DebugHeap", "yes", nullptr);
    const auto after = Tq::createHeap();
    settings->removeValue("DebugHeapQuarantineMb", nullptr);
    settings->removeValue("DebugHeap", nullptr);

    ASSERT_NE(dynamic_cast<Tq::DebugHeap*>(heap.get()), nullptr);
    EXPECT_NE(dynamic_cast<Tq::MTHeap*>(after.get()), nullptr);
    void* block = heap->alloc(10);
    heap->deAlloc(block);
    EXPECT_FALSE(heap->isPointerValid(block));
}
