#pragma once

#include "OS/Mac/Core/Descriptor.h"
#include "OS/Mac/Files/ChildProcess.h"

#include <OS/Files/iProcess.h>

#include <memory>
#include <mutex>

/// iProcess: the client's end of a ChildProcess. Its release ends the child's standard input.
///
/// What two threads write to the input does not mix: each waits for the other, and so does
/// closeInput().
class Process final : public iProcess
{
public:
    /// @param input the writing end of a pipe, or none
    Process(std::shared_ptr<ChildProcess> child, OSInternal::Descriptor input);

    unsigned int getID() const override;
    bool isRunning() override;
    bool wait(unsigned int timeoutMs) override;
    int getExitCode() override;
    LightweightString<char> getOutput() override;
    LightweightString<char> getErrors() override;
    bool writeInput(const void* bytes, std::uint64_t length) override;
    void closeInput() override;
    bool terminate(unsigned int graceMs) override;

private:
    const std::shared_ptr<ChildProcess> child_;
    std::mutex inputLock_;
    OSInternal::Descriptor input_;
};
