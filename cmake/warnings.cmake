# SPDX-License-Identifier: MIT
# As it was first chosen in a build folder: changing it compiles everything anew.
option(SONARIN_WERROR "Treat warnings as errors" $ENV{CI})

add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wnon-virtual-dtor
                    -Wold-style-cast -Woverloaded-virtual -Wimplicit-fallthrough)
if(SONARIN_WERROR)
    add_compile_options(-Werror)
endif()
