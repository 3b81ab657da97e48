#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Installs a build to an empty place, builds the example host against the installed package, runs
it and the installed tool, and has Ghostscript read what the example wrote."""

import argparse
import pathlib
import shutil
import subprocess
import sys
import tempfile


def run(*command):
    print("+", *command, flush=True)
    subprocess.run([str(part) for part in command], check=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", required=True, type=pathlib.Path)
    parser.add_argument("--example", required=True, type=pathlib.Path)
    parser.add_argument("--compiler", required=True)
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="norvane-install-") as folder:
        place = pathlib.Path(folder)
        prefix, build, page = place / "prefix", place / "build", place / "page.ps"
        run("cmake", "--install", arguments.build, "--prefix", prefix)
        run("cmake", "-S", arguments.example, "-B", build, f"-DCMAKE_PREFIX_PATH={prefix}",
            f"-DCMAKE_CXX_COMPILER={arguments.compiler}", "-DCMAKE_BUILD_TYPE=Debug")
        run("cmake", "--build", build)
        run(build / "minimal-host", page)
        run(prefix / "bin" / "norvane", "--version")
        if "showpage" not in page.read_text(encoding="latin-1"):
            sys.exit("the example wrote no page")
        if shutil.which("gs"):
            run("gs", "-q", "-dSAFER", "-dBATCH", "-dNOPAUSE", "-sDEVICE=bbox", page)


if __name__ == "__main__":
    main()
