// Writes what is on the phone to an archive on the PC, and makes sure that it can be read again.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "phone/phone_folder.h"
#include "report/report.h"
#include "stages/backup/phone_contents.h"
#include "stages/backup/zip_writer.h"

namespace kesta {

class ArchiveWriter {
public:
    ArchiveWriter(const PhoneContents& contents, const PhoneFolder& phone, std::string archive, Report& report);

    /// False if it could not be made; the report says why. Throws what ends the run. Either way nothing else
    /// stays in the archive's folder.
    [[nodiscard]] bool run();
    [[nodiscard]] size_t files() const { return contents_.files.size() - unreadable_.size(); }

    /// Behind the archive's name as long as it is being written.
    static constexpr std::string_view kPartEnding = ".part";

private:
    enum class Outcome { kDone, kAgain, kFailed };
    [[nodiscard]] Outcome attempt();
    [[nodiscard]] Outcome pack(ZipWriter& zip, const PhoneItem& file);
    [[nodiscard]] Outcome check(const std::vector<ZipEntry>& entries);
    [[nodiscard]] Outcome leaveOut(const PhoneItem& file, const std::string& reason, Outcome next);
    [[nodiscard]] Outcome fail(const os::Status& status);
    void checkRun() const;
    void removePart();

    const PhoneContents& contents_;
    const PhoneFolder& phone_;
    std::string archive_, part_;
    Report& report_;
    std::set<std::string> unreadable_;
    std::vector<std::byte> buffer_ = std::vector<std::byte>(1 << 18);
};

}  // namespace kesta
