"""The driven demonstration of the practice build, which has a Microsoft Flight Simulator inside and prints what it is asked
for: other pilots appear in it, and a frequency typed on the simulator's page tunes its radio.
"""
import os
import subprocess

import demo_situations
from demo_steps import (CALLSIGN, CARD_ARROWS, CONNECT_BUTTON, CYAN, LOGIN_TITLE, LOGOUT_ITEM, OTHER_PILOTS, PLOT,
                        SERVER_ITEM, SIMULATOR_ITEM, WHITE, disconnect, fill_form, sign_in)
from driven_client import ROOT, Failure, Window, picture, press, type_text, wait_until, window, xdotool

TITLE_END = '— PRACTICE BUILD'
MODELS = ROOT / 'practice' / 'simconnect' / 'Community'
RADIO_CHECK = 122800  # kHz

# Where the pilot clicks, in pixels of a main window of 1000x700.
MSFS_CARD = (500, 290)
COM1_FIELD = (392, 289)

TOUR = f"""
This is the practice build: its Microsoft Flight Simulator is a stand-in, and prints what the client asks of it, positions
left out. What there is to see, once MSFS is chosen and a callsign is connected on the page 服务器:
  模拟器  four other aircraft, spawned with the models of {MODELS.relative_to(ROOT)}; a frequency written to
          COM1 there tunes the simulator's radio
Close the client to end it all.
"""


def command(programs, *server):
    os.environ.setdefault('TARVO_PRACTICE_MSFS', 'log=-')
    return [programs / 'TarvoClient-practice', *server]


def write_config(programs):
    subprocess.run([programs / 'tarvo-demo-config', programs, '--models', MODELS], check=True)


def fly(client, practice, server_name):
    """From the login to the logout. `server_name` is what the name server knows, if there is one."""
    main = sign_in()
    if xdotool('getwindowname', main.id)[-3:] != TITLE_END.split():
        raise Failure("the window's title does not tell that this is a practice build")
    wait_until('cards of the simulators', lambda: main.count(*CARD_ARROWS, WHITE) >= 1000)
    picture('2-mode-selection')
    main.click(MSFS_CARD, until=lambda: client.has('<<< RequestDataOnSimObject 3 3 '))
    picture('3-overview')
    main.open_page(SERVER_ITEM)
    picture('4-server-page')
    fill_form(main)
    if server_name:
        demo_situations.look_around_meanwhile(main, server_name)
    else:
        main.click(CONNECT_BUTTON, until=lambda: practice.has(r'#AP' + CALLSIGN))
    connected = practice.wait_for(r'#AP' + CALLSIGN)
    practice.wait_for(r'@[SNY]:' + CALLSIGN, start=connected)
    picture('6-connected')
    for callsign in OTHER_PILOTS:
        client.wait_for(f'<<< AICreateNonATCAircraft ".*" "{callsign}"')
    main.open_page(SIMULATOR_ITEM)
    wait_until('aircraft on the plot', lambda: main.count(*PLOT, CYAN) >= 20)
    picture('7-simulator-page')
    tune(main, client)
    main.open_page(SERVER_ITEM)
    disconnect(main, practice)
    client.wait_for('<<< AIRemoveObject')
    main.click(LOGOUT_ITEM, until=lambda: window(LOGIN_TITLE))
    client.wait_for('<<< Close')
    Window(LOGIN_TITLE)
    press('alt+F4')
    client.wait_for_end(10)


def tune(main, client):
    """A frequency typed on the simulator's page reaches the radio, and the page shows what the radio says."""
    main.focus(COM1_FIELD)
    type_text(f'{RADIO_CHECK / 1000:.3f}')
    press('Return')
    client.wait_for(f'<<< TransmitClientEvent 0 [0-9]+ {RADIO_CHECK}000 ')
    picture('8-tuned')
