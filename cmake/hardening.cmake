# SPDX-License-Identifier: MIT
# Sonarin reads files of strangers: what the compiler and the linker can do against a fault that is left.
# sonarin-info takes as long over a library as without. FORTIFY_SOURCE needs an optimized build, and is no friend of the sanitizers.
if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize" AND CMAKE_BUILD_TYPE STREQUAL "Release")
    add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -fstack-protector-strong)
    add_link_options(-Wl,-z,relro,-z,now)
endif()
