# SPDX-License-Identifier: MIT
# What is known only when the prefix is: SONARIN_SOURCE, SONARIN_PROGRAM and SONARIN_DATA (the last two below the prefix, or
# absolute) are set by who includes this.
get_filename_component(prefix "${CMAKE_INSTALL_PREFIX}" ABSOLUTE)
get_filename_component(SONARIN_PROGRAM "${SONARIN_PROGRAM}" ABSOLUTE BASE_DIR "${prefix}")
get_filename_component(SONARIN_DATA "${SONARIN_DATA}" ABSOLUTE BASE_DIR "${prefix}")

# The bus takes the command apart as a shell does.
string(REGEX REPLACE "([\"\\\\$`])" "\\\\\\1" SONARIN_PROGRAM "${SONARIN_PROGRAM}")
set(service "${SONARIN_DATA}/dbus-1/services/org.sonarin.Sonarin.service")
if(SONARIN_HAS_WINDOW)
    message(STATUS "Installing: $ENV{DESTDIR}${service}")
    configure_file("${SONARIN_SOURCE}/org.sonarin.Sonarin.service.in" "$ENV{DESTDIR}${service}" @ONLY)
    list(APPEND CMAKE_INSTALL_MANIFEST_FILES "${service}")
endif()

# Debian's zsh looks for what packages bring in a folder of its own.
set(zshFolder site-functions)
if(prefix STREQUAL "/usr" AND EXISTS /etc/debian_version)
    set(zshFolder vendor-completions)
endif()
file(INSTALL "${SONARIN_SOURCE}/completions/_sonarin-info" DESTINATION "${SONARIN_DATA}/zsh/${zshFolder}")
