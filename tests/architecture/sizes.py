#!/usr/bin/env python3
"""Fails on a source file over 600 lines or a QML page of 250 or more: past that there is a part waiting to be named."""
import pathlib
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
LIMITS = {'.h': 600, '.cpp': 600, '.py': 600, '.qml': 249}


def main():
    bad, count = [], 0
    for top in ('src', 'practice', 'tests', 'bench', 'tools', 'scripts'):
        for source in sorted((ROOT / top).rglob('*')):
            limit = LIMITS.get(source.suffix)
            if limit is None or not source.is_file():
                continue
            count += 1
            lines = len(source.read_text(errors='replace').splitlines())
            if lines > limit:
                bad.append(f'{source.relative_to(ROOT)}: {lines} lines, at most {limit}')
    print('\n'.join(bad) or f'{count} files, none too long')
    sys.exit(1 if bad or count == 0 else 0)


if __name__ == '__main__':
    main()
