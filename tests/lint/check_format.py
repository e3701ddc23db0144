"""All C++ files are laid out as .clang-format says (clang-format 19: other versions lay out differently)."""
import os
import re
import subprocess
import sys

import sources

version = subprocess.run(["clang-format", "--version"], capture_output=True, text=True, check=True).stdout
if not re.search(r"version 19\.", version):
    sys.exit(f"clang-format 19 is needed, this is {version.strip()}")
paths = sources.code()
if not paths:
    sys.exit("no C++ file found")
bad = []
for start in range(0, len(paths), 40):
    result = subprocess.run(["clang-format", "--dry-run", "-Werror", "--ferror-limit=3", *paths[start:start + 40]],
                            cwd=sources.TOP, capture_output=True, text=True)
    if result.returncode:
        bad += sorted(set(re.findall(r"^(\S+?):\d+:\d+: error", result.stderr, re.M))) or [result.stderr.strip()]
for path in bad:
    print(f"{path}: not as clang-format lays it out")
if bad:
    sys.exit("repair with: clang-format -i " + " ".join(os.path.normpath(p) for p in bad))
print(f"{len(paths)} files are well laid out")
