#pragma once

#include <OS/Core/Export.h>

class iFileManager;
class iHardwareManager;
class iHeap;
class iMediaServices;
class iMIDI;
class iMountManager;
class iProcessManager;
class iShell;
class iSystemInfo;
class iThreadAtomics;
class iThreadManager;
class iUtils;
class iWindowManager;

/// The root object: it owns one of every manager and lends them out.
///
/// Accessors return fixed addresses, in constant time, without a lock; a client may remember them.
/// A manager must never be held in a Tq::Ptr. The root is never destroyed.
class OS_API iOperatingSystem
{
public:
    virtual ~iOperatingSystem() = default;

    virtual iHeap* heap() = 0;
    virtual iUtils* utils() = 0;
    virtual iFileManager* fileMgr() = 0;
    virtual iThreadManager* threadMgr() = 0;
    virtual iThreadAtomics* threadAtomics() = 0;
    virtual iProcessManager* processMgr() = 0;
    virtual iWindowManager* windowMgr() = 0;
    virtual iSystemInfo* systemInfo() = 0;
    virtual iHardwareManager* hardwareMgr() = 0;
    virtual iMediaServices* mediaServices() = 0;
    virtual iShell* shell() = 0;
    virtual iMIDI* midi() = 0;
    virtual iMountManager* mountMgr() = 0;
};

/// The root object, made by the first call.
///
/// May be called from any thread at any time: before `main`, inside `operator new`, after a late
/// dlopen. The thread that calls first is named "Main thread", and the process's numeric locale
/// becomes "C".
OS_API iOperatingSystem* OS();
