#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Checks the rules of layers, words and sizes that hold for every C++ file of the project.

Each folder may include what the table below allows, every included path exists, and code keeps
to the fixed-width types. docs/architecture.md gives the reasons.
"""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
FOLDERS = ["sdk/headers", "src", "host", "pdf", "app", "tests", "bench", "fuzz", "examples"]
INCLUDE_ROOTS = ["sdk/headers", "src", ".", "tests"]
MOST_LINES = 900

STANDARD = re.compile(r"[a-z_0-9]+")
POSIX = re.compile(r"(sys/\w+|unistd|fcntl|dlfcn|poll|link|spawn)\.h")

# Folder of the including file -> folders whose headers it may include, and third-party headers.
LAYERS = [
    ("sdk/headers", ["sdk/headers"], None),
    ("src", ["src", "sdk/headers"], None),
    ("host", ["host", "sdk/headers"], r"(ft2build|hb|hb-subset|hb-ft|lcms2|zlib|jpeglib|jerror|png|openjpeg|jbig2)\.h|freetype/.*|fontconfig/.*"),
    ("pdf", ["pdf", "host", "sdk/headers"], r"qpdf/.*"),
    ("app", ["app", "pdf", "host", "sdk/headers"], r"CLI/.*|nlohmann/.*"),
    ("tests/unit/src", ["src", "sdk/headers", "tests/support", "tests/unit/src"], r"g(test|mock)/.*"),
    ("tests/support", ["tests/support", "sdk/headers", "src", "host", "pdf"], r"g(test|mock)/.*|qpdf/.*|(zlib|jpeglib|openjpeg)\.h"),
    ("tests/unit/app", ["app", "pdf", "host", "sdk/headers", "tests/support"], r"g(test|mock)/.*|nlohmann/.*"),
    ("tests", ["host", "pdf", "sdk/headers", "tests"], r"g(test|mock)/.*|qpdf/.*|(lcms2|zlib|jpeglib|openjpeg)\.h"),
    ("bench", ["src", "host", "pdf", "sdk/headers", "bench"], r"benchmark/.*|freetype/.*|lcms2\.h"),
    ("fuzz", ["src", "host", "pdf", "sdk/headers", "fuzz"], r"qpdf/.*"),
    ("examples", ["host", "sdk/headers"], None),
]

# Operating-system headers belong to the rooms that hide the system from the others.
POSIX_FREE = ["sdk/headers", "src", "pdf"]
POSIX_ROOM = "src/platform"

# Words that code does without, and the files that may use them: the logger's stream is wide.
WORDS = [
    (re.compile(r"\blong\b"), "long", []),
    (re.compile(r"\bwchar_t\b"), "wchar_t",
     ["sdk/headers/core/libsupport/vlogger/", "host/support/logger", "tests/support/recordinglogger"]),
    (re.compile(r'(?<![A-Za-z0-9_])L"'), 'L"',
     ["sdk/headers/core/libsupport/vlogger/", "host/support/logger", "tests/support/recordinglogger"]),
    (re.compile(r"\bdynamic_cast\b"), "dynamic_cast", []),
]

COMMENT_OR_LITERAL = re.compile(
    r'//[^\n]*|/\*.*?\*/|R"(\w*)\(.*?\)\1"|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])*\'', re.S)


def without_comments(text):
    """The code with comments blanked and the contents of literals emptied, lines kept."""

    def blank(match):
        found = match.group(0)
        filler = "\n" * found.count("\n")
        return filler if found.startswith("/") else '""' + filler

    return COMMENT_OR_LITERAL.sub(blank, text)


def layer_of(path):
    """The innermost entry of the table that holds the file."""
    held = [layer for layer in LAYERS if path.startswith(layer[0] + "/")]
    return max(held, key=lambda layer: len(layer[0]))


def resolve(name, includer):
    """Path of a quoted include within the project, or None."""
    for root in [ROOT / includer.parent] + [ROOT / each for each in INCLUDE_ROOTS]:
        if (root / name).is_file():
            return (root / name).resolve().relative_to(ROOT).as_posix()
    return None


def check_quoted(path, name, layer):
    target = resolve(name, path)
    if target is None and layer[2] and re.fullmatch(layer[2], name):
        return None
    if target is None:
        return f'"{name}" does not exist'
    if not any(target.startswith(folder + "/") for folder in layer[1]):
        return f'"{name}" is not for {layer[0]}'
    return None


def check_angled(path, name, layer):
    third_party = layer[2]
    if STANDARD.fullmatch(name) or (third_party and re.fullmatch(third_party, name)):
        return None
    hidden = any(path.as_posix().startswith(folder + "/") for folder in POSIX_FREE)
    in_room = path.as_posix().startswith(POSIX_ROOM + "/")
    if POSIX.fullmatch(name) and (in_room or not hidden):
        return None
    return f"<{name}> is not for {layer[0]}"


def check_file(path):
    """Yields (line, complaint) for a file given relative to the root."""
    text = (ROOT / path).read_text(encoding="utf-8")
    lines = text.split("\n")
    layer = layer_of(path.as_posix())
    if "SPDX-License-Identifier: MIT" not in lines[0]:
        yield 1, "the first line names no licence"
    if len(lines) > MOST_LINES:
        yield MOST_LINES, f"has more than {MOST_LINES} lines"
    for number, line in enumerate(lines, 1):
        include = re.match(r'\s*#\s*include\s*([<"])([^>"]+)[>"]', line)
        if include:
            check = check_quoted if include.group(1) == '"' else check_angled
            complaint = check(path, include.group(2), layer)
            if complaint:
                yield number, complaint
    # Emptied literals keep their prefix, so that L"" can still be found.
    for number, line in enumerate(without_comments(text).split("\n"), 1):
        for pattern, word, allowed in WORDS:
            if pattern.search(line) and not any(path.as_posix().startswith(a) for a in allowed):
                yield number, f"{word} is not used in this project"


def main():
    faults = 0
    files = 0
    for folder in FOLDERS:
        for suffix in ("*.h", "*.cpp"):
            for file in sorted((ROOT / folder).rglob(suffix)):
                path = file.relative_to(ROOT)
                files += 1
                for line, complaint in check_file(path):
                    print(f"{path}:{line}: {complaint}")
                    faults += 1
    print(f"{files} files, {faults} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
