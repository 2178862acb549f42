"""A wheel is whole: it installs into a new virtual environment, brings its libraries along, and prints what it should.

usage: wheel_test.py COMMAND PACKAGE_FOLDER VERSION
"""
import os
import re
import shutil
import subprocess
import sys
import sysconfig
import tempfile
import unittest
import zipfile
from pathlib import Path

ROOT = Path(__file__).resolve().parents[3]
LOADED = """
import arborist
print(arborist.__version__)
arborist.detect("laptop")
maps = open("/proc/self/maps").read().split()
print(*sorted({path for path in maps if path.startswith("/") and ".so" in path}), sep="\\n")
"""


def make_wheel(folder):
    made = subprocess.run([sys.executable, "-B", ROOT / "bindings/python/make_wheel.py", PACKAGE, VERSION, folder],
                          check=True, capture_output=True, text=True)
    return Path(made.stdout.strip())


class WheelTest(unittest.TestCase):
    def setUp(self):
        self.folder = Path(self.enterContext(tempfile.TemporaryDirectory()))

    def test_the_same_package_gives_the_same_bytes(self):
        one, other = make_wheel(self.folder / "one"), make_wheel(self.folder / "other")
        self.assertEqual(one.read_bytes(), other.read_bytes())

    def test_the_licences_of_all_that_is_in_it_are_in_it(self):
        with zipfile.ZipFile(make_wheel(self.folder)) as wheel:
            info = f"arborist-{VERSION}.dist-info"
            texts = {Path(name).name: wheel.read(name).decode() for name in wheel.namelist() if f"{info}/licenses/" in name}
            told = re.findall(r"^License-File: (.*)$", wheel.read(f"{info}/METADATA").decode(), re.MULTILINE)
            libraries = [name for name in wheel.namelist() if "/libarborist-" in name]
        self.assertEqual(sorted(told), sorted(texts))
        self.assertEqual(texts["LICENSE"], (ROOT / "LICENSE").read_text())
        self.assertIn("ISC", texts["libsodium-dev.copyright"])
        self.assertIn("MIT", texts["robin-map-dev.copyright"])
        self.assertEqual(len(texts), 3 + len(libraries))

    def test_it_runs_in_a_clean_environment(self):
        wheel = make_wheel(self.folder)
        environment = {key: value for key, value in os.environ.items() if key != "PYTHONPATH"}
        subprocess.run([sys.executable, "-m", "venv", self.folder / "venv"], check=True)
        python = self.folder / "venv/bin/python"
        # The one package that the wheel asks for, put there from this machine's Python instead of from the network.
        site = next((self.folder / "venv").glob("lib/python3*/site-packages"))
        for backend in Path(sysconfig.get_path("platlib", "deb_system")).glob("_cffi_backend*.so"):
            shutil.copy(backend, site)
        subprocess.run([python, "-m", "pip", "install", "--quiet", "--no-index", "--no-deps", wheel], check=True,
                       env=environment, capture_output=True)
        subprocess.run([ROOT / "examples/laptop/prepare.sh", COMMAND, self.folder / "laptop"], check=True,
                       capture_output=True)
        told = subprocess.run([python, "-I", "-c", LOADED], cwd=self.folder, env=environment, check=True,
                              capture_output=True, text=True).stdout.splitlines()
        self.assertEqual(told[0], VERSION)
        # Not libz: the interpreter has loaded the system's for itself.
        foreign = [path for path in told[1:] if not path.startswith(os.path.realpath(self.folder))
                   and any(name in path for name in ("sqlite3", "tinyxml2", "jsoncpp", "minizip", "arborist"))]
        self.assertEqual(foreign, [])
        self.assertGreaterEqual(sum("libarborist-" in path for path in told), 5, told)
        (self.folder / "fleet").mkdir()
        printed = subprocess.run([python, "-I", ROOT / "examples/python-host/fleet.py", "laptop", "fleet"],
                                 cwd=self.folder, env=environment, check=True, capture_output=True, text=True)
        self.assertEqual(printed.stdout, (ROOT / "examples/python-host/expected.txt").read_text())


if __name__ == "__main__":
    COMMAND, PACKAGE, VERSION = sys.argv[1:4]
    sys.exit(unittest.main(argv=sys.argv[:1] + sys.argv[4:]))
