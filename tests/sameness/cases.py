"""Random cases: what stands in the folder of a run, how zolex is called, what its children answer."""
import random

import listings
import policies
import servers

SWITCHES = ["/f:", "/d", "/o:", "/p:", "/e1", "/e2", "/e3", "/y", "/b", "/r", "/r:", "/?", "/t:", "/a",
            "/s:", "/step2", "/step3", "/error", "/debug", "/c", "/c:", "/controllers:", "/v:", "@",
            "/noexecuteall", "/noexecutereset", "/noexecutecap", "/noexecutedeploy", "/fake"]
CAPTURE_LISTS = ["m,s,t,c,d,o", "ALL", "t,d", "t", "d", "c", "o", "m,s", "t,ALL", "D,T", "c,o,d", " t , d ",
                 "x", "t,x", "", "t,,d", "all", "m", "s,t,c", "ALL,x", "t;d"]


class Case:
    """One case; equal seeds make equal cases."""

    def __init__(self, seed):
        self.seed = seed
        self.arguments = []
        self.stdin = b""
        self.files = {}      # name in the folder -> content; None: a folder; str: a link
        self.pci = {}        # name in the PCI folder -> content
        self.answers = {}    # name -> content; see player.cpp
        self.calls = []      # (exit code, letters, answer) for each call
        self.limit = None    # of a child, in ms
        self.kinds = []
        _Maker(random.Random(f"case {seed}"), self)


class _Maker:
    def __init__(self, r, case):
        self.r = r
        self.case = case
        self.policies_file = r.choice(["policies.ini", "policies.ini", "policies.ini", "my policies.ini",
                                       "sub/policies.ini", "sub\\policies.ini", "Policies", "a b/c d.ini"])
        self.mode = r.choices(
            ["deploy", "default", "capture", "restore", "restore and deploy", "restore and capture",
             "detection", "illegal", "usage"], [42, 9, 25, 7, 4, 2, 2, 8, 1])[0]
        chance = r.random()
        self.source = "fake" if chance < 0.13 else "definition" if chance < 0.2 else "bus"
        # Half of the cases are without faults, so that enough of them come to an end.
        self.calm = r.random() < 0.55 and self.mode != "illegal"
        self.note("no faults" if self.calm else "faults")
        self.controllers = servers.make_server(r, self.calm)
        if self.source != "bus":
            self.controllers = self.controllers or [servers.Controller(r)]
            servers.number_controllers(self.controllers)
        if self.mode in ("illegal", "usage"):
            self.controllers = self.controllers[:2]
        self.note(f"mode {self.mode}")
        self.note(f"controllers from {self.source}")
        self.make_programs()
        self.make_server()
        self.make_policies()
        self.make_listings()
        self.make_calls()
        self.make_arguments()

    def note(self, kind):
        self.case.kinds.append(kind)

    def put(self, name, content):
        self.case.files[name.replace("\\", "/")] = content

    # ---- the folder

    def make_programs(self):
        r = self.r
        for name in ("UTIL.BAT", "hwdetect.exe", "fakeraid"):
            self.put(name, "player")
        chance = 1 if self.calm else r.random()
        if chance < 0.02:
            del self.case.files[r.choice(["UTIL.BAT", "hwdetect.exe", "fakeraid"])]
            self.note("a program is missing")
        elif chance < 0.04:
            self.put("UTIL.BAT", b'"$SAME_AS_PLAYER" UTIL.BAT "$@"\n')
            self.note("a utility for the shell")
        chance = r.random()
        if [c.type for c in self.controllers].count(10) > 1 and chance < 0.5:
            machine = b"Machine_Type=5944\nSerial_Number=KQ0001\n"
        elif chance < 0.8 or self.calm and chance < 0.9:
            machine = b"Machine_Type=8837\nSerial_Number=KQ0001\n"
        elif chance < 0.88 or self.calm:
            machine = b"Machine_Type=5941-AC1\nSerial_Number=KQ0001\n"
        else:
            machine = r.choice([
                b"Machine_Type=8837\r\nSerial_Number=KQ0001\r\n", b"", b"nothing\n",
                b"Serial_Number = KQ 0001 \nMachine_Type= 8837 ", b"Machine_Type=a=b\n",
                b"x Machine_Type=8837\nMachine_Type=5944\n", b"Machine_Type=" + b"8" * 300 + b"\n",
                b"Machine_Type=\nSerial_Number=\n", b"Machine_Type=88\x0037\nSerial_Number=\xff\n"])
        self.case.answers["_i"] = machine

    def make_server(self):
        r, case = self.r, self.case
        if self.source == "bus" or r.random() < 0.1:
            case.pci = servers.pci_files(r, self.controllers)
        if self.source == "fake" or r.random() < 0.02:
            text = servers.inventory(r, self.controllers).encode()
            if not self.calm and r.random() < 0.5:
                text = self.spoilt_settings(text)
                self.note("spoilt inventory")
            if self.calm or r.random() < 0.96:
                self.put("contlist.ini", text)
        if self.source == "definition":
            text = servers.definition(r, self.controllers).encode()
            if not self.calm and r.random() < 0.5:
                text = self.spoilt_settings(text)
                self.note("spoilt definition")
            if self.calm or r.random() < 0.94:
                self.put("controllers.ini", text)

    def spoilt_settings(self, text):
        r = self.r
        if r.random() < 0.3:
            return policies.spoil(r, text)
        lines = text.split(b"\n")
        for _ in range(r.choice([1, 1, 2, 3])):
            at = r.randrange(len(lines))
            kind = r.randrange(7)
            key = lines[at].split(b"=")[0]
            if kind == 0:
                del lines[at]
            elif kind == 1:
                lines.insert(at, lines[at])
            elif kind == 2:
                lines[at] = key + b"= " + r.choice([b"", b"-1", b"0", b"5", b"36", b"37", b"99", b"x",
                                                    b"Kestrix-Z9", b"LSI-MegaRAID", b"2147483648", b" 7 x"])
            elif kind == 3:
                lines[at] = r.choice([b"[", b"; ", b"", b"[System]"]) + lines[at]
            elif kind > 4:  # a section again
                headers = [i for i, line in enumerate(lines) if line.startswith(b"[")]
                if headers:
                    first = r.choice(headers)
                    lines[at:at] = lines[first:first + r.choice([1, 3, 8])]
            else:
                lines[at] = lines[at].swapcase()
            if not lines:
                return b""
        return b"\n".join(lines)

    def make_policies(self):
        r = self.r
        needed = self.mode in ("deploy", "restore and deploy")
        folder = self.policies_file.replace("\\", "/").rpartition("/")[0]
        if folder and r.random() < 0.97:
            self.put(folder, None)
        if not needed and r.random() < (0.45 if "capture" in self.mode else 0.8):
            return
        content, kind = policies.make(r, self.controllers, self.calm)
        if "capture" in self.mode and r.random() < 0.5:
            content, kind = self.captured_before()
        if needed or "capture" in self.mode:
            self.note(kind)
        chance = 1 if self.calm else r.random()
        if chance < 0.03:
            self.note("no policies file")
        elif chance < 0.04:
            self.put(self.policies_file, None)
            self.note("a folder for a policies file")
        else:
            self.put(self.policies_file, content)

    def captured_before(self):
        """Policies whose names a capture would give."""
        names = [f"Policy.AUTO-{c.name}-{n}" for c in self.controllers[:4] for n in (1, 2)]
        names = self.r.sample(names, self.r.randrange(len(names) + 1))
        made = [[name.replace(" ", "_"), [("AppliesTo.1", "ALL")]] for name in names]
        if len({name for name, _ in made}) < len(made):
            made = made[:1]
        return policies.render(self.r, made, ["; earlier"]), "policies of an earlier capture"

    # ---- the children

    def make_listings(self):
        r, case = self.r, self.case
        for controller in self.controllers:
            self.note(f"controller of {controller.utility}")
            for name, text in listings.listings(r, controller).items():
                chance = r.random() / 2 if not self.calm else 1
                if chance < 0.1:
                    text = listings.spoil(r, text)
                    self.note("spoilt listing")
                elif chance < 0.13:
                    text = listings.sample(r.choice(listings.SAMPLES[controller.utility]))
                    if r.random() < 0.6:
                        text = listings.spoil(r, text)
                    self.note("kept listing")
                elif chance < 0.135:
                    other = r.choice(list(listings.SAMPLES))
                    text = listings.sample(r.choice(listings.SAMPLES[other]))
                    self.note("listing of another utility")
                elif chance < 0.14:
                    text = r.choice([b"", b"\n", b"\0", b"x" * 70000, text[:-1], b"EOF\n" + text])
                case.answers.setdefault(name, text)
                # Where fakeraid is called instead, it tells all of the listings of the controller.
                fake = f"1_{controller.name}".replace(" ", "_")
                case.answers[fake] = case.answers.get(fake, b"") + text
        if self.source == "fake" and not self.calm and r.random() < 0.1:
            case.answers = {"_i": case.answers["_i"]}

    def make_calls(self):
        r, case = self.r, self.case
        chance = r.random()
        restores = self.mode.startswith("restore")
        if self.calm and chance < (0.7 if restores else 0.9) or chance < 0.6:
            return
        calls = [[0, "-", "-"] for _ in range(r.randrange(2, 30))]
        if chance < 0.8 or self.calm:
            one = r.choice(calls[1:4] if restores else calls)
            one[0] = r.choice([1, 1, 2, 3, 5, 49, 49, 127, 255])
            self.note("a call fails")
        else:
            for call in calls:
                call[0] = r.choice([0] * 12 + [1, 2, 49])
                call[1] = r.choice(["-"] * 12 + ["e", "f", "n", "s", "ef"])
            self.note("odd calls")
        if r.random() < 0.03:
            r.choice(calls)[1] = "k"
            self.note("a call ends by a signal")
        if case.seed % 1000 == 17:
            case.limit = 1200
            r.choice(calls[:6])[1] = "h"
            self.note("a call takes too long")
        case.calls = calls

    # ---- the command line

    def make_arguments(self):
        r, case = self.r, self.case
        if self.mode == "usage":
            case.arguments = r.choice([[], ["/?"], ["/?", "/v:0"], ["/?", "/d"], ["/d", "/?", "/x"]])
            return
        parts = {"deploy": [self.file_part()], "default": [["/d"]],
                 "capture": [self.file_part(), self.capture_part()],
                 "restore": [self.restore_part()],
                 "restore and deploy": [self.restore_part(), self.file_part() if r.random() < 0.8 else ["/d"]],
                 "restore and capture": [["/r:"] if r.random() < 0.5 else [f"/r:{r.randrange(-1, 4)}"],
                                         self.file_part(), self.capture_part()],
                 "detection": [["/e2"]], "illegal": []}[self.mode]
        if self.mode == "illegal":
            parts = self.illegal_parts()
        if self.source == "fake":
            parts.append(["/fake"])
        elif self.source == "definition":
            parts.append(["/controllers:controllers.ini"] if r.random() < 0.9
                         else ["/controllers:", "controllers.ini"])
            if r.random() < 0.02:
                parts.append(["/fake"])
        self.add_verbosity(parts)
        self.add_options(parts)
        r.shuffle(parts)
        arguments = [argument for part in parts for argument in part]
        if r.random() < 0.1:
            arguments = [self.other_case(a) for a in arguments]
        if r.random() < 0.05:
            arguments = self.to_parameter_file(arguments)
        case.arguments = arguments
        if "restore" in self.mode or self.mode == "illegal":
            case.stdin = r.choice([b"y\n", b"Y\n", b"n\n", b"", b"\n", b"yes\n", b"q"])

    def other_case(self, argument):
        if ":" in argument and self.r.random() < 0.9:
            switch, value = argument.split(":", 1)
            return switch.upper() + ":" + value
        return argument.upper() if argument.startswith("/") and ":" not in argument else argument

    def file_part(self):
        r = self.r
        name = self.policies_file
        chance = r.random()
        if chance < 0.03 and not self.calm:
            name = r.choice(["", "missing.ini", "no/such/folder.ini", ".", "ZOLEXM~~.TMP"])
        if " " in name and r.random() < 0.5:
            return ("/f:" + name).split(" ")
        return ["/f:" + name] if r.random() < 0.85 or not name else ["/f:", name]

    def capture_part(self):
        r = self.r
        if r.random() < 0.35:
            return ["/c"]
        chosen = r.choice(CAPTURE_LISTS[:11]) if r.random() < 0.8 or self.calm else r.choice(CAPTURE_LISTS)
        return ["/c:" + chosen]

    def restore_part(self):
        r = self.r
        if r.random() < 0.5:
            return ["/r"]
        return ["/r:" + r.choice(["", "1", "1", "2", "3", "-1", "0", "9", "x", " 1", "1x"])]

    def illegal_parts(self):
        """Any switches together, with or without values, some of them unknown."""
        r = self.r
        parts = []
        for _ in range(r.randrange(1, 6)):
            switch = r.choice(SWITCHES)
            if switch[-1] in ":@" and r.random() < 0.8:
                value = r.choice(["x", "1", "a b", "1,2", "3", "", "policies.ini", "-1", "t,d"])
                parts.append([switch + value] if r.random() < 0.7 else [switch, value])
            else:
                parts.append([switch])
        if r.random() < 0.3:
            parts.append([r.choice(["/x", "stray", "", "-f", "/", "/f", "/vv:3", "/r1", "/d1", "/e4", "//?"])])
        if r.random() < 0.3:
            parts.append(list(r.choice(parts)))
        if any(part[0].startswith("/c") for part in parts):
            # A capture into "/y" or the like would leave the folder.
            parts = [part for part in parts if part != ["/f:"]]
        return parts

    def add_verbosity(self, parts):
        r = self.r
        chance = r.random()
        if chance < 0.42:
            level = "9"
        elif chance < 0.85:
            level = r.choice(["0", "3", "5", "5"])
        elif chance < 0.96 or self.calm:
            self.note("verbosity default")
            return
        else:
            level = r.choice(["1", "2", "4", "6", "7", "8", "10", "-1", "x", "00", "", "3x", "9 9"])
        self.note(f"verbosity {level}" if level in ("0", "3", "5", "9") else "verbosity other")
        parts.append(["/v:" + level] if r.random() < 0.95 else ["/v:", level])

    def add_options(self, parts):
        r = self.r
        often = 0.2 if all(c.drives for c in self.controllers) else 0.75
        for switch, chance in (("/e1", often), ("/e2", 0.15), ("/e3", often), ("/debug", 0.15),
                               ("/b", 0.02), ("/a", 0.03), ("/error", 0.02), ("/step2", 0.02),
                               ("/step3", 0.02), ("/y", 0.75 if "restore" in self.mode else 0.1), ("/noexecuteall", 0.03), ("/noexecutereset", 0.03),
                               ("/noexecutecap", 0.03), ("/noexecutedeploy", 0.04)):
            if r.random() < chance:
                parts.append([switch])
                if switch.startswith("/noexecute") or switch == "/debug":
                    self.note(switch)
        if r.random() < 0.03:
            parts.append(["/s:" + r.choice(["1,2", "a,b"] + ([] if self.calm else ["1", "1,2,3", ",", ""]))])
        if r.random() < 0.04:
            parts.append(["/o:" + r.choice(["out.bat", "a b", ""])])
        if r.random() < 0.07:
            self.add_path(parts)
        if r.random() < 0.1:
            folder = r.choice(["temp", "temp", "temp\\", "temp\\", "missing", "my temp", "temp/"])
            self.put("temp", None), self.put("my temp", None)
            parts.append(["/t:" + folder])
            self.note("/t:")
        if r.random() < 0.03:
            # Something stands in the temporary file's place.
            self.put("ZOLEXM~~.TMP", r.choice([b"old text\n", None, "policies.ini"]))
            self.note("temporary file is there")

    def add_path(self, parts):
        r = self.r
        folder = r.choice(["tools", "tools\\", "missing", '"my tools"', ".\\tools"])
        self.put("tools", None), self.put("my tools", None)
        self.put("tools/UTIL.BAT", "player"), self.put("my tools/UTIL.BAT", "player")
        parts.append(["/p:" + folder])
        self.note("/p:")

    def to_parameter_file(self, arguments):
        r = self.r
        self.note("@file")
        if r.random() < 0.1:
            return arguments + ["@missing.txt"]
        taken = [a for a in arguments if r.random() < 0.5]
        kept = [a for a in arguments if a not in taken]
        separator = r.choice([" ", "\n", "\r\n", "\t"])
        text = separator.join(f'"{a}"' if " " in a and r.random() < 0.8 else a for a in taken)
        self.put("params.txt", (text + r.choice(["", "\n"])).encode())
        return kept + r.choice([["@params.txt"], ["@", "params.txt"]])
