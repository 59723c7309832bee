#!/usr/bin/env python3
"""Cuts a loopback capture of GigE Vision traffic into seed files for the wire fuzz targets.

usage: fuzz_seeds_from_capture.py CAPTURE.pcap GEV_SEEDS_DIR SDK_SEEDS_DIR

Each seed is written in the layout its target reads (see the targets' sources): a few fixed
bytes, then datagrams as a 16-bit big-endian length and the bytes. Seeds are named by a
hash of their content, so recording again only adds what is new.
"""
import hashlib
import os
import struct
import sys

GVCP_PORT = 3956
READREG, WRITEREG, READMEM, WRITEMEM, FORCEIP = 0x80, 0x82, 0x84, 0x86, 0x04
EVENT, EVENTDATA, DISCOVERY_ACK, PENDING_ACK = 0xC0, 0xC2, 0x03, 0x89
ACK_KINDS = {READREG: 0, WRITEREG: 1, READMEM: 2, WRITEMEM: 3, FORCEIP: 4}
SERIAL_COUNT, SERIAL_DATA, SERIAL_TRANSMIT = 0x80000, 0x80004, 0x80104
SERIAL_CHOICES = {b"gtm": 0, b"gha": 1, b"gag": 2, b"gct": 3, b"gfv": 4}
URL_REGISTER = 0x200
MAX_SEEDS = 24


def udp_datagrams(path):
    """(source ip, source port, destination ip, destination port, payload) of a pcap file."""
    with open(path, "rb") as f:
        data = f.read()
    link = struct.unpack_from("<I", data, 20)[0]
    offset, skip = 24, {1: 14, 0: 4, 113: 16}.get(link, 14)
    while offset + 16 <= len(data):
        length = struct.unpack_from("<I", data, offset + 8)[0]
        frame = data[offset + 16: offset + 16 + length]
        offset += 16 + length
        ip = frame[skip:]
        if len(ip) < 20 or ip[0] >> 4 != 4 or ip[9] != 17:
            continue
        udp = ip[(ip[0] & 15) * 4:]
        sport, dport, ulen = struct.unpack_from(">HHH", udp)
        yield ip[12:16], sport, ip[16:20], dport, bytes(udp[8:ulen])


def framed(*datagrams):
    return b"".join(struct.pack(">H", len(d)) + d for d in datagrams)


class Seeds:
    def __init__(self):
        self.by_target = {}

    def add(self, target, content):
        self.by_target.setdefault(target, {})[hashlib.sha1(content).hexdigest()[:16]] = content

    def write(self, directories):
        for target, seeds in self.by_target.items():
            folder = directories[target]
            os.makedirs(folder, exist_ok=True)
            chosen = spread(seeds)
            for name, content in chosen:
                with open(os.path.join(folder, name), "wb") as f:
                    f.write(content)
            print(f"{target}: {len(chosen)} seeds of {len(seeds)} in {folder}")


def spread(seeds):
    """A few seeds of each kind (first byte), of sizes from the smallest to the largest."""
    kinds = {}
    for name, content in sorted(seeds.items(), key=lambda item: len(item[1])):
        kinds.setdefault(content[:1], []).append((name, content))
    share = max(2, MAX_SEEDS // len(kinds))
    chosen = []
    for items in kinds.values():
        step = max(1, len(items) // share)
        chosen += items[::step][:share]
    return chosen


def command_fields(command):
    """(count, address) of a read request, as the acknowledge target's fixed bytes want."""
    code = struct.unpack_from(">H", command, 2)[0]
    payload = command[8:]
    if code == READREG:
        return len(payload) // 4, struct.unpack_from(">I", payload)[0] if payload else 0
    if code == READMEM and len(payload) >= 8:
        return struct.unpack_from(">H", payload, 6)[0], struct.unpack_from(">I", payload)[0]
    return 0, 0


class Cutter:
    def __init__(self, seeds):
        self.seeds = seeds
        self.commands = {}  # (host, port, req_id) -> command datagram
        self.pending = {}
        self.serial = None  # [choice, device bytes] of the serial exchange under way
        self.url = None
        self.description = {}

    def datagram(self, src, sport, dst, dport, payload):
        if len(payload) < 8:
            return
        if payload[0] == 0x42:
            self.command(src, sport, dport, payload)
        elif sport == GVCP_PORT:
            self.ack(dst, dport, payload)

    def command(self, src, sport, dport, payload):
        code = struct.unpack_from(">H", payload, 2)[0]
        if code in (EVENT, EVENTDATA):
            self.seeds.add("event_messages", framed(payload))
            return
        if dport != GVCP_PORT:
            return
        self.commands[(src, sport, payload[6:8])] = payload
        self.seeds.add("gvcp_acks", bytes([5, 0, 0, 0, 0, 0, 0, 0, 0]) + framed(payload))
        if code == WRITEMEM and struct.unpack_from(">I", payload, 8)[0] == SERIAL_TRANSMIT:
            self.finish_serial()
            text = payload[16:19]
            self.serial = [SERIAL_CHOICES.get(text, 5), b""]

    def ack(self, host, port, ack):
        code = struct.unpack_from(">H", ack, 2)[0]
        if code == DISCOVERY_ACK:
            self.seeds.add("discovery_acks", framed(ack))
            return
        key = (host, port, ack[6:8])
        if code == PENDING_ACK:
            self.pending.setdefault(key, []).append(ack)
            return
        command = self.commands.pop(key, None)
        if command is None:
            return
        command_code = struct.unpack_from(">H", command, 2)[0]
        if command_code not in ACK_KINDS:
            return
        count, address = command_fields(command)
        fixed = struct.pack(">BHHI", ACK_KINDS[command_code], count,
                            struct.unpack_from(">H", ack, 6)[0], address)
        self.seeds.add("gvcp_acks", fixed + framed(*self.pending.pop(key, []), ack))
        if struct.unpack_from(">H", ack, 0)[0] == 0:
            self.answer(command_code, count, address, ack[8:])

    def answer(self, command_code, count, address, payload):
        data = payload if command_code == READREG else payload[4:]
        if command_code not in (READREG, READMEM):
            return
        if address == URL_REGISTER and command_code == READMEM:
            self.url_answer(data)
        elif self.url and self.url[1] <= address < self.url[1] + self.url[2]:
            self.description[address - self.url[1]] = data
        if self.serial is None:
            return
        if address == SERIAL_COUNT and len(data) >= 4:
            waiting = struct.unpack_from(">I", data)[0]
            if 0 < waiting <= 256:
                self.serial[1] += bytes([waiting - 1])
        elif address == SERIAL_DATA:
            self.serial[1] += data

    def url_answer(self, data):
        self.finish_description()
        text = data.split(b"\0")[0]
        fields = [f for f in text.split(b";") if f]
        try:
            self.url = (text, int(fields[1], 16), int(fields[2], 16))
        except (IndexError, ValueError):
            self.seeds.add("description_url", text)
            self.url = None

    def finish_serial(self):
        if self.serial and self.serial[1]:
            self.seeds.add("serial_answers", bytes([self.serial[0]]) + self.serial[1])
        self.serial = None

    def finish_description(self):
        if not self.url:
            return
        content = bytearray()
        for offset in sorted(self.description):
            if offset == len(content):
                content += self.description[offset]
        self.seeds.add("description_url", self.url[0] + b"\0" + bytes(content[:60000]))
        self.description = {}
        self.url = None

    def finish(self):
        self.finish_serial()
        self.finish_description()


def main():
    capture, gev_dir, sdk_dir = sys.argv[1:4]
    seeds = Seeds()
    cutter = Cutter(seeds)
    for datagram in udp_datagrams(capture):
        cutter.datagram(*datagram)
    cutter.finish()
    seeds.write({
        "gvcp_acks": os.path.join(gev_dir, "gvcp_acks"),
        "discovery_acks": os.path.join(gev_dir, "discovery_acks"),
        "event_messages": os.path.join(gev_dir, "event_messages"),
        "serial_answers": os.path.join(sdk_dir, "serial_answers"),
        "description_url": os.path.join(sdk_dir, "description_url"),
    })


if __name__ == "__main__":
    main()
