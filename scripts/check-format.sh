#!/bin/sh
# SPDX-License-Identifier: MIT
# Checks that every C++ file is in the project's format.
cd "$(dirname "$0")/.." || exit 1
find sdk src host pdf app tests bench fuzz examples \( -name '*.h' -o -name '*.cpp' \) -print0 |
    xargs -0 clang-format --dry-run -Werror
