#!/usr/bin/env python3
"""Makes a wheel of the built package: make_wheel.py PACKAGE_FOLDER VERSION TARGET_FOLDER

The module holds arborist itself. What it is linked with apart from the C and C++ libraries comes along beside it, under
names of its own, so that it neither uses nor disturbs what other modules of the process have loaded. The licences of all
that is in it come along, too. Needs patchelf and a Debian system, which knows the licence of each library. The same files
give the same bytes."""
import base64
import csv
import hashlib
import io
import os
import re
import shutil
import subprocess
import sys
import sysconfig
import tempfile
import zipfile
from pathlib import Path

# What every system has that can run the module at all.
OF_THE_SYSTEM = re.compile(r"(linux-vdso|ld-linux[^.]*|libc|libm|libdl|libpthread|librt|libstdc\+\+|libgcc_s)\.so")
NEEDS = "cffi>=1.15"
LICENSE = Path(__file__).resolve().parents[2] / "LICENSE"
# Debian's packages of what the module itself holds.
IN_THE_MODULE = ("libsodium-dev", "robin-map-dev")


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def needed_by(file):
    """The libraries that a file names itself and that have to come along."""
    return [name for name in run("patchelf", "--print-needed", str(file)).split() if not OF_THE_SYSTEM.match(name)]


def places_of(file):
    """Where the loader finds all libraries of a file, those of its libraries, too."""
    return dict(re.findall(r"^\s*(\S+) => (/\S+)", run("ldd", str(file)), re.MULTILINE))


def own_name(name):
    return "libarborist-" + name.removeprefix("lib")


def package_of(library):
    """Debian's package of a library's file, whose folder may be noted with or without "/usr"."""
    file = Path(library).resolve()
    found = run("dpkg", "-S", f"*/{file.parent.name}/{file.name}")
    return found.split(":", 1)[0]


def notice_of(package):
    return Path("/usr/share/doc", package, "copyright").read_bytes()


def bring_along(module):
    """Copies the module's libraries beside it and lets module and copies find each other alone. Gives their packages."""
    places = places_of(module)
    waiting, done, packages = [module], set(), set()
    while waiting:
        file = waiting.pop()
        for name in needed_by(file):
            copy = module.parent / own_name(name)
            run("patchelf", "--replace-needed", name, copy.name, str(file))
            if name not in done:
                done.add(name)
                packages.add(package_of(places[name]))
                shutil.copyfile(places[name], copy)
                copy.chmod(0o755)
                run("patchelf", "--set-soname", copy.name, str(copy))
                waiting.append(copy)
        run("patchelf", "--set-rpath", "$ORIGIN", str(file))
    return packages


def licences_of(packages):
    notices = {f"{package}.copyright": notice_of(package) for package in sorted({*packages, *IN_THE_MODULE})}
    return {"LICENSE": LICENSE.read_bytes(), **notices}


def metadata(version, tag, licences):
    info = f"arborist-{version}.dist-info"
    about = (f"Metadata-Version: 2.1\nName: arborist\nVersion: {version}\n"
             "Summary: Fault tree diagnosis for consumer devices\nAuthor: The arborist authors\nLicense: Apache-2.0\n"
             + "".join(f"License-File: {name}\n" for name in licences)
             + f"Requires-Python: >=3.9\nRequires-Dist: {NEEDS}\n")
    wheel = f"Wheel-Version: 1.0\nGenerator: make_wheel\nRoot-Is-Purelib: false\nTag: {tag}\n"
    texts = {f"{info}/licenses/{name}": text for name, text in licences.items()}
    return {f"{info}/METADATA": about.encode(), f"{info}/WHEEL": wheel.encode(), **texts}, f"{info}/RECORD"


def with_record(files, record):
    rows = io.StringIO()
    writer = csv.writer(rows, lineterminator="\n")
    for name, content in files.items():
        digest = base64.urlsafe_b64encode(hashlib.sha256(content).digest()).rstrip(b"=").decode()
        writer.writerow([name, f"sha256={digest}", len(content)])
    writer.writerow([record, "", ""])
    return {**files, record: rows.getvalue().encode()}


def write(target, files):
    with zipfile.ZipFile(target, "w", zipfile.ZIP_DEFLATED) as archive:
        for name, content in files.items():
            entry = zipfile.ZipInfo(name, (1980, 1, 1, 0, 0, 0))
            entry.external_attr = (0o755 if ".so" in name else 0o644) << 16
            entry.compress_type = zipfile.ZIP_DEFLATED
            archive.writestr(entry, content)


def main(package, version, target):
    tag = "cp39-abi3-" + sysconfig.get_platform().replace("-", "_").replace(".", "_")
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name) / "arborist"
        shutil.copytree(package, folder, ignore=shutil.ignore_patterns("__pycache__"))
        module = folder / "_native.abi3.so"
        run("strip", "--strip-unneeded", str(module))
        licences = licences_of(bring_along(module))
        files = {f"arborist/{path.name}": path.read_bytes() for path in sorted(folder.iterdir())}
    about, record = metadata(version, tag, licences)
    os.makedirs(target, exist_ok=True)
    wheel = Path(target) / f"arborist-{version}-{tag}.whl"
    write(wheel, with_record({**files, **about}, record))
    print(wheel)


if __name__ == "__main__":
    main(*sys.argv[1:])
