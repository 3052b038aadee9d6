#pragma once

#include <OS/Core/Ptr.h>
#include <OS/Windowing/iEventHandler.h>
#include <OS/Windowing/iTimer.h>

#include <QObject>

/// iTimer on a coarse timer of the toolkit's. Made and released on the thread of the event loop.
class QtTimer final : public QObject, public iTimer
{
public:
    /// @param intervalMs 0 ticks at every turn of the loop; the toolkit counts to 24 days at most
    /// @param handler gets the ticks; may be null
    QtTimer(unsigned int intervalMs, Tq::Ptr<iEventHandler> handler);
    ~QtTimer() override;

    std::uint32_t getID() const override { return static_cast<std::uint32_t>(timerID_); }
    unsigned int getIntervalMs() const override { return intervalMs_; }

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    Tq::Ptr<iEventHandler> handler_;
    unsigned int intervalMs_;
    int timerID_;
};
