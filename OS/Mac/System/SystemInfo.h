#pragma once

#include <OS/System/iSystemInfo.h>

/// iSystemInfo on sysconf, the kernel's text files, os-release and the toolkit's screens and GL. No
/// state.
class SystemInfo final : public iSystemInfo
{
public:
    unsigned int getNumberOfProcessors() override;
    void getMonitorInfo(std::vector<MonitorInfo>& monitors) override;
    MemoryInfo getMemoryInfo() override;
    LightweightString<wchar_t> getComputerName() override;
    LightweightString<wchar_t> getOSVersion() override;
    LightweightString<wchar_t> getGraphicsDriverVendor() override;
    LightweightString<char> getVariable(const LightweightString<char>& section,
                                        const LightweightString<char>& name,
                                        LightweightString<char> fallback) override;
    void getGraphicsReport(std::vector<GraphicsFact>& facts) override;
};
