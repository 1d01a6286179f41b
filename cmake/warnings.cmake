# SPDX-License-Identifier: MIT
option(SONARIN_WERROR "Treat warnings as errors" OFF)

add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wnon-virtual-dtor
                    -Wold-style-cast -Woverloaded-virtual -Wimplicit-fallthrough)
if(SONARIN_WERROR)
    add_compile_options(-Werror)
endif()
