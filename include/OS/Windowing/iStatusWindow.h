#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/iObject.h>

/// A small window with a message and a progress bar, for work that the user waits for.
///
/// Used on the thread of the event loop. It is shown by the first show() and goes with its last
/// reference. Changes are painted at once, so it keeps up while its owner is busy.
class OS_API iStatusWindow : public iObject
{
public:
    /// Shows it in the middle of the root window and waits, at most half a second, until it can be
    /// seen; events other than the user's input are handled meanwhile, except inside handlePaint.
    /// It does not take the keyboard, and the user cannot close it.
    virtual void show() = 0;
    virtual void hide() = 0;
    virtual bool isVisible() const = 0;
    virtual void setTitle(const LightweightString<wchar_t>& title) = 0;
    /// Line ends in the text begin new lines, of which eight are shown; long lines are cut with an
    /// ellipsis.
    virtual void setMessage(const LightweightString<wchar_t>& message) = 0;
    /// @param fraction 0.0 to 1.0, clamped; a negative one (or no number) shows work without a
    /// known end
    virtual void setProgress(float fraction) = 0;
};
