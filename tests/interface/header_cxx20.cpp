// The header alone, in C++, twice.
#include "kesta_db/kesta_db.h"

static_assert(sizeof(DbChar) == 2);
