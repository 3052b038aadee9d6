// The virtual slots of every interface whose order is published: clients are built against them.

#include <OS.h>
#include <OS/Compute/iOpenCLGraphicsInterop.h>
#include <OS/Core/iDLL.h>
#include <OS/Core/iThreadAtomics.h>
#include <OS/Core/iUtils.h>
#include <OS/Devices/iHardwareManager.h>
#include <OS/Devices/iMIDI.h>
#include <OS/Files/iFileManager.h>
#include <OS/Files/iSettings.h>
#include <OS/Media/iMediaServices.h>
#include <OS/OpenGL/iOpenGLContext.h>
#include <OS/OpenGL/iOpenGLImage.h>
#include <OS/Primitives/GraphicPrimitivesList.h>
#include <OS/Primitives/iGraphicPrimitivesRenderer.h>
#include <OS/Shared/iHeap.h>
#include <OS/Shared/iReclaimable.h>
#include <OS/System/iSystemInfo.h>
#include <OS/Threads/iCriticalSection.h>
#include <OS/Threads/iExecutable.h>
#include <OS/Threads/iIOCompletionPort.h>
#include <OS/Threads/iMutex.h>
#include <OS/Threads/iSemaphore.h>
#include <OS/Threads/iThread.h>
#include <OS/Threads/iThreadEvent.h>
#include <OS/Threads/iThreadManager.h>
#include <OS/Windowing/iEventHandler.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <vector>

namespace {

// The slot that a pointer to a virtual member names: the platform's C++ ABI stores 1 plus its
// offset in bytes.
template <class Member>
std::size_t slotOf(Member member)
{
    std::ptrdiff_t word = 0;
    std::memcpy(&word, &member, sizeof word);
    return static_cast<std::size_t>(word - 1) / sizeof(void*);
}

// Members in published order: behind the two slots of the destructor, or from `first` on.
void expectOrder(const char* interface, const std::vector<std::size_t>& slots,
                 std::size_t first = 2)
{
    for (std::size_t i = 0; i < slots.size(); ++i)
        EXPECT_EQ(slots[i], first + i) << interface << ", operation " << i + 1;
}

template <class T, class Result, class... Arguments>
std::size_t overload(Result (T::*member)(Arguments...))
{
    return slotOf(member);
}

template <class T, class Result, class... Arguments>
std::size_t overload(Result (T::*member)(Arguments...) const)
{
    return slotOf(member);
}

template <class Description>
std::size_t renderSlot()
{
    return overload<iGraphicPrimitivesRenderer, void, const Description*, unsigned int>(
        &iGraphicPrimitivesRenderer::renderMulti);
}

template <class Description>
std::size_t processSlot()
{
    using Processor = GraphicPrimitivesList::iPrimitivesProcessor;
    return overload<Processor, void, const Description*, unsigned int, const Tq::Ptr<iRegion>&>(
        &Processor::process);
}

} // namespace

TEST(Slots, TheRootHandsOutItsManagersInOrder)
{
    using R = iOperatingSystem;
    expectOrder("iOperatingSystem",
                {slotOf(&R::heap), slotOf(&R::utils), slotOf(&R::fileMgr), slotOf(&R::threadMgr),
                 slotOf(&R::threadAtomics), slotOf(&R::processMgr), slotOf(&R::windowMgr),
                 slotOf(&R::systemInfo), slotOf(&R::hardwareMgr), slotOf(&R::mediaServices),
                 slotOf(&R::shell), slotOf(&R::midi), slotOf(&R::mountMgr)});
}

TEST(Slots, CoreServices)
{
    using A = iThreadAtomics;
    expectOrder(
        "iThreadAtomics",
        {slotOf(&A::safeInc), slotOf(&A::safeDec),
         overload<A, long long, volatile long long*, long long>(&A::safeAssign),
         overload<A, int, volatile int*, int>(&A::safeAssign), slotOf(&A::safeAdd),
         overload<A, long long, volatile long long*, long long, long long>(&A::safeCompareExchange),
         overload<A, int, volatile int*, int, int>(&A::safeCompareExchange)});
    using H = iHeap;
    expectOrder("iHeap", {slotOf(&H::alloc), slotOf(&H::reAlloc), slotOf(&H::deAlloc),
                          slotOf(&H::virtualAlloc), slotOf(&H::virtualDeAlloc),
                          slotOf(&H::registerReclaimable), slotOf(&H::deRegisterReclaimable),
                          slotOf(&H::report), slotOf(&H::reclaim), slotOf(&H::limitUsage),
                          slotOf(&H::isPointerValid), slotOf(&H::outOfMemory)});
    using C = iReclaimable;
    expectOrder("iReclaimable",
                {slotOf(&C::purge), slotOf(&C::limitUsage), slotOf(&C::reportUsage)});
    using D = iDLL;
    expectOrder("iDLL",
                {slotOf(&D::getFilename), slotOf(&D::valid), slotOf(&D::containsFunction),
                 slotOf(&D::getFunction), slotOf(&D::containsResource), slotOf(&D::getResource)});
    using U = iUtils;
    expectOrder("iUtils",
                {slotOf(&U::widen), slotOf(&U::narrow), slotOf(&U::toUTF8), slotOf(&U::fromUTF8),
                 slotOf(&U::timeNow), slotOf(&U::elapsedTime), slotOf(&U::getTimeNano),
                 slotOf(&U::generateUUID), slotOf(&U::checkAndFixFloatPrecision),
                 slotOf(&U::outputDebug), slotOf(&U::getLastError),
                 slotOf(&U::getSystemErrorString), slotOf(&U::getStacktrace)});
    using S = iSystemInfo;
    expectOrder("iSystemInfo", {slotOf(&S::getNumberOfProcessors), slotOf(&S::getMonitorInfo),
                                slotOf(&S::getMemoryInfo), slotOf(&S::getComputerName),
                                slotOf(&S::getOSVersion), slotOf(&S::getGraphicsDriverVendor),
                                slotOf(&S::getVariable), slotOf(&S::getGraphicsReport)});
}

TEST(Slots, Files)
{
    using F = iFile;
    expectOrder("iFile", {slotOf(&F::getFileName), slotOf(&F::read), slotOf(&F::readAt),
                          slotOf(&F::readAsync), slotOf(&F::readAtAsync), slotOf(&F::write),
                          slotOf(&F::writeAsync), slotOf(&F::writeAt), slotOf(&F::writeAtAsync),
                          slotOf(&F::positionAt), slotOf(&F::getPosition), slotOf(&F::getTime),
                          slotOf(&F::setTime), slotOf(&F::getSize), slotOf(&F::recalculateSize),
                          slotOf(&F::truncate), slotOf(&F::isOpen), slotOf(&F::getCaps)});
    using M = iFileManager;
    expectOrder("iFileManager", {slotOf(&M::copyFile),
                                 slotOf(&M::moveFile),
                                 slotOf(&M::deleteFile),
                                 slotOf(&M::touchFile),
                                 slotOf(&M::recycleFile),
                                 slotOf(&M::openFile),
                                 slotOf(&M::transferOwnership),
                                 slotOf(&M::getOwner),
                                 slotOf(&M::getFileSize),
                                 slotOf(&M::setFileAttributes),
                                 slotOf(&M::getFileAttributes),
                                 slotOf(&M::fileExists),
                                 slotOf(&M::isVirtual),
                                 slotOf(&M::openDrive),
                                 slotOf(&M::openDriveByID),
                                 slotOf(&M::openDLL),
                                 slotOf(&M::createDirectory),
                                 slotOf(&M::deleteDirectory),
                                 slotOf(&M::getDirectoryContents),
                                 slotOf(&M::createAsyncContext),
                                 slotOf(&M::createIOCompletionPort),
                                 slotOf(&M::getNumDiskDrives),
                                 slotOf(&M::getDiskDrives),
                                 slotOf(&M::getNetworkServers),
                                 slotOf(&M::getNetworkShares),
                                 slotOf(&M::getTempFileName),
                                 slotOf(&M::getAppPath),
                                 slotOf(&M::getAppName),
                                 slotOf(&M::getAppDescription),
                                 slotOf(&M::asString),
                                 slotOf(&M::timeNow),
                                 slotOf(&M::isWritable),
                                 slotOf(&M::findSysLib),
                                 slotOf(&M::getUniversalName),
                                 slotOf(&M::getPathSeparator)});
    using S = iSettings;
    expectOrder("iSettings", {slotOf(&S::setValue), slotOf(&S::getValue), slotOf(&S::removeValue),
                              slotOf(&S::getMultipleValues), slotOf(&S::persist)});
}

TEST(Slots, Threads)
{
    using M = iThreadManager;
    expectOrder("iThreadManager",
                {slotOf(&M::createCriticalSection), slotOf(&M::createSemaphore),
                 slotOf(&M::createEvent), slotOf(&M::createMutex), slotOf(&M::createThread),
                 slotOf(&M::waitForEvents), slotOf(&M::protectedExecute), slotOf(&M::openMutex),
                 slotOf(&M::getCurrentThreadID), slotOf(&M::exitCurrentThread), slotOf(&M::sleep)});
    using T = iThread;
    expectOrder("iThread",
                {slotOf(&T::getID), slotOf(&T::getPriority), slotOf(&T::setPriority),
                 slotOf(&T::setAffinity), slotOf(&T::resume), slotOf(&T::suspend),
                 slotOf(&T::waitForCompletion), slotOf(&T::getObject), slotOf(&T::setObject)});
    expectOrder("iCriticalSection",
                {slotOf(&iCriticalSection::lock), slotOf(&iCriticalSection::lockIfNotLocked),
                 slotOf(&iCriticalSection::unlock)});
    expectOrder("iMutex", {slotOf(&iMutex::wait), slotOf(&iMutex::release)});
    expectOrder("iSemaphore", {slotOf(&iSemaphore::wait), slotOf(&iSemaphore::release)});
    expectOrder("iThreadEvent", {slotOf(&iThreadEvent::wait), slotOf(&iThreadEvent::set),
                                 slotOf(&iThreadEvent::reset)});
    expectOrder("iExecutable", {slotOf(&iExecutable::execute)});
    using P = iIOCompletionPort;
    expectOrder("iIOCompletionPort",
                {slotOf(&P::getStatus), slotOf(&P::terminate), slotOf(&P::attach)});
}

TEST(Slots, SerialPorts)
{
    using H = iHardwareManager;
    expectOrder("iHardwareManager",
                {slotOf(&H::getComPorts), slotOf(&H::openComPort), slotOf(&H::getFirewireDevice),
                 slotOf(&H::registerForDeviceEvents)});
    using P = iComPort;
    expectOrder("iComPort", {slotOf(&P::sendData), slotOf(&P::sendCommand), slotOf(&P::purge),
                             slotOf(&P::setConfig)});
    using R = iComPortReceiver;
    expectOrder("iComPortReceiver", {slotOf(&R::dataReceived), slotOf(&R::getBuffer)});
}

TEST(Slots, DrawingKeepsOneOrderOfTheEightKinds)
{
    using R = iGraphicPrimitivesRenderer;
    expectOrder("iGraphicPrimitivesRenderer",
                {slotOf(&R::setClipRegion), slotOf(&R::setAntialiasingEnabled),
                 renderSlot<RectDescription>(), renderSlot<EllipseDescription>(),
                 renderSlot<LineDescription>(), renderSlot<TextDescription>(),
                 renderSlot<AlphaRectDescription>(), renderSlot<BezierCurveDescription>(),
                 renderSlot<ImageDescription>(), renderSlot<ImageDescriptionEx>()});
    expectOrder("iPrimitivesProcessor",
                {processSlot<RectDescription>(), processSlot<EllipseDescription>(),
                 processSlot<LineDescription>(), processSlot<TextDescription>(),
                 processSlot<AlphaRectDescription>(), processSlot<BezierCurveDescription>(),
                 processSlot<ImageDescription>(), processSlot<ImageDescriptionEx>()},
                0);
    using H = GraphicPrimitivesList::iPrimitiveDescHolder;
    expectOrder("iPrimitiveDescHolder", {slotOf(&H::process), slotOf(&H::getBounds)});
}

TEST(Slots, WhatLivesOnTheGPU)
{
    using I = iImage;
    expectOrder("iGPUImage", {slotOf(&I::getSize), slotOf(&I::getLocation),
                              slotOf(&I::getBitsPerPixel), slotOf(&I::getPrimitivesRenderer),
                              slotOf(&I::createCompatibleImage), slotOf(&iGPUImage::getFormat)});
    using C = iOpenGLContext;
    expectOrder("iOpenGLContext",
                {slotOf(&C::makeCurrent), slotOf(&C::unMakeCurrent), slotOf(&C::swapBuffers)});
    using M = iMediaServices;
    using Format = iGPUImage::eFormat;
    expectOrder("iMediaServices",
                {slotOf(&M::createGPUSurface), slotOf(&M::createGPUReadySurface),
                 overload<M, Tq::Ptr<iHostImage>, const Tq::Ptr<iGPUImage>&>(&M::copyToHost),
                 overload<M, Tq::Ptr<iGPUImage>, const Tq::Ptr<iHostImage>&, Format>(&M::copyToGPU),
                 slotOf(&M::getGPULock), slotOf(&M::resetGPUContext), slotOf(&M::clearCaches),
                 slotOf(&M::createGPUImage3D),
                 overload<M, Tq::Ptr<iHostImage3D>, const Tq::Ptr<iGPUImage3D>&>(&M::copyToHost)},
                slotOf(&M::createHostSurfaceFont) + 1);
    expectOrder(
        "iMediaServices, effects",
        {slotOf(&M::createShaderEffect), slotOf(&M::compileFXFile), slotOf(&M::create3DEffect),
         slotOf(&M::createGPUSurfaceFont)},
        slotOf(&M::getNumAudioOutputChannels) + 1);
    using E = iShaderEffect;
    expectOrder("iShaderEffect",
                {overload<E, bool, const LightweightString<char>&>(&E::setTechnique),
                 overload<E, bool, unsigned int>(&E::setTechnique), slotOf(&E::hasTechnique),
                 slotOf(&E::setFloat), slotOf(&E::setInt), slotOf(&E::setColour),
                 slotOf(&E::draw)});
}

TEST(Slots, Compute)
{
    expectOrder("iMediaServices, compute",
                {slotOf(&iMediaServices::createGPUComputeContext),
                 slotOf(&iMediaServices::getGPUComputeDevices)},
                slotOf(&iMediaServices::createGPUSurfaceFont) + 1);
    using C = iGPUComputeContext;
    using O = iOpenCLContext;
    using Buffer = Tq::Ptr<iGPUBuffer>;
    using Image = const Tq::Ptr<iGPUImage>&;
    expectOrder("iOpenCLContext",
                {overload<C, Buffer, unsigned int>(&C::createBuffer),
                 overload<C, Buffer, Image>(&C::createBuffer), slotOf(&C::compileProgram),
                 slotOf(&O::getImpl), slotOf(&O::getDevice), slotOf(&O::getCommandQueue),
                 slotOf(&O::prepareBuffers), slotOf(&O::unPrepareBuffers)});
    using B = iGPUBuffer;
    expectOrder("iGPUBuffer", {slotOf(&B::acquire), slotOf(&B::release), slotOf(&B::copyToHost)});
    using P = iGPUProgram;
    using Kernel = Tq::Ptr<iGPUProgramKernel>;
    expectOrder("iGPUProgram",
                {slotOf(&P::getNumKernels), overload<P, Kernel, unsigned short>(&P::getKernel),
                 overload<P, Kernel, const LightweightString<char>&>(&P::getKernel)});
    using K = iGPUProgramKernel;
    expectOrder("iGPUProgramKernel",
                {slotOf(&K::getName), overload<K, bool, unsigned char, short>(&K::setArg),
                 overload<K, bool, unsigned char, float>(&K::setArg),
                 overload<K, bool, unsigned char, const Buffer&>(&K::setArg), slotOf(&K::execute1D),
                 slotOf(&K::execute2D)});
    using I = iOpenCLGraphicsInterop;
    expectOrder("iOpenCLGraphicsInterop", {slotOf(&I::createBuffer), slotOf(&I::prepareBuffers),
                                           slotOf(&I::unPrepareBuffers)});
}

TEST(Slots, TheEventHandlersOperations)
{
    using E = iEventHandler;
    expectOrder("iEventHandler",
                {slotOf(&E::handleMouse), slotOf(&E::handleKey), slotOf(&E::handlePaint),
                 slotOf(&E::handleWindowEvent), slotOf(&E::handleTimer), slotOf(&E::handleFileDrop),
                 slotOf(&E::handleUserMessage)});
}

// Records that cross the boundary keep their layout.
static_assert(sizeof(Tq::Ptr<iObject>) == 2 * sizeof(void*));
static_assert(sizeof(LightweightString<wchar_t>) == 2 * sizeof(void*));
static_assert(sizeof(Tq::InternalRefCount) == 16);
static_assert(sizeof(XY<int>) == 16 && sizeof(Tq::Rectangle<int>) == 16 &&
              sizeof(NormalisedRGB) == 24);
static_assert(sizeof(RectDescription) == 88);
static_assert(sizeof(iComPort::Config) == 16 && offsetof(iComPort::Config, baudRate) == 8);
static_assert(sizeof(iEventHandler::KeyEvent) == 20);
static_assert(sizeof(iEventHandler::WindowEvent) == 8);

TEST(Slots, Midi)
{
    using M = iMIDI;
    using In = iMidiInputDevice;
    using Out = iMidiOutputDevice;
    expectOrder("iMIDI",
                {slotOf(&M::initialise), slotOf(&M::deinitialise),
                 overload<M, TqResult, In*&, unsigned int, InputCallbackReceiver&>(&M::open),
                 overload<M, TqResult, Out*&, unsigned int, OutputCallbackReceiver&>(&M::open),
                 slotOf(&M::getNumInputDevs), slotOf(&M::getNumOutputDevs),
                 slotOf(&M::getInputDevCaps), slotOf(&M::getOutputDevCaps), slotOf(&M::allocHeader),
                 slotOf(&M::freeHeader), slotOf(&M::getResultText)});
    expectOrder("iMidiInputDevice", {slotOf(&In::close), slotOf(&In::start), slotOf(&In::stop),
                                     slotOf(&In::reset), slotOf(&In::getID)});
    expectOrder("iMidiOutputDevice",
                {slotOf(&Out::close), slotOf(&Out::unprepareHeader), slotOf(&Out::shortMsg),
                 slotOf(&Out::longMsg), slotOf(&Out::reset), slotOf(&Out::getID)});
    expectOrder("iMIDIHdr",
                {slotOf(&iMIDIHdr::getFlags), slotOf(&iMIDIHdr::getData),
                 slotOf(&iMIDIHdr::getBytesRecorded)},
                0);
    using R = InputCallbackReceiver;
    expectOrder("InputCallbackReceiver", {slotOf(&R::handleShortMsg), slotOf(&R::handleLongMsg)});
}
