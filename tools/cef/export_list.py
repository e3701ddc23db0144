#!/usr/bin/env python3
"""Writes a module definition with every name that a DLL exports, for a compiler whose tools make import libraries of it.

Usage: export_list.py DLL DEF
"""
import mmap
import os
import struct
import sys


def exports(dll):
    """The exported names of a 64-bit DLL's contents, in the order of its table."""
    header, = struct.unpack_from('<I', dll, 0x3c)
    if dll[header:header + 4] != b'PE\0\0' or dll[header + 24:header + 26] != b'\x0b\x02':
        raise ValueError('not a 64-bit DLL')
    sections, optional = struct.unpack_from('<H', dll, header + 6)[0], struct.unpack_from('<H', dll, header + 20)[0]
    table = [struct.unpack_from('<4I', dll, header + 24 + optional + 40 * i + 8) for i in range(sections)]

    def at(address):
        for size, start, raw_size, raw in table:
            if start <= address < start + max(size, raw_size):
                return address - start + raw
        raise ValueError(f'nothing lies at {address:#x}')

    directory = at(struct.unpack_from('<I', dll, header + 24 + 112)[0])
    count, = struct.unpack_from('<I', dll, directory + 24)
    names = at(struct.unpack_from('<I', dll, directory + 32)[0])
    for place in struct.unpack_from(f'<{count}I', dll, names):
        start = at(place)
        yield dll[start:dll.find(b'\0', start)].decode('ascii')


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    with open(sys.argv[1], 'rb') as file, mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ) as dll:
        names = list(exports(dll))
    if not names:
        sys.exit(f'{sys.argv[1]} exports nothing')
    with open(sys.argv[2], 'w', encoding='ascii', newline='\n') as out:
        out.write(f'LIBRARY {os.path.basename(sys.argv[1])}\nEXPORTS\n' + ''.join(f'  {name}\n' for name in names))


if __name__ == '__main__':
    main()
