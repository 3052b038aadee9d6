#include "OS/Host/Desktop/GioCall.h"

namespace OSInternal {

namespace {

constexpr unsigned int kGraceMs = 1000;

} // namespace

GioCall::GioCall(unsigned int timeoutMs)
    : context_(g_main_context_new()), cancellable_(g_cancellable_new())
{
    g_main_context_push_thread_default(context_.get());
    startTimer(timeoutMs, [](gpointer self) -> gboolean {
        auto* call = static_cast<GioCall*>(self);
        call->timedOut_ = true;
        g_cancellable_cancel(call->cancellable_.get());
        call->startTimer(kGraceMs, [](gpointer again) -> gboolean {
            static_cast<GioCall*>(again)->abandoned_ = true;
            return G_SOURCE_REMOVE;
        });
        return G_SOURCE_REMOVE;
    });
}

GioCall::~GioCall()
{
    g_source_destroy(timer_);
    g_source_unref(timer_);
    // What the answer lets go of is released by the context, and by nobody once that is gone.
    answer_.reset();
    while (g_main_context_iteration(context_.get(), FALSE))
        continue;
    g_main_context_pop_thread_default(context_.get());
}

void GioCall::startTimer(unsigned int delayMs, GSourceFunc whenOver)
{
    if (timer_)
        g_source_unref(timer_);
    timer_ = g_timeout_source_new(delayMs);
    g_source_set_callback(timer_, whenOver, this, nullptr);
    g_source_attach(timer_, context_.get());
}

gpointer GioCall::request()
{
    answer_ = std::make_shared<Answer>();
    return new std::shared_ptr<Answer>(answer_);
}

void GioCall::onReady(GObject*, GAsyncResult* result, gpointer request)
{
    const std::unique_ptr<std::shared_ptr<Answer>> answer(
        static_cast<std::shared_ptr<Answer>*>(request));
    (*answer)->result_.reset(G_ASYNC_RESULT(g_object_ref(result)));
}

GAsyncResult* GioCall::wait()
{
    while (!answer_->result_ && !abandoned_)
        g_main_context_iteration(context_.get(), TRUE);
    return answer_->result_.get();
}

} // namespace OSInternal
