"""What the checks of this folder look at: the project's own files, without what is built or belongs to git."""
import os
import re

TOP = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
CODE_FOLDERS = ("src", "include", "subprocess", "hook", "demo", "tests", "bench", "fuzz")


def files(top=TOP):
    """Every file of the tree, relative to `top`, with forward slashes."""
    for folder, names, here in os.walk(top):
        relative = os.path.relpath(folder, top).replace(os.sep, "/")
        relative = "" if relative == "." else relative + "/"
        names[:] = sorted(n for n in names if n != ".git" and n != "__pycache__" and not n.startswith("cmake-build")
                          and not (relative == "" and (n.startswith("build") or n == "out")))
        for name in sorted(here):
            if name != ".git" and not name.endswith((".swp", ".pyc")):
                yield relative + name


def code(top=TOP, extensions=(".h", ".cpp")):
    return [f for f in files(top) if f.split("/")[0] in CODE_FOLDERS and f.endswith(extensions)]


def text(path, top=TOP):
    """The file's text, or None where it is not text."""
    with open(os.path.join(top, path), "rb") as file:
        data = file.read()
    if b"\0" in data:
        return None
    return data.decode("utf-8", "replace")


def includes(content):
    """(line number, name, quoted?) of each include."""
    for number, line in enumerate(content.splitlines(), 1):
        match = re.match(r'\s*#\s*include\s*(["<])([^">]+)[">]', line)
        if match:
            yield number, match.group(2), match.group(1) == '"'
