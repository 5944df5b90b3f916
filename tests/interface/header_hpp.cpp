// The C++ interface alone, twice.
#include "kesta_db/kesta_db.hpp"
