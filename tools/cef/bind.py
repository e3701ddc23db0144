"""Writes the code between the class headers and the C structures, and checks one against the other."""
import re

from interface import Error

SCALARS = {'int': 'int32_t', 'int32_t': 'int32_t', 'uint32_t': 'uint32_t', 'int64_t': 'int64_t', 'uint64_t': 'uint64_t',
           'size_t': 'uint64_t', 'double': 'double', 'float': 'float', 'HWND': 'HWND__*', 'CefWindowHandle': 'HWND__*',
           'CefCursorHandle': 'HICON__*'}
# C++ classes that only add helpers to a C structure.
STRUCTS = {'CefAcceleratedPaintInfo': 'cef_accelerated_paint_info_t', 'CefBaseTime': 'cef_basetime_t',
           'CefBrowserSettings': 'cef_browser_settings_t', 'CefCompositionUnderline': 'cef_composition_underline_t',
           'CefCookie': 'cef_cookie_t', 'CefCursorInfo': 'cef_cursor_info_t', 'CefKeyEvent': 'cef_key_event_t',
           'CefMainArgs': 'cef_main_args_t', 'CefMouseEvent': 'cef_mouse_event_t', 'CefPoint': 'cef_point_t',
           'CefPopupFeatures': 'cef_popup_features_t', 'CefRange': 'cef_range_t', 'CefRect': 'cef_rect_t',
           'CefRequestContextSettings': 'cef_request_context_settings_t', 'CefScreenInfo': 'cef_screen_info_t',
           'CefSettings': 'cef_settings_t', 'CefSize': 'cef_size_t', 'CefTouchEvent': 'cef_touch_event_t',
           'CefTouchHandleState': 'cef_touch_handle_state_t', 'CefURLParts': 'cef_urlparts_t',
           'CefWindowInfo': 'cef_window_info_t'}
STRING = 'cef_string_utf16_t*'
CONTAINERS = {'std::vector<CefString>': ('StringVector', 'StringList', 'cef_string_list_t*'),
              'std::map<CefString, CefString>': ('StringMap', 'CStringMap', 'cef_string_map_t*'),
              'std::multimap<CefString, CefString>': ('StringMultimap', 'CStringMultimap', 'cef_string_multimap_t*')}
# Functions that the hand-written part calls.
RUNTIME_FUNCTIONS = ['cef_version_info', 'cef_string_userfree_utf16_free'] + [
    f'cef_string_{kind}_{what}' for kind, names in (
        ('list', 'alloc free size value append'), ('map', 'alloc free size key value append'),
        ('multimap', 'alloc free size key value append')) for what in names.split()]


class Step:
    """How one parameter crosses: C types, what is taken over first, guards, other code before, arguments, code after."""

    def __init__(self, c_types, args, take=(), guard=(), before=(), after=()):
        self.c_types, self.args = c_types, args
        self.take, self.guard, self.before, self.after = list(take), list(guard), list(before), list(after)


class Binder:
    def __init__(self, description, interface):
        self.description, self.interface = description, interface

    def is_enum(self, kind):
        return kind in self.description.enums

    def c_class(self, name, where):
        if name not in self.interface.classes:
            raise Error(f'{where}: class {name} has no declaration with a marker')
        return self.interface.classes[name].c_type

    # --- parameters -----------------------------------------------------------------------------------------------

    def from_c(self, kind, n, where):
        """The engine calls the library."""
        if kind == 'bool':
            return Step(['int32_t'], [f'{n} != 0'])
        if kind in SCALARS or self.is_enum(kind):
            return Step([SCALARS.get(kind, kind)], [n])
        if kind in ('bool&', 'bool*'):
            return Step(['int32_t*'], [f'{n}_' if kind == 'bool&' else f'&{n}_'], before=[f'bool {n}_ = {n} && *{n};'],
                        after=[f'if ({n}) *{n} = {n}_;'])
        if kind in ('int&', 'int64_t&', 'size_t&', 'void*&'):
            c_type = 'void*' if kind == 'void*&' else SCALARS[kind[:-1]]
            return Step([c_type + '*'], [f'*{n}'], guard=[n])
        if kind in ('void*', 'const void*'):
            return Step(['void*'], [n])
        if kind == 'const CefString&':
            return Step([STRING], [f'CefString(static_cast<const cef_string_t*>({n}))'])
        if kind == 'CefString&':
            return Step([STRING], [f'{n}_'], before=[f'CefString {n}_({n});'])
        match = re.match(r'^(const )?(\w+)&$', kind)
        if match and match.group(2) in STRUCTS:
            return Step([STRUCTS[match.group(2)] + '*'], [f'static_cast<{match.group(1) or ""}{match.group(2)}&>(*{n})'],
                        guard=[n])
        if kind in STRUCTS:
            return Step([STRUCTS[kind]], [n])
        match = re.match(r'^CefRefPtr<(\w+)>$', kind)
        if match:
            name, c_type = match.group(1), self.c_class(match.group(1), where)
            return Step([c_type + '*'], [f'std::move({n}_)'], take=[f'auto {n}_ = Binding<{name}>::take({n});'])
        match = re.match(r'^CefRefPtr<(\w+)>&$', kind)
        if match:
            name, c_type = match.group(1), self.c_class(match.group(1), where)
            return Step([c_type + '**'], [f'{n}_'],
                        take=[f'auto {n}_ = Binding<{name}>::take({n} ? *{n} : nullptr);', f'{name}* const {n}Before = {n}_.get();'],
                        after=[f'if ({n} && {n}_.get() != {n}Before) *{n} = Binding<{name}>::give(std::move({n}_));'])
        match = re.match(r'^CefRawPtr<(\w+)>$', kind)
        if match:
            name, c_type = match.group(1), self.c_class(match.group(1), where)
            return Step([c_type + '*'], [f'&{n}_'], guard=[n], before=[f'{name}Engine {n}_({n});'])
        match = re.match(r'^const std::vector<(\w+)>&$', kind)
        if match and match.group(1) in STRUCTS:
            name = match.group(1)
            return Step(['uint64_t', STRUCTS[name] + '*'], [f'{n}_'],
                        before=[f'const std::vector<{name}> {n}_(static_cast<const {name}*>({n}), '
                                f'static_cast<const {name}*>({n}) + ({n} ? {n}Count : 0));'])
        match = re.match(r'^const (std::.*)&$', kind)
        if match and match.group(1) in CONTAINERS:
            cpp, _, c_type = CONTAINERS[match.group(1)]
            return Step([c_type], [f'{n}_'], before=[f'{cpp} {n}_;', f'copyStrings({n}, {n}_);'])
        match = re.match(r'^const std::vector<CefRefPtr<(\w+)>>&$', kind)
        if match:
            name, c_type = match.group(1), self.c_class(match.group(1), where)
            return Step(['uint64_t', c_type + '**'], [f'{n}_'], take=[f'const auto {n}_ = takeAll<{name}, {c_type}>({n}Count, {n});'])
        raise Error(f'{where}: no way from C to {kind}')

    def to_c(self, kind, n, where):
        """The library calls the engine."""
        if kind == 'bool':
            return Step(['int32_t'], [f'{n} ? 1 : 0'])
        if kind in SCALARS or self.is_enum(kind) or kind in STRUCTS:
            return Step([SCALARS.get(kind) or STRUCTS.get(kind, kind)], [n])
        if kind == 'void*':
            return Step(['void*'], [n])
        if kind == 'const void*':
            return Step(['void*'], [f'const_cast<void*>({n})'])
        if kind == 'const CefString&':
            return Step([STRING], [f'in({n})'])
        if kind == 'CefString&':
            return Step([STRING], [f'{n}.GetWritableStruct()'])
        match = re.match(r'^(const )?(\w+)&$', kind)
        if match and match.group(2) in STRUCTS:
            name = match.group(2)
            return Step([STRUCTS[name] + '*'], [f'const_cast<{name}*>(&{n})' if match.group(1) else f'&{n}'])
        match = re.match(r'^CefRefPtr<(\w+)>$', kind)
        if match:
            return Step([self.c_class(match.group(1), where) + '*'], [f'Binding<{match.group(1)}>::give({n})'])
        match = re.match(r'^CefRefPtr<(\w+)>&$', kind)
        if match:
            name, c_type = match.group(1), self.c_class(match.group(1), where)
            return Step([c_type + '**'], [f'&{n}_'],
                        before=[f'{c_type}* {n}_ = Binding<{name}>::give({n});', f'{c_type}* const {n}Before = {n}_;'],
                        after=[f'if ({n}_ != {n}Before) {n} = Binding<{name}>::take({n}_);'])
        match = re.match(r'^const std::vector<(\w+)>&$', kind)
        if match and match.group(1) in STRUCTS:
            name = match.group(1)
            return Step(['uint64_t', STRUCTS[name] + '*'], [f'{n}.size()', f'const_cast<{name}*>({n}.data())'])
        match = re.match(r'^(const )?(std::.*)&$', kind)
        if match and match.group(2) in CONTAINERS:
            _, c_class, c_type = CONTAINERS[match.group(2)]
            return Step([c_type], [f'{n}_.get()'], before=[f'const {c_class} {n}_({n});'],
                        after=[] if match.group(1) else [f'{n}_.copyTo({n});'])
        match = re.match(r'^const std::vector<CefRefPtr<(\w+)>>&$', kind)
        if match:
            name, c_type = match.group(1), self.c_class(match.group(1), where)
            return Step(['uint64_t', c_type + '**'], [f'{n}.size()', f'{n}_.data()'],
                        before=[f'auto {n}_ = giveAll<{name}, {c_type}>({n});'])
        match = re.match(r'^std::vector<CefRefPtr<(\w+)>>&$', kind)
        if match:
            name, c_type = match.group(1), self.c_class(match.group(1), where)
            return Step(['uint64_t*', c_type + '**'], [f'&{n}Count', f'{n}_.data()'],
                        before=[f'uint64_t {n}Count = GetElementCount();', f'std::vector<{c_type}*> {n}_({n}Count);'],
                        after=[f'{n} = takeAll<{name}, {c_type}>({n}Count, {n}_.data());'])
        raise Error(f'{where}: no way from {kind} to C')

    # --- results --------------------------------------------------------------------------------------------------

    def result(self, kind, where):
        """C type; how C++ makes it; how C++ receives it."""
        if kind == 'void':
            return 'void', '', ''
        if kind == 'bool':
            return 'int32_t', '{} ? 1 : 0', '{} != 0'
        if kind in SCALARS or self.is_enum(kind) or kind in STRUCTS:
            return SCALARS.get(kind) or STRUCTS.get(kind, kind), '{}', '{}'
        if kind == 'const void*':
            return 'void*', None, '{}'
        if kind == 'CefString':
            return STRING, None, 'takeString({})'
        match = re.match(r'^CefRefPtr<(\w+)>$', kind)
        if match:
            c_type = self.c_class(match.group(1), where) + '*'
            return c_type, f'Binding<{match.group(1)}>::give({{}})', f'Binding<{match.group(1)}>::take({{}})'
        raise Error(f'{where}: no way to return {kind}')

    # --- checks ---------------------------------------------------------------------------------------------------

    def struct_of(self, cls):
        struct = self.description.structs.get(cls.c_type)
        if not struct:
            raise Error(f'{cls.name}: the engine has no {cls.c_type}')
        return struct

    @staticmethod
    def check(where, function, c_types, result):
        if function.result == 'uint64_t' and result.endswith('*'):
            function.result = result  # the description leaves returned pointers as integers
        if function.result != result:
            raise Error(f'{where}: returns {result}, the engine\'s {function.name} returns {function.result}')
        if len(function.arguments) != len(c_types):
            raise Error(f'{where}: {len(c_types)} parameters in C, the engine\'s {function.name} has {len(function.arguments)}')
        for index, (have, want) in enumerate(zip(function.arguments, c_types)):
            if have != want:
                raise Error(f'{where}: parameter {index} is {want}, the engine\'s {function.name} has {have}')

    def member(self, cls, method):
        struct = self.struct_of(cls)
        function = struct.function(method.capi)
        if not function:
            raise Error(f'{method}: {struct.name} has no {method.capi}')
        return function

    # --- the library's objects, called by the engine --------------------------------------------------------------

    def client_method(self, cls, method):
        where = str(method)
        function = self.member(cls, method)
        steps, c_types, parameters = [], [cls.c_type + '*'], [f'{cls.c_type}* self']
        for p in method.parameters:
            step = self.from_c(self.interface.resolve(p.kind, cls), p.name, where)
            steps.append(step)
            names = [p.name] if len(step.c_types) == 1 else [p.name + 'Count', p.name]
            c_types += step.c_types
            parameters += [f'{t} {n}' for t, n in zip(step.c_types, names)]
        kind = self.interface.resolve(method.result, cls)
        c_result, give, _ = self.result(kind, where)
        if give is None:
            raise Error(f'{where}: the library can not return {kind} to the engine')
        self.check(where, function, c_types, c_result)
        out = [f'static {c_result} {method.capi}({", ".join(parameters)}) noexcept {{']
        out += [f'    {line}' for step in steps for line in step.take]
        guards = [g for step in steps for g in step.guard]
        if guards:
            out.append(f'    if ({" || ".join("!" + g for g in guards)}) return{"" if c_result == "void" else " {}"};')
        out += [f'    {line}' for step in steps for line in step.before]
        arguments = ', '.join(a for step in steps for a in step.args)
        call = f'ClientObject<{cls.name}, {cls.c_type}>::of(self)->object->{method.name}({arguments})'
        after = [f'    {line}' for step in steps for line in step.after]
        if c_result == 'void':
            out += [f'    {call};'] + after
        elif after:
            out += [f'    auto result = {call};'] + after + [f'    return {give.format("result")};']
        else:
            out.append(f'    return {give.format(call)};')
        return out + ['}']

    def client_class(self, cls):
        self.struct_of(cls)
        out = ['', f'namespace {cls.stem} {{']
        for method in cls.methods:
            out += self.client_method(cls, method)
        out += [f'static const {cls.c_type}& functions() {{', f'    static const {cls.c_type} table = [] {{', f'        {cls.c_type} c{{}};']
        out += [f'        c.{m.capi} = &{m.capi};' for m in cls.methods]
        out += ['        return c;', '    }();', '    return table;', '}', f'}}  // namespace {cls.stem}',
                f'CefRefPtr<{cls.name}> Binding<{cls.name}>::take({cls.c_type}* c) {{ return takeClientObject<{cls.name}>(c); }}',
                f'{cls.c_type}* Binding<{cls.name}>::give(CefRefPtr<{cls.name}> object) {{',
                '    if (!object) return nullptr;',
                f'    return &(new ClientObject<{cls.name}, {cls.c_type}>({cls.stem}::functions(), std::move(object)))->c;', '}']
        return out

    # --- the engine's objects, called by the library --------------------------------------------------------------

    def engine_call(self, cls, method, function, target, self_argument, missing):
        where = str(method)
        steps, c_types = [], ([cls.c_type + '*'] if self_argument else [])
        for p in method.parameters:
            step = self.to_c(self.interface.resolve(p.kind, cls), p.name, where)
            steps.append(step)
            c_types += step.c_types
        kind = self.interface.resolve(method.result, cls)
        c_result, _, take = self.result(kind, where)
        self.check(where, function, c_types, c_result)
        arguments = ', '.join(([self_argument] if self_argument else []) + [a for step in steps for a in step.args])
        refused = [f'!{missing}'] + [f'{p.name}.empty()' for p in method.parameters
                                     if p.kind == 'const CefString&' and p.name not in method.optional]
        out = [f'    if ({" || ".join(refused)}) return{"" if c_result == "void" else " {}"};']
        out += [f'    {line}' for step in steps for line in step.before]
        after = [f'    {line}' for step in steps for line in step.after]
        call = f'{target}({arguments})'
        if c_result == 'void':
            out += [f'    {call};'] + after
        elif after:
            out += [f'    auto result = {call};'] + after + [f'    return {take.format("result")};']
        else:
            out.append(f'    return {take.format(call)};')
        return out

    def qualified(self, kind, cls):
        """A typedef of the class, as seen from outside."""
        if cls is None:
            return kind
        return re.sub(r'\b(\w+)\b', lambda m: f'{cls.name}::{m.group(1)}' if m.group(1) in cls.typedefs else m.group(1), kind)

    def engine_class(self, cls):
        self.struct_of(cls)
        name = cls.name + 'Engine'
        scoped = cls.side == 'scoped'
        out = ['', f'class {name} final : public {cls.name if scoped else f"EngineObject<{cls.name}, {cls.c_type}>"} {{', 'public:']
        if scoped:
            out.append(f'    explicit {name}({cls.c_type}* self) : self_(self) {{}}')
            out.append(f'    {cls.c_type}* self() const {{ return self_; }}')
        else:
            out.append('    using EngineObject::EngineObject;')
        owner, path = cls, 'self()'
        while owner:
            for method in owner.methods:
                if method.static:
                    continue
                function = self.member(owner, method)
                parameters = ', '.join(f'{self.qualified(p.kind, owner)} {p.name}' for p in method.parameters)
                out.append(f'    {self.qualified(method.result, owner)} {method.name}({parameters}) override {{')
                pointer = path if owner is cls else f'reinterpret_cast<{owner.c_type}*>(self())'
                lines = self.engine_call(owner, method, function, f'c->{method.capi}', 'c', f'c->{method.capi}')
                out.append(f'        {owner.c_type}* const c = {pointer};')
                out += ['    ' + line for line in lines] + ['    }']
            owner = self.interface.classes.get(owner.parent)
        if scoped:
            out += ['', 'private:', f'    {cls.c_type}* const self_;']
        out.append('};')
        return out, name

    def engine_traits(self, cls):
        return [f'CefRefPtr<{cls.name}> Binding<{cls.name}>::take({cls.c_type}* c) {{ return c ? new {cls.name}Engine(c) : nullptr; }}',
                f'{cls.c_type}* Binding<{cls.name}>::give(const CefRefPtr<{cls.name}>& object) {{',
                f'    return giveEngineObject<{cls.name}, {cls.c_type}>(object);', '}']

    # --- functions ------------------------------------------------------------------------------------------------

    def function(self, method, c_function, used):
        function = self.description.functions.get(c_function)
        if not function:
            raise Error(f'{method}: the engine has no function {c_function}')
        used.add(c_function)
        parameters = ', '.join(f'{self.qualified(p.kind, method.owner)} {p.name}' for p in method.parameters)
        head = f'{self.qualified(method.result, method.owner)} {method}({parameters}) {{'
        return [head] + self.engine_call(method.owner, method, function, f'engine.{c_function}', '', f'engine.{c_function}') + ['}']


def emit(description, interface, generator):
    binder = Binder(description, interface)
    head = [f'// Made by {generator} from the class headers and the engine package. Do not edit.', '']
    classes = sorted(interface.classes.values(), key=lambda c: c.name)
    includes = [f'#include "{header}"' for header in sorted(set([c.header for c in classes] + [f.header for f in interface.functions]))]
    opening = ['', 'namespace cef_binding {']
    closing = ['', '}  // namespace cef_binding', '']

    traits = ['#pragma once'] + head + ['#include "binding_runtime.h"'] + includes + opening
    for cls in classes:
        if cls.side == 'scoped':
            continue
        parameter = f'const CefRefPtr<{cls.name}>&' if cls.side == 'engine' else f'CefRefPtr<{cls.name}>'
        traits += ['template <>', f'struct Binding<{cls.name}> {{', f'    typedef {cls.c_type} C;',
                   f'    static constexpr bool kFromEngine = {"true" if cls.side == "engine" else "false"};',
                   f'    static CefRefPtr<{cls.name}> take({cls.c_type}* c);',
                   f'    static {cls.c_type}* give({parameter} object);', '};']
    traits += closing

    # Every crossing by name, for tests that go through all of them.
    members = ['#pragma once'] + head + ['// X(class, C member)', '#define ZEMO_CEF_CLIENT_CALLBACKS(X) \\']
    members += [f'    X({cls.name}, {m.capi}) \\' for cls in classes if cls.side == 'client' for m in cls.methods]
    members += ['', '// X(class, type of the C++ operation, its name, C class, C member)', '#define ZEMO_CEF_ENGINE_CALLS(X) \\']
    for cls in classes:
        if cls.side == 'engine':
            for m in cls.methods:
                if not m.static:
                    kinds = ', '.join(binder.qualified(p.kind, cls) for p in m.parameters)
                    members.append(f'    X({cls.name}, ({binder.qualified(m.result, cls)} ({cls.name}::*)({kinds})), {m.name}, '
                                   f'{cls.c_type}, {m.capi}) \\')
    members += ['', '// X(C++ function, C function)', '#define ZEMO_CEF_FUNCTIONS(X) \\']
    members += [f'    X({m}, {cls.stem}_{m.capi}) \\' for cls in classes for m in cls.methods if m.static]
    members += [f'    X({m}, {m.capi}) \\' for m in interface.functions]
    members += ['', '// X(class)', '#define ZEMO_CEF_CLIENT_CLASSES(X) \\']
    members += [f'    X({cls.name}) \\' for cls in classes if cls.side == 'client'] + ['']

    engine = head + ['#include "binding_traits.h"'] + opening
    scoped_text = []
    for cls in classes:
        if cls.side == 'engine':
            engine += binder.engine_class(cls)[0] + binder.engine_traits(cls)
        elif cls.side == 'scoped':
            scoped_text += binder.engine_class(cls)[0]
    engine += closing

    client = head + ['#include "binding_traits.h"'] + opening + ['namespace {'] + scoped_text + ['', '}  // namespace']
    for cls in classes:
        if cls.side == 'client':
            client += binder.client_class(cls)
    client += closing

    used = set(RUNTIME_FUNCTIONS)
    functions = head + ['#include "binding_functions.h"', '#include "binding_traits.h"', '', 'using namespace cef_binding;', '']
    for cls in classes:
        for method in cls.methods:
            if method.static:
                functions += binder.function(method, f'{cls.stem}_{method.capi}', used)
    for method in interface.functions:
        functions += binder.function(method, method.capi, used)
    table, pointers = [], []
    for name in sorted(used):
        function = description.functions.get(name)
        if not function:
            raise Error(f'the engine has no function {name}')
        pointers.append(f'    {function.result} (*{name})({", ".join(function.arguments)}) = nullptr;')
        table.append(f'    {{"{name}", reinterpret_cast<void**>(&engine.{name})}},')
    functions += ['', 'namespace cef_binding {', 'Functions engine;', 'const FunctionSlot kFunctionSlots[] = {'] + table
    functions += ['};', f'const size_t kFunctionSlotCount = {len(table)};'] + closing
    header = ['#pragma once'] + head + ['#include "cef_c_api.h"'] + opening + [
        '/// The engine\'s functions that the binding calls; null until the engine is loaded.', 'struct Functions {'] + pointers + [
        '};', 'extern Functions engine;', '', 'struct FunctionSlot {', '    const char* name;', '    void** pointer;', '};',
        'extern const FunctionSlot kFunctionSlots[];', 'extern const size_t kFunctionSlotCount;'] + closing

    return {'binding_traits.h': '\n'.join(traits), 'binding_engine.cpp': '\n'.join(engine),
            'binding_client.cpp': '\n'.join(client), 'binding_functions.cpp': '\n'.join(functions),
            'binding_functions.h': '\n'.join(header), 'binding_members.h': '\n'.join(members)}
