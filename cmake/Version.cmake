# KESTA_DB_VERSION, out of the public header: the number stands there alone, so that the header can be used as it lies in
# the source tree.
set(header ${CMAKE_CURRENT_LIST_DIR}/../include/kesta_db/kesta_db.h)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${header})
set(numbers "")
foreach(part MAJOR MINOR PATCH)
    file(STRINGS ${header} line REGEX "^#define KESTA_DB_VERSION_${part} [0-9]+")
    string(REGEX REPLACE "^#define KESTA_DB_VERSION_${part} ([0-9]+).*" "\\1" number "${line}")
    list(APPEND numbers ${number})
endforeach()
list(JOIN numbers . KESTA_DB_VERSION)
if(NOT KESTA_DB_VERSION MATCHES "^[0-9]+\\.[0-9]+\\.[0-9]+$")
    message(FATAL_ERROR "${header} has no version")
endif()
