#include "OS/Mac/Core/PathText.h"
#include "support/BackgroundThread.h"
#include "support/ChildProcess.h"
#include "support/HomeFolder.h"

#include <OS.h>
#include <OS/Files/iProcessManager.h>
#include <OS/Files/iShell.h>

#include <gtest/gtest.h>

namespace {

class SingleInstanceTest : public testing::Test
{
protected:
    SingleInstanceTest()
    {
        const auto folder = OS()->shell()->getFolderLocation(iShell::ePreferences);
        folder_ = OSInternal::pathToSystem(folder).c_str();
        std::filesystem::create_directories(folder_);
    }
    static Tq::Ptr<iObject> claim() { return OS()->shell()->claimSingleInstance(); }
    static bool isClaimedInAnotherProcess()
    {
        return inChild([] { return claim() ? 0 : 1; }) == 1;
    }
    std::string marker() const { return folder_ + ".thereCanBeOnlyOne"; }

    HomeFolder home_;
    std::string folder_;
};

} // namespace

TEST_F(SingleInstanceTest, IsHeldByOneClaimAtATime)
{
    EXPECT_FALSE(isClaimedInAnotherProcess());
    Tq::Ptr<iObject> first = claim();
    ASSERT_TRUE(first);
    EXPECT_FALSE(claim()) << "not twice in one process either";
    EXPECT_TRUE(isClaimedInAnotherProcess());
    first.reset();
    EXPECT_FALSE(isClaimedInAnotherProcess());
    EXPECT_TRUE(std::filesystem::exists(marker())) << "the file stays";
    EXPECT_TRUE(claim());
}

TEST_F(SingleInstanceTest, EndsWithAHolderThatCrashes)
{
    ForkedChild holder([this] {
        const auto held = claim();
        home_.write("held", held ? "yes" : "no");
        for (;;)
            pause();
        return 0;
    });
    ASSERT_TRUE(waitUntil([&] { return home_.read("held") == "yes"; }));
    EXPECT_FALSE(claim());
    holder.kill();
    EXPECT_EQ(holder.status(), 128 + SIGKILL);
    EXPECT_TRUE(claim());
}

TEST_F(SingleInstanceTest, IsNotHeldByProgramsStartedMeanwhile)
{
    Tq::Ptr<iObject> held = claim();
    iProcessManager::InitArgs args;
    args.program_ = L"sleep";
    args.arguments_ = {L"100"};
    const auto process = OS()->processMgr()->start(args);
    ASSERT_TRUE(process);
    held.reset();
    EXPECT_TRUE(claim());
    EXPECT_TRUE(process->terminate(30'000));
}

TEST_F(SingleInstanceTest, IsGrantedWhereNoMarkerCanBeMade)
{
    chmod(folder_.c_str(), 0555);
    const WithoutPrivilege ordinary;
    EXPECT_TRUE(claim());
    EXPECT_FALSE(std::filesystem::exists(marker()));
}

TEST_F(SingleInstanceTest, HoldsAMarkerThatMayOnlyBeRead)
{
    EXPECT_TRUE(claim());
    chmod(marker().c_str(), 0444);
    const WithoutPrivilege ordinary;
    const Tq::Ptr<iObject> held = claim();
    EXPECT_TRUE(held);
    EXPECT_FALSE(claim());
}
