/* The header alone, in C, twice. */
#include "kesta_db/kesta_db.h"

int32_t KESTA_DB_CALL (*kesta_header_open)(void);
DbChar kesta_header_text[1];
