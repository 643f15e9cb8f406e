"""What the vendors' utilities print about a controller of servers.py, and how a listing is spoilt."""
import os
import re

SAMPLES = {
    "MEGACLI": ["megacli-pdlist-early.txt", "megacli-pdlist-later.txt", "megacli-ldpdinfo-early.txt",
                "megacli-ldpdinfo-later.txt", "megacli-adpallinfo.txt"],
    "ARCCONF": ["arcconf-getconfig-plain.txt", "arcconf-getconfig-segments.txt"],
    "HRCONF": ["hrconf-getconfig.txt"],
    "QTCSEND": ["qtcsend-getconfig.txt"],
    "CFGGEN": ["cfggen-display.txt"],
    "CFGGEN1.02.02": ["cfggen-display.txt"],
    "HYPERWIN": ["hyperwin-list.txt"],
}
_samples = {}


def sample(name):
    if name not in _samples:
        path = os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "data", name)
        with open(path, "rb") as file:
            _samples[name] = file.read()
    return _samples[name]


# ---- MEGACLI

MEGA_LEVELS = {"0": ("0", "0"), "1": ("1", "0"), "5": ("5", "0"), "6": ("6", "0"), "10": ("1", "0"),
               "50": ("5", "0"), "60": ("6", "0")}
MEGA_STATES = {"ready": "Unconfigured(good), Spun Up", "online": "Online", "hotspare": "Hotspare",
               "failed": "Unconfigured(bad)", "missing": "Failed", "foreign": "Unconfigured(good)",
               "rebuild": "Rebuild"}


def mega_size(controller, mb):
    if not controller.later:
        return f"{mb}MB [0x{mb * 2048:x} Sectors]"
    if mb >= 1024 * 1024:
        return f"{int(mb * 1000 / 1024 / 1024) / 1000:.3f} TB [0x{mb * 2048:x} Sectors]"
    return f"{int(mb * 1000 / 1024) / 1000:.3f} GB [0x{mb * 2048:x} Sectors]"


def mega_drive(controller, drive):
    lines = [f"Enclosure Device ID: {drive.channel}", f"Slot Number: {drive.id}"]
    if controller.later:
        lines += ["Drive's position: DiskGroup: 0, Span: 0, Arm: 0", "Enclosure position: 1"]
    lines += [f"Device Id: {drive.number + 8}", "Media Error Count: 0", "PD Type: SAS",
              f"Raw Size: {mega_size(controller, drive.size + 640)}",
              f"Non Coerced Size: {mega_size(controller, drive.size + 128)}",
              f"Coerced Size: {mega_size(controller, drive.size)}",
              f"Firmware state: {MEGA_STATES[drive.state]}",
              f"Connected Port Number: {drive.number % 8}(path0) ",
              f"Inquiry Data: NORVIK  NV73455S        S5273LQ2A{drive.number:03d}            ",
              f"Foreign State: {'Foreign' if drive.state == 'foreign' else 'None'} ",
              "Media Type: Hard Disk Device", ""]
    return lines


def mega_drives(r, controller):
    lines = ["                                     ", f"Adapter #{controller.order - 1}", ""]
    for drive in controller.drives:
        lines += mega_drive(controller, drive)
        if drive.state == "hotspare" and r.random() < 0.15:
            lines += mega_drive(controller, drive)  # told twice
    return lines + ["", "Exit Code: 0x00"]


def mega_disks(r, controller):
    colon = "          :" if controller.later else ":"
    word = "Virtual Drive" if controller.later else "Virtual Disk"
    lines = ["                                     ", f"Adapter #{controller.order - 1}", "",
             f"Number of Virtual Disks: {len(controller.logicals)}"]
    caches = {"adaptive": "ReadAdaptive", "on": "ReadAhead", "off": "ReadAheadNone"}
    for number, logical in enumerate(controller.logicals):
        members = controller.arrays[logical.array]
        primary, secondary = MEGA_LEVELS[logical.level]
        spans = 1
        if logical.level in ("10", "50", "60"):
            if r.random() < 0.7:
                spans = 2 if logical.level != "10" else len(members) // 2
            else:
                secondary = "3"
        write = "WriteBack" if logical.cache == "wb" else "WriteThrough"
        state = {"okay": "Optimal", "degraded": "Partially Degraded", "offline": "Offline",
                 "migrating": "Optimal"}[logical.state]
        lines += [f"{word}: {number} (Target Id: {number})", f"Name{colon}",
                  f"RAID Level{colon} Primary-{primary}, Secondary-{secondary}, RAID Level Qualifier-0",
                  f"Size{colon} {mega_size(controller, logical.size).split(' [')[0]}",
                  f"State{colon} {state}",
                  f"Strip Size{colon} {controller.stripe} KB" if controller.later
                  else f"Stripe Size: {controller.stripe}kB",
                  f"Number Of Drives{colon}{len(members) // spans}", f"Span Depth{colon}{spans}",
                  f"Default Cache Policy: WriteThrough, {caches[controller.read]}, Direct",
                  f"Current Cache Policy: {write}, {caches[controller.read]}, Direct",
                  f"Number of Spans: {spans}"]
        size = max(1, len(members) // spans)
        for span in range(spans):
            part = members[span * size:(span + 1) * size]
            lines.append(f"Span: {span} - Number of PDs: {len(part)}")
            for index, drive in enumerate(part):
                lines += [f"PD: {index} Information"] + mega_drive(controller, drive)
    return lines + ["", "Exit Code: 0x00"]


def mega_adapter(r, controller):
    levels = r.choice(["RAID0, RAID1, RAID5, RAID6, RAID10, RAID50, RAID60", "RAID0, RAID1, RAID10"])
    return ["                                     ", f"Adapter #{controller.order - 1}", "",
            "                    Versions", "Product Name    : LSI MegaRAID SAS 8480E",
            "FW Package Build: 6.0.1-0080", "FW Version         : 1.11.50-0300",
            f"BIOS Version       : NV10-{r.randrange(9)}", "WebBIOS Version    : 1.1-32-e_11-Rel",
            f"RAID Level Supported             : {levels}", "", "Exit Code: 0x00"]


# ---- ARCCONF and HRCONF

RULE = "-" * 70
CONF_STATES = {"ready": "Ready", "online": "Online", "hotspare": "Hot Spare", "failed": "Defunct",
               "missing": "Failed", "foreign": "Partitioned", "rebuild": "Rebuilding"}
PRODUCTS = {"Kestrix-B7": "Norvik Kestrix B7", "Kestrix-B8": "Norvik Kestrix B8"}


# Words that a listing can tell as well: whole sets, so that each row of a reader's table is met.
MORE_DRIVE_STATES = ["Verifying", "Global Hot-Spare", "Dedicated Hot-Spare", "Standby Hot Spare", "READY",
                     "online", "Defunct", "Failed", "Rebuilding", "Ready", "Unknown", "Hot Spare Ready"]
MORE_LOGICAL_STATES = ["Critical", "Impacted", "Clearing", "Critical Migrating", "Degraded Migrating",
                       "Optimal", "OFFLINE", "okay", "Degraded", "Migrating", "Unknown"]


def conf(r, controller):
    arc = controller.utility == "ARCCONF"
    later = arc and controller.later
    word = "Logical device" if later else "Logical drive"
    segments = arc and controller.segments
    lines = ["Controllers found: 1", RULE, "Controller information", RULE,
             "   Controller Status                        : Okay",
             "   Channel description                      : SAS/SATA"]
    if arc:
        product = PRODUCTS.get(controller.name, "Norvik Kestrix B9")
        lines.append(f"   Controller Model                         : {product}")
    lines += ["   Controller Serial Number                 : 1000001",
              f"   Physical Slot                            : {controller.bus}",
              "   Installed memory                         : 32 MB"]
    if segments:
        lines.append("   Automatic Failover                       : Enabled")
    count = len(controller.logicals)
    if arc:
        lines += [f"   {word}s/Offline/Critical          : {count}/0/0",
                  "   " + "-" * 56, "   Controller Version Information", "   " + "-" * 56,
                  "   BIOS                                     : 5.2-0 (15000)",
                  "   Firmware                                 : 5.2-0 (15000)",
                  "   Driver                                   : 1.2-0 (29000)"]
        if r.random() < 0.7:
            lines += ["   " + "-" * 56, "   Controller Battery Information", "   " + "-" * 56,
                      "   Status                                   : Not Installed"]
    lines += ["", RULE, f"{word} information", RULE]
    if not arc:
        lines += ["   BIOS version                             : 4.30-17 (3152)",
                  "   Driver version                           : 2.10-3 (41)"]
    for number, logical in enumerate(controller.logicals, 0 if segments else 1):
        lines += conf_logical(r, controller, logical, number, word, later, segments)
    lines += ["", RULE, "Physical Device information", RULE]
    if not arc and r.random() < 0.2:
        lines.insert(4, "   BIOS                                     : 1.0")
    for drive in controller.drives:
        lines += conf_drive(r, controller, drive, later)
    if r.random() < 0.5:
        lines += [f"      Device #{len(controller.drives)}",
                  "         Device is an Enclosure services device",
                  "         Reported Channel,Device            : 2,0",
                  "         Enclosure ID                       : 0"]
    return lines + ["", "Command completed successfully."]


def conf_logical(r, controller, logical, number, word, later, segments):
    level = logical.level
    if level == "6" and later:
        level = "6 Reed-Solomon"
    if level == "VOLUME":
        level = r.choice(["VOLUME", "Simple_volume", "SIMPLE"] +
                         (["Spanned_volume"] if controller.utility == "ARCCONF" else []))
    state = {"okay": "Okay", "degraded": "Degraded", "offline": "Offline",
             "migrating": "Migrating"}[logical.state]
    if r.random() < 0.15:
        state = r.choice(MORE_LOGICAL_STATES)
    write = "Enabled (write-back)" if logical.cache == "wb" else "Disabled (write-through)"
    members = controller.arrays[logical.array]
    key = "RAID Level" if later else "RAID level"
    lines = [f"{word} number {number}", "   Logical drive name                       : X",
             f"   {key}                               : {level}",
             f"   Status of {word.lower() if later else 'logical drive'}                  : {state}",
             f"   Size                                     : {logical.size} MB"]
    if r.random() < 0.8:
        stripe = 16 if controller.stripe == 8 and r.random() < 0.8 else controller.stripe
        lines.append(f"   Stripe-unit size                         : {stripe} KB")
    if r.random() < 0.8:
        mode = "Disabled" if controller.read == "off" else "Enabled"
        lines.append(f"   Read-cache {'setting' if later and r.random() < 0.5 else 'mode'}"
                     f"                          : {mode}")
    if logical.cache is not None:
        lines.append(f"   Write-cache mode                         : {write}")
    if segments:
        lines += [f"   {word} segment information", "   " + "-" * 56]
        for index, drive in enumerate(members):
            place = f"({drive.channel},{drive.id})"
            if later:
                place = f"(Controller:1,Enclosure:{drive.channel},Slot:{drive.id})"
            lines.append(f"   Segment {index}                                : "
                         f"Present {place} NV7A{drive.number:04d}")
    else:
        mark = "Drive(s) (Channel,Device)                "
        if later and r.random() < 0.5:
            mark = "Drive(s) (Channel,Device(T:L))           "
        text = " ".join(f"{d.channel},{d.id}" for d in members)
        lines.append(f"   {mark}: {text} ")
    return lines


def conf_drive(r, controller, drive, later):
    state = CONF_STATES[drive.state]
    if later:
        state = {"Hot Spare": "Hot-Spare", "Defunct": "Failed"}.get(state, state)
    elif state == "Hot Spare" and r.random() < 0.3:
        state = "Standby Hot Spare"
    if r.random() < 0.06:
        state = r.choice(MORE_DRIVE_STATES)
    place = f"Enclosure {drive.channel}, Slot {drive.id}"
    if later and r.random() < 0.2:
        place = f"Connector {drive.channel}, Device {drive.id}"
    key = "Reported Channel,Device(T:L)       " if later else "Reported Channel,Device            "
    kind = r.choice(["drive", "drive", "disk"])
    lines = [f"      Device #{drive.number}", f"         Device is a Hard {kind}",
             f"         State                              : {state}",
             "         Transfer Speed                     : SAS 3.0 Gb/s",
             f"         {key}: {drive.channel},{drive.id}" + ("(0:0)" if later else "")]
    if controller.utility == "ARCCONF":
        lines.append(f"         Reported Location                  : {place}")
    lines += ["         Vendor                             : NORVIK",
              f"         Serial number                      : NV7A{drive.number:04d}",
              f"         Size                               : {drive.size} MB"]
    if later:
        lines.append("         Power State                        : Full rpm")
    return lines + ["         PFA                                : No"]


# ---- QTCSEND, CFGGEN and CFGGEN1.02.02

KX_STATES = {"ready": "Ready (RDY)", "online": "Online (ONL)", "hotspare": "Hot spare (HSP)",
             "failed": "Defunct (DDD)", "missing": "Missing (MIS)", "foreign": "Ready (RDY)",
             "rebuild": "Rebuild (RBL)"}
KX_LOGICAL = {"okay": "Okay (OKY)", "degraded": "Degraded, critical (CRT)", "offline": "Offline (OFL)",
              "migrating": "Okay (OKY)"}
LINE = "-" * 72


def qtcsend(r, controller):
    stripe = controller.stripe if controller.stripe <= 64 or r.random() < 0.1 else 64
    type = controller.name if r.random() < 0.97 else "Kestrix-A9"
    lines = ["Norvik Kestrix Send Utility 7.12.02",
             f"Read configuration has been initiated for controller {controller.order}", LINE,
             "Controller information", LINE,
             f"   Controller type                         : {type}",
             "   BIOS version                            : 7.12.02",
             "   Firmware version                        : 7.12.05",
             f"   Slot                                    : {controller.bus}",
             "   Controller name                         : Null Config",
             f"   Rebuild rate                            : {controller.rebuild}",
             "   Readahead cache setting                 : " +
             {"adaptive": "Adaptive", "on": "Enabled", "off": "Disabled"}[controller.read],
             f"   Stripe-unit size                        : {stripe} KB", LINE,
             "Logical drive information", LINE]
    for number, logical in enumerate(controller.logicals, 1):
        cache = {"wb": "Write back (WB)", "wt": "Write through (WT)", None: "Unknown"}[logical.cache]
        level = logical.level if r.random() < 0.99 else r.choice(["10", "50", "7"])
        lines += [f"   Logical drive number {number}",
                  f"      Status of logical drive              : {KX_LOGICAL[logical.state]}",
                  f"      RAID level                           : {level}",
                  f"      Size (in MB)                         : {logical.size}",
                  f"      Write cache status                   : {cache}",
                  f"      Part of array                        : {chr(ord('A') + logical.array)}"]
    for index, members in enumerate(controller.arrays):
        texts = [f"{d.channel},{d.id}" for d in members]
        lines.append(f"   Array {chr(ord('A') + index)}                                 : "
                     + " ".join(texts[:2]))
        lines += [" " * 45 + " ".join(texts[i:i + 2]) for i in range(2, len(texts), 2)]
    lines += [LINE, "Physical device information", LINE]
    channels = sorted({d.channel for d in controller.drives} | {1})
    for channel in range(1, channels[-1] + 1):
        lines += [f"   Channel #{channel}:", "      Initiator at SCSI ID 7"]
        for drive in controller.drives:
            if drive.channel == channel:
                lines += [f"      Target on SCSI ID {drive.id}", "         Device is a Hard disk",
                          f"         SCSI ID                           : {drive.id}",
                          f"         State                             : {KX_STATES[drive.state]}",
                          f"         Size (in MB)/(in sectors)         : {drive.size}/{drive.size * 2048}",
                          f"         Serial No                         : NV9B{drive.number:04d}",
                          "         Device ID                         : NORVIK  NV18401S"]
    return lines + ["", "Command completed successfully."]


def cfggen(r, controller):
    scsi = controller.utility == "CFGGEN1.02.02"
    lines = ["LSI Logic IR Configuration Utility 2.00.15",
             f"Read configuration has been initiated for controller {controller.order - 1}", LINE,
             "Controller information", LINE,
             "  Controller type                         : SAS1064E",
             "  BIOS version                            : 6.12.01.00",
             "  Firmware version                        : 1.18.84.00",
             "  Initiator ID                            : 112"]
    place = [f"  Slot                                    : {r.choice(['Unknown', '3'])}",
             f"  Bus                                     : {controller.bus}"]
    concurrent = ["  Concurrent commands supported           : 511"]
    lines += concurrent + place if r.random() < 0.6 else place + concurrent
    lines += ["  RAID Support                            : Yes", LINE, "IR Volume information", LINE]
    for number, logical in enumerate(controller.logicals, 1):
        members = controller.arrays[logical.array]
        disks = " ".join(f"{d.channel}/{d.id}" if scsi and r.random() < 0.1 else str(target(controller, d))
                         for d in members)
        lines += [f"IR volume {number}", f"  Volume ID                               : {number - 1}",
                  f"  Status of volume                        : {KX_LOGICAL[logical.state]}",
                  f"  RAID level                              : {logical.level}",
                  f"  Size (in MB)                            : {logical.size}",
                  f"  Physical hard disks (Target ID)         : {disks}"]
    lines += [LINE, "Physical device information", LINE]
    channel = None
    for drive in sorted(controller.drives, key=lambda d: d.channel) if scsi else controller.drives:
        if (scsi and drive.channel != channel) or channel is None:
            lines.append("Initiator at ID #112")
            channel = drive.channel
        state = KX_STATES[drive.state]
        lines += [f"Target on ID #{target(controller, drive)}", "  Device is a Hard disk"]
        if not scsi:
            lines += [f"  Enclosure #                             : {drive.channel}",
                      f"  Slot #                                  : {drive.id}"]
        serial = "LSIInternalUse" if r.random() < 0.005 else f"NV9B{drive.number:04d}0000000A0001"
        lines += [f"  Target ID                               : {target(controller, drive)}",
                  f"  State                                   : {state}",
                  f"  Size (in MB)/(in sectors)               : {drive.size}/{drive.size * 2048}",
                  "  Manufacturer                            : NORVIK",
                  f"  Serial No                               : {serial}",
                  f"  Drive Type                              : {'SCSI' if scsi else 'SAS'}"]
    return lines + [LINE, "Enclosure information", LINE,
                    "Enclosure#                                : 1", LINE]


def target(controller, drive):
    return drive.id if controller.utility == "CFGGEN1.02.02" else drive.number + 1


# ---- HYPERWIN

def hyperwin_array(r, controller):
    lines = ["HyperWin Command Line Utility 1.07", f"Adapter {controller.order - 1}"]
    if controller.logicals:
        logical = controller.logicals[0]
        stripe = controller.stripe if controller.stripe >= 32 or r.random() < 0.1 else 32
        if r.random() < 0.7:
            stripe = r.choice([32, 64, 128, 256, 512, 1024, 2048, 4096])
        lines += ["LOGICAL_ARRAY                   : 0",
                  ("-" if logical.cache == "wt" else "+") + "WRITE_CACHE",
                  f"RAID_MODE                       : {'MIRROR' if logical.level == '1' else 'STRIPE'}",
                  f"STRIPE_SIZE                     : {stripe}KB",
                  f"TOTAL_PHYSICAL_DRIVES           : {len(controller.arrays[0])}"]
        if r.random() < 0.2:
            lines.append("SPARE                           : 1")
    return lines + ["Error Code (hex)                : 0000"]


def hyperwin_drive(controller, number):
    code = "0000" if number < len(controller.drives) else "000a"
    return ["HyperWin Command Line Utility 1.07", f"Error Code (hex)                : {code}"]


# ---- all

def listings(r, controller):
    """Name of the player's answer -> bytes, for the calls by which the controller is read; in the
    order of a capture."""
    n = controller.order
    if controller.utility == "MEGACLI":
        texts = {f"MEGACLI_-LdPdInfo_-a{n - 1}": mega_disks(r, controller),
                 f"MEGACLI_-pdList_-a{n - 1}": mega_drives(r, controller),
                 f"MEGACLI_-adpallinfo_-a{n - 1}": mega_adapter(r, controller)}
    elif controller.utility in ("ARCCONF", "HRCONF"):
        texts = {f"{controller.utility}_GETCONFIG_{n}_AL": conf(r, controller)}
    elif controller.utility == "QTCSEND":
        texts = {f"QTCSEND_GETCONFIG_{n}_AL": qtcsend(r, controller)}
    elif controller.utility == "HYPERWIN":
        texts = {"HYPERWIN__L__D00": hyperwin_array(r, controller),
                 "HYPERWIN__L__D10": hyperwin_drive(controller, 0),
                 "HYPERWIN__L__D20": hyperwin_drive(controller, 1)}
    else:
        texts = {f"{controller.utility}_{n - 1}_DISPLAY": cfggen(r, controller)}
    return {name: ("\n".join(lines) + "\n").encode() for name, lines in texts.items()}


KEYS = ["State", "Size", "Device is a Hard disk", "Enclosure Device ID: 32", "Slot Number: 3",
        "PD: 0 Information", "Adapter #1", "Exit Code: 0x00", "EOF", "Logical drive number 9",
        "Number of PDs: 2", "Segment 0 : Present (0,1) X", "Device #7", "PFA : No", "Array C : 1,1",
        "RAID level : 7", "RAID level : 10", "Stripe-unit size : 3 KB", "Channel,Device : 9,99",
        "Target on ID #9", "Bus : 4", "LOGICAL_ARRAY", "SPARE", "STRIPE_SIZE : 8KB", "--------",
        "Firmware state: Hotspare", "Coerced Size: 0MB", "Size : -5 MB", "Channel #2:",
        "Virtual Disk: 7", "Name:", "Read-cache mode : Half", "Physical Device information"]


def spoil(r, text):
    """The listing with some faults in it."""
    lines = text.split(b"\n")
    for _ in range(r.choice([1, 1, 1, 2, 3, 6])):
        if not lines:
            break
        at = r.randrange(len(lines))
        kind = r.randrange(16)
        if kind == 0:
            del lines[at]
        elif kind == 1:
            lines.insert(at, lines[at])
        elif kind == 2:
            lines = lines[:at]
        elif kind == 3:
            del lines[at:at + r.randrange(1, 20)]
        elif kind == 4:
            other = r.randrange(len(lines))
            lines[at], lines[other] = lines[other], lines[at]
        elif kind in (5, 6, 7):
            numbered = [i for i, line in enumerate(lines) if any(48 <= c < 58 for c in line)]
            if numbered:
                at = r.choice(numbered)
                new = r.choice([b"0", b"1", b"2", b"35", b"36", b"-1", b"99", b"2147483647",
                                b"4294967296", b"3.5", b"", b"x"])
                found = list(re.finditer(rb"\d+", lines[at]))
                one = r.choice(found)
                lines[at] = lines[at][:one.start()] + new + lines[at][one.end():]
        elif kind == 8:
            length = r.choice([50, 150, 196, 197, 198, 199, 200, 300, 396, 397, 5000])
            filler = bytes([r.randrange(32, 127)])
            lines[at] = (lines[at] + b" ").ljust(length, filler) if r.random() < 0.5 \
                else lines[at].rjust(length, b" ")
        elif kind == 9:
            lines.insert(at, r.choice(KEYS).encode())
        elif kind == 10:
            lines[at] = lines[at].replace(b":", r.choice([b"", b"::", b"=", b" :"]), 1)
        elif kind == 11:
            lines[at] = lines[at].upper() if r.random() < 0.5 else lines[at].lower()
        elif kind == 12:
            lines[at] = lines[at][:r.randrange(len(lines[at]) + 1)]
        elif kind == 15:  # a block is told twice
            length = r.choice([5, 9, 12, 14, 20, 40, len(lines)])
            lines[at:at] = lines[at:at + length]
        elif kind == 13:
            data = bytearray(b"\n".join(lines))
            for _ in range(r.randrange(1, 4)):
                if data:
                    data[r.randrange(len(data))] = r.choice([0, 9, 10, 13, 26, 32, 58, 65, 128, 255,
                                                             r.randrange(256)])
            lines = bytes(data).split(b"\n")
        else:
            words = [b"Online", b"Ready", b"Hot Spare", b"Hotspare", b"Defunct", b"Unconfigured(bad)",
                     b"(HSP)", b"(DDD)", b"(MIS)", b"Rebuilding", b"Global Hot-Spare", b"Verifying",
                     b"Partitioned", b"Offline", b"Critical Migrating", b"Nonsense"]
            states = [i for i, line in enumerate(lines) if b"tat" in line and b":" in line]
            if states:
                at = r.choice(states)
                lines[at] = lines[at].split(b":")[0] + b": " + r.choice(words)
    result = b"\n".join(lines)
    if r.random() < 0.1:
        result = result.replace(b"\n", b"\r\n")
    return result
