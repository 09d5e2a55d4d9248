#!/usr/bin/env python3
"""Runs a command on a network of its own, whose name server answers as told, and late where told.

    name_server.py NAME=[ADDRESS][@SECONDS]... -- COMMAND [ARGUMENT...]

    name_server.py fsd.practice.test=127.0.0.1@3 dead.practice.test= -- scripts/demo

A name with an address is answered after so many seconds (at once without any). One without an address is never
answered, as by a server that is dead. Any other name doesn't exist. There is only loopback on that network. What the
command ends with is what this ends with; 77 where such a network can't be had (not root, and not on a build server).
"""
import argparse
import fcntl
import os
import socket
import struct
import subprocess
import sys
import tempfile
import threading

INSIDE = 'TARVO_NAME_SERVER_INSIDE'
SKIPPED = 77
NO_SUCH_NAME = 3
TYPE_A, CLASS_IN = 1, 1


def parse_name(text):
    """NAME=[ADDRESS][@SECONDS] as (name, address or None, seconds)."""
    name, equals, answer = text.partition('=')
    if not equals or not name:
        raise argparse.ArgumentTypeError(f'"{text}" is not NAME=[ADDRESS][@SECONDS]')
    address, _, seconds = answer.partition('@')
    if address:
        socket.inet_aton(address)
    return name.lower().rstrip('.'), address or None, float(seconds or 0)


def question_of(query):
    """Name, type, and the question's bytes."""
    labels, at = [], 12
    while query[at]:
        labels.append(query[at + 1:at + 1 + query[at]].decode('latin-1').lower())
        at += 1 + query[at]
    kind = struct.unpack_from('>H', query, at + 1)[0]
    return '.'.join(labels), kind, query[12:at + 5]


def reply_to(query, question, address, exists):
    """Recursion desired and available; one address record, or none."""
    head = query[:2] + struct.pack('>HHHHH', 0x8180 | (0 if exists else NO_SUCH_NAME), 1, 1 if address else 0, 0, 0)
    if not address:
        return head + question
    return head + question + struct.pack('>HHHIH', 0xC00C, TYPE_A, CLASS_IN, 1, 4) + socket.inet_aton(address)


def serve(server, names):
    """Answers for ever."""
    answers = {name: (address, seconds) for name, address, seconds in names}
    while True:
        query, client = server.recvfrom(512)
        try:
            name, kind, question = question_of(query)
        except (IndexError, struct.error):
            continue
        address, seconds = answers.get(name, ('', 0))
        if address is None:
            continue
        reply = reply_to(query, question, address if kind == TYPE_A else '', name in answers)
        threading.Timer(seconds, server.sendto, (reply, client)).start()


def raise_loopback():
    up = 0x1 | 0x40  # IFF_UP, IFF_RUNNING
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as any_socket:
        fcntl.ioctl(any_socket, 0x8914, struct.pack('16sh22x', b'lo', up))  # SIOCSIFFLAGS


def point_system_here():
    with tempfile.NamedTemporaryFile('w', suffix='.conf') as conf:
        conf.write('nameserver 127.0.0.1\n')
        conf.flush()
        os.chmod(conf.name, 0o644)
        subprocess.run(['mount', '--bind', conf.name, '/etc/resolv.conf'], check=True)


def run_inside(names, command):
    raise_loopback()
    point_system_here()
    server = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    server.bind(('127.0.0.1', 53))
    threading.Thread(target=serve, args=(server, names), daemon=True).start()
    environment = {key: value for key, value in os.environ.items() if key != INSIDE}
    code = subprocess.run(command, env=environment, check=False).returncode
    sys.stdout.flush()
    os._exit(code if code >= 0 else 128 - code)  # answers that are late keep nobody


def unshare():
    """The command that gives this program a network of its own."""
    own_user = [] if os.geteuid() == 0 else ['--map-root-user']
    return ['unshare', *own_user, '--net', '--mount', '--']


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument('names', nargs='+', type=parse_name, metavar='NAME=[ADDRESS][@SECONDS]')
    if '--' not in sys.argv[1:-1]:
        parser.error('no command')
    split = sys.argv.index('--')
    names, command = parser.parse_args(sys.argv[1:split]).names, sys.argv[split + 1:]
    if os.environ.get(INSIDE):
        run_inside(names, command)
    tried = subprocess.run([*unshare(), 'mount', '--bind', '/etc/hostname', '/etc/resolv.conf'],
                           capture_output=True, text=True, check=False)
    if tried.returncode != 0:
        must = os.geteuid() == 0 or os.environ.get('CI')
        print(f'{"FAILED" if must else "SKIPPED"}: no network of its own to be had: {tried.stderr.strip()}')
        sys.exit(1 if must else SKIPPED)
    os.environ[INSIDE] = '1'
    os.execvp('unshare', [*unshare(), sys.executable, os.path.abspath(__file__), *sys.argv[1:]])


if __name__ == '__main__':
    main()
