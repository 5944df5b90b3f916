// What kesta doctor looks at. Nothing here calls the library: its lists may be empty for a database that is damaged,
// and its calls wait for other programs without limit.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "database/database_file.h"
#include "doctor/findings.h"

namespace kesta {

/// What the checks ask more than once.
struct DoctorContext {
    std::optional<std::string> phone;  // the folder that the user names
    std::vector<PhoneRow> phones;      // of the database, once it has been checked
    bool isReadable = false;           // the database
};

/// A table of files, and the folder of the phone in which the client keeps what it records there.
struct FileTable {
    const char* table;
    std::string_view folder;
};
[[nodiscard]] std::array<FileTable, 5> FileTables();

/// Whether the file is the database that is known, and intact.
void CheckDatabase(DoctorContext& context, Findings& findings);
/// Rows that belong to nothing.
void CheckRows(const DoctorContext& context, Findings& findings);
/// What is recorded for each phone that is mounted, against what lies on it.
void CheckPhones(const DoctorContext& context, Findings& findings);
void CheckStateFiles(const DoctorContext& context, Findings& findings);
void CheckDiskSpace(const DoctorContext& context, Findings& findings);
void CheckPermissions(const DoctorContext& context, Findings& findings);
void CheckTraceSocket(Findings& findings);
void CheckMutex(Findings& findings);

/// The folders of the phones that can be looked at now, with what their markers say.
struct MountedPhone {
    std::string path, imei, name;
};
[[nodiscard]] std::vector<MountedPhone> MountedPhones(const DoctorContext& context);

}  // namespace kesta
