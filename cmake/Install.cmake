# cmake --install puts library, header and export list in place, and what find_package(KESTA_DB) needs.
include(CMakePackageConfigHelpers)
set(package ${CMAKE_INSTALL_LIBDIR}/cmake/KESTA_DB)

install(TARGETS KESTA_DB EXPORT KESTA_DB)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/kesta_db DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    FILES_MATCHING PATTERN "*.h" PATTERN "*.hpp")
if(WIN32)
    install(FILES ${PROJECT_SOURCE_DIR}/exports/kesta_db.def DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()
install(EXPORT KESTA_DB FILE KESTA_DBConfig.cmake NAMESPACE KESTA_DB:: DESTINATION ${package})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KESTA_DBConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/KESTA_DBConfigVersion.cmake DESTINATION ${package})
if(KESTA_BUILD_TOOLS)
    install(TARGETS kesta)
endif()
