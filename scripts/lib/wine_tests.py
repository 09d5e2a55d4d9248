#!/usr/bin/env python3
"""Runs the test programs of a build for Windows under Wine, two at a time, and adds up their rows.

    wine_tests.py BUILD [TEST...]

What is not run there stands in tests/not_under_wine.txt with a reason each: a test program of Linux's that there is none
of, a test class of Linux's, a test function ("Class::function"), or a row that skips itself ("Class::function:row"). Fails
when a test fails twice, and when the list and what has happened differ. A program that failed is run once more, by itself:
what Wine does wrong comes and goes, what we do wrong stays.
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
    sums = [sum(column) for column in zip(*rows.values())] or [0, 0, 0]
    print(f'{"all":28}{sums[0]:8}{sums[1]:8}{sums[2]:8}')


def run(build, wanted, at_once, left_out):
    """What ctest says of those test programs, or of all."""
    only = ['-R', f'^({"|".join(wanted)})$'] if wanted else []
    return subprocess.run(['ctest', '--test-dir', build, f'-j{at_once}', '-V', '--no-tests=error', *only],
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors='replace', check=False,
                          env=os.environ | {'TARVO_LEFT_OUT': ' '.join(left_out)}).stdout


def failed_in(log):
    """Numbers and names of the test programs that did."""
    return [(number, name) for number, name, outcome, _ in ENDED.findall(log) if outcome != 'Passed']


def run_twice(build, wanted, left_out):
    """What ctest says, of a program that failed what it says of the second time."""
    log = run(build, wanted, 2, left_out)
    for number, name in (failed := failed_in(log)):
        said = re.findall(rf'^{number}: (.*)', log, re.M)
        why = [line for line in said if line.startswith(('FAIL!', 'QFATAL'))] or said[-5:]
        print(*why, f'{name} failed, and is run again', sep='\n')
        log = re.sub(rf'^({number}: | *\d+/\d+ Test +#{number}: ).*\n', '', log, flags=re.M)
    return log + (run(build, [name for _, name in failed], 1, left_out) if failed else '')


def main():
    build, wanted = sys.argv[1], sys.argv[2:]
    left_out = sorted(name for name in listed() if re.fullmatch(r'\w+::\w+', name))
    log = run_twice(build, wanted, left_out)
    (pathlib.Path(build) / 'tests.log').write_text(log)
    tests = sorted(ENDED.findall(log), key=lambda test: test[1])
    failed = failed_in(log)
    for number, _ in failed:
        print(*re.findall(rf'^{number}: (.*)', log, re.M), sep='\n')
    show(log, tests)
    wrong = [] if tests else ['no test was run']
    if not wanted:
        skipped = {f'{name}::{function}' + (f':{row}' if row else '') for name, function, row in SKIPPED.findall(log)}
        here = names_of(build)
        there = {name for name in names_of('build/ci') if not name.startswith(('architecture_', 'fuzz_', 'packaging_'))}
        linux_only = set().union(*(classes_of(f'*_{end}.cpp') for end in ('linux', 'posix', 'x11')))
        wrong += unlisted((there - here) | linux_only | set(left_out) | skipped)
    print(*wrong, sep='\n')
    return 1 if failed or wrong else 0


if __name__ == '__main__':
    sys.exit(main())
