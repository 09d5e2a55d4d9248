#!/usr/bin/python3
"""Runs the practice network and the client beside each other. Called by scripts/demo, which builds both.

With --headless the client runs in a virtual display and is flown by key presses and clicks from the login to the logout;
pictures of every window and what the headphone played stay in build/demo, and the lines that the server saw are printed as
they stood on the wire. The client's sound goes over a sound server of the demonstration's own.
Where this machine allows it, that client finds the server by a name, which is answered late.
Without it, the pilot is told what there is to look at.
"""
import argparse
import contextlib
import pathlib
import re
import signal
import subprocess
import sys
import threading

import demo_voice
from driven_client import (FOCUS, PICTURES, ROOT, Failure, Practice, Window, picture, press, type_text, virtual_display,
                           wait_until, window)
from name_server import Name, NameServer, enter_own_network
from sound_server import SoundServer

USERNAME, PASSWORD = '1001', 'practice'
CALLSIGN, TYPE_CODE, SELCAL = 'CES2352', 'A320', 'AB-CD'
OTHER_PILOTS = ('CES2117', 'CCA908', 'CHH7182', 'BAW38')
TOWER = 'ZBAA_TWR'
SERVER_NAME = 'fsd.practice.test'
LOGIN_TITLE, MAIN_TITLE = 'TARVO Client - 登录', 'TARVO Client - 控制面板'


def fly(client, practice, server_name, sound):
    """From the login to the logout, as a pilot would. `server_name` is what the name server knows, if there is one; `sound`
    the server that has his microphone and headphone."""
    Window(LOGIN_TITLE)
    picture('1-login')
    type_text(USERNAME)
    press('Tab')
    type_text(PASSWORD)
    press('Return')

    main = Window(MAIN_TITLE)
    wait_until('card of X-Plane', lambda: main.count(*X_PLANE_ARROW, WHITE) >= 1000)
    picture('2-mode-selection')
    main.click(X_PLANE_CARD, until=lambda: practice.has(r'plugin +<<< VER'))
    picture('3-overview')

    main.open_page(SERVER_ITEM)
    picture('4-server-page')
    fill_form(main)
    if server_name:
        look_around_meanwhile(main, server_name)
    else:
        main.click(CONNECT_BUTTON, until=lambda: practice.has(r'#AP' + CALLSIGN))
    connected = practice.wait_for(r'#AP' + CALLSIGN)
    practice.wait_for(r'@[SNY]:' + CALLSIGN, start=connected)
    picture('6-connected')
    meet_traffic(main, practice, connected)
    talk_to_tower(main, practice, connected)
    demo_voice.talk(main, practice, sound)
    main.open_page(SETTINGS_ITEM)
    picture('14-settings-page')
    main.open_page(SERVER_ITEM)
    main.click(CONNECT_BUTTON, until=lambda: main.count(*LEAVE_BUTTON, END_RED) >= 500)
    picture('15-question')
    press('Tab', 'Return')
    practice.wait_for(r'#DP' + CALLSIGN)
    picture('15-disconnected')
    main.click(LOGOUT_ITEM, until=lambda: window(LOGIN_TITLE))
    Window(LOGIN_TITLE)
    picture('16-login-again')
    press('alt+F4')
    if client.wait(10) != 0:
        raise Failure(f'the client ended with {client.returncode}')


def fill_form(main):
    main.focus(CALLSIGN_FIELD)
    type_text(CALLSIGN)
    press('Tab')
    type_text(TYPE_CODE[:3])
    picture('5-suggestions')
    type_text(TYPE_CODE[3:])
    press('Escape', 'Tab')
    type_text(SELCAL)


def look_around_meanwhile(main, server_name):
    """Connects, and goes to another page and back while the server's name is being looked up."""
    main.click(CONNECT_BUTTON, until=server_name.asked.is_set)
    main.open_page(MESSAGES_ITEM)
    picture('5-other-page-while-looking-up')
    main.open_page(SERVER_ITEM)
    picture('5-server-page-while-looking-up')
    server_name.answer()


def meet_traffic(main, practice, connected):
    """Waits until every other aircraft is drawn, and looks at them on the plot. The tower has greeted meanwhile: a badge
    tells."""
    for callsign in OTHER_PILOTS:
        practice.wait_for(r'plugin +>>> ADDED.*' + callsign, start=connected)
    practice.wait_for(f'#TM{TOWER}:{CALLSIGN}:', start=connected)
    wait_until('badge of unread messages', lambda: main.count(*BADGE, RED) >= 50)
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


# Where the pilot clicks, in pixels of a main window of 1000x700.
X_PLANE_CARD = (500, 382)
X_PLANE_ARROW = (620, 356, 52, 52)  # left, top, width, height of the card's disc
SIMULATOR_ITEM = (120, 180)
SERVER_ITEM = (120, 230)
MESSAGES_ITEM = (120, 330)
SETTINGS_ITEM = (120, 380)
LOGOUT_ITEM = (120, 468)
TOWER_SESSION = (360, 377)
COMPOSE_FIELD = (650, 660)
CALLSIGN_FIELD = (430, 329)
CONNECT_BUTTON = (430, 503)

# Where he looks: left, top, width, height or a column, and colours of the style.
SESSION_MARK = 281
BADGE = (190, 310, 40, 40)
PLOT = (646, 442, 310, 250)
LEAVE_BUTTON = (626, 412, 56, 32)  # of the question, right of the page's own button
END_RED = (0xC8, 0x1E, 0x45)
RED, CYAN, WHITE = (0xF4, 0x3F, 0x5E), (0x67, 0xE8, 0xF9), (0xFF, 0xFF, 0xFF)

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


def write_config(programs, account):
    words = [USERNAME, PASSWORD] if account else []
    subprocess.run([programs / 'tarvo-demo-config', programs, *words], check=True)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument('--bin', required=True, type=pathlib.Path)
    parser.add_argument('--headless', action='store_true')
    arguments = parser.parse_args()
    programs = arguments.bin.resolve()
    server_name, client_command = None, [programs / 'TarvoClient']
    if arguments.headless:
        reason = enter_own_network()
        if reason is None:
            server_name, client_command = Name('127.0.0.1'), [programs / 'tarvo-demo-client', SERVER_NAME]
            NameServer({SERVER_NAME: server_name})
        else:
            print('no network of our own here, so the client finds the server by its address:', reason, flush=True)
    PICTURES.mkdir(parents=True, exist_ok=True)
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))  # through the clean-up below

    practice = Practice(programs / 'tarvo-practice')
    client = None
    failure = None
    try:
        practice.wait_for('ready')
        write_config(programs, account=not arguments.headless)
        if arguments.headless:
            with SoundServer() as sound, virtual_display():
                client = subprocess.Popen(client_command)
                try:
                    fly(client, practice, server_name, sound)
                finally:
                    if client.poll() is None:
                        picture('at-the-end')
                        client.terminate()
                        client.wait()
        else:
            print(TOUR, flush=True)
            threading.Thread(target=tune_as_typed, args=[practice], daemon=True).start()
            client = subprocess.Popen(client_command)
            if client.wait() != 0:
                raise Failure(f'the client ended with {client.returncode}')
    except (Failure, KeyboardInterrupt) as reason:
        failure = reason or 'interrupted'
    finally:
        if client and client.poll() is None:
            client.terminate()
            client.wait()
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
    print(f"Pictures, and what the headphone played: {PICTURES.relative_to(ROOT)}")


if __name__ == '__main__':
    main()
