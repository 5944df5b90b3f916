// A copy of all that is on the phone, as one archive on the PC, recorded where the database has a table for backups.
#pragma once

#include <string>

#include "stages/backup/phone_contents.h"
#include "sync/session.h"

namespace kesta {

class BackupStage : public Stage {
public:
    [[nodiscard]] Plan plan(Session& session) override;

private:
    [[nodiscard]] bool chooseArchive(Session& session);
    [[nodiscard]] bool isOldPart(const std::string& name) const;
    void removeOldParts(Report& report) const;
    void pack(Session& session) const;
    void record(Session& session) const;

    std::string folder_, stem_, archive_;
    PhoneContents contents_;
};

}  // namespace kesta
