#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/Ptr.h>
#include <OS/Core/iObject.h>
#include <OS/Files/iProcess.h>

#include <utility>
#include <vector>

/// Child processes, reached as OS()->processMgr(). Any thread.
class OS_API iProcessManager : public iObject
{
public:
    /// What to start. No shell is involved: arguments arrive exactly as they stand here.
    struct InitArgs
    {
        /// A path, or a name that is looked for along PATH.
        LightweightString<wchar_t> program_;
        std::vector<LightweightString<wchar_t>> arguments_;
        /// Variables to set or replace: name and value.
        std::vector<std::pair<LightweightString<wchar_t>, LightweightString<wchar_t>>> environment_;
        bool inheritEnvironment_ = true;           ///< whether the other variables are passed on
        LightweightString<wchar_t> workingFolder_; ///< empty: this process's
        bool captureOutput_ = false; ///< standard output and error to getOutput() and getErrors()
        bool provideInput_ = false;  ///< standard input from writeInput(); else it is empty
    };

    /// Starts a program.
    ///
    /// The child gets no other descriptor of this process, default signal handlers and an empty
    /// signal mask.
    ///
    /// @return null when it could not be started, after one line that tells why
    virtual Tq::Ptr<iProcess> start(const InitArgs& args) = 0;
    /// This process's own number.
    virtual unsigned int getCurrentProcessID() = 0;
};
