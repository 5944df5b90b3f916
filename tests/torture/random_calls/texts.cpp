#include "torture/random_calls/texts.h"

#include <algorithm>
#include <iterator>
#include <string>

namespace kesta::test {
namespace {

using namespace std::string_view_literals;

/// From here on a byte stands for a long text, and from the last one on for none.
constexpr uint8_t kLongFrom = 224;
constexpr uint8_t kNull = 248;
constexpr uint8_t kOrdinaryBelow = 128;

constexpr TextView kNasty[] = {
    u"",
    u"(null)",
    u"'",
    u"''",
    u"'''",
    u"\"",
    u"]",
    u"--",
    u"/*",
    u";",
    u":",
    u"%s%n%d%x",
    u"?1",
    u"\\",
    u" ",
    u"\t\r\n\x01\x7f",
    u"\u00e9",
    u"\ufeffbom",
    u"\uffff\ufffe",
    u"\xd800"sv,
    u"\xdc00"sv,
    u"\xdc00\xd800"sv,
    u"x\xd83d"sv,
    u"\xd83d'\xde00"sv,
    u"\U0010ffff",
    u"Invalid DateTime",
    u"2026-02-30 25:61:61",
    u"9e999",
    u"-9223372036854775808",
    u"x' OR '1'='1",
    u"x' OR 1=1 --",
    u"x') --",
    u"' UNION SELECT * FROM tPhone --",
    u"' UNION SELECT 1,2,3,4,5,6,7,8 --",
    u"' ORDER BY random() --",
    u"' AND abs(-9223372036854775808) --",
    u"'); DROP TABLE tPhone; --",
    u"'; DROP VIEW vMFile; --",
    u"'; DROP INDEX IDX_TPHONE_IMEI; --",
    u"'; DELETE FROM tPhone; --",
    u"'; DELETE FROM tVersion; --",
    u"'; BEGIN; --",
    u"'; BEGIN EXCLUSIVE; --",
    u"BEGIN",
    u"'; COMMIT; --",
    u"'; ROLLBACK; --",
    u"'; SAVEPOINT a; --",
    u"'; RELEASE a; --",
    u"'; PRAGMA journal_mode=WAL; --",
    u"'; PRAGMA journal_mode=OFF; --",
    u"'; PRAGMA locking_mode=EXCLUSIVE; --",
    u"'; PRAGMA writable_schema=ON; --",
    u"'; PRAGMA user_version=7; --",
    u"'; PRAGMA encoding='UTF-16'; --",
    u"'; PRAGMA case_sensitive_like=1; --",
    u"'; UPDATE sqlite_master SET sql = 'x'; --",
    u"'; ATTACH ':memory:' AS other; --",
    u"'; DETACH main; --",
    u"'; VACUUM; --",
    u"'; REINDEX; --",
    u"'; ANALYZE; --",
    u"'; CREATE TABLE tBackups (a); --",
    u"'; CREATE TEMP TABLE tPhone (ID, IMEI); --",
    u"'; CREATE TEMP TRIGGER t INSERT ON tMFile BEGIN DELETE FROM tPhone; END; --",
    u"'; CREATE TRIGGER t DELETE ON tMFile BEGIN SELECT RAISE(ROLLBACK, 'no'); END; --",
    u"'; ALTER TABLE tPhone RENAME TO tGone; --",
    u"'; ALTER TABLE tMFile DROP COLUMN PhonePath; --",
    u"' COLLATE nothing --",
    u"'; SELECT load_extension('x'); --",
    u"'; SELECT RAISE(ROLLBACK, 'no'); --",
    u"'; INSERT OR ROLLBACK INTO tVersion VALUES (NULL); --",
    u"'; UPDATE tPhone SET ID = -1; --",
    u"'; UPDATE tPhone SET ID = 9223372036854775807; --",
    u"'; UPDATE tMFile SET Path = x'00ff80'; --",
    u"'; UPDATE tMFolder SET Flag = 'x'; --",
    u"'; INSERT INTO tPhone (ID, IMEI) VALUES (9223372036854775807, 'last'); --",
    u"'||zeroblob(9)||'",
    u"'||char(0,55296)||'",
};

/// Around these lengths something changes: a buffer of the stack, the longest statement in bytes and in code units.
constexpr size_t kBorders[] = {1024, 40960, 40960 / 2, 40960 / 3, 40960 / 4};

constexpr TextView kLetters[] = {u"x", u"'", u"\u00e9", u"\u20ac", u"\U0001f600", u"\xdc00"sv, u"\xd800"sv, u"x'"};

}  // namespace

DbChar* Texts::pick(CallBytes& bytes)
{
    const uint8_t choice = bytes.next();
    const bool first = !any_;
    any_ = true;
    if (choice >= kNull) {
        return nullptr;
    }
    if (choice >= kLongFrom) {
        return keepLong(bytes);
    }
    if (choice >= kOrdinaryBelow) {
        return keep(kNasty[(choice - kOrdinaryBelow) % std::size(kNasty)]);
    }
    return keep(first ? kPhones[choice % std::size(kPhones)] : kNames[choice % std::size(kNames)]);
}

uint8_t* Texts::keepBytes(size_t length, uint8_t value)
{
    bytes_.push_back(std::make_unique_for_overwrite<uint8_t[]>(length));
    std::fill_n(bytes_.back().get(), length, value);
    return bytes_.back().get();
}

DbChar* Texts::keep(TextView text)
{
    kept_.push_back(std::make_unique_for_overwrite<DbChar[]>(text.size() + 1));
    DbChar* copy = kept_.back().get();
    *std::copy(text.begin(), text.end(), copy) = 0;
    return copy;
}

DbChar* Texts::keepLong(CallBytes& bytes)
{
    const size_t border = kBorders[bytes.next() % std::size(kBorders)];
    const TextView letter = kLetters[bytes.next() % std::size(kLetters)];
    // A byte tells how much the statement around the text takes; none is longer than that.
    const size_t length = border + 4 - bytes.next();
    std::basic_string<DbChar> text;
    text.reserve(length);
    while (text.size() + letter.size() <= length) {
        text += letter;
    }
    text.append(length - text.size(), u'x');
    return keep(text);
}

}  // namespace kesta::test
