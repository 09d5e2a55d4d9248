#!/usr/bin/env python3
"""Lays out a folder with the client, the practice network, Qt, its plugins and all other libraries that a Debian 12 with a
desktop may lack, and packs it.

    portable.py BUILD FOLDER
"""
import filecmp
import itertools
import os
import pathlib
import re
import shutil
import subprocess
import sys

QT = pathlib.Path('/usr/lib/x86_64-linux-gnu/qt6')
FOLDER = 'TarvoClient'
PROGRAMS = ['TarvoClient', 'tarvo-support', 'tarvo-practice']
PLUGINS = ['platforms/libqxcb.so', 'platforms/libqoffscreen.so', 'platforms/libqminimal.so', 'imageformats/libqjpeg.so',
           'imageformats/libqico.so', 'sqldrivers/libqsqlite.so', 'multimedia/libgstreamermediaplugin.so',
           'tls/libqopensslbackend.so', 'tls/libqcertonlybackend.so',
           'xcbglintegrations/libqxcb-glx-integration.so', 'xcbglintegrations/libqxcb-egl-integration.so',
           'platforminputcontexts/libcomposeplatforminputcontextplugin.so',
           'platforminputcontexts/libibusplatforminputcontextplugin.so', 'networkinformation/libqnetworkmanager.so']
# QML modules that the pages import, and what these import.
QML = ['QtQml', 'QtQuick/Controls', 'QtQuick/Layouts', 'QtQuick/Templates', 'QtQuick/Window']
# Of the system: parts of the C library and the driver stack, and what talks to a daemon of the same version.
SYSTEM = re.compile(r'(ld-linux|lib(c|m|dl|rt|pthread|resolv|stdc\+\+|gcc_s|X11|X11-xcb|xcb|GL|GLX|EGL|OpenGL|GLdispatch|drm|gbm|'
                    r'fontconfig|freetype|expat|z|asound|jack|pulse.*|dbus-1|systemd|udev|glib-2|gobject-2|gio-2|gmodule-2|'
                    r'gst.*|ssl|crypto|va|va-.*|vdpau|av.*|sw.*|nss.*))[.-]')


def known_libraries():
    """What the loader finds: name and path."""
    said = subprocess.run(['ldconfig', '-p'], capture_output=True, text=True, check=True).stdout
    found = {}
    for name, path in re.findall(r'^\t(\S+) \(libc6,x86-64.*\) => (\S+)$', said, re.M):
        found.setdefault(name, path)
    return found


def needed_by(paths):
    """The libraries that these name."""
    said = subprocess.run(['readelf', '-dW', *paths], capture_output=True, text=True, check=True).stdout
    return set(re.findall(r'\(NEEDED\)\s+Shared library: \[(.+?)\]', said))


def copy(source, target):
    target.parent.mkdir(parents=True, exist_ok=True)
    shutil.copyfile(source, target)
    target.chmod(0o755 if os.access(source, os.X_OK) or '.so' in target.name else 0o644)


def copy_qml(folder):
    for name in QML:
        for source in sorted((QT / 'qml' / name).rglob('*')):
            relative = source.relative_to(QT / 'qml')
            styles = {'Fusion', 'Imagine', 'Material', 'Universal', 'designer'}
            if source.is_file() and not styles & set(relative.parts) and source.suffix != '.qmltypes':
                copy(source, folder / 'qml' / relative)
    for source in (QT / 'qml' / 'QtQuick').iterdir():
        if source.is_file() and source.suffix != '.qmltypes':
            copy(source, folder / 'qml/QtQuick' / source.name)


def stage(build, folder):
    for name in PROGRAMS:
        copy(build / 'bin' / name, folder / name)
    copy(build / 'bin/resources/Doc8643.txt', folder / 'resources/Doc8643.txt')
    for name in PLUGINS:
        if (QT / 'plugins' / name).exists():
            copy(QT / 'plugins' / name, folder / 'plugins' / name)
    copy_qml(folder)
    (folder / 'qt.conf').write_text('[Paths]\nPrefix=.\nLibraries=lib\nPlugins=plugins\nQmlImports=qml\n')
    system, found = set(), known_libraries()
    waiting, done = needed_by([folder / name for name in PROGRAMS] + sorted(folder.rglob('*.so'))), set()
    while waiting:
        missing = waiting - found.keys()
        if missing:
            sys.exit(f'not found: {sorted(missing)}')
        done |= waiting
        system |= {found[name] for name in waiting if SYSTEM.match(name)}  # and what they need comes with their packages
        brought = sorted(name for name in waiting if not SYSTEM.match(name))
        for name in brought:
            copy(found[name], folder / 'lib' / name)
        waiting = needed_by([found[name] for name in brought]) - done if brought else set()
    return system


def finish(folder):
    """Without symbols for debuggers; each file looks for libraries in the folder that came with it."""
    binaries = [folder / name for name in PROGRAMS] + sorted(p for p in folder.rglob('*.so*') if p.is_file())
    subprocess.run(['strip', '--strip-unneeded', *binaries], check=True)
    for parent, files in itertools.groupby(binaries, lambda path: path.parent):
        away = os.path.relpath(folder / 'lib', parent)
        subprocess.run(['patchelf', '--set-rpath', f'$ORIGIN/{away}', *files], check=True)


def packages_of(libraries):
    """The Debian packages that these files come from."""
    paths = {}  # dpkg knows a file below /lib or below /usr/lib, but not both
    for library in libraries:
        real = os.path.realpath(library)
        paths[library] = {library, real, real.removeprefix('/usr')}
    said = subprocess.run(['dpkg', '-S', *sorted(set().union(*paths.values()))], capture_output=True, text=True).stdout
    owners = {path: package for package, path in re.findall(r'^([^:,]+).*?: (\S+)$', said, re.M)}
    found = {library: [owners[path] for path in known if path in owners] for library, known in paths.items()}
    strange = sorted(library for library, packages in found.items() if not packages)
    if strange:
        sys.exit(f'{strange} come from no package')
    return sorted(set().union(*found.values()))


def write_readme(folder, packages):
    (folder / 'README.txt').write_text(
        'TARVO Client\n\n在任意可写的文件夹中运行 TarvoClient；设置和日志保存在同一文件夹。\n'
        '更新：把新版本解压到同一位置，设置和日志不变。卸载：删除这个文件夹。\n'
        '遇到问题时运行 tarvo-support，它检查并说明怎么办。\n'
        '练习网络：先运行 tarvo-practice，再用账号 1001、密码 practice 登录。\n\n'
        'Needed of a Debian 12, beside what every one has:\n'
        + ''.join(f'  {name}\n' for name in [*packages, 'gstreamer1.0-plugins-good', 'fonts-noto-cjk']), encoding='utf-8')
    (folder / 'README.txt').chmod(0o644)


def pack(build, staging):
    """The path of an archive that isn't compressed yet. Its folder bears no version, so that a newer one comes over an
    older one, beside the user's data."""
    shutil.rmtree(staging, ignore_errors=True)
    folder = staging / FOLDER
    folder.mkdir(parents=True)
    system = stage(build, folder)
    finish(folder)
    write_readme(folder, packages_of(system))
    archive = staging / 'packed.tar'
    tar = ['tar', '--sort=name', f'--mtime=@{os.environ["SOURCE_DATE_EPOCH"]}', '--owner=0', '--group=0', '--numeric-owner',
           '--mode=go=rX,u+rw', '--format=ustar', '-C', staging, '-cf', archive, FOLDER]
    subprocess.run(tar, check=True)
    return archive


def main():
    build, packages = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    version = re.search(r'CMAKE_PROJECT_VERSION:STATIC=(\S+)', (build / 'CMakeCache.txt').read_text())[1]
    again = pack(build, packages / 'staging-again')
    archive = pack(build, packages / 'staging')
    if not filecmp.cmp(archive, again, shallow=False):
        sys.exit(f'packed twice, they differ: {archive} {again}')
    shutil.rmtree(again.parent)
    for old in packages.glob('*.tar.xz'):
        old.unlink()
    subprocess.run(['xz', '-3', '-T2', archive], check=True)
    archive.with_suffix('.tar.xz').rename(packages / f'TarvoClient-{version}-linux-x86_64.tar.xz')


if __name__ == '__main__':
    main()
