#pragma once

#include "ComputeLayer.h"
#include "Runtime.h"

#include <array>
#include <map>
#include <mutex>

/// What the layer remembers, and what a test told it.
class LayerState final : public ComputeLayer
{
public:
    static LayerState& get();

    void reset() override;
    void setDevices(const std::vector<Device>& devices) override;
    void fail(const std::string& call, int error) override;
    void failNth(int n, int error) override;
    std::vector<std::string> calls() const override;
    void note(const std::string& line) override;
    int alive(Kind kind) const override;

    /// Notes a call. @return the error that it is to fail with, or CL_SUCCESS
    cl_int enter(const char* call);
    /// Adds to the note of the latest call.
    void remark(const std::string& text);
    void count(Kind kind, int change);
    Device device(std::size_t index) const;

private:
    mutable std::mutex mutex_;
    std::vector<Device> devices_;
    std::map<std::string, int> failures_;
    int failIn_ = 0;
    int failWith_ = 0;
    std::vector<std::string> calls_;
    std::array<int, eKinds> alive_{};
};
