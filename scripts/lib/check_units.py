#!/usr/bin/env python3
"""Runs a checker over the source files of the project, as many at a time as there are cores.

usage: check_units.py tidy|windows [--only REGEX] [--deep] [--but-of COMMANDS]

tidy     clang-tidy with the project's .clang-tidy; not over the tests, whose time is better spent running. The static
         analyzer looks into small functions only; --deep lets it follow all calls, which takes up to five times as long
windows  mingw-w64's g++ with -fsyntax-only over the Linux Qt headers: is it valid Windows code? Every file, tests too

--but-of leaves out what a build compiles itself, by its compile_commands.json; none is left out when that isn't there.

The files of a module are checked a dozen at a time as one text, because nearly all the time goes into the Qt headers.
Where two of them share a name in their anonymous namespaces, each is checked by itself, as with --only.

What passed is not checked again until it, a project header that it includes or its command changes.
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

import batches
import windows_units

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILD = ROOT / 'build' / 'units'  # configured, and moc has run; nothing is built: commands without precompiled headers
RULES = [pathlib.Path(__file__), pathlib.Path(batches.__file__), pathlib.Path(windows_units.__file__),
         ROOT / '.clang-tidy']


def run(*words):
    result = subprocess.run(words, capture_output=True, text=True)
    if result.returncode != 0:
        sys.exit(result.stdout + result.stderr)


def configure():
    for info in BUILD.rglob('AutogenInfo.json'):
        info.unlink()  # a target that is gone would leave its own behind
    run('cmake', '-S', ROOT, '-B', BUILD, '-G', 'Ninja', '-DCMAKE_EXPORT_COMPILE_COMMANDS=ON',
        '-DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON', '-DCMAKE_BUILD_TYPE=Debug', '-DTARVO_BUILD_BENCH=ON')
    # moc alone, whose output test files include: building the targets for it would build what they link to. The view's
    # targets have generated files only.
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        list(pool.map(lambda info: run('cmake', '-E', 'cmake_autogen', info, 'Debug'),
                      [info for info in BUILD.rglob('AutogenInfo.json') if 'src/ui/view' not in str(info)]))


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


def compiled_by(commands):
    """What a build compiles, also in the files into which CMake puts several."""
    found = set()
    for entry in json.loads(commands.read_text()) if commands and commands.exists() else []:
        path = pathlib.Path(entry['file'])
        together = re.findall(r'#include "([^"]+)"', path.read_text()) if path.parent.name == 'Unity' else []
        found |= {path, *map(pathlib.Path, together)}
    return {path.relative_to(ROOT) for path in found if path.is_relative_to(ROOT)}


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


def stamp_of(mode, batch, memo):
    digest = hashlib.sha256(f'{mode} {batch.command}'.encode())
    files = set().union(*(project_files_of(ROOT / unit, memo) for unit in batch.units))
    for path in [*RULES, *sorted(files)]:
        digest.update(path.read_bytes())
    return BUILD / 'stamps' / mode / digest.hexdigest()


class TidyChecker:
    """clang-tidy as `windows_units.WindowsChecker` is for Windows."""

    SHALLOW = ['--extra-arg=' + word for word in ('-Xclang', '-analyzer-config', '-Xclang', 'mode=shallow')]

    def __init__(self, deep):
        self.options = [] if deep else self.SHALLOW

    def wanted(self, unit):
        return True

    def extra_units(self, units, only):
        return {}

    def prepare(self):
        """Nothing to prepare."""

    def command(self, batch):
        flags = [*batch.flags(), *(f'-I{ROOT / unit.parent}' for unit in batch.units)]
        return ['clang-tidy', '--quiet', f'--config-file={ROOT / ".clang-tidy"}', *self.options, str(batch.text),
                '--', *dict.fromkeys(flags)]


def check(checker, batch, stamp):
    """What failed, as pairs of batch and output. Files that share names don't pass together: then each is checked alone."""
    result = subprocess.run(checker.command(batch), capture_output=True, text=True, cwd=BUILD)
    failures = []
    if result.returncode != 0 and len(batch.units) > 1:
        failures = [failure for part in batch.split() for failure in check(checker, part, None)]
    elif result.returncode != 0:
        failures = [(batch, batch.translate(result.stdout + result.stderr))]
    if stamp and not failures:
        stamp.parent.mkdir(parents=True, exist_ok=True)
        stamp.touch()
    return failures


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument('mode', choices=['tidy', 'windows'])
    parser.add_argument('--only', default='')
    parser.add_argument('--deep', action='store_true')
    parser.add_argument('--but-of', type=pathlib.Path)
    arguments = parser.parse_args()
    mode = 'deep' if arguments.deep and arguments.mode == 'tidy' else arguments.mode
    configure()
    folders = ['src', 'practice', 'tools', 'bench'] + (['tests'] if mode == 'windows' else [])
    checker = windows_units.WindowsChecker(ROOT, BUILD / 'windows') if mode == 'windows' else TidyChecker(mode == 'deep')
    found = {u: c for u, c in units(folders, '').items() if checker.wanted(u)}
    found |= checker.extra_units(found, folders)
    elsewhere = compiled_by(arguments.but_of)
    found = {u: c for u, c in found.items() if u not in elsewhere and re.search(arguments.only, str(u))}
    todo = batches.make(ROOT, BUILD / 'batches' / mode, found, alone=bool(arguments.only))
    memo = {}
    stamps = {batch: stamp_of(mode, batch, memo) for batch in todo}
    stale = [batch for batch in todo if not stamps[batch].exists()]
    checker.prepare()
    failed = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        jobs = [pool.submit(check, checker, batch, stamps[batch]) for batch in stale]
        for job in concurrent.futures.as_completed(jobs):
            for batch, output in job.result():
                failed += 1
                print(f'FAIL {batch.name}\n{output}', flush=True)
    unchanged = sum(len(batch.units) for batch in todo if batch not in stale)
    print(f'{len(found)} files in {len(todo)} batches, {unchanged} unchanged since they passed, {failed} failed')
    sys.exit(1 if failed or not found else 0)


if __name__ == '__main__':
    main()
