#!/usr/bin/env python3
"""A class header that does not fit the engine's description must stop the generator, and the engine's library must be found
to export each function that the description has.

Usage: generate_test.py PACKAGE INCLUDE
"""
import os
import shutil
import subprocess
import sys
import tempfile

from description import Description
from export_list import exports

HERE = os.path.dirname(os.path.abspath(__file__))
# file, what stands there, what replaces it, what the message must name
FAULTS = [
    ('cef_load_handler.h', 'virtual void OnLoadEnd(', 'virtual void OnLoadEnds(', 'cef_load_handler_t has no on_load_ends'),
    ('cef_load_handler.h', ', int httpStatusCode)', ')', 'CefLoadHandler::OnLoadEnd: 3 parameters in C'),
    ('cef_load_handler.h', 'int httpStatusCode', 'int64_t httpStatusCode', 'CefLoadHandler::OnLoadEnd: parameter 3 is int64_t'),
    ('cef_load_handler.h', 'typedef cef_errorcode_t ErrorCode', 'typedef cef_state_t ErrorCode', 'parameter 3 is cef_state_t'),
    ('cef_browser.h', 'virtual CefRefPtr<CefFrame> GetMainFrame()', 'virtual bool GetMainFrame()', 'CefBrowser::GetMainFrame: returns'),
    ('cef_browser.h', 'virtual int GetIdentifier()', 'virtual int64_t GetIdentifier()', 'CefBrowser::GetIdentifier: returns int64_t'),
    ('cef_browser.h', 'virtual void Reload()', 'virtual std::wstring Reload()', 'no way to return std::wstring'),
    ('cef_task.h', 'bool CefPostTask(', 'bool CefPostTasks(', 'the engine has no function cef_post_tasks'),
    ('cef_task.h', '//@client\nclass CefTask', 'class CefTask', 'class CefTask has no declaration with a marker'),
    ('cef_task.h', '//@client', '//@clients', 'unknown marker clients'),
    ('cef_frame.h', '//@optional script_url', '//@optional scripts', 'CefFrame::ExecuteJavaScript: no parameter scripts'),
    ('cef_callback.h', '//@capi cont\n', '', 'cef_callback_t has no continue'),
]


def generate(package, include, out):
    return subprocess.run([sys.executable, '-B', os.path.join(HERE, 'generate.py'), package, include, out],
                          capture_output=True, text=True)


def main():
    package, include = sys.argv[1:]
    failed = 0
    with tempfile.TemporaryDirectory() as scratch:
        good = generate(package, include, os.path.join(scratch, 'good'))
        if good.returncode or not os.path.exists(os.path.join(scratch, 'good', 'cef_c_api.h')):
            sys.exit(f'the headers as they are do not pass: {good.stderr}')
        for index, (name, old, new, message) in enumerate(FAULTS):
            copy, out = os.path.join(scratch, f'{index}', 'include'), os.path.join(scratch, f'out{index}')
            shutil.copytree(include, copy)
            path = os.path.join(copy, name)
            with open(path, encoding='utf-8') as file:
                text = file.read()
            if text.count(old) < 1:
                sys.exit(f'{name} no longer has: {old}')
            with open(path, 'w', encoding='utf-8') as file:
                file.write(text.replace(old, new, 1))
            result = generate(package, copy, out)
            if result.returncode == 0 or message not in result.stderr or os.path.exists(out):
                failed += 1
                print(f'{name}: {old!r} -> {new!r}: expected {message!r}, got {result.returncode} {result.stderr!r}')
    with open(os.path.join(package, 'runtime', 'libcef.dll'), 'rb') as file:
        unknown = set(Description(package).functions) - set(exports(file.read()))
    if unknown:
        failed += 1
        print(f'not exported: {sorted(unknown)}')
    print(f'{len(FAULTS) - failed} of {len(FAULTS)} faults were refused')
    sys.exit(1 if failed else 0)


if __name__ == '__main__':
    main()
