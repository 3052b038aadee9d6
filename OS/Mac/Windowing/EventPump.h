#pragma once

/// Handles what the window system has sent, except the user's input, which waits for the event
/// loop.
/// @param longestMs when to stop although more is there; 0 handles once what has come
void processEventsExceptInput(int longestMs = 0);
