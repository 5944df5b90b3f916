#include "data_set.h"

#include <cstdio>
#include <cstdlib>

#include "bare.h"
#include "families.h"
#include "library.h"

namespace kesta::bench {
namespace {

void Fill(const DataSet& dataSet, Bare& db)
{
    switch (dataSet.family()) {
        case Family::kMedia:
            return FillMedia(dataSet, db);
        case Family::kPlaylists:
            return FillPlaylists(dataSet, db);
        case Family::kBookmarks:
            return FillBookmarks(dataSet, db);
        case Family::kPim:
            return FillPim(dataSet, db);
    }
}

}  // namespace

PrivateFolder::PrivateFolder(const std::filesystem::path& place)
{
    std::string name = (place / "kesta-bench-XXXXXX").string();
    Require(mkdtemp(name.data()) != nullptr, "a private folder");
    path_ = name;
}

PrivateFolder::~PrivateFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

void Require(bool condition, const char* what)
{
    if (condition) {
        return;
    }
    std::fprintf(stderr, "failed: %s\n", what);
    std::exit(1);
}

std::filesystem::path DataSet::database() const
{
    return dataHome() / "NORVIK/NORVIK Sync/Database/KESTA_DB.s3db";
}

DataSet::DataSet(const std::filesystem::path& place, Family family, size_t entries, Letters letters)
    : folder_(place), family_(family), entries_(entries), letters_(letters)
{
    std::filesystem::create_directory(dataHome());
    {
        const Library library(*this);  // makes the database and closes it
        Require(library.PhoneDetected(kImei, u"Anna's phone") == 1, "announcing the phone");
    }
    Bare db(database());
    db.exec("BEGIN");
    Fill(*this, db);
    db.exec("COMMIT");
    db.close();
    std::filesystem::copy_file(database(), bareDatabase());
}

}  // namespace kesta::bench
