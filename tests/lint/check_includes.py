"""Includes go downward. A room may include itself and what lies below; rooms of one rank do not know each other, so that no two
rooms can form a ring. The engine's binding is seen only from where it is meant to be seen, and games (demo, hook) see nothing but
the public headers."""
import os
import sys

import sources

RANK = {"core": 0, "render": 1, "controller": 1, "browser": 1, "layers": 2, "engine": 2, "engine/client": 3, "layers/web": 4,
        "api": 5}
MAY_USE_BINDING = {"cef", "render", "layers", "engine", "engine/client", "layers/web", "api"}


def exists(path):
    return os.path.isfile(os.path.join(sources.TOP, path))


def target(path, name):
    """Where an include leads: a path in the tree, or None for the system's."""
    for base in (os.path.dirname(path), "src", "include", "src/cef"):
        candidate = os.path.normpath(os.path.join(base, name)).replace(os.sep, "/")
        if exists(candidate):
            return candidate
    return None


def room(path):
    parts = path.split("/")
    if parts[0] == "src":
        upper = "/".join(parts[1:3])  # an upper floor of a room is a room of its own
        if len(parts) > 3 and upper in RANK:
            return upper
        return parts[1] if len(parts) > 2 else "src"
    return "public" if parts[0] == "include" else parts[0]


def fault(path, included):
    """Why `path` may not include `included`; None when it may."""
    user, used = room(path), room(included)
    if used == user or used == "public":
        return None
    if user == "public":
        return "a public header must stand without the library's own headers"
    if user in ("demo", "hook"):
        return "games see the public headers only"
    if user in ("tests", "bench", "fuzz"):
        return None
    if used in ("tests", "bench", "fuzz", "demo", "hook", "subprocess"):
        return f"the library does not know {used}/"
    if user == "cef":
        return None if used == "core" else "the binding uses nothing of the library but core"
    if user == "subprocess":
        return None if used in ("cef", "core") else "the child process uses the binding and core"
    if used == "cef":
        return None if user in MAY_USE_BINDING else f"{user} does not see the engine"
    if user not in RANK or used not in RANK:
        return f"unknown room: {user} or {used} (see tests/lint/check_includes.py)"
    if RANK[used] > RANK[user]:
        return f"{user} lies below {used}"
    if RANK[used] == RANK[user]:
        return f"{user} and {used} stand side by side"
    return None


def self_test():
    """The rules themselves: each line is a user, what it includes, and whether that is allowed."""
    for path, included, allowed in (
            ("src/core/a.cpp", "src/core/b.h", True), ("src/core/a.cpp", "src/render/b.h", False),
            ("src/render/a.cpp", "src/layers/b.h", False), ("src/layers/a.cpp", "src/engine/b.h", False),
            ("src/engine/a.cpp", "src/layers/b.h", False), ("src/render/a.cpp", "src/browser/b.h", False),
            ("src/engine/client/a.cpp", "src/layers/b.h", True), ("src/engine/client/a.cpp", "src/engine/b.h", True),
            ("src/engine/client/ime/a.cpp", "src/engine/client/b.h", True),
            ("src/engine/a.cpp", "src/engine/client/b.h", False), ("src/layers/a.cpp", "src/layers/web/b.h", False),
            ("src/engine/client/a.cpp", "src/layers/web/b.h", False), ("src/layers/web/a.cpp", "src/engine/client/b.h", True),
            ("src/layers/ime/a.cpp", "src/layers/b.h", True), ("src/layers/ime/a.cpp", "src/layers/web/b.h", False),
            ("src/layers/ime/a.cpp", "src/engine/b.h", False), ("src/core/wine/a.cpp", "src/core/b.h", True),
            ("src/engine/a.cpp", "src/api/b.h", False), ("src/api/a.cpp", "src/core/b.h", True),
            ("src/core/a.cpp", "src/cef/include/b.h", False), ("src/browser/a.cpp", "src/cef/include/b.h", False),
            ("src/render/a.cpp", "src/cef/include/b.h", True), ("src/cef/a.cpp", "src/engine/b.h", False),
            ("subprocess/a.cpp", "src/cef/include/b.h", True), ("subprocess/a.cpp", "src/engine/b.h", False),
            ("src/core/a.cpp", "include/zemo/b.h", True), ("include/zemo/a.h", "src/core/b.h", False),
            ("demo/a.cpp", "src/core/b.h", False), ("tests/unit/a.cpp", "src/api/b.h", True)):
        if (fault(path, included) is None) != allowed:
            sys.exit(f"the rules are broken: {path} includes {included}")


self_test()
bad = count = 0
for path in sources.code():
    for number, name, _ in sources.includes(sources.text(path) or ""):
        included = target(path, name)
        if included is None:
            continue
        count += 1
        why = fault(path, included)
        if why:
            bad += 1
            print(f"{path}:{number}: includes {name}: {why}")
if bad:
    sys.exit(f"{bad} includes go where they may not")
if not count:
    sys.exit("no include found")
print(f"{count} includes go downward")
