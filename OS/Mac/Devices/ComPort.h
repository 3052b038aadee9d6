#pragma once

#include "OS/Mac/Core/Descriptor.h"

#include <OS/Core/Ptr.h>
#include <OS/Devices/iComPort.h>
#include <OS/Devices/iComPortReceiver.h>
#include <OS/Threads/iThread.h>
#include <OS/Threads/iThreadEvent.h>

#include <atomic>
#include <pthread.h>

/// iComPort on the kernel's terminal calls.
///
/// The reader waits for the port or for a wake-up descriptor, and has ended before the port is
/// closed, since here closing a port wakes nobody.
class ComPort final : public iComPort
{
public:
    /// @param path UTF-8
    /// @return null without a receiver, and after a line when the port cannot be had
    static Tq::Ptr<iComPort> open(const char* path, Tq::Ptr<iComPortReceiver> receiver);

    /// Starts the reader. @param fd an open port, owned from here on
    ComPort(int fd, Tq::Ptr<iComPortReceiver> receiver);
    ~ComPort() override;
    ComPort(const ComPort&) = delete;
    ComPort& operator=(const ComPort&) = delete;

    bool sendData(void* data, unsigned int length) override;
    bool sendCommand(eCommand command) override;
    void purge() override;
    bool setConfig(const Config& config) override;

    /// The reader's body. @param port a ComPort
    static iThread::eExecRC threadFn(void* port);

private:
    void threadFn();
    bool waitForData() const;
    void endReader();

    Tq::Ptr<iComPortReceiver> receiver_;
    Tq::Ptr<iThreadEvent> readerFinished_;
    Tq::Ptr<iThread> thread_;
    OSInternal::Descriptor fd_;
    OSInternal::Descriptor wakeup_; // readable when the port is being closed
    std::atomic<bool> running_{true};
    std::atomic<bool> configured_{false}; // reads block
    std::atomic<pthread_t> readerThread_{0};
    bool* releasedByReader_ = nullptr; // touched by the reader's thread alone
};
