#include "View/Panels.h"

#include <algorithm>

namespace Quay {

namespace {

constexpr int kPlaceDigits = 6;
constexpr std::uint64_t kLines = 4;
static_assert(kLines * BytesRow::kBytes <= SerialMonitor::kKept);

// "/dev/ttyUSB0" is "ttyUSB0".
Text nameOf(const Text& path)
{
    const Text::size_type slash = path.rfind(L'/');
    return slash == Text::npos ? path : path.substr(slash + 1);
}

ItemRow portRow(const SerialPort& port, const SerialMonitor& monitor)
{
    const bool chosen = port.path == monitor.path;
    ItemRow row;
    row.label = nameOf(port.path);
    row.detail = port.product.empty() ? port.path : port.product;
    if (!port.serialNumber.empty())
        row.detail += L" \u00b7 " + port.serialNumber;
    row.tag = !chosen ? L"" : monitor.open ? L"watched" : L"refused";
    row.tone = !chosen ? Tone::eBlue : monitor.open ? Tone::eTeal : Tone::eRed;
    row.action = {Action::Kind::eWatchPort, port.path, 0};
    return row;
}

// @param first the number of the first of `latest`
BytesRow bytesFrom(const std::vector<std::uint8_t>& latest, std::uint64_t first, std::uint64_t at)
{
    const auto from = static_cast<std::ptrdiff_t>(at - first);
    const auto count = std::min(BytesRow::kBytes, first + latest.size() - at);
    return {hexText(at, kPlaceDigits),
            {latest.begin() + from, latest.begin() + from + static_cast<std::ptrdiff_t>(count)}};
}

// The same number of rows whatever has come, so that the board does not move under the reader.
void addBytes(Panel& panel, const SerialMonitor& monitor)
{
    std::uint64_t lines = 0;
    if (monitor.received > 0) {
        const std::uint64_t first = monitor.received - monitor.latest.size();
        const std::uint64_t last = (monitor.received - 1) / BytesRow::kBytes * BytesRow::kBytes;
        const std::uint64_t most = (kLines - 1) * BytesRow::kBytes;
        for (std::uint64_t at = last > most ? last - most : 0; at <= last; at += BytesRow::kBytes)
            if (at >= first && ++lines <= kLines)
                panel.rows.push_back(bytesFrom(monitor.latest, first, at));
    } else {
        panel.rows.push_back(NoteRow{!monitor.open  ? L"It cannot be opened"
                                     : monitor.gone ? L"It has gone"
                                                    : L"Nothing has come yet"});
        lines = 1;
    }
    for (; lines < kLines; ++lines)
        panel.rows.push_back(NoteRow{});
}

} // namespace

Panel serialPanel(const SerialPorts& serial, const Preferences& preferences)
{
    Panel panel{L"serial", L"Serial ports", countText(serial.ports.size(), L"port", L"ports"), {}};
    const SerialMonitor& monitor = serial.monitor;
    for (const SerialPort& port : serial.ports)
        panel.rows.push_back(portRow(port, monitor));
    if (serial.ports.empty())
        panel.rows.push_back(NoteRow{serial.read ? L"There is none" : L"The system does not tell"});
    ChoiceRow speed{L"Bits a second", {}, -1};
    for (const int bits : kSerialSpeeds) {
        if (bits == preferences.serialSpeed)
            speed.chosen = static_cast<int>(speed.options.size());
        speed.options.push_back({decimal(bits), {Action::Kind::eSetSpeed, {}, bits}});
    }
    panel.rows.push_back(speed);
    if (monitor.path.empty())
        return panel;
    panel.rows.push_back(
        HeadingRow{nameOf(monitor.path) + (monitor.gone ? Text(L" \u00b7 gone") : Text()),
                   countText(static_cast<std::size_t>(monitor.received), L"byte", L"bytes")});
    addBytes(panel, monitor);
    return panel;
}

} // namespace Quay
