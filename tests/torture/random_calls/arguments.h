// What a call passes for a parameter of each type, made of the call's bytes. After the call `check` looks at what the
// library left there.
#pragma once

#include <cstring>
#include <type_traits>
#include <vector>

#include "torture/random_calls/slots.h"
#include "torture/random_calls/values.h"

namespace kesta::test {

struct Caller {
    const Exports& library;
    CallBytes& bytes;
    Texts& texts;
    Slots& slots;
};

/// In so many calls one passes no record, list or place at all.
inline constexpr uint8_t kNullOneIn = 32;

/// A record that the call reads, and in the case of a backup changes.
template <class Parameter>
class Argument {
public:
    using Record = std::remove_const_t<std::remove_pointer_t<Parameter>>;

    explicit Argument(Caller& caller)
    {
        isNull_ = caller.bytes.rarely(kNullOneIn);
        Fill(record_, caller.bytes, caller.texts);
        std::memcpy(&given_, &record_, sizeof record_);
    }
    Parameter value() { return isNull_ ? nullptr : &record_; }
    void check(Caller& /*caller*/)
    {
        if constexpr (std::is_same_v<Record, BackupRecord>) {
            given_.bcID = record_.bcID;
        }
        if (std::memcmp(&given_, &record_, sizeof record_) != 0) {
            Fail("a record was changed that is the caller's");
        }
    }

private:
    bool isNull_ = false;
    Record record_ = {};
    Record given_ = {};
};

template <>
class Argument<int32_t> {
public:
    explicit Argument(Caller& caller) : value_(Number(caller.bytes)) {}
    [[nodiscard]] int32_t value() const { return value_; }
    void check(Caller& /*caller*/) const {}

private:
    int32_t value_;
};

template <>
class Argument<const DbChar*> {
public:
    explicit Argument(Caller& caller) : value_(caller.texts.pick(caller.bytes)) {}
    [[nodiscard]] const DbChar* value() const { return value_; }
    void check(Caller& /*caller*/) const {}

private:
    const DbChar* value_;
};

template <>
class Argument<const DateValue*> {
public:
    explicit Argument(Caller& caller) : isNull_(caller.bytes.rarely(kNullOneIn)), value_(Date(caller.bytes)) {}
    [[nodiscard]] const DateValue* value() const { return isNull_ ? nullptr : &value_; }
    void check(Caller& /*caller*/) const {}

private:
    bool isNull_;
    DateValue value_;
};

/// A place for a number or a date.
template <class Value>
class Place {
public:
    explicit Place(Caller& caller) : isNull_(caller.bytes.rarely(kNullOneIn)) {}
    Value* value() { return isNull_ ? nullptr : &value_; }
    void check(Caller& /*caller*/) const {}

protected:
    bool isNull_;
    Value value_ = {};
};

template <>
struct Argument<int32_t*> : Place<int32_t> {
    using Place::Place;
};

template <>
struct Argument<DateValue*> : Place<DateValue> {
    using Place::Place;
};

template <>
struct Argument<SyncedFileRecord*> : Place<SyncedFileRecord> {
    using Place::Place;
    void check(Caller& caller)
    {
        Check(value_);
        Release(caller.library, value_);
    }
};

/// A record that the caller keeps.
template <class Record>
class KeptRecord {
public:
    explicit KeptRecord(Caller& caller)
        : isNull_(caller.bytes.rarely(kNullOneIn)), record_(std::get<Record>(caller.slots.records))
    {
    }
    Record* value() { return isNull_ ? nullptr : &record_; }
    void check(Caller& /*caller*/) const { Check(record_); }

private:
    bool isNull_;
    Record& record_;
};

template <>
struct Argument<FolderRecord*> : KeptRecord<FolderRecord> {
    using KeptRecord::KeptRecord;
};

template <>
struct Argument<PhoneSettingRecord*> : KeptRecord<PhoneSettingRecord> {
    using KeptRecord::KeptRecord;
};

template <>
struct Argument<BookmarkRecord*> : KeptRecord<BookmarkRecord> {
    using KeptRecord::KeptRecord;
};

template <>
struct Argument<PimFolderRecord*> : KeptRecord<PimFolderRecord> {
    using KeptRecord::KeptRecord;
};

/// A list that the caller keeps, whose count it may have lost.
template <class List>
class KeptList {
public:
    explicit KeptList(Caller& caller)
        : isNull_(caller.bytes.rarely(kNullOneIn)), list_(std::get<List>(caller.slots.lists))
    {
        if (caller.bytes.rarely(8)) {
            list_.Count = list_.Items == nullptr ? Number(caller.bytes) : 0;
        }
    }
    List* value() { return isNull_ ? nullptr : &list_; }
    void check(Caller& /*caller*/) const
    {
        if (!isNull_ && (list_.Count == 0 || list_.Items != nullptr)) {
            CheckList(list_);
        }
    }

private:
    bool isNull_;
    List& list_;
};

#define KESTA_KEPT_LIST(List)                 \
    template <>                               \
    struct Argument<List*> : KeptList<List> { \
        using KeptList::KeptList;             \
    };
KESTA_KEPT_LIST(MainFolderList)
KESTA_KEPT_LIST(PhoneList)
KESTA_KEPT_LIST(FolderList)
KESTA_KEPT_LIST(SyncedFileList)
KESTA_KEPT_LIST(PlaylistList)
KESTA_KEPT_LIST(BookmarkList)
KESTA_KEPT_LIST(BackupList)
KESTA_KEPT_LIST(PimFolderList)
KESTA_KEPT_LIST(PimItemList)
#undef KESTA_KEPT_LIST

/// An array that the caller makes: some elements, none, or a count that has no elements to it.
template <class Element>
class GivenArray {
public:
    explicit GivenArray(Caller& caller)
    {
        static constexpr std::array<uint8_t, 8> kCounts = {1, 2, 3, 0, 5, 8, 20, 1};
        elements.resize(caller.bytes.oneOf(kCounts));
        for (Element& element : elements) {
            if constexpr (std::is_pointer_v<Element>) {
                element = caller.texts.pick(caller.bytes);
            } else {
                Fill(element, caller.bytes, caller.texts);
            }
        }
        count = static_cast<int32_t>(elements.size());
        if (!caller.bytes.rarely(8)) {
            return;
        }
        count = Number(caller.bytes);
        if (count > 0) {
            elements = {};
        }
    }

    Element* items() { return elements.empty() ? nullptr : elements.data(); }

    int32_t count = 0;

private:
    std::vector<Element> elements;
};

template <>
class Argument<const FileNameArray*> {
public:
    explicit Argument(Caller& caller) : isNull_(caller.bytes.rarely(kNullOneIn)), given_(caller)
    {
        array_ = {given_.count, given_.items()};
    }
    [[nodiscard]] const FileNameArray* value() const { return isNull_ ? nullptr : &array_; }
    void check(Caller& /*caller*/) const {}

private:
    bool isNull_;
    GivenArray<DbChar*> given_;
    FileNameArray array_ = {};
};

template <>
class Argument<const PimLog*> {
public:
    explicit Argument(Caller& caller)
        : isNull_(caller.bytes.rarely(kNullOneIn)), type_(Number(caller.bytes)), given_(caller)
    {
        log_ = {type_, given_.count, given_.items()};
    }
    [[nodiscard]] const PimLog* value() const { return isNull_ ? nullptr : &log_; }
    void check(Caller& /*caller*/) const {}

private:
    bool isNull_;
    int32_t type_;
    GivenArray<PimLogItem> given_;
    PimLog log_ = {};
};

template <>
class Argument<PimLog*> {
public:
    explicit Argument(Caller& caller) : isNull_(caller.bytes.rarely(kNullOneIn)), log_(caller.slots.log)
    {
        log_.Type = Number(caller.bytes);
    }
    PimLog* value() { return isNull_ ? nullptr : &log_; }
    void check(Caller& /*caller*/) const { CheckList(log_); }

private:
    bool isNull_;
    PimLog& log_;
};

template <>
class Argument<FileNameArray*> {
public:
    explicit Argument(Caller& caller) : isNull_(caller.bytes.rarely(kNullOneIn)), names_(caller.slots.names)
    {
        if (names_.Items == nullptr && caller.bytes.rarely(8)) {
            names_.Count = Number(caller.bytes);
        }
    }
    FileNameArray* value() { return isNull_ ? nullptr : &names_; }
    void check(Caller& /*caller*/) const
    {
        if (names_.Items == nullptr) {
            return;
        }
        if (names_.Count < 0) {
            Fail("an array counts %d names", names_.Count);
        }
        for (int32_t i = 0; i < names_.Count; ++i) {
            if (names_.Items[i] == nullptr) {
                Fail("an array holds no name at %d", i);
            }
            (void)TextView(names_.Items[i]);
        }
    }

private:
    bool isNull_;
    FileNameArray& names_;
};

/// The buffer of a profile.
template <>
class Argument<DbChar*> {
public:
    explicit Argument(Caller& caller) : value_(caller.bytes.rarely(kNullOneIn) ? nullptr : caller.slots.buffer.get()) {}
    [[nodiscard]] DbChar* value() const { return value_; }
    void check(Caller& caller) const { (void)TextView(caller.slots.buffer.get()); }

private:
    DbChar* value_;
};

/// Where the store's profile is put.
template <>
class Argument<DbChar**> {
public:
    explicit Argument(Caller& caller) : isNull_(caller.bytes.rarely(kNullOneIn)), slot_(caller.slots.profile) {}
    DbChar** value() { return isNull_ ? nullptr : &slot_; }
    void check(Caller& /*caller*/) const
    {
        if (slot_ != nullptr) {
            (void)TextView(slot_);
        }
    }

private:
    bool isNull_;
    DbChar*& slot_;
};

template <>
class Argument<DbChar* const*> {
public:
    explicit Argument(Caller& caller) : isNull_(caller.bytes.rarely(kNullOneIn)), text_(caller.texts.pick(caller.bytes))
    {
    }
    DbChar* const* value() { return isNull_ ? nullptr : &text_; }
    void check(Caller& /*caller*/) const {}

private:
    bool isNull_;
    DbChar* text_;
};

}  // namespace kesta::test
