#!/usr/bin/env python3
"""Generates the engine binding.

Usage: generate.py PACKAGE INCLUDE OUT
PACKAGE is the unpacked engine package, INCLUDE the binding's class headers, OUT the folder to write into.
A class header that does not fit the package's description (unknown operation, wrong number or type of
parameters) is an error, and nothing is written.
"""
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import bind  # noqa: E402
import emit_c  # noqa: E402
from description import Description  # noqa: E402
from interface import Error, Interface  # noqa: E402


def write(folder, name, text):
    path = os.path.join(folder, name)
    os.makedirs(os.path.dirname(path), exist_ok=True)
    try:
        with open(path, encoding='utf-8') as file:
            if file.read() == text:
                return
    except OSError:
        pass
    with open(path, 'w', encoding='utf-8', newline='\n') as file:
        file.write(text)


def main():
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    package, include, out = sys.argv[1:]
    description = Description(package)
    interface = Interface(include)
    try:
        files = bind.emit(description, interface, 'tools/cef/generate.py')
    except Error as error:
        sys.exit(f'generate.py: {error}')
    files['cef_c_api.h'] = emit_c.emit_header(description, 'tools/cef/generate.py')
    files['include/cef_version.h'] = emit_c.emit_version(description, 'tools/cef/generate.py')
    for name, text in files.items():
        write(out, name, text)


if __name__ == '__main__':
    main()
