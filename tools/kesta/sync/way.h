// What is in the place of a change leaves it: what somebody changed there is kept under another name, the rest goes to
// the trash, which gives room where that is short.
#pragma once

#include <functional>

#include "phone/trash.h"
#include "sync/session.h"

namespace kesta {

class Way {
public:
    Way(PhoneFolder& phone, const SyncOptions& options, LeftFiles& left, Report& report)
        : phone_(phone), options_(options), left_(left), report_(report), trash_(phone)
    {
    }

    [[nodiscard]] const Trash& trash() const { return trash_; }
    /// Removes what has been in the trash for too long, once a run.
    void expire();
    /// For a change that replaces or removes. What cannot go to the trash stays, for the change to overwrite or remove.
    /// Throws what every other change would meet.
    [[nodiscard]] os::Status make(const Change& change);
    /// To be called as often as it takes: the way is made once.
    [[nodiscard]] std::function<os::Status()> maker(const Change& change);
    /// Files of the trash make room, oldest first.
    [[nodiscard]] bool hasRoomFor(uint64_t bytes);
    /// Takes so much out of the trash; false when there was nothing.
    [[nodiscard]] bool free(uint64_t bytes);

private:
    [[nodiscard]] os::Status keep(const Change& change);

    PhoneFolder& phone_;
    const SyncOptions& options_;
    LeftFiles& left_;
    Report& report_;
    Trash trash_;
    bool hasExpired_ = false;
    bool isTrashRefused_ = false;
};

}  // namespace kesta
