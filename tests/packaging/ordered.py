#!/usr/bin/env python3
"""Fails when a page's C++ declares variables in another order than that of their names, which changes with the folder of
the build: two builds would give different bytes.

    ordered.py FOLDER      of what qmlcachegen wrote
"""
import itertools
import pathlib
import re
import sys

DECLARATION = re.compile(r'(?!return )[A-Za-z][^=()]* \*?r\d+_\d+;$')


def is_ordered(page):
    runs = itertools.groupby(page.read_text(encoding='utf-8').split('\n'), lambda line: bool(DECLARATION.match(line)))
    return all(lines == sorted(lines) for lines in (list(run) for declared, run in runs if declared))


pages = list(pathlib.Path(sys.argv[1]).rglob('*_qml.cpp'))
bad = [page.name for page in pages if not is_ordered(page)]
print(f'{len(pages)} pages, out of order: {bad}')
sys.exit(1 if bad or not pages else 0)
