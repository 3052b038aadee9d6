#pragma once

#include "OS/Mac/Application/AppStarter.h"

class QCoreApplication;
class QThread;

/// Ties the library to the process's Qt application object: everything of ours that needs one asks
/// here first.
///
/// One for each process, never destroyed. Ask for it first on the main thread; it may then be asked
/// for anywhere.
class QtApplication
{
public:
    /// The companion object, made by the first call. Every call that finds no Qt application object
    /// tries to have one made.
    static QtApplication* instance();

    /// The Qt application object, which is not owned; null when the first caller was not on the
    /// main thread and nobody has made one since.
    QCoreApplication* getApp() const;
    /// The thread of the application object, which runs the event loop; null without one.
    QThread* getAppThread() const;

    /// Whether fonts and pixmaps can be made: not with a bare QCoreApplication of the client's.
    bool hasGui() const;
    /// Whether windows can be made.
    bool hasWidgets() const;

private:
    QtApplication() = default;

    AppStarter starter_;
};
