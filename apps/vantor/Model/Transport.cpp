#include "Model/Transport.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace Vantor {

namespace {

constexpr double kMostTicks = 1e15; ///< what a number still counts exactly

} // namespace

double steadyMs()
{
    using namespace std::chrono;
    return duration<double, std::milli>(steady_clock::now().time_since_epoch()).count();
}

Transport::Transport(Clock clock) : clock_(std::move(clock)), rate_(kFrameRates[kUsualRate]) {}

void Transport::anchor(int frame, int speed)
{
    frame_ = startFrame_ = std::clamp(frame, 0, std::max(length_ - 1, 0));
    speed_ = length_ > 0 ? speed : 0;
    startMs_ = clock_();
    ++run_;
}

void Transport::setLength(int frames)
{
    frames = std::max(frames, 0);
    if (frames == length_)
        return;
    update();
    length_ = frames;
    anchor(frame_, speed_);
}

void Transport::setRate(const FrameRate& rate)
{
    if (rate == rate_ || rate.numerator == 0 || rate.denominator == 0)
        return;
    update();
    rate_ = rate;
    anchor(frame_, speed_);
}

void Transport::setLoop(bool loops)
{
    if (loops == loops_)
        return;
    update();
    loops_ = loops;
    anchor(frame_, speed_);
}

void Transport::toggle()
{
    update();
    if (playing())
        anchor(frame_, 0);
    else
        anchor(frame_ >= length_ - 1 ? 0 : frame_, 1);
}

void Transport::stop()
{
    update();
    if (playing())
        anchor(frame_, 0);
}

void Transport::shuttle(int direction)
{
    update();
    const bool onward = speed_ * direction > 0;
    anchor(frame_, onward ? direction * std::min(std::abs(speed_) * 2, kFastest) : direction);
}

void Transport::playAt(int speed)
{
    update();
    anchor(frame_, std::clamp(speed, -kFastest, kFastest));
}

void Transport::step(int frames)
{
    update();
    const auto target = static_cast<long>(frame_) + frames;
    anchor(static_cast<int>(std::clamp<long>(target, 0, std::max(length_ - 1, 0))), 0);
}

void Transport::seek(int target)
{
    update();
    anchor(target, speed_);
}

bool Transport::update()
{
    if (!playing())
        return false;
    const int before = frame_;
    frame_ = frameAt(clock_());
    const bool ended = !loops_ && (speed_ > 0 ? frame_ >= length_ - 1 : frame_ <= 0);
    if (ended)
        anchor(frame_, 0);
    return ended || frame_ != before;
}

std::int64_t Transport::ticksAt(double ms) const
{
    if (!playing() || !(ms > startMs_))
        return 0;
    // A clock that stands exactly on the edge of a frame belongs to the new one.
    const double ticks = std::floor((ms - startMs_) / rate_.frameMs() + 1e-6);
    return static_cast<std::int64_t>(std::min(ticks, kMostTicks));
}

int Transport::frameOfTick(std::int64_t tick) const
{
    if (length_ <= 0)
        return 0;
    const std::int64_t place = startFrame_ + tick * speed_;
    if (!loops_)
        return static_cast<int>(std::clamp<std::int64_t>(place, 0, length_ - 1));
    const std::int64_t rest = place % length_;
    return static_cast<int>(rest < 0 ? rest + length_ : rest);
}

int Transport::frameAt(double ms) const
{
    return playing() ? frameOfTick(ticksAt(ms)) : frame_;
}

double Transport::nextChange(double ms) const
{
    if (!playing())
        return std::numeric_limits<double>::infinity();
    return startMs_ + static_cast<double>(ticksAt(ms) + 1) * rate_.frameMs();
}

std::vector<int> Transport::ahead(double ms, int count) const
{
    std::vector<int> frames;
    const auto add = [&](int frame) {
        if (static_cast<int>(frames.size()) < count &&
            std::find(frames.begin(), frames.end(), frame) == frames.end())
            frames.push_back(frame);
    };
    const std::int64_t first = ticksAt(ms);
    for (int i = 0; playing() && i < count; ++i)
        add(frameOfTick(first + i));
    if (playing() || length_ <= 0)
        return frames;
    add(frame_);
    for (const int step : {1, -1, 2, 3, 4, 5, 6, 7})
        if (frame_ + step >= 0 && frame_ + step < length_)
            add(frame_ + step);
    return frames;
}

} // namespace Vantor
