"""Starts `ispdsp-cfg serve` in a scratch folder for a test and stops it with SIGINT."""
import os
import signal
import subprocess
import tempfile


class Workbench:
    def __init__(self, cfg, *args):
        self.folder = tempfile.TemporaryDirectory(prefix="ispdsp-workbench-")
        self.process = subprocess.Popen([cfg, "serve", "--port", "0", *args], cwd=self.folder.name,
                                        stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        self.url = self.process.stdout.readline().strip()  # the first line: address and token
        if not self.url.startswith("http://"):
            raise RuntimeError("serve printed no address: " + self.process.stderr.read())
        self.host_port = self.url.split("/")[2]
        self.token = self.url.split("token=")[1]

    def path(self, name):
        return os.path.join(self.folder.name, name)

    def stop(self):
        """SIGINT, as Ctrl-C; returns the exit status and standard error."""
        self.process.send_signal(signal.SIGINT)
        _, err = self.process.communicate(timeout=10)
        self.folder.cleanup()
        return self.process.returncode, err
