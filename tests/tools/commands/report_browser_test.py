#!/usr/bin/env python3
"""Opens a report in a real browser: the root causes are in its document, and its picture is not blank.

usage: report_browser_test.py ARBORIST SOURCE_DIR. Exit status 77 without Chromium, which skips the test.
"""
import pathlib
import shutil
import struct
import subprocess
import sys
import tempfile
import zlib

CHROMIUM_OPTIONS = [
    "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
    "--disable-background-networking", "--disable-component-update", "--disable-sync"]


def chromium(folder, page, *options):
    """What the browser prints for the page, with a new profile."""
    with tempfile.TemporaryDirectory(dir=folder) as profile:
        command = ["chromium", *CHROMIUM_OPTIONS, f"--user-data-dir={profile}", *options, page.as_uri()]
        return subprocess.run(command, check=True, capture_output=True, timeout=240).stdout


def text_on_paper(folder, page):
    """The text of the page as it is printed."""
    pdf = folder / "report.pdf"
    chromium(folder, page, f"--print-to-pdf={pdf}")
    return subprocess.run(["pdftotext", pdf, "-"], check=True, capture_output=True, text=True).stdout


def colours_of(png):
    """Number of different pixels of an 8 bit RGB or RGBA image."""
    assert png[:8] == b"\x89PNG\r\n\x1a\n", "no PNG"
    width, height, depth, kind = struct.unpack(">IIBB", png[16:26])
    assert depth == 8 and kind in (2, 6), "no image of 8 bit colours"
    chunks, at = b"", 8
    while at < len(png):
        length, name = struct.unpack(">I4s", png[at:at + 8])
        if name == b"IDAT":
            chunks += png[at + 8:at + 8 + length]
        at += length + 12
    size = 3 if kind == 2 else 4
    data = zlib.decompress(chunks)
    stride = width * size
    above = bytes(stride)
    colours = set()
    for row in range(height):
        start = row * (stride + 1)
        line = unfiltered(data[start], bytearray(data[start + 1:start + 1 + stride]), above, size)
        colours.update(bytes(line[i:i + size]) for i in range(0, stride, size * 7))
        above = line
    return len(colours)


def unfiltered(kind, line, above, size):
    """A row of a PNG as it was before it was filtered."""
    for i in range(len(line)):
        left = line[i - size] if i >= size else 0
        corner = above[i - size] if i >= size else 0
        up = above[i]
        if kind == 1:
            guess = left
        elif kind == 2:
            guess = up
        elif kind == 3:
            guess = (left + up) // 2
        elif kind == 4:
            near = left + up - corner
            guess = min((left, up, corner), key=lambda value: abs(near - value))
        else:
            guess = 0
        line[i] = (line[i] + guess) & 255
    return line


def main():
    arborist, source = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    if shutil.which("chromium") is None:
        print("skipped: there is no chromium")
        return 77
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        example = source / "examples" / "laptop"
        subprocess.run([example / "prepare.sh", arborist, folder / "laptop"], check=True, stdout=subprocess.DEVNULL)
        page = folder / "report.html"
        subprocess.run([arborist, "report", folder / "laptop", "--code-runner", example / "code-runner.sh",
                        "--log-level", "none", "-o", page], check=True)
        dom = chromium(folder, page, "--dump-dom").decode("utf-8")
        for cause in ["BATTERY_WORN", "CHARGE_LOST", "FLASH_LIFE_USED", "MODULE_B1_BAD", "PANEL_WORN_OUT"]:
            assert f'<h4 class="id">{cause}</h4>' in dom, f"no card of {cause}"
        assert dom.count("<svg") == 6, "not every tree is drawn"
        picture = folder / "report.png"
        chromium(folder, page, f"--screenshot={picture}", "--window-size=800,600")
        assert colours_of(picture.read_bytes()) > 10, "the picture is blank"
        printed = text_on_paper(folder, page)
        # The list of the tree without a fault, the last one, is folded on the screen.
        assert "RECEIVE_ERRORS" in printed.split("All events of the tree")[-1], "a folded list is not printed"
    print("the report shows its root causes")
    return 0


if __name__ == "__main__":
    sys.exit(main())
