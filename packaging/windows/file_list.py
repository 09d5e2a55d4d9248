#!/usr/bin/env python3
"""Writes the macro with which the uninstaller deletes what the installer brought, and nothing else.

    file_list.py STAGE >list.nsh
"""
import pathlib
import sys


def main():
    stage = pathlib.Path(sys.argv[1])
    paths = sorted(path.relative_to(stage) for path in stage.rglob('*'))
    print('!macro DeleteFiles')
    for path in paths:
        if not (stage / path).is_dir():
            print(f'    Delete "$INSTDIR\\{pathlib.PureWindowsPath(path)}"')
    for path in reversed(paths):  # a folder behind what is in it
        if (stage / path).is_dir():
            print(f'    RMDir "$INSTDIR\\{pathlib.PureWindowsPath(path)}"')
    print('!macroend')


if __name__ == '__main__':
    main()
