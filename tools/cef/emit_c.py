"""Writes the C declarations: enumerations, structures with size and offset checks, and the version header."""

# Windows' own types keep their own headers; in the description they are pointers to these.
FIXED_TYPES = {'cef_string_utf16_t.dtor': 'void (*dtor)(char16_t*)'}


def _declare(name, kind):
    return f'{kind.result} (*{name})({", ".join(kind.arguments)})'


def emit_header(description, generator):
    out = ['#pragma once', f'// Made by {generator} from the engine package ({description.version["CEF_VERSION"]}). Do not edit.',
           '', '#include <windows.h>', '', '#include <cstddef>', '#include <cstdint>', '']
    for enum in description.enums.values():
        out.append(f'enum {enum.name} : {"int32_t" if enum.signed else "uint32_t"} {{')
        out += [f'    {name} = {value},' for name, value in enum.values]
        out.append('};')
    names = set(description.structs)
    for struct in description.structs.values():
        for _, kind, _, _ in struct.fields:
            for text in ([kind] if isinstance(kind, str) else [kind.result] + kind.arguments):
                base = text.rstrip('*')
                if base.startswith('cef_') and base not in description.enums:
                    names.add(base)
    for function in description.functions.values():
        for text in [function.result] + function.arguments:
            base = text.rstrip('*')
            if base.startswith('cef_') and base not in description.enums:
                names.add(base)
    unions = {s.name for s in description.structs.values() if s.is_union}
    out.append('')
    out += [f'{"union" if name in unions else "struct"} {name};' for name in sorted(names)]
    for struct in description.structs.values():
        if not struct.fields:
            continue
        out.append(f'{"union" if struct.is_union else "struct"} {struct.name} {{')
        for name, kind, length, _ in struct.fields:
            fixed = FIXED_TYPES.get(f'{struct.name}.{name}')
            if fixed:
                out.append(f'    {fixed};')
            elif isinstance(kind, str):
                out.append(f'    {kind} {name}{f"[{length}]" if length else ""};')
            else:
                out.append(f'    {_declare(name, kind)};')
        out.append('};')
        out.append(f'static_assert(sizeof({struct.name}) == {struct.size});')
        if not struct.is_union:
            last = struct.fields[-1]
            out.append(f'static_assert(offsetof({struct.name}, {last[0]}) == {last[3]});')
    out += ['', '/// Calls `visit` with each string member of a structure.', 'namespace cef_binding {']
    for struct in description.structs.values():
        strings = [f for f, kind, _, _ in struct.fields if kind == 'cef_string_utf16_t']
        if strings:
            out.append(f'template <class Visit>\nvoid forEachString({struct.name}& s, Visit visit) {{')
            out += [f'    visit(s.{name});' for name in strings]
            out.append('}')
    out += ['}  // namespace cef_binding', '']
    return '\n'.join(out)


def emit_version(description, generator):
    out = ['#pragma once', f'// Made by {generator} from the engine package. Do not edit.']
    for name, value in description.version.items():
        out.append(f'#define {name} ' + (f'"{value}"' if isinstance(value, str) else str(value)))
    return '\n'.join(out) + '\n'
