"""How source files of the project are type-checked as Windows code: mingw-w64's g++ over the Linux Qt headers."""
import os
import pathlib
import subprocess
import sys

CXX = 'x86_64-w64-mingw32-g++-posix'
MULTIARCH = pathlib.Path('/usr/lib/x86_64-linux-gnu')
MOC = '/usr/lib/qt6/libexec/moc'
QT_INCLUDE = pathlib.Path('/usr/include/x86_64-linux-gnu/qt6')
# Headers of libraries that don't depend on the C library's own, given to mingw through a folder of links.
PORTABLE_HEADERS = ['archive.h', 'archive_entry.h', 'nlohmann', 'msgpack', 'msgpack.hpp', 'nng', 'benchmark', 'ogg', 'opus', 'portaudio.h', 'soxr.h']
SDL_HEADERS = [pathlib.Path('/usr/include/SDL2'), QT_INCLUDE.parent / 'SDL2']  # Debian splits them
UNWANTED_NAMES = ('-D__linux__', '-Dlinux', '-D_FORTIFY_SOURCE')


class WindowsChecker:
    """Makes the commands; scratch files go to `folder`."""

    def __init__(self, root, folder):
        self.root, self.folder = root, folder

    def wanted(self, unit):
        return not unit.stem.endswith(('_posix', '_linux', '_x11')) and 'fuzz' not in unit.parts

    def extra_units(self, units, folders):
        """Files named ..._win.cpp are in no Linux command: they are checked with a neighbour's, out of `units`."""
        found = {}
        for folder in folders:
            for path in sorted((self.root / folder).rglob('*_win.cpp')):
                relative = path.relative_to(self.root)
                neighbour = next((u for u in units if u.parent == relative.parent), None)
                if neighbour is None:
                    sys.exit(f'{relative}: no source file beside it to take the command from')
                found[relative] = units[neighbour]
                if f'"{path.stem}.moc"' in path.read_text():
                    self.run_moc(path)
        return found

    def run_moc(self, path):
        """What a file of Windows includes of moc: the build on Linux leaves it out."""
        out = self.folder / 'moc' / f'{path.stem}.moc'
        out.parent.mkdir(parents=True, exist_ok=True)
        includes = [f'-I{self.root / folder}' for folder in ('src', 'tests', '.')]
        subprocess.run([MOC, '-DQ_OS_WIN', '-D_WIN32', *includes, path, '-o', out], check=True)

    def prepare(self):
        """Links the portable headers."""
        folder = self.folder / 'portable-headers'
        folder.mkdir(parents=True, exist_ok=True)
        for name in PORTABLE_HEADERS:
            source, link = pathlib.Path('/usr/include') / name, folder / name
            if source.exists() and not link.is_symlink():
                link.symlink_to(source)
        (folder / 'SDL2').mkdir(exist_ok=True)
        for header in [header for part in SDL_HEADERS for header in part.glob('*.h')]:
            link = folder / 'SDL2' / header.name
            if not link.is_symlink():
                link.symlink_to(header)

    def command(self, batch):
        out = [CXX, '-Wall', '-Wextra', '-Werror']
        for word in batch.flags():
            if word.startswith(('-I', '-isystem')):
                flag = '-isystem' if word.startswith('-isystem') else '-I'
                folder = windows_include(word[len(flag):])
                if folder:
                    out += [flag, str(folder)]
            elif not word.startswith(UNWANTED_NAMES):
                out.append(word)
        own = [f'-I{folder}' for folder in {self.root / unit.parent for unit in batch.units} | {self.folder / 'moc'}]
        portable = self.folder / 'portable-headers'
        library_folders = [word for name in ('', 'SDL2', 'opus') for word in ('-isystem', str(portable / name))]
        return [*out, *own, *library_folders, '-fsyntax-only', str(batch.text)]


def windows_include(folder):
    """The include folder as mingw may see it, or None for one that leads to the C library of Linux."""
    folder = pathlib.Path(os.path.normpath(folder))
    if folder.is_relative_to(MULTIARCH / 'qt6' / 'mkspecs'):
        return MULTIARCH / 'qt6' / 'mkspecs' / 'win32-g++'
    if folder.is_relative_to('/usr') and not folder.is_relative_to(QT_INCLUDE):
        return None
    return folder
