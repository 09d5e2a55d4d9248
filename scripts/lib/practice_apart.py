#!/usr/bin/env python3
"""Runs a test beside a practice network that is a program of its own, and tells it by the environment where that is.

    practice_apart.py TARVO-PRACTICE COMMAND [ARGUMENT...]

All ports are free ones. The plugin of its X-Plane listens on TCP, so that a client under Wine reaches it, too. What the
command ends with is what this ends with.
"""
import os
import re
import socket
import subprocess
import sys

SERVED = {
    'HTTP': r'account .*serving http://127\.0\.0\.1:(\d+)/',
    'FSD': r'fsd .*serving 127\.0\.0\.1:(\d+)',
    'VOICE': r'voice .*serving 127\.0\.0\.1:(\d+)',
    'VOICE_UDP': r'voice .*UDP port (\d+)',
    'XPLANE': r'xplane .*UDP port (\d+)',
    'PLUGIN': r'xplane .*plugin at tcp://127\.0\.0\.1:(\d+)',
}


def free_port():
    with socket.socket() as probe:
        probe.bind(('127.0.0.1', 0))
        return probe.getsockname()[1]


def start(program):
    """The running network and its announcement. It speaks of nothing else, so that nobody has to read on."""
    ports = [f'--{name}=0' for name in ('http-port', 'fsd-port', 'voice-port', 'voice-udp-port', 'xplane-port')]
    network = subprocess.Popen([program, *ports, f'--plugin=tcp://127.0.0.1:{free_port()}', '--quiet', '--no-residents',
                                '--challenge=0', '--flight-time=300'], stdout=subprocess.PIPE, text=True)
    said = ''
    for line in network.stdout:
        said += line
        if ' ready ' in line:
            return network, said
    sys.exit(f'{program} has not started:\n{said}')


def main():
    network, said = start(sys.argv[1])
    try:
        found = {name: re.search(pattern, said) for name, pattern in SERVED.items()}
        place = {f'TARVO_APART_{name}_PORT': match[1] for name, match in found.items()}
        return subprocess.run(sys.argv[2:], env=os.environ | place, check=False).returncode
    finally:
        network.terminate()
        network.wait()


if __name__ == '__main__':
    sys.exit(main())
