#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"

#include "OS/Mac/Application/QtApplication.h"
#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLRenderContext.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLSharedContext.h"
#include "OS/Mac/OpenGL/Images/FramebufferNames.h"
#include "OS/Mac/OpenGL/Images/OpenGLImage.h"
#include "OS/Mac/OpenGL/Widgets/QtGLWindowUpdater.h"
#include "OS/Mac/Threads/LockRank.h"

#include <OS.h>
#include <OS/Threads/iThreadManager.h>

#include <QGLContext>
#include <QGuiApplication>
#include <QThread>
#include <mutex>
#include <vector>

namespace {

// Why no GL widget can be made here and now; null where one can. The toolkit's other platforms
// crash in the attempt.
const char* reasonAgainst()
{
    const QtApplication* application = QtApplication::instance();
    if (!application->hasWidgets())
        return "no Qt application for windows";
    if (QThread::currentThread() != application->getAppThread())
        return "not on the thread of the Qt application";
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
        return "no display";
    return nullptr;
}

} // namespace

OpenGLUtils& OpenGLUtils::instance()
{
    // Never destroyed: what it holds cannot be freed after the Qt application object.
    static OpenGLUtils* const utils = new OpenGLUtils;
    if (!isInitialised())
        utils->build();
    return *utils;
}

OpenGLUtils::OpenGLUtils()
    : threadSafety_(OS()->threadMgr()->createCriticalSection(0)),
      cacheSafety_(OS()->threadMgr()->createCriticalSection(0))
{
    OSInternal::setLockRank(*threadSafety_, OSInternal::LockRank::eGL);
}

void OpenGLUtils::build()
{
    if (const char* reason = reasonAgainst()) {
        OSInternal::printLine("OpenGLUtils::instance() : %s\n", reason);
        return;
    }
    OpenGLSharedContext& shared = getSharedContext();
    if (!shared.isValid()) {
        OSInternal::printLine("OpenGLUtils::instance() : no GL context\n");
        return;
    }
    shared.makeCurrent();
    readLimits();
    FramebufferNames::probe();
    createBlackTexture();
    shared.unMakeCurrent();
    QtGLWindowUpdater::instance();
    initialised_.store(true, std::memory_order_release);
}

void OpenGLUtils::readLimits()
{
    GLint size = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &size);
    maxTextureDimensions_ = {size, size};
    GLint units = 0;
    glGetIntegerv(GL_MAX_TEXTURE_UNITS, &units);
    numTextureUnits_ = static_cast<unsigned int>(units);
    if (const auto* vendor = reinterpret_cast<const char*>(glGetString(GL_VENDOR)))
        vendor_ = vendor;
}

OpenGLSharedContext& OpenGLUtils::getSharedContext()
{
    static OpenGLSharedContext* const context = new OpenGLSharedContext;
    return *context;
}

OpenGLRenderContext& OpenGLUtils::getRenderContext()
{
    // Those of ended threads stay reachable.
    static std::mutex guard;
    static auto* const all = new std::vector<OpenGLRenderContext*>;
    static thread_local OpenGLRenderContext* context = nullptr;
    if (!context) {
        context = new OpenGLRenderContext;
        const std::lock_guard lock(guard);
        all->push_back(context);
    }
    return *context;
}

Tq::Ptr<iCriticalSection> OpenGLUtils::getLock() const
{
    if (!threadSafety_)
        OSInternal::reportAssertion("threadSafety_", "OS/Mac/OpenGLUtils line 153");
    return threadSafety_;
}

Tq::Ptr<iCriticalSection> OpenGLUtils::getCacheLock() const
{
    if (!cacheSafety_)
        OSInternal::reportAssertion("cacheSafety_", "OS/Mac/OpenGLUtils line 166");
    return cacheSafety_;
}

LightweightString<char> OpenGLUtils::getVendor()
{
    return isInitialised() ? vendor_ : LightweightString<char>();
}

void OpenGLUtils::resetContext()
{
    if (QOpenGLContext* context = QOpenGLContext::currentContext())
        context->doneCurrent();
}

void OpenGLUtils::shutdown()
{
    if (isInitialised())
        instance().reset();
}

void OpenGLUtils::reset()
{
    QtGLWindowUpdater::instance().shutdown();
    releaseTextures();
    getSharedContext().shutdown();
}
