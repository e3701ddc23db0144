"""Reads the class headers of the binding: what they declare is what the generator binds.

A marker comment precedes each declaration that crosses to the engine:
  //@engine     class whose objects the engine makes and the system calls
  //@client     class whose objects the system makes and the engine calls
  //@scoped     engine class without references, alive during one call only
  //@function   global function
  //@capi NAME  before an operation: its C name, where it does not follow from the C++ name
  //@optional NAMES  after these: parameters whose text may be empty; with another one empty nothing is called
"""
import os
import re


class Error(Exception):
    pass


def c_name(name):
    """The engine's rule: a small letter followed by a capital one parts two words."""
    result, last = '', ''
    for char in name:
        if result and not char.isdigit() and char.upper() == char and last.upper() != last:
            result += '_'
        result += char.lower()
        last = char
    return result


class Parameter:
    def __init__(self, kind, name):
        self.kind, self.name = kind, name


class Method:
    def __init__(self, owner, name, result, parameters, static, capi, optional):
        self.owner, self.name, self.result, self.parameters, self.static = owner, name, result, parameters, static
        self.capi = capi or c_name(name)
        self.optional = (optional or '').split()
        strange = set(self.optional) - {p.name for p in parameters}
        if strange:
            raise Error(f'{self}: no parameter {", ".join(sorted(strange))}')

    def __str__(self):
        return f'{self.owner.name}::{self.name}' if self.owner else self.name


class Class:
    def __init__(self, name, side, parent, header):
        self.name, self.side, self.parent, self.header = name, side, parent, header
        self.stem = c_name(name)
        self.c_type = self.stem + '_t'
        self.methods, self.typedefs = [], {}


def _strip_comments(text):
    text = re.sub(r'/\*.*?\*/', '', text, flags=re.S)
    return re.sub(r'//(?!@)[^\n]*', '', text)


def _split(parameters):
    parts, depth, current = [], 0, ''
    for char in parameters:
        depth += {'<': 1, '>': -1}.get(char, 0)
        if char == ',' and depth == 0:
            parts.append(current)
            current = ''
        else:
            current += char
    return [p.strip() for p in parts + [current] if p.strip()]


def _parameters(text, where):
    result = []
    for part in _split(re.sub(r'\s+', ' ', text)):
        match = re.match(r'^(.*[\s&*>])(\w+)$', part)
        if not match:
            raise Error(f'{where}: parameter "{part}" has no name')
        result.append(Parameter(match.group(1).strip().replace(' &', '&').replace(' *', '*'), match.group(2)))
    return result


class Interface:
    def __init__(self, folder):
        self.classes, self.functions, self.typedefs, self.headers = {}, [], {}, []
        for base, _, names in sorted(os.walk(folder)):
            for name in sorted(names):
                if name.endswith('.h'):
                    self._read(os.path.join(base, name), os.path.relpath(os.path.join(base, name), os.path.dirname(folder)))

    def _read(self, path, header):
        header = header.replace(os.sep, '/')
        with open(path, encoding='utf-8') as file:
            text = _strip_comments(file.read())
        self.headers.append(header)
        for kind, name in re.findall(r'^typedef ([^;{]+?)\s+(\w+);', text, re.M):
            self.typedefs[name] = kind
        for match in re.finditer(r'^//@(\w+)\s*\n', text, re.M):
            rest = text[match.end():]
            if match.group(1) == 'function':
                self._read_function(rest, header)
            elif match.group(1) in ('engine', 'client', 'scoped'):
                self._read_class(rest, match.group(1), header)
            else:
                raise Error(f'{header}: unknown marker {match.group(1)}')

    def _read_function(self, text, header):
        match = re.match(r'(?://@optional ([\w ]+)\n)?([\w:<>*& ]+?)\s*\b(Cef\w+)\(([^)]*)\);', text)
        if not match:
            raise Error(f'{header}: no function after the marker')
        optional, result, name, parameters = match.groups()
        method = Method(None, name, result.strip(), _parameters(parameters, name), True, None, optional)
        method.header = header
        self.functions.append(method)

    def _read_class(self, text, side, header):
        match = re.match(r'class (\w+) : public (?:virtual )?(\w+) (\{\};|\{\n(?:public:)?(.*?)^\};)', text, re.M | re.S)
        if not match:
            raise Error(f'{header}: no class after the marker: {text[:60]!r}')
        cls = Class(match.group(1), side, match.group(2), header)
        body = match.group(4) or ''
        for kind, name in re.findall(r'typedef ([^;]+?)\s+(\w+);', body):
            cls.typedefs[name] = kind
        pattern = re.compile(r'(?://@capi (\w+)\s+)?(?://@optional ([\w ]+)\n\s*)?\b(virtual|static)\s+([^;{}()]+?)\s*\b(\w+)\(([^()]*)\)\s*(?:= 0;|;|\{[^}]*\})', re.S)
        for found in pattern.finditer(body):
            capi, optional, kind, result, name, parameters = found.groups()
            result = re.sub(r'\s+', ' ', result).replace(' *', '*').strip()
            cls.methods.append(Method(cls, name, result, _parameters(parameters, f'{cls.name}::{name}'),
                                      kind == 'static', capi, optional))
        declared = len(re.findall(r'\b(?:virtual|static)\b', body))
        if declared != len(cls.methods):
            raise Error(f'{header}: {cls.name} declares {declared} operations, {len(cls.methods)} were understood')
        if cls.name in self.classes:
            raise Error(f'{header}: {cls.name} is declared twice')
        self.classes[cls.name] = cls

    def resolve(self, kind, cls):
        """Replaces a typedef of the class, of its parents or of the headers by what it stands for."""
        for _ in range(4):
            match = re.match(r'^(const )?(\w+)([&*]?)$', kind)
            if not match:
                break
            name, owner, target = match.group(2), cls, None
            while owner and target is None:
                target = owner.typedefs.get(name)
                owner = self.classes.get(owner.parent)
            target = target or self.typedefs.get(name)
            if target is None or target.startswith('CefStructBase<'):
                break
            kind = (match.group(1) or '') + target + match.group(3)
        return kind
