#include "LayerState.h"

#include <algorithm>

LayerState& LayerState::get()
{
    // Never destroyed: objects may be released from static destructors.
    static auto* const state = new LayerState;
    return *state;
}

void LayerState::reset()
{
    const std::lock_guard lock(mutex_);
    devices_.clear();
    failures_.clear();
    failIn_ = 0;
    calls_.clear();
}

void LayerState::setDevices(const std::vector<Device>& devices)
{
    const std::lock_guard lock(mutex_);
    devices_ = devices;
}

void LayerState::fail(const std::string& call, int error)
{
    const std::lock_guard lock(mutex_);
    failures_[call] = error;
}

void LayerState::failNth(int n, int error)
{
    const std::lock_guard lock(mutex_);
    failIn_ = n;
    failWith_ = error;
}

std::vector<std::string> LayerState::calls() const
{
    const std::lock_guard lock(mutex_);
    return calls_;
}

void LayerState::note(const std::string& line)
{
    const std::lock_guard lock(mutex_);
    calls_.push_back(line);
}

int LayerState::alive(Kind kind) const
{
    const std::lock_guard lock(mutex_);
    return alive_[kind];
}

cl_int LayerState::enter(const char* call)
{
    const std::lock_guard lock(mutex_);
    calls_.push_back(call);
    if (failIn_ > 0 && --failIn_ == 0)
        return failWith_;
    const auto found = failures_.find(call);
    return found != failures_.end() ? found->second : CL_SUCCESS;
}

void LayerState::remark(const std::string& text)
{
    const std::lock_guard lock(mutex_);
    if (!calls_.empty())
        calls_.back() += ' ' + text;
}

void LayerState::count(Kind kind, int change)
{
    const std::lock_guard lock(mutex_);
    alive_[kind] += change;
}

ComputeLayer::Device LayerState::device(std::size_t index) const
{
    const std::lock_guard lock(mutex_);
    if (devices_.empty())
        return {};
    return devices_[std::min(index, devices_.size() - 1)];
}
