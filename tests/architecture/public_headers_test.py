"""Compiles each public header alone, first and last, as hosts of both standards and both compilers include it, and
after the macros that other headers bring: curses, and those of a Windows host."""
import itertools
import os
import subprocess
import sys
import tempfile
import unittest
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path
from shutil import which

import includes

ROOT = Path(__file__).resolve().parents[2]
GENERATED = Path(sys.argv.pop()) if len(sys.argv) > 1 else ROOT / "build/dev/include"
COMPILERS = [compiler for compiler in ("g++", "clang++") if which(compiler)]
STANDARDS = ["c++17", "c++20"]
FLAGS = ["-fsyntax-only", "-Wall", "-Wextra", "-Wpedantic", "-Wshadow", "-Wconversion", "-Werror",
         "-DARBORIST_STATIC_DEFINE", f"-I{ROOT}", f"-I{GENERATED}"]
# As <windows.h> and what it includes define them, and a few that C headers of all kinds do.
MACROS = """
#define TRUE 1
#define FALSE 0
#define min(a, b) ((a) < (b) ? (a) : (b))
#define max(a, b) ((a) > (b) ? (a) : (b))
#define ERROR 0
#define NO_ERROR 0
#define NO_DATA 4
#define OPTIONAL
#define IN
#define OUT
#define CONST const
#define VOID void
#define DELETE 0x10000
#define THIS
#define PURE
#define interface struct
#define near
#define far
#define small char
#define GetObject GetObjectA
#define GetMessage GetMessageA
#define None 0
#define Status int
#define Bool int
#define Always 2
"""
CURSES = "#include <curses.h>\n" if Path("/usr/include/curses.h").exists() else ""


def headers():
    return sorted("arborist/" + name for name in includes.public_headers(ROOT))


def include(names):
    return "".join(f'#include "{name}"\n' for name in names)


def complaint(compiler, standard, text):
    """What a compiler says of a source text; empty when nothing."""
    with tempfile.NamedTemporaryFile("w", suffix=".cpp") as source:
        source.write(text)
        source.flush()
        run = subprocess.run([compiler, f"-std={standard}", *FLAGS, source.name], capture_output=True, text=True)
    return run.stderr if run.returncode != 0 else ""


class PublicHeaders(unittest.TestCase):
    def assert_compile(self, texts, standards=STANDARDS):
        jobs = list(itertools.product(COMPILERS, standards, texts))
        with ThreadPoolExecutor(min(2, os.cpu_count() or 1)) as pool:
            for (compiler, standard, text), words in zip(jobs, pool.map(lambda job: complaint(*job), jobs)):
                self.assertEqual(words, "", f"{compiler} {standard}\n{text}")

    def test_each_compiles_alone_and_twice(self):
        self.assert_compile([include([header, header]) for header in headers()])

    def test_each_compiles_first_and_last(self):
        order = headers()
        self.assert_compile([include(order[place:] + order[:place]) for place in range(len(order))], ["c++17"])

    def test_all_compile_after_macros_of_other_headers(self):
        texts = [MACROS, CURSES + "#undef TRUE\n#undef FALSE\n" + MACROS, "#define TRUE 1\n#define FALSE 0\n" + CURSES]
        self.assert_compile([text + include(["arborist/arborist.h", *headers()]) for text in texts])

    def test_the_status_of_the_model_is_not_among_them(self):
        self.assertNotIn("arborist/model/event_status.h", headers())
        for name in headers():
            self.assertNotIn("event_status", (ROOT / name).read_text(), name)


if __name__ == "__main__":
    unittest.main()
