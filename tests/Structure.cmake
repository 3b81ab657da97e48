# Tests of what no compiler checks: layers, exported symbols, format, the installed package.
find_package(Python3 REQUIRED COMPONENTS Interpreter)

add_test(NAME structure.layers
    COMMAND Python3::Interpreter ${PROJECT_SOURCE_DIR}/scripts/check-layers.py)

# Other versions format otherwise.
find_program(CLANG_FORMAT NAMES clang-format)
if(CLANG_FORMAT)
    execute_process(COMMAND ${CLANG_FORMAT} --version OUTPUT_VARIABLE clang_format_version)
endif()
if(clang_format_version MATCHES "version 14\\.")
    add_test(NAME structure.format COMMAND ${PROJECT_SOURCE_DIR}/scripts/check-format.sh)
endif()

# Instrumented code needs its run-time libraries.
if(TARGET Norvane AND NOT NORVANE_SANITIZE AND NOT CMAKE_CXX_FLAGS MATCHES coverage)
    add_test(NAME structure.symbols
        COMMAND Python3::Interpreter ${PROJECT_SOURCE_DIR}/scripts/check-symbols.py
            $<TARGET_FILE:Norvane>)
endif()

if(TARGET norvane AND NOT NORVANE_SANITIZE)
    add_test(NAME install.minimal-host
        COMMAND Python3::Interpreter ${PROJECT_SOURCE_DIR}/scripts/check-install.py
            --build ${PROJECT_BINARY_DIR} --example ${PROJECT_SOURCE_DIR}/examples/minimal-host
            --compiler ${CMAKE_CXX_COMPILER})
    set_tests_properties(install.minimal-host PROPERTIES TIMEOUT 300)
endif()
