// Mounting through the desktop's volume service, from a file server on this machine. Run under
// tests/support/with-desktop, which says in the environment what there is.
#include "OS/Mac/Files/NetworkPath.h"
#include "support/OutputCapture.h"

#include <OS.h>
#include <OS/Files/iFileManager.h>
#include <OS/Files/iMountManager.h>

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

namespace {

using Result = iMountManager::eResult;
constexpr unsigned int kGenerous = 20'000;

std::string environment(const char* name)
{
    const char* value = std::getenv(name);
    return value ? value : "";
}

std::wstring wide(const std::string& text)
{
    return std::wstring(text.begin(), text.end());
}

// A variable of the environment, until the end of the scope.
class Variable
{
public:
    Variable(const char* name, const char* value) : name_(name), old_(environment(name))
    {
        value ? setenv(name, value, 1) : unsetenv(name);
    }
    ~Variable() { setenv(name_, old_.c_str(), 1); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    const char* name_;
    std::string old_;
};

// A socket that takes connections and says nothing.
class SilentSocket
{
public:
    explicit SilentSocket(int family) : socket_(::socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0)) {}
    ~SilentSocket() { close(socket_); }
    SilentSocket(const SilentSocket&) = delete;
    SilentSocket& operator=(const SilentSocket&) = delete;

    bool listenAt(const std::string& path)
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof(address.sun_path) - 1);
        return start(reinterpret_cast<sockaddr*>(&address), sizeof(address));
    }
    // @return the port
    int listenHere()
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof(address);
        auto* plain = reinterpret_cast<sockaddr*>(&address);
        if (!start(plain, size) || getsockname(socket_, plain, &size) != 0)
            return 0;
        return ntohs(address.sin_port);
    }

private:
    bool start(const sockaddr* address, socklen_t size)
    {
        return bind(socket_, address, size) == 0 && listen(socket_, 8) == 0;
    }

    int socket_;
};

Result mountQuietly(const std::wstring& address, const iMountManager::Credentials& credentials = {},
                    unsigned int timeoutMs = kGenerous)
{
    Result result = Result::eFailed;
    outputOf([&] { result = OS()->mountMgr()->mount(address.c_str(), credentials, timeoutMs); });
    return result;
}

class RefusalTest : public testing::Test
{
protected:
    void SetUp() override
    {
        if (environment("XDG_RUNTIME_DIR").empty() || environment("OS_TEST_EMPTY_BUS").empty())
            GTEST_SKIP() << "runs under with-desktop";
    }
};

class MountTest : public RefusalTest
{
protected:
    void SetUp() override
    {
        RefusalTest::SetUp();
        if (IsSkipped())
            return;
        for (const char* reason : {"OS_TEST_VOLUMES", "OS_TEST_SMB"}) {
            if (!environment(reason).empty())
                GTEST_SKIP() << environment(reason);
        }
        server_ = "127.0.0.1:" + environment("OS_TEST_SMB_PORT");
        login_ = {wide(environment("OS_TEST_SMB_USER")).c_str(),
                  wide(environment("OS_TEST_SMB_PASSWORD")).c_str(), L""};
        std::ofstream(onServer("media/clip.txt")) << "rushes";
        std::ofstream(onServer("My Files/a%20b.txt")) << "literal";
        std::ofstream(onServer("locked/secret.txt")) << "secret";
    }
    void TearDown() override
    {
        for (const char* share : {"media", "My%20Files", "locked"}) {
            if (server_.empty())
                continue;
            EXPECT_EQ(OS()->mountMgr()->unmount(address(share).c_str(), kGenerous),
                      Result::eUnmounted);
        }
    }

    std::string onServer(const std::string& path) const
    {
        return environment("OS_TEST_SMB_FOLDER") + "/" + path;
    }
    std::wstring address(const std::string& path) const
    {
        return wide("smb://" + server_ + "/" + path);
    }
    std::string local(const std::string& path) const
    {
        const std::string whole = "smb://" + server_ + "/" + path;
        return OSInternal::resolveNetworkPath(whole.c_str()).c_str();
    }
    std::string contents(const std::string& path) const
    {
        std::ifstream file(local(path));
        return std::string(std::istreambuf_iterator<char>(file), {});
    }
    static std::vector<iMountManager::Mount> mounts()
    {
        std::vector<iMountManager::Mount> all;
        EXPECT_TRUE(OS()->mountMgr()->getMounts(all));
        return all;
    }
    // Without FUSE volumes are mounted but have no folder.
    static bool hasFolder()
    {
        return std::filesystem::exists(environment("XDG_RUNTIME_DIR") + "/gvfs") &&
               access("/dev/fuse", R_OK | W_OK) == 0;
    }

    std::string server_;
    iMountManager::Credentials login_;
};

} // namespace

TEST_F(RefusalTest, SaysWhenThereIsNoService)
{
    const std::string empty = environment("OS_TEST_EMPTY_BUS");
    const std::string nowhere = "unix:path=" + environment("XDG_RUNTIME_DIR") + "/nobody";
    const struct
    {
        const char* bus_;
        const char* reason_;
    } cases[] = {{nullptr, "there is no session bus"},
                 {"autolaunch:", "there is no session bus"}, // would start one
                 {"rubbish", "the session bus does not answer"},
                 {nowhere.c_str(), "the session bus does not answer"},
                 {empty.c_str(), "this desktop has no volume service"}};
    for (const auto& each : cases) {
        const Variable bus("DBUS_SESSION_BUS_ADDRESS", each.bus_);
        EXPECT_EQ(outputOf([&] {
                      EXPECT_EQ(OS()->mountMgr()->mount(L"//127.0.0.1/media", {}, kGenerous),
                                Result::eNoService);
                      EXPECT_EQ(OS()->mountMgr()->unmount(L"//127.0.0.1/media", kGenerous),
                                Result::eUnmounted);
                  }),
                  std::string("MountManager: smb://127.0.0.1/media cannot be mounted: ") +
                      each.reason_ + "\n");
    }
}

TEST_F(RefusalTest, GivesUpOnASilentBus)
{
    const std::string path = environment("XDG_RUNTIME_DIR") + "/bus"; // found without a variable
    SilentSocket socket(AF_UNIX);
    ASSERT_TRUE(socket.listenAt(path));
    {
        const Variable bus("DBUS_SESSION_BUS_ADDRESS", nullptr);
        EXPECT_EQ(mountQuietly(L"//127.0.0.1/media", {}, 50), Result::eTimedOut);
        EXPECT_EQ(mountQuietly(L"//127.0.0.1/media", {}, 0), Result::eTimedOut);
    }
    unlink(path.c_str());
}

TEST_F(MountTest, MountsReadsAndUnmountsAsAGuest)
{
    EXPECT_EQ(local("media/clip.txt"), "");
    EXPECT_EQ(outputOf([&] {
                  EXPECT_EQ(OS()->mountMgr()->mount(address("media").c_str(), {}, kGenerous),
                            Result::eMounted);
                  EXPECT_EQ(OS()->mountMgr()->mount(address("media/x").c_str(), {}, kGenerous),
                            Result::eMounted)
                      << "again";
              }),
              "");
    if (!hasFolder())
        GTEST_SKIP() << "mounted, but there is no FUSE";
    EXPECT_EQ(contents("media/clip.txt"), "rushes") << "found at once";
    EXPECT_EQ(contents("MEDIA/clip.txt"), "rushes");
    std::ofstream(local("media/new.txt")) << "written";
    std::ifstream written(onServer("media/new.txt"));
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(written), {}), "written");

    const auto all = mounts();
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(all[0].address_, address("media").c_str());
    EXPECT_EQ(all[0].name_, L"media");
    EXPECT_TRUE(all[0].byDesktop_);
    std::vector<LightweightString<wchar_t>> servers;
    EXPECT_TRUE(OS()->fileMgr()->getNetworkServers(servers));
    ASSERT_EQ(servers.size(), 1u);
    EXPECT_EQ(servers[0], L"127.0.0.1");
    std::vector<iFileManager::Share> shares;
    EXPECT_TRUE(OS()->fileMgr()->getNetworkShares(servers[0], shares));
    ASSERT_EQ(shares.size(), 1u);
    EXPECT_EQ(shares[0].name_, L"media");
    EXPECT_EQ(shares[0].path_, all[0].path_);
    const auto drive = OS()->fileMgr()->openDrive(all[0].path_);
    ASSERT_TRUE(drive);
    EXPECT_EQ(drive->getType(), iDiskDrive::eNetwork);
    EXPECT_GT(drive->getTotalSpace(), 0u);

    EXPECT_EQ(OS()->mountMgr()->unmount(all[0].path_, kGenerous), Result::eUnmounted);
    EXPECT_EQ(OS()->mountMgr()->unmount(all[0].path_, kGenerous), Result::eUnmounted) << "again";
    EXPECT_EQ(OS()->mountMgr()->unmount(address("media").c_str(), kGenerous), Result::eUnmounted);
    EXPECT_TRUE(mounts().empty());
    EXPECT_EQ(local("media/clip.txt"), "");
    EXPECT_EQ(drive->getTotalSpace(), 0u);
    EXPECT_FALSE(OS()->fileMgr()->getNetworkShares(L"127.0.0.1", shares));
}

TEST_F(MountTest, AsksForTheLoginOnce)
{
    const auto locked = address("locked");
    EXPECT_EQ(mountQuietly(locked), Result::eDenied) << "no guests";
    iMountManager::Credentials wrong = login_;
    wrong.password_ = L"wrong";
    EXPECT_EQ(
        outputOf([&] {
            EXPECT_EQ(OS()->mountMgr()->mount(locked.c_str(), wrong, kGenerous), Result::eDenied);
        }),
        "MountManager: smb://" + server_ + "/locked cannot be mounted: wrong user or password\n");
    EXPECT_EQ(mountQuietly(locked, login_), Result::eMounted);
    EXPECT_EQ(contents("locked/secret.txt"), hasFolder() ? "secret" : "");
}

TEST_F(MountTest, KeepsWhatIsInUse)
{
    EXPECT_EQ(mountQuietly(address("media")), Result::eMounted);
    if (!hasFolder())
        GTEST_SKIP() << "mounted, but there is no FUSE";
    {
        std::ifstream open(local("media/clip.txt"));
        EXPECT_EQ(open.get(), 'r');
        const std::string line = outputOf([&] {
            EXPECT_EQ(OS()->mountMgr()->unmount(address("media").c_str(), kGenerous),
                      Result::eBusy);
        });
        EXPECT_EQ(line.find("MountManager: smb://" + server_ + "/media cannot be unmounted: "), 0u)
            << line;
        EXPECT_EQ(open.get(), 'u');
    }
    EXPECT_EQ(OS()->mountMgr()->unmount(address("media").c_str(), kGenerous), Result::eUnmounted);
}

TEST_F(MountTest, KeepsNamesThatNeedEncoding)
{
    EXPECT_EQ(mountQuietly(wide("//" + server_ + "/My Files")), Result::eMounted);
    if (!hasFolder())
        GTEST_SKIP() << "mounted, but there is no FUSE";
    EXPECT_EQ(contents("My Files/a%20b.txt"), "literal");
    EXPECT_EQ(contents("My%20Files/a%2520b.txt"), "literal");
    ASSERT_EQ(mounts().size(), 1u);
    EXPECT_TRUE(mounts()[0].address_.equalsNoCase(address("My Files"))) << "the service folds it";
    EXPECT_EQ(OS()->mountMgr()->unmount(mounts()[0].address_, kGenerous), Result::eUnmounted);
    EXPECT_TRUE(mounts().empty());
}

TEST_F(MountTest, SaysWhyAServerCannotBeReached)
{
    EXPECT_EQ(mountQuietly(address("no such share")), Result::eFailed);
    EXPECT_EQ(mountQuietly(L"smb://127.0.0.1:1/media"), Result::eFailed) << "nobody listens";
    SilentSocket silent(AF_INET);
    const int port = silent.listenHere();
    ASSERT_NE(port, 0);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(mountQuietly(L"smb://127.0.0.1:" + std::to_wstring(port) + L"/media", {}, 100),
              Result::eTimedOut);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10))
        << "not the service's own patience";
}

TEST_F(MountTest, ServesSeveralThreads)
{
    std::vector<Result> results(8, Result::eFailed);
    std::vector<std::thread> threads;
    const std::string output = outputOf([&] {
        for (std::size_t i = 0; i < results.size(); ++i) {
            threads.emplace_back([&, i] {
                const auto share = address(i % 2 ? "media" : "My%20Files");
                results[i] = OS()->mountMgr()->mount(share.c_str(), {}, kGenerous);
            });
        }
        for (std::thread& thread : threads)
            thread.join();
    });
    for (const Result result : results)
        EXPECT_EQ(result, Result::eMounted) << output;
    EXPECT_EQ(mounts().size(), hasFolder() ? 2u : 0u);
}
