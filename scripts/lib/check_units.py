#!/usr/bin/env python3
"""Runs a checker over the source files of the project, as many at a time as there are cores.

usage: check_units.py tidy|windows [--only REGEX] [--deep]

tidy     clang-tidy with the project's .clang-tidy; not over the tests, whose time is better spent running. The static
         analyzer looks into small functions only; --deep lets it follow all calls, which takes up to five times as long
windows  mingw-w64's g++ with -fsyntax-only over the Linux Qt headers: is it valid Windows code? Every file, tests too

A file that passed is not checked again until it, a project header that it includes or its command changes.
"""
import argparse
import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILD = ROOT / 'build' / 'units'  # configured, and moc has run: commands without precompiled headers
PORTABLE = BUILD / 'portable-headers'
MULTIARCH = pathlib.Path('/usr/lib/x86_64-linux-gnu')
SYSTEM_INCLUDE = pathlib.Path('/usr/include/x86_64-linux-gnu')
QT_INCLUDE = SYSTEM_INCLUDE / 'qt6'
WINDOWS_CXX = 'x86_64-w64-mingw32-g++-posix'
# Headers of libraries that don't depend on the C library's own, given to mingw through a folder of links.
PORTABLE_HEADERS = ['nlohmann', 'msgpack', 'msgpack.hpp', 'nng', 'benchmark']


def configure():
    result = subprocess.run(
        ['cmake', '-S', ROOT, '-B', BUILD, '-G', 'Ninja', '-DCMAKE_EXPORT_COMPILE_COMMANDS=ON',
         '-DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON', '-DCMAKE_BUILD_TYPE=Debug', '-DTARVO_BUILD_BENCH=ON',
         '-DCMAKE_CXX_COMPILER_LAUNCHER=', '-DCMAKE_GLOBAL_AUTOGEN_TARGET=ON'],
        capture_output=True, text=True)
    if result.returncode == 0:  # test files include what moc makes of them
        result = subprocess.run(['cmake', '--build', BUILD, '--target', 'autogen'], capture_output=True, text=True)
    if result.returncode != 0:
        sys.exit(result.stdout + result.stderr)


def units(folders, only):
    """Source files of the project with their compile commands, each once."""
    seen = {}
    for entry in json.loads((BUILD / 'compile_commands.json').read_text()):
        path = pathlib.Path(entry['file'])
        if BUILD in path.parents or not path.is_relative_to(ROOT):
            continue
        relative = path.relative_to(ROOT)
        if relative.parts[0] in folders and re.search(only, str(relative)):
            seen.setdefault(relative, shlex.split(entry['command']))
    return seen


def windows_only(folders, only, like):
    """Files named ..._win.cpp are in no Linux command: they are checked with a neighbour's."""
    found = {}
    for folder in folders:
        for path in sorted((ROOT / folder).rglob('*_win.cpp')):
            relative = path.relative_to(ROOT)
            neighbour = next((u for u in like if u.parent == relative.parent), None)
            if neighbour is None:
                sys.exit(f'{relative}: no source file beside it to take the command from')
            if re.search(only, str(relative)):
                found[relative] = like[neighbour]
    return found


INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.M)


def project_files_of(path, memo):
    """The file and every project header that it reaches."""
    if path in memo:
        return memo[path]
    memo[path] = files = {path}
    for name in INCLUDE.findall(path.read_text(errors='replace')):
        for base in (path.parent, ROOT / 'src', ROOT / 'tests', ROOT / 'practice', ROOT):
            target = base / name
            if target.is_file():
                files |= project_files_of(target.resolve(), memo)
                break
    return files


def stamp_of(mode, unit, command, memo):
    digest = hashlib.sha256(f'{mode} {command}'.encode())
    if mode != 'windows':
        digest.update((ROOT / '.clang-tidy').read_bytes())
    digest.update(pathlib.Path(__file__).read_bytes())
    for path in sorted(project_files_of(ROOT / unit, memo)):
        digest.update(path.read_bytes())
    return BUILD / 'stamps' / mode / digest.hexdigest()


SHALLOW = ['--extra-arg=' + word for word in ('-Xclang', '-analyzer-config', '-Xclang', 'mode=shallow')]


def tidy_command(unit, command):
    return deep_command(unit, command) + SHALLOW


def deep_command(unit, command):
    del command
    return ['clang-tidy', '--quiet', '-p', str(BUILD), str(ROOT / unit)]


def link_portable_headers():
    PORTABLE.mkdir(parents=True, exist_ok=True)
    for name in PORTABLE_HEADERS:
        source, link = pathlib.Path('/usr/include') / name, PORTABLE / name
        if source.exists() and not link.is_symlink():
            link.symlink_to(source)


def windows_include(folder):
    """The include folder as mingw may see it, or None for one that leads to the C library of Linux."""
    folder = pathlib.Path(os.path.normpath(folder))
    if folder.is_relative_to(MULTIARCH / 'qt6' / 'mkspecs'):
        return MULTIARCH / 'qt6' / 'mkspecs' / 'win32-g++'
    if folder.is_relative_to('/usr') and not folder.is_relative_to(QT_INCLUDE):
        return None
    return folder


def windows_command(unit, command):
    out = [WINDOWS_CXX, '-fsyntax-only', '-Wall', '-Wextra', '-Werror']
    words = iter(command[1:])
    for word in words:
        flag = next((f for f in ('-isystem', '-I') if word.startswith(f)), None)
        if flag:
            folder = windows_include(word[len(flag):] or next(words))
            if folder:
                out += [flag, str(folder)]
        elif word.startswith('-std='):
            out.append(word)
        elif word.startswith('-D') and not re.match(r'-D(__linux__|linux|_FORTIFY_SOURCE)', word):
            out.append(word)
        elif word in ('-o', '-MF', '-MT', '-MQ', '-include'):
            next(words)
    return out + ['-isystem', str(PORTABLE), str(ROOT / unit)]


COMMANDS = {'tidy': tidy_command, 'deep': deep_command, 'windows': windows_command}


def posix_only(unit):
    return unit.stem.endswith(('_posix', '_linux', '_x11'))


def check(mode, unit, command, stamp):
    started = time.monotonic()
    result = subprocess.run(COMMANDS[mode](unit, command), capture_output=True, text=True, cwd=BUILD)
    if result.returncode == 0:
        stamp.parent.mkdir(parents=True, exist_ok=True)
        stamp.touch()
    return unit, result, time.monotonic() - started


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument('mode', choices=['tidy', 'windows'])
    parser.add_argument('--only', default='')
    parser.add_argument('--deep', action='store_true')
    arguments = parser.parse_args()
    mode = 'deep' if arguments.deep and arguments.mode == 'tidy' else arguments.mode
    configure()
    folders = ['src', 'practice', 'tools', 'bench'] + (['tests'] if arguments.mode == 'windows' else [])
    todo = units(folders, arguments.only)
    if arguments.mode == 'windows':
        link_portable_headers()
        todo |= windows_only(folders, arguments.only, units(folders, ''))
        todo = {u: c for u, c in todo.items() if not posix_only(u) and 'fuzz' not in u.parts}
    memo = {}
    stamps = {u: stamp_of(mode, u, c, memo) for u, c in todo.items()}
    stale = {u: c for u, c in todo.items() if not stamps[u].exists()}
    failed = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        jobs = [pool.submit(check, mode, u, c, stamps[u]) for u, c in stale.items()]
        for job in concurrent.futures.as_completed(jobs):
            unit, result, seconds = job.result()
            if result.returncode != 0:
                failed += 1
                print(f'FAIL {unit} ({seconds:.1f} s)\n{result.stdout}{result.stderr}', flush=True)
    print(f'{len(todo)} files, {len(todo) - len(stale)} unchanged since they passed, {failed} failed')
    sys.exit(1 if failed else 0)


if __name__ == '__main__':
    main()
