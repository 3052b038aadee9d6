#pragma once

#include "common/Text.h"

#include <OS/Core/Ptr.h>
#include <OS/Files/iSettings.h>

namespace App {

/// One section of a settings store, for values that are numbers or any text. A store that is not
/// there, or values that make no sense, give what the caller has as a default. Not for threads.
class StoredValues
{
public:
    StoredValues(Tq::Ptr<iSettings> settings, const char* section)
        : settings_(std::move(settings)), section_(section)
    {
    }

    /// @return the number when it lies within the limits, else `fallback`
    double number(const char* name, double fallback, double least, double most) const;
    int integer(const char* name, int fallback, int least, int most) const;
    bool flag(const char* name, bool fallback) const;
    Text text(const char* name, const Text& fallback) const;

    void setNumber(const char* name, double value);
    void setInteger(const char* name, int value);
    void setFlag(const char* name, bool value) { setInteger(name, value ? 1 : 0); }
    /// Line ends, which the store cannot hold, become blanks.
    void setText(const char* name, const Text& value);
    void remove(const char* name);

private:
    Tq::Ptr<iSettings> settings_; ///< may be null
    const char* section_;
};

} // namespace App
