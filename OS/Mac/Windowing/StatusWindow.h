#pragma once

#include "OS/Mac/Windowing/QWidgetOwner.h"

#include <OS/Core/Ptr.h>
#include <OS/Windowing/iStatusWindow.h>

class StatusWindowWidget;

/// iStatusWindow on a frameless widget over the root window.
class StatusWindow final : public iStatusWindow, private QWidgetOwner
{
public:
    /// @return null where windows cannot be made
    static Tq::Ptr<iStatusWindow> make();

    StatusWindow();

    /// Waits, at most half a second, until the window can be seen; events other than the user's
    /// input are handled meanwhile. Inside a paint of the root window it does not wait.
    void show() override;
    void hide() override;
    bool isVisible() const override;
    void setTitle(const LightweightString<wchar_t>& title) override;
    void setMessage(const LightweightString<wchar_t>& message) override;
    void setProgress(float fraction) override;

private:
    StatusWindowWidget* widget() const;
};
