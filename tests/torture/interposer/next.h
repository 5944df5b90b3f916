// The function that the interposer stands in front of.
#pragma once

#include <dlfcn.h>

// A lambda so that each place looks its function up once.
#define NEXT(name)                                                                             \
    ([]() noexcept {                                                                           \
        static const auto next = reinterpret_cast<decltype(&(name))>(dlsym(RTLD_NEXT, #name)); \
        return next;                                                                           \
    }())
