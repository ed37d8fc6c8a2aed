"""What the sound server plays, heard on the null sink's monitor."""
import array
import os
import signal
import subprocess
import time

from .waiting import wait_for

_RATE = 44100
_QUIET = 300  # of 32768: below is silence


class Sound:
    """Listens while the block runs.

        with Sound() as sound:
            ...
        sound.peak     0..1
        sound.seconds  how long it was not silent
    """

    def __enter__(self):
        self._path = os.path.join(os.environ["DESKTOP_TMP"], f"sound.{time.monotonic_ns()}.raw")
        self._recorder = subprocess.Popen(
            ["parec", "-d", os.environ["DESKTOP_MONITOR"], "--format=s16le", f"--rate={_RATE}",
             "--channels=1", "--latency-msec=20", self._path], stderr=subprocess.DEVNULL)
        wait_for(lambda: os.path.exists(self._path) and os.path.getsize(self._path) > 0, 10,
                 "the recorder")
        self._from = 0  # sample from which on it counts
        return self

    def _samples(self):
        with open(self._path, "rb") as file:
            raw = file.read()
        return array.array("h", raw[:len(raw) // 2 * 2])

    def wait_quiet(self):
        """Waits for a second of silence; what came before is left out."""
        def quiet():
            last = self._samples()[self._from:][-_RATE:]
            return len(last) == _RATE and max(map(abs, last)) <= _QUIET
        wait_for(quiet, 30, "silence", step=0.2)
        self._from = len(self._samples())

    def heard(self):
        """Whether anything was audible so far."""
        return max(map(abs, self._samples()[self._from:]), default=0) > _QUIET

    def __exit__(self, *_):
        time.sleep(0.5)  # what was asked for last is still on its way
        self._recorder.send_signal(signal.SIGINT)
        self._recorder.wait()
        samples = self._samples()[self._from:]
        step = _RATE // 100
        loud = sum(max(map(abs, samples[i:i + step])) > _QUIET
                   for i in range(0, len(samples), step))
        self.peak = max(map(abs, samples), default=0) / 32768
        self.seconds = loud * step / _RATE
        os.unlink(self._path)
