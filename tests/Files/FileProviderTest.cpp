#include "Files/WideFolder.h"
#include "support/BackgroundThread.h"
#include "support/MemoryFile.h"

#include <OS.h>
#include <OS/Files/FileProviderManager.h>
#include <OS/Files/iFileManager.h>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <string>

namespace {

using Text = LightweightString<wchar_t>;

// Serves one file called "there" and notes what it was asked.
class TestProvider : public iFileProvider
{
public:
    explicit TestProvider(const wchar_t* id, const char* bytes = "text") : id_(id), bytes_(bytes) {}
    ~TestProvider() override
    {
        if (atEnd_)
            atEnd_();
    }

    Text getID() const override { return id_; }
    Tq::Ptr<iFile> openFile(const Text& name, unsigned int access, iFile::eOpenBehaviour behaviour,
                            iFile::eShareMode share, std::uint32_t flags) override
    {
        if (whileOpening_)
            whileOpening_();
        asked_ = {name, access, behaviour, share, flags};
        if (name == L"closed")
            return Tq::Ptr<iFile>(new MemoryFile("", false));
        return fileExists(name) ? Tq::Ptr<iFile>(new MemoryFile(bytes_)) : Tq::Ptr<iFile>();
    }
    bool fileExists(const Text& name) override { return name == L"there"; }
    std::uint64_t getFileSize(const Text& name) override
    {
        return fileExists(name) ? bytes_.size() : 0;
    }
    Text getRealFilename(const Text& name) override { return L"/real/" + name; }

    struct Asked
    {
        Text name_;
        unsigned int access_ = 0;
        iFile::eOpenBehaviour behaviour_ = iFile::eOpenExisting;
        iFile::eShareMode share_ = iFile::eShareNone;
        std::uint32_t flags_ = 0;
    };
    Asked asked_;
    std::function<void()> whileOpening_;
    std::function<void()> atEnd_;

private:
    Text id_;
    std::string bytes_;
};

class Registered
{
public:
    explicit Registered(const Tq::Ptr<TestProvider>& provider) : provider_(provider)
    {
        FileProviderManager::registerFileProvider(provider_);
    }
    ~Registered() { FileProviderManager::deRegisterFileProvider(provider_); }

private:
    Tq::Ptr<iFileProvider> provider_;
};

Tq::Ptr<iFile> open(const Text& path)
{
    return OS()->fileMgr()->openFile(path, iFile::eAccessRead, iFile::eOpenExisting,
                                     iFile::eShareNone, 0);
}

std::string contents(const Tq::Ptr<iFile>& file)
{
    char buffer[64];
    return file ? std::string(buffer, file->read(buffer, sizeof buffer)) : "(null)";
}

} // namespace

TEST(FileProviders, PathsComeApartAtTheFirstSpace)
{
    struct Case
    {
        const wchar_t* path;
        bool isVirtual;
        const wchar_t* id;
        const wchar_t* remote;
    };
    for (const Case& c : {
             Case{L"Virtual:abc def/ghi", true, L"abc", L"def/ghi"},
             Case{L"Virtual:abc", true, L"", L""},
             Case{L"Virtual:", true, L"", L""},
             Case{L"Virtual: x", true, L"", L"x"},
             Case{L"Virtual:a  b c", true, L"a", L" b c"},
             Case{L"Virtual:a ", true, L"a", L""},
             Case{L"virtual:abc def", false, L"", L""},
             Case{L"Virtual", false, L"", L""},
             Case{L"/Virtual:abc def", false, L"", L""},
             Case{L"", false, L"", L""},
         }) {
        EXPECT_EQ(FileProviderManager::isVirtual(c.path), c.isVirtual);
        EXPECT_EQ(OS()->fileMgr()->isVirtual(c.path), c.isVirtual);
        EXPECT_EQ(FileProviderManager::getProviderID(c.path), c.id);
        EXPECT_EQ(FileProviderManager::getRemoteFileName(c.path), c.remote);
    }
}

TEST(FileProviders, AreAskedThroughTheFileManager)
{
    const Tq::Ptr<TestProvider> provider(new TestProvider(L"abc", "bytes"));
    const Registered registered(provider);
    iFileManager* files = OS()->fileMgr();

    EXPECT_EQ(contents(files->openFile(L"Virtual:abc there", 3, iFile::eCreateAlways,
                                       iFile::eShareWrite, 0x20)),
              "bytes");
    EXPECT_EQ(provider->asked_.name_, L"there");
    EXPECT_EQ(provider->asked_.access_, 3u);
    EXPECT_EQ(provider->asked_.behaviour_, iFile::eCreateAlways);
    EXPECT_EQ(provider->asked_.share_, iFile::eShareWrite);
    EXPECT_EQ(provider->asked_.flags_, 0x20u);

    EXPECT_TRUE(files->fileExists(L"Virtual:abc there"));
    EXPECT_FALSE(files->fileExists(L"Virtual:abc elsewhere"));
    EXPECT_FALSE(files->fileExists(L"Virtual:ABC there")) << "IDs are compared exactly";
    EXPECT_EQ(files->getFileSize(L"Virtual:abc there"), 5u);
    EXPECT_EQ(files->getFileSize(L"Virtual:other there"), 0u);
    EXPECT_EQ(files->getFileAttributes(L"Virtual:abc there"), iFileManager::eAttributeNormal);
    EXPECT_FALSE(open(L"Virtual:abc closed")) << "an object that is not open is none";
    EXPECT_FALSE(open(L"Virtual:other there"));
    EXPECT_EQ(FileProviderManager::getRealFilename(L"Virtual:abc x"), L"/real/x");
    EXPECT_EQ(FileProviderManager::getRealFilename(L"Virtual:other x"), L"");
    EXPECT_EQ(FileProviderManager::getRealFilename(L"/a/file"), L"/a/file");
}

// What a provider refuses must not come to be a file of that name in the working folder.
TEST(FileProviders, ARefusalIsFinal)
{
    const Registered registered(Tq::Ptr<TestProvider>(new TestProvider(L"abc")));
    EXPECT_FALSE(OS()->fileMgr()->openFile(L"Virtual:abc elsewhere", 3, iFile::eCreateAlways,
                                           iFile::eShareNone, 0));
    EXPECT_FALSE(std::filesystem::exists("Virtual:abc elsewhere"));
}

TEST(FileProviders, TheFirstOfAnIDAnswersUntilItIsRemoved)
{
    const Tq::Ptr<TestProvider> first(new TestProvider(L"same", "first"));
    const Registered other(Tq::Ptr<TestProvider>(new TestProvider(L"sam", "wrong")));
    FileProviderManager::registerFileProvider(first);
    FileProviderManager::registerFileProvider(first);
    FileProviderManager::registerFileProvider({});
    const Registered second(Tq::Ptr<TestProvider>(new TestProvider(L"same", "second")));
    EXPECT_EQ(contents(open(L"Virtual:same there")), "first");
    FileProviderManager::deRegisterFileProvider(first);
    EXPECT_EQ(contents(open(L"Virtual:same there")), "second");
    FileProviderManager::deRegisterFileProvider(first);
    FileProviderManager::deRegisterFileProvider({});
    EXPECT_EQ(contents(open(L"Virtual:same there")), "second");
}

TEST(FileProviders, MayUseTheListInsideTheirCalls)
{
    const Tq::Ptr<TestProvider> provider(new TestProvider(L"re", "text"));
    FileProviderManager::registerFileProvider(provider);
    std::string inner;
    provider->whileOpening_ = [&] {
        provider->whileOpening_ = {};
        inner = contents(open(L"Virtual:re there"));
        FileProviderManager::deRegisterFileProvider(provider);
        FileProviderManager::registerFileProvider(
            Tq::Ptr<iFileProvider>(new TestProvider(L"re2", "another")));
    };
    EXPECT_EQ(contents(open(L"Virtual:re there")), "text");
    EXPECT_EQ(inner, "text");
    EXPECT_FALSE(open(L"Virtual:re there"));
    EXPECT_EQ(contents(open(L"Virtual:re2 there")), "another");
    FileProviderManager::deRegisterFileProvider(
        FileProviderManager::getProviderFor(L"Virtual:re2 "));
}

// The last reference goes while the list changes: the destructor finds no lock held.
TEST(FileProviders, MayUseTheListWhileTheyEnd)
{
    std::string seen;
    {
        Tq::Ptr<TestProvider> provider(new TestProvider(L"ends"));
        provider->atEnd_ = [&seen] {
            BackgroundThread other([] { return bool(open(L"Virtual:ends there")); });
            seen = other.result() ? "open" : "gone";
        };
        FileProviderManager::registerFileProvider(provider);
    }
    FileProviderManager::deRegisterFileProvider(
        FileProviderManager::getProviderFor(L"Virtual:ends there"));
    EXPECT_EQ(seen, "gone");
}

TEST(FileProviders, OneThatIsRemovedDuringItsCallLivesUntilItReturns)
{
    std::atomic<bool> ended{false};
    Gate entered, removed;
    Tq::Ptr<TestProvider> provider(new TestProvider(L"slow", "whole"));
    provider->whileOpening_ = [&] {
        entered.open();
        removed.wait();
    };
    provider->atEnd_ = [&] { ended = true; };
    FileProviderManager::registerFileProvider(provider);
    BackgroundThread opener([] { return contents(open(L"Virtual:slow there")); });
    entered.wait();
    FileProviderManager::deRegisterFileProvider(provider);
    provider = {};
    EXPECT_FALSE(ended.load());
    removed.open();
    EXPECT_EQ(opener.result(), "whole");
    EXPECT_TRUE(ended.load());
}

TEST(FileProviders, ComeAndGoOnManyThreads)
{
    const Registered steady(Tq::Ptr<TestProvider>(new TestProvider(L"steady")));
    std::atomic<int> wrong{0};
    BackgroundThreads threads(4, [&] {
        const Tq::Ptr<TestProvider> own(new TestProvider(L"own"));
        for (int i = 0; i < 500; ++i) {
            FileProviderManager::registerFileProvider(own);
            if (!OS()->fileMgr()->fileExists(L"Virtual:steady there") ||
                !OS()->fileMgr()->fileExists(L"Virtual:own there"))
                ++wrong;
            FileProviderManager::deRegisterFileProvider(own);
        }
    });
    threads.join();
    EXPECT_EQ(wrong.load(), 0);
    EXPECT_FALSE(OS()->fileMgr()->fileExists(L"Virtual:own there"));
}
