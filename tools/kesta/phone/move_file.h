// Moves a file of the phone where the mount does not rename: by copying it.
#pragma once

#include <string>

#include "phone/phone_folder.h"

namespace kesta {

/// In the phone's root while a file is moved so: where it comes from and where it goes.
inline constexpr std::string_view kMoveNote = ".kesta-move";

/// The folder of the new path exists, and nothing lies there. Whatever the outcome, one whole file is at either path.
os::Status MoveByCopying(const PhoneFolder& phone, const std::string& phonePath, const std::string& newPath);
/// Whether a killed run has left such a move.
[[nodiscard]] bool IsMoveUnfinished(const PhoneFolder& phone);
/// Removes what that move has copied while the file still lies where it was.
os::Status UndoUnfinishedMove(const PhoneFolder& phone);

}  // namespace kesta
