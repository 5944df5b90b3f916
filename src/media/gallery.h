// The gallery: picture and video folders seen as one list. Both the order and what is left out are what callers know.
#pragma once

#include "kesta_db/kesta_db.h"

namespace kesta {

/// Merges the video folders into the picture folders. Both are taken to be sorted by path, though they are read in
/// table order: the walk ends with either of them, and what is left of the other is dropped.
void MergeGallery(FolderList& pictures, const FolderList& videos);

}  // namespace kesta
