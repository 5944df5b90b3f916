// The phone: any mounted folder. Phone paths have '/' between their components and begin below the folder.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/stop_run.h"
#include "os/files.h"
#include "os/volume.h"
#include "phone/mount_abilities.h"
#include "phone/phone_view.h"

namespace kesta {

/// How a run ends that cannot do without what has failed on the phone.
[[nodiscard]] ExitCode ExitCodeOf(const os::Status& status);

/// What finds that the phone can no longer be read throws.
class PhoneFolder : public Phone {
public:
    /// Takes a canonical path.
    explicit PhoneFolder(std::string root) : root_(std::move(root)) {}

    /// Must succeed before anything else is asked.
    os::Status open();
    [[nodiscard]] const std::string& root() const { return root_; }
    [[nodiscard]] os::FileId id() const { return id_; }
    /// False when the phone has gone, or when an empty mount point is in its place.
    [[nodiscard]] bool isStillThere() const;
    /// The same, and that it answers: the root of a mount that has died may be known for a while. Takes longer.
    [[nodiscard]] bool isAnswering() const;

    [[nodiscard]] const MountAbilities& abilities() const { return abilities_; }
    void setAbilities(const MountAbilities& abilities) { abilities_ = abilities; }

    [[nodiscard]] std::string native(const std::string& phonePath) const;
    [[nodiscard]] PhoneFile find(const std::string& phonePath) const override;
    [[nodiscard]] std::vector<std::string> names(const std::string& folder) const override;
    [[nodiscard]] bool holds(const std::string& phonePath, const std::string& text) const override;
    [[nodiscard]] bool holdsFile(const std::string& phonePath, const std::string& pcPath) const override;
    /// Of a file's contents; empty if it cannot be read.
    [[nodiscard]] std::string digest(const std::string& phonePath) const;
    /// A failure that every further write would meet, as the end of the run: the phone is gone, full or read-only.
    [[nodiscard]] std::optional<StopRun> whyNothingCanBeWritten(const os::Status& status) const;

    /// Creates the folders on the way to a file. Refuses a way that leads over a link.
    os::Status makeFolders(const std::string& phonePath, os::Flush flush = os::Flush::kNow);
    /// Removes a file for good; it is no failure when it is not there.
    os::Status removeFile(const std::string& phonePath);
    /// Renames a file, or copies it where the mount does not rename, and makes the folders on the way to its new path.
    /// Nothing is replaced; it is no failure when there is no such file. flush: of the folder in which it was, and
    /// of new ones above it.
    os::Status move(const std::string& phonePath, const std::string& newPath, os::Flush flush = os::Flush::kNow);
    /// Removes the folders above a file that have become empty, up to the category's own.
    os::Status tidyAbove(const std::string& phonePath);

private:
    enum class Way { kPlain, kMissing };
    os::Status checkWay(const std::string& phonePath, Way& way) const;
    [[nodiscard]] os::Status flushFolders(const std::vector<std::string>& folders) const;

    std::string root_;
    os::FileId id_;
    MountAbilities abilities_;
    std::set<std::string> checkedFolders_;
};

}  // namespace kesta
