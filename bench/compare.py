#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Converts whole documents with norvane and with other converters of PDF to PostScript, and prints
processor time, peak memory and output bytes, with ratios to norvane's. Documents are those named,
or made here: one page with at least 1 MB of content, images, text in Latin
and in Japanese, transparency groups kept as pdfmarks, and 1, 10 and 100 pages to see growth."""

import argparse
import pathlib
import resource
import shutil
import subprocess
import sys
import tempfile

import benchpdf

RUNS = 3
TIME_LIMIT_SECONDS = 300

# Command lines with {input} and {output}.
OTHERS = {
    "pdftops": ["pdftops", "-level3", "{input}", "{output}"],
    "pdftocairo": ["pdftocairo", "-ps", "{input}", "{output}"],
    "ps2write": ["gs", "-q", "-dSAFER", "-dBATCH", "-dNOPAUSE", "-sDEVICE=ps2write",
                 "-sOutputFile={output}", "{input}"],
}


def measure(command, scratch):
    """(seconds of processor time, MB of peak memory) of one run, or None when it failed."""
    # A child of this process would count this process's memory as its own peak: time(1) is small.
    timed = ["/usr/bin/time", "-q", "-f", "%M", "-o", str(scratch)] + command
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    try:
        done = subprocess.run(timed, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL, timeout=TIME_LIMIT_SECONDS, check=False)
    except subprocess.TimeoutExpired:
        return None
    if done.returncode != 0:
        return None
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    seconds = after.ru_utime - before.ru_utime + after.ru_stime - before.ru_stime
    return seconds, int(scratch.read_text()) / 1024


def convert(command, document, output):
    """The best of several runs: (seconds, MB, bytes), or None."""
    filled = [part.format(input=document, output=output) for part in command]
    runs = [measure(filled, output.with_suffix(".time")) for _ in range(RUNS)]
    if None in runs:
        return None
    size = output.stat().st_size
    output.unlink()
    return min(run[0] for run in runs), min(run[1] for run in runs), size


def compare(name, document, converters, folder):
    print(f"\n{name}: {document.stat().st_size:,} bytes")
    print(f"  {'':12}{'seconds':>9}{'MB':>8}{'output bytes':>15}   ratios to norvane")
    ours = None
    for converter, command in converters.items():
        result = convert(command, document, folder / "out.ps")
        if result is None:
            print(f"  {converter:12}failed")
            continue
        ours = ours or (result if converter == "norvane" else None)
        ratios = "".join(f"{mine and theirs / mine:8.2f}" for theirs, mine in zip(result, ours)) \
            if ours else ""
        print(f"  {converter:12}{result[0]:9.3f}{result[1]:8.1f}{result[2]:15,}   {ratios}")
    return ours


def print_growth(figures):
    """How time and memory grow with the page count: straight lines want equal steps a page."""
    known = [(pages, figure) for pages, figure in figures if figure]
    if len(known) < 2:
        return
    print("\nnorvane a page, beyond the first figure:")
    (least, start) = known[0]
    for pages, figure in known[1:]:
        steps = pages - least
        print(f"  {pages:4} pages: {(figure[0] - start[0]) / steps * 1000:8.2f} ms"
              f"{(figure[1] - start[1]) / steps:8.3f} MB{(figure[2] - start[2]) / steps:12,.0f} bytes")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--tool", required=True, type=pathlib.Path, help="the built norvane")
    parser.add_argument("documents", nargs="*", type=pathlib.Path)
    arguments = parser.parse_args()
    if not pathlib.Path("/usr/bin/time").exists():
        sys.exit("compare.py needs GNU time: apt-get install time")
    converters = {"norvane": [str(arguments.tool.resolve()), "--quiet", "{input}", "{output}"]}
    for name, command in OTHERS.items():
        if shutil.which(command[0]):
            converters[name] = command
        else:
            print(f"{name} is not installed")
    with tempfile.TemporaryDirectory(prefix="norvane-bench-") as place:
        folder = pathlib.Path(place)
        for document in arguments.documents:
            compare(document.name, document, converters, folder)
        if arguments.documents:
            return
        large = folder / "large.pdf"
        benchpdf.write_pdf(large, 1, 4_000_000)
        compare("one page, 4 MB of content", large, converters, folder)
        for space, png in (("DeviceRGB", False), ("DeviceRGB", True), ("DeviceCMYK", False)):
            image = folder / "image.pdf"
            benchpdf.write_image_pdf(image, space, png_predictor=png)
            compare(f"4 megapixels of {space}, Flate{' with a PNG predictor' if png else ''}",
                    image, converters, folder)
        text = folder / "text.pdf"
        benchpdf.write_text_pdf(text, 100)
        compare("100 pages of text, Type 1 and TrueType", text, converters, folder)
        benchpdf.write_japanese_pdf(text, 100)
        compare("100 pages of Japanese text, CID-keyed CFF and TrueType", text, converters, folder)
        groups = folder / "groups.pdf"
        benchpdf.write_groups_pdf(groups, 10_000)
        kept = [*converters["norvane"][:-2], "--transparency", "pdfmark", "{input}", "{output}"]
        compare("a page of 10,000 transparency groups", groups, {**converters, "norvane": kept},
                folder)
        figures = []
        for pages in (1, 10, 100):
            document = folder / f"{pages}.pdf"
            benchpdf.write_pdf(document, pages, 100_000)
            figures.append((pages, compare(f"{pages} pages of 100 kB", document, converters, folder)))
        print_growth(figures)


if __name__ == "__main__":
    main()
