#include "OS/Host/Desktop/GioVolumeService.h"

#include "OS/Host/Desktop/GioCall.h"

#include <cstdlib>
#include <string_view>
#include <unistd.h>

namespace OSInternal {

namespace {

constexpr const char* kServiceName = "org.gtk.vfs.Daemon";

using Result = iMountManager::eResult;

VolumeAnswer noService(const char* reason)
{
    return {Result::eNoService, reason};
}

Result resultOf(const GError& error)
{
    if (error.domain == G_DBUS_ERROR)
        return error.code == G_DBUS_ERROR_SERVICE_UNKNOWN ||
                       error.code == G_DBUS_ERROR_NAME_HAS_NO_OWNER
                   ? Result::eNoService
                   : Result::eFailed;
    if (error.domain != G_IO_ERROR)
        return Result::eFailed;
    switch (error.code) {
    case G_IO_ERROR_NOT_SUPPORTED:
        return Result::eNoService;
    case G_IO_ERROR_PERMISSION_DENIED:
        return Result::eDenied;
    case G_IO_ERROR_BUSY:
        return Result::eBusy;
    case G_IO_ERROR_TIMED_OUT:
        return Result::eTimedOut;
    default:
        return Result::eFailed;
    }
}

// A server has a say in some of these texts: whatever it says stays one line.
std::string oneLine(const char* message)
{
    std::string text = message ? message : "";
    for (char& c : text) {
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F)
            c = ' ';
    }
    return text;
}

VolumeAnswer failure(const GioCall& call, const GError* error)
{
    if (call.isTimedOut() || !error)
        return {Result::eTimedOut, "no answer in time"};
    return {resultOf(*error), oneLine(error->message)};
}

// -- Whether there is a service ------------------------------------------------------------------

// Where GIO would find the session bus, without the ways that start one.
std::string busAddress()
{
    const char* named = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    if (named && *named)
        return std::string_view(named).find("autolaunch:") == std::string_view::npos ? named : "";
    const char* folder = std::getenv("XDG_RUNTIME_DIR");
    if (!folder || !*folder)
        return {};
    const std::string socket = std::string(folder) + "/bus";
    if (access(socket.c_str(), F_OK) != 0)
        return {};
    gchar* escaped = g_dbus_address_escape_value(socket.c_str());
    const std::string address = std::string("unix:path=") + escaped;
    g_free(escaped);
    return address;
}

VariantPtr askBus(GioCall& call, GDBusConnection* bus, const char* question, GVariant* parameters,
                  ErrorPtr& error)
{
    g_dbus_connection_call(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                           "org.freedesktop.DBus", question, parameters, nullptr,
                           G_DBUS_CALL_FLAGS_NONE, G_MAXINT, call.cancellable(), GioCall::onReady,
                           call.request());
    GError* fault = nullptr;
    GAsyncResult* result = call.wait();
    VariantPtr answer(result ? g_dbus_connection_call_finish(bus, result, &fault) : nullptr);
    error.reset(fault);
    return answer;
}

bool holdsName(GVariant* names)
{
    GVariantIter* each = nullptr;
    g_variant_get(names, "(as)", &each);
    bool found = false;
    for (const char* name = nullptr; g_variant_iter_next(each, "&s", &name);)
        found = found || std::string_view(name) == kServiceName;
    g_variant_iter_free(each);
    return found;
}

// Asks the bus, over a connection of our own that can be given up, for the running services and
// those that it can start.
VolumeAnswer findService(GioCall& call)
{
    const std::string address = busAddress();
    if (address.empty())
        return noService("there is no session bus");
    g_dbus_connection_new_for_address(
        address.c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, call.cancellable(), GioCall::onReady, call.request());
    GError* fault = nullptr;
    GAsyncResult* result = call.wait();
    const ObjectPtr<GDBusConnection> bus(
        result ? g_dbus_connection_new_for_address_finish(result, &fault) : nullptr);
    ErrorPtr error(fault);
    if (!bus)
        return call.isTimedOut() ? failure(call, error.get())
                                 : noService("the session bus does not answer");
    for (const char* question : {"ListNames", "ListActivatableNames"}) {
        const VariantPtr names = askBus(call, bus.get(), question, nullptr, error);
        if (!names)
            return failure(call, error.get());
        if (g_variant_is_of_type(names.get(), G_VARIANT_TYPE("(as)")) && holdsName(names.get()))
            return {Result::eMounted, ""};
    }
    return noService("this desktop has no volume service");
}

// GIO's connection ends the process with the bus unless told otherwise. Held for good: a new one
// would not know. Called while no context of ours is in force, since what GIO makes now stays.
void prepareGio()
{
    static GDBusConnection* const bus = [] {
        GDBusConnection* shared = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
        if (shared)
            g_dbus_connection_set_exit_on_close(shared, FALSE);
        g_vfs_get_default();
        return shared;
    }();
    static_cast<void>(bus);
}

// -- Mounting -------------------------------------------------------------------------------------

// What the service may ask during one call. Owned by the operation.
struct Questions
{
    VolumeLogin login_;
    bool wasAsked_ = false;
    bool wasDenied_ = false;
    bool isInUse_ = false;
    std::string question_;
};

void onAskPassword(GMountOperation* operation, const char*, const char*, const char* defaultDomain,
                   GAskPasswordFlags flags, gpointer data)
{
    auto& questions = *static_cast<Questions*>(data);
    const VolumeLogin& login = questions.login_;
    const bool isGuest = login.user_.empty() && login.password_.empty();
    questions.wasDenied_ =
        questions.wasAsked_ || (isGuest && !(flags & G_ASK_PASSWORD_ANONYMOUS_SUPPORTED));
    questions.wasAsked_ = true;
    if (questions.wasDenied_) {
        g_mount_operation_reply(operation, G_MOUNT_OPERATION_ABORTED);
        return;
    }
    if (isGuest) {
        g_mount_operation_set_anonymous(operation, TRUE);
    } else {
        if (!login.user_.empty())
            g_mount_operation_set_username(operation, login.user_.c_str());
        g_mount_operation_set_domain(operation,
                                     login.domain_.empty() ? defaultDomain : login.domain_.c_str());
        g_mount_operation_set_password(operation, login.password_.c_str());
    }
    g_mount_operation_set_password_save(operation, G_PASSWORD_SAVE_NEVER);
    g_mount_operation_reply(operation, G_MOUNT_OPERATION_HANDLED);
}

void onAskQuestion(GMountOperation* operation, const char* message, const char**, gpointer data)
{
    static_cast<Questions*>(data)->question_ = oneLine(message);
    g_mount_operation_reply(operation, G_MOUNT_OPERATION_ABORTED);
}

void onShowProcesses(GMountOperation* operation, const char*, GArray*, const char**, gpointer data)
{
    static_cast<Questions*>(data)->isInUse_ = true;
    g_mount_operation_reply(operation, G_MOUNT_OPERATION_ABORTED);
}

ObjectPtr<GMountOperation> makeOperation(Questions* questions)
{
    ObjectPtr<GMountOperation> operation(g_mount_operation_new());
    g_object_set_data_full(G_OBJECT(operation.get()), "questions", questions,
                           [](gpointer data) { delete static_cast<Questions*>(data); });
    g_signal_connect(operation.get(), "ask-password", G_CALLBACK(onAskPassword), questions);
    g_signal_connect(operation.get(), "ask-question", G_CALLBACK(onAskQuestion), questions);
    g_signal_connect(operation.get(), "show-processes", G_CALLBACK(onShowProcesses), questions);
    return operation;
}

VolumeAnswer mountWith(GioCall& call, GFile* file, const VolumeLogin& login)
{
    auto* questions = new Questions;
    questions->login_ = login;
    const ObjectPtr<GMountOperation> operation = makeOperation(questions);
    g_file_mount_enclosing_volume(file, G_MOUNT_MOUNT_NONE, operation.get(), call.cancellable(),
                                  GioCall::onReady, call.request());
    GError* fault = nullptr;
    GAsyncResult* result = call.wait();
    const bool isDone = result && g_file_mount_enclosing_volume_finish(file, result, &fault);
    const ErrorPtr error(fault);
    if (isDone || g_error_matches(fault, G_IO_ERROR, G_IO_ERROR_ALREADY_MOUNTED))
        return {Result::eMounted, ""};
    if (questions->wasDenied_)
        return {Result::eDenied, "wrong user or password"};
    if (!questions->question_.empty())
        return {Result::eFailed, "it asks what only a person can answer: " + questions->question_};
    return failure(call, fault);
}

VolumeAnswer unmountFrom(GioCall& call, GFile* file)
{
    g_file_find_enclosing_mount_async(file, G_PRIORITY_DEFAULT, call.cancellable(),
                                      GioCall::onReady, call.request());
    GError* fault = nullptr;
    GAsyncResult* result = call.wait();
    const ObjectPtr<GMount> mount(result ? g_file_find_enclosing_mount_finish(file, result, &fault)
                                         : nullptr);
    ErrorPtr error(fault);
    if (!mount) {
        if (g_error_matches(fault, G_IO_ERROR, G_IO_ERROR_NOT_FOUND) ||
            g_error_matches(fault, G_IO_ERROR, G_IO_ERROR_NOT_MOUNTED))
            return {Result::eUnmounted, ""};
        return failure(call, fault);
    }
    // Where nobody can be asked, the service takes the volume away from under open files.
    auto* questions = new Questions;
    const ObjectPtr<GMountOperation> operation = makeOperation(questions);
    g_mount_unmount_with_operation(mount.get(), G_MOUNT_UNMOUNT_NONE, operation.get(),
                                   call.cancellable(), GioCall::onReady, call.request());
    fault = nullptr;
    result = call.wait();
    const bool isDone =
        result && g_mount_unmount_with_operation_finish(mount.get(), result, &fault);
    error.reset(fault);
    if (isDone || g_error_matches(fault, G_IO_ERROR, G_IO_ERROR_NOT_MOUNTED))
        return {Result::eUnmounted, ""};
    if (questions->isInUse_)
        return {Result::eBusy, "it is in use"};
    return failure(call, fault);
}

// Asks for the service, then does the work with what is left of the time.
template <class Work>
VolumeAnswer withService(const std::string& uri, unsigned int timeoutMs, Work work)
{
    const gint64 start = g_get_monotonic_time();
    {
        GioCall search(timeoutMs);
        const VolumeAnswer found = findService(search);
        if (found.result_ != Result::eMounted)
            return found;
    }
    prepareGio();
    const ObjectPtr<GFile> file(g_file_new_for_uri(uri.c_str()));
    const gint64 spentMs = (g_get_monotonic_time() - start) / 1000;
    GioCall call(spentMs < timeoutMs ? timeoutMs - static_cast<unsigned int>(spentMs) : 0);
    return work(call, file.get());
}

} // namespace

VolumeAnswer GioVolumeService::mount(const std::string& uri, const VolumeLogin& login,
                                     unsigned int timeoutMs)
{
    return withService(uri, timeoutMs,
                       [&](GioCall& call, GFile* file) { return mountWith(call, file, login); });
}

VolumeAnswer GioVolumeService::unmount(const std::string& uri, unsigned int timeoutMs)
{
    return withService(uri, timeoutMs,
                       [](GioCall& call, GFile* file) { return unmountFrom(call, file); });
}

VolumeService& VolumeService::ofSession()
{
    static GioVolumeService service;
    return service;
}

} // namespace OSInternal
