#include "OS/Mac/Files/ProcessManager.h"

#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/Core/PathText.h"
#include "OS/Mac/Files/ChildWatcher.h"
#include "OS/Mac/Files/Process.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using OSInternal::Descriptor;
using Text = LightweightString<char>;
using Texts = std::vector<Text>;

struct Pipe
{
    Descriptor reading, writing;
};

// Above the standard streams, even where the application has closed those.
Descriptor aboveStandard(int descriptor)
{
    const Descriptor low(descriptor);
    return Descriptor(fcntl(low.get(), F_DUPFD_CLOEXEC, 3));
}

bool makePipe(Pipe& pipe)
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return false;
    pipe.reading = aboveStandard(ends[0]);
    pipe.writing = aboveStandard(ends[1]);
    return pipe.reading && pipe.writing;
}

struct Pipes
{
    Pipe input, output, errors;

    bool make(const iProcessManager::InitArgs& args)
    {
        if (args.provideInput_ && !makePipe(input))
            return false;
        if (!args.captureOutput_)
            return true;
        return makePipe(output) && makePipe(errors) &&
               fcntl(output.reading.get(), F_SETFL, O_NONBLOCK) == 0 &&
               fcntl(errors.reading.get(), F_SETFL, O_NONBLOCK) == 0;
    }
};

// What the child does before the program begins.
class Actions
{
public:
    Actions() { posix_spawn_file_actions_init(&actions_); }
    Actions(const Actions&) = delete;
    Actions& operator=(const Actions&) = delete;
    ~Actions() { posix_spawn_file_actions_destroy(&actions_); }

    void use(const Pipes& pipes, const Text& folder)
    {
        if (pipes.input.reading)
            duplicate(pipes.input.reading, STDIN_FILENO);
        else
            posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        if (pipes.output.writing) {
            duplicate(pipes.output.writing, STDOUT_FILENO);
            duplicate(pipes.errors.writing, STDERR_FILENO);
        }
        posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);
        if (!folder.empty())
            posix_spawn_file_actions_addchdir_np(&actions_, folder.c_str());
    }
    const posix_spawn_file_actions_t* get() const { return &actions_; }

private:
    void duplicate(const Descriptor& from, int to)
    {
        posix_spawn_file_actions_adddup2(&actions_, from.get(), to);
    }
    posix_spawn_file_actions_t actions_;
};

// Default signal handlers and an empty mask.
class Attributes
{
public:
    Attributes()
    {
        sigset_t signals;
        posix_spawnattr_init(&attributes_);
        posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&attributes_, &signals);
        std::memset(&signals, 0xFF, sizeof signals); // sigfillset leaves two out
        posix_spawnattr_setsigdefault(&attributes_, &signals);
    }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;
    ~Attributes() { posix_spawnattr_destroy(&attributes_); }
    const posix_spawnattr_t* get() const { return &attributes_; }

private:
    posix_spawnattr_t attributes_;
};

// A null-terminated list for the system; valid as long as the texts.
std::vector<char*> pointersTo(const Texts& texts)
{
    std::vector<char*> result;
    for (const Text& text : texts)
        result.push_back(const_cast<char*>(text.c_str())); // the system's type, not its intention
    result.push_back(nullptr);
    return result;
}

Texts environmentOf(const iProcessManager::InitArgs& args)
{
    Texts result;
    for (const auto& [name, value] : args.environment_)
        result.push_back(OSInternal::textToSystem(name) + '=' + OSInternal::textToSystem(value));
    const auto isReplaced = [&](std::string_view variable) {
        for (const auto& [name, value] : args.environment_)
            if (variable.starts_with((OSInternal::textToSystem(name) + '=').view()))
                return true;
        return false;
    };
    for (char** variable = environ; args.inheritEnvironment_ && *variable; ++variable)
        if (!isReplaced(*variable))
            result.push_back(*variable);
    return result;
}

// A path that does not change its meaning in another working folder.
Text programPath(const Text& program, bool changesFolder)
{
    if (!changesFolder || program.startsWith('/') || !program.contains('/'))
        return program;
    char here[PATH_MAX];
    return getcwd(here, sizeof here) ? Text(here) + '/' + program : program;
}

bool hasZero(const Texts& texts)
{
    for (const Text& text : texts)
        if (text.contains('\0'))
            return true;
    return false;
}

bool areNamesValid(const iProcessManager::InitArgs& args)
{
    for (const auto& variable : args.environment_)
        if (variable.first.empty() || variable.first.contains(L'='))
            return false;
    return true;
}

// The system does not tell which of the two is missing.
int folderError(const Text& folder)
{
    struct stat info;
    if (folder.empty())
        return 0;
    if (stat(folder.c_str(), &info) != 0)
        return errno;
    return !S_ISDIR(info.st_mode) ? ENOTDIR : access(folder.c_str(), X_OK) != 0 ? errno : 0;
}

int spawn(const iProcessManager::InitArgs& args, const Text& program, const Pipes& pipes, pid_t& id)
{
    const Text folder = OSInternal::textToSystem(args.workingFolder_);
    Texts arguments{program};
    for (const auto& argument : args.arguments_)
        arguments.push_back(OSInternal::textToSystem(argument));
    const Texts environment = environmentOf(args);
    if (hasZero(arguments) || hasZero(environment) || folder.contains('\0') || !areNamesValid(args))
        return EINVAL;
    if (program.empty())
        return ENOENT;

    Actions actions;
    actions.use(pipes, folder);
    const Attributes attributes;
    return posix_spawnp(&id, programPath(program, !folder.empty()).c_str(), actions.get(),
                        attributes.get(), pointersTo(arguments).data(),
                        pointersTo(environment).data());
}

void reportFailure(const iProcessManager::InitArgs& args, const Text& program, int error)
{
    const Text folder = OSInternal::textToSystem(args.workingFolder_);
    if (const int missing = folderError(folder))
        OSInternal::printLine("ProcessManager::start() : cannot start %s in %s: %s\n",
                              program.c_str(), folder.c_str(), strerrordesc_np(missing));
    else
        OSInternal::printLine("ProcessManager::start() : cannot start %s: %s\n", program.c_str(),
                              strerrordesc_np(error));
}

} // namespace

Tq::Ptr<iProcess> ProcessManager::start(const InitArgs& args)
{
    const Text program = OSInternal::textToSystem(args.program_);
    Pipes pipes;
    pid_t id = 0;
    const int error = pipes.make(args) ? spawn(args, program, pipes, id) : errno;
    if (error != 0) {
        reportFailure(args, program, error);
        return {};
    }
    const auto child = std::make_shared<ChildProcess>(id, std::move(pipes.output.reading),
                                                      std::move(pipes.errors.reading));
    ChildWatcher::instance().watch(child);
    return new Process(child, std::move(pipes.input.writing));
}

unsigned int ProcessManager::getCurrentProcessID()
{
    return static_cast<unsigned int>(getpid());
}
