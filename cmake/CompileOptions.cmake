# How the project's own code is compiled. Third-party code is not linked against kesta_options.
add_library(kesta_options INTERFACE)
target_compile_options(kesta_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wnon-virtual-dtor
    -Wnull-dereference -Wformat=2)
if(PROJECT_IS_TOP_LEVEL)
    target_compile_options(kesta_options INTERFACE -Werror)
endif()
# For C sources the C++-only warnings would be errors themselves.
get_target_property(options kesta_options INTERFACE_COMPILE_OPTIONS)
list(REMOVE_ITEM options -Wold-style-cast -Wnon-virtual-dtor)
set_property(TARGET kesta_options PROPERTY INTERFACE_COMPILE_OPTIONS
    ${options} $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast> $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor>)

set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")
set(CMAKE_C_FLAGS_RELEASE "-O2 -DNDEBUG")

if(KESTA_SANITIZE)
    add_compile_options(-fsanitize=${KESTA_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all -g)
    add_link_options(-fsanitize=${KESTA_SANITIZE})
endif()
if(KESTA_COVERAGE)
    target_compile_options(kesta_options INTERFACE --coverage -O0 -fprofile-update=atomic)
    target_link_options(kesta_options INTERFACE --coverage)
endif()
