"""What the tests have in common that follow a page: its blocks, and commands that are run one after the
other in one shell, with the programs of a build laid out as ./package does."""

import pathlib
import re
import subprocess

ROOT = pathlib.Path(__file__).resolve().parents[2]
DOC = "/usr/share/doc/zolex"

faults = []


def fault(text):
    faults.append(text)
    print("FAULT:", text)


class Block:
    def __init__(self, kind, line, lines):
        self.kind = kind  # such as "sh virtual"
        self.line = line  # of its first line
        self.lines = lines
        self.outputs = []  # of its commands, once they have run
        self.code = 0  # that its last command ends with


def blocks_of(text, file):
    """The fenced blocks of a file; an indented one has the kind "indented"."""
    found, fence, blank = [], None, True
    for number, line in enumerate(text.split("\n"), 1):
        mark = re.match(r"( *)```(.*)$", line)
        if fence is not None:
            if mark:
                found.append(fence)
                fence = None
            else:
                fence.lines.append(line[len(fence.indent):])
        elif mark:
            fence = Block(mark[2].strip(), number + 1, [])
            fence.indent = mark[1]
        elif blank and re.match(r"( {4}|\t)\S", line):
            found.append(Block("indented", number, [line.strip()]))
        blank = not line.strip()
    if fence is not None:
        fault(f"{file}:{fence.line}: the block has no end")
    return found


class Session:
    """Commands that are run one after the other in one shell."""

    def __init__(self, name, file, folder, environment, emulator=None):
        self.name, self.file, self.folder = name, file, folder
        self.environment, self.emulator = environment, emulator
        self.blocks = []
        self.log = []

    def run(self):
        commands = [(block, block.line + i, text)
                    for block in self.blocks for i, text in enumerate(block.lines) if text.strip()]
        script = self.folder / ("session.bat" if self.emulator else "session.sh")
        write = self.batch if self.emulator else self.shell
        last = {id(block): number for number, (block, _, _) in enumerate(commands)}
        codes = [block.code if last[id(block)] == number else 0
                 for number, (block, _, _) in enumerate(commands)]
        script.write_text(write([text for _, _, text in commands], codes))
        start = [str(self.emulator), "cmd", "/c", script.name] if self.emulator else ["bash", script.name]
        try:
            ran = subprocess.run(start, cwd=self.folder, env=self.environment, timeout=300,
                                 stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                 stderr=subprocess.STDOUT)
            output = ran.stdout.decode(errors="replace").replace("\r", "")
        except subprocess.TimeoutExpired as late:
            output = (late.stdout or b"").decode(errors="replace").replace("\r", "")
        script.unlink()
        parts = re.split(r"@@ (\d+) (begins|failed)\n", output)
        ended = {}
        for number, word, text in zip(parts[1::3], parts[2::3], parts[3::3]):
            if word == "begins":
                ended[int(number)] = [text, True]
            else:
                ended[int(number)][1] = False
        sample = ""
        for number, (block, line, command) in enumerate(commands):
            text, good = ended.get(number, ("", None))
            block.outputs.append(text)
            self.log.append(f"  {self.file}:{line}  {command}")
            copied = re.search(r"(util-\w+|real-server)[/\\]UTIL\.BAT|cd (real-server)", command)
            if copied:
                sample = (copied[1] or copied[2]).replace("real-server", "util-windows")
            if sample and re.search(r"zolex /[cf]", command, re.I):
                self.log.append(f"      with the sample of UTIL.BAT {sample}:")
                self.log += ["        " + shown for shown in text.split("\n")
                             if re.match(r"(Executing:UTIL|Deploy Command|ZOLEX )", shown)]
            # Of two programs in one line of cmd the last one's exit code is seen.
            good = good and "ZOLEX failed with" not in text
            if not good:
                what = "was not reached" if good is None else "failed and printed:\n" + text
                fault(f"{self.file}:{line}: {self.name}: \"{command}\" {what}")
                return

    @staticmethod
    def shell(commands, codes):
        text = ""
        for number, (command, code) in enumerate(zip(commands, codes)):
            command = command.replace(DOC, "$PACKAGE_ROOT" + DOC)
            text += f"echo '@@ {number} begins'\n{command}\n" \
                    f"[ $? -eq {code} ] || {{ echo '@@ {number} failed'; exit 1; }}\n"
        return text

    @staticmethod
    def batch(commands, _):
        text = "@echo off\n"
        for number, command in enumerate(commands):
            text += f"echo @@ {number} begins\n{command}\n"
            if not command.lower().startswith(("set ", "cd ")) and not re.fullmatch(r"[A-Z]:", command):
                text += f"if errorlevel 1 (\necho @@ {number} failed\nexit /b 1\n)\n"
        return text.replace("\n", "\r\n")


def make_program(path, text):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text(text)
    path.chmod(0o755)


def bash(command, *arguments, **options):
    return subprocess.run(["bash", "-euc", command, "bash", *map(str, arguments)], check=True,
                          **options)


def lay_out(function, root, build):
    bash('cd "$1"; commit_time=1795219200; . packaging/layout.sh; "$2" "$3" "$4"', ROOT, function,
         root, build)


def check_texts(blocks, file):
    """What a text block shows is what the commands before it printed."""
    before = None
    for block in blocks:
        if block.kind.startswith("sh ") and block.outputs:
            before = block
        elif block.kind == "text":
            text = "\n".join(before.outputs if before else [])
            printed = iter([line.rstrip() for line in text.split("\n")])
            for line in block.lines:
                if line.rstrip() not in printed:
                    fault(f"{file}:{block.line}: is not printed there: {line}")
                    break
