#pragma once

#include <OS.h>

#include "OS/Mac/Core/ThreadAtomics.h"
#include "OS/Mac/Core/Utils.h"
#include "OS/Mac/Devices/HardwareManager.h"
#include "OS/Mac/Devices/MIDI.h"
#include "OS/Mac/Files/FileManager.h"
#include "OS/Mac/Files/MountManager.h"
#include "OS/Mac/Files/ProcessManager.h"
#include "OS/Mac/Files/Shell.h"
#include "OS/Mac/Media/MediaServices.h"
#include "OS/Mac/System/SystemInfo.h"
#include "OS/Mac/Threads/ThreadManager.h"
#include "OS/Mac/Windowing/QtWindowManager.h"
#include "OS/Shared/OsHeap.h"

/// The root object: one of every manager, by value, in the order in which they are constructed.
///
/// No member's constructor may call OS() or allocate: the root is still being made then. All real
/// initialisation comes at first use.
class TqOS final : public iOperatingSystem
{
public:
    TqOS();

    iHeap* heap() override { return &heap_; }
    iUtils* utils() override { return &utils_; }
    iFileManager* fileMgr() override { return &fileManager_; }
    iThreadManager* threadMgr() override { return &threadManager_; }
    iThreadAtomics* threadAtomics() override { return &threadAtomics_; }
    iProcessManager* processMgr() override { return &processManager_; }
    iWindowManager* windowMgr() override { return &windowManager_; }
    iSystemInfo* systemInfo() override { return &systemInfo_; }
    iHardwareManager* hardwareMgr() override { return &hardwareManager_; }
    iMediaServices* mediaServices() override { return &mediaServices_; }
    iShell* shell() override { return &shell_; }
    iMIDI* midi() override { return &midi_; }
    iMountManager* mountMgr() override { return &mountManager_; }

private:
    FileManager fileManager_;
    Tq::OsHeap heap_;
    Utils utils_;
    ThreadManager threadManager_;
    ThreadAtomics threadAtomics_;
    QtWindowManager windowManager_;
    SystemInfo systemInfo_;
    ProcessManager processManager_;
    Shell shell_;
    MediaServices mediaServices_;
    HardwareManager hardwareManager_;
    MIDI midi_;
    MountManager mountManager_;
};
