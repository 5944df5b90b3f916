// DB_LIB_ClearSyncHistory: what was synced to a phone is forgotten, what is to be synced is not.
#include "api/given.h"

namespace kesta::test {
namespace {

using ::testing::ElementsAre;

constexpr const char* kFileTables[] = {"tDFile", "tIFile", "tVFile", "tMFile", "tPFile"};

class SyncHistory : public OpenDatabase {
protected:
    SyncHistory()
    {
        givenPhone();
        givenPhone("352222");
        for (const char* table : kFileTables) {
            sql.exec(std::string("INSERT INTO ") + table +
                     " VALUES (1, 'a', 'b', 'c', ''), (1, 'd', 'b', 'c', ''), (2, 'a', 'b', 'c', '')");
        }
    }

    /// How many rows each of the tables has for each phone.
    [[nodiscard]] std::string rowsLeft() const
    {
        std::string counts;
        for (const char* table : kFileTables) {
            counts += sql.text("SELECT SUM([PhoneID] = 1) || '+' || SUM([PhoneID] = 2) FROM " + std::string(table));
            counts += ' ';
        }
        return counts;
    }
};

TEST_F(SyncHistory, ClearSyncHistory_KnownPhone_RemovesItsFilesOfAllFiveTablesWithoutExitLine)
{
    EXPECT_EQ(lib.DB_LIB_ClearSyncHistory(W(kImei)), 0);
    EXPECT_EQ(rowsLeft(), "0+1 0+1 0+1 0+1 0+1 ");
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_ClearSyncHistory(IMEI: 351111)."));
}

TEST_F(SyncHistory, ClearSyncHistory_KnownPhone_KeepsEverythingElse)
{
    sql.exec(
        "INSERT INTO tMFolder ([PhoneID], [Path], [AddTime]) VALUES (1, 'a', ''); INSERT INTO tIFolder ([PhoneID], "
        "[Path], [AddTime]) VALUES (1, 'a', ''); INSERT INTO tVFolder ([PhoneID], [Path], [AddTime]) VALUES "
        "(1, 'a', ''); INSERT INTO tDFolder ([PhoneID], [Path], [AddTime]) VALUES (1, 'a', ''); INSERT INTO tPFolder "
        "([PhoneID], [Path], [AddTime]) VALUES (1, 'a', ''); INSERT INTO tPFilename VALUES ('351111', 'a', 'b'); "
        "INSERT INTO tBFile ([PhoneID], [Path]) VALUES (1, 'a'); INSERT INTO tBackup ([PhoneID], [Path]) VALUES "
        "(1, 'a')");
    EXPECT_EQ(lib.DB_LIB_ClearSyncHistory(W(kImei)), 0);
    EXPECT_EQ(sql.text("SELECT (SELECT COUNT(*) FROM tMFolder), (SELECT COUNT(*) FROM tIFolder), (SELECT COUNT(*) FROM "
                       "tVFolder), (SELECT COUNT(*) FROM tDFolder), (SELECT COUNT(*) FROM tPFolder), (SELECT COUNT(*) "
                       "FROM tPFilename), (SELECT COUNT(*) FROM tBFile), (SELECT COUNT(*) FROM tBackup), (SELECT "
                       "COUNT(*) FROM tSyncContents), (SELECT COUNT(*) FROM tPhone)"),
              "1|1|1|1|1|1|1|1|14|2");
}

TEST_F(SyncHistory, ClearSyncHistory_UnknownPhone_SucceedsAndRemovesNothing)
{
    EXPECT_EQ(lib.DB_LIB_ClearSyncHistory(W("999")), 0);
    EXPECT_EQ(rowsLeft(), "2+1 2+1 2+1 2+1 2+1 ");
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_ClearSyncHistory(IMEI: 999)."));
}

TEST_F(SyncHistory, ClearSyncHistory_SomeTablesFail_ClearsTheOthersAndSucceeds)
{
    sql.exec(
        "CREATE TRIGGER refuse BEFORE DELETE ON tDFile BEGIN SELECT RAISE(ABORT, 'no'); END;"
        "CREATE TRIGGER refuse2 BEFORE DELETE ON tMFile BEGIN SELECT RAISE(ABORT, 'no'); END");
    EXPECT_EQ(lib.DB_LIB_ClearSyncHistory(W(kImei)), 0);
    EXPECT_EQ(rowsLeft(), "2+1 0+1 0+1 2+1 0+1 ");
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_ClearSyncHistory(IMEI: 351111).",
                                          "Error in DB_INTERNAL_ClearTable4Phone(), position 1.",
                                          "Error in DB_INTERNAL_ClearTable4Phone(), position 1."));
}

TEST_F(SyncHistory, ClearSyncHistory_SeveralPhones_ClearsInTheOrderOfTheTables)
{
    // Each table's delete notes itself, which shows the order.
    std::string triggers = "CREATE TABLE seen ([Name]);";
    for (const char* table : kFileTables) {
        triggers += std::string("CREATE TRIGGER on_") + table + " BEFORE DELETE ON " + table +
                    " WHEN OLD.[Path] = 'a' BEGIN INSERT INTO seen VALUES ('" + table + "'); END;";
    }
    sql.exec(triggers);
    EXPECT_EQ(lib.DB_LIB_ClearSyncHistory(W(kImei)), 0);
    EXPECT_EQ(sql.text("SELECT [Name] FROM seen ORDER BY rowid"), "tDFile\ntIFile\ntVFile\ntMFile\ntPFile");
}

}  // namespace
}  // namespace kesta::test
