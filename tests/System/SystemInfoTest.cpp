#include "support/OutputCapture.h"

#include "OS/Mac/System/MemoryStatistics.h"
#include "OS/Mac/System/OsRelease.h"

#include <OS.h>
#include <OS/System/iSystemInfo.h>

#include <gtest/gtest.h>

#include <fstream>
#include <sys/utsname.h>
#include <unistd.h>

TEST(SystemInfo, MemoryAddsUpFromTheKernelsText)
{
    const auto info = parseMemoryInfo(
        "MemTotal:  1000 kB\nMemFree:  200 kB\nMemAvailable: 900 kB\nActive: 300 kB\n"
        "Inactive:   100 kB\nActive(anon): 7 kB\n",
        "50 20 10 1 0 5 0\n", 4096);
    ASSERT_TRUE(info);
    EXPECT_EQ(info->totalPhysical_, 1000u * 1024);
    EXPECT_EQ(info->availablePhysical_, 300u * 1024) << "free and inactive";
    EXPECT_EQ(info->wired_, 400u * 1024);
    EXPECT_EQ(info->processVirtual_, 50u * 4096);
    EXPECT_EQ(info->processResident_, 20u * 4096);
    EXPECT_EQ(info->totalVirtual_, 0u);

    EXPECT_FALSE(parseMemoryInfo("MemTotal: 1000 kB\n", "1 1", 4096));
    EXPECT_FALSE(parseMemoryInfo("", "", 4096));
    const auto odd =
        parseMemoryInfo("MemTotal: 1 kB\nMemFree: 9 kB\nActive: 1 kB\nInactive: 1 kB\n", "", 4096);
    ASSERT_TRUE(odd);
    EXPECT_EQ(odd->wired_, 0u) << "never below nothing";
}

TEST(SystemInfo, ThisMachineIsPlausible)
{
    iSystemInfo* system = OS()->systemInfo();
    const auto memory = system->getMemoryInfo();
    EXPECT_GT(memory.totalPhysical_, memory.availablePhysical_);
    EXPECT_GT(memory.processVirtual_, memory.processResident_);
    EXPECT_GT(memory.processResident_, 1u << 20);
    EXPECT_EQ(system->getNumberOfProcessors(),
              static_cast<unsigned int>(sysconf(_SC_NPROCESSORS_CONF)));

    utsname names;
    ASSERT_EQ(uname(&names), 0);
    const std::string host =
        std::string(names.nodename).substr(0, std::string(names.nodename).find('.'));
    EXPECT_EQ(system->getComputerName(), std::wstring(host.begin(), host.end()).c_str());
    EXPECT_TRUE(system->getOSVersion().endsWith(L")"));
    EXPECT_TRUE(system->getVariable("a", "b", "c").empty()) << "deliberate";

    std::vector<iSystemInfo::MonitorInfo> monitors;
    system->getMonitorInfo(monitors);
    EXPECT_TRUE(monitors.empty()) << "no application object yet";
}

TEST(SystemInfo, SaysSoWhereThereIsNoOpenGL)
{
    EXPECT_TRUE(OS()->systemInfo()->getGraphicsDriverVendor().empty()) << "GL was not started";
    std::vector<iSystemInfo::GraphicsFact> facts;
    OutputCapture output;
    OS()->systemInfo()->getGraphicsReport(facts);
    EXPECT_EQ(output.text(), "OpenGLUtils::instance() : no display\n");
    ASSERT_EQ(facts.size(), 2u);
    EXPECT_EQ(facts[0].name_, "Context");
    EXPECT_EQ(facts[0].value_, L"none");
    EXPECT_EQ(facts[1].name_, "Device ratio");
    EXPECT_TRUE(facts[1].value_.startsWith(L"1 on "));
}

TEST(SystemInfo, ReadsTheReleaseFileAsAShellWould)
{
    const std::string path = testing::TempDir() + "/os-release" + std::to_string(getpid());
    struct Case
    {
        const char* text;
        const char* name;
        const char* version;
    };
    for (const Case& c :
         {Case{"NAME=\"Debian GNU/Linux\"\nVERSION_ID=\"12\"\n", "Debian GNU/Linux", "12"},
          Case{"VERSION_ID='3.1'\nNAME=Plain\n", "Plain", "3.1"},
          Case{"PRETTY_NAME=x\nNAME=\"a \\\"b\\\"\"\n", "a \"b\"", ""}, Case{"", "", ""}}) {
        std::ofstream(path) << c.text;
        const OsRelease release = OsRelease::read(path);
        EXPECT_EQ(release.name, c.name);
        EXPECT_EQ(release.version, c.version);
    }
    unlink(path.c_str());
    EXPECT_TRUE(OsRelease::read(path).name.empty());
}
