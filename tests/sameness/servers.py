"""Random servers: controllers with drives and layouts, PCI folders, inventory and definition files."""

SIZES = [17357, 34715, 69376, 70006, 70006, 140012, 140013, 286102, 953869, 1907729]

# Columns: type, subtype, name that policies may use, utility, PCI vendor, device, subsystem vendor,
# subsystem id (None: any).
MAKER = 0x1F3D
MODELS = [
    (1, 1, "Kestrix-A1", "QTCSEND", MAKER, 0x002E, None, None),
    (1, -1, "Kestrix-A4", "QTCSEND", MAKER, 0x01BD, None, None),
    (1, -1, "Kestrix-A7", "QTCSEND", 0x9005, 0x0250, None, None),
    (2, -1, "Kestrix-A8", "ARCCONF", 0x9005, 0x0285, 0x9005, 0x0290),
    (3, -1, "Kestrix-A9", "HRCONF", 0x8086, 0x25B0, None, None),
    (3, -1, "Kestrix-A9", "HRCONF", 0x8086, 0x24DF, None, None),
    (4, 1, "Kestrix-A10", "HRCONF", 0x9005, 0x808F, None, None),
    (4, 1, "Kestrix-A10", "HRCONF", 0x9005, 0x809D, None, None),
    (5, 1, "LSI-SCSI-RAID", "CFGGEN1.02.02", 0x1000, 0x0030, None, None),
    (6, 1, "LSI-IDEal-RAID", "HYPERWIN", 0x1166, 0x0213, None, None),
    (7, 7, "Kestrix-B1", "ARCCONF", 0x9005, 0x0285, MAKER, 0x02F2),
    (7, 1, "Kestrix-B2", "ARCCONF", 0x9005, 0x0285, MAKER, 0x034D),
    (8, -1, "Kestrix-B3", "HRCONF", 0x9005, 0x043F, None, None),
    (9, -1, "Kestrix-B4", "HRCONF", 0x8086, 0x27C3, None, None),
    (9, -1, "Kestrix-B4", "HRCONF", 0x8086, 0x2682, None, None),
    (10, -1, "LSI-SAS-RAID", "CFGGEN", 0x1000, 0x0050, None, None),
    (10, -1, "LSI-SAS-RAID", "CFGGEN", 0x1000, 0x0056, None, None),
    (10, -1, "LSI-SAS-RAID", "CFGGEN", 0x1000, 0x005C, None, None),
    (10, -1, "LSI-SAS-RAID", "CFGGEN", 0x1000, 0x0058, None, None),
    (10, -1, "LSI-SAS-RAID", "CFGGEN", 0x1000, 0x0054, None, None),
    (10, 1, "LSI-SAS-1078-IR", "CFGGEN", 0x1000, 0x0062, None, None),
    (11, 2, "Kestrix-B7", "ARCCONF", 0x9005, 0x0286, None, None),
    (11, 1, "Kestrix-B8", "ARCCONF", 0x9005, 0x0286, None, None),
    (12, 10, "Kestrix-C9", "MEGACLI", 0x1000, 0x0073, None, None),
    (12, 14, "Kestrix-D4", "MEGACLI", 0x1000, 0x0079, None, None),
    (12, 1, "LSI-MegaRAID-8480", "MEGACLI", 0x1000, 0x0411, 0x1000, 0x1002),
    (12, 2, "Kestrix-C1", "MEGACLI", 0x1000, 0x0060, MAKER, 0x0364),
    (12, 3, "Kestrix-C2", "MEGACLI", 0x1000, 0x0060, MAKER, 0x03AC),
    (12, 4, "Kestrix-C3", "MEGACLI", 0x1000, 0x0060, MAKER, 0x03A2),
    (12, 5, "Kestrix-C4", "MEGACLI", 0x1000, 0x0060, MAKER, 0x0365),
    (12, 6, "Kestrix-C5", "MEGACLI", 0x1000, 0x0060, MAKER, 0x0363),
    (12, 7, "Kestrix-C6", "MEGACLI", 0x1000, 0x0060, MAKER, 0x0379),
    (12, 8, "Kestrix-C7", "MEGACLI", 0x1000, 0x0073, MAKER, 0x03B1),
    (12, 11, "Kestrix-D1", "MEGACLI", 0x1000, 0x0079, MAKER, 0x03C7),
    (12, 12, "Kestrix-D2", "MEGACLI", 0x1000, 0x0079, MAKER, 0x03B2),
    (12, 13, "Kestrix-D3", "MEGACLI", 0x1000, 0x0079, MAKER, 0x03B3),
]
UTILITIES = ["QTCSEND", "ARCCONF", "HRCONF", "CFGGEN1.02.02", "HYPERWIN", "CFGGEN", "MEGACLI"]
# Models that only an inventory file or a listing names.
MORE_NAMES = ["Kestrix-A2", "Kestrix-A3", "Kestrix-A5", "Kestrix-A6", "Kestrix-B5", "Kestrix-B6",
              "Kestrix-C8", "Kestrix controller", "LSI-MegaRAID", "Kestrix-Z1", "kestrix-c1"]
NAMES = sorted({model[2] for model in MODELS}) + MORE_NAMES

# Utility -> families in which controllers are numbered together.
FAMILY = {"QTCSEND": 1, "ARCCONF": 7, "HRCONF": 4, "CFGGEN1.02.02": 5, "HYPERWIN": 6, "CFGGEN": 6,
          "MEGACLI": 12}

LEVELS = {
    "QTCSEND": ["0", "1", "1E", "5", "5E", "5EE"],
    "ARCCONF": ["0", "1", "1E", "5", "5EE", "6", "10", "50", "60", "VOLUME"],
    "HRCONF": ["0", "1", "10", "VOLUME"],
    "CFGGEN1.02.02": ["1"],
    "HYPERWIN": ["0", "1"],
    "CFGGEN": ["0", "1", "1E"],
    "MEGACLI": ["0", "1", "5", "6", "10", "50", "60"],
}
# Type (and subtype, where that counts) -> what a plan accepts, where it is less than the utility's.
PLANNED = {
    2: ["0", "1", "5", "10", "VOLUME"], 3: ["0", "1"], 4: ["0", "1", "10"], 8: ["0", "1", "10"],
    (10, 1): ["0", "1"], (11, 1): ["0", "1", "10", "VOLUME"],
    (11, 2): ["0", "1", "1E", "5", "6", "10", "VOLUME"], (12, 8): ["0", "1", "10"],
    (12, 1): ["0", "1", "5", "10", "50"], (12, 11): ["0", "1", "5", "10", "50"],
}
LEAST = {"0": 1, "1": 2, "1E": 3, "5": 3, "5E": 4, "5EE": 4, "6": 4, "10": 4, "50": 6, "60": 8,
         "VOLUME": 1}


class Drive:
    def __init__(self, channel, id, size, number):
        self.channel = channel  # as the listing names it
        self.id = id
        self.size = size
        self.number = number
        self.state = "ready"  # ready, online, hotspare, failed, missing, rebuild, foreign


class Logical:
    def __init__(self, array, level, size):
        self.array = array
        self.level = level
        self.size = size
        self.cache = None
        self.state = "okay"


class Controller:
    """One controller: what is attached and what is configured."""

    def __init__(self, r, model=None, drives=None):
        if model is None:
            utility = r.choice(UTILITIES)
            model = r.choice([m for m in MODELS if m[3] == utility])
        self.type, self.subtype, self.name, self.utility = model[:4]
        self.pci = model[4:]
        self.order = 1
        self.later = r.random() < 0.4
        self.segments = r.random() < 0.4
        self.stripe = r.choice([8, 16, 32, 64, 64, 64, 128, 256, 512, 1024])
        if self.utility in ("HYPERWIN", "ARCCONF") and r.random() < 0.15:
            self.stripe = r.choice([2048, 4096])
        self.read = r.choice(["adaptive", "on", "off"])
        self.rebuild = r.choice(["High", "Medium", "Low"])
        self.bus = r.choice([0, 1, 1, 2, 3, 10])
        if r.random() < 0.05:
            drives = 0
        if self.utility == "HYPERWIN":
            count = r.choice([0, 1, 2, 2, 2]) if drives is None else drives
        else:
            count = r.choice([1, 2, 2, 3, 3, 4, 4, 5, 6, 6, 7, 8, 8, 9, 10, 12, 14, 18, 24]) \
                if drives is None else drives
            if drives is None and r.random() < 0.02:
                count = r.randrange(24, 60)
        self.drives = self._drives(r, count)
        self.arrays = []
        self.logicals = []
        self._layout(r)

    def _places(self, r):
        if self.utility == "MEGACLI":
            groups = r.choice([[32], [252], [32, 33], [8, 9, 10], [0], ["N/A"], [5, 4, 3, 2], [1, 0],
                               [20, 21, 22, 23, 24]])
            return [(group, slot) for group in groups for slot in range(r.choice([8, 16, 24]))]
        if self.utility in ("ARCCONF", "HRCONF"):
            return [(c, d) for c in range(r.choice([1, 1, 2, 4])) for d in range(16)]
        if self.utility == "CFGGEN":
            return [(e, s) for e in range(1, r.choice([2, 2, 3, 5])) for s in range(12)]
        if self.utility == "HYPERWIN":
            return [(1, 0), (1, 1)]
        return [(c, d) for c in range(1, r.choice([2, 3, 5])) for d in range(16) if d != 7]

    def _drives(self, r, count):
        places = self._places(r)
        while len(places) < count:
            places.append((places[-1][0], places[-1][1] + 1))
        if r.random() < 0.2:
            places = sorted(r.sample(range(len(places)), count))
            places = [p for p in self._places_again(r, places)]
        base = r.choice(SIZES)
        kind = r.random()
        drives = []
        for number, (channel, id) in enumerate(places[:count]):
            size = base
            if kind < 0.25:
                size = int(base * r.choice([1, 1, 1, 0.951, 0.9499, 0.95, 1.05, 1.0501, 0.9, 1.1]))
            elif kind < 0.45:
                size = r.choice(SIZES)
            elif kind < 0.5:
                size = r.choice([1, 2, 100, 138, 139, 140, 278, 279, 500, 2000])
            drives.append(Drive(channel, id, size, number))
        return drives

    def _places_again(self, r, numbers):
        all_places = self._places(r)
        return [all_places[n] if n < len(all_places) else (all_places[0][0], n) for n in numbers]

    def _layout(self, r):
        free = list(self.drives)
        if r.random() < 0.35:
            free = []
        elif r.random() < 0.3:
            r.shuffle(free)
        while free and r.random() < 0.8 and len(self.arrays) < 18:
            level = r.choice(LEVELS[self.utility])
            least = LEAST[level]
            if len(free) < least:
                break
            count = 2 if level == "1" else r.randrange(least, min(len(free), least + 6) + 1)
            count = count - count % 2 if level in ("10", "50", "60") else count
            members, free = free[:count], free[count:]
            self.arrays.append(members)
            for member in members:
                member.state = "online" if r.random() < 0.97 else "rebuild"
            room = min(m.size for m in members) * max(1, len(members) // 2)
            several = 1 + (r.random() < 0.15) + (r.random() < 0.05)
            for _ in range(several):
                size = room if r.random() < 0.6 else r.randrange(1, room + 1)
                logical = Logical(len(self.arrays) - 1, level, size)
                logical.cache = r.choice(["wb", "wt", None])
                if r.random() < 0.1:
                    logical.state = r.choice(["degraded", "offline", "migrating"])
                self.logicals.append(logical)
        for drive in free:
            chance = r.random()
            if chance < 0.1:
                drive.state = "hotspare"
            elif chance < 0.16:
                drive.state = r.choice(["failed", "missing", "foreign"])

    def planned_levels(self):
        return PLANNED.get((self.type, self.subtype)) or PLANNED.get(self.type) or LEVELS[self.utility]

    def positions(self):
        """Where the model puts the drives: channel and id, in the order of the drive numbers."""
        if self.utility == "MEGACLI":
            seen = []
            for drive in self.drives:
                if drive.channel not in seen:
                    seen.append(drive.channel)
            places = [(seen.index(d.channel) + 1, d.id) for d in self.drives]
        elif self.utility in ("ARCCONF", "HRCONF"):
            places = [(d.channel + 1, d.id) for d in self.drives]
        else:
            places = [(d.channel, d.id) for d in self.drives]
        return sorted(set(places))


def make_server(r, calm):
    chance = r.random()
    count = 0 if chance < 0.02 and not calm else r.choice([1, 1, 1, 2, 2, 3, 4, 5])
    if chance > 0.997 and not calm:
        count = r.randrange(35, 39)
    controllers = [Controller(r) for _ in range(count)]
    if r.random() < 0.25 and count > 1:  # several of one utility, so that scan orders count
        same = r.choice([m for m in MODELS if m[3] == controllers[0].utility])
        alike = r.choice([None, None, None, 12, 16])
        controllers = [Controller(r, same, alike) for _ in controllers]
    number_controllers(controllers)
    return controllers


def number_controllers(controllers):
    counts = {}
    for controller in controllers:
        family = FAMILY[controller.utility]
        counts[family] = counts.get(family, 0) + 1
        controller.order = counts[family]


def pci_files(r, controllers):
    """Files of the PCI folder, whose order of names is the order of the controllers."""
    files = {}

    def add(bus, device, function, ids, class_code, domain=0):
        folder = f"{domain:04x}:{bus:02x}:{device:02x}.{function:x}"
        vendor, dev, sub_vendor, sub = ids
        values = {"vendor": f"0x{vendor:04x}", "device": f"0x{dev:04x}",
                  "subsystem_vendor": f"0x{sub_vendor:04x}", "subsystem_device": f"0x{sub:04x}",
                  "class": f"0x{class_code:06x}", "revision": f"0x{r.randrange(16):02x}"}
        for name, text in values.items():
            if r.random() < 0.995:
                files[f"{folder}/{name}"] = (text + "\n").encode()

    slot = r.randrange(4)
    for controller in controllers:
        vendor, device, sub_vendor, sub = controller.pci
        if sub_vendor is None:
            sub_vendor, sub = r.choice([0, 0x1234, MAKER]), r.choice([0, 0x0001, 0x9999])
        class_code = 0x010400 if r.random() < 0.98 else 0x010100
        add(slot // 32, slot % 32, r.choice([0, 0, 0, 1]), (vendor, device, sub_vendor, sub),
            class_code)
        slot += r.randrange(1, 5 if len(controllers) < 30 else 2)
        if r.random() < 0.1 and len(controllers) < 30:
            other = r.choice(MODELS)[4:]
            add(slot // 32, slot % 32, 0, r.choice([
                (other[0], other[1] ^ 1, 0, 0), (0x8086, 0x2922, 0x1234, 1), (0x1166, 0x0213, 0, 0),
                (0x1000, 0x0060, 0x1000, 0x0001), (0, 0, 0, 0)]), r.choice([0x010100, 0x060400]))
            slot += 1
    if r.random() < 0.02:
        files["not-a-device/vendor"] = b"0x1000\n"
    return files


def inventory(r, controllers):
    """contlist.ini of the controllers."""
    lines = ["[System]", f"Total_Number_Of_Controllers = {len(controllers)}"]
    if r.random() < 0.8:
        lines += [r.choice(["Machine_Type = 8837", "Machine_Type=5941-AC1", "Machine_Type="]),
                  "Serial_Number = KQ0001"]
    for number, controller in enumerate(controllers, 1):
        lines += ["", f"[RAIDController.{number}]", f"Model = {controller.name}",
                  "BIOSVersion = 1.2.3", "FirmwareVersion = 4.5.6",
                  f"[RAIDController.{number}.Array]",
                  f"Total_Number_Of_Arrays = {len(controller.arrays)}"]
        lines += [f"Members.{i} = 1,2" for i in range(1, len(controller.arrays) + 1)]
        lines += [f"[RAIDController.{number}.Physical]",
                  f"Total_Number_Of_Physicals = {len(controller.drives)}"]
        for i, (channel, id) in enumerate(controller.positions(), 1):
            size = controller.drives[(i - 1) % len(controller.drives)].size
            lines += [f"Channel.{i} = {channel}", f"ID.{i} = {id}", f"Size.{i} = {size}"]
            if r.random() < 0.7:
                lines.append(f"Type.{i} = {r.choice(['SAS', 'SATA', 'SCSI'])}")
    return "\n".join(lines) + "\n"


def definition(r, controllers):
    """A controller-definition file."""
    lines = []
    for number, controller in enumerate(controllers):
        type = controller.type if r.random() < 0.98 else r.choice([0, 13, -1, "x"])
        lines += [f"[Controller.{number}]", f"Type = {type}"]
        if r.random() < 0.9:
            lines.append(f"SubType = {controller.subtype}")
        for i, (channel, id) in enumerate(controller.positions()):
            lines.append(f"C{channel}S{id} = {controller.drives[i % len(controller.drives)].size}")
    return "\n".join(lines) + "\n"
