#!/usr/bin/env python3
"""Fails when a program lacks what it was to be hardened with: ELF programs of Linux, PE programs of Windows.

    headers.py [--linked] PROGRAM...      --linked: only what the linker does, for a build without TARVO_HARDEN_CODE
"""
import pathlib
import struct
import sys

ELF_TYPE_SHARED = 3
PT_DYNAMIC, PT_GNU_RELRO, PT_GNU_STACK = 2, 0x6474e552, 0x6474e551
DT_FLAGS, DT_BIND_NOW, DT_FLAGS_1 = 30, 24, 0x6ffffffb
DF_BIND_NOW, DF_1_NOW, DF_1_PIE = 0x8, 0x1, 0x08000000
EXECUTABLE = 1
ENDBR64 = b'\xf3\x0f\x1e\xfa'  # where an indirect call may arrive, with control-flow protection
ENDBR64_OF_START_FILES = 2  # the compiler's own objects are in every program

PE_CHARACTERISTICS = {0x20: 'high-entropy addresses', 0x40: 'dynamic base', 0x100: 'no execution of data'}


def elf_faults(data):
    kind, = struct.unpack_from('<H', data, 16)
    offset, = struct.unpack_from('<Q', data, 32)
    size, count = struct.unpack_from('<HH', data, 54)
    segments = {}
    for at in range(offset, offset + size * count, size):
        segment, flags = struct.unpack_from('<II', data, at)
        start, _, _, length = struct.unpack_from('<QQQQ', data, at + 8)
        segments[segment] = (flags, data[start:start + length])
    dynamic = {}
    for tag, value in struct.iter_unpack('<QQ', segments.get(PT_DYNAMIC, (0, b''))[1]):
        dynamic[tag] = value
        if tag == 0:
            break
    if kind != ELF_TYPE_SHARED or not dynamic.get(DT_FLAGS_1, 0) & DF_1_PIE:
        yield 'is not position-independent'
    if PT_GNU_RELRO not in segments:
        yield 'has no RELRO segment'
    if not (DT_BIND_NOW in dynamic or dynamic.get(DT_FLAGS, 0) & DF_BIND_NOW or dynamic.get(DT_FLAGS_1, 0) & DF_1_NOW):
        yield 'does not bind all symbols at the start'
    if segments.get(PT_GNU_STACK, (EXECUTABLE, b''))[0] & EXECUTABLE:
        yield 'has an executable stack'


def elf_code_faults(data):
    if b'\0__stack_chk_fail\0' not in data:
        yield 'has no stack protector'
    if not any(name in data for name in (b'\0__memcpy_chk\0', b'\0__memmove_chk\0', b'\0__snprintf_chk\0', b'\0__read_chk\0',
                                         b'\0__fprintf_chk\0', b'\0__printf_chk\0', b'\0__memset_chk\0')):
        yield 'calls no fortified function'
    if data.count(ENDBR64) <= ENDBR64_OF_START_FILES:
        yield 'has no control-flow protection'


def pe_faults(data):
    header, = struct.unpack_from('<I', data, 0x3c)
    if data[header:header + 4] != b'PE\0\0':
        yield 'is no PE program'
        return
    characteristics, = struct.unpack_from('<H', data, header + 24 + 70)
    for bit, name in PE_CHARACTERISTICS.items():
        if not characteristics & bit:
            yield f'lacks {name}'


def faults(path, linked):
    data = pathlib.Path(path).read_bytes()
    if data[:4] == b'\x7fELF':
        return [*elf_faults(data), *([] if linked else elf_code_faults(data))]
    return pe_faults(data) if data[:2] == b'MZ' else ['is neither an ELF nor a PE program']


def main():
    programs = [word for word in sys.argv[1:] if word != '--linked']
    bad = [f'{path} {fault}' for path in programs for fault in faults(path, '--linked' in sys.argv)]
    print('\n'.join(bad) or f'{len(programs)} programs, hardened as told')
    sys.exit(1 if bad or not programs else 0)


if __name__ == '__main__':
    main()
