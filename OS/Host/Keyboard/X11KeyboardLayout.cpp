#include "OS/Host/Keyboard/X11KeyboardLayout.h"

#include <cstdlib>
#include <xcb/xcb.h>
#include <xkbcommon/xkbcommon-x11.h>
#include <xkbcommon/xkbcommon.h>

namespace OSInternal {

namespace {

struct FreeReply
{
    void operator()(void* reply) const { std::free(reply); }
};
struct UnrefKeymap
{
    void operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }
};
struct UnrefState
{
    void operator()(xkb_state* state) const { xkb_state_unref(state); }
};
using Keymap = std::unique_ptr<xkb_keymap, UnrefKeymap>;
using State = std::unique_ptr<xkb_state, UnrefState>;

} // namespace

void X11KeyboardLayout::Disconnect::operator()(xcb_connection_t* connection) const
{
    xcb_disconnect(connection);
}

void X11KeyboardLayout::Unref::operator()(xkb_context* context) const
{
    xkb_context_unref(context);
}

std::unique_ptr<KeyboardLayout> X11KeyboardLayout::open()
{
    Connection connection(xcb_connect(nullptr, nullptr));
    if (xcb_connection_has_error(connection.get()))
        return nullptr;
    if (!xkb_x11_setup_xkb_extension(
            connection.get(), XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
            XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, nullptr, nullptr))
        return nullptr;
    Context context(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    if (!context)
        return nullptr;
    return std::unique_ptr<KeyboardLayout>(
        new X11KeyboardLayout(std::move(connection), std::move(context)));
}

X11KeyboardLayout::X11KeyboardLayout(Connection connection, Context context)
    : connection_(std::move(connection)), context_(std::move(context))
{
}

char32_t X11KeyboardLayout::plainCharacter(std::uint32_t nativeScanCode)
{
    // The map is fetched for every question: 0.2 to 1 ms, and right after any switch of layouts.
    xcb_connection_t* connection = connection_.get();
    const std::int32_t device = xkb_x11_get_core_keyboard_device_id(connection);
    if (device < 0)
        return 0;
    const Keymap keymap(xkb_x11_keymap_new_from_device(context_.get(), connection, device,
                                                       XKB_KEYMAP_COMPILE_NO_FLAGS));
    if (!keymap)
        return 0;
    const State current(xkb_x11_state_new_from_device(keymap.get(), connection, device));
    const State plain(xkb_state_new(keymap.get()));
    if (!current || !plain)
        return 0;
    const xkb_layout_index_t layout =
        xkb_state_serialize_layout(current.get(), XKB_STATE_LAYOUT_EFFECTIVE);
    xkb_state_update_mask(plain.get(), 0, 0, 0, 0, 0, layout);
    return xkb_state_key_get_utf32(plain.get(), nativeScanCode);
}

bool X11KeyboardLayout::isKeyDown(std::uint32_t nativeScanCode)
{
    constexpr std::uint32_t keyCount = 256;
    xcb_connection_t* connection = connection_.get();
    const std::unique_ptr<xcb_query_keymap_reply_t, FreeReply> reply(
        xcb_query_keymap_reply(connection, xcb_query_keymap(connection), nullptr));
    if (!reply || nativeScanCode >= keyCount)
        return false;
    return (reply->keys[nativeScanCode / 8] >> (nativeScanCode % 8)) & 1;
}

} // namespace OSInternal
