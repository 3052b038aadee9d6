#pragma once

/// A handler's wish to quit, on its way to the event loop.
///
/// Closing the windows and ending the loop comes as the loop's next turn, never inside the event
/// that a handler answers: that event may belong to a window that is being shown or painted. A wish
/// made before the loop runs is remembered and ends the loop that comes. Everything runs on the
/// thread of the event loop.
class QuitRequest
{
public:
    QuitRequest() = delete;

    /// Has every top-level window closed and the loop ended with 0. Once made, again changes
    /// nothing.
    static void make();
    static bool isMade();
    /// Whether windows are being closed now on behalf of a request: they close without asking
    /// anyone.
    static bool isClosingWindows();
    /// The loop has ended: carries out what is left of a request and forgets it.
    static void finish();
};
