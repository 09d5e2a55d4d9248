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

import windows_units

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILD = ROOT / 'build' / 'units'  # configured, and moc has run: commands without precompiled headers
RULES = [pathlib.Path(__file__), pathlib.Path(windows_units.__file__), ROOT / '.clang-tidy']


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
    for path in [*RULES, *sorted(project_files_of(ROOT / unit, memo))]:
        digest.update(path.read_bytes())
    return BUILD / 'stamps' / mode / digest.hexdigest()


class TidyChecker:
    """clang-tidy as `windows_units.WindowsChecker` is for Windows."""

    SHALLOW = ['--extra-arg=' + word for word in ('-Xclang', '-analyzer-config', '-Xclang', 'mode=shallow')]

    def __init__(self, units, deep):
        self.units = units
        self.options = [] if deep else self.SHALLOW

    def prepare(self, stale):
        """Nothing to prepare."""

    def command(self, unit, command):
        del command  # found by clang-tidy itself
        return ['clang-tidy', '--quiet', '-p', str(BUILD), *self.options, str(ROOT / unit)]


def make_checker(mode, only):
    folders = ['src', 'practice', 'tools', 'bench']
    if mode != 'windows':
        return TidyChecker(units(folders, only), deep=mode == 'deep')
    folders.append('tests')
    checker = windows_units.WindowsChecker(ROOT, BUILD / 'windows', units(folders, only))
    checker.add_windows_only(folders, only, units(folders, ''))
    return checker


def check(checker, unit, stamp):
    started = time.monotonic()
    result = subprocess.run(checker.command(unit, checker.units[unit]), capture_output=True, text=True, cwd=BUILD)
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
    checker = make_checker(mode, arguments.only)
    memo = {}
    stamps = {u: stamp_of(mode, u, c, memo) for u, c in checker.units.items()}
    stale = {u: c for u, c in checker.units.items() if not stamps[u].exists()}
    checker.prepare(stale)
    failed = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        jobs = [pool.submit(check, checker, unit, stamps[unit]) for unit in stale]
        for job in concurrent.futures.as_completed(jobs):
            unit, result, seconds = job.result()
            if result.returncode != 0:
                failed += 1
                print(f'FAIL {unit} ({seconds:.1f} s)\n{result.stdout}{result.stderr}', flush=True)
    print(f'{len(checker.units)} files, {len(checker.units) - len(stale)} unchanged since they passed, {failed} failed')
    sys.exit(1 if failed else 0)


if __name__ == '__main__':
    main()
