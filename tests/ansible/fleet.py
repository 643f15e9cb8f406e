"""What the checks of the Ansible collection have in common: Ansible in a bare environment, virtual servers,
modules that are run by themselves."""

import hashlib
import json
import os
import pathlib
import re
import signal
import subprocess
import sys
import time

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parents[1]
MODULES = ("layout", "layout_info", "policies_check")
PYTHON = "/usr/bin/python3"


class Faults:
    """What is not as it should be; the exit code of a check."""

    def __init__(self):
        self.count = 0
        self.checks = 0

    def expect(self, holds, what, seen=""):
        self.checks += 1
        if not holds:
            self.count += 1
            print("FAULT:", what, *([f"\n{seen}"] if seen else []), flush=True)
        return bool(holds)

    def same(self, found, wanted, what):
        return self.expect(found == wanted, what, f"  found  {found!r}\n  wanted {wanted!r}")

    def end(self, what):
        if self.checks == 0:
            sys.exit("Nothing was checked.")
        print(f"{what}: {self.checks} checks, {self.count} faults.")
        sys.exit(1 if self.count else 0)


class Ansible:
    """Ansible with the collection of this checkout, in folders of its own: home cannot be written, and
    there is no terminal."""

    def __init__(self, work):
        self.work = work
        self.collections = work / "collections"
        for name in ("collections", "home", "tmp", "dist"):
            (work / name).mkdir()
        (work / "ansible.cfg").write_text("[defaults]\n")
        self.environment = {
            "PATH": "/usr/bin:/bin:/usr/sbin:/sbin", "LC_ALL": "C.UTF-8", "HOME": "/proc/no-home",
            "TMPDIR": str(work / "tmp"), "ANSIBLE_HOME": str(work / "home"),
            "ANSIBLE_LOCAL_TEMP": str(work / "home/tmp"), "ANSIBLE_REMOTE_TEMP": str(work / "home/remote"),
            "ANSIBLE_REMOTE_TMP": str(work / "home/remote"),
            "ANSIBLE_COLLECTIONS_PATH": str(self.collections), "ANSIBLE_NOCOLOR": "1",
            "ANSIBLE_PIPELINING": "1", "ANSIBLE_FORKS": "4", "ANSIBLE_CONFIG": str(work / "ansible.cfg"),
            "ANSIBLE_CALLBACK_PLUGINS": str(HERE / "callback"),
            "ANSIBLE_CALLBACKS_ENABLED": "kept_results", "PYTHONDONTWRITEBYTECODE": "1",
            "ZOLEX_RESULTS": str(work / "results"), "SOURCE_DATE_EPOCH": "1795219200",
        }
        self.archive = self.must([str(ROOT / "scripts/ansible-collection"), str(work / "dist")]).strip()
        self.must(["ansible-galaxy", "collection", "install", self.archive, "--offline", "-p",
                   str(self.collections)])

    def run(self, command, folder=None, close_stdin=False, **more):
        """Runs a program to its end."""
        return subprocess.run(
            command, cwd=folder or self.work, env=dict(self.environment, **more), text=True,
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
            start_new_session=True, preexec_fn=(lambda: os.close(0)) if close_stdin else None)

    def must(self, command, **terms):
        run = self.run(command, **terms)
        if run.returncode != 0:
            raise SystemExit(f"{command} ends with {run.returncode}\n{run.stdout}")
        return run.stdout

    def module(self, name, arguments, check=False, **more):
        """Runs a module by itself; its result, its exit code, all that it wrote."""
        given = dict(arguments, _ansible_check_mode=check, _ansible_diff=True,
                     _ansible_remote_tmp=str(self.work / "home/remote"), _ansible_tmpdir=str(self.work / "tmp"))
        run = subprocess.run(
            [PYTHON, "-m", f"ansible_collections.zolex.raid.plugins.modules.{name}"],
            input=json.dumps({"ANSIBLE_MODULE_ARGS": given}), text=True, cwd=self.work,
            env=dict(self.environment, PYTHONPATH=str(self.collections), **more),
            stdout=subprocess.PIPE, stderr=subprocess.PIPE, start_new_session=True)
        try:
            result = json.loads(run.stdout)
        except ValueError:
            result = {}
        return result, run.returncode, run.stdout + run.stderr


class Server:
    """A virtual server in a folder."""

    def __init__(self, ansible, simulator, name, sample, change=lambda definition: definition, **variables):
        self.name, self.folder = name, ansible.work / "servers" / name
        self.ansible, self.simulator = ansible, simulator
        self.proofs = ansible.work / "proofs" / name
        self.variables = dict(variables, dir=str(self.folder), proofs=str(self.proofs))
        self.folder.parent.mkdir(exist_ok=True)
        ansible.must([simulator, "init", str(self.folder), "--sample", sample])
        definition = re.sub(r'("serialNumber": )"[^"]*"', rf'\1"KQ{name.upper()}"',
                            (self.folder / "server.json").read_text(), count=1)
        self.definition = ansible.work / f"{name}.json"
        self.definition.write_text(change(definition))
        self.init()

    def init(self):
        """As it was in the beginning."""
        for path in sorted(self.folder.rglob("*"), reverse=True):
            path.rmdir() if path.is_dir() and not path.is_symlink() else path.unlink()
        self.folder.rmdir()
        self.ansible.must([self.simulator, "init", str(self.folder), "--definition", str(self.definition)])

    def faults(self, text):
        definition = self.definition.read_text().rstrip()
        (self.folder / "server.json").write_text(definition[:-1] + (f', "faults": [{text}]' if text else "")
                                                 + "}")

    def shown(self):
        return self.ansible.must([self.simulator, "show"], ZOLEX_SIM_DIR=str(self.folder))

    def environment(self):
        return {"ZOLEX_PCI_ROOT": f"{self.folder}/pci", "ZOLEX_DMI_ROOT": f"{self.folder}/dmi",
                "ZOLEX_SETTLE_MS": "0"}

    def kill_run(self, after, patience=60):
        """Waits for an event of its journal, and kills the zolexctl that writes it."""
        until = time.monotonic() + patience
        while time.monotonic() < until:
            for journal in self.proofs.glob("*.journal.jsonl"):
                text = journal.read_text()
                if f'"event":"{after}"' in text and text.endswith("\n"):
                    os.kill(json.loads(text.splitlines()[0])["pid"], signal.SIGKILL)
                    return True
            time.sleep(0.01)
        return False


def hashes_of(*folders):
    """Every file below folders, by its bytes."""
    found = {}
    for folder in folders:
        for path in sorted(folder.rglob("*")):
            if path.is_symlink():
                found[str(path)] = os.readlink(path)
            elif path.is_file():
                found[str(path)] = hashlib.sha256(path.read_bytes()).hexdigest()
            else:
                found[str(path)] = "folder"
    return found
