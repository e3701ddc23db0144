"""No file names a package registry's host (the machine's own configuration does) or a path that one machine has, and none
looks for windows from another window on (tests/support/top_windows.h says why)."""
import re
import sys

import sources

HOSTS = [a + "." + b for a, b in (
    ("deb", "debian.org"), ("ftp", "debian.org"), ("security", "debian.org"), ("snapshot", "debian.org"), ("archive", "ubuntu.com"),
    ("pypi", "org"), ("files", "pythonhosted.org"), ("registry", "npmjs.org"), ("crates", "io"), ("proxy", "golang.org"),
    ("repo1.maven", "org"), ("repo.maven", "apache.org"))]
# A folder of people or of this work where a path can begin; a longer word or an address before it makes it something else.
MACHINE_PATH = re.compile(r"(?<![\w.$}*])/(?:home|work|root)/[\w.]|(?<![\w.$}*])/tmp/(?:wt|ground|x|bash_jobs)\b|\b[A-Z]:\\{1,2}Users\\{1,2}\w")
NEXT_WINDOW = re.compile(r"FindWindowEx[AW]?\(\s*[^,()]+,\s*(?!nullptr\b)\w")
HOST = re.compile("|".join(re.escape(h) for h in HOSTS), re.I)

assert MACHINE_PATH.search('"' + "/ho" + 'me/me/x"') and MACHINE_PATH.search(" /wo" + "rk/x")
assert not MACHINE_PATH.search("http://127.0.0.1/ho" + "me/x") and not MACHINE_PATH.search("$R/ro" + "ot/x")
assert NEXT_WINDOW.search("FindWindow" + "ExW(nullptr, found, name") and not NEXT_WINDOW.search("FindWindowExW(window, nullptr, name")
assert HOST.search("https://deb." + "debian.org/debian")

bad = count = 0
for path in sources.files():
    content = sources.text(path)
    if content is None:
        continue
    count += 1
    for number, line in enumerate(content.splitlines(), 1):
        for pattern, what in ((HOST, "a registry's host"), (MACHINE_PATH, "a path of one machine"),
                              (NEXT_WINDOW, "a search that can hang Wine's server")):
            match = pattern.search(line)
            if match:
                bad += 1
                print(f"{path}:{number}: {what}: {match.group(0)}")
if bad:
    sys.exit(f"{bad} words that no file may hold")
print(f"{count} files are clean")
