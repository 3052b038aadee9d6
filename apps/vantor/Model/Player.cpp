#include "Model/Player.h"

#include "Model/Timecode.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace Vantor {

namespace {

constexpr int kFastest = 8;

} // namespace

void Player::stop()
{
    speed = 0;
    fraction = 0.0;
}

void Player::toggle(int length)
{
    if (playing()) {
        stop();
        return;
    }
    if (length <= 0)
        return;
    if (frame >= length - 1)
        frame = 0;
    speed = 1;
    fraction = 0.0;
    dropped = 0;
}

void Player::shuttle(int direction)
{
    if (!playing())
        dropped = 0;
    const bool onward = speed * direction > 0;
    speed = onward ? direction * std::min(std::abs(speed) * 2, kFastest) : direction;
    fraction = 0.0;
}

void Player::step(int frames, int length)
{
    seek(frame + frames, length);
    stop();
}

void Player::seek(int target, int length)
{
    frame = std::clamp(target, 0, std::max(length - 1, 0));
    fraction = 0.0;
}

bool Player::advance(double elapsedMs, int length)
{
    if (!playing() || !(elapsedMs > 0.0))
        return false;
    const double distance = fraction + elapsedMs * speed * Timecode::kFrameRate / 1000.0;
    const double whole = std::trunc(std::clamp(distance, -1e9, 1e9));
    fraction = distance - whole;
    const int frames = static_cast<int>(whole);
    if (frames == 0)
        return false;
    dropped += std::max(std::abs(frames) - std::abs(speed), 0);

    const int last = std::max(length - 1, 0);
    const int before = frame;
    frame = static_cast<int>(std::clamp<long>(static_cast<long>(frame) + frames, 0, last));
    if ((speed > 0 && frame == last) || (speed < 0 && frame == 0))
        stop();
    return frame != before;
}

} // namespace Vantor
