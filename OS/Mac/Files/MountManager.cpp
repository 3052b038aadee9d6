#include "OS/Mac/Files/MountManager.h"

#include "OS/Host/Desktop/OpenFiles.h"
#include "OS/Host/Desktop/Volume.h"
#include "OS/Host/Desktop/VolumeService.h"
#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/Core/PathText.h"
#include "OS/Mac/Files/NetworkAddress.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

using OSInternal::NetworkAddress;
using OSInternal::Volume;
using OSInternal::VolumeAnswer;
using OSInternal::VolumeLogin;
using OSInternal::VolumeSources;

namespace {

using Clock = std::chrono::steady_clock;
using Result = iMountManager::eResult;

constexpr std::chrono::milliseconds kPause(5);
constexpr std::chrono::milliseconds kLongestRelease(500);
constexpr std::chrono::milliseconds kLongestNotice(1000);
constexpr std::chrono::milliseconds kLongestStart(3000);

std::string bytesOf(const LightweightString<wchar_t>& text)
{
    return std::string(OSInternal::textToSystem(text.view()).view());
}

// An address that may be mounted: the server and the share of it.
std::optional<NetworkAddress> parseShare(const LightweightString<wchar_t>& text)
{
    const std::string bytes = bytesOf(text);
    const bool isPath = bytes.starts_with("//");
    std::optional<NetworkAddress> address = NetworkAddress::parse(isPath ? "smb:" + bytes : bytes);
    if (!address || !address->hasShares() || address->path_.empty())
        return {};
    if (const auto decoded = address->decoded(); decoded && !isPath)
        address = decoded;
    if (address->path_.empty())
        return {};
    address->path_.resize(1);
    return address;
}

std::vector<Volume> networkVolumes()
{
    std::vector<Volume> volumes =
        OSInternal::readVolumes(VolumeSources::ofProcess()).value_or(std::vector<Volume>());
    std::erase_if(volumes,
                  [](const Volume& volume) { return volume.type_ != iDiskDrive::eNetwork; });
    return volumes;
}

// The volume that is the whole share. One of the desktop's goes first: it is what can be unmounted.
std::optional<Volume> findVolume(const NetworkAddress& share)
{
    std::optional<Volume> found;
    for (Volume& volume : networkVolumes()) {
        const std::optional<NetworkAddress> address = NetworkAddress::parse(volume.address_);
        const bool isIt =
            address && address->contains(share) && address->path_.size() == share.path_.size();
        if (isIt && (!found || (volume.byDesktop_ && !found->byDesktop_)))
            found = std::move(volume);
    }
    return found;
}

std::optional<Volume> findVolumeAt(std::string path)
{
    while (path.size() > 1 && path.ends_with('/'))
        path.pop_back();
    for (Volume& volume : networkVolumes()) {
        if (volume.path_ == path)
            return std::move(volume);
    }
    return {};
}

bool canBeListed(const Volume& volume)
{
    std::error_code fault;
    const std::filesystem::directory_iterator entries(volume.path_, fault);
    return !fault;
}

// The service answers before its folder shows the volume, and one that was mounted before gives
// errors for a second longer. Whoever mounts opens a file next, so time is given for both; without
// FUSE there is nothing to wait for.
void awaitVolume(const NetworkAddress& share)
{
    if (access("/dev/fuse", F_OK) != 0)
        return;
    const Clock::time_point start = Clock::now();
    for (;;) {
        const std::optional<Volume> volume = findVolume(share);
        if (volume && canBeListed(*volume))
            return;
        if (Clock::now() - start >= (volume ? kLongestStart : kLongestNotice))
            return;
        std::this_thread::sleep_for(kPause);
    }
}

void awaitNoVolume(const NetworkAddress& share)
{
    const Clock::time_point end = Clock::now() + kLongestNotice;
    while (findVolume(share) && Clock::now() < end)
        std::this_thread::sleep_for(kPause);
}

// The service takes a volume away from under the files that are open in its folder, so these are
// looked for here; what it has open for others it knows itself. A file that is being closed is
// given a moment.
VolumeAnswer unmountWhenFree(OSInternal::VolumeService& service, const NetworkAddress& share,
                             const std::string& path, unsigned int timeoutMs)
{
    const Clock::time_point end =
        Clock::now() + std::min(std::chrono::milliseconds(timeoutMs), kLongestRelease);
    for (;;) {
        VolumeAnswer answer{Result::eBusy, "it is in use"};
        if (path.empty() || !OSInternal::isInUse(path))
            answer = service.unmount(share.toUri(), timeoutMs);
        if (answer.result_ != Result::eBusy || Clock::now() >= end)
            return answer;
        std::this_thread::sleep_for(kPause);
    }
}

VolumeLogin loginOf(const iMountManager::Credentials& credentials, const NetworkAddress& address)
{
    VolumeLogin login{bytesOf(credentials.user_), bytesOf(credentials.password_),
                      bytesOf(credentials.domain_)};
    const std::size_t semicolon = address.user_.find(';');
    if (login.user_.empty())
        login.user_ =
            semicolon == std::string::npos ? address.user_ : address.user_.substr(semicolon + 1);
    if (login.domain_.empty() && semicolon != std::string::npos)
        login.domain_ = address.user_.substr(0, semicolon);
    if (login.password_.empty())
        login.password_ = address.password_;
    return login;
}

// Any text as one line without the password that it may hold.
std::string forPeople(std::string text)
{
    if (const auto address = NetworkAddress::parse(text))
        text = address->toText();
    else if (const std::size_t at = text.rfind('@'); at != std::string::npos)
        text.erase(0, at + 1);
    for (char& c : text) {
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F)
            c = ' ';
    }
    return text;
}

Result report(const std::string& address, const char* what, const VolumeAnswer& answer)
{
    if (!answer.reason_.empty())
        OSInternal::printLine("MountManager: %s cannot be %s: %s\n", forPeople(address).c_str(),
                              what, answer.reason_.c_str());
    return answer.result_;
}

} // namespace

bool MountManager::getMounts(std::vector<Mount>& mounts)
{
    const auto volumes = OSInternal::readVolumes(VolumeSources::ofProcess());
    if (!volumes)
        return false;
    std::vector<Mount> found;
    for (const Volume& volume : *volumes) {
        if (volume.type_ == iDiskDrive::eNetwork)
            found.push_back({OSInternal::textFromSystem(volume.address_),
                             OSInternal::textFromSystem(volume.path_ + "/"),
                             OSInternal::textFromSystem(volume.name_), volume.byDesktop_});
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const Mount& a, const Mount& b) { return a.address_ < b.address_; });
    mounts.insert(mounts.end(), found.begin(), found.end());
    return true;
}

iMountManager::eResult MountManager::mount(const LightweightString<wchar_t>& address,
                                           const Credentials& credentials, unsigned int timeoutMs)
{
    const std::optional<NetworkAddress> share = parseShare(address);
    if (!share)
        return report(bytesOf(address), "mounted",
                      {eFailed, "it is no address of a server's share"});
    if (findVolume(*share))
        return eMounted;
    const VolumeAnswer answer =
        service().mount(share->toUri(), loginOf(credentials, *share), timeoutMs);
    if (answer.result_ == eMounted)
        awaitVolume(*share);
    return report(share->toText(), "mounted", answer);
}

iMountManager::eResult MountManager::unmount(const LightweightString<wchar_t>& address,
                                             unsigned int timeoutMs)
{
    const std::string text = bytesOf(address);
    std::optional<NetworkAddress> share;
    std::optional<Volume> volume;
    if (text.starts_with('/') && !text.starts_with("//")) {
        volume = findVolumeAt(text);
        if (!volume)
            return eUnmounted;
        share = NetworkAddress::parse(volume->address_);
    } else {
        share = parseShare(address);
        if (share)
            volume = findVolume(*share);
    }
    if (!share)
        return report(text, "unmounted", {eFailed, "it is no address of a server's share"});
    if (volume && !volume->byDesktop_)
        return report(share->toText(), "unmounted", {eFailed, "the system has mounted it"});
    // The volume knows which user's it is.
    const NetworkAddress whole =
        volume ? NetworkAddress::parse(volume->address_).value_or(*share) : *share;
    const VolumeAnswer answer =
        unmountWhenFree(service(), whole, volume ? volume->path_ : "", timeoutMs);
    if (answer.result_ == eNoService && !volume)
        return eUnmounted; // what nobody can mount is not mounted
    if (answer.result_ == eUnmounted)
        awaitNoVolume(whole);
    return report(whole.toText(), "unmounted", answer);
}

OSInternal::VolumeService& MountManager::service() const
{
    return service_ ? *service_ : OSInternal::VolumeService::ofSession();
}
