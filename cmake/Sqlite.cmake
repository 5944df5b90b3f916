# Target kesta_sqlite: SQLite 3 at one pinned version, linked statically, or the system's. KESTA_SQLITE_VERSION is which.
#
# The amalgamation comes out of the npm package better-sqlite3, which carries SQLite's own sources unchanged.
if(KESTA_SYSTEM_SQLITE)
    find_package(SQLite3 3.37 REQUIRED)
    set(KESTA_SQLITE_VERSION ${SQLite3_VERSION})
    add_library(kesta_sqlite INTERFACE)
    target_link_libraries(kesta_sqlite INTERFACE SQLite::SQLite3)
    return()
endif()

include(FetchFromNpm)
kesta_fetch_from_npm(sqlite  # SQLite 3.54.1
    PACKAGE better-sqlite3 VERSION 13.2.0
    SHA256 40487589df3496f2ee0079d22b73c63fccebe7db0e8ee9a2c42421861e321e0b
    FOLDER deps/sqlite3 FILES "sqlite3.[ch]")

file(STRINGS ${sqlite}/sqlite3.h version REGEX "^#define SQLITE_VERSION  *\"")
string(REGEX REPLACE ".*\"(.*)\".*" "\\1" KESTA_SQLITE_VERSION "${version}")

option(KESTA_SQLITE_PGO "Lay SQLite out by a profile that is taken while building" OFF)

function(kesta_sqlite_settings target)
    target_include_directories(${target} SYSTEM PUBLIC ${sqlite})
    set_target_properties(${target} PROPERTIES
        POSITION_INDEPENDENT_CODE ON C_VISIBILITY_PRESET hidden C_EXTENSIONS ON)
    target_compile_definitions(${target} PRIVATE
        # The library serialises every use of SQLite by its own lock.
        SQLITE_THREADSAFE=0
        # Nothing here reads these figures, declared types, or a shared cache.
        SQLITE_DEFAULT_MEMSTATUS=0
        SQLITE_OMIT_DECLTYPE
        SQLITE_OMIT_SHARED_CACHE
        SQLITE_OMIT_DEPRECATED
        SQLITE_LIKE_DOESNT_MATCH_BLOBS
        SQLITE_USE_ALLOCA
        # Doors that stay closed: callers' texts stand in the statements.
        SQLITE_OMIT_LOAD_EXTENSION)
endfunction()

if(NOT KESTA_SQLITE_PGO)
    add_library(kesta_sqlite STATIC ${sqlite}/sqlite3.c)
    kesta_sqlite_settings(kesta_sqlite)
    target_compile_options(kesta_sqlite PRIVATE ${KESTA_NO_WARNINGS})
    return()
endif()

if(CMAKE_CROSSCOMPILING OR KESTA_SANITIZE OR KESTA_COVERAGE OR NOT CMAKE_C_COMPILER_ID STREQUAL "GNU")
    message(FATAL_ERROR "KESTA_SQLITE_PGO needs a native build by GCC without sanitizers and coverage")
endif()

# SQLite is compiled twice: first counting, for a program that runs what the library does, then with what was counted.
set(profile ${CMAKE_BINARY_DIR}/sqlite-profile)
file(MAKE_DIRECTORY ${profile})
# Where both compilations have the counts, whatever their object files are called.
set(counts ${profile}/sqlite3.gcda)
set(place "SHELL:-dumpdir ${profile}/" "SHELL:-dumpbase sqlite3.c" "SHELL:-dumpbase-ext .c")

# By a name of its own, for the real one has to wait for the counts.
file(CONFIGURE OUTPUT ${profile}/counting.c CONTENT "#include \"${sqlite}/sqlite3.c\"\n" @ONLY)
add_library(kesta_sqlite_counting STATIC EXCLUDE_FROM_ALL ${profile}/counting.c)
kesta_sqlite_settings(kesta_sqlite_counting)
target_compile_options(kesta_sqlite_counting PRIVATE -w -fprofile-generate -fprofile-update=single ${place})

add_executable(kesta_sqlite_training EXCLUDE_FROM_ALL ${PROJECT_SOURCE_DIR}/cmake/sqlite_training.c)
set_target_properties(kesta_sqlite_training PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${profile})
target_link_libraries(kesta_sqlite_training PRIVATE kesta_sqlite_counting m)
target_link_options(kesta_sqlite_training PRIVATE -fprofile-generate)
add_custom_command(
    OUTPUT ${counts}
    COMMAND ${CMAKE_COMMAND} -E rm -f ${counts}
    COMMAND kesta_sqlite_training ${profile}/training.s3db
    DEPENDS kesta_sqlite_training
    COMMENT "Training SQLite")

add_library(kesta_sqlite STATIC ${sqlite}/sqlite3.c ${counts})
kesta_sqlite_settings(kesta_sqlite)
set_property(SOURCE ${sqlite}/sqlite3.c APPEND PROPERTY OBJECT_DEPENDS ${counts})
# Code that the training did not reach is optimised as usual: no function is slower than without a profile.
target_compile_options(kesta_sqlite PRIVATE
    -fprofile-use -fprofile-partial-training -Werror=missing-profile -Werror=coverage-mismatch ${place})
# A compiler cache knows neither these places nor the counts.
set_target_properties(kesta_sqlite kesta_sqlite_counting PROPERTIES C_COMPILER_LAUNCHER "")
