#!/usr/bin/env python3
"""Reads every #include of the project and fails on an edge that the floors don't allow.

A module includes only from floors below its own; the few exceptions are listed. practice/ stands beside the house.
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]

FLOORS = {
    'common': 0, 'common/nng': 0,
    'core': 1, 'model': 1,
    'fsd/pdu': 2, 'fsd': 2, 'network': 2, 'simulator': 2, 'voice': 2, 'input': 2,
    'simulator/xplane': 3, 'simulator/msfs': 3,
    'manager': 4, 'ui/viewmodel': 4,
    'ui': 5, 'ui/view': 5,
    'app': 6,
}
SAME_FLOOR_ALLOWED = {('fsd', 'fsd/pdu'), ('simulator/msfs', 'network')}
# A view model is fed by the windows, never by a manager or a simulator.
ONLY = {
    'ui/viewmodel': {'network', 'voice', 'input', 'core', 'model', 'common'},
    'fsd/pdu': {'common'},
    'practice': {'common', 'common/nng', 'model', 'fsd/pdu', 'practice'},
}
INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.M)


def module_of(path):
    """The module of a path below src/, such as "fsd/pdu/Ping.h"."""
    folder = path.parent.as_posix()
    if folder != '.':
        return folder
    return 'app' if path.stem in ('main', 'Application') else 'core'


def allowed(user, used):
    if user == used:
        return True
    if user in ONLY:
        return used in ONLY[user]
    return FLOORS[used] < FLOORS[user] or (user, used) in SAME_FLOOR_ALLOWED


def included_modules(source):
    for name in INCLUDE.findall(source.read_text(errors='replace')):
        if (ROOT / 'src' / name).is_file():
            yield name, module_of(pathlib.Path(name))
        elif (ROOT / name).is_file() and name.startswith('practice/'):
            yield name, 'practice'


def main():
    bad, edges = [], 0
    for top in ('src', 'practice'):
        for source in sorted((ROOT / top).rglob('*')):
            if source.suffix not in ('.h', '.cpp'):
                continue
            user = module_of(source.relative_to(ROOT / 'src')) if top == 'src' else 'practice'
            if user not in FLOORS and user != 'practice':
                bad.append(f'{source.relative_to(ROOT)}: folder "{user}" stands on no floor')
                continue
            for name, used in included_modules(source):
                edges += 1
                if not allowed(user, used):
                    bad.append(f'{source.relative_to(ROOT)}: {user} may not include {name} ({used})')
    print('\n'.join(bad) or f'{edges} includes, every one from an allowed floor')
    sys.exit(1 if bad or edges == 0 else 0)


if __name__ == '__main__':
    main()
