#pragma once

class QCoreApplication;

/// Sees to it that the process has a Qt application object: the client's where it made one, else
/// one of ours.
///
/// One of ours runs on the X11 platform when a display answers (worker threads draw with GL there),
/// else off screen; the environment's QT_QPA_PLATFORM goes first. It is never destroyed: windows,
/// fonts and contexts of static objects may outlive `main`.
class AppStarter
{
public:
    AppStarter() = default;
    AppStarter(const AppStarter&) = delete;
    AppStarter& operator=(const AppStarter&) = delete;

    /// The application object, made now where there is none.
    ///
    /// Making one needs the process's main thread, since the toolkit binds its event loop to the
    /// thread that makes it. Elsewhere the first refusal prints "AppStarter::start() : the Qt
    /// application must be made on the main thread\n".
    /// @return null when there is none and none can be made on this thread
    QCoreApplication* start();

private:
    bool refusalPrinted_ = false;
};
