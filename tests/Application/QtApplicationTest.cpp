#include "OS/Mac/Application/QtApplication.h"

#include "support/OutputCapture.h"

#include <QGuiApplication>
#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

// Runs code in a child of its own, since a process has one application object for good. @return its
// answer
template <class Code>
int inChild(Code code)
{
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0)
        _exit(code());
    int status = -1;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

int madeOn(const char* platform)
{
    const bool made = QtApplication::instance()->hasWidgets();
    return made && QGuiApplication::platformName() == QLatin1String(platform) ? 0 : 1;
}

} // namespace

TEST(QtApplication, IsMadeOffScreenWhereNoDisplayAnswers)
{
    EXPECT_EQ(inChild([] {
                  unsetenv("QT_QPA_PLATFORM");
                  unsetenv("DISPLAY");
                  return madeOn("offscreen");
              }),
              0);
    EXPECT_EQ(inChild([] {
                  unsetenv("QT_QPA_PLATFORM");
                  setenv("DISPLAY", ":4711",
                         1); // nobody there: the toolkit alone would end the process
                  return madeOn("offscreen");
              }),
              0);
    EXPECT_EQ(inChild([] {
                  setenv("QT_QPA_PLATFORM", "minimal", 1);
                  return madeOn("minimal");
              }),
              0);
}

TEST(QtApplication, KeepsTheNumericLocaleAndMayOutliveMain)
{
    EXPECT_EQ(inChild([] {
                  setenv("LC_ALL", "de_DE.UTF-8", 1);
                  QtApplication::instance();
                  return std::string(std::setlocale(LC_NUMERIC, nullptr)) == "C" ? 0 : 1;
              }),
              0);
}

TEST(QtApplication, UsesTheClientsOwn)
{
    EXPECT_EQ(inChild([] {
                  static int count = 1;
                  static char name[] = "client";
                  static char* values[] = {name, nullptr};
                  const QCoreApplication own(count, values);
                  const QtApplication* companion = QtApplication::instance();
                  if (companion->getApp() != &own || companion->getAppThread() != own.thread())
                      return 1;
                  return companion->hasGui() || companion->hasWidgets() ? 2 : 0;
              }),
              0);
}

TEST(QtApplication, IsNotMadeOnAnotherThreadButAfterwardsOnTheMainOne)
{
    EXPECT_EQ(inChild([] {
                  bool onWorker = true;
                  const std::string printed = outputOf([&] {
                      std::thread([&] { onWorker = QtApplication::instance()->hasGui(); }).join();
                      std::thread([] { QtApplication::instance(); }).join();
                  });
                  OutputCapture warnings(OutputCapture::eStderr);
                  if (onWorker || QtApplication::instance()->getApp() == nullptr)
                      return 1;
                  if (!warnings.text().empty())
                      return 3;
                  return printed == "AppStarter::start() : the Qt application must be made on the "
                                    "main thread\n"
                             ? 0
                             : 2;
              }),
              0);
}
