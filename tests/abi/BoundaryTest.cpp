#include <OS.h>
#include <OS/Core/Exception.h>
#include <OS/Core/iUtils.h>
#include <OS/Media/iMediaServices.h>
#include <OS/Threads/TaskQueue.h>
#include <OS/Threads/iThreadEvent.h>
#include <OS/Threads/iThreadManager.h>

#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <langinfo.h>
#include <locale.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// Made before main.
iOperatingSystem* const earlyRoot = OS();
const LightweightString<wchar_t> earlyText = LightweightString<wchar_t>(L"made before ") + L"main";

} // namespace

TEST(Boundary, TheRootServesStaticConstructors)
{
    EXPECT_EQ(earlyRoot, OS());
    EXPECT_EQ(earlyText, L"made before main");
    std::string name;
    std::getline(std::ifstream("/proc/self/task/" + std::to_string(getpid()) + "/comm"), name);
    EXPECT_EQ(name, "Main thread");
}

TEST(Boundary, NumbersKeepTheirPointWhateverTheUsersLocale)
{
    const locale_t users = newlocale(LC_NUMERIC_MASK, "", nullptr);
    ASSERT_NE(users, nullptr);
    EXPECT_STREQ(nl_langinfo_l(RADIXCHAR, users), ",") << "the test needs a locale with a comma";
    freelocale(users);

    const auto formatted = [] {
        char text[16];
        std::snprintf(text, sizeof text, "%.1f", 1.5);
        return std::string(text);
    };
    EXPECT_EQ(formatted(), "1.5");
    ASSERT_TRUE(OS()->mediaServices()->createHostSurfaceFont(L"Tahoma", 12,
                                                             0)); // makes the toolkit's application
    EXPECT_EQ(formatted(), "1.5");
}

TEST(Boundary, ExceptionsOfTheLibraryAreCaughtByTheirType)
{
    const std::vector<Tq::Ptr<iThreadEvent>> events(
        65, OS()->threadMgr()->createEvent(false, false, nullptr));
    try {
        OS()->threadMgr()->waitForEvents(events, false, 10);
        FAIL() << "65 events were accepted";
    } catch (const Tq::Exception::Base& error) {
        EXPECT_STREQ(error.typeName(), "RuntimeError");
        EXPECT_STREQ(error.message(), "addSubscription failed");
    }
}

TEST(Boundary, AForkedChildStillHasItsHeapAndClocks)
{
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        const LightweightString<char> text = LightweightString<char>("still ") + "works";
        _exit(text == "still works" && OS()->utils()->timeNow() > 0 ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}
