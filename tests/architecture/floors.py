#!/usr/bin/env python3
"""Reads every #include of the project and fails on an edge that the floors don't allow.

A module includes only from floors below its own; the few exceptions are listed. practice/ stands beside the house and has
rooms: its folders, and each file of its root.
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]

FLOORS = {
    'common': 0, 'common/nng': 0,
    'core': 1, 'model': 1,
    'fsd/pdu': 2, 'fsd': 2, 'network': 2, 'simulator': 2, 'input': 2,
    'voice/wire': 2, 'voice/transport': 2, 'voice/codec': 2, 'voice/engine': 2, 'voice/client': 2,
    'simulator/msfs/simconnect': 1, 'simulator/msfs/simvar': 2, 'simulator/msfs/session': 3, 'simulator/msfs/library': 3,
    'simulator/xplane': 3, 'simulator/msfs': 3,
    'manager': 4, 'ui/viewmodel': 4, 'diagnosis': 4,
    'ui': 5, 'ui/view': 5,
    'app': 6,
}
SAME_FLOOR_ALLOWED = {('common/nng', 'common'), ('fsd', 'fsd/pdu'), ('voice/engine', 'voice/codec'), ('voice/transport', 'voice/wire'),
                      ('voice/client', 'voice/wire'), ('voice/client', 'voice/transport'), ('voice/client', 'voice/engine'),
                      ('simulator/msfs/library', 'network'), ('simulator/msfs', 'network'),
                      ('simulator/msfs', 'simulator/msfs/session'), ('simulator/msfs', 'simulator/msfs/library')}
# A view model is fed by the windows, never by a manager or a simulator.
ONLY = {
    'ui/viewmodel': {'network', 'voice/client', 'voice/engine', 'input', 'core', 'model', 'common'},
    # The session knows the abstract simulator and never a backend.
    'manager': {'fsd', 'fsd/pdu', 'network', 'simulator', 'voice/client', 'voice/engine', 'core', 'model', 'common'},
    # It asks what the client would ask, but runs beside it.
    'diagnosis': {'fsd', 'voice/engine', 'simulator/xplane', 'simulator/msfs/simconnect', 'core', 'model', 'common'},
    'fsd/pdu': {'common'},
    'voice/wire': {'common'},
    # Nothing above the session knows SimConnect's own structures.
    'simulator/msfs': {'simulator/msfs/session', 'simulator/msfs/library', 'simulator/msfs/simvar', 'simulator', 'network',
                       'core', 'model', 'common'},
    'practice': {'common', 'common/nng', 'model', 'fsd/pdu', 'voice/wire', 'simulator/msfs/simconnect', 'practice'},
}
# Who may include whom inside of practice/.
ROOMS = {
    'account': set(),
    'LineReader': set(),
    'fsd': {'account', 'LineReader'},
    'flight': set(),
    'people': {'fsd', 'flight'},
    'xplane': {'flight'},
    'replay': {'LineReader'},
    'voice': {'account', 'LineReader'},
    'simconnect': {'flight'},
    'PracticeNetwork': {'account', 'fsd', 'people', 'replay', 'voice', 'xplane'},
    'control': {'PracticeNetwork'},
    'Console': {'PracticeNetwork', 'control', 'fsd'},
    'Options': {'PracticeNetwork'},
    'StopSignal': set(),
    'main': {'Console', 'Options', 'StopSignal', 'control', 'replay'},
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


def room_of(path):
    """The room of a path below practice/, such as "fsd/Roster.h" or "StopSignal_win.cpp"."""
    return path.parts[0] if len(path.parts) > 1 else path.stem.split('_')[0]


def circle(arrows):
    """Rooms that include each other in a circle: those that stay when all that include nobody are taken away again and
    again."""
    left = dict(arrows)
    while True:
        leaves = [room for room, used in left.items() if not used & left.keys()]
        if not leaves:
            return sorted(left)
        for room in leaves:
            del left[room]


def check_rooms():
    """The faults of practice's rooms, and how many arrows there are between them."""
    bad, arrows = [], {}
    for source in sorted((ROOT / 'practice').rglob('*')):
        if source.suffix not in ('.h', '.cpp'):
            continue
        user = room_of(source.relative_to(ROOT / 'practice'))
        if user not in ROOMS:
            bad.append(f'{source.relative_to(ROOT)}: no room of that name')
            continue
        mine = arrows.setdefault(user, set())
        for name in INCLUDE.findall(source.read_text(errors='replace')):
            if not name.startswith('practice/'):
                continue
            used = room_of(pathlib.Path(name).relative_to('practice'))
            if used != user:
                mine.add(used)
                if used not in ROOMS[user]:
                    bad.append(f'{source.relative_to(ROOT)}: room {user} may not include {name}')
    if circle(ROOMS):
        bad.append(f'rooms of a circle, or above one: {circle(ROOMS)}')
    return bad, len(arrows), sum(map(len, arrows.values()))


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
    faults, rooms, arrows = check_rooms()
    bad += faults
    print('\n'.join(bad) or f'{edges} includes, every one from an allowed floor; practice has {rooms} rooms with '
          f'{arrows} arrows')
    sys.exit(1 if bad or edges == 0 else 0)


if __name__ == '__main__':
    main()
