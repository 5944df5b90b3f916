// The lines of a playlist whose name is as long as a text may be. Natively only: the debug output of Windows cuts a
// line at 32,767 characters.
#include "api/records.h"

namespace kesta::test {
namespace {

using PlaylistLongName = FamilyExports;

/// The statements are too long then, but their lines tell what was asked for, up to where escaping a text ends.
TEST_F(PlaylistLongName, AddPlaylist_LongName_IsCutInEachStatementsLine)
{
    const std::string most(40958, 'x');
    const std::string oneLess(40957, 'x');
    const std::string twoLess(40956, 'x');
    const std::pair<std::string, std::string> cases[] = {
        {most, most},
        {most + "y", most},
        {twoLess + "'y", twoLess + "''"},
        {oneLess + "'y", oneLess + "'"}};  // the pair does not fit whole
    for (const auto& [name, shown] : cases) {
        const Playlist playlist(name);
        EXPECT_EQ(lib.DB_PLAYERMUSIC_AddPlaylist(W(kImei), &playlist), 0);
        int statements = 0;
        for (const std::string& line : trace.take()) {
            if (line.find(", Exec SQL: ") == std::string::npos) {
                continue;
            }
            ++statements;
            // As a truth value: nobody wants to read it.
            EXPECT_TRUE(line.find("'" + shown + "'" + (statements < 4 ? " AND [" : ", 'd1'")) != std::string::npos ||
                        (statements == 3 && line.ends_with("'" + shown + "';.")))
                << statements;
        }
        EXPECT_EQ(statements, 4);
        EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tPFolder"), "0");
    }
}

}  // namespace
}  // namespace kesta::test
