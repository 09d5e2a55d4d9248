#!/usr/bin/python3
"""Runs the practice network and the client beside each other. Called by scripts/demo, which builds both.

With --msfs it is the practice build of the client, which has a Microsoft Flight Simulator inside.
With --headless the client runs in a virtual display and is flown by key presses and clicks from the login to the logout;
pictures of every window and what the headphone played stay in build/demo, and the lines that the server saw are printed as
they stood on the wire. The client's sound goes over a sound server of the demonstration's own.
Where this machine allows it, that is on a network of its own; the practice build finds the server there by a name, which is
answered late.
Without --headless, the pilot is told what there is to look at.
With --root, for try_package.py, the programs are those that a package has brought there, and run as a user without rights.
"""
import argparse
import os
import pathlib
import re
import signal
import subprocess
import sys
import threading

import demo_msfs
import demo_situations
import demo_voice
import driven_client
from demo_steps import (CALLSIGN, CONNECT_BUTTON, CYAN, END_RED, LOGIN_TITLE, LOGOUT_ITEM, MAIN_TITLE, MESSAGES_ITEM,
                        OTHER_PILOTS, PASSWORD, PLOT, SELCAL, SERVER_ITEM, SIMULATOR_ITEM, USERNAME, disconnect, fill_form,
                        sign_in)
from driven_client import (FOCUS, ROOT, Failure, Practice, Program, Window, picture, press, type_text, virtual_display,
                           wait_until, window)
from name_server import Name, NameServer, enter_own_network
from sound_server import SoundServer

TOWER = 'ZBAA_TWR'
SERVER_NAME = 'fsd.practice.test'


def fly(client, practice, sound):
    """From the login to the logout, as a pilot would. `sound` is the server that has his microphone and headphone."""
    main = sign_in()
    picture('2-mode-selection')
    main.click(X_PLANE_CARD, until=lambda: practice.has(r'plugin +<<< VER'))
    demo_situations.end_tour(main)
    picture('3-overview')

    main.open_page(SERVER_ITEM)
    picture('4-server-page')
    fill_form(main)
    main.click(CONNECT_BUTTON, until=lambda: practice.has(r'#AP' + CALLSIGN))
    connected = practice.wait_for(r'#AP' + CALLSIGN)
    practice.wait_for(r'@[SNY]:' + CALLSIGN, start=connected)
    picture('6-connected')
    meet_traffic(main, practice, connected)
    talk_to_tower(main, practice, connected)
    demo_situations.tune_station(main, practice)
    demo_situations.answer_in_compact_view(practice, TOWER)
    main = Window(MAIN_TITLE)
    demo_voice.talk(main, practice, sound)
    demo_situations.pause_flight(main, practice)
    demo_situations.come_back_after_kill(main, practice)
    main.open_page(SETTINGS_ITEM)
    picture('14-settings-page')
    main.open_page(SERVER_ITEM)
    disconnect(main, practice)
    picture('15-disconnected')
    main.click(LOGOUT_ITEM, until=lambda: window(LOGIN_TITLE))
    Window(LOGIN_TITLE)
    picture('16-login-again')
    press('alt+F4')
    client.wait_for_end(10)


def meet_traffic(main, practice, connected):
    """Waits until every other aircraft is drawn, and looks at them on the plot. The tower has greeted meanwhile: a badge
    tells."""
    for callsign in OTHER_PILOTS:
        practice.wait_for(r'plugin +>>> ADDED.*' + callsign, start=connected)
    practice.wait_for(f'#TM{TOWER}:{CALLSIGN}:', start=connected)
    wait_until('badge of unread messages', lambda: main.count(*BADGE, END_RED) >= 50)
    main.open_page(SIMULATOR_ITEM)
    wait_until('aircraft on the plot', lambda: main.count(*PLOT, CYAN) >= 20)
    picture('7-simulator-page')


def talk_to_tower(main, practice, connected):
    """A private session with the tower, which answers, and its call by SELCAL."""
    main.open_page(MESSAGES_ITEM)
    picture('8-messages-page')
    x, y = TOWER_SESSION
    main.click(TOWER_SESSION, until=lambda: main.count(SESSION_MARK - 3, y - 6, 6, 12, FOCUS) >= 20)

    def write(text):
        main.focus(COMPOSE_FIELD)
        type_text(text)
        press('Return')
        return practice.wait_for(f'#TM{CALLSIGN}:{TOWER}:{text}$', start=connected)

    sent = write(f'SELCAL {SELCAL}')
    practice.wait_for(f'#TM{TOWER}:{CALLSIGN}:.*SELCAL is {SELCAL}', start=sent)
    picture('9-answered-by-tower')
    sent = write('SELCAL')
    practice.wait_for(f'#TM{TOWER}:@[0-9]+:SELCAL {SELCAL}', start=sent)
    picture('10-called-by-selcal')
    demo_situations.write_chinese(main, practice, TOWER)


# Where the pilot clicks, in pixels of a main window of 1000x700.
X_PLANE_CARD = (500, 500)
SETTINGS_ITEM = (120, 380)
TOWER_SESSION = (360, 377)
COMPOSE_FIELD = (650, 660)

# Where he looks: left, top, width, height or a column, and colours of the style.
SESSION_MARK = 281
BADGE = (190, 310, 40, 40)

TOUR = f"""
What there is to see, once X-Plane is chosen and a callsign is connected on the page 服务器:
  模拟器  four other aircraft on the plot and in its list; {OTHER_PILOTS[0]} and {OTHER_PILOTS[1]} are in the air
  消息    a badge, as {TOWER} greets after six seconds; open the session and write to it
          "SELCAL AB-CD" tells {TOWER} your code, "SELCAL" lets it call you on COM1
          a wallop is answered by a supervisor, and every five minutes there is a broadcast
  语音服务 "连接语音服务器": {TOWER} greets on 118.500, which COM1 is tuned to; "缩小" opens the small window, whose button
          keys the radio while it is held (a key of your own: 设置); call the tower and let go, and it answers
          a frequency typed here and Enter tunes COM1: 122.800 is the radio check, which says again what you said,
          127.600 the ATIS
Close the client to end it all.
"""


def tune_as_typed(practice):
    """X-Plane's radios have no knobs here: a line such as "122.800" tunes COM1."""
    for line in sys.stdin:
        try:
            practice.order('tune', frequency=round(float(line) * 1000))
            print(f'COM1 is tuned to {float(line):.3f}', flush=True)
        except (ValueError, OverflowError, Failure):
            print('not a frequency from 118.000 to 136.990', flush=True)


class Programs:
    """Those of a build, beside which their data are."""

    def __init__(self, folder):
        self.folder = self.data = folder

    def command(self, name, *words):
        return [self.folder / name, *words]

    def environment(self):
        return None

    def write_config(self, account):
        words = [USERNAME, PASSWORD] if account else []
        subprocess.run([self.folder / 'tarvo-demo-config', self.data, *words], check=True)

    def share(self, folder):
        """Lets them see it."""


class PackagedPrograms(Programs):
    """Those that a package has brought into a root, whose user sees nothing of this machine but its display and sound."""

    def __init__(self, folder, root, programs, data):
        super().__init__(folder)
        self.root, self.programs, self.data = pathlib.Path(root), programs, pathlib.Path(root, data)

    def command(self, name, *words):
        return ['/usr/sbin/chroot', '--userspec=1000:1000', self.root, f'/{self.programs}/{name}', *words]

    def environment(self):
        shared = ('DISPLAY', 'QT_QPA_PLATFORM', 'JACK_NO_START_SERVER', 'ALSA_CONFIG_PATH')
        return {name: value for name, value in os.environ.items() if name in shared or name.startswith('PULSE_')} | {
            'HOME': '/home/pilot', 'XDG_RUNTIME_DIR': '/home/pilot/run', 'LANG': 'C.UTF-8', 'PATH': '/usr/bin'}

    def write_config(self, account):
        (self.data / 'config.ini').unlink(missing_ok=True)  # which has the account of an earlier flight
        super().write_config(account)
        subprocess.run(['chown', '-R', '1000:1000', self.data], check=True)

    def share(self, folder):
        inside = self.root / str(folder)[1:]
        inside.mkdir(parents=True)
        folder.chmod(0o755)
        subprocess.run(['mount', '--bind', folder, inside], check=True)


def name_of_server():
    """What the name server knows from now on; nothing where there can be none."""
    reason = enter_own_network()
    if reason is not None:
        print('no network of our own here, so the client finds the server by its address:', reason, flush=True)
        return None
    name = Name('127.0.0.1')
    NameServer({SERVER_NAME: name})
    return name


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument('--bin', required=True, type=pathlib.Path)
    parser.add_argument('--headless', action='store_true')
    parser.add_argument('--msfs', action='store_true')
    parser.add_argument('--root', nargs=3, metavar=('ROOT', 'PROGRAMS', 'DATA'))
    parser.add_argument('--pictures', help='their folder in build')
    arguments = parser.parse_args()
    build = arguments.bin.resolve()
    programs = PackagedPrograms(build, *arguments.root) if arguments.root else Programs(build)
    server_name = name_of_server() if arguments.headless and not arguments.root else None
    client_command = programs.command('TarvoClient')
    if arguments.msfs:
        client_command = demo_msfs.command(build, *([SERVER_NAME] if server_name else []))
    driven_client.keep_pictures_in(arguments.pictures or ('demo-msfs' if arguments.msfs else 'demo'))
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))  # through the clean-up below

    practice = Practice(programs.command('tarvo-practice'), programs.environment())
    client = None
    failure = None
    try:
        practice.wait_for('ready')
        programs.write_config(account=not arguments.headless)
        if arguments.msfs:
            demo_msfs.write_config(build)
        if arguments.headless:
            # As at the first start, with its tour in the one demonstration and without it in the other.
            pathlib.Path(programs.data, 'state.ini').write_text('[Tour]\nSeen=true\n' if arguments.msfs else '')
            with SoundServer() as sound, virtual_display():
                programs.share(sound.folder)
                client = Program('the client', client_command, programs.environment())
                try:
                    if arguments.msfs:
                        demo_msfs.fly(client, practice, server_name)
                    else:
                        fly(client, practice, sound)
                finally:
                    if client.process.poll() is None:
                        picture('at-the-end')
                        client.end()
        else:
            print(demo_msfs.TOUR if arguments.msfs else TOUR, flush=True)
            if not arguments.msfs:
                threading.Thread(target=tune_as_typed, args=[practice], daemon=True).start()
            client = Program('the client', client_command)
            client.wait_for_end()
    except (Failure, KeyboardInterrupt) as reason:
        failure = reason or 'interrupted'
    finally:
        if client:
            client.end()
        if practice.process.poll() is None:
            practice.stop()
    if arguments.headless:
        report(practice)
    if failure:
        print(f'the demonstration failed: {failure}', file=sys.stderr)
    sys.exit(1 if failure else 0)


def report(practice):
    print('\nFSD lines as the server saw them:')
    for line in practice.lines:
        if re.search(r' fsd .*(<<<|>>>)', line):
            print('  ' + line)
    print(f"Pictures, and what the headphone played: {driven_client.PICTURES.relative_to(ROOT)}")


if __name__ == '__main__':
    main()
