#include "OS/Mac/Threads/IOCompletionPort.h"
#include "Threads/SystemCalls.h"
#include "support/MemoryFile.h"

#include <gtest/gtest.h>

namespace {

void expectStatus(const iIOCompletionPort::Status& status)
{
    EXPECT_EQ(status.code_, 2u);
    EXPECT_EQ(status.value_, 0u);
}

} // namespace

TEST(IOCompletionPort, BlocksInSecondsUntilItIsTerminatedForGood)
{
    const Tq::Ptr<iIOCompletionPort> port(new IOCompletionPort);
    FakeTime time;
    time.onPause = [&] {
        if (time.pauses.size() == 3)
            port->terminate();
    };
    expectStatus(port->getStatus());
    ASSERT_EQ(time.pauses.size(), 3u);
    EXPECT_EQ(time.pauses[0].tv_sec, 1);
    EXPECT_EQ(time.pauses[0].tv_nsec, 0);

    expectStatus(port->getStatus());
    EXPECT_EQ(time.pauses.size(), 3u) << "at once";
}

TEST(IOCompletionPort, AttachesNoFile)
{
    const Tq::Ptr<iIOCompletionPort> port(new IOCompletionPort);
    const Tq::Ptr<iFile> file(new MemoryFile(""));
    EXPECT_FALSE(port->attach(file));
    EXPECT_EQ(file.useCount(), 1);
}
