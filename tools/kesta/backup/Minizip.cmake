# Target kesta_minizip: the ZIP library minizip 2.8.7 over zlib, the same sources on both platforms.
#
# Debian has no minizip for mingw-w64. The npm package react-native-zip-archive carries minizip's own C sources; its
# archive is checked against the hash below before anything in it is used. zlib comes from Debian (zlib1g-dev,
# libz-mingw-w64-dev) and is linked statically.
set(KESTA_MINIZIP_PACKAGE react-native-zip-archive)
set(KESTA_MINIZIP_PACKAGE_VERSION 4.1.5)  # minizip 2.8.7
set(KESTA_MINIZIP_SHA256 2a4a854f0f83e8a3184043398f2629f198ec4c88fc157b8337f6aecc14fad847)

# One copy serves all presets.
set(deps ${PROJECT_SOURCE_DIR}/build/_deps)
set(archive ${deps}/${KESTA_MINIZIP_PACKAGE}-${KESTA_MINIZIP_PACKAGE_VERSION}.tgz)
set(minizip ${deps}/minizip-${KESTA_MINIZIP_PACKAGE_VERSION})

file(MAKE_DIRECTORY ${deps})
file(LOCK ${deps}/minizip.lock GUARD FILE TIMEOUT 300)
if(NOT EXISTS ${archive})
    find_program(KESTA_NPM npm REQUIRED)
    message(STATUS "Fetching ${KESTA_MINIZIP_PACKAGE} ${KESTA_MINIZIP_PACKAGE_VERSION}")
    execute_process(
        COMMAND ${KESTA_NPM} pack --silent ${KESTA_MINIZIP_PACKAGE}@${KESTA_MINIZIP_PACKAGE_VERSION}
        WORKING_DIRECTORY ${deps}
        OUTPUT_QUIET ERROR_VARIABLE npm_errors RESULT_VARIABLE npm_result)
    if(npm_result)
        message(FATAL_ERROR "npm could not fetch minizip's sources:\n${npm_errors}")
    endif()
endif()
file(SHA256 ${archive} found)
if(NOT found STREQUAL KESTA_MINIZIP_SHA256)
    file(REMOVE ${archive})
    message(FATAL_ERROR "${archive} is not the archive expected: its SHA-256 is ${found}")
endif()
if(NOT EXISTS ${minizip}/mz_zip.c)
    file(ARCHIVE_EXTRACT INPUT ${archive} DESTINATION ${minizip}.new PATTERNS "package/ios/SSZipArchive/minizip/*")
    file(REMOVE_RECURSE ${minizip})
    file(RENAME ${minizip}.new/package/ios/SSZipArchive/minizip ${minizip})
    file(REMOVE_RECURSE ${minizip}.new)
endif()
file(LOCK ${deps}/minizip.lock RELEASE)

find_library(KESTA_ZLIB NAMES libz.a REQUIRED)
find_path(KESTA_ZLIB_HEADERS zlib.h REQUIRED)

# Without encryption and the streams of its own for files: the client has its own.
add_library(kesta_minizip STATIC
    ${minizip}/mz_crypt.c
    ${minizip}/mz_strm.c
    ${minizip}/mz_strm_mem.c
    ${minizip}/mz_strm_zlib.c
    ${minizip}/mz_zip.c)
target_compile_definitions(kesta_minizip PUBLIC HAVE_STDINT_H HAVE_INTTYPES_H PRIVATE HAVE_ZLIB MZ_ZIP_NO_ENCRYPTION)
target_include_directories(kesta_minizip SYSTEM PUBLIC ${minizip} PRIVATE ${KESTA_ZLIB_HEADERS})
target_link_libraries(kesta_minizip PRIVATE ${KESTA_ZLIB})
set_target_properties(kesta_minizip PROPERTIES POSITION_INDEPENDENT_CODE ON C_VISIBILITY_PRESET hidden C_EXTENSIONS ON)
target_compile_options(kesta_minizip PRIVATE -w)
