#include "OS/Host/Keyboard/KeyboardLayout.h"

#include "OS/Host/Keyboard/X11KeyboardLayout.h"

#include <cstring>

namespace OSInternal {

namespace {

class UnknownKeyboardLayout final : public KeyboardLayout
{
public:
    char32_t plainCharacter(std::uint32_t) override { return 0; }
    bool isKeyDown(std::uint32_t) override { return false; }
};

} // namespace

std::unique_ptr<KeyboardLayout> makeKeyboardLayout(const char* platform)
{
    if (std::strcmp(platform, "xcb") == 0) {
        if (auto layout = X11KeyboardLayout::open())
            return layout;
    }
    return std::make_unique<UnknownKeyboardLayout>();
}

} // namespace OSInternal
