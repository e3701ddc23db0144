"""clang-tidy over the library, its child process, hook and demo, with the findings kept by content (units.py).

    check_tidy.py BUILD_FOLDER CACHE_FOLDER [FILE...]"""
import json
import os
import subprocess
import sys
import tempfile

import sources
from units import check_all, units

FOLDERS = ("src", "subprocess", "hook", "demo")
build, cache, only = os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2]), sys.argv[3:]
os.makedirs(cache, exist_ok=True)
config = "".join(sources.text(f) for f in sources.files() if f.split("/")[-1] == ".clang-tidy")  # a folder may have its own
version = subprocess.run(["clang-tidy", "--version"], capture_output=True, text=True, check=True).stdout
chosen = units(build, FOLDERS, only)
work = tempfile.mkdtemp(dir=cache, prefix="work-")
with open(os.path.join(work, "compile_commands.json"), "w", encoding="utf-8") as file:
    json.dump([{"directory": u.directory, "file": u.path, "arguments": u.words} for u in chosen], file)


def check(unit):
    result = subprocess.run(["clang-tidy", "--quiet", "-p", work, unit.path], capture_output=True, text=True, cwd=sources.TOP)
    if not result.returncode:
        return ""
    return result.stdout.strip() or result.stderr.strip() or f"clang-tidy ended with {result.returncode}"


try:
    bad = check_all(cache, [(u, u.key(version, config)) for u in chosen], check)
finally:
    for name in os.listdir(work):
        os.remove(os.path.join(work, name))
    os.rmdir(work)
if bad:
    sys.exit(f"clang-tidy found something in {bad} files")
