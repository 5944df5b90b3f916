// The file names that make up a playlist, kept by IMEI and list name.
#include "core/text.h"
#include "platform/caller_allocator.h"
#include "playlists/playlists.h"

namespace kesta::playlists {
namespace {

/// Appends texts to a caller's array, which it grows with the caller's allocator.
class Appender {
public:
    explicit Appender(FileNameArray& names)
        : names_(names), room_(static_cast<int32_t>(Elements(names.Items, names.Count).size()))
    {
        names_.Count = room_;
    }

    /// The text that the trace announces is the one handed over; an empty one is handed over without a line.
    void append(const DbChar* text)
    {
        if (names_.Count == room_) {
            grow();
        }
        const size_t length = text != nullptr ? LengthOf(text) : 0;
        auto* copy = static_cast<DbChar*>(platform::AllocateForCaller((length + 1) * sizeof(DbChar)));
        if (copy == nullptr) {
            throw std::bad_alloc();
        }
        if (length != 0) {
            std::copy_n(text, length, copy);
            TraceNew(copy);
        }
        copy[length] = 0;
        names_.Items[names_.Count++] = copy;
    }

private:
    void grow()
    {
        const int32_t room = room_ < 8 ? 8 : room_ + room_ / 2;
        void* items = platform::ReallocateForCaller(names_.Items, static_cast<size_t>(room) * sizeof(DbChar*));
        if (items == nullptr) {
            throw std::bad_alloc();
        }
        names_.Items = static_cast<DbChar**>(items);
        room_ = room;
    }

    FileNameArray& names_;
    int32_t room_;
};

}  // namespace

ResultCode SetListFilesname(Routine self, const DbChar* imei, const DbChar* list, const FileNameArray& names)
{
    // Deliberate: the IMEI goes in as it is. A statement that fails is told and does not show in the result.
    (void)self.run(
        1, WideSql("DELETE FROM tPFilename WHERE [IMEI] = '%s' AND [Listname] = '%s';", Plain{imei}, Escaped{list}));
    // Deliberate: from the last to the first. Reading goes by the table's key and does not show it.
    const std::span<DbChar* const> elements = Elements(names.Items, names.Count);
    for (auto name = elements.rbegin(); name != elements.rend(); ++name) {
        (void)self.run(2, WideSql("INSERT INTO tPFilename ([IMEI], [Listname], [Filename]) VALUES ('%s', '%s', '%s');",
                                  Plain{imei}, Escaped{list}, Escaped{*name}));
    }
    return ResultCode::kSuccess;
}

ResultCode GetListFilesname(Routine self, const DbChar* imei, const DbChar* list, FileNameArray& names)
{
    return self.query(3,
                      WideSql("SELECT [Filename] FROM tPFilename WHERE [IMEI] = '%s' AND [Listname] = '%s';",
                              Plain{imei}, Escaped{list}),
                      [&](Statement& rows) {
                          Appender appender(names);
                          while (rows.step()) {
                              appender.append(rows.wideText(0));
                          }
                          return ResultCode::kSuccess;
                      });
}

}  // namespace kesta::playlists
