"""Random policies files: valid ones for the controllers of a server, ones with a fault, spoilt ones."""
import servers

LEVELS = ["0", "1", "1E", "5", "5E", "5EE", "6", "10", "50", "60", "VOLUME", "SIMPLE VOLUME", "AUTO"]
CACHES = ["ON", "OFF", "AUTO"]
STRIPES = ["16", "32", "64", "128", "256", "512", "1024", "2048", "4096"]
MACHINES = ["8837", "5941-AC1", "5944", "88370", ""]
RAW = "\n"  # in place of a keyword: the value is the whole line
SERIALS = ["KQ0001", "kq0001", "KQ 0001", ""]


def case_of(r, text):
    return text if r.random() < 0.93 else r.choice([text.lower(), text.upper(), text.swapcase()])


def specifiers(r, controller, number):
    """One value of AppliesTo that holds for the controller, most often."""
    items = []
    for letter in r.sample("mstcod", r.choice([1, 1, 1, 2, 2, 3])):
        right = r.random() < 0.9
        if letter == "t":
            text = controller.name if right else r.choice(servers.NAMES[:20])
        elif letter == "d":
            text = str(len(controller.drives) or 1) if right else str(r.randrange(1, 30))
        elif letter == "c":
            text = str(number) if right else str(r.randrange(1, 6))
        elif letter == "o":
            text = str(controller.order) if right else str(r.randrange(1, 6))
        elif letter == "m":
            text = "8837" if right else r.choice(MACHINES)
        else:
            text = "KQ0001" if right else r.choice(SERIALS)
        items.append(f"{letter if r.random() < 0.95 else letter.upper()}:{text}")
    if r.random() < 0.25:
        items.insert(r.randrange(len(items) + 1), "ALL")
    return r.choice([",", ",", ", ", " ,\t"]).join(items)


def drive_list(r, controller, numbers):
    positions = controller.positions()
    if r.random() < 0.3 and all(n <= len(positions) for n in numbers):
        return ",".join(f"{positions[n - 1][0]}:{positions[n - 1][1]}" for n in numbers)
    return r.choice([",", ",", ",", ", "]).join(str(n) for n in numbers)


def size_text(r, room):
    chance = r.random()
    if chance < 0.5:
        return r.choice(["FILL", "FILL", "fill"])
    if chance < 0.7:
        return f"{r.choice([1, 10, 25, 33, 50, 66, 90, 99, 100])}%"
    if chance < 0.95:
        return str(max(1, room + r.choice([0, -138, -139, -139, -139, -140, 139, 139, 140, 1, -1000, 10000])))
    return str(r.choice([1, 100, 4096, 2147483647]))


def usable(level, count, smallest):
    data = {"0": count, "VOLUME": count, "1": count / 2, "1E": count / 2, "10": count / 2,
            "5": count - 1, "5E": count - 2, "5EE": count - 2, "6": count - 2, "50": count - 2,
            "60": count - 4}.get(level, count)
    return int(max(0, data) * smallest)


def level_for(r, controller):
    # The controller's own levels most often; others are refused.
    return r.choice(controller.planned_levels()) if r.random() < 0.94 else r.choice(LEVELS)


def body(r, controller):
    """The entries of a policy beside AppliesTo."""
    entries = []
    if r.random() < 0.3:
        entries.append(("RebuildRate", r.choice(["HIGH", "MED", "LOW"])))
    if r.random() < 0.4:
        entries.append(("ReadAhead", r.choice(["ADAPTIVE", "ON", "OFF"])))
    if r.random() < 0.4:
        likely = {"MEGACLI": STRIPES[:4], "QTCSEND": STRIPES[:3], "HRCONF": STRIPES[:3],
                  "HYPERWIN": STRIPES[1:]}.get(controller.utility, STRIPES[:7])
        entries.append(("StripeSize", r.choice(likely if r.random() < 0.95 else STRIPES)))
    if r.random() < 0.25:
        entries.append(("Init", r.choice(["QUICK", "BUILD"])))
    if r.random() < 0.1:
        entries.append(("Max_Logical_Drive_Size", r.choice(["0", "1000", "2147483647"])))
    if r.random() < 0.35:
        spares = r.choice(["0", "0", "0", "0", "1", "1", "2", "3", "9"])
        entries.append(("Array_Defaults", f"{r.choice(['0%', '5%', '10%', '100%'])}:{spares}"))
    if controller.utility == "HYPERWIN" or r.random() < 0.4:
        automatic(r, controller, entries)
    else:
        custom(r, controller, entries)
    return entries


def automatic(r, controller, entries):
    if r.random() < 0.6:
        smallest = min([d.size for d in controller.drives], default=1000)
        level = level_for(r, controller) if r.random() < 0.7 else "AUTO"
        text = f"{size_text(r, usable(level, len(controller.drives), smallest))}:{level}"
        if r.random() < 0.5:
            text += f":{r.choice(CACHES)}"
        entries.append(("Logical_Defaults", text))
    if r.random() < 0.15 and controller.drives:
        entries.append(("Hotspares", str(r.randrange(1, len(controller.drives) + 1))))


def custom(r, controller, entries):
    count = len(controller.drives)
    free = list(range(1, count + 1))
    if r.random() < 0.2:
        r.shuffle(free)
    entries.append(("Array_Mode", "CUSTOM"))
    arrays = []
    while free and len(arrays) < 8 and (not arrays or r.random() < 0.5):
        level = level_for(r, controller)
        least = servers.LEAST.get(level, 1)
        wanted = 2 if level == "1" else r.randrange(least, max(least, min(len(free), 12)) + 1)
        members, free = free[:wanted], free[wanted:]
        if len(members) % 2 and level in ("10", "50", "60") and len(members) > 1:
            members.pop()
        letter = chr(ord("A") + len(arrays))
        chance = r.random()
        if chance < 0.1:
            entries.append((f"Array.{letter}", "ALL"))
            arrays.append((level, max(1, len(members) + len(free))))
            free = []
            break
        if chance > 0.97:
            members = members + [r.choice([count + 1, count, 1, 99])]
        if chance > 0.995:
            members = members + [1] * 33
        entries.append((f"Array.{letter}", drive_list(r, controller, members)))
        arrays.append((level, len(members)))
    if not arrays:
        entries.append(("Array.A", r.choice(["1", "ALL", "1,2"])))
        arrays.append((level_for(r, controller), 1))
    if free and r.random() < 0.5:
        entries.append(("Hotspares", drive_list(r, controller, free[:r.choice([1, 1, 1, 2, 3])])))
    if r.random() < 0.85:
        smallest = min([d.size for d in controller.drives], default=1000)
        entries.append(("Logical_Mode", "CUSTOM"))
        number = 0
        for index, (level, members) in enumerate(arrays):
            several = 1
            if r.random() < (0.5 if controller.utility == "QTCSEND" else 0.06):
                several = r.choice([2, 3])
            if r.random() < 0.03:
                continue
            for part in range(several):
                if number == 9:
                    break
                number += 1
                room = usable(level, members, smallest) // several
                if part > 0 and r.random() < 0.5:
                    level = r.choice(controller.planned_levels())
                size = "FILL" if part == several - 1 > 0 and r.random() < 0.6 else size_text(r, room)
                if part < several - 1 and r.random() < 0.8:
                    size = str(r.randrange(1, max(2, room)))
                text = f"{chr(ord('A') + index)}:{size}:{level}"
                if r.random() < 0.6:
                    text += f":{r.choice(CACHES)}"
                entries.append((f"Logical.{number}", text))
        if number == 0:
            entries.append(("Logical.1", "A:FILL:0"))
    elif r.random() < 0.6:
        entries.append(("Logical_Defaults", f"FILL:{level_for(r, controller)}"))


def policy(r, name, controller, number):
    entries = [("AppliesTo.1", "ALL" if r.random() < 0.35 else specifiers(r, controller, number))]
    for n in range(2, r.choice([2, 2, 2, 3, 4])):
        entries.append((f"AppliesTo.{n}", specifiers(r, controller, number)))
    entries += body(r, controller)
    if r.random() < 0.15:
        r.shuffle(entries)
    return [name, entries]


def fault(r, policies):
    """Gives the policies one fault; returns lines to put before the file's own."""
    chosen = r.choice(policies)
    entries = chosen[1]
    kind = r.randrange(50)

    def put(keyword, value):
        for i, entry in enumerate(entries):
            if entry[0].lower() == keyword.lower():
                entries[i] = (keyword, value)
                return
        entries.append((keyword, value))

    # In the order in which they are checked.
    wrong_values = [
        ("AppliesTo.1", ["", "x:1", "t:Kestrix", "t:kestrix-c1", "c:0", "c:x", "d:-1", "o:", "o:0",
                         "ALL,", "t", "m:", "c:1,c:2", "d:4294967296", "t:LSI-MegaRAID,q"]),
        ("AppliesTo.2", ["", "z:1", "c:0"]),
        ("RebuildRate", ["FAST", "", "HIGHER"]), ("ReadAhead", ["YES", "ADAPT"]),
        ("StripeSize", ["8", "65", "8192", "64KB"]),
        ("Array_Mode", ["AUTO", "custom1", ""]),
        ("Array_Defaults", ["10%", "10%:1:2", "7%:1", "0%:x", "0%:-1", ":", "100:1"]),
        ("Max_Logical_Drive_Size", ["big", "-1", "1.5", ""]),
        ("Array.A", ["1,,2", "a", "1,1:2", "1:2,3", "0", "1:2:3", "", "1-3", "1:x"]),
        ("Hotspares", ["x", "1,1:1", "0", ""] + [",".join(str(n) for n in range(1, last))
                                                  for last in (17, 18, 18, 18)]),
        ("Logical_Mode", ["AUTO", "MANUAL"]),
        ("Logical_Defaults", ["FILL", "FILL:0:ON:1", "0:0", "101%:0", "FILL:7", "FILL:0:YES", "x:0",
                              "-5:1", "FILL:", ":"]),
        ("Logical.1", ["A:FILL", "Z:FILL:0", "A:FILL:0:ON:1", "A:0:0", "A:FILL:11", "A:FILL:0:MAYBE",
                       "AA:FILL:0", ":FILL:0", "1:FILL:0", "H:FILL:0"]),
        ("Init", ["SLOW", "FULL"]),
    ]
    if kind < len(wrong_values):
        keyword, values = wrong_values[kind]
        put(keyword, r.choice(values))
    elif kind == 14:
        chosen[0] = r.choice(["Policy.", "Polic.a", "Policy.a b", "", "Policy.ä", "policy.X#", "P"])
    elif kind == 15:
        policies.append([chosen[0].upper(), list(entries)])
    elif kind == 16:
        entries.append((r.choice(["Array.I", "Array.AA", "Array.", "AppliesTo.0", "Logical.x", "Sripe",
                                  "Logical.", "AppliesTo", "Array_Modes", ""]), "1"))
    elif kind == 17:
        entries.append((r.choice(["AppliesTo.16", "Logical.10", "Logical.01", "AppliesTo.01",
                                  "AppliesTo.100"]), "ALL"))
    elif kind == 18:
        repeated = r.choice(entries)
        entries.append((repeated[0].swapcase(), repeated[1]))
    elif kind == 19:
        entries[:] = [e for e in entries if e[0].lower() != "appliesto.1"]
    elif kind == 20:
        entries[:] = [e for e in entries if not e[0].lower().startswith(r.choice(["array.a", "logical.1"]))]
        put(r.choice(["Array_Mode", "Logical_Mode"]), "CUSTOM")
    elif kind == 21:
        put("Array.A", "1"), put("Array.C", "2")
    elif kind == 22:
        put("Array.A", "ALL"), put("Array.B", "2")
    elif kind == 23:
        put("Array.A", "1,2,3,4"), put("Logical.1", "A:100:5E"), put("Logical.2", r.choice(
            ["A:100:0", "A:100:5EE"]))
    elif kind == 24:
        put("Array.A", "1,2,3,4"), put("Logical.1", "A:100:0"), put("Logical.3", "A:100:0")
    elif kind == 25:
        return [r.choice(["stray = 1", "x", "  Array_Mode = CUSTOM", "]", "[Policy.a"])]
    elif kind == 26:
        entries.append((RAW, r.choice(["no equals sign", "   words", "=", "= 1", "[", "[Policy.x"])))
    elif kind == 27:
        while len(entries) < r.choice([49, 50, 51, 52]):
            entries.append((f"AppliesTo.{len(entries) + 20}", "ALL"))
    elif kind == 28:
        count = r.choice([99, 100, 101])
        while len(policies) < count:
            policies.append([f"Policy.more{len(policies)}", [("AppliesTo.1", "c:9")]])
    elif kind >= 30:  # several wrong values: the first that is checked is told
        first = r.randrange(len(wrong_values) - 1)
        several = wrong_values[first:first + 2] if r.random() < 0.7 else r.sample(wrong_values, 5)
        for keyword, values in several:
            put(keyword, r.choice(values))
    else:
        for i, letter in enumerate("ABCDEFGH"):
            put(f"Array.{letter}", str(i + 1))
        for n in range(1, 10):
            put(f"Logical.{n}", f"{r.choice('ABCDEFGH')}:100:0")
        put("Array_Mode", "CUSTOM"), put("Logical_Mode", "CUSTOM")
    return []


def render(r, policies, first_lines):
    plain = r.random() < 0.5
    lines = list(first_lines)
    for name, entries in policies:
        if not plain and r.random() < 0.3:
            lines.append(r.choice(["; a comment", "", "   ", "  ; indented"] * 5 + [";" + "x" * 300]))
        lines.append(r.choice(["", "  "] if not plain else [""]) + f"[{name}]" +
                     r.choice(["", " trailing"] if not plain else [""]))
        for keyword, value in entries:
            if keyword == RAW:
                lines.append(value)
                continue
            if not plain:
                keyword, value = case_of(r, keyword), case_of(r, value) if value[:2] != "t:" else value
            equals = " = " if plain else r.choice([" = ", "=", " =", "= ", "\t=\t", "   =   "])
            line = ("" if plain else r.choice(["", "", "", " "])) + keyword + equals + value
            if not plain and r.random() < 0.01:
                line += " " * r.choice([200, 240, 255, 300])
            lines.append(line)
        if plain:
            lines.append("")
    end = "\r\n" if r.random() < 0.06 else "\n"
    text = end.join(lines) + (end if r.random() < 0.93 else "")
    return text.encode("utf-8", "replace")


def spoil(r, data):
    data = bytearray(data)
    for _ in range(r.choice([1, 1, 2, 5, 20])):
        if not data:
            break
        at = r.randrange(len(data))
        kind = r.randrange(4)
        if kind == 0:
            data[at] = r.choice([0, 9, 10, 13, 26, 32, 44, 58, 59, 61, 91, 93, 255, r.randrange(256)])
        elif kind == 1:
            del data[at:at + r.choice([1, 1, 1, 10, 100])]
        elif kind == 2:
            data[at:at] = bytes([r.choice([32, 44, 58, 61, 48, 65, 91, 10])]) * r.choice([1, 1, 2, 260])
        else:
            data[at:at] = data[at:at + r.choice([5, 30])]
    return bytes(data)


def many_commands(r, controllers):
    """A policy of several mirrors for the controllers that can have them."""
    count = max(min(8, len(c.drives) // 2) for c in controllers)
    entries = [(f"AppliesTo.{n}", f"c:{number}") for n, number in enumerate(
        [number for number, c in enumerate(controllers, 1) if len(c.drives) >= 2 * count], 1)][:15]
    entries.append(("Array_Mode", "CUSTOM"))
    entries += [(f"Array.{chr(ord('A') + i)}", f"{2 * i + 1},{2 * i + 2}") for i in range(count)]
    entries.append(("Logical_Mode", "CUSTOM"))
    entries += [(f"Logical.{i + 1}", f"{chr(ord('A') + i)}:FILL:1:{r.choice(CACHES)}") for i in range(count)]
    return ["Policy.many", entries]


def make(r, controllers, calm):
    """(content of a policies file, what kind it is)."""
    policies = []
    if calm and r.random() < 0.04 and len(controllers) > 1:
        return render(r, [many_commands(r, controllers)], []), "many commands"
    for number, controller in enumerate(controllers[:6], 1):
        if not controller.drives and r.random() < 0.7:
            continue
        if calm or r.random() < 0.92:
            name = f"Policy.{r.choice(['web', 'db', 'AUTO-' + controller.name, 'x_1.y-z', 'A'])}-{number}"
            policies.append(policy(r, name.replace(" ", "_"), controller, number))
    if not policies or r.random() < 0.15:
        other = servers.Controller(r)
        policies.insert(r.randrange(len(policies) + 1), policy(r, "Policy.other", other, 1))
    if calm:
        return render(r, policies, []), "valid policies"
    if r.random() < 0.05:
        return render(r, policies, ["; nothing but comments"])[:r.choice([0, 5, 24])], "empty policies"
    chance = r.random()
    if chance < 0.4:
        return render(r, policies, []), "valid policies"
    if chance < 0.85:
        first_lines = fault(r, policies)
        for _ in range(r.choice([0, 0, 0, 1, 2])):
            first_lines += fault(r, policies)
        return render(r, policies, first_lines), "policies with a fault"
    return spoil(r, render(r, policies, [])), "spoilt policies"
