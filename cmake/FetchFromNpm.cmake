# C sources that an npm package carries unchanged, where Debian has none for every platform.
#
# kesta_fetch_from_npm(RESULT PACKAGE name VERSION version SHA256 hash FOLDER folder-in-the-archive FILES pattern)
#
# RESULT receives the folder with the files of FOLDER that match. The archive is checked against its hash before anything
# in it is used. It lies in KESTA_DEPS_DIR, where one copy serves several builds; with all archives there nothing is
# fetched, and no network is needed.
set(deps_dir ${PROJECT_BINARY_DIR}/_deps)
if(EXISTS ${PROJECT_SOURCE_DIR}/build/_deps)  # where the presets and the source archive have them
    set(deps_dir ${PROJECT_SOURCE_DIR}/build/_deps)
endif()
set(KESTA_DEPS_DIR ${deps_dir} CACHE PATH "Where fetched sources lie")

function(kesta_fetch_from_npm result)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "PACKAGE;VERSION;SHA256;FOLDER;FILES" "")
    set(deps ${KESTA_DEPS_DIR})
    set(name ${arg_PACKAGE}-${arg_VERSION})
    set(archive ${deps}/${name}.tgz)
    set(sources ${deps}/${name})

    file(MAKE_DIRECTORY ${deps})
    file(LOCK ${deps}/${arg_PACKAGE}.lock GUARD FUNCTION TIMEOUT 300)
    if(NOT EXISTS ${archive})
        find_program(KESTA_NPM npm REQUIRED)
        message(STATUS "Fetching ${arg_PACKAGE} ${arg_VERSION}")
        execute_process(
            COMMAND ${KESTA_NPM} pack --silent ${arg_PACKAGE}@${arg_VERSION}
            WORKING_DIRECTORY ${deps}
            OUTPUT_QUIET ERROR_VARIABLE npm_errors RESULT_VARIABLE npm_result)
        if(npm_result)
            message(FATAL_ERROR "npm could not fetch ${arg_PACKAGE}:\n${npm_errors}")
        endif()
    endif()
    file(SHA256 ${archive} found)
    if(NOT found STREQUAL arg_SHA256)
        file(REMOVE ${archive})
        message(FATAL_ERROR "${archive} is not the archive expected: its SHA-256 is ${found}")
    endif()
    if(NOT EXISTS ${sources})
        file(REMOVE_RECURSE ${sources}.new)
        file(ARCHIVE_EXTRACT INPUT ${archive} DESTINATION ${sources}.new PATTERNS "package/${arg_FOLDER}/${arg_FILES}")
        file(RENAME ${sources}.new/package/${arg_FOLDER} ${sources})
        file(REMOVE_RECURSE ${sources}.new)
    endif()
    set(${result} ${sources} PARENT_SCOPE)
endfunction()
