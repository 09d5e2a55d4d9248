"""Debian packages in a root of their own, installed, upgraded and removed by dpkg itself, which looks at what they depend
on: the root's dpkg knows the machine's packages whose files are linked there.
"""
import pathlib
import re
import shutil
import subprocess

INFO = pathlib.Path('var/lib/dpkg/info')
OLD_VERSION = '0.0.1'
ONLY_OLD = pathlib.Path('usr/share/TarvoClient/of-an-older-version')


def know(root, names):
    """Tells the root's dpkg of installed packages."""
    (root / INFO).mkdir(parents=True)
    (root / INFO.parent / 'updates').mkdir()
    said = subprocess.run(['dpkg-query', '-s', *sorted(names)], capture_output=True, text=True).stdout # without virtual ones
    (root / INFO.parent / 'status').write_text(said)
    for name in sorted(names):
        for path in [pathlib.Path('/') / INFO / f'{name}.list', *(pathlib.Path('/') / INFO).glob(f'{name}:*.list')]:
            if path.exists():
                shutil.copyfile(path, root / INFO / path.name)


def run(root, *words):
    done = subprocess.run(['dpkg', f'--root={root}', *words], capture_output=True, text=True)
    if done.returncode != 0:
        raise RuntimeError(f'dpkg {" ".join(map(str, words))}:\n{done.stdout}{done.stderr}')


def install(root, packages):
    run(root, '--force-unsafe-io', '--install', *packages)


def purge(root, packages):
    run(root, '--purge', *(name_of(package) for package in packages))


def name_of(package):
    return subprocess.run(['dpkg-deb', '--field', package, 'Package'], capture_output=True, text=True, check=True).stdout.strip()


def files_of(package):
    """The paths of its files, without folders."""
    listed = subprocess.run(['dpkg-deb', '--contents', package], capture_output=True, text=True, check=True).stdout
    return [re.split(r'\s+', line, maxsplit=5)[5].removeprefix('./') for line in listed.splitlines() if line[0] != 'd']


def older(packages, scratch):
    """The same packages as an older version, with a file that the newer one lacks."""
    made = []
    for package in packages:
        tree = scratch / package.stem
        subprocess.run(['dpkg-deb', '--raw-extract', package, tree], check=True)
        control = tree / 'DEBIAN/control'
        control.write_text(re.sub(r'(?m)^Version: .*', f'Version: {OLD_VERSION}', control.read_text()))
        if (tree / ONLY_OLD.parent).is_dir():
            (tree / ONLY_OLD).touch()
        made.append(scratch / f'{package.stem}_older.deb')
        subprocess.run(['dpkg-deb', '--root-owner-group', '-Znone', '--build', tree, made[-1]], check=True,
                       stdout=subprocess.DEVNULL)
    return made
