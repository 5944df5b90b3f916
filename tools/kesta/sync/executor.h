// Makes the changes of a plan: the phone first, then the database, so that the database never promises what the phone
// does not have. Interrupts, a phone that is gone, full or read-only, the journal, progress and counts are seen to here
// and nowhere else.
#pragma once

#include "phone/copy_file.h"
#include "sync/copy_ahead.h"
#include "sync/journal.h"
#include "sync/room.h"
#include "sync/session.h"
#include "sync/way.h"

namespace kesta {

class Executor : public Runner {
public:
    /// What the guard defers is noted before anything else is changed.
    Executor(PhoneFolder& phone, const SyncOptions& options, DeletionGuard& guard, LeftFiles& left, Report& report)
        : phone_(phone),
          options_(options),
          guard_(guard),
          left_(left),
          report_(report),
          journal_(phone, report),
          way_(phone, options, left, report)
    {
    }

    [[nodiscard]] const Phone& phone() const override { return phone_; }
    /// A change that fails goes to the report, and the others are made; what every other one would meet is thrown.
    void run(const Plan& plan) override;

private:
    void makeAll(const Plan& plan, Journal& journal);
    void checkPhone() const;
    void checkPhoneAnswers() const;
    /// False when it failed.
    [[nodiscard]] bool make(const Change& change, const Plan& plan);
    [[nodiscard]] bool makeNoted(const Change& change, const Plan& plan);
    /// What follows once the phone holds it.
    [[nodiscard]] bool finish(const Change& change, const Plan& plan, const Written& written);
    [[nodiscard]] bool remove(const Change& change);
    [[nodiscard]] bool move(const Change& change);
    void moveLeft(const std::string& from, const std::string& to);
    /// What does not get to its path in one step is noted there.
    [[nodiscard]] os::Status notePlacing(const Change& change);
    void forgetPlacing();
    void noteLeft(const Change& change, const os::FileInfo& copy, std::optional<int32_t> pcNanoseconds);
    [[nodiscard]] bool write(const Change& change, Written& written);
    [[nodiscard]] bool copy(const Change& change, Written& written);
    [[nodiscard]] bool writeText(const Change& change, Written& written);
    [[nodiscard]] bool record(const Change& change, const Written& written);
    void takeBack(const Change& change);
    void fail(const Change& change, const std::string& reason);
    void stopIfNothingCanBeWritten(const os::Status& status) const;

    // Copying ahead: executor_batches.cpp.
    struct Placed {
        size_t change = 0;
        Written written;
    };
    void copyAhead(const Plan& plan);
    [[nodiscard]] std::vector<StagedFile> nextBatch(const Plan& plan);
    [[nodiscard]] bool hasRoomAhead(uint64_t bytes) const;
    /// Makes the changes from the next one on that were copied ahead; false when one has failed.
    [[nodiscard]] bool makeBatch(const Plan& plan);
    [[nodiscard]] bool makeBatch(const Plan& plan, StagedBatch& batch);
    [[nodiscard]] bool place(const Change& change, StagedFile& file, std::vector<Placed>& placed);
    [[nodiscard]] bool recordPlaced(const Plan& plan, std::vector<Placed>& placed);
    void discard(const Plan& plan, const StagedBatch& batch);
    void discardAhead(const Plan& plan);

    PhoneFolder& phone_;
    const SyncOptions& options_;
    DeletionGuard& guard_;
    LeftFiles& left_;
    Report& report_;
    PhoneJournal journal_;
    Way way_;
    bool isLeftBehind_ = false;  // something is on the phone, but neither recorded nor removed again
    size_t next_ = 0;            // the change that is being made
    bool hasFailed_ = false;     // that change
    size_t timesLost_ = 0;
    std::optional<CopyAhead> ahead_;
    std::deque<std::pair<size_t, uint64_t>> batches_;  // that are copied ahead: first change, bytes
    size_t aheadFrom_ = 0;                             // the first change that nothing has been decided for
    bool hasPlacedNote_ = false;
};

}  // namespace kesta
