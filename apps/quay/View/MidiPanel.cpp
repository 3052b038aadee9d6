#include "View/Panels.h"

namespace Quay {

namespace {

Text makerOf(const MidiDevice& device)
{
    if (device.isVirtual)
        return L"a program";
    return device.maker.empty() ? Text(L"hardware") : device.maker;
}

ItemRow inputRow(const MidiDevice& device, const MidiMonitor& monitor)
{
    const bool chosen = device.name == monitor.name;
    ItemRow row;
    row.label = device.name;
    row.detail = makerOf(device);
    row.tag = !chosen ? L"" : monitor.open ? L"watched" : L"refused";
    row.tone = !chosen ? Tone::eBlue : monitor.open ? Tone::eTeal : Tone::eRed;
    row.action = {Action::Kind::eWatchMidi, device.name, 0};
    return row;
}

FactRow channelRow(unsigned int status, unsigned int first, unsigned int second)
{
    const Text channel = L"channel " + decimal(static_cast<int>((status & 0x0F) + 1)) + L" \u00b7 ";
    const Text one = decimal(static_cast<int>(first));
    const Text two = decimal(static_cast<int>(second));
    switch (status & 0xF0) {
    case 0x80:
        return {L"Note off", channel + L"key " + one};
    case 0x90:
        return {second ? L"Note on" : L"Note off",
                channel + L"key " + one + (second ? L" \u00b7 velocity " + two : Text())};
    case 0xA0:
        return {L"Key pressure", channel + L"key " + one + L" \u00b7 " + two};
    case 0xB0:
        return {L"Control", channel + one + L" \u00b7 " + two};
    case 0xC0:
        return {L"Program", channel + one};
    case 0xD0:
        return {L"Pressure", channel + one};
    default:
        return {L"Pitch bend", channel + decimal(static_cast<int>(first | second << 7) - 0x2000)};
    }
}

FactRow systemRow(unsigned int status)
{
    static constexpr const wchar_t* kNames[] = {
        L"Exclusive", L"Quarter frame", L"Song position",  L"Song select",
        L"Undefined", L"Undefined",     L"Tune request",   L"End of exclusive",
        L"Clock",     L"Undefined",     L"Start",          L"Continue",
        L"Stop",      L"Undefined",     L"Active sensing", L"Reset"};
    return {kNames[status & 0x0F], {}};
}

FactRow messageRow(const MidiMessage& message)
{
    if (message.longSize > 0)
        return {L"Exclusive",
                countText(static_cast<std::size_t>(message.longSize), L"byte", L"bytes")};
    const unsigned int status = message.word & 0xFF;
    if (status < 0x80)
        return {L"Running status", {}};
    if (status >= 0xF0)
        return systemRow(status);
    return channelRow(status, message.word >> 8 & 0x7F, message.word >> 16 & 0x7F);
}

// The same number of rows whatever has come, so that the board does not move under the reader.
void addMessages(Panel& panel, const MidiMonitor& monitor)
{
    for (const MidiMessage& each : monitor.latest)
        panel.rows.push_back(messageRow(each));
    std::size_t lines = monitor.latest.size();
    if (lines == 0) {
        panel.rows.push_back(NoteRow{!monitor.open  ? L"It cannot be opened"
                                     : monitor.gone ? L"It has gone"
                                                    : L"Nothing has come yet"});
        lines = 1;
    }
    for (; lines < MidiMonitor::kKept; ++lines)
        panel.rows.push_back(NoteRow{});
}

} // namespace

Panel midiPanel(const MidiDevices& midi)
{
    Panel panel{L"midi", L"MIDI", {}, {}};
    panel.fact = countText(midi.inputs.size() + midi.outputs.size(), L"device", L"devices");
    if (midi.inputs.empty() && midi.outputs.empty())
        panel.rows.push_back(NoteRow{midi.services.empty() || midi.services == L"none"
                                         ? L"The system has no services for it"
                                         : L"There is none"});
    for (const MidiDevice& device : midi.inputs)
        panel.rows.push_back(inputRow(device, midi.monitor));
    if (!midi.outputs.empty())
        panel.rows.push_back(HeadingRow{L"Outputs", L"by " + midi.services});
    for (const MidiDevice& device : midi.outputs)
        panel.rows.push_back(FactRow{makerOf(device), device.name});
    const MidiMonitor& monitor = midi.monitor;
    if (monitor.name.empty())
        return panel;
    panel.rows.push_back(
        HeadingRow{monitor.name + (monitor.gone ? Text(L" \u00b7 gone") : Text()),
                   countText(static_cast<std::size_t>(monitor.received), L"message", L"messages")});
    addMessages(panel, monitor);
    return panel;
}

} // namespace Quay
