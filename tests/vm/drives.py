"""Drives of a machine that lose their power: what a drive had been told to keep is there afterwards, of what it
was told later something is."""

import random
import struct
import subprocess
import zlib
from pathlib import Path

SECTOR = 512
FLUSH, DISCARD = 1, 4
# What stands in a log: a sector of its own, then for each order a sector with this head, then its data.
ENTRY = struct.Struct("<QQQQ")


def make_image(file, megabytes, folder):
    """A file system of type ext4 with the content of a folder."""
    with open(file, "wb") as out:
        out.truncate(megabytes << 20)
    subprocess.run(["/sbin/mke2fs", "-q", "-t", "ext4", "-d", folder, file], check=True,
                   stdout=subprocess.DEVNULL)


def write_sparse(file, content):
    """Blocks of zeros take no room."""
    block = 4096
    with open(file, "wb") as out:
        for begin in range(0, len(content), block):
            piece = content[begin:begin + block]
            if piece.count(0) != len(piece):
                out.seek(begin)
                out.write(piece)
        out.truncate(len(content))


class PlainDrive:
    """A drive that keeps everything."""

    has_id = False  # one of the whole world, as drives of servers have

    def __init__(self, image, name):
        self.image, self.name = Path(image), name

    def nodes(self):
        return ["-blockdev", f"driver=file,node-name={self.name},filename={self.image},cache.no-flush=on"]

    def devices(self):
        wwn = f",wwn=0x5{zlib.crc32(self.name.encode()):015x}" if self.has_id else ""
        return [*self.nodes(), "-device", f"scsi-hd,drive={self.name},serial={self.name}{wwn}"]


class LoggedDrive(PlainDrive):
    """A drive that begins as a copy of `image` and notes in which order it was told what."""

    def __init__(self, image, name, work):
        super().__init__(Path(work) / f"{name}.img", name)
        self.begin = Path(image).read_bytes()
        self.log = Path(work) / f"{name}.log"
        write_sparse(self.image, self.begin)
        self.log.write_bytes(b"")
        self.entries = []   # (kind, sector, where its data stands in the log, its bytes, bytes of the drive)
        self.at = SECTOR

    def nodes(self):
        name = self.name
        return ["-blockdev", f"driver=file,node-name={name}-d,filename={self.image},cache.no-flush=on",
                "-blockdev", f"driver=file,node-name={name}-l,filename={self.log},cache.no-flush=on",
                "-blockdev", f"driver=blklogwrites,node-name={name},file={name}-d,log={name}-l"]

    def told(self):
        """How many orders the drive has been given, as far as they are noted."""
        with open(self.log, "rb") as log:
            while True:
                log.seek(self.at)
                head = log.read(SECTOR)
                if len(head) < SECTOR:
                    break
                sector, count, kind, _ = ENTRY.unpack_from(head)
                if kind == 0 and count == 0:
                    break
                size = 0 if kind & DISCARD else count * SECTOR
                self.entries.append((kind, sector, self.at + SECTOR, size, count * SECTOR))
                self.at += SECTOR + size
        return len(self.entries)

    def flushes(self, count):
        return sum(1 for entry in self.entries[:count] if entry[0] & FLUSH)

    def after_cut(self, count, seed, file):
        """Makes the image that remains when the power goes behind the first `count` orders: all that was
        told before the last flush among them, and of the others each or not, as `seed` says. How many
        were lost."""
        chance = random.Random(seed)
        orders = self.entries[:count]
        kept = max((i for i, entry in enumerate(orders) if entry[0] & FLUSH), default=-1)
        image = bytearray(self.begin)
        log = self.log.read_bytes()
        lost = 0
        for index, (kind, sector, place, size, length) in enumerate(orders):
            if length == 0:
                continue
            if index > kept and chance.random() < 0.5:
                lost += 1
                continue
            begin = sector * SECTOR
            image[begin:begin + length] = bytes(length) if kind & DISCARD else log[place:place + size]
        write_sparse(file, image)
        return lost
