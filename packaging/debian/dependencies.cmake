# SPDX-License-Identifier: MIT
# Computes what the package depends on from what its programs are linked with. The plug-in for Dolphin is of use only to
# those who have Dolphin, and so is what it is linked with: a suggestion.
set(scratch ${CPACK_SONARIN_BUILD}/packaging/debian/scratch)
file(WRITE ${scratch}/debian/control "Source: sonarin\n\nPackage: sonarin\nArchitecture: any\n")
set(programs sonarin sonarin-info sonarin-connect)
list(TRANSFORM programs PREPEND ${CPACK_SONARIN_BUILD}/)
if(NOT EXISTS ${CPACK_SONARIN_BUILD}/sonarin)
    list(REMOVE_ITEM programs ${CPACK_SONARIN_BUILD}/sonarin) # built without the window
endif()
execute_process(COMMAND dpkg-shlibdeps -O --warnings=0 -dDepends ${programs} -dSuggests ${CPACK_SONARIN_DOLPHIN}
                WORKING_DIRECTORY ${scratch} OUTPUT_VARIABLE computed COMMAND_ERROR_IS_FATAL ANY)
if(NOT computed MATCHES "shlibs:Depends=([^\n]+)")
    message(FATAL_ERROR "dpkg-shlibdeps found no dependency: ${computed}")
endif()
set(CPACK_DEBIAN_PACKAGE_DEPENDS "${CMAKE_MATCH_1}")
if(computed MATCHES "shlibs:Suggests=([^\n]+)")
    string(APPEND CPACK_DEBIAN_PACKAGE_SUGGESTS ", ${CMAKE_MATCH_1}")
endif()
