add_library(norvane_warnings INTERFACE)
target_compile_options(norvane_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wold-style-cast -Werror)
