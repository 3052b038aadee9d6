#include "OS/Mac/Windowing/QtTimer.h"

#include "OS/Mac/Windowing/QuitRequest.h"

#include <OS.h>
#include <OS/Core/iUtils.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

QtTimer::QtTimer(unsigned int intervalMs, Tq::Ptr<iEventHandler> handler)
    : handler_(std::move(handler)), intervalMs_(intervalMs)
{
    constexpr auto longest = static_cast<unsigned int>(std::numeric_limits<int>::max());
    timerID_ = startTimer(static_cast<int>(std::min(intervalMs, longest)), Qt::CoarseTimer);
}

QtTimer::~QtTimer()
{
    killTimer(timerID_);
}

void QtTimer::timerEvent(QTimerEvent*)
{
    if (!handler_)
        return;
    const Tq::Ptr<QtTimer> alive(this); // the handler may release its timer
    iEventHandler::TimerEvent record;
    record.timerID = getID();
    record.time = std::llround(OS()->utils()->timeNow());
    if (handler_->handleTimer(record) == iEventHandler::eQuit)
        QuitRequest::make();
}
