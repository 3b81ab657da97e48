#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Checks that a built plug-in shows its three entry points and nothing else, and that it needs
nothing but the C++ runtime and the host's logger."""

import re
import subprocess
import sys

EXPORTS = {"Init", "DeInit", "GetClassObject"}
LIBRARIES = re.compile(r"(libstdc\+\+|libgcc_s|libc|libm|ld-linux[-\w]*)\.so(\.\d+)?")
RUNTIME_VERSION = re.compile(r"@+(GLIBC|GLIBCXX|CXXABI|GCC)_")
# References that the tool chain leaves open on purpose.
WEAK = {"_ITM_deregisterTMCloneTable", "_ITM_registerTMCloneTable", "__gmon_start__",
        "__cxa_finalize"}
LOGGER = "_ZN6VANTIX19VLoggerLibInterface11GetInstanceEv"


def lines_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout.splitlines()


def exported(path):
    return {line.split()[-1].split("@")[0]
            for line in lines_of("nm", "-D", "--defined-only", path)}


def undefined(path):
    return [line.split()[-1] for line in lines_of("nm", "-D", "--undefined-only", path)]


def needed(path):
    return re.findall(r"\(NEEDED\).*\[(.*)\]", "\n".join(lines_of("readelf", "-d", path)))


def faults_of(path):
    shown = exported(path)
    for name in sorted(shown - EXPORTS):
        yield f"exports {name}"
    for name in sorted(EXPORTS - shown):
        yield f"does not export {name}"
    for name in undefined(path):
        if name not in WEAK and name != LOGGER and not RUNTIME_VERSION.search(name):
            yield f"needs {name}"
    for library in needed(path):
        if not LIBRARIES.fullmatch(library):
            yield f"needs the library {library}"


def main():
    path = sys.argv[1]
    faults = list(faults_of(path))
    for fault in faults:
        print(f"{path} {fault}")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
