# Manual pages and completions, made of the table of commands by the program itself: as they lie below share.
set(KESTA_GENERATED ${CMAKE_BINARY_DIR}/generated)
if(NOT CMAKE_CROSSCOMPILING)
    add_custom_command(TARGET kesta POST_BUILD
        COMMAND ${CMAKE_COMMAND} -E rm -rf ${KESTA_GENERATED}
        COMMAND ${CMAKE_COMMAND} -E make_directory ${KESTA_GENERATED}/share ${KESTA_GENERATED}/data
        # Not the database of whoever builds.
        COMMAND ${CMAKE_COMMAND} -E env XDG_DATA_HOME=${KESTA_GENERATED}/data $<TARGET_FILE:kesta> generate all
            --into ${KESTA_GENERATED}/share
        VERBATIM)
endif()
