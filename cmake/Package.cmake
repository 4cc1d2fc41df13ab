# One archive that holds what `cmake --install` gives, with the guides: a zip for Windows, a tar.gz for Linux.
#
# The guides lie beside README.md as they do in the sources, so that links lead from one to the other. Only the headers lie
# elsewhere there.
file(RELATIVE_PATH NORV_INCLUDE_FROM_README /${CMAKE_INSTALL_DOCDIR} /${CMAKE_INSTALL_INCLUDEDIR})
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS README.md)
file(READ README.md NORV_README)
string(REPLACE "](include/" "](${NORV_INCLUDE_FROM_README}/" NORV_README "${NORV_README}")
file(WRITE ${PROJECT_BINARY_DIR}/README.md "${NORV_README}")
install(FILES ${PROJECT_BINARY_DIR}/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} FILES_MATCHING PATTERN *.md)

set(CPACK_PACKAGE_NAME norv-battery-info)
set(CPACK_PACKAGE_VENDOR norv-battery-info)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
string(TOLOWER ${CMAKE_SYSTEM_NAME} NORV_PACKAGE_SYSTEM)
set(CPACK_PACKAGE_FILE_NAME norv-battery-info-${PROJECT_VERSION}-${NORV_PACKAGE_SYSTEM}-x86_64)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)
if(WIN32)
  set(CPACK_GENERATOR ZIP)
else()
  set(CPACK_GENERATOR TGZ)
endif()
include(CPack)
