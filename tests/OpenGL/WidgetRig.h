#pragma once

#include "OS/Mac/OpenGL/Widgets/QtGLWidget.h"

#include <OS/Core/Ptr.h>
#include <OS/Primitives/NormalisedRGB.h>
#include <OS/Primitives/Rectangle.h>
#include <OS/Primitives/iGraphicPrimitivesRenderer.h>

#include <QColor>
#include <QImage>
#include <QWidget>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>

/// Runs the event loop until a condition holds. @return whether it came to hold, within half a
/// minute
bool waitFor(const std::function<bool()>& condition);
/// Handles what the window system has sent so far.
void pump();
/// Waits until the updater has done all its tasks so far, without the event loop.
void finishUpdater();
/// Runs code on the updater and waits for it.
void onUpdater(std::function<void()> code);

/// The screen as it is now, in device pixels.
QImage grabScreen();
/// What the screen shows in the middle of a logical pixel of a widget, 0xRRGGBB.
QRgb pixelAt(const QWidget& widget, int x, int y);
/// The whole of a widget as the screen shows it, in device pixels.
QImage grabWidget(const QWidget& widget);

constexpr QRgb kRed = 0xff0000, kGreen = 0x00ff00, kBlue = 0x0000ff, kBlack = 0x000000;
NormalisedRGB colour(QRgb rgb);

/// Draws a rectangle on whatever gives a renderer.
void fill(iGraphicPrimitivesRenderer& renderer, const Tq::Rectangle<int>& area, QRgb rgb);
/// Releases a back buffer of a widget that fills it with a colour and its left top quarter with
/// another.
void drawFrame(QtGLWidget& widget, QRgb ground, QRgb quarter);
/// Whether the screen shows that frame in a widget, at its size, and all of it.
bool showsFrame(const QWidget& widget, QRgb ground, QRgb quarter);
/// Whether a picture of the screen is that frame.
bool showsFrame(const QImage& shown, QRgb ground, QRgb quarter);

/// Counts the toolkit's warnings and the X server's errors while it lives.
class FaultTrap
{
public:
    FaultTrap();
    ~FaultTrap();
    FaultTrap(const FaultTrap&) = delete;
    FaultTrap& operator=(const FaultTrap&) = delete;
    /// One line each; empty when there was none.
    static std::string faults();
    static void note(const std::string& fault);
};

/// A window on the screen to put GL widgets into, painted grey, and a trap for faults.
class GLWidgetTest : public ::testing::Test
{
protected:
    GLWidgetTest();
    ~GLWidgetTest() override;

    /// A widget of its own in the window, shown and exposed.
    Tq::Ptr<QtGLWidget> makeWidget(const QRect& place = QRect(20, 30, 160, 120));

    FaultTrap trap;
    std::unique_ptr<QWidget> window; // 400 x 300
};
