"""Runs the programs of tests: which mutants each test comes past, and whether a mutant is caught."""
import os
import subprocess
import tempfile
import time
from pathlib import Path

END = 1 << 20 # as in mutant.h
TIME_ZONE = "CET-1CEST,M3.5.0,M10.5.0/3"


def run(program, arguments, limit, **variables):
    """The exit status of a program of tests, or "time" where it didn't end within `limit` seconds."""
    environment = {**os.environ, "TZ": TIME_ZONE, **variables}
    with subprocess.Popen([program, "--gtest_brief=1", *arguments], env=environment, stdin=subprocess.DEVNULL,
                          stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True) as process:
        try:
            return process.wait(timeout=limit)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, 9)
            return "time"


def tests_of(program):
    """The names of all tests of a program."""
    listed = subprocess.run([program, "--gtest_list_tests"], check=True, capture_output=True, text=True).stdout
    names, suite = [], ""
    for line in listed.splitlines():
        word = line.split("#")[0].rstrip()
        if word.startswith("  "):
            names.append(suite + word.strip())
        elif word.endswith("."):
            suite = word
    return names


def reach_of(program, test):
    """The numbers of the mutants that a test comes past, the seconds that it took, and whether it passed."""
    with tempfile.NamedTemporaryFile() as file:
        file.truncate(END)
        start = time.monotonic()
        status = run(program, [f"--gtest_filter={test}"], 300, ARBORIST_MUTANTS_REACHED=file.name)
        seconds = time.monotonic() - start
        content = Path(file.name).read_bytes()
    return [number for number, byte in enumerate(content) if byte], seconds, status == 0


def verdict_on(number, program, tests, seconds):
    """How the given tests of a program take the mutant: "survived", "failed", "crashed" or "time"."""
    with tempfile.NamedTemporaryFile("w", suffix=".flags") as flags:
        flags.write("--gtest_filter=" + ":".join(tests) + "\n--gtest_fail_fast\n")
        flags.flush()
        status = run(program, [f"--gtest_flagfile={flags.name}"], 20 + 10 * seconds, ARBORIST_MUTANT=str(number))
    if status == "time":
        return "time"
    return "survived" if status == 0 else "failed" if status == 1 else "crashed"
