#pragma once

#include "OS/Host/Keyboard/KeyboardLayout.h"

struct xcb_connection_t;
struct xkb_context;

namespace OSInternal {

/// The core keyboard of an X server, asked over a connection of its own: the toolkit's connection
/// has a reader that would take our answers.
class X11KeyboardLayout final : public KeyboardLayout
{
public:
    /// @return null when the server cannot be reached or has no keyboard extension
    static std::unique_ptr<KeyboardLayout> open();

    char32_t plainCharacter(std::uint32_t nativeScanCode) override;
    bool isKeyDown(std::uint32_t nativeScanCode) override;

private:
    struct Disconnect
    {
        void operator()(xcb_connection_t* connection) const;
    };
    struct Unref
    {
        void operator()(xkb_context* context) const;
    };
    using Connection = std::unique_ptr<xcb_connection_t, Disconnect>;
    using Context = std::unique_ptr<xkb_context, Unref>;

    X11KeyboardLayout(Connection connection, Context context);

    Connection connection_;
    Context context_;
};

} // namespace OSInternal
