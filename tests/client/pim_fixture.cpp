#include "pim_fixture.h"

#include <sstream>

#include "formats/icalendar.h"
#include "formats/vcard.h"

namespace kesta::test {

Ended PimTest::syncContacts(const std::vector<std::string>& files, std::vector<std::string> more)
{
    more.emplace_back("--contacts");
    for (const std::string& file : files) {
        more.push_back(pc(file));
    }
    return sync(std::move(more));
}

Ended PimTest::syncCalendars(const std::vector<std::string>& files, std::vector<std::string> more)
{
    more.emplace_back("--calendar");
    for (const std::string& file : files) {
        more.push_back(pc(file));
    }
    return sync(std::move(more));
}

std::string PimTest::phoneText(const std::string& path) const
{
    std::ostringstream text;
    text << std::ifstream(Path(phone(path)), std::ios::binary).rdbuf();
    return text.str();
}

Entries PimTest::contactsIn(const std::string& path) const
{
    const formats::Cards read = formats::ParseCards(phoneText(path));
    EXPECT_THAT(read.problems, testing::IsEmpty()) << path;
    Entries entries;
    for (const formats::Card& card : read.cards) {
        EXPECT_TRUE(entries.emplace(card.uid, card.name).second) << card.uid << " is there twice";
    }
    return entries;
}

Entries PimTest::eventsIn(const std::string& path) const
{
    const formats::Calendars read = formats::ParseCalendars(phoneText(path));
    EXPECT_THAT(read.problems, testing::IsEmpty()) << path;
    Entries entries;
    for (const formats::CalendarEntry& entry : read.entries) {
        EXPECT_TRUE(entries.emplace(entry.uid, entry.summary).second) << entry.uid << " is there twice";
    }
    return entries;
}

fs::path PimTest::journal(const std::string& imei) const
{
    return note("pim of " + imei + ".json");
}

void PimTest::expectDatabaseInOrder(const Entries& contacts, const Entries& events, const std::string& imei)
{
    // Of an entry the last row counts.
    const std::string ofLog =
        " FROM tPimLogItem i, tPimLog l, tPhone p WHERE i.plID = l.plID AND l.phoneID = p.ID AND p.IMEI = '" + imei +
        "' AND i.Luid <> 'gone' AND i.ptID = (SELECT MAX(ptID) FROM tPimLogItem WHERE plID = i.plID AND Guid = i.Guid)";
    for (const auto& [type, expected] : {std::pair("1500", &contacts), std::pair("1600", &events)}) {
        SCOPED_TRACE(type);
        const std::string count = std::to_string(expected->size());
        EXPECT_EQ(database().text(std::string("SELECT COUNT(*), COUNT(DISTINCT Guid)") + ofLog + " AND Type = " + type),
                  count + "|" + count);
        // Each row names an item of the store, which lies in a folder below the kind's root.
        EXPECT_EQ(
            database().text(std::string("SELECT COUNT(*) FROM tPimItem i, tPimFolder f, tPimFolder r WHERE i.pfID = "
                                        "f.pfID AND f.parentID = r.pfID AND r.parentID < 0 AND i.Type = f.Type AND "
                                        "i.PimID IN (SELECT Guid") +
                            ofLog + ") AND i.Type = " + type),
            count);
        for (const auto& [uid, name] : *expected) {
            EXPECT_EQ(database().text("SELECT COUNT(*) FROM tPimItem WHERE CAST(Data AS TEXT) LIKE '%:" + uid +
                                      "\r\n%:" + name + "\r\n%' AND Type = " + type),
                      "1")
                << uid;
        }
        EXPECT_EQ(database().text(std::string("SELECT COUNT(*)") + ofLog + " AND Type = " + type +
                                  " AND (LENGTH(Luid) <> 49 OR PhoneTime NOT LIKE '____-__-__ __:__:__')"),
                  "0");
    }
    EXPECT_EQ(database().text("SELECT COUNT(*) FROM tPimItem WHERE pfID NOT IN (SELECT pfID FROM tPimFolder)"), "0");
    EXPECT_THAT(ownFiles(), testing::IsEmpty());
    EXPECT_FALSE(fs::exists(journal(imei)));
}

}  // namespace kesta::test
