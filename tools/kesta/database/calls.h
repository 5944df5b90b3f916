// What every wrapper of the library's exports needs: texts and null texts, lists that give back what they hold, and
// failures as a DatabaseError. For database.cpp and database/ only.
#pragma once

#include <fmt/format.h>
#include <kesta_db/kesta_db.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/text.h"
#include "database/database.h"
#include "database/empty_answer.h"

namespace kesta::calls {

/// Asking for something of a phone that does not exist makes the library take back what the record holds.
inline constexpr DbChar kNoPhone[] = {'n', 'o', ' ', 'p', 'h', 'o', 'n', 'e', 0};

/// Throws when the text is not valid UTF-8 or holds a zero character.
[[nodiscard]] inline DbText Text(const std::string& utf8)
{
    auto text = ToDbText(utf8);
    if (!text) {
        throw DatabaseError(fmt::format("'{}' is not valid text", Printable(utf8)));
    }
    return *std::move(text);
}

/// A text argument for which null and the empty text mean different things: nothing is null.
class OptionalText {
public:
    explicit OptionalText(const std::optional<std::string>& utf8)
    {
        if (utf8) {
            text_ = Text(*utf8);
        }
    }
    /// The library only reads it; the fields of records are not const because it also hands records out.
    [[nodiscard]] DbChar* get() { return text_ ? text_->data() : nullptr; }

private:
    std::optional<DbText> text_;
};

/// Null is nothing, the empty text is a text.
[[nodiscard]] inline std::optional<std::string> FromOptionalText(const DbChar* text)
{
    if (text == nullptr) {
        return std::nullopt;
    }
    return FromDbText(text);
}

/// A list record that gives its contents back by the call that it is made with. A list for which no argument makes the
/// library empty it has no such call: keep one static record of it and pass that in every time.
template <class List>
class OwnedList {
public:
    explicit OwnedList(std::function<void(List*)> release) : release_(std::move(release)) {}
    OwnedList(const OwnedList&) = delete;
    OwnedList& operator=(const OwnedList&) = delete;
    ~OwnedList()
    {
        if (list_.Items != nullptr) {
            release_(&list_);
        }
    }
    [[nodiscard]] List* get() { return &list_; }
    [[nodiscard]] auto begin() const { return list_.Items; }
    [[nodiscard]] auto end() const { return list_.Items + list_.Count; }
    [[nodiscard]] size_t size() const { return static_cast<size_t>(list_.Count); }

private:
    List list_{};
    std::function<void(List*)> release_;
};

/// Reads a list by a call that answers with a result code; count is the list's own. Another process may add a row
/// between the library's count and its query; the list is then asked for again. Throws when the list stays empty, but
/// not for want of rows.
template <class Call>
void ReadList(std::string_view call, const Call& read, const int32_t& count)
{
    AskUntilBelieved(call, [&] {
        Result result = read();
        for (int again = 0; result.isOneRowTooMany() && again < 10; ++again) {
            result = read();
        }
        Require(call, result);
        return count > 0;
    });
}

[[nodiscard]] inline std::vector<RecordedFolder> ToFolders(const OwnedList<FolderList>& list)
{
    std::vector<RecordedFolder> folders;
    folders.reserve(list.size());
    for (const FolderRecord& record : list) {
        folders.push_back({record.RowId, FromDbText(record.Path), record.Count, record.Size, record.TotalSize,
                           record.Selected != 0, record.Deleted != 0, record.Sized != 0,
                           FromDateValue(record.AddTime)});
    }
    return folders;
}

[[nodiscard]] inline std::vector<RecordedFile> ToFiles(const OwnedList<SyncedFileList>& list)
{
    std::vector<RecordedFile> files;
    files.reserve(list.size());
    for (const SyncedFileRecord& record : list) {
        files.push_back({FromDbText(record.Path), FromDbText(record.BasePath), FromDbText(record.PhonePath),
                         FromDateValue(record.ModifiedTime)});
    }
    return files;
}

/// A file as an argument. The library only reads the texts of a record that the caller fills; its fields are not const
/// because it also hands such records out.
struct FileArguments {
    explicit FileArguments(const RecordedFile& file)
        : path(Text(file.path)),
          basePath(Text(file.basePath)),
          phonePath(Text(file.phonePath)),
          record{ToDateValue(file.modified), path.data(), basePath.data(), phonePath.data()}
    {
    }
    FileArguments(const FileArguments&) = delete;
    FileArguments& operator=(const FileArguments&) = delete;

    DbText path, basePath, phonePath;
    SyncedFileRecord record;
};

}  // namespace kesta::calls
