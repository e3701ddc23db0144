"""Reads the engine package's description of the C API: structures, enumerations, functions, version.

The package describes its C API as Python ctypes code.  That code is run here with a stand-in for the loaded
library, and what it defines is turned into plain Python objects with C type names.  Enumerations are simple
integers there; each becomes a type of its own here, so that its name reaches the generated declarations.
"""
import ctypes
import os
import re

SIMPLE = {
    ctypes.c_int32: 'int32_t', ctypes.c_uint32: 'uint32_t', ctypes.c_int64: 'int64_t', ctypes.c_uint64: 'uint64_t',
    ctypes.c_double: 'double', ctypes.c_float: 'float', ctypes.c_uint16: 'char16_t', ctypes.c_int16: 'int16_t',
    ctypes.c_ubyte: 'uint8_t', ctypes.c_byte: 'int8_t', ctypes.c_char: 'char', ctypes.c_void_p: 'void*',
    ctypes.c_wchar: 'wchar_t', ctypes.c_char_p: 'char*', ctypes.c_wchar_p: 'wchar_t*', None: 'void',
}
KEYWORDS = {'delete', 'register', 'default', 'operator', 'template', 'class', 'union', 'struct'}


class Function:
    """A C function, or a function pointer in a structure: name, result, argument types (C type names)."""

    def __init__(self, name, result, arguments):
        self.name, self.result, self.arguments = name, result, arguments


class Struct:
    """fields: list of (name, C type name or Function, array length or None, offset)."""

    def __init__(self, name, size, is_union):
        self.name, self.size, self.is_union, self.fields = name, size, is_union, []

    def function(self, name):
        for field, kind, _, _ in self.fields:
            if field == name and isinstance(kind, Function):
                return kind
        return None


class Enum:
    def __init__(self, name, signed, values):
        self.name, self.signed, self.values = name, signed, values


class _LibraryFunction:
    def __init__(self):
        self.restype, self.argtypes = None, []


class _Library:
    def __init__(self):
        self.__dict__['functions'] = {}

    def __getattr__(self, name):
        return self.functions.setdefault(name, _LibraryFunction())


def _is_callback(kind):
    return isinstance(kind, type) and issubclass(kind, ctypes._CFuncPtr)


def _is_pointer(kind):
    return isinstance(getattr(kind, '_type_', None), type) and not hasattr(kind, '_length_')


def _is_aggregate(kind):
    return isinstance(kind, type) and issubclass(kind, (ctypes.Structure, ctypes.Union))


class Description:
    def __init__(self, package):
        path = os.path.join(package, 'win_amd64', 'header.py')
        with open(path, encoding='utf-8') as file:
            source = file.read()
        source = re.sub(r'^from (\.\.|cef_capi).*$', '', source, flags=re.M)
        source = re.sub(r"_libraries\['FIXME_STUB'\] = .*", "_libraries['FIXME_STUB'] = LIBRARY", source)
        source = re.sub(r'^(?:c__EA_)?(\w+) = (ctypes\.c_u?int32) # enum', r"c__EA_\1 = ENUM('\1', \2)", source, flags=re.M)
        library = _Library()
        self._enum_types = {}
        loader, ctypes.WinDLL = getattr(ctypes, 'WinDLL', None), lambda *_: library
        space = {'LIBRARY': library, 'ENUM': self._make_enum, '__name__': 'header'}
        try:
            exec(compile(source, path, 'exec'), space)
        finally:
            if loader is None:
                del ctypes.WinDLL
            else:
                ctypes.WinDLL = loader
        self._names = {}
        for key, value in space.items():
            if _is_aggregate(value) and hasattr(value, '_fields_'):
                self._names.setdefault(value, re.sub(r'^(struct|union)__?', '', key))
        self.enums = {}
        for name, (kind, signed) in self._enum_types.items():
            values = space.get(f'c__EA_{name}__enumvalues') or space[f'{name}__enumvalues']
            names = self._enumerators(source, name, values)
            self.enums[name] = Enum(name, signed, names)
        self.structs = {}  # in the order in which they can be declared
        self._visited = set()
        for kind in list(self._names):
            self._visit(kind)
        self.functions = {name: Function(name, self._name_of(f.restype), [self._name_of(a) for a in f.argtypes])
                          for name, f in sorted(library.functions.items())}
        self.version = self._read_version(package)

    def _make_enum(self, name, base):
        kind = type(name, (base,), {})
        self._enum_types[name] = (kind, base is ctypes.c_int32)
        return kind

    @staticmethod
    def _enumerators(source, name, values):
        # The value table keeps one name a value; the assignments behind it have every name.
        match = re.search(r'^(?:c__EA_)?%s__enumvalues = \{.*?^\}\n((?:\w+ = -?\d+\n)*)' % re.escape(name), source, re.M | re.S)
        pairs = [(n, int(v)) for n, v in re.findall(r'^(\w+) = (-?\d+)$', match.group(1), re.M)] if match else []
        known = {n for n, _ in pairs}
        return pairs + [(n, v) for v, n in values.items() if n not in known]

    def _name_of(self, kind):
        if kind in SIMPLE:
            return SIMPLE[kind]
        if kind in self._names:
            return self._names[kind]
        if isinstance(kind, type) and kind.__name__ in self._enum_types:
            return kind.__name__
        if _is_callback(kind):
            return 'void*'
        if _is_pointer(kind):
            return 'void*' if _is_callback(kind._type_) else self._name_of(kind._type_) + '*'
        if getattr(kind, '__name__', '').startswith('struct_'):
            return re.sub(r'^struct__?', '', kind.__name__)
        raise TypeError(f'the description has a type that is not understood: {kind}')

    def _visit(self, kind):
        if kind in self._visited:
            return
        self._visited.add(kind)
        for field in kind._fields_:
            inner = field[1]._type_ if hasattr(field[1], '_length_') else field[1]
            if _is_aggregate(inner) and hasattr(inner, '_fields_'):
                self._visit(inner)
        name = self._names[kind]
        if not name.startswith('cef_'):
            return
        struct = Struct(name, ctypes.sizeof(kind), issubclass(kind, ctypes.Union))
        for field in kind._fields_:
            field_name, field_kind = field[0], field[1]
            if field_name.startswith('PADDING_'):
                continue
            offset = getattr(kind, field_name).offset
            if field_name in KEYWORDS:
                field_name += '_'
            if _is_callback(field_kind):
                what = Function(field_name, self._name_of(field_kind._restype_),
                                [self._name_of(a) for a in field_kind._argtypes_])
                struct.fields.append((field_name, what, None, offset))
            elif hasattr(field_kind, '_length_'):
                struct.fields.append((field_name, self._name_of(field_kind._type_), field_kind._length_, offset))
            else:
                struct.fields.append((field_name, self._name_of(field_kind), None, offset))
        self.structs[name] = struct

    @staticmethod
    def _read_version(package):
        space = {}
        with open(os.path.join(package, 'version.py'), encoding='utf-8') as file:
            exec(compile(file.read(), 'version.py', 'exec'), space)
        version = {key: value for key, value in space.items() if key.startswith('CEF_') and not key.endswith('_H_')}
        match = re.search(r'chromium-(\d+)\.(\d+)\.(\d+)\.(\d+)', version['CEF_VERSION'])
        for part, value in zip(('MAJOR', 'MINOR', 'BUILD', 'PATCH'), match.groups()):
            version[f'CHROME_VERSION_{part}'] = int(value)
        return version
