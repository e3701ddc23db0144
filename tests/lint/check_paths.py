"""Every path that a page of documentation names is there: in backticks (with a slash in it) and as the target of a link."""
import os
import re
import sys

import sources

# Made by the build, or places in an installed tree.
NOT_HERE = ("build/", "out/", "bin/", "lib/", "cefsubprocess/", "share/")
MEDIA = {"text", "image", "application", "audio", "video", "font"}


def candidates(content):
    """(line number, path) of what looks like a path of the tree."""
    fenced = False
    for number, line in enumerate(content.splitlines(), 1):
        if line.lstrip().startswith("```"):
            fenced = not fenced
            continue
        if fenced:
            continue
        for span in re.findall(r"`([^`]+)`", line):
            word = span.split()[0] if span.strip() else ""
            if " " in span.strip() and not word.startswith("./"):
                continue
            if "/" in word and re.fullmatch(r"(\./)?[A-Za-z0-9_.{},*/-]+", word) and "//" not in word and not word.startswith("/"):
                yield number, word
        for link in re.findall(r"\]\(([^)#\s]+)[^)]*\)", line):
            if not re.match(r"[a-z]+:", link):
                yield number, link


def expand(word):
    """src/{a,b}/c is two paths."""
    match = re.search(r"\{([^{}]*)\}", word)
    if not match:
        return [word]
    return [p for part in match.group(1).split(",") for p in expand(word[:match.start()] + part + word[match.end():])]


def is_there(page, path):
    import glob
    path = path[2:] if path.startswith("./") else path
    if path.startswith(NOT_HERE) or path.split("/")[0] in MEDIA:
        return True
    for base in ("", os.path.dirname(page), "include", "src"):
        full = os.path.join(sources.TOP, base, path)
        if glob.glob(full) if "*" in path else os.path.exists(full):
            return True
    return False


assert list(candidates("a `src/x.h` and `./run test` and `a b/c` `x` [l](docs/y.md)")) == [(1, "src/x.h"), (1, "./run"), (1, "docs/y.md")]
assert expand("src/{a,b}/c") == ["src/a/c", "src/b/c"]
assert not is_there("README.md", "src/no_such_file.h") and is_there("README.md", "tests/lint")

pages = [f for f in sources.files() if os.path.basename(f) == "README.md" or f in ("CONTRIBUTING.md", "ARCHITECTURE.md")]
bad = count = 0
for page in pages:
    for number, word in candidates(sources.text(page)):
        for path in expand(word):
            count += 1
            if not is_there(page, path):
                bad += 1
                print(f"{page}:{number}: {path} is not there")
if bad:
    sys.exit(f"{bad} paths lead nowhere")
print(f"{count} paths on {len(pages)} pages are there")
