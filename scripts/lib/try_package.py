#!/usr/bin/env python3
"""Tries a package as somebody has it who installs nothing else: in an empty root with its own files and the files of the
packages that it asks for, as a user without rights, in a network of its own.

First there is an older version. The practice network runs, the client signs in to it and shows its pages; a second start
ends at once; what it wrote is in the user's own folder, or beside a portable client. tarvo-support finds all well there but
the sound, which there is none of, and packs what they wrote. Then the client is killed, and the package comes over the
older version: its client takes the killed one's place, and signs in with what that has left. The driven demonstration is
flown, and a Debian package purged again: what the user has stays.

    try_package.py deb|portable TARVO-DEMO-CONFIG FOLDER
"""
import ctypes
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tarfile
import tempfile
import time
import zipfile

import dpkg_root

USER = 1000
HOME = 'home/pilot'
CLONE_NEWNS, CLONE_NEWNET, CLONE_NEWIPC = 0x20000, 0x40000000, 0x08000000
SIGNED_IN = 'GetLeaderboard request' # the last that a client asks for when it shows its pages
PATIENCE = 120  # seconds; a machine that also compiles is slow


class Failure(Exception):
    pass


def said(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


def closure(names):
    """The installed packages that these depend on, with themselves and what those depend on."""
    virtuals = {}
    status = {}  # of a package what it depends on, of a virtual one a package that provides it
    form = '${db:Status-Status}\t${Package}\t${Provides}\t${Pre-Depends}, ${Depends}\n'
    for line in said('dpkg-query', '-Wf', form).splitlines():
        state, name, provides, depends = line.split('\t')
        if state != 'installed':
            continue
        status.setdefault(name, re.sub(r'\([^)]*\)|:\w+', '', depends))
        for virtual in re.findall(r'[\w.+-]+', re.sub(r'\([^)]*\)', '', provides)):
            virtuals.setdefault(virtual, name)
    status = virtuals | status
    found, waiting = set(), list(names)
    while waiting:
        name = waiting.pop()
        if name in found or name not in status:
            continue
        found.add(name)
        for alternatives in status[name].split(','):
            choices = [choice.strip() for choice in alternatives.split('|')]
            waiting += [choice for choice in choices if choice in status][:1]
    return found


def link_or_copy(source, target):
    try:
        os.link(source, target, follow_symlinks=False)
    except OSError: # the checkout lies on another file system
        shutil.copy2(source, target, follow_symlinks=False)


def link_packages(root, names):
    """The files of installed packages, as hard links: nobody writes to them there."""
    for link in ('bin', 'sbin', 'lib', 'lib64'):
        (root / 'usr' / link).mkdir(parents=True, exist_ok=True)
        (root / link).symlink_to(f'usr/{link}')
    real = said('dpkg-query', '-Wf', '${Package}\n').split()
    for line in sorted(set(said('dpkg', '-L', *sorted(names & set(real))).splitlines())):
        if not line.startswith('/'):
            continue
        source = pathlib.Path(line)
        target = root / line[1:]
        if source.is_symlink() or source.is_file():
            target.parent.mkdir(parents=True, exist_ok=True)
            if not os.path.lexists(target):
                link_or_copy(source, target)
    subprocess.run(['ldconfig', '-r', root], check=True)


def depends_of(package):
    fields = said('dpkg-deb', '--field', package, 'Depends')
    return [re.match(r'[\w.+-]+', part.strip())[0] for part in fields.split(',')]


# ALSA's way to the sound server, and locales, without which windows have no titles that others can read.
DESKTOP = {'libasound2-plugins', 'libc-bin'}


class DebianPackages:
    """dpkg itself brings them."""

    programs, data = 'usr/bin', f'{HOME}/.local/share/TarvoClient'

    def __init__(self, folder, root):
        self.folder, self.root = folder, root
        self.packages = sorted((folder / 'deb').glob('*.deb'))

    def install_older(self):
        names = closure({name for package in self.packages for name in depends_of(package)} | DESKTOP)
        link_packages(self.root, names)
        dpkg_root.know(self.root, names)
        with tempfile.TemporaryDirectory(dir=self.folder) as scratch:
            dpkg_root.install(self.root, dpkg_root.older(self.packages, pathlib.Path(scratch)))

    def user_files(self):
        """What each of the user's files holds."""
        return {path: path.read_bytes() for path in sorted((self.root / HOME).rglob('*')) if path.is_file()}

    def upgrade(self):
        dpkg_root.install(self.root, self.packages)
        if (self.root / dpkg_root.ONLY_OLD).exists():
            raise Failure('the upgrade left a file of the older version')

    def remove(self):
        dpkg_root.purge(self.root, self.packages)
        left = [path for package in self.packages for path in dpkg_root.files_of(package)
                if os.path.lexists(self.root / path)]
        if left or (self.root / dpkg_root.ONLY_OLD.parent).exists():
            raise Failure(f'the removal left {left}')


class PortableArchive:
    """It is unpacked into a folder of the user's, which has all of it and his data."""

    programs = data = f'{HOME}/TarvoClient'

    def __init__(self, folder, root):
        self.archive, = folder.glob('*.tar.xz')
        self.root = root
        self.place = root / self.programs

    def files(self):
        """What the archive brings: path and bytes."""
        with tarfile.open(self.archive) as archive:
            return {self.place.parent / member.name: archive.extractfile(member).read()
                    for member in archive if member.isfile()}

    def install_older(self):
        self.place.parent.mkdir(parents=True)
        os.chown(self.place.parent, USER, USER)
        self.upgrade()
        readme = self.place / 'README.txt'
        packages = closure(set(re.findall(r'^  (\S+)$', readme.read_text(encoding='utf-8'), re.M)) | DESKTOP)
        if any('qt6' in name for name in packages):
            raise Failure(f'a package of Qt came along: {sorted(packages)}')
        link_packages(self.root, packages)
        for path in (readme, self.place / 'lib/libQt6Sql.so.6'):  # as if they were of an older version
            path.write_bytes(path.read_bytes() + b'\n')

    def user_files(self):
        """Those that don't come with the archive: his data beside the programs, and all else."""
        brought = self.files()
        return {path: path.read_bytes() for path in sorted((self.root / HOME).rglob('*'))
                if path.is_file() and path not in brought}

    def upgrade(self):
        """The user unpacks it over what is there."""
        subprocess.run(['tar', '-xf', self.archive, '-C', self.place.parent], check=True, user=USER, group=USER)
        old = [path for path, bytes_ in self.files().items() if path.read_bytes() != bytes_]
        if old:
            raise Failure(f'the upgrade left {old} as they were')

    def remove(self):
        shutil.rmtree(self.place)
        traces = [path for path in (self.root / HOME).rglob('*') if 'arvo' in path.name]
        if traces:
            raise Failure(f'it wrote outside of its folder: {traces}')


def keeping_data(package, change):
    """Carries out a change of the programs; the user's files stay as they are."""
    before = package.user_files()
    change()
    if not before or package.user_files() != before:
        raise Failure(f"{change.__name__} touched the user's files")


def demonstrate(kind, root, package, build):
    """The driven demonstration, with the programs that are in the root."""
    demo = pathlib.Path(__file__).with_name('demo.py')
    with open(root.parent / f'said-{kind}' / 'demonstration.txt', 'w') as said:
        code = subprocess.run([demo, '--headless', '--bin', build, '--pictures', f'demo-{kind}',
                               '--root', root, package.programs, package.data],
                              stdout=said, stderr=subprocess.STDOUT).returncode
    if code != 0:
        raise Failure('the demonstration failed:\n' + pathlib.Path(said.name).read_text(errors='replace'))


def enter_own_world(root):
    """Mounts and the network that begin here end with this process."""
    libc = ctypes.CDLL(None, use_errno=True)
    if libc.unshare(CLONE_NEWNS | CLONE_NEWNET | CLONE_NEWIPC):
        raise Failure(os.strerror(ctypes.get_errno()))
    subprocess.run(['mount', '--make-rprivate', '/'], check=True)
    subprocess.run(['ip', 'link', 'set', 'lo', 'up'], check=True)
    for name in ('dev', 'proc', 'tmp', 'run'):
        (root / name).mkdir(exist_ok=True)
    subprocess.run(['mount', '-t', 'proc', 'proc', root / 'proc'], check=True)
    subprocess.run(['mount', '-t', 'tmpfs', '-o', 'mode=1777', 'tmpfs', root / 'tmp'], check=True)
    for name in ('null', 'urandom', 'zero'):
        (root / 'dev' / name).touch()
        subprocess.run(['mount', '--bind', f'/dev/{name}', root / 'dev' / name], check=True)


class Stage:
    """The programs in the root, and what they say."""

    def __init__(self, root, programs, output):
        self.root, self.programs, self.output = root, programs, output
        self.running = []
        self.environment = {'HOME': f'/{HOME}', 'XDG_RUNTIME_DIR': f'/{HOME}/run', 'LANG': 'C.UTF-8', 'PATH': '/usr/bin',
                            'QT_QPA_PLATFORM': 'offscreen', 'QT_QUICK_BACKEND': 'software'}

    def start(self, name, *arguments):
        output = open(self.output / f'{name}.{len(self.running)}.txt', 'wb')
        # Not chroot(8)'s own environment: nothing of the machine's may help.
        process = subprocess.Popen(['/usr/sbin/chroot', f'--userspec={USER}:{USER}', self.root, f'/{self.programs}/{name}', *arguments],
                                   env=self.environment, stdout=output, stderr=subprocess.STDOUT)
        process.output = pathlib.Path(output.name)
        self.running.append(process)
        return process

    def end(self):
        while self.running:
            process = self.running.pop()
            process.terminate()
            process.wait()


def wait_for(what, condition, process):
    deadline = time.monotonic() + PATIENCE
    while not condition():
        if process.poll() is not None:
            raise Failure(f'{what}: it ended with {process.returncode}\n{process.output.read_text(errors="replace")}')
        if time.monotonic() > deadline:
            raise Failure(f'{what}: not within {PATIENCE} s\n{process.output.read_text(errors="replace")}')
        time.sleep(0.2)


def log_of(data):
    return '\n'.join(path.read_text(errors='replace') for path in sorted((data / 'logs').glob('*.log')))


def sign_in(stage, data):
    """The client is started, and signs in with the account in its settings."""
    seen = log_of(data).count(SIGNED_IN)
    client = stage.start('TarvoClient')
    wait_for('the pages', lambda: log_of(data).count(SIGNED_IN) > seen, client)
    log = log_of(data)
    for bad in ('could not be loaded', ' | ERROR | ', ' | FATAL | ', 'An earlier run crashed'):
        if bad in log:
            raise Failure(log)
    if log.count('Imported Doc8643') != 1: # at the first start; later it is there
        raise Failure('the type data were not found once\n' + log)
    return client


def fly(stage, data):
    practice = stage.start('tarvo-practice')
    wait_for('the practice network', lambda: 'ready' in practice.output.read_text(), practice)
    client = sign_in(stage, data)
    second = stage.start('TarvoClient')
    if second.wait(timeout=PATIENCE) != 0:
        raise Failure(f'the second start ended with {second.returncode}')
    check_up(stage, data)
    print(next(line for line in log_of(data).splitlines() if 'with its data in' in line))
    client.kill()
    client.wait()


def check_up(stage, data):
    """What is looked at by a pilot who needs help."""
    support = stage.start('tarvo-support', '--pack', f'/{HOME}/support.zip')
    support.wait(timeout=PATIENCE)
    report = support.output.read_text()
    faults = re.findall(r'^✗ (.+?)：', report, re.M)
    if support.returncode != 1 or not faults or not set(faults) <= {'声音', '麦克风', '耳机和扬声器'}:
        raise Failure(f'tarvo-support ended with {support.returncode}\n{report}')
    with zipfile.ZipFile(stage.root / HOME / 'support.zip') as archive:
        packed, bad = set(archive.namelist()), archive.testzip()
    logs = {str(path.relative_to(data)) for path in data.glob('logs/*.log')}
    if bad or not logs or not packed >= logs | {'report.txt', 'config.ini'}:
        raise Failure(f'of {sorted(logs)} there is packed {sorted(packed)}; damaged: {bad}')


def prepare_home(root, data, demo_config):
    """A user who has an account."""
    data.mkdir(parents=True, exist_ok=True)
    (root / HOME / 'run').mkdir(mode=0o700)
    subprocess.run([demo_config, data, '1001', 'practice'], check=True)
    subprocess.run(['chown', '-R', f'{USER}:{USER}', root / HOME], check=True)


def main():
    if os.geteuid() != 0:
        print('not tried: making a root of its own takes root')
        return
    kind, demo_config, folder = sys.argv[1], pathlib.Path(sys.argv[2]).resolve(), pathlib.Path(sys.argv[3]).resolve()
    root, output = folder / f'root-{kind}', folder / f'said-{kind}'
    for old in (root, output):
        shutil.rmtree(old, ignore_errors=True)
        old.mkdir()
    package = {'deb': DebianPackages, 'portable': PortableArchive}[kind](folder, root)
    stage = Stage(root, package.programs, output)
    try:
        package.install_older()
        prepare_home(root, root / package.data, demo_config)
        enter_own_world(root)
        fly(stage, root / package.data)
        keeping_data(package, package.upgrade)
        sign_in(stage, root / package.data)
        print('came over an older version, whose client was killed: its data are kept and used')
        stage.end()
        demonstrate(kind, root, package, demo_config.parent)
        print('flew the driven demonstration')
        keeping_data(package, package.remove) if kind == 'deb' else package.remove()
        print('removed: nothing of it is left' + (' but the data' if kind == 'deb' else ''))
    except (Failure, RuntimeError) as failure:
        sys.exit(f'{kind}: {failure}')
    finally:
        stage.end()
    subprocess.run(['umount', '-R', root / 'proc', root / 'tmp'], check=False)
    for name in ('null', 'urandom', 'zero'):
        subprocess.run(['umount', root / 'dev' / name], check=False)
    shutil.rmtree(root)


if __name__ == '__main__':
    main()
