// Carries a plan out: the phone first, then the database, so that the database never promises what the phone does not
// have.
#pragma once

#include <string>
#include <vector>

#include "database/database.h"
#include "phone/phone_folder.h"
#include "report/progress.h"
#include "report/summary.h"
#include "stages/media/plan.h"

namespace kesta {

/// Where the database keeps what is executed. The methods return the library's codes.
class FileRecords {
public:
    virtual ~FileRecords() = default;
    [[nodiscard]] virtual std::int32_t add(const Action& action) = 0;
    [[nodiscard]] virtual std::int32_t update(const Action& action) = 0;
    [[nodiscard]] virtual std::int32_t remove(const Action& action) = 0;
    /// Whether exactly this is recorded. For doubtful cases only.
    [[nodiscard]] virtual bool holds(const Action& action) = 0;
};

/// The files of the media folders.
class MediaRecords : public FileRecords {
public:
    MediaRecords(Database& database, std::string imei) : database_(database), imei_(std::move(imei)) {}
    [[nodiscard]] std::int32_t add(const Action& action) override;
    [[nodiscard]] std::int32_t update(const Action& action) override;
    [[nodiscard]] std::int32_t remove(const Action& action) override;
    [[nodiscard]] bool holds(const Action& action) override;

private:
    Database& database_;
    std::string imei_;
};

/// Says and counts what executing the plans  would do.
void Preview(const std::vector<CategoryPlan>& plans, bool quiet, Progress& progress, Summary& summary);

class Execute {
public:
    Execute(FileRecords& records, PhoneFolder& phone, Progress& progress, Summary& summary)
        : records_(records), phone_(phone), progress_(progress), summary_(summary)
    {
    }

    /// Removals come first: they make room for what is copied.
    void run(const std::vector<CategoryPlan>& plans);

private:
    void removeAll(const std::vector<CategoryPlan>& plans);
    void copyAll(const std::vector<CategoryPlan>& plans);
    void remove(const Action& action);
    void copy(const Action& action);
    void copyContents(const Action& action);
    void record(const Action& action);
    [[nodiscard]] bool mayGoOn();
    void stopOnPhoneFailure(const os::Status& status, const std::string& path);

    FileRecords& records_;
    PhoneFolder& phone_;
    Progress& progress_;
    Summary& summary_;
    bool filesLeftBehind_ = false;  // on the phone, but neither recorded nor removed again
    std::size_t timesLost_ = 0;
};

}  // namespace kesta
