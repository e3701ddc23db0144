"""Every unit once more through clang, without making code, with the findings kept by content (units.py).

    check_clang.py BUILD_FOLDER CACHE_FOLDER [FILE...]
    check_clang.py --engine-headers BUILD_FOLDER CACHE_FOLDER [FILE...]

The first form asks what Visual C++ would say at /W4, as far as clang knows it: what is no standard C++, names that hide others
(C4456 to C4459), conversions that lose something (C4244, C4267), addresses of imported functions where a constant is needed.

The second compiles against the engine's official headers, in the place that ZEMO_CEF_HEADERS names (the folder that holds
include/), instead of this tree's own description of the engine. It ends with 77 where that is not set."""
import os
import subprocess
import sys

import sources
from units import check_all, file_hash, sha, units

FOLDERS = ("src", "subprocess", "hook", "demo", "tests", "bench")
PEDANTIC = ["-fms-extensions", "-Wpedantic", "-Wgnu", "-Wshadow", "-Wshadow-field-in-constructor", "-Wshorten-64-to-32",
            "-Wimplicit-int-conversion", "-Wfloat-conversion", "-Wimplicit-int-float-conversion"]
GENERATED = ("binding_functions.h", "binding_members.h", "binding_runtime.h", "binding_traits.h", "cef_c_api.h",
             "support/wrapped_browser.h")
SKIPPED = 77


def clang(unit):
    """The unit's command for clang: no output, and headers where the cross compiler has them."""
    words, compiler = list(unit.words), os.path.basename(unit.words[0])
    place = words.index("-o")
    del words[place:place + 2]
    words.remove("-c")
    target = [f"--target={compiler[:-len('-g++')]}"] if compiler.endswith("-g++") else []
    return ["clang++", *target, "-fsyntax-only", *words[1:]]


def with_official_headers(unit, headers):
    """The same against the official headers, or None for what belongs to the generated binding."""
    text = sources.text(unit.relative)
    if unit.relative == "src/cef/cef_string.cpp" or any(f'"{name}"' in text for name in GENERATED):
        return None
    words, result = clang(unit), []
    while words:
        word = words.pop(0)
        if word == "-isystem" and ("src/cef" in words[0] or words[0].endswith("/generated")):
            words.pop(0)
            continue
        result.append(word)
    return result + ["-isystem", headers, "-DZEMO_CEF_DISTRIBUTION"]


def run(words, directory):
    result = subprocess.run(words, capture_output=True, text=True, cwd=directory)
    return (result.stderr.strip() or f"clang ended with {result.returncode}") if result.returncode else ""


def main():
    arguments = sys.argv[1:]
    official = arguments[0] == "--engine-headers"
    build, cache, only = (os.path.abspath(arguments[official]), os.path.abspath(arguments[official + 1]), arguments[official + 2:])
    version = subprocess.run(["clang++", "--version"], capture_output=True, text=True, check=True).stdout
    if not official:
        commands = {unit: clang(unit) + PEDANTIC for unit in units(build, FOLDERS, only)}
        key = " ".join(PEDANTIC)
    else:
        headers = os.environ.get("ZEMO_CEF_HEADERS", "")
        if not headers:
            print("skipped: ZEMO_CEF_HEADERS does not name the engine's official headers")
            sys.exit(SKIPPED)
        if not os.path.isfile(os.path.join(headers, "include", "cef_app.h")):
            sys.exit(f"ZEMO_CEF_HEADERS: {headers}/include/cef_app.h is not there")
        commands = {unit: with_official_headers(unit, headers) for unit in units(build, FOLDERS, only)}
        commands = {unit: words for unit, words in commands.items() if words}
        names = [os.path.join(folder, name) for folder, _, here in sorted(os.walk(os.path.join(headers, "include"))) for name in here]
        key = "official " + sha("".join(sorted(os.path.relpath(n, headers) + file_hash(n) for n in names)))
    bad = check_all(cache, [(u, u.key(version, key)) for u in commands], lambda u: run(commands[u], u.directory))
    if bad:
        sys.exit(f"clang found something in {bad} files")


if __name__ == "__main__":
    main()
