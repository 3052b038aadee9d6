#include "Model/Timecode.h"

#include <algorithm>

namespace Vantor::Timecode {

Text full(int frame)
{
    frame = std::max(frame, 0);
    const int seconds = frame / kFrameRate;
    return decimal(seconds / 3600, 2) + L":" + decimal(seconds / 60 % 60, 2) + L":" +
           decimal(seconds % 60, 2) + L":" + decimal(frame % kFrameRate, 2);
}

Text minutes(int frame)
{
    const int seconds = std::max(frame, 0) / kFrameRate;
    const Text hours = seconds >= 3600 ? decimal(seconds / 3600) + L":" : Text();
    return hours + decimal(seconds / 60 % 60, 2) + L":" + decimal(seconds % 60, 2);
}

Text length(int frames)
{
    frames = std::max(frames, 0);
    const int seconds = frames / kFrameRate;
    const int rest = frames % kFrameRate;
    if (seconds == 0)
        return decimal(rest) + L" fr";
    return decimal(seconds) + L" s" + (rest != 0 ? L" " + decimal(rest) + L" fr" : Text());
}

} // namespace Vantor::Timecode
