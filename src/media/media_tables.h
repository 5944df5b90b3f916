// The tables and views of one kind of media. The engine works for every four of this shape.
#pragma once

#include "core/format.h"

namespace kesta {

struct MediaTables {
    Name folders;
    Name folderView;
    Name files;
    Name fileView;
};

}  // namespace kesta
