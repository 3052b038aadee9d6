#pragma once

#include "OS/Mac/Windowing/QtRootWindow.h"

#include <OS/Windowing/iWindowManager.h>

/// iWindowManager on the toolkit. A member of the root object: its construction touches nothing
/// else.
class QtWindowManager final : public iWindowManager
{
public:
    QtWindowManager() = default;

    Tq::Ptr<iRootWindow> createRootWindow() override;
    Tq::Ptr<iTimer> createTimer(unsigned int intervalMs, Tq::Ptr<iEventHandler> handler) override;
    Tq::Ptr<iFont> createFont(const LightweightString<wchar_t>& name, unsigned int size,
                              unsigned int weight, unsigned int flags) override;
    Tq::Ptr<iRegion> createRegion(const std::vector<Tq::Rectangle<int>>& rectangles) override;
    Tq::Ptr<iMouseCursor> createMouseCursor(iMouseCursor::eStockCursor stock) override;
    Tq::Ptr<iMouseCursor> createMouseCursor(Tq::Ptr<iHostImage> image,
                                            const XY<int>& hotSpot) override;
    void setMouseCursor(Tq::Ptr<iMouseCursor> cursor) override;
    void showMouseCursor(bool shown) override;
    Tq::Ptr<iStatusWindow> createStatusWindow() override;
    Tq::Ptr<iVideoWindow> createVideoWindow(const XY<int>& position, const XY<int>& size) override;
    Tq::Ptr<iVideoWindow> createVideoWindowFullscreen() override;
    void getAvailableFonts(std::set<LightweightString<wchar_t>>& names) override;
    LightweightString<wchar_t> getDefaultFont() override;
    unsigned int getCaps() override { return 7; }
    bool isKeyPressed(unsigned int code) override;
    XY<int> getMousePosition() override;
    void despatchPendingEvents() override;
    int startEventLoop() override;
    void shutdown() override;
    void init() override {}
    void deInit() override {}
    void heartbeat() override {}

private:
    void applyCursor();

    Tq::Ptr<QtRootWindow> rootWindow_;
    Tq::Ptr<iMouseCursor> cursor_;
    bool cursorShown_ = true;
};
