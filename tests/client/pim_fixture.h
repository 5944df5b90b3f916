// Contacts and calendars for the tests of a sync: files on the PC, and what must be on the phone and in the database
// then.
#pragma once

#include <string>
#include <vector>

#include "client_fixture.h"
#include "pim_samples.h"

namespace kesta::test {

class PimTest : public ClientTest {
protected:
    Ended syncContacts(const std::vector<std::string>& files, std::vector<std::string> more = {});
    Ended syncCalendars(const std::vector<std::string>& files, std::vector<std::string> more = {});

    [[nodiscard]] std::string phoneText(const std::string& path) const;
    /// What a program reads out of the phone's file.
    [[nodiscard]] Entries contactsIn(const std::string& path) const;
    [[nodiscard]] Entries eventsIn(const std::string& path) const;
    /// Each entry on the phone has its row in the log, and each row its entry; the store holds as many as it should,
    /// and nothing is left over of the run.
    void expectDatabaseInOrder(const Entries& contacts, const Entries& events, const std::string& imei = kImei);
    [[nodiscard]] fs::path journal(const std::string& imei = kImei) const;
};

}  // namespace kesta::test
