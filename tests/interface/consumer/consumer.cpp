#include <kesta_db/kesta_db.h>

int main()
{
    PhoneList phones = {};
    return DB_LIB_GetAllPhones(&phones) == 0 && phones.Count == 0 ? 0 : 1;
}
