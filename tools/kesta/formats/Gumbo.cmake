# Target kesta_gumbo: the HTML parser Gumbo 0.10.1, the same sources on both platforms.
#
# Debian has no Gumbo for mingw-w64. The npm package gumbo-parser carries Gumbo's own C sources unchanged.
option(KESTA_SYSTEM_GUMBO "Link the system's Gumbo instead of the pinned one" OFF)
if(KESTA_SYSTEM_GUMBO)
    find_package(PkgConfig REQUIRED)
    pkg_check_modules(KESTA_GUMBO REQUIRED IMPORTED_TARGET gumbo)
    add_library(kesta_gumbo INTERFACE)
    target_link_libraries(kesta_gumbo INTERFACE PkgConfig::KESTA_GUMBO)
    return()
endif()

include(FetchFromNpm)
kesta_fetch_from_npm(gumbo  # Gumbo 0.10.1
    PACKAGE gumbo-parser VERSION 0.3.0
    SHA256 d47101b5182186c4646f7eba5107308dbf93392621ae8c12bd35a7d867c8e913
    FOLDER deps/gumbo-parser/src FILES "*.[chn]*")

add_library(kesta_gumbo STATIC
    ${gumbo}/attribute.c
    ${gumbo}/char_ref.c
    ${gumbo}/error.c
    ${gumbo}/parser.c
    ${gumbo}/string_buffer.c
    ${gumbo}/string_piece.c
    ${gumbo}/tag.c
    ${gumbo}/tokenizer.c
    ${gumbo}/utf8.c
    ${gumbo}/util.c
    ${gumbo}/vector.c)
# A folder for the public headers alone: one beside them is called utf8.h like another library's.
foreach(header gumbo.h tag_enum.h)
    configure_file(${gumbo}/${header} ${CMAKE_CURRENT_BINARY_DIR}/gumbo/${header} COPYONLY)
endforeach()
target_include_directories(kesta_gumbo SYSTEM PUBLIC ${CMAKE_CURRENT_BINARY_DIR}/gumbo)
set_target_properties(kesta_gumbo PROPERTIES POSITION_INDEPENDENT_CODE ON C_VISIBILITY_PRESET hidden C_EXTENSIONS ON)
# Gumbo does not expect an allocation to fail. The allocator given to it throws instead, through Gumbo's own frames.
target_compile_options(kesta_gumbo PRIVATE -w -fexceptions)
