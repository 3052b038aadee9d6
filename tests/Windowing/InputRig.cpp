#include "Windowing/InputRig.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>

struct InputRig::Connection
{
    Display* display;
};

InputRig::InputRig() : x_(new Connection{XOpenDisplay(nullptr)})
{
    if (!x_->display)
        throw std::runtime_error("no display");
}

InputRig::~InputRig()
{
    while (!keysDown_.empty())
        release(keysDown_.back());
    while (!buttonsDown_.empty())
        releaseButton(buttonsDown_.back());
    clearLocks();
    XCloseDisplay(x_->display);
    delete x_;
}

void InputRig::press(unsigned int keycode)
{
    keysDown_.push_back(keycode);
    XTestFakeKeyEvent(x_->display, keycode, True, CurrentTime);
    XSync(x_->display, False);
}

void InputRig::release(unsigned int keycode)
{
    keysDown_.erase(std::remove(keysDown_.begin(), keysDown_.end(), keycode), keysDown_.end());
    XTestFakeKeyEvent(x_->display, keycode, False, CurrentTime);
    XSync(x_->display, False);
}

void InputRig::tap(unsigned int keycode)
{
    press(keycode);
    release(keycode);
}

void InputRig::pressButton(unsigned int button)
{
    buttonsDown_.push_back(button);
    XTestFakeButtonEvent(x_->display, button, True, CurrentTime);
    XSync(x_->display, False);
}

void InputRig::releaseButton(unsigned int button)
{
    buttonsDown_.erase(std::remove(buttonsDown_.begin(), buttonsDown_.end(), button),
                       buttonsDown_.end());
    XTestFakeButtonEvent(x_->display, button, False, CurrentTime);
    XSync(x_->display, False);
}

void InputRig::click(unsigned int button)
{
    pressButton(button);
    releaseButton(button);
}

void InputRig::moveMouse(int x, int y)
{
    XTestFakeMotionEvent(x_->display, -1, x, y, CurrentTime);
    XSync(x_->display, False);
}

void InputRig::mapKey(unsigned int keycode, const char* symbol)
{
    KeySym symbols[] = {XStringToKeysym(symbol)};
    XChangeKeyboardMapping(x_->display, static_cast<int>(keycode), 1, symbols, 1);
    XSync(x_->display, False);
}

void InputRig::setAutoRepeat(unsigned int delayMs, unsigned int intervalMs)
{
    XkbSetAutoRepeatRate(x_->display, XkbUseCoreKbd, delayMs, intervalMs);
    XSync(x_->display, False);
}

std::uint32_t InputRig::pixel(int x, int y) const
{
    XImage* image =
        XGetImage(x_->display, DefaultRootWindow(x_->display), x, y, 1, 1, AllPlanes, ZPixmap);
    const unsigned long value = image ? XGetPixel(image, 0, 0) : 0;
    if (image)
        XDestroyImage(image);
    return static_cast<std::uint32_t>(value & 0xFFFFFF);
}

void InputRig::setLayout(const std::string& layout, unsigned int group)
{
    if (std::system(("setxkbmap " + layout).c_str()) != 0)
        throw std::runtime_error("setxkbmap " + layout);
    clearLocks();
    XkbLockGroup(x_->display, XkbUseCoreKbd, group);
    XSync(x_->display, False);
}

void InputRig::clearLocks()
{
    XkbLockModifiers(x_->display, XkbUseCoreKbd, 0xFF, 0);
    XSync(x_->display, False);
}
