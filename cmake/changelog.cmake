# SPDX-License-Identifier: MIT
# What CHANGELOG.md says, for whoever needs it: the newest version, and all releases in the forms of others.
#   "## VERSION (YYYY-MM-DD)" begins a release; each of its lines "- TEXT" is one change, which Debian wants to be short, and
#   in which CMake does not bear every character.
set(changelogFile ${CMAKE_CURRENT_LIST_DIR}/../CHANGELOG.md)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${changelogFile})
file(STRINGS ${changelogFile} changelogLines REGEX "^(## |- )" ENCODING UTF-8)
set(releaseHeading "^## ([0-9]+\\.[0-9]+\\.[0-9]+) \\(([0-9]+-[0-9]+-[0-9]+)\\)$")

file(READ ${changelogFile} changelogText)
string(REGEX REPLACE "^[^#]*# Changes\n[^#]*" "\n" changelogText "${changelogText}")
string(REGEX REPLACE "\n(## [0-9][^\n]*|- [^\n;\\[]*)" "" rest "${changelogText}")
string(STRIP "${rest}" rest)
if(rest)
    message(FATAL_ERROR "CHANGELOG.md has a line that is neither a release nor a change, or one with ; \\ or [: ${rest}")
endif()

list(GET changelogLines 0 newestHeading)
if(NOT newestHeading MATCHES "${releaseHeading}")
    message(FATAL_ERROR "CHANGELOG.md does not begin with a release such as \"## 1.2.3 (2026-01-31)\": ${newestHeading}")
endif()
set(SONARIN_VERSION ${CMAKE_MATCH_1})
set(SONARIN_RELEASE_DATE ${CMAKE_MATCH_2})

# The releases as AppStream has them.
function(make_appstream_releases result)
    set(text "")
    foreach(line IN LISTS changelogLines)
        if(line MATCHES "${releaseHeading}")
            if(text)
                string(APPEND text "        </ul>\n      </description>\n    </release>\n")
            endif()
            string(APPEND text "    <release version=\"${CMAKE_MATCH_1}\" date=\"${CMAKE_MATCH_2}\">\n"
                               "      <description>\n        <ul>\n")
        else()
            string(SUBSTRING "${line}" 2 -1 change)
            string(REPLACE "&" "&amp;" change "${change}")
            string(REPLACE "<" "&lt;" change "${change}")
            string(APPEND text "          <li>${change}</li>\n")
        endif()
    endforeach()
    set(${result} "${text}        </ul>\n      </description>\n    </release>\n" PARENT_SCOPE)
endfunction()

# The releases as debian/changelog has them.
function(make_debian_changelog result maintainer)
    set(text "")
    set(signature "")
    foreach(line IN LISTS changelogLines)
        if(line MATCHES "${releaseHeading}")
            string(APPEND text "${signature}sonarin (${CMAKE_MATCH_1}) unstable; urgency=medium\n\n")
            execute_process(COMMAND ${CMAKE_COMMAND} -E env LC_ALL=C date -u -R -d ${CMAKE_MATCH_2}
                            OUTPUT_VARIABLE date OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
            if(NOT date)
                message(FATAL_ERROR "CHANGELOG.md names a day that there is not: ${CMAKE_MATCH_2}")
            endif()
            set(signature "\n -- ${maintainer}  ${date}\n\n")
        else()
            string(SUBSTRING "${line}" 2 -1 change)
            string(APPEND text "  * ${change}\n")
        endif()
    endforeach()
    set(${result} "${text}${signature}" PARENT_SCOPE)
endfunction()
