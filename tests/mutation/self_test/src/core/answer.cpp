#include "core/answer.h"

int Answer()
{
    return 42;
}

int NobodyAsks()
{
    return 7;
}
