#!/usr/bin/env python3
"""Installs the two components into a scratch folder and looks at what is there: the lists of files, the entry for the
desktop, what software centres show, icons that are as large as they say, a manual page that knows every option.

    installed.py BUILD FOLDER      FOLDER is emptied
"""
import pathlib
import re
import shutil
import struct
import subprocess
import sys

APP = 'com.tarvonet.TarvoClient'
ICON_SIZES = (16, 24, 32, 48, 64, 128, 256, 512)
FILES = {
    'client': {
        'bin/TarvoClient',
        'bin/tarvo-support',
        'share/man/man1/tarvo-support.1',
        f'share/applications/{APP}.desktop',
        f'share/metainfo/{APP}.metainfo.xml',
        'share/TarvoClient/resources/Doc8643.txt',
        'share/doc/tarvoclient/CHANGELOG.md',
        'share/doc/tarvoclient/SUPPORT.md',
        *(f'share/icons/hicolor/{size}x{size}/apps/{APP}.png' for size in ICON_SIZES),
    },
    'practice': {'bin/tarvo-practice', 'share/man/man1/tarvo-practice.1', 'share/doc/tarvo-practice/README.md'},
}


def output(*command):
    done = subprocess.run(command, capture_output=True, text=True)
    return done.returncode, done.stdout + done.stderr


def install(build, folder, component):
    prefix = folder / component
    code, said = output('cmake', '--install', build, '--component', component, '--prefix', str(prefix))
    if code:
        sys.exit(said)
    return {str(path.relative_to(prefix)) for path in prefix.rglob('*') if path.is_file()}


def png_size(path):
    return struct.unpack('>II', path.read_bytes()[16:24])


def man_page_faults(program, page):
    options = set(re.findall(r'--[a-z-]+', output(program, '--help')[1]))
    told = set(re.findall(r'--[a-z-]+', page.read_text().replace('\\-', '-')))
    if options != told:
        yield f'the manual page of {program.name} and --help differ in {sorted(options ^ told)}'
    warnings = output('groff', '-man', '-ww', '-z', '-Tutf8', page)[1]
    if warnings:
        yield warnings


def faults(build, folder):
    for component, files in FILES.items():
        found = install(build, folder, component)
        if found != files:
            yield f'{component}: missing {sorted(files - found)}, unexpected {sorted(found - files)}'
    share = folder / 'client/share'
    for command in (['desktop-file-validate', share / f'applications/{APP}.desktop'],
                    ['appstreamcli', 'validate', '--no-net', share / f'metainfo/{APP}.metainfo.xml']):
        code, said = output(*command)
        if code:
            yield said
    for size in ICON_SIZES:
        if png_size(share / f'icons/hicolor/{size}x{size}/apps/{APP}.png') != (size, size):
            yield f'the icon of {size} pixels has another size'
    for component, program in (('client', 'tarvo-support'), ('practice', 'tarvo-practice')):
        yield from man_page_faults(folder / component / 'bin' / program, folder / component / f'share/man/man1/{program}.1')


def main():
    build, folder = sys.argv[1], pathlib.Path(sys.argv[2])
    shutil.rmtree(folder, ignore_errors=True)
    bad = list(faults(build, folder))
    print('\n'.join(bad) or f'{sum(map(len, FILES.values()))} files, all as they are to be')
    sys.exit(1 if bad else 0)


if __name__ == '__main__':
    main()
