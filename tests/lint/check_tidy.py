"""clang-tidy over the library, its child process, hook and demo, with the findings kept by content.

    check_tidy.py BUILD_FOLDER CACHE_FOLDER [FILE...]

A file is checked again when it, a header that it includes, its compile command, a .clang-tidy or clang-tidy itself is other than
last time. The cache's keys hold no absolute path: another copy of the tree finds the same results."""
import concurrent.futures
import hashlib
import json
import os
import re
import shlex
import subprocess
import sys
import tempfile
import time

import sources

FOLDERS = ("src", "subprocess", "hook", "demo")
build, cache, only = os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2]), sys.argv[3:]
os.makedirs(cache, exist_ok=True)


def sha(data):
    return hashlib.sha256(data if isinstance(data, bytes) else data.encode()).hexdigest()


hashes = {}


def file_hash(path):
    if path not in hashes:
        try:
            with open(path, "rb") as file:
                hashes[path] = sha(file.read())
        except OSError:
            hashes[path] = "missing"
    return hashes[path]


def dependencies():
    """object file -> headers, as the build found them."""
    found, current = {}, None
    out = subprocess.run(["ninja", "-C", build, "-t", "deps"], capture_output=True, text=True, check=True).stdout
    for line in out.splitlines():
        if line and not line[0].isspace():
            current = found.setdefault(line.split(":")[0], [])
        elif line.strip() and current is not None:
            current.append(os.path.normpath(os.path.join(build, line.strip())))
    return found


def plain(command):
    """The compile command without the compiler cache in front."""
    words = shlex.split(command)
    while words and re.search(r"ccache(\.exe)?$", words[0]):
        words = words[1:]
    return words


with open(os.path.join(build, "compile_commands.json"), encoding="utf-8") as file:
    entries = json.load(file)
config = "".join(sources.text(f) for f in sources.files() if f.split("/")[-1] == ".clang-tidy")  # a folder may have its own
version = subprocess.run(["clang-tidy", "--version"], capture_output=True, text=True, check=True).stdout
headers = dependencies()
own = (sources.TOP + os.sep,)
chosen, jobs = {}, []
for entry in entries:
    path = os.path.normpath(os.path.join(entry["directory"], entry["file"]))
    relative = os.path.relpath(path, sources.TOP).replace(os.sep, "/")
    if relative.split("/")[0] not in FOLDERS or not relative.endswith(".cpp") or path in chosen:
        continue
    if only and relative not in only:
        continue
    words = plain(entry.get("command") or shlex.join(entry["arguments"]))
    chosen[path] = {"directory": entry["directory"], "file": path, "arguments": words}
    output = entry.get("output", "")
    parts = [version, config, " ".join(words).replace(sources.TOP, "TOP"), relative, file_hash(path)]
    used = headers.get(output) or headers.get(os.path.relpath(os.path.join(entry["directory"], output), build)) or []
    parts += sorted(os.path.relpath(h, sources.TOP) + file_hash(h) for h in used if h.startswith(own))
    jobs.append((relative, path, sha("\n".join(parts))))
if not jobs:
    sys.exit("no source to check")

work = tempfile.mkdtemp(dir=cache, prefix="work-")
with open(os.path.join(work, "compile_commands.json"), "w", encoding="utf-8") as file:
    json.dump(list(chosen.values()), file)


def check(job):
    relative, path, key = job
    kept = os.path.join(cache, key)
    if os.path.exists(kept):
        os.utime(kept)
        with open(kept, encoding="utf-8") as file:
            return relative, file.read(), True
    result = subprocess.run(["clang-tidy", "--quiet", "-p", work, path], capture_output=True, text=True, cwd=sources.TOP)
    findings = result.stdout.strip()
    if result.returncode and not findings:
        findings = result.stderr.strip() or f"clang-tidy ended with {result.returncode}"
    findings = findings if result.returncode else ""
    findings = findings.replace(sources.TOP + os.sep, "")
    with tempfile.NamedTemporaryFile("w", dir=cache, delete=False, encoding="utf-8") as file:
        file.write(findings)
    os.replace(file.name, kept)
    return relative, findings, False


started, old, bad = time.monotonic(), 0, 0
try:
    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        for relative, findings, was_kept in pool.map(check, jobs):
            old += was_kept
            if findings:
                bad += 1
                print(f"== {relative}\n{findings}\n", flush=True)
finally:
    for name in os.listdir(work):
        os.remove(os.path.join(work, name))
    os.rmdir(work)
for name in os.listdir(cache):  # results that nobody asked for in a month
    path = os.path.join(cache, name)
    if os.path.isfile(path) and time.time() - os.path.getmtime(path) > 30 * 86400:
        os.remove(path)
print(f"{len(jobs)} files, {old} of them known, {time.monotonic() - started:.1f} s")
if bad:
    sys.exit(f"clang-tidy found something in {bad} files")
