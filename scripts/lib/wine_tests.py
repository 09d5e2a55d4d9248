#!/usr/bin/env python3
"""Runs the test programs of a build for Windows under Wine, two at a time, and adds up their rows.

    wine_tests.py BUILD [TEST...]

What is not run there stands in tests/not_under_wine.txt with a reason each: a test program of Linux's that there is none
of, a test class of Linux's, a test function ("Class::function"), or a row that skips itself ("Class::function:row"). Fails
when a test fails, and when the list and what has happened differ.
"""
import os
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
LIST = ROOT / 'tests' / 'not_under_wine.txt'
TOTALS = re.compile(r'^(\d+): Totals: (\d+) passed, (\d+) failed, (\d+) skipped', re.M)
SKIPPED = re.compile(r'^\d+: SKIP\s*: (\w+)::(\w+)\((.*)\) ', re.M)
ENDED = re.compile(r'^ *\d+/\d+ Test +#(\d+): (\S+) \.*\s*(.*?)\s+([\d.]+) sec', re.M)


def names_of(build):
    listed = subprocess.run(['ctest', '--test-dir', build, '-N'], capture_output=True, text=True, check=True).stdout
    return set(re.findall(r'^ *Test +#\d+: (\S+)', listed, re.M))


def classes_of(pattern):
    """Test classes in the files of such names."""
    return {name for path in (ROOT / 'tests').rglob(pattern)
            for name in re.findall(r'^TARVO_TEST\((\w+)\)', path.read_text(), re.M)}


def unlisted(found):
    """Complaints about what of `found` the list lacks, and what it has too much."""
    named = listed()
    return ([f'{name}: not run, and not in {LIST.name}' for name in sorted(found - named.keys())] +
            [f'{name}: in {LIST.name}, but run' for name in sorted(named.keys() - found)])


def listed():
    """Reasons by name."""
    lines = [line for line in LIST.read_text().splitlines() if line and not line.startswith('#')]
    return dict(re.split(r'  +', line, maxsplit=1) for line in lines)


def show(log, tests):
    rows = {}
    for number, *counts in TOTALS.findall(log):
        rows[number] = [a + int(b) for a, b in zip(rows.get(number, [0, 0, 0]), counts)]
    print(f'{"":28}{"passed":>8}{"failed":>8}{"skipped":>8}{"seconds":>9}')
    for number, name, outcome, seconds in tests:
        passed, failed, skipped = rows.get(number, [0, 0, 0])
        print(f'{name:28}{passed:8}{failed:8}{skipped:8}{float(seconds):9.1f}{"" if outcome == "Passed" else "  " + outcome}')
    sums = [sum(column) for column in zip(*rows.values())]
    print(f'{"all":28}{sums[0]:8}{sums[1]:8}{sums[2]:8}')


def main():
    build, wanted = sys.argv[1], sys.argv[2:]
    left_out = sorted(name for name in listed() if re.fullmatch(r'\w+::\w+', name))
    only = ['-R', f'^({"|".join(wanted)})$'] if wanted else []
    run = subprocess.run(['ctest', '--test-dir', build, '-j2', '-V', '--no-tests=error', *only],
                         capture_output=True, text=True, errors='replace', check=False,
                         env=os.environ | {'TARVO_LEFT_OUT': ' '.join(left_out)})
    (pathlib.Path(build) / 'tests.log').write_text(run.stdout + run.stderr)
    tests = sorted(ENDED.findall(run.stdout), key=lambda test: test[1])
    for number, _, outcome, _ in tests:
        if outcome != 'Passed':
            print(*re.findall(rf'^{number}: (.*)', run.stdout, re.M), sep='\n')
    show(run.stdout, tests)
    wrong = []
    if not wanted:
        skipped = {f'{name}::{function}' + (f':{row}' if row else '') for name, function, row in SKIPPED.findall(run.stdout)}
        here = names_of(build)
        there = {name for name in names_of('build/ci') if not name.startswith(('architecture_', 'fuzz_', 'packaging_'))}
        linux_only = set().union(*(classes_of(f'*_{end}.cpp') for end in ('linux', 'posix', 'x11')))
        wrong = unlisted((there - here) | linux_only | set(left_out) | skipped)
        print(*wrong, sep='\n')
    return 1 if run.returncode != 0 or wrong else 0


if __name__ == '__main__':
    sys.exit(main())
