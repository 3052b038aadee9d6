#include "Model/Timecode.h"

#include <algorithm>
#include <limits>

namespace Vantor::Timecode {

Text full(int frame, const FrameRate& rate)
{
    frame = std::max(frame, 0);
    const int seconds = frame / rate.nominal();
    return decimal(seconds / 3600, 2) + L":" + decimal(seconds / 60 % 60, 2) + L":" +
           decimal(seconds % 60, 2) + L":" + decimal(frame % rate.nominal(), 2);
}

Text minutes(int frame, const FrameRate& rate)
{
    const int seconds = std::max(frame, 0) / rate.nominal();
    const Text hours = seconds >= 3600 ? decimal(seconds / 3600) + L":" : Text();
    return hours + decimal(seconds / 60 % 60, 2) + L":" + decimal(seconds % 60, 2);
}

Text length(int frames, const FrameRate& rate)
{
    frames = std::max(frames, 0);
    const int seconds = frames / rate.nominal();
    const int rest = frames % rate.nominal();
    if (seconds == 0)
        return decimal(rest) + L" fr";
    return decimal(seconds) + L" s" + (rest != 0 ? L" " + decimal(rest) + L" fr" : Text());
}

std::optional<int> parse(const Text& text, const FrameRate& rate)
{
    // Hours, minutes, seconds and frames, read from the left into the last of them.
    long parts[4] = {0, 0, 0, 0};
    int colons = 0;
    bool digit = false;
    for (Text::size_type i = 0; i < text.size(); ++i) {
        const wchar_t c = text[i];
        if (c == L':' && digit && colons < 3) {
            std::rotate(parts, parts + 1, parts + 4);
            parts[3] = 0;
            ++colons;
            digit = false;
        } else if (c >= L'0' && c <= L'9' && parts[3] < 100000000) {
            parts[3] = parts[3] * 10 + (c - L'0');
            digit = true;
        } else {
            return {};
        }
    }
    const long seconds = (parts[0] * 60 + parts[1]) * 60 + parts[2];
    const bool sound =
        digit && (colons == 0 || parts[3] < rate.nominal()) && parts[2] < 60 && parts[1] < 60;
    const long frame = seconds * rate.nominal() + parts[3];
    if (!sound || frame > std::numeric_limits<int>::max())
        return {};
    return static_cast<int>(frame);
}

} // namespace Vantor::Timecode
