# What cpack makes: Debian packages (runtime, development, client) when installed to /usr, else one archive.
set(CPACK_PACKAGE_NAME kesta-db)
set(CPACK_PACKAGE_VENDOR KESTA)
set(CPACK_PACKAGE_CONTACT "The KESTA_DB developers <kesta-db@example.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_STRIP_FILES ON)
set(CPACK_THREADS 0)

# Without a grant of the owner's nobody may distribute it; the packages say so themselves.
set(documents ${PROJECT_BINARY_DIR}/packaging)
set(KESTA_NOTICES_FILE "" CACHE FILEPATH "The notices of what is built in, which packaging/notices.py writes")
set(KESTA_NOTICES "")
if(KESTA_NOTICES_FILE)
    file(READ ${KESTA_NOTICES_FILE} KESTA_NOTICES)
endif()
configure_file(${PROJECT_SOURCE_DIR}/packaging/copyright.in ${documents}/copyright @ONLY)

if(WIN32)
    set(CPACK_GENERATOR ZIP)
    set(CPACK_PACKAGE_FILE_NAME kesta-db-${PROJECT_VERSION}-windows-${CMAKE_SYSTEM_PROCESSOR})
    set(CPACK_STRIP_FILES OFF)  # packaging/windows.sh has split the symbols off
else()
    set(CPACK_GENERATOR TGZ)
    set(CPACK_PACKAGE_FILE_NAME kesta-db-${PROJECT_VERSION}-linux-${CMAKE_SYSTEM_PROCESSOR})
endif()
if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    install(FILES ${documents}/copyright ${PROJECT_SOURCE_DIR}/CHANGELOG.md DESTINATION share/doc/kesta-db
        COMPONENT runtime)
    include(CPack)
    return()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_COMPONENTS_ALL runtime development)
if(KESTA_BUILD_TOOLS)
    list(APPEND CPACK_COMPONENTS_ALL client)
endif()

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libkesta-db${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "Which phones a PC has met and how each is set up, which folders, files,
playlists, bookmarks, contacts and calendars have been synced to them, in
one SQLite file. This package has the shared library.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libkesta-db-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME} (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "What programs in C and C++ need to use the library: the headers, and what
CMake and pkg-config read.")

set(CPACK_DEBIAN_CLIENT_PACKAGE_NAME kesta)
set(CPACK_DEBIAN_CLIENT_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_CLIENT_PACKAGE_DEPENDS "${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME} (>= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_CLIENT_DESCRIPTION "Copies folders, playlists, bookmarks, contacts and calendars to a mounted
phone and shows what is recorded about it.")

# Each package has its own folder of documents.
find_program(KESTA_GZIP gzip REQUIRED)
configure_file(${PROJECT_SOURCE_DIR}/packaging/changelog.in ${documents}/changelog @ONLY)
execute_process(COMMAND ${KESTA_GZIP} -9nf ${documents}/changelog COMMAND_ERROR_IS_FATAL ANY)
foreach(component RUNTIME DEVELOPMENT CLIENT)
    string(TOLOWER ${component} name)
    install(FILES ${documents}/copyright ${documents}/changelog.gz
        DESTINATION share/doc/${CPACK_DEBIAN_${component}_PACKAGE_NAME} COMPONENT ${name})
endforeach()
if(KESTA_BUILD_TOOLS)
    install(CODE "file(GLOB pages \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_DATADIR}/man/man1/*.1\")
        execute_process(COMMAND ${KESTA_GZIP} -9nf \${pages} COMMAND_ERROR_IS_FATAL ANY)" COMPONENT client)
endif()
# Debian brings the linker's cache up to date by this.
file(WRITE ${documents}/triggers "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${documents}/triggers)
include(CPack)
