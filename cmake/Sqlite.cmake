# Target kesta_sqlite: SQLite 3 at one pinned version, linked statically, or the system's.
#
# The amalgamation comes out of the npm package better-sqlite3, which carries SQLite's own sources unchanged. Its archive
# is checked against the hash below before anything in it is used.
if(KESTA_SYSTEM_SQLITE)
    find_package(SQLite3 3.37 REQUIRED)
    add_library(kesta_sqlite INTERFACE)
    target_link_libraries(kesta_sqlite INTERFACE SQLite::SQLite3)
    return()
endif()

set(KESTA_SQLITE_PACKAGE better-sqlite3)
set(KESTA_SQLITE_PACKAGE_VERSION 13.2.0)  # SQLite 3.54.1
set(KESTA_SQLITE_SHA256 40487589df3496f2ee0079d22b73c63fccebe7db0e8ee9a2c42421861e321e0b)

# One copy serves all presets.
set(deps ${CMAKE_SOURCE_DIR}/build/_deps)
set(archive ${deps}/${KESTA_SQLITE_PACKAGE}-${KESTA_SQLITE_PACKAGE_VERSION}.tgz)
set(sqlite ${deps}/sqlite-${KESTA_SQLITE_PACKAGE_VERSION})

file(MAKE_DIRECTORY ${deps})
file(LOCK ${deps}/sqlite.lock GUARD FILE TIMEOUT 300)
if(NOT EXISTS ${archive})
    find_program(KESTA_NPM npm REQUIRED)
    message(STATUS "Fetching ${KESTA_SQLITE_PACKAGE} ${KESTA_SQLITE_PACKAGE_VERSION}")
    execute_process(
        COMMAND ${KESTA_NPM} pack --silent ${KESTA_SQLITE_PACKAGE}@${KESTA_SQLITE_PACKAGE_VERSION}
        WORKING_DIRECTORY ${deps}
        OUTPUT_QUIET ERROR_VARIABLE npm_errors RESULT_VARIABLE npm_result)
    if(npm_result)
        message(FATAL_ERROR "npm could not fetch SQLite's sources:\n${npm_errors}")
    endif()
endif()
file(SHA256 ${archive} found)
if(NOT found STREQUAL KESTA_SQLITE_SHA256)
    file(REMOVE ${archive})
    message(FATAL_ERROR "${archive} is not the archive expected: its SHA-256 is ${found}")
endif()
if(NOT EXISTS ${sqlite}/sqlite3.c)
    file(ARCHIVE_EXTRACT INPUT ${archive} DESTINATION ${sqlite}.new PATTERNS "package/deps/sqlite3/sqlite3.[ch]")
    file(REMOVE_RECURSE ${sqlite})
    file(RENAME ${sqlite}.new/package/deps/sqlite3 ${sqlite})
    file(REMOVE_RECURSE ${sqlite}.new)
endif()
file(LOCK ${deps}/sqlite.lock RELEASE)

add_library(kesta_sqlite STATIC ${sqlite}/sqlite3.c)
target_include_directories(kesta_sqlite SYSTEM PUBLIC ${sqlite})
set_target_properties(kesta_sqlite PROPERTIES POSITION_INDEPENDENT_CODE ON C_VISIBILITY_PRESET hidden
    C_EXTENSIONS ON)
target_compile_definitions(kesta_sqlite PRIVATE
    # The library serialises every use of SQLite by its own lock.
    SQLITE_THREADSAFE=0
    # Nothing here reads these figures, declared types, notices of progress, or a shared cache.
    SQLITE_DEFAULT_MEMSTATUS=0
    SQLITE_OMIT_DECLTYPE
    SQLITE_OMIT_PROGRESS_CALLBACK
    SQLITE_OMIT_SHARED_CACHE
    SQLITE_OMIT_DEPRECATED
    SQLITE_LIKE_DOESNT_MATCH_BLOBS
    SQLITE_USE_ALLOCA
    # Doors that stay closed: callers' texts stand in the statements.
    SQLITE_OMIT_LOAD_EXTENSION)
target_compile_options(kesta_sqlite PRIVATE -w)
