"""Units as the build compiles them, and checks of a unit whose findings are kept by content: a unit is checked again when it,
a header that it includes, its command or the check itself is other than last time. The keys hold no absolute path: another copy
of the tree finds the same results."""
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


def sha(data):
    return hashlib.sha256(data if isinstance(data, bytes) else data.encode()).hexdigest()


_hashes = {}


def file_hash(path):
    if path not in _hashes:
        try:
            with open(path, "rb") as file:
                _hashes[path] = sha(file.read())
        except OSError:
            _hashes[path] = "missing"
    return _hashes[path]


def _dependencies(build):
    """object file -> what it was made from, as the build found it."""
    found, current = {}, None
    out = subprocess.run(["ninja", "-C", build, "-t", "deps"], capture_output=True, text=True, check=True).stdout
    for line in out.splitlines():
        if line and not line[0].isspace():
            current = found.setdefault(line.split(":")[0], [])
        elif line.strip() and current is not None:
            current.append(os.path.normpath(os.path.join(build, line.strip())))
    return found


# Options that come with precompiled headers and with groups of sources.
FOR_THE_BUILD = ("-Winvalid-pch", "-Wno-array-bounds", "-Wno-stringop-overread", "-Wno-subobject-linkage")
GROUP = re.compile(r"/unity_[^/]*_cxx[.]cxx$")


def _sources(path):
    """What the build compiles as `path`: itself, or the sources of a group."""
    if not GROUP.search(path.replace(os.sep, "/")):
        return [path]
    with open(path, encoding="utf-8") as file:
        return re.findall(r'^#include "(.+\.cpp)"$', file.read(), re.M)


def _plain(command):
    """The compile command without the compiler cache in front and without precompiled headers, which hide what a unit
    forgets to include."""
    words = shlex.split(command)
    while words and re.search(r"ccache(\.exe)?$", words[0]):
        words = words[1:]
    while "-include" in words:
        place = words.index("-include")
        del words[place:place + 2]
    return [word for word in words if word not in FOR_THE_BUILD]


class Unit:
    def __init__(self, path, relative, directory, words, headers):
        self.path, self.relative, self.directory, self.words, self.headers = path, relative, directory, words, headers

    def key(self, *check):
        parts = list(check) + [" ".join(self.words).replace(sources.TOP, "TOP"), self.relative, file_hash(self.path)]
        parts += sorted(os.path.relpath(h, sources.TOP) + file_hash(h) for h in self.headers)
        return sha("\n".join(parts))


def units(build, folders, only=()):
    """Each source below `folders` that the build compiles, once."""
    with open(os.path.join(build, "compile_commands.json"), encoding="utf-8") as file:
        entries = json.load(file)
    headers, found, own = _dependencies(build), {}, sources.TOP + os.sep
    for entry in entries:
        compiled = os.path.normpath(os.path.join(entry["directory"], entry["file"]))
        output = entry.get("output", "")
        used = headers.get(output) or headers.get(os.path.relpath(os.path.join(entry["directory"], output), build)) or []
        command = _plain(entry.get("command") or shlex.join(entry["arguments"]))
        group = [os.path.normpath(path) for path in _sources(compiled)]
        for path in group:
            relative = os.path.relpath(path, sources.TOP).replace(os.sep, "/")
            if relative.split("/")[0] not in folders or not relative.endswith(".cpp") or path in found:
                continue
            if only and relative not in only:
                continue
            words = [path if word == compiled else word for word in command]
            # A group's headers, for each of its sources: one more check at times, and none is missed. The group's own
            # file names its sources in full.
            includes = [h for h in used if h.startswith(own) and h not in group and h != compiled]
            found[path] = Unit(path, relative, entry["directory"], words, includes)
    if not found:
        sys.exit("no source to check")
    return list(found.values())


def check_all(cache, jobs, check):
    """jobs: (unit, key). `check` answers with a unit's findings, or an empty text. Returns the number of units with some."""
    def known_or_checked(job):
        unit, key = job
        kept = os.path.join(cache, key)
        if os.path.exists(kept):
            os.utime(kept)
            with open(kept, encoding="utf-8") as file:
                return unit, file.read(), True
        findings = check(unit).replace(sources.TOP + os.sep, "")
        with tempfile.NamedTemporaryFile("w", dir=cache, delete=False, encoding="utf-8") as file:
            file.write(findings)
        os.replace(file.name, kept)
        return unit, findings, False

    os.makedirs(cache, exist_ok=True)
    started, known, bad = time.monotonic(), 0, 0
    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        for unit, findings, was_known in pool.map(known_or_checked, jobs):
            known += was_known
            if findings:
                bad += 1
                print(f"== {unit.relative}\n{findings}\n", flush=True)
    for name in os.listdir(cache):  # results that nobody asked for in a month
        path = os.path.join(cache, name)
        if os.path.isfile(path) and time.time() - os.path.getmtime(path) > 30 * 86400:
            os.remove(path)
    print(f"{len(jobs)} files, {known} of them known, {time.monotonic() - started:.1f} s")
    return bad
