#pragma once

#include "OS/Mac/Windowing/QWidgetOwner.h"

#include <OS/Windowing/iRootWindow.h>

#include <QCursor>
#include <vector>

class QtRootWindowWidget;

/// iRootWindow on one widget of the toolkit's.
class QtRootWindow final : public iRootWindow, private QWidgetOwner
{
public:
    QtRootWindow();
    ~QtRootWindow() override;

    bool realize(const InitArgs& args) override;
    void setEventHandler(Tq::Ptr<iEventHandler> handler) override;
    XY<int> getSize() const override;
    XY<int> getPosition() const override;
    Tq::Rectangle<int> getUserArea() const override;
    bool isTitleBarEnabled() const override;
    void enableTitleBar(bool enabled) override;
    bool isMinimised() const override;
    bool isMaximised() const override;
    void minimise() override;
    bool hasFocus() const override;
    void claimFocus() override;
    bool isEnabled() const override;
    void setEnabled(bool enabled) override;
    void setTitle(const LightweightString<wchar_t>& title) override;
    void* getID() const override;
    int getBitsPerPixel() const override { return 32; }
    Tq::Ptr<iHostImage> createCompatibleImage(const XY<int>& size) const override;
    Tq::Ptr<iFont> createFont(const LightweightString<wchar_t>& name, unsigned int size,
                              unsigned int weight, unsigned int flags) const override;
    Tq::Ptr<iTimer> createTimer(unsigned int intervalMs) override;
    Tq::Ptr<iGraphicPrimitivesRenderer> getPrimitivesRenderer(bool antialias) override;
    void postUserMessage() override;
    void queueSubWindowForDeletion(Tq::Ptr<QWidget> window) override;
    Tq::Ptr<iPixelGuard> lock() override;
    void requestRepaint(const Tq::Ptr<iRegion>& region) override;
    void showProgress(float fraction) override;
    XY<int> getMonitorSize(const XY<int>& position) const override;
    bool validDesktopPosition(const XY<int>& position) const override;

    /// Sets the pointer's shape over the window, now or as soon as it is realised.
    void setCursor(const QCursor& cursor);
    /// Whether a window of the process is being painted.
    static bool isAnyPainting();
    /// The widget of the window made last, for placing others over it; null before it is realised.
    static QWidget* latestWidget();

private:
    QtRootWindowWidget* widget() const;
    void spareWidgetInEvent();
    bool choosePlace(const InitArgs& args);
    void applyShape(const Tq::Ptr<iRegion>& shape);

    /// Every window there is, in the order they were made.
    static std::vector<QtRootWindow*>& rootWindows();

    Tq::Ptr<iEventHandler> eventHandler_;
    QCursor cursor_;
    /// kMaximised when the window was maximised before it last filled the screen, else 0.
    std::uint32_t savedState_ = 0;
};
