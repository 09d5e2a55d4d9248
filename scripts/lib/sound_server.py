"""A private PulseAudio with a headphone (spk_a), a speaker (spk_b) and a virtual microphone (mic_a), which PortAudio sees
through ALSA. Nothing outside of its folder is touched, and it ends with its with-block.

    with SoundServer() as sound, sound.record('spk_a', 'heard.wav'), sound.saying('words.wav'):
        ...
"""
import contextlib
import os
import pathlib
import subprocess
import tempfile
import time

RATE = 48000
ALSA = '''
pcm_type.pulse {{ lib "libasound_module_pcm_pulse.so" }}
pcm.default {{ type pulse server "{server}" hint {{ show on description "Default" }} }}
ctl.default {{ type pulse server "{server}" }}
pcm.spk_a {{ type asym playback.pcm {{ type pulse server "{server}" device "spk_a" }} hint {{ show on description "Headphone" }} }}
pcm.spk_b {{ type asym playback.pcm {{ type pulse server "{server}" device "spk_b" }} hint {{ show on description "Speaker" }} }}
pcm.mic_a {{ type asym capture.pcm {{ type pulse server "{server}" device "mic_a" }} hint {{ show on description "Microphone" }} }}
'''
# Without norewinds the first stream stalls.
MODULES = ['module-native-protocol-unix socket={folder}/socket auth-anonymous=1 auth-cookie-enabled=0',
           'module-null-sink sink_name=spk_a norewinds=1 rate=48000 channels=2',
           'module-null-sink sink_name=spk_b norewinds=1 rate=48000 channels=2',
           'module-null-sink sink_name=micbus norewinds=1 rate=48000 channels=1',
           'module-remap-source source_name=mic_a master=micbus.monitor']


class SoundServer:
    """While it runs, this program's environment leads to it."""

    def __enter__(self):
        self._scratch = tempfile.TemporaryDirectory()
        self._folder = pathlib.Path(self._scratch.name)
        self._before = dict(os.environ)
        os.environ.update(self._environment())
        words = [word for module in MODULES for word in ('-L', module.format(folder=self._folder))]
        self._process = subprocess.Popen(
            ['pulseaudio', '-n', '--daemonize=no', '--use-pid-file=no', '--exit-idle-time=-1', '--disable-shm=yes',
             '--realtime=no', '--high-priority=no', *words], env=os.environ | {'HOME': str(self._folder)},
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        if not self._is_up():
            self.__exit__()
            raise RuntimeError('PulseAudio did not start')
        subprocess.run(['pactl', 'set-default-sink', 'spk_a'], check=True)
        subprocess.run(['pactl', 'set-default-source', 'mic_a'], check=True)
        return self

    @property
    def folder(self):
        """Where its socket and the files are to which the environment leads."""
        return self._folder

    def __exit__(self, *_):
        self._process.terminate()
        self._process.wait()
        os.environ.clear()
        os.environ.update(self._before)
        self._scratch.cleanup()

    def _environment(self):
        server = f'unix:{self._folder}/socket'
        (self._folder / 'client.conf').write_text(f'autospawn = no\ndefault-server = {server}\nenable-shm = no\n')
        (self._folder / 'alsa.conf').write_text(ALSA.format(server=server))
        paths = {'PULSE_RUNTIME_PATH': 'run', 'PULSE_STATE_PATH': 'state', 'PULSE_COOKIE': 'cookie',
                 'PULSE_CLIENTCONFIG': 'client.conf', 'ALSA_CONFIG_PATH': 'alsa.conf'}
        return {name: str(self._folder / path) for name, path in paths.items()} | {
            'PULSE_SERVER': server, 'JACK_NO_START_SERVER': '1'}

    def _is_up(self):
        for _ in range(100):
            if self._process.poll() is not None:
                return False
            if b'spk_a' in subprocess.run(['pactl', 'list', 'short', 'sinks'], capture_output=True).stdout:
                return True
            time.sleep(0.1)
        return False

    @contextlib.contextmanager
    def saying(self, path):
        """Plays a sound file into the microphone, which begins with the with-block and is through at its end."""
        player = subprocess.Popen(['paplay', '--device=micbus', path])
        try:
            yield
        finally:
            player.wait()

    @contextlib.contextmanager
    def record(self, sink, path):
        """Records in mono, at 48 kHz, what a sink plays while the with-block runs."""
        recorder = subprocess.Popen(['parecord', f'--device={sink}.monitor', '--file-format=wav', f'--rate={RATE}',
                                     '--channels=1', '--latency-msec=20', path])
        try:
            yield
        finally:
            recorder.terminate()
            recorder.wait()
