#pragma once

inline int Half(int number)
{
    return number / 2;
}

extern "C" int Answer();
extern "C" int NobodyAsks();
