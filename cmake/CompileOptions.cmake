# How the project's own code is compiled. Third-party code is not linked against kesta_options.
add_library(kesta_options INTERFACE)
if(MSVC)
    # The sources are UTF-8, and a C++ standard library function need not be one of Microsoft's own.
    target_compile_options(kesta_options INTERFACE /W4 /permissive- /utf-8 /EHsc /Zc:__cplusplus /Zc:preprocessor)
    target_compile_definitions(kesta_options INTERFACE _CRT_SECURE_NO_WARNINGS NOMINMAX)
    if(PROJECT_IS_TOP_LEVEL)
        target_compile_options(kesta_options INTERFACE /WX)
    endif()
else()
    target_compile_options(kesta_options INTERFACE
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnull-dereference -Wformat=2)
    if(PROJECT_IS_TOP_LEVEL)
        target_compile_options(kesta_options INTERFACE -Werror)
    endif()
    # For C sources the C++-only warnings would be errors themselves.
    target_compile_options(kesta_options INTERFACE
        $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast> $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor>)
    set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")
    set(CMAKE_C_FLAGS_RELEASE "-O2 -DNDEBUG")
endif()

if(KESTA_SANITIZE)
    add_compile_options(-fsanitize=${KESTA_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all -g)
    add_link_options(-fsanitize=${KESTA_SANITIZE})
    add_compile_definitions(KESTA_TEXT_BLOCK=0)  # each text in memory of its own, as the sanitizer wants to see it
endif()
if(KESTA_COVERAGE)
    target_compile_options(kesta_options INTERFACE --coverage -O0 -fprofile-update=atomic)
    target_link_options(kesta_options INTERFACE --coverage)
endif()

# No warnings from code that is not ours.
if(MSVC)
    set(KESTA_NO_WARNINGS /w)
else()
    set(KESTA_NO_WARNINGS -w)
endif()
