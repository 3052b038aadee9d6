#include "OS/Shared/HeapFaultHandler.h"

#include "OS/Shared/GuardedArea.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstring>
#include <execinfo.h>
#include <string_view>
#include <unistd.h>

namespace Tq::HeapFaultHandler {

namespace {

constexpr std::array kSignals{SIGSEGV, SIGBUS};

constinit std::array<std::atomic<const GuardedArea*>, 64> areas{};
struct sigaction previous[kSignals.size()];

// One line, put together without the C library's streams and written with one call.
class Line
{
public:
    Line& operator<<(std::string_view text)
    {
        const std::size_t count = std::min(text.size(), sizeof text_ - length_);
        std::memcpy(text_ + length_, text.data(), count);
        length_ += count;
        return *this;
    }
    Line& operator<<(std::size_t number) { return append(number, 10); }
    Line& address(const void* where)
    {
        *this << "0x";
        return append(reinterpret_cast<std::uintptr_t>(where), 16);
    }
    void write() const
    {
        [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, text_, length_);
    }

private:
    Line& append(std::size_t number, int base)
    {
        const auto end = std::to_chars(text_ + length_, text_ + sizeof text_, number, base);
        if (end.ec == std::errc())
            length_ = static_cast<std::size_t>(end.ptr - text_);
        return *this;
    }

    char text_[320];
    std::size_t length_ = 0;
};

void writeStack(std::string_view title, const CallStack& stack)
{
    (Line() << title).write();
    backtrace_symbols_fd(stack.addresses(), stack.size(), STDERR_FILENO);
}

void describe(const GuardedBlock& block, const char* address)
{
    const bool freed = block.state.load(std::memory_order_acquire) == GuardedBlock::State::eFreed;
    Line line;
    line << "debug heap: read or write ";
    const auto position = address - block.start;
    if (position < 0)
        line << static_cast<std::size_t>(-position) << " bytes before";
    else if (static_cast<std::size_t>(position) < block.size)
        line << "at byte " << static_cast<std::size_t>(position) << " of";
    else
        line << static_cast<std::size_t>(position) - block.size + 1 << " bytes behind";
    line << (freed ? " a freed block of " : " a block of ") << block.size << " bytes at ";
    line.address(block.start) << "\n";
    line.write();
    writeStack("allocated by\n", block.allocated);
    if (freed)
        writeStack("freed by\n", block.freed);
}

void describe(const GuardedArea& area, const char* address)
{
    const GuardedBlock* block = area.find(address);
    // On a guard page the access may have been meant for the block that follows: the nearer one.
    const GuardedBlock* following = area.find(address + getpagesize());
    if (following && following != block && following->start > address &&
        (!block || following->start - address < address - (block->start + block->size)))
        block = following;
    if (block)
        describe(*block, address);
    else
        ((Line() << "debug heap: read or write at ").address(address)
         << ", where no block is any more\n")
            .write();
}

// The signal goes on to who handled it before us.
void passOn(int signal, siginfo_t* info, void* context)
{
    const auto which = std::find(kSignals.begin(), kSignals.end(), signal) - kSignals.begin();
    const struct sigaction& action = previous[which];
    if (action.sa_flags & SA_SIGINFO) {
        action.sa_sigaction(signal, info, context);
        return;
    }
    if (action.sa_handler != SIG_DFL && action.sa_handler != SIG_IGN) {
        action.sa_handler(signal);
        return;
    }
    const bool sent = info->si_code <= 0; // by a process: it will not come again by itself
    if (sent && action.sa_handler == SIG_IGN)
        return;
    std::signal(signal, SIG_DFL); // the access is tried again, and the system takes it from there
    if (sent)
        raise(signal);
}

void onFault(int signal, siginfo_t* info, void* context)
{
    const int error = errno;
    const auto* address = static_cast<const char*>(info->si_addr);
    if (info->si_code > 0)
        for (const auto& entry : areas)
            if (const GuardedArea* area = entry.load(std::memory_order_acquire))
                if (area->contains(address))
                    describe(*area, address);
    errno = error;
    passOn(signal, info, context);
}

bool install()
{
    struct sigaction action = {};
    action.sa_sigaction = &onFault;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    sigemptyset(&action.sa_mask);
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        sigaction(kSignals[i], nullptr, &previous[i]); // known before the first fault can come
        sigaction(kSignals[i], &action, nullptr);
    }
    return true;
}

} // namespace

bool add(const GuardedArea* area)
{
    [[maybe_unused]] static const bool installed = install();
    for (auto& entry : areas) {
        const GuardedArea* none = nullptr;
        if (entry.compare_exchange_strong(none, area))
            return true;
    }
    return false;
}

void remove(const GuardedArea* area)
{
    for (auto& entry : areas) {
        const GuardedArea* found = area;
        if (entry.compare_exchange_strong(found, nullptr))
            return;
    }
}

} // namespace Tq::HeapFaultHandler
