add_library(norvane_warnings INTERFACE)
# GCC 12 sees overlaps in inlined string concatenation that are not there: -Wno-restrict.
target_compile_options(norvane_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wold-style-cast -Werror
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
