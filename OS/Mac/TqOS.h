#pragma once

#include <OS.h>

#include "OS/Mac/Core/ThreadAtomics.h"
#include "OS/Mac/Core/Utils.h"
#include "OS/Shared/Heap.h"

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
    iFileManager* fileMgr() override { return nullptr; }
    iThreadManager* threadMgr() override { return nullptr; }
    iThreadAtomics* threadAtomics() override { return &threadAtomics_; }
    iProcessManager* processMgr() override { return nullptr; }
    iWindowManager* windowMgr() override { return nullptr; }
    iSystemInfo* systemInfo() override { return nullptr; }
    iHardwareManager* hardwareMgr() override { return nullptr; }
    iMediaServices* mediaServices() override { return nullptr; }
    iShell* shell() override { return nullptr; }
    iMIDI* midi() override { return nullptr; }
    iMountManager* mountMgr() override { return nullptr; }

private:
    Tq::OsHeap heap_;
    Utils utils_;
    ThreadAtomics threadAtomics_;
};
