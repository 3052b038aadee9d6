#pragma once

#include "OS/Mac/Core/Descriptor.h"

#include <OS/Core/LightweightString.h>

#include <cstddef>
#include <sys/stat.h>

namespace OSInternal {

/// A new content for a file, which takes the old one's place whole or not at all.
///
/// It is written to a hidden file beside the target (links are followed first), flushed, and
/// renamed over it: a crash or a power cut leaves the old content or the new one. Without commit()
/// the hidden file goes and the target stays as it was. Mode, and where permitted owner and group,
/// are the old file's; a new file gets 0666 less the process's mask. Other hard links keep the old
/// content.
///
/// The hidden file is named ".NAME.new-N" and is locked (flock) while it is used. One that a killed
/// process left behind is not locked any more: the next replacement of the same target removes it.
///
///     ReplacementFile file(path);
///     return file.openAnyway() && file.write(text, length) && file.commit();
///
/// One thread at a time; several objects, and processes, may replace one target: the last commit
/// stays.
class ReplacementFile
{
public:
    enum class Status
    {
        eReady,       ///< descriptor() is open
        eOnlyInPlace, ///< the folder refuses new files, or the target is a device or a pipe, but
                      ///< the target itself may be written: openInPlace(), or leave it
        eRefused,     ///< the target may not be written, is a folder, or its folder is not there
        eFailed       ///< anything else, such as a full disk; error() tells
    };
    enum class Existing
    {
        eReplace,
        eKeep ///< a target that is there by now fails the commit with EEXIST
    };

    /// @param path for the system (bytes)
    explicit ReplacementFile(const LightweightString<char>& path);
    ReplacementFile(const ReplacementFile&) = delete;
    ReplacementFile& operator=(const ReplacementFile&) = delete;
    /// Discards what was not committed.
    ~ReplacementFile();

    Status status() const { return status_; }
    /// The `errno` of the first thing that failed; 0 when nothing has.
    int error() const { return error_; }
    /// For reading, writing and seeking; -1 unless ready. Stays this object's: give a duplicate to
    /// whoever closes it.
    int descriptor() const { return file_.get(); }

    /// Empties the target and opens it instead; only with eOnlyInPlace. From here on the old
    /// content is lost, whatever happens. @return whether it is open now
    bool openInPlace();
    /// openInPlace() where there is no other way. @return whether descriptor() is open
    bool openAnyway() { return status_ == Status::eReady || openInPlace(); }
    /// Writes all bytes, or fails; so does commit() then.
    bool write(const void* bytes, std::size_t length);
    /// Flushes to the disk and puts the new content in the target's place. Closes the descriptor in
    /// any case. Where a file can not be renamed over the target (a mount point, another user's
    /// file in a shared folder) the finished content is copied into it.
    /// @return whether the target has the new content; else error()
    bool commit(Existing existing = Existing::eReplace);
    /// Removes the new content. After commit() it does nothing.
    void discard();

private:
    bool fail(int error);
    Status refuse(int error);
    bool resolve(LightweightString<char> path);
    Status open();
    Status makeBeside();
    bool lockOwn();
    void removeAbandoned(const LightweightString<char>& name);
    void takeAttributes();
    bool putInPlace(Existing existing);
    bool copyOver();

    Descriptor folder_;                 // of the target; for paths only
    LightweightString<char> name_;      // of the target in it
    LightweightString<char> temporary_; // of the hidden file in it, empty when there is none
    Descriptor file_;
    struct stat old_ = {}; // of the target; st_mode 0 when there is none
    Status status_ = Status::eFailed;
    int error_ = 0;
};

} // namespace OSInternal
