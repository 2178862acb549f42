#!/usr/bin/env python3
"""Opens a report in a real browser: the root causes are in its document, its picture is not blank, and in both schemes of
colours and at the width of a desk and of a phone nothing sticks out, is too faint to be read or leads nowhere.

usage: report_browser_test.py ARBORIST SOURCE_DIR. Exit status 77 without Chromium, which skips the test.
"""
import pathlib
import struct
import subprocess
import sys
import tempfile
import zlib

import browser


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
    if not browser.is_there():
        print("skipped: there is no chromium")
        return 77
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        example = source / "examples" / "laptop"
        subprocess.run([example / "prepare.sh", arborist, folder / "laptop"], check=True, stdout=subprocess.DEVNULL)
        page = folder / "report.html"
        subprocess.run([arborist, "report", folder / "laptop", "--code-runner", example / "code-runner.sh",
                        "--log-level", "none", "-o", page], check=True)
        dom = browser.run(folder, page, "--dump-dom").stdout.decode("utf-8")
        for cause in ["BATTERY_WORN", "CHARGE_LOST", "FLASH_LIFE_USED", "MODULE_B1_BAD", "PANEL_WORN_OUT"]:
            assert f'<h4 class="id">{cause}</h4>' in dom, f"no card of {cause}"
        assert dom.count("<svg") == 6, "not every tree is drawn"
        with_sweep = folder / "swept.html"
        subprocess.run([arborist, "report", folder / "laptop", "--sweep", "--log-level", "none", "-o", with_sweep], check=True,
                       capture_output=True)
        browser.assert_readable(folder, with_sweep)
        picture = folder / "report.png"
        browser.run(folder, page, f"--screenshot={picture}", "--window-size=800,600")
        assert colours_of(picture.read_bytes()) > 10, "the picture is blank"
        printed = browser.printed(folder, page)
        # The list of the tree without a fault, the last one, is folded on the screen.
        assert "RECEIVE_ERRORS" in printed.split("All events of the tree")[-1], "a folded list is not printed"
    print("the report shows its root causes")
    return 0


if __name__ == "__main__":
    sys.exit(main())
