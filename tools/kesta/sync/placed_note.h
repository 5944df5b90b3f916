// In the phone's root while files get to their paths there and are not recorded yet: the run after a killed one finds
// them by it, however many they are.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "phone/phone_folder.h"
#include "phone/put_text.h"

namespace kesta {

struct PlacedFile {
    std::string phonePath;
    std::optional<uint64_t> size;  // none: it is written in place, and any part of it may be there
};

struct PlacedNotes {
    std::vector<PlacedFile> files;
    std::vector<std::string> names;  // of the notes, in the phone's root
};

/// To be flushed before the first of the files is placed. number: of the note, when there are several.
os::Status WritePlacedNote(const PhoneFolder& phone, size_t number, const std::vector<PlacedFile>& files,
                           os::Flush flush = os::Flush::kNow);
os::Status RemovePlacedNote(const PhoneFolder& phone, size_t number);
/// What a killed run has left.
os::Status ReadPlacedNotes(const PhoneFolder& phone, PlacedNotes& notes);

}  // namespace kesta
