#pragma once

#include <memory>
#include <type_traits>

#include <gio/gio.h>

namespace OSInternal {

struct ObjectUnref
{
    void operator()(gpointer object) const { g_object_unref(object); }
};
template <class T>
using ObjectPtr = std::unique_ptr<T, ObjectUnref>;

struct ErrorFree
{
    void operator()(GError* error) const { g_error_free(error); }
};
using ErrorPtr = std::unique_ptr<GError, ErrorFree>;

struct VariantUnref
{
    void operator()(GVariant* variant) const { g_variant_unref(variant); }
};
using VariantPtr = std::unique_ptr<GVariant, VariantUnref>;

/// A row of asynchronous calls to GIO, made one after the other within one time-out on the calling
/// thread. While it lives, what GIO has to tell this thread is told in wait(), and nowhere else.
///
/// Each call gets cancellable(), onReady and request(); then wait() gives its result. Once the time
/// is over the call is cancelled; one that does not even answer that is left behind after a
/// second, with its few bytes.
class GioCall
{
public:
    explicit GioCall(unsigned int timeoutMs);
    ~GioCall();
    GioCall(const GioCall&) = delete;
    GioCall& operator=(const GioCall&) = delete;

    GCancellable* cancellable() const { return cancellable_.get(); }
    /// For the call about to be made, once. @return its user data
    gpointer request();
    static void onReady(GObject* source, GAsyncResult* result, gpointer request);
    /// @return null when it never came
    GAsyncResult* wait();
    bool isTimedOut() const { return timedOut_; }

private:
    struct Answer
    {
        ObjectPtr<GAsyncResult> result_;
    };
    struct ContextUnref
    {
        void operator()(GMainContext* context) const { g_main_context_unref(context); }
    };

    void startTimer(unsigned int delayMs, GSourceFunc whenOver);

    std::unique_ptr<GMainContext, ContextUnref> context_;
    ObjectPtr<GCancellable> cancellable_;
    std::shared_ptr<Answer> answer_; // shared with the call, which may outlive this object
    GSource* timer_ = nullptr;
    bool timedOut_ = false;
    bool abandoned_ = false;
};

} // namespace OSInternal
