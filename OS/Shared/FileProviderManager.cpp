#include <OS/Files/FileProviderManager.h>

#include "OS/Mac/Threads/LockRank.h"

#include <OS.h>
#include <OS/Threads/CriticalSectionLock.h>
#include <OS/Threads/iThreadManager.h>

#include <memory>
#include <string_view>
#include <vector>

namespace {

using Text = LightweightString<wchar_t>;
using Provider = Tq::Ptr<iFileProvider>;
using Providers = std::vector<Provider>;

constexpr std::wstring_view kPrefix = L"Virtual:";
constexpr auto kPrefixLength = static_cast<Text::size_type>(kPrefix.size());

// A change makes a new list, so that whoever asks the providers holds the old one and no lock.
struct Registry
{
    Registry() : lock_(OS()->threadMgr()->createCriticalSection(0))
    {
        OSInternal::setLockRank(*lock_, OSInternal::LockRank::eProvider);
    }

    std::shared_ptr<const Providers> list()
    {
        const CriticalSectionLock lock(lock_);
        return list_;
    }
    template <class Change>
    void change(Change changeList)
    {
        std::shared_ptr<const Providers> old; // goes behind the lock, perhaps with a provider
        const CriticalSectionLock lock(lock_);
        auto changed = std::make_shared<Providers>(*list_);
        changeList(*changed);
        old = std::exchange(list_, std::move(changed));
    }

private:
    Tq::Ptr<iCriticalSection> lock_;
    std::shared_ptr<const Providers> list_ = std::make_shared<Providers>();
};

// Never destroyed: providers may be asked until the process's last moment.
Registry& registry()
{
    static Registry* const made = new Registry;
    return *made;
}

// Where the space between ID and remote name stands; npos in paths without.
Text::size_type separator(const Text& path)
{
    return FileProviderManager::isVirtual(path) ? path.find(L' ') : Text::npos;
}

} // namespace

void FileProviderManager::registerFileProvider(const Provider& provider)
{
    if (provider)
        registry().change([&](Providers& list) { list.push_back(provider); });
}

void FileProviderManager::deRegisterFileProvider(const Provider& provider)
{
    registry().change([&](Providers& list) {
        std::erase_if(list, [&](const Provider& each) { return each.get() == provider.get(); });
    });
}

bool FileProviderManager::isVirtual(const Text& path)
{
    return path.startsWith(kPrefix);
}

Text FileProviderManager::getProviderID(const Text& path)
{
    const auto space = separator(path);
    return space == path.npos ? Text() : path.substr(kPrefixLength, space - kPrefixLength);
}

Text FileProviderManager::getRemoteFileName(const Text& path)
{
    const auto space = separator(path);
    return space == path.npos ? Text() : path.substr(space + 1);
}

Provider FileProviderManager::getProviderFor(const Text& path)
{
    const Text id = getProviderID(path);
    if (id.empty())
        return {};
    const auto list = registry().list();
    for (const Provider& provider : *list)
        if (provider->getID() == id)
            return provider;
    return {};
}

Tq::Ptr<iFile> FileProviderManager::openFile(const Text& path, unsigned int access,
                                             iFile::eOpenBehaviour behaviour,
                                             iFile::eShareMode share, std::uint32_t flags)
{
    const Provider provider = getProviderFor(path);
    if (!provider)
        return {};
    return provider->openFile(getRemoteFileName(path), access, behaviour, share, flags);
}

bool FileProviderManager::fileExists(const Text& path)
{
    const Provider provider = getProviderFor(path);
    return provider && provider->fileExists(getRemoteFileName(path));
}

std::uint64_t FileProviderManager::getFileSize(const Text& path)
{
    const Provider provider = getProviderFor(path);
    return provider ? provider->getFileSize(getRemoteFileName(path)) : 0;
}

Text FileProviderManager::getRealFilename(const Text& path)
{
    if (!isVirtual(path))
        return path;
    const Provider provider = getProviderFor(path);
    return provider ? provider->getRealFilename(getRemoteFileName(path)) : Text();
}
