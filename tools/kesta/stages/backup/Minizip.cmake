# Target kesta_minizip: the ZIP library minizip 2.8.7 over zlib, the same sources on both platforms.
#
# Debian has no minizip for mingw-w64. The npm package react-native-zip-archive carries minizip's own C sources.
# zlib comes from Debian (zlib1g-dev, libz-mingw-w64-dev).
option(KESTA_SYSTEM_MINIZIP "Link the system's minizip 2 instead of the pinned one" OFF)
if(KESTA_SYSTEM_MINIZIP)
    find_package(PkgConfig REQUIRED)
    # Debian 12 has minizip 1 alone, whose functions are others; so are those of minizip 3.
    pkg_check_modules(KESTA_MINIZIP REQUIRED IMPORTED_TARGET minizip>=2.8 minizip<3)
    add_library(kesta_minizip INTERFACE)
    target_link_libraries(kesta_minizip INTERFACE PkgConfig::KESTA_MINIZIP)
    return()
endif()

include(FetchFromNpm)
kesta_fetch_from_npm(minizip  # minizip 2.8.7
    PACKAGE react-native-zip-archive VERSION 4.1.5
    SHA256 2a4a854f0f83e8a3184043398f2629f198ec4c88fc157b8337f6aecc14fad847
    FOLDER ios/SSZipArchive/minizip FILES "*")

# Linked statically, so that the archive runs wherever it is unpacked; a distribution's package takes the distribution's.
option(KESTA_SHARED_ZLIB "Link the system's shared zlib instead of the static one" OFF)
if(KESTA_SHARED_ZLIB)
    find_library(KESTA_ZLIB_SHARED NAMES z REQUIRED)
    set(zlib ${KESTA_ZLIB_SHARED})
else()
    find_library(KESTA_ZLIB NAMES libz.a REQUIRED)
    set(zlib ${KESTA_ZLIB})
endif()
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
target_link_libraries(kesta_minizip PRIVATE ${zlib})
set_target_properties(kesta_minizip PROPERTIES POSITION_INDEPENDENT_CODE ON C_VISIBILITY_PRESET hidden C_EXTENSIONS ON)
target_compile_options(kesta_minizip PRIVATE -w)
