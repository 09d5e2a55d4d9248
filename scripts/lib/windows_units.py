"""How a source file of the project is type-checked as Windows code: mingw-w64's g++ over the Linux Qt headers."""
import concurrent.futures
import os
import pathlib
import re
import subprocess
import sys

CXX = 'x86_64-w64-mingw32-g++-posix'
MULTIARCH = pathlib.Path('/usr/lib/x86_64-linux-gnu')
QT_INCLUDE = pathlib.Path('/usr/include/x86_64-linux-gnu/qt6')
# Headers of libraries that don't depend on the C library's own, given to mingw through a folder of links.
PORTABLE_HEADERS = ['nlohmann', 'msgpack', 'msgpack.hpp', 'nng', 'benchmark']
# What is parsed once for all files; without it the check takes four times as long. It hides a missing include, which
# clang-tidy (product) or another of the tests' builds would show. The tests get no more here than from their own build.
PRODUCT_HEADERS = ['QByteArray', 'QDateTime', 'QDebug', 'QHash', 'QJsonObject', 'QList', 'QMap', 'QObject', 'QString',
                   'QTimer', 'QVariant']
TEST_HEADERS = ['QTest', 'QString', 'QSignalSpy']
PAYS_ABOVE = 3  # files; precompiling takes as long as checking that many


class WindowsChecker:
    """Makes the commands. `units` maps each file, relative to `root`, to its Linux compile command; scratch files go to
    `folder`."""

    def __init__(self, root, folder, units):
        self.root, self.folder = root, folder
        self.precompiled = set()
        self.units = {u: c for u, c in units.items() if not posix_only(u) and 'fuzz' not in u.parts}

    def add_windows_only(self, folders, only, like):
        """Files named ..._win.cpp are in no Linux command: they are checked with a neighbour's, out of `like`."""
        for folder in folders:
            for path in sorted((self.root / folder).rglob('*_win.cpp')):
                relative = path.relative_to(self.root)
                neighbour = next((u for u in like if u.parent == relative.parent), None)
                if neighbour is None:
                    sys.exit(f'{relative}: no source file beside it to take the command from')
                if re.search(only, str(relative)):
                    self.units[relative] = like[neighbour]

    def prepare(self, stale):
        """Links the portable headers, and precompiles what the stale units need."""
        self._link_portable_headers()
        kinds = {}
        for unit, command in stale.items():
            kinds.setdefault(kind_of(unit, command), []).append(command)
        kinds.pop(None, None)
        self.precompiled = {kind for kind, commands in kinds.items() if len(commands) > PAYS_ABOVE}
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            list(pool.map(lambda kind: self._precompile(kind, kinds[kind][0]), self.precompiled))

    def command(self, unit, command):
        kind = kind_of(unit, command)
        header = ['-include', str(self._header(kind)), '-Winvalid-pch'] if kind in self.precompiled else []
        return [*self._flags(command, lambda name: not UNWANTED_NAME.match(name)), *header, '-fsyntax-only',
                str(self.root / unit)]

    def _header(self, kind):
        return self.folder / 'precompiled' / f'{"-".join(kind)}.h'

    def _precompile(self, kind, like):
        header = self._header(kind)
        header.parent.mkdir(parents=True, exist_ok=True)
        names = TEST_HEADERS if 'QT_TESTLIB_LIB' in kind else PRODUCT_HEADERS
        header.write_text(''.join(f'#include <{name}>\n' for name in names))
        # Only the names that all its files share: others, defined for some of them alone, must not be known to it.
        flags = self._flags(like, lambda name: SHARED_NAME.match(name) or name[2:] in kind)
        subprocess.run([*flags, '-x', 'c++-header', str(header), '-o', f'{header}.gch'], check=True)

    def _flags(self, command, wants_name):
        out = [CXX, '-Wall', '-Wextra', '-Werror']
        words = iter(command[1:])
        for word in words:
            flag = next((f for f in ('-isystem', '-I') if word.startswith(f)), None)
            if flag:
                folder = windows_include(word[len(flag):] or next(words))
                if folder:
                    out += [flag, str(folder)]
            elif word.startswith('-std=') or word.startswith('-D') and wants_name(word):
                out.append(word)
            elif word in ('-o', '-MF', '-MT', '-MQ', '-include'):
                next(words)
        return [*out, '-isystem', str(self.folder / 'portable-headers')]

    def _link_portable_headers(self):
        folder = self.folder / 'portable-headers'
        folder.mkdir(parents=True, exist_ok=True)
        for name in PORTABLE_HEADERS:
            source, link = pathlib.Path('/usr/include') / name, folder / name
            if source.exists() and not link.is_symlink():
                link.symlink_to(source)


# QT_TESTCASE_...: the test's own folders, which would make each folder's precompiled header another.
UNWANTED_NAME = re.compile(r'-D(__linux__|linux|_FORTIFY_SOURCE|QT_TESTCASE_)')
SHARED_NAME = re.compile(r'-D(QT_NO|QT_CORE_LIB|QT_MESSAGELOGCONTEXT|MSGPACK_)')
TEST_NAMES = ['QT_TESTLIB_LIB', 'QT_NETWORK_LIB', 'QT_GUI_LIB', 'QT_WIDGETS_LIB']  # what is in QTest depends on these


def kind_of(unit, command):
    """The units of one kind share a precompiled header. Files for Windows alone have none: nothing else would miss their
    includes."""
    if unit.stem.endswith('_win'):
        return None
    if '-DQT_TESTLIB_LIB' not in command:
        return ('product',)
    return tuple(name for name in TEST_NAMES if '-D' + name in command)


def windows_include(folder):
    """The include folder as mingw may see it, or None for one that leads to the C library of Linux."""
    folder = pathlib.Path(os.path.normpath(folder))
    if folder.is_relative_to(MULTIARCH / 'qt6' / 'mkspecs'):
        return MULTIARCH / 'qt6' / 'mkspecs' / 'win32-g++'
    if folder.is_relative_to('/usr') and not folder.is_relative_to(QT_INCLUDE):
        return None
    return folder


def posix_only(unit):
    return unit.stem.endswith(('_posix', '_linux', '_x11'))
