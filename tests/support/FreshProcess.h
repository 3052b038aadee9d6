#pragma once

#include "support/ChildProcess.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

/// For a test of what a process settles once, such as the home that the desktop's library saw
/// first: runs the calling test once more in a process of its own.
/// @return whether this is not that process; the test has nothing left to do then
inline bool runsInFreshProcess()
{
    static constexpr char kFresh[] = "OS_TEST_FRESH_PROCESS";
    if (std::getenv(kFresh))
        return false;
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    const std::string filter =
        std::string("--gtest_filter=") + test->test_suite_name() + "." + test->name();
    const int status = inChild([&] {
        setenv(kFresh, "1", 1);
        execl("/proc/self/exe", "test", filter.c_str(), "--gtest_repeat=1", nullptr);
        return 1;
    });
    EXPECT_EQ(status, 0) << "see above";
    return true;
}
