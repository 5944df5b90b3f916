// The library under test, loaded like a caller's plug-in: nothing is linked, so that loading and unloading are part of
// what a test can do.
#pragma once

#include <memory>
#include <string>

#include "kesta_db/kesta_db.h"
#include "support/data_folder.h"

namespace kesta::test {

class SharedObject;

/// One function pointer for every export, under its own name.
struct Exports {
#define KESTA_EXPORT(name, ordinal) decltype(&::name) name = nullptr;
#include "support/export_list.inc"
#undef KESTA_EXPORT
};

/// `lib.DB_MUSIC_AddFolder(...)` calls the export.
class Library : public Exports {
public:
    /// Loads the library, which opens or makes its database in `data`.
    explicit Library(const DataFolder& data);
    /// For a program started by a test, which inherits the data folder.
    Library();
    ~Library();
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    void unload();
    void load();

    [[nodiscard]] const std::filesystem::path& databasePath() const { return databasePath_; }

    static std::string path();

private:
    std::filesystem::path databasePath_;
    std::unique_ptr<SharedObject> object_;
};

}  // namespace kesta::test
