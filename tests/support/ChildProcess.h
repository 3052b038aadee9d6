#pragma once

#include <csignal>
#include <linux/capability.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

/// Runs code in a forked child, which ends with what the code returns (0 to 255).
class ForkedChild
{
public:
    template <class Code>
    explicit ForkedChild(Code code) : id_(fork())
    {
        if (id_ == 0)
            _exit(static_cast<int>(code()));
    }
    ForkedChild(const ForkedChild&) = delete;
    ForkedChild& operator=(const ForkedChild&) = delete;
    ~ForkedChild()
    {
        if (id_ > 0) {
            kill();
            status();
        }
    }

    pid_t id() const { return id_; }
    void kill() const { ::kill(id_, SIGKILL); }
    /// Waits for the end. @return the exit status, or 128 plus the signal
    int status()
    {
        int status = 0;
        while (waitpid(id_, &status, 0) < 0) {
        }
        id_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

private:
    pid_t id_;
};

/// Runs code in a forked child to its end. @return its exit status, or 128 plus the signal
template <class Code>
int inChild(Code code)
{
    return ForkedChild(code).status();
}

/// For a child: writes that would make a file longer fail with EFBIG.
inline void limitFileSize(rlim_t bytes)
{
    signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{bytes, bytes};
    setrlimit(RLIMIT_FSIZE, &limit);
}

/// Lets file permissions count on the calling thread also where the tests run as root.
class WithoutPrivilege
{
public:
    static constexpr unsigned int kFiles =
        (1u << CAP_DAC_OVERRIDE) | (1u << CAP_DAC_READ_SEARCH) | (1u << CAP_FOWNER);

    /// @param capabilities what the thread does without, one bit each
    explicit WithoutPrivilege(unsigned int capabilities = kFiles)
    {
        syscall(SYS_capget, &header_, saved_);
        __user_cap_data_struct reduced[2] = {saved_[0], saved_[1]};
        reduced[0].effective &= ~capabilities;
        syscall(SYS_capset, &header_, reduced);
    }
    WithoutPrivilege(const WithoutPrivilege&) = delete;
    WithoutPrivilege& operator=(const WithoutPrivilege&) = delete;
    ~WithoutPrivilege() { syscall(SYS_capset, &header_, saved_); }

private:
    __user_cap_header_struct header_{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct saved_[2] = {};
};
