"""A machine in QEMU, without the help of the processor: Debian's kernel on an emulated PCI bus."""

import io
import json
import os
import re
import signal
import socket
import stat
import subprocess
import time
from pathlib import Path

HERE = Path(__file__).resolve().parent
PROGRAMS = ["src/zolex", "src/companion/zolexctl", "simulator/zolex-sim",
            "hwdetect/hwdetect.exe"]
# A machine that has not started after so many seconds of its own time hangs; of the clock, where it takes
# none.
START_CPU, START_CLOCK = 20, 60
# A machine that has started says something within so many seconds; when it does not for so many, it is
# asked whether its kernel hangs.
MOST_SILENCE, SHORT_SILENCE = 300, 10
# After so many seconds the kernel says that it hangs.
QUICK_TO_SAY = "sysctl.kernel.hung_task_timeout_secs=30"
HANGS = b" blocked for more than "
# What the kernel need not do here; it takes a sixth off the start.
# A program that lies elsewhere each time (randmaps) would be translated anew each time.
# One instruction that clears or copies a whole page (rep_good) takes longer here than many that do.
QUICK = ("mitigations=off nokaslr cryptomgr.notests apparmor=0 audit=0 tsc=reliable no_timer_check "
         "norandmaps clearcpuid=rep_good "
         "initcall_blacklist=crypto_kdf108_init,init_kprobe_trace,cubictcp_register")


class MachineFault(Exception):
    pass


class KernelHangs(MachineFault):
    """The machine's kernel says that a task of it waits for what does not come. It is seen once in some
    dozens of runs over its arrays, when the host is busy; no program in it can be blamed for that."""


def image():
    """The folder with the kernel and the first file system."""
    done = subprocess.run([HERE / "build-image", "--there"], stdout=subprocess.PIPE, check=False)
    if done.returncode != 0:
        raise MachineFault("The image cannot be made.")
    return Path(done.stdout.decode().split("\n")[-2])


def cpio(files):
    """An archive of {name: bytes}, as the kernel unpacks it behind the first file system."""
    out = io.BytesIO()

    def entry(number, name, mode, data):
        head = [number, mode, 0, 0, 1, 0, len(data), 0, 0, 0, 0, len(name) + 1, 0]
        out.write(b"070701" + b"".join(b"%08X" % field for field in head) + name.encode() + b"\0")
        out.write(bytes(-out.tell() % 4))
        out.write(data)
        out.write(bytes(-out.tell() % 4))

    folders = dict.fromkeys(str(parent) for name in files for parent in reversed(Path(name).parents)
                            if str(parent) != ".")
    for number, name in enumerate(folders, 1):
        entry(number, name, stat.S_IFDIR | 0o755, b"")
    for number, (name, data) in enumerate(files.items(), 1 + len(folders)):
        entry(number, name, stat.S_IFREG | 0o755, data)
    entry(0, "TRAILER!!!", 0, b"")
    return out.getvalue()


class Machine:
    """One machine: its programs, its devices, and what it says."""

    def __init__(self, build, work, jobs, devices=(), files=None, archives=(), programs=()):
        """`jobs` are {name: script}, `files` go to the root of its file system, and so do archives of the
        image ("md"); `programs` of `build` stand beside the usual ones."""
        self.work, self.devices = Path(work), list(devices)
        self.said = b""
        self.process = None
        self.memory = None
        self.image = image()
        content = {"init": (HERE / "init").read_bytes(), "functions": (HERE / "functions").read_bytes(),
                   "jobs/order": "".join(f"{name}\n" for name in jobs).encode()}
        content.update({f"jobs/{name}": script for name, script in jobs.items()})
        content.update({f"programs/{Path(name).name}": (Path(build) / name).read_bytes()
                        for name in (*PROGRAMS, *programs)})
        content.update(files or {})
        # Later archives go on from earlier ones.
        archived = [(self.image / f"{name}.cpio").read_bytes() for name in ("base", *archives)]
        (self.work / "initrd").write_bytes(b"".join(archived) + cpio(content))

    def start(self):
        out = self.work / "said"
        out.write_bytes(b"")
        self.said, self.gone = b"", False
        for pipe in ("go.in", "go.out"):
            (self.work / pipe).unlink(missing_ok=True)
            os.mkfifo(self.work / pipe)
        self.process = subprocess.Popen(
            ["qemu-system-x86_64", "-accel", "tcg", "-machine", "pc", "-cpu", "qemu64", "-m", "384",
             "-nodefaults", "-no-user-config", "-display", "none", "-no-reboot",
             "-kernel", self.image / "vmlinux", "-initrd", self.work / "initrd",
             "-append", "console=ttyS0 quiet panic=-1 rdinit=/init " + QUICK + " " + QUICK_TO_SAY,
             "-smbios", "type=1,manufacturer=Example,product=8837,serial=KQ10Z7V",
             "-serial", f"file:{self.work / 'console'}", "-serial", f"file:{out}",
             "-serial", f"pipe:{self.work / 'go'}", "-qmp", f"unix:{self.work / 'qmp'},server=on,wait=off",
             *(["-incoming", f"exec:cat '{self.memory}'"] if self.memory else []), *self.devices],
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=open(self.work / "qemu", "wb"))
        self.started = self.heard = time.monotonic()

    def cpu(self):
        """Seconds of the processor that it has taken."""
        try:
            fields = Path(f"/proc/{self.process.pid}/stat").read_text().rsplit(")", 1)[1].split()
        except OSError:
            return 0.0
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

    def look(self):
        said = (self.work / "said").read_bytes()
        if said != self.said:
            self.said, self.heard = said, time.monotonic()
        return self.said

    def marks(self):
        """What the jobs have marked, in order."""
        return re.findall(rb"^@@mark (.*)\n", self.look(), re.M)

    def go(self):
        """Lets a job go on that waits for it, once."""
        if not self.gone:
            with open(self.work / "go.in", "wb") as pipe:
                pipe.write(b"go\n")
            self.gone = True

    def keep_memory(self, file):
        """Writes the machine's memory to a file, from which others go on with drives of the same
        content; this one is over then."""
        with socket.socket(socket.AF_UNIX) as line:
            line.connect(str(self.work / "qmp"))
            answers = line.makefile("rb")

            def ask(command, **arguments):
                line.sendall(json.dumps({"execute": command, "arguments": arguments}).encode())
                while "return" not in (answer := json.loads(answers.readline())):
                    if "error" in answer:
                        raise MachineFault(f"{command}: {answer['error']['desc']}")
                return answer["return"]

            answers.readline()
            ask("qmp_capabilities")
            ask("migrate-set-parameters", **{"max-bandwidth": 1 << 34})
            ask("migrate", uri=f"exec:cat >'{file}'")
            while (status := ask("query-migrate")["status"]) not in ("completed", "failed"):
                time.sleep(0.02)
            if status == "failed":
                raise MachineFault("The memory of the machine cannot be kept.")
        self.kill()

    def hangs(self):
        """It has not come up in time."""
        return not self.memory and b"@@up\n" not in self.look() and (
            self.cpu() > START_CPU or time.monotonic() - self.started > START_CLOCK)

    def kill(self):
        """The power goes."""
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGKILL)
        self.process.wait()

    def run(self, until=lambda machine: False, pause=0.02):
        """Starts it, once more when it hangs at its start, and waits for its end, or until `until` is
        true and cuts its power then. False: it went off by itself."""
        for attempt in (1, 2):
            self.start()
            try:
                while self.process.poll() is None:
                    if until(self):
                        return True
                    if self.hangs():
                        break
                    silence = time.monotonic() - self.heard
                    if silence > SHORT_SILENCE and HANGS in (self.work / "console").read_bytes():
                        raise KernelHangs("The machine's kernel hangs.\n" + self.tail())
                    if silence > MOST_SILENCE:
                        raise MachineFault("A job does not end.\n" + self.tail())
                    time.sleep(pause)
            finally:
                self.kill()
            if b"@@up\n" in self.look() or self.memory:
                if not self.said.endswith(b"@@off\n"):
                    raise MachineFault("The machine went down.\n" + self.tail())
                return False
        raise MachineFault("The machine does not start.\n" + self.tail())

    def tail(self):
        texts = [(name, (self.work / name).read_text(errors="replace")[-2000:])
                 for name in ("qemu", "console", "said") if (self.work / name).exists()]
        return "\n".join(f"-- {name}:\n{text}" for name, text in texts if text)

    def outputs(self):
        """{job: (output, exit code)} of all that have ended."""
        found = re.findall(r"^@@begin (\S+)\n(.*?)^@@end \1 (\d+)\n",
                           self.said.decode(errors="replace"), re.M | re.S)
        return {name: (text, int(code)) for name, text, code in found}
