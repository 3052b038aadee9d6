#pragma once

#include <OS/Core/iDLL.h>

#include "OS/Mac/Core/Bundle.h"

#include <memory>
#include <mutex>

/// iDLL on dlopen, and on a Bundle where dlopen does not take the path.
class DynDLL final : public iDLL
{
public:
    /// Loads; a failure prints "DynDLL::DynDLL() : dlopen failed (%s)\n" with dlerror(), and the
    /// object exists without a library.
    explicit DynDLL(const LightweightString<wchar_t>& path);
    ~DynDLL() override;
    DynDLL(const DynDLL&) = delete;
    DynDLL& operator=(const DynDLL&) = delete;

    LightweightString<wchar_t> getFilename() const override;
    bool valid() const override;
    bool containsFunction(const LightweightString<char>& name) const override;
    void* getFunction(const LightweightString<char>& name) const override;
    bool containsResource(const LightweightString<wchar_t>& type,
                          const LightweightString<wchar_t>& name) const override;
    Resource getResource(const LightweightString<wchar_t>& type,
                         const LightweightString<wchar_t>& name) const override;

private:
    LightweightString<wchar_t> filename_;
    void* library_ = nullptr;
    std::unique_ptr<Bundle> bundle_;
    mutable std::mutex resourcesOpening_; // the resource file is read by the first caller
};
