// Carries a plan out: the phone first, then the books, so that the books never promise what the phone does not have.
#pragma once

#include <string>
#include <vector>

#include "books.h"
#include "phone_folder.h"
#include "plan.h"
#include "progress.h"
#include "summary.h"

namespace kesta {

class CarryOut {
public:
    CarryOut(Books& books, std::string imei, PhoneFolder& phone, Progress& progress, Summary& summary)
        : books_(books), imei_(std::move(imei)), phone_(phone), progress_(progress), summary_(summary)
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

    Books& books_;
    std::string imei_;
    PhoneFolder& phone_;
    Progress& progress_;
    Summary& summary_;
    bool filesLeftBehind_ = false;  // on the phone, but neither recorded nor removed again
    std::size_t timesLost_ = 0;
};

}  // namespace kesta
