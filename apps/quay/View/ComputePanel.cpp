#include "View/Panels.h"

#include <algorithm>

namespace Quay {

namespace {

void addDevice(Panel& panel, const ComputeDevice& device)
{
    panel.rows.push_back(HeadingRow{device.name, device.chosen ? L"chosen"
                                                 : device.gpu  ? L"GPU"
                                                               : L"no GPU"});
    panel.rows.push_back(FactRow{L"Runtime", device.platform});
    panel.rows.push_back(FactRow{L"Version", device.version});
    panel.rows.push_back(FactRow{L"With OpenGL", device.sharing ? L"shares images" : L"apart"});
    if (!device.chosen)
        panel.rows.push_back(FactRow{L"Not chosen", device.reason});
}

} // namespace

Panel computePanel(const Compute& compute)
{
    Panel panel{L"compute", L"Compute", {}, {}};
    if (!compute.read) {
        panel.rows.push_back(NoteRow{L"The runtimes have not answered yet"});
        return panel;
    }
    panel.fact = countText(compute.devices.size(), L"device", L"devices");
    if (compute.devices.empty())
        panel.rows.push_back(NoteRow{L"No runtime for compute is installed"});
    const bool works = std::any_of(compute.devices.begin(), compute.devices.end(),
                                   [](const ComputeDevice& device) { return device.chosen; });
    if (!works && !compute.devices.empty())
        panel.rows.push_back(NoteRow{L"None of them computes for OpenGL"});
    for (const ComputeDevice& device : compute.devices)
        addDevice(panel, device);
    return panel;
}

} // namespace Quay
