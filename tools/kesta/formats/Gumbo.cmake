# Target kesta_gumbo: the HTML parser Gumbo 0.10.1, the same sources on both platforms.
#
# Debian has no Gumbo for mingw-w64. The npm package gumbo-parser carries Gumbo's own C sources unchanged; its archive is
# checked against the hash below before anything in it is used.
set(KESTA_GUMBO_PACKAGE gumbo-parser)
set(KESTA_GUMBO_PACKAGE_VERSION 0.3.0)  # Gumbo 0.10.1
set(KESTA_GUMBO_SHA256 d47101b5182186c4646f7eba5107308dbf93392621ae8c12bd35a7d867c8e913)

# One copy serves all presets.
set(deps ${PROJECT_SOURCE_DIR}/build/_deps)
set(archive ${deps}/${KESTA_GUMBO_PACKAGE}-${KESTA_GUMBO_PACKAGE_VERSION}.tgz)
set(gumbo ${deps}/gumbo-${KESTA_GUMBO_PACKAGE_VERSION})

file(MAKE_DIRECTORY ${deps})
file(LOCK ${deps}/gumbo.lock GUARD FILE TIMEOUT 300)
if(NOT EXISTS ${archive})
    find_program(KESTA_NPM npm REQUIRED)
    message(STATUS "Fetching ${KESTA_GUMBO_PACKAGE} ${KESTA_GUMBO_PACKAGE_VERSION}")
    execute_process(
        COMMAND ${KESTA_NPM} pack --silent ${KESTA_GUMBO_PACKAGE}@${KESTA_GUMBO_PACKAGE_VERSION}
        WORKING_DIRECTORY ${deps}
        OUTPUT_QUIET ERROR_VARIABLE npm_errors RESULT_VARIABLE npm_result)
    if(npm_result)
        message(FATAL_ERROR "npm could not fetch Gumbo's sources:\n${npm_errors}")
    endif()
endif()
file(SHA256 ${archive} found)
if(NOT found STREQUAL KESTA_GUMBO_SHA256)
    file(REMOVE ${archive})
    message(FATAL_ERROR "${archive} is not the archive expected: its SHA-256 is ${found}")
endif()
if(NOT EXISTS ${gumbo}/parser.c)
    file(ARCHIVE_EXTRACT INPUT ${archive} DESTINATION ${gumbo}.new PATTERNS "package/deps/gumbo-parser/src/*.[chn]*")
    file(REMOVE_RECURSE ${gumbo})
    file(RENAME ${gumbo}.new/package/deps/gumbo-parser/src ${gumbo})
    file(REMOVE_RECURSE ${gumbo}.new)
endif()
file(LOCK ${deps}/gumbo.lock RELEASE)

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
