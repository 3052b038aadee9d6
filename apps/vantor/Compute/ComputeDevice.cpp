#include "Compute/ComputeDevice.h"

#include <OS.h>
#include <OS/Files/iFileManager.h>
#include <OS/Files/iShell.h>
#include <OS/Media/iMediaServices.h>
#include <OS/Threads/CriticalSectionLock.h>
#include <OS/Threads/iThreadManager.h>

#include <string>

namespace Vantor {

const wchar_t* const kNoComputeDevice = L"no device here computes for OpenGL";

std::shared_ptr<ComputeDevice> ComputeDevice::instance()
{
    static const Tq::Ptr<iCriticalSection> lock = OS()->threadMgr()->createCriticalSection(0);
    static std::weak_ptr<ComputeDevice> known;
    const CriticalSectionLock held(lock);
    std::shared_ptr<ComputeDevice> device = known.lock();
    if (!device)
        known = device = std::shared_ptr<ComputeDevice>(new ComputeDevice);
    return device;
}

ComputeDevice::ComputeDevice()
    : context_(OS()->mediaServices()->createGPUComputeContext(iGPUComputeContext::eOpenCL))
{
}

Tq::Ptr<iGPUProgram> ComputeDevice::compile(const wchar_t* file) const
{
    if (!context_)
        return nullptr;
    const Text path = OS()->shell()->getFolderLocation(iShell::eResources) + L"Kernels/" + file;
    const Tq::Ptr<iFile> opened = OS()->fileMgr()->openFile(
        path, iFile::eAccessRead, iFile::eOpenExisting, iFile::eShareRead, 0);
    if (!opened)
        return nullptr;
    std::string text(static_cast<std::size_t>(opened->getSize()), '\0');
    if (opened->read(text.data(), static_cast<unsigned int>(text.size())) != text.size())
        return nullptr;
    return context_->compileProgram({LightweightString<char>(text.c_str())});
}

} // namespace Vantor
