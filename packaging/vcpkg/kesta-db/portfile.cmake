# An overlay port of this source tree: vcpkg install kesta-db --overlay-ports=packaging/vcpkg
#
# Not run by this project: vcpkg fetches its own tools over the network.
vcpkg_check_linkage(ONLY_DYNAMIC_LIBRARY)
vcpkg_cmake_configure(
    SOURCE_PATH "${CMAKE_CURRENT_LIST_DIR}/../../.."
    # SQLite comes from vcpkg, so that nothing is fetched by the build itself.
    OPTIONS -DKESTA_SYSTEM_SQLITE=ON -DKESTA_BUILD_TOOLS=OFF -DKESTA_BUILD_TESTS=OFF)
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(PACKAGE_NAME KESTA_DB CONFIG_PATH lib/cmake/KESTA_DB)
vcpkg_fixup_pkgconfig()
file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/debug/include" "${CURRENT_PACKAGES_DIR}/debug/share")
# No licence has been granted yet; the owner's would be installed here.
file(WRITE "${CURRENT_PACKAGES_DIR}/share/kesta-db/copyright" "No licence has been granted for KESTA_DB yet.\n")
