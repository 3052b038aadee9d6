#include "OS/Host/Screen/ScreenGrabber.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>
#include <xcb/shm.h>
#include <xcb/xcb.h>

namespace Host {

namespace {

struct Free
{
    void operator()(void* memory) const { std::free(memory); }
};

template <class T>
using Reply = std::unique_ptr<T, Free>;

// Whether the server is on this computer: what it is sent may be a descriptor then.
bool isLocal(xcb_connection_t* connection)
{
    sockaddr_storage address = {};
    socklen_t length = sizeof address;
    return getsockname(xcb_get_file_descriptor(connection), reinterpret_cast<sockaddr*>(&address),
                       &length) == 0 &&
           address.ss_family == AF_UNIX;
}

// Whether the root window's pixels are words of red, green and blue bytes as ours.
bool hasOurPixels(const xcb_setup_t* setup, const xcb_screen_t* screen)
{
    bool words = false;
    for (auto format = xcb_setup_pixmap_formats_iterator(setup); format.rem > 0;
         xcb_format_next(&format))
        words |= format.data->depth == screen->root_depth && format.data->bits_per_pixel == 32;
    if (!words || setup->image_byte_order != XCB_IMAGE_ORDER_LSB_FIRST)
        return false;
    for (auto depth = xcb_screen_allowed_depths_iterator(screen); depth.rem > 0;
         xcb_depth_next(&depth))
        for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem > 0;
             xcb_visualtype_next(&visual))
            if (visual.data->visual_id == screen->root_visual)
                return visual.data->red_mask == 0xFF0000 && visual.data->green_mask == 0xFF00 &&
                       visual.data->blue_mask == 0xFF;
    return false;
}

} // namespace

class ScreenGrabber::Connection
{
public:
    Connection() : handle_(xcb_connect(nullptr, &screenNumber_)) {}
    ~Connection() { xcb_disconnect(handle_); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// Whether pictures can be had from this server.
    bool usable()
    {
        if (broken() || !isLocal(handle_))
            return false;
        const xcb_setup_t* setup = xcb_get_setup(handle_);
        auto screens = xcb_setup_roots_iterator(setup);
        for (int i = 0; i < screenNumber_ && screens.rem > 1; ++i)
            xcb_screen_next(&screens);
        if (screens.rem < 1 || !hasOurPixels(setup, screens.data))
            return false;
        root_ = screens.data->root;
        const Reply<xcb_shm_query_version_reply_t> version(
            xcb_shm_query_version_reply(handle_, xcb_shm_query_version(handle_), nullptr));
        // 1.2 takes descriptors: no names of shared memory that a crash would leave behind.
        return version && (version->major_version > 1 ||
                           (version->major_version == 1 && version->minor_version >= 2));
    }
    bool broken() const { return xcb_connection_has_error(handle_) != 0; }
    xcb_connection_t* get() const { return handle_; }
    xcb_window_t root() const { return root_; }

    /// The whole screen now; it may have changed since the connection was made.
    ScreenArea extent() const
    {
        const Reply<xcb_get_geometry_reply_t> geometry(
            xcb_get_geometry_reply(handle_, xcb_get_geometry(handle_, root_), nullptr));
        return geometry ? ScreenArea{0, 0, geometry->width, geometry->height} : ScreenArea{};
    }

private:
    int screenNumber_ = 0;
    xcb_connection_t* handle_;
    xcb_window_t root_ = 0;
};

/// Memory that the server writes into.
class ScreenGrabber::Segment
{
public:
    Segment(std::shared_ptr<Connection> connection, std::size_t bytes)
        : connection_(std::move(connection)), bytes_(bytes)
    {
        const int file = memfd_create("screen", MFD_CLOEXEC);
        if (file < 0)
            return;
        if (ftruncate(file, static_cast<off_t>(bytes)) == 0)
            memory_ = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
        if (memory_ == MAP_FAILED) {
            close(file);
            return;
        }
        xcb_connection_t* handle = connection_->get();
        name_ = xcb_generate_id(handle);
        // The descriptor is closed when it has been sent.
        const Reply<xcb_generic_error_t> refusal(xcb_request_check(
            handle, xcb_shm_attach_fd_checked(handle, name_, file, /*read_only*/ 0)));
        attached_ = !refusal && !connection_->broken();
    }
    ~Segment()
    {
        if (attached_) {
            xcb_shm_detach(connection_->get(), name_);
            xcb_flush(connection_->get());
        }
        if (memory_ != MAP_FAILED)
            munmap(memory_, bytes_);
    }
    Segment(const Segment&) = delete;
    Segment& operator=(const Segment&) = delete;

    bool attached() const { return attached_; }
    std::size_t bytes() const { return bytes_; }
    const std::uint8_t* pixels() const { return static_cast<const std::uint8_t*>(memory_); }

    bool fill(const ScreenArea& area) const
    {
        xcb_connection_t* handle = connection_->get();
        const Reply<xcb_shm_get_image_reply_t> reply(xcb_shm_get_image_reply(
            handle,
            xcb_shm_get_image_unchecked(
                handle, connection_->root(), static_cast<std::int16_t>(area.x),
                static_cast<std::int16_t>(area.y), static_cast<std::uint16_t>(area.width),
                static_cast<std::uint16_t>(area.height), ~0u, XCB_IMAGE_FORMAT_Z_PIXMAP, name_, 0),
            nullptr));
        return static_cast<bool>(reply);
    }

private:
    std::shared_ptr<Connection> connection_;
    std::size_t bytes_;
    void* memory_ = MAP_FAILED;
    xcb_shm_seg_t name_ = 0;
    bool attached_ = false;
};

ScreenGrabber::ScreenGrabber() = default;
ScreenGrabber::~ScreenGrabber() = default;

void ScreenGrabber::clear()
{
    const std::lock_guard<std::mutex> lock(mutex_);
    segment_.reset();
}

// Makes a connection unless there is one that works.
bool ScreenGrabber::connect()
{
    if (connection_ && !connection_->broken())
        return true;
    segment_.reset();
    connection_.reset();
    const char* display = std::getenv("DISPLAY");
    if (!display || !*display)
        return false;
    auto connection = std::make_shared<Connection>();
    if (!connection->usable())
        return false;
    connection_ = std::move(connection);
    return true;
}

// Sees to it that there is memory which no picture uses.
bool ScreenGrabber::provide(std::size_t bytes)
{
    if (segment_ && segment_.use_count() == 1 && segment_->bytes() == bytes) {
        std::atomic_thread_fence(std::memory_order_acquire); // what its last picture's thread read
        return true;
    }
    segment_ = std::make_shared<Segment>(connection_, bytes);
    if (!segment_->attached())
        segment_.reset();
    return segment_ != nullptr;
}

ScreenPicture ScreenGrabber::grab(const ScreenArea* area)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    if (!connect())
        return {};
    ScreenArea part = connection_->extent();
    if (area) {
        const int right = std::min(area->x + area->width, part.width);
        const int bottom = std::min(area->y + area->height, part.height);
        part.x = std::max(area->x, 0);
        part.y = std::max(area->y, 0);
        part.width = right - part.x;
        part.height = bottom - part.y;
    }
    if (part.width < 1 || part.height < 1)
        return {};
    const auto bytes =
        static_cast<std::size_t>(part.width) * static_cast<std::size_t>(part.height) * 4;
    if (!provide(bytes) || !segment_->fill(part))
        return {};
    return {segment_, segment_->pixels(), part.width, part.height, part.width * 4};
}

} // namespace Host
