"""Writes the C source of arborist._native, the door to the C interface: build_native.py HEADER TARGET.c

What Python may call is taken from the header itself, so that the two can't differ."""
import re
import sys
from pathlib import Path

import cffi

# Messages of the log wait here until the call has ended: nothing but a code rule calls into Python from a call.
QUEUE = """
typedef struct python_log python_log;
python_log* python_log_new(size_t most, size_t most_bytes);
void python_log_free(python_log* log);
void python_log_attach(python_log* log, arborist_engine* engine, int least);
size_t python_log_size(const python_log* log);
size_t python_log_dropped(const python_log* log);
int python_log_level(const python_log* log, size_t place);
const char* python_log_text(const python_log* log, size_t place, size_t* length);
extern "Python" arborist_code_answer python_code_rule(void* user, const char* question, size_t length);
"""


def declarations(header):
    """The header's own text without comments, preprocessor lines and what surrounds them."""
    text = re.sub(r"/\*.*?\*/", "", header, flags=re.DOTALL)
    text = "\n".join(line for line in text.splitlines() if not line.lstrip().startswith("#"))
    text = text.replace('extern "C" {', "").replace("ARBORIST_C_API ", "")
    return text[: text.rindex("}")] if text.rstrip().endswith("\n}") else text


def main(header, target):
    builder = cffi.FFI()
    builder.cdef(declarations(Path(header).read_text()) + QUEUE)
    builder.set_source("arborist._native", (Path(__file__).parent / "python_log.h").read_text())
    builder.emit_c_code(target)


if __name__ == "__main__":
    main(*sys.argv[1:])
