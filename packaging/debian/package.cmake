# SPDX-License-Identifier: MIT
# The Debian package, which ./package makes with CPack.
set(maintainer "The Sonarin developers <developers@sonarin.org>")
set(docFolder ${CMAKE_INSTALL_DATADIR}/doc/sonarin)

# Only Debian wants these; CPack asks for them by the component's name.
make_debian_changelog(changes "${maintainer}")
file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/debian/changelog "${changes}")
file(READ ${CMAKE_SOURCE_DIR}/LICENSE licence)
string(REGEX REPLACE "^MIT License\n\n(Copyright [^\n]*)\n\n" "" licence "${licence}")
set(copyrightLine "${CMAKE_MATCH_1}")
string(REGEX REPLACE "^Copyright \\(c\\) " "" holders "${copyrightLine}")
string(STRIP "${licence}" licence)
string(REGEX REPLACE "\n\n" "\n.\n" licence "${licence}")
string(REGEX REPLACE "\n" "\n " licence "${licence}")
configure_file(debian/copyright.in debian/copyright @ONLY)
set(packedChanges ${CMAKE_CURRENT_BINARY_DIR}/debian/changelog.gz)
add_custom_command(OUTPUT ${packedChanges} DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/debian/changelog
                   COMMAND ${GZIP} -9nc debian/changelog > ${packedChanges} WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR})
add_custom_target(sonarin_debian ALL DEPENDS ${packedChanges})
install(FILES ${packedChanges} ${CMAKE_CURRENT_BINARY_DIR}/debian/copyright DESTINATION ${docFolder}
        COMPONENT debian EXCLUDE_FROM_ALL)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME sonarin)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "${maintainer}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "shows the technical facts and the tags of audio files")
set(CPACK_PACKAGE_DESCRIPTION
    "A small window for one audio file at a time: duration, bit rate, sampling rate,
channels, title, artist, album, lyrics, cover and the other tags of MPEG audio,
MPEG-4, WAVE and AIFF files. It follows the file manager's selection, the music
player's selection or the track being played, renames a file from its tags and
opens tag editors. Audio files are only ever read.

sonarin-info gives the same facts to scripts, as text or JSON. sonarin-connect
lets file managers and music players tell what is selected in them; what each
of them needs for that is suggested.")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE ${PROJECT_HOMEPAGE_URL})
# What the window uses when it is there: SVG icons of themes, Wayland, a bus.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
    "libqt6svg6, qt6-wayland, hicolor-icon-theme, default-dbus-session-bus | dbus-session-bus")
# What lets the file managers and players that somebody has load a connector. Recommended, they would bring all of those
# programs with them.
set(CPACK_DEBIAN_PACKAGE_SUGGESTS
    "python3-nautilus, gir1.2-gtk-4.0, python3-caja, nemo-python, thunarx-python, gir1.2-thunarx-3.0, rhythmbox-plugins")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
# Installed below a scratch folder, as if the prefix were /usr.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_CMAKE_PROJECTS "${CMAKE_BINARY_DIR};sonarin;ALL;/;${CMAKE_BINARY_DIR};sonarin;debian;/")
set(CPACK_PROJECT_CONFIG_FILE ${CMAKE_CURRENT_SOURCE_DIR}/debian/dependencies.cmake)
set(CPACK_SONARIN_BUILD ${CMAKE_BINARY_DIR})
if(TARGET sonarin_dolphin)
    set(CPACK_SONARIN_DOLPHIN ${CMAKE_BINARY_DIR}/${SONARIN_DOLPHIN_PLUGIN_DIR}/sonarin_dolphin.so)
endif()
include(CPack)
