#pragma once

#include <OS/Core/Ptr.h>
#include <OS/Windowing/iEventHandler.h>

class QCloseEvent;
class QDragEnterEvent;
class QDropEvent;
class QFocusEvent;
class QHideEvent;
class QInputMethodEvent;
class QKeyEvent;
class QMouseEvent;
class QPaintEvent;
class QResizeEvent;
class QShowEvent;
class QWheelEvent;

/// Turns the toolkit's events into the records of iEventHandler and hands them over.
///
/// Each redirect makes one record, calls the handler once, and returns its answer. Events that are
/// swallowed, and every event while there is no handler, answer eContinue. Everything runs on the
/// thread of the event loop.
class QtEventRedirector
{
public:
    using Handler = Tq::Ptr<iEventHandler>;
    using eRC = iEventHandler::eRC;

    QtEventRedirector() = delete;

    static eRC redirect(QResizeEvent* event, Handler handler);
    static eRC redirect(QCloseEvent* event, Handler handler);
    static eRC redirect(QShowEvent* event, Handler handler);
    static eRC redirect(QHideEvent* event, Handler handler);
    static eRC redirect(QFocusEvent* event, Handler handler);
    static eRC redirect(QPaintEvent* event, Handler handler);

    /// A key with no known code prints the assertion report for "keypressed != Qt::Key_unknown" at
    /// "OS/Mac/QtEventRedirector line 199" and is swallowed; so are Caps Lock and the releases that
    /// repeat with a held key. The modifier word is kept in KeyboardState all the same.
    ///
    /// A modifier's release carries the code of the last key pressed, once: deliberate.
    static eRC redirect(QKeyEvent* event, Handler handler);
    /// Committed text: one press for each character, without modifiers, until the handler quits.
    static eRC redirect(QInputMethodEvent* event, Handler handler);

    /// Moves within 80 ms of the last press are swallowed, deliberately. A double click is a press.
    static eRC redirect(QMouseEvent* event, Handler handler);
    /// Only vertical turns are passed on.
    static eRC redirect(QWheelEvent* event, Handler handler);

    /// Accepts a drag that brings URLs; the handler is not called.
    static eRC redirect(QDragEnterEvent* event, Handler handler);
    /// Calls the handler once for each URL that is a local file, until it quits.
    static eRC redirect(QDropEvent* event, Handler handler);

    /// Whether a key's text was made with the help of its modifiers: then they belong to the
    /// character and not to a shortcut. False when no modifier is held, or only Shift, and when the
    /// keyboard cannot be asked.
    static bool isShortcutKeypress(const QKeyEvent& event);
};
