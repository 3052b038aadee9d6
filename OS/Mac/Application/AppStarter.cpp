#include "OS/Mac/Application/AppStarter.h"

#include "OS/Host/Screen/DisplayProbe.h"
#include "OS/Mac/Core/Assertion.h"

#include <QApplication>

#include <clocale>
#include <cstdlib>
#include <unistd.h>

namespace {

bool onMainThread()
{
    return gettid() == getpid();
}

const char* platform()
{
    return Host::displayAnswers() ? "xcb" : "offscreen";
}

// The toolkit keeps references to the arguments and may shorten them, so they live as long as the
// process.
struct Arguments
{
    char program[10] = "vantor-os";
    char platformOption[10] = "-platform";
    char platformName[16] = "";
    char* values[4] = {program, nullptr, nullptr, nullptr};
    int count = 1;
};

QApplication* makeApplication()
{
    static Arguments arguments;
    const char* chosen = std::getenv("QT_QPA_PLATFORM");
    if (!chosen || !*chosen) {
        std::snprintf(arguments.platformName, sizeof arguments.platformName, "%s", platform());
        arguments.values[1] = arguments.platformOption;
        arguments.values[2] = arguments.platformName;
        arguments.count = 3;
    }
    auto* application = new QApplication(arguments.count, arguments.values);
    // The toolkit takes the locale from the environment; numbers in our formats keep their point.
    std::setlocale(LC_NUMERIC, "C");
    return application;
}

} // namespace

QCoreApplication* AppStarter::start()
{
    if (QCoreApplication* application = QCoreApplication::instance())
        return application;
    if (onMainThread())
        return makeApplication();
    if (!refusalPrinted_) {
        refusalPrinted_ = true;
        OSInternal::printLine(
            "AppStarter::start() : the Qt application must be made on the main thread\n");
    }
    return nullptr;
}
