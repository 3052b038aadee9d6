#pragma once

#include <OS/Core/Export.h>
#include <OS/Core/LightweightString.h>

#include <list>

namespace Tq::Exception {

/// What this library throws, beside std::runtime_error and std::bad_alloc. Catch it by reference.
///
/// The texts are not copied: throwers pass literals, or text that outlives the handler.
class OS_API Base
{
public:
    Base(const char* typeName, const char* message, const char* file, int line)
        : typeName_(typeName), message_(message), file_(file), line_(line)
    {
    }
    Base(const Base&) = default;
    Base& operator=(const Base&) = default;
    virtual ~Base();

    const char* typeName() const { return typeName_; }
    const char* message() const { return message_; }
    const char* file() const { return file_; }
    int line() const { return line_; }
    /// Free for the application; empty when thrown, and never filled by this library.
    std::list<LightweightString<char>>& notes() { return notes_; }

private:
    const char* typeName_;
    const char* message_;
    const char* file_;
    int line_;
    std::list<LightweightString<char>> notes_;
};

/// An internal inconsistency or an exceeded capacity, with a short fixed message.
class OS_API RuntimeError : public Base
{
public:
    RuntimeError(const char* message, const char* file, int line)
        : Base("RuntimeError", message, file, line)
    {
    }
    RuntimeError(const RuntimeError&) = default;
    RuntimeError& operator=(const RuntimeError&) = default;
    ~RuntimeError() override;
};

} // namespace Tq::Exception
