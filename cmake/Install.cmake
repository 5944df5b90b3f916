# cmake --install puts the library, its headers and the list of exports in place, and what find_package(KESTA_DB) and
# pkg-config need. Three components, as packages split them: runtime, development, client.
include(CMakePackageConfigHelpers)
set(package ${CMAKE_INSTALL_LIBDIR}/cmake/KESTA_DB)

install(TARGETS KESTA_DB EXPORT KESTA_DB
    RUNTIME COMPONENT runtime
    LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
    ARCHIVE COMPONENT development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/kesta_db DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development
    FILES_MATCHING PATTERN "*.h" PATTERN "*.hpp")
if(WIN32)
    install(FILES ${PROJECT_SOURCE_DIR}/exports/kesta_db.def DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
endif()
install(EXPORT KESTA_DB FILE KESTA_DBConfig.cmake NAMESPACE KESTA_DB:: DESTINATION ${package} COMPONENT development)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KESTA_DBConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/KESTA_DBConfigVersion.cmake DESTINATION ${package} COMPONENT development)

# Relative to where the file lies, so that what is installed can be moved.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/pkgconfig
    OUTPUT_VARIABLE KESTA_PREFIX_FROM_PKGCONFIG)
configure_file(${PROJECT_SOURCE_DIR}/cmake/kesta_db.pc.in ${PROJECT_BINARY_DIR}/kesta_db.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kesta_db.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

if(KESTA_BUILD_TOOLS)
    install(TARGETS kesta COMPONENT client)
    if(NOT CMAKE_CROSSCOMPILING)
        install(DIRECTORY ${PROJECT_BINARY_DIR}/generated/share/ DESTINATION ${CMAKE_INSTALL_DATADIR} COMPONENT client)
    endif()
    if(NOT WIN32)
        install(DIRECTORY ${PROJECT_SOURCE_DIR}/contrib/systemd/ DESTINATION lib/systemd/user COMPONENT client)
    endif()
endif()
