"""snippets.py OUT.cpp PAGE...: makes one source of all C++ examples of the pages, so that a compiler sees what readers copy.

An example that begins with a definition stands in a namespace of its own; one that begins with a statement in a function,
whose surroundings are what the guides take for granted (snippets.h).
"""
import re
import sys

DEFINITION = re.compile(r"(//[^\n]*\n|\s)*(#include|struct|class|enum|void|bool|int|static|std::|using|constexpr|namespace|template)\b")


def examples(text):
    """(line, code) of each ```cpp block, also of an indented one."""
    for match in re.finditer(r"^([ ]*)```cpp\n(.*?)^[ ]*```", text, re.S | re.M):
        indent = len(match.group(1))
        code = "\n".join(line[indent:] if line.startswith(" " * indent) else line for line in match.group(2).split("\n"))
        yield text.count("\n", 0, match.start()) + 2, code


def wrapped(number, page, line, code):
    includes = "".join(found + "\n" for found in re.findall(r"^#include.*$", code, re.M))
    code = re.sub(r"^#include.*$", "", code, flags=re.M)
    head = f'namespace snippet_{number} {{\n' if DEFINITION.match(code) else \
        f'void snippet_{number}([[maybe_unused]] Surroundings& around) {{\n    SURROUNDINGS {{\n'
    tail = "}" if head.startswith("namespace") else "}}"
    return f'{includes}{head}#line {line} "{page}"\n{code}\n{tail}\n'


def main(out, pages):
    parts, count = ['#include "snippets.h"\n'], 0
    for page in pages:
        with open(page, encoding="utf-8") as file:
            for line, code in examples(file.read()):
                count += 1
                parts.append(wrapped(count, page, line, code))
    assert count, "no page holds an example"
    with open(out, "w", encoding="utf-8") as file:
        file.write("\n".join(parts))
    print(f"{count} examples")


assert [line for line, _ in examples("a\n```cpp\nint x;\n```\n  ```cpp\n  f();\n  ```\n")] == [3, 6]
main(sys.argv[1], sys.argv[2:])
