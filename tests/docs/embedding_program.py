"""Joins the C++ blocks of docs/embedding.md into the program that the page describes.

usage: embedding_program.py OUT
"""
import sys
from pathlib import Path

import pages

PAGE = pages.DOCS / "embedding.md"


def program_of(page):
    """The blocks in order, each with its place in the page, so that the compiler's messages point there."""
    return "".join(f'#line {line + 1} "docs/embedding.md"\n{content}'
                   for word, content, line in pages.blocks(page) if word == "cpp")


if __name__ == "__main__":
    Path(sys.argv[1]).write_text(program_of(PAGE.read_text()))
