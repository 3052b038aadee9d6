#include "support/FreshProcess.h"
#include "support/OutputCapture.h"

#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Mac/Application/QtApplication.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLRenderContext.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLSharedContext.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"

#include <OS.h>
#include <OS/System/iSystemInfo.h>

#include <QGLWidget>
#include <QOpenGLContext>
#include <atomic>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace {

TEST(OpenGLUtils, RefusesToBeBuiltOffTheApplicationsThread)
{
    if (runsInFreshProcess())
        return;
    QtApplication::instance();
    OutputCapture output;
    std::thread([] { OpenGLUtils::instance(); }).join();
    EXPECT_EQ(output.text(), "OpenGLUtils::instance() : not on the thread of the Qt application\n");
    EXPECT_FALSE(OpenGLUtils::isInitialised());
}

TEST(OpenGLUtils, KnowsWhatTheDriverCanDo)
{
    OpenGLUtils::instance();
    ASSERT_TRUE(OpenGLUtils::isInitialised());
    EXPECT_GE(OpenGLUtils::getMaxTextureSize().x, 1024);
    EXPECT_EQ(OpenGLUtils::getMaxTextureSize().x, OpenGLUtils::getMaxTextureSize().y);
    EXPECT_GE(OpenGLUtils::getNumTextureUnits(), 2u);
    EXPECT_FALSE(OpenGLUtils::getVendor().empty());
    EXPECT_FALSE(OS()->systemInfo()->getGraphicsDriverVendor().empty());
    EXPECT_TRUE(OpenGLUtils::isAvailable());
    EXPECT_FALSE(OpenGLContextProtector::hasContext()) << "the shared context was released";
}

TEST(OpenGLContexts, HaveNoDepthOrStencilBuffers)
{
    OpenGLUtils::instance();
    const QGLFormat asked = OpenGLSharedContext::getGLFormat();
    EXPECT_FALSE(asked.depth());
    EXPECT_FALSE(asked.stencil());
    EXPECT_TRUE(asked.doubleBuffer());
    const OpenGLContextProtector protector(OpenGLUtils::getSharedContext());
    GLint depth = -1, stencil = -1;
    glGetIntegerv(GL_DEPTH_BITS, &depth);
    glGetIntegerv(GL_STENCIL_BITS, &stencil);
    EXPECT_EQ(depth, 0);
    EXPECT_EQ(stencil, 0);
}

TEST(OpenGLContexts, ShareTheirObjects)
{
    OpenGLUtils::instance();
    GLuint texture = 0;
    const unsigned char pixel[] = {1, 2, 3, 4};
    std::thread([&] {
        const OpenGLContextProtector protector;
        glGenTextures(1, &texture);
        glBindTexture(GL_TEXTURE_2D, texture);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 1, 1, 0, GL_BGRA, GL_UNSIGNED_BYTE, pixel);
        glBindTexture(GL_TEXTURE_2D, 0);
    }).join();
    unsigned char read[4] = {};
    {
        const OpenGLContextProtector protector(OpenGLUtils::getSharedContext());
        glBindTexture(GL_TEXTURE_2D, texture);
        glGetTexImage(GL_TEXTURE_2D, 0, GL_BGRA, GL_UNSIGNED_BYTE, read);
        glDeleteTextures(1, &texture);
    }
    EXPECT_EQ(read[0], 1);
    EXPECT_EQ(read[3], 4);
}

TEST(OpenGLContexts, CannotBeSwapped)
{
    OpenGLUtils::instance();
    OutputCapture output;
    OpenGLUtils::getSharedContext().swapBuffers();
    OpenGLUtils::instance().getRenderContext().swapBuffers();
    EXPECT_EQ(output.text(), "assertion failed false at ../Mac/OpenGLSharedContext line 32\n"
                             "assertion failed false at ../Mac/OpenGLRenderContext line 34\n");
}

TEST(OpenGLContexts, SurviveWhenTheDriverRefuses)
{
    OpenGLUtils::instance();
    QSurfaceFormat format;
    format.setRenderableType(QSurfaceFormat::OpenVG);
    OutputCapture output;
    OpenGLRenderContext refused(format);
    const std::string text = output.text();
    if (text.empty())
        GTEST_SKIP() << "EGL makes a context of every kind";
    EXPECT_NE(text.find("OpenGLRenderContext::OpenGLRenderContext() : "
                        "QOpenGLContext::create failed\n"),
              std::string::npos);
    const OpenGLContextProtector protector(refused);
    EXPECT_FALSE(OpenGLContextProtector::hasContext());
}

TEST(OpenGLContextProtector, KeepsTheContextThatIsCurrent)
{
    OpenGLUtils::instance();
    OpenGLSharedContext& shared = OpenGLUtils::getSharedContext();
    const QOpenGLContext* own = nullptr;
    {
        const OpenGLContextProtector protector;
        own = QOpenGLContext::currentContext();
        EXPECT_NE(own, nullptr);
        const OpenGLContextProtector inner;
        EXPECT_EQ(QOpenGLContext::currentContext(), own);
    }
    EXPECT_FALSE(OpenGLContextProtector::hasContext());
    shared.makeCurrent();
    const QOpenGLContext* current = QOpenGLContext::currentContext();
    EXPECT_NE(current, own);
    {
        const OpenGLContextProtector protector;
        EXPECT_EQ(QOpenGLContext::currentContext(), current);
    }
    EXPECT_EQ(QOpenGLContext::currentContext(), current) << "released none";
    OpenGLUtils::resetContext();
    EXPECT_FALSE(OpenGLContextProtector::hasContext());
}

TEST(OpenGLContextProtector, LetsOneThreadAtATimeCallGL)
{
    OpenGLUtils::instance();
    std::atomic<int> inside{0}, most{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < 50; ++round) {
                const OpenGLContextProtector protector;
                const int now = ++inside;
                if (now > most)
                    most = now;
                glFlush();
                --inside;
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(most, 1);
}

} // namespace
