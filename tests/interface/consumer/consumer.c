#include <kesta_db/kesta_db.h>

int main(void)
{
    PhoneList phones = {0, 0};
    return DB_LIB_GetAllPhones(&phones) == 0 && phones.Count == 0 ? 0 : 1;
}
