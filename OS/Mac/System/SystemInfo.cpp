#include "OS/Mac/System/SystemInfo.h"

#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/Core/QtText.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"
#include "OS/Mac/System/GraphicsReport.h"
#include "OS/Mac/System/MemoryStatistics.h"
#include "OS/Mac/System/OsRelease.h"

#include <OS.h>
#include <OS/Core/iUtils.h>

#include <QGuiApplication>
#include <QScreen>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <unistd.h>

namespace {

std::string contents(const char* path)
{
    std::ifstream file(path);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

Tq::Rectangle<int> rectangle(const QRect& r)
{
    return {r.left(), r.top(), r.left() + r.width(), r.top() + r.height()};
}

iSystemInfo::MonitorInfo describe(const QScreen& screen)
{
    iSystemInfo::MonitorInfo info;
    info.fullRect_ = rectangle(screen.geometry());
    info.desktopRect_ = rectangle(screen.availableGeometry());
    info.physicalSizeMm_ = XY<int>(static_cast<int>(std::lround(screen.physicalSize().width())),
                                   static_cast<int>(std::lround(screen.physicalSize().height())));
    info.scale_ = screen.devicePixelRatio();
    info.refreshRateHz_ = screen.refreshRate();
    info.bitsPerPixel_ = screen.depth();
    info.primary_ = &screen == QGuiApplication::primaryScreen();
    info.name_ = OSInternal::fromQString(screen.name());
    return info;
}

} // namespace

unsigned int SystemInfo::getNumberOfProcessors()
{
    const long count = sysconf(_SC_NPROCESSORS_CONF);
    return count > 0 ? static_cast<unsigned int>(count) : 0;
}

void SystemInfo::getMonitorInfo(std::vector<MonitorInfo>& monitors)
{
    if (!qGuiApp)
        return;
    for (const QScreen* screen : QGuiApplication::screens())
        monitors.push_back(describe(*screen));
}

SystemInfo::MemoryInfo SystemInfo::getMemoryInfo()
{
    const long pageSize = sysconf(_SC_PAGESIZE);
    if (pageSize <= 0) {
        std::fputs("getting page size\n", stderr);
        return {};
    }
    const auto info = parseMemoryInfo(contents("/proc/meminfo"), contents("/proc/self/statm"),
                                      static_cast<std::uint64_t>(pageSize));
    if (!info) {
        std::fputs("Failed to get VM statistics.\n", stderr);
        return {};
    }
    return *info;
}

LightweightString<wchar_t> SystemInfo::getComputerName()
{
    char name[256] = {};
    if (gethostname(name, sizeof name - 1) != 0)
        return {};
    const LightweightString<wchar_t> full = OS()->utils()->fromUTF8(name, -1);
    return full.substr(0, full.find(L'.'));
}

LightweightString<wchar_t> SystemInfo::getOSVersion()
{
    const OsRelease release = OsRelease::read();
    if (release.name.empty())
        OSInternal::reportAssertion("false", "OS/Mac/SystemInfo line 148");
    const std::string text = release.name + " (" + release.version + ")";
    return OS()->utils()->fromUTF8(text.c_str(), -1);
}

LightweightString<wchar_t> SystemInfo::getGraphicsDriverVendor()
{
    return OS()->utils()->fromUTF8(OpenGLUtils::getVendor().c_str(), -1);
}

LightweightString<char> SystemInfo::getVariable(const LightweightString<char>&,
                                                const LightweightString<char>&,
                                                LightweightString<char>)
{
    return {};
}

void SystemInfo::getGraphicsReport(std::vector<GraphicsFact>& facts)
{
    OpenGLUtils::instance();
    if (!OpenGLUtils::isInitialised())
        facts.push_back({"Context", L"none"});
    else
        reportDriver(facts);
    std::vector<MonitorInfo> monitors;
    getMonitorInfo(monitors);
    for (const MonitorInfo& monitor : monitors) {
        char ratio[32];
        std::snprintf(ratio, sizeof ratio, "%g on ", monitor.scale_);
        facts.push_back({"Device ratio", OS()->utils()->fromUTF8(ratio, -1) + monitor.name_});
    }
}
