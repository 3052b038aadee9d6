// The operations of MediaServices that record, and those of sound, of which there is none.
#include "OS/Mac/Media/MediaServices.h"

#include "OS/Host/Screen/DisplayProbe.h"
#include "OS/Host/Screen/ScreenRecorder.h"
#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/Core/PathText.h"
#include "OS/Mac/Core/ReplacementFile.h"

#include <OS.h>
#include <OS/Files/iShell.h>

#include <cstring>
#include <filesystem>
#include <system_error>

namespace {

constexpr int kSeconds = 5;

// @return empty when the movie is there, else the reason
std::string recordInto(const LightweightString<char>& path)
{
    if (Host::desktopHidesScreen() || !Host::displayAnswers())
        return "the desktop does not let its screen be seen";
    std::error_code ignored; // the file tells
    std::filesystem::create_directories(std::filesystem::path(path.c_str()).parent_path(), ignored);
    OSInternal::ReplacementFile file(path);
    if (!file.openAnyway())
        return std::string("the movie cannot be opened: ") + std::strerror(file.error());
    const std::string reason = Host::recordScreen(file.descriptor(), kSeconds);
    if (reason.empty() && !file.commit())
        return std::string("the movie cannot be written: ") + std::strerror(file.error());
    return reason;
}

bool recordFor5Seconds(const LightweightString<wchar_t>& path)
{
    const std::string reason = recordInto(OSInternal::pathToSystem(path));
    if (!reason.empty())
        OSInternal::printLine("MediaServices::beginScreenCapture() : %s\n", reason.c_str());
    return reason.empty();
}

} // namespace

Tq::Ptr<iObject> MediaServices::beginScreenCapture(LightweightString<wchar_t>& path,
                                                   const LightweightString<char>& /*options*/)
{
    const LightweightString<wchar_t> movie =
        OS()->shell()->getFolderLocation(iShell::eMovies) + L"ScreenCaptureTest.mov";
    const bool b = recordFor5Seconds(movie);
    if (b)
        path = movie;
    else
        OSInternal::reportAssertion("b", "OS/Mac/MediaServices line 364");
    return {};
}

void MediaServices::endScreenCapture() {}

Tq::Ptr<iAudioBuffer> MediaServices::createAudioBuffer(unsigned int)
{
    return {};
}

unsigned int MediaServices::getNumAudioOutputChannels()
{
    return 0;
}
