#!/usr/bin/python3
"""Mutates the bytes of sound archives and compares how they are read with Python's zipfile:

    mutated_archives.py --reader PROGRAM --archives DECK... [--count N]

Each archive must be read whole or refused with its reason, and what is read must agree with Python's
reader to the byte. The mutations are the same in every run.
"""
import argparse
import pathlib
import random
import struct
import subprocess
import sys
import tempfile
import zipfile
import zlib


def records(data):
    """Where the directory's records begin."""
    end = data.rfind(b"PK\5\6")
    at, = struct.unpack_from("<I", data, end + 16)
    while data[at:at + 4] == b"PK\1\2":
        yield at
        name, extra, comment = struct.unpack_from("<HHH", data, at + 28)
        at += 46 + name + extra + comment


def headers(data):
    for record in records(data):
        yield struct.unpack_from("<I", data, record + 42)[0]


def patch(data, at, form, value):
    data = bytearray(data)
    struct.pack_into(form, data, at, value)
    return bytes(data)


def in_headers(offset, form, values):
    return lambda rng, data: patch(data, rng.choice(list(headers(data))) + offset, form, rng.choice(values))


def in_records(offset, form, values):
    return lambda rng, data: patch(data, rng.choice(list(records(data))) + offset, form, rng.choice(values))


def in_end(offset, form, values):
    return lambda rng, data: patch(data, data.rfind(b"PK\5\6") + offset, form, rng.choice(values))


def flipped(rng, data):
    at = rng.randrange(len(data))
    return data[:at] + bytes([data[at] ^ 1 << rng.randrange(8)]) + data[at + 1:]


def flipped_in_directory(rng, data):
    at = rng.randrange(data.find(b"PK\1\2"), len(data))
    return data[:at] + bytes([data[at] ^ 1 << rng.randrange(8)]) + data[at + 1:]


def cut(rng, data):
    return data[:rng.randrange(1, len(data))]


def piece_out(rng, data):
    at = rng.randrange(len(data))
    return data[:at] + data[at + rng.randrange(1, 64):]


def more_at_the_end(rng, data):
    return data + rng.randbytes(rng.choice((1, 2, 22, 300)))


def more_in_front(rng, data):
    return rng.randbytes(rng.choice((1, 40))) + data


def one_record_twice(rng, data):
    """The directory's last record takes the place of another of its length, or follows itself."""
    places = list(records(data))
    end = data.rfind(b"PK\5\6")
    last = data[places[-1]:end]
    data = bytearray(data[:end] + last + data[end:])
    end += len(last)
    count, length = len(places) + 1, end - places[0]
    struct.pack_into("<HHI", data, end + 8, count, count, length)
    return bytes(data)


def two_records_change_places(rng, data):
    places = [*records(data), data.rfind(b"PK\5\6")]
    pieces = [data[a:b] for a, b in zip(places, places[1:])]
    first, second = rng.sample(range(len(pieces)), 2)
    pieces[first], pieces[second] = pieces[second], pieces[first]
    return data[:places[0]] + b"".join(pieces) + data[places[-1]:]


SMALL = (0, 1, 2, 8, 9, 99, 0xFFFF)
LARGE = (0, 1, 30, 5000, 0x7FFFFFFF, 0xFFFFFFF0, 0xFFFFFFFF)
MUTATIONS = (
    in_headers(4, "<H", SMALL), in_headers(6, "<H", (0, 1, 2, 6, 8, 0x800, 0x808)), in_headers(8, "<H", (0, 8, 12)),
    in_headers(10, "<I", LARGE), in_headers(14, "<I", LARGE), in_headers(18, "<I", LARGE), in_headers(22, "<I", LARGE),
    in_headers(26, "<H", SMALL), in_headers(28, "<H", SMALL), in_headers(30, "<B", (0, 47, 92, 255)),
    in_records(6, "<H", SMALL), in_records(8, "<H", (0, 1, 8, 0x800)), in_records(10, "<H", (0, 8, 12, 99)),
    in_records(12, "<I", LARGE), in_records(16, "<I", LARGE), in_records(20, "<I", LARGE), in_records(24, "<I", LARGE),
    in_records(28, "<H", SMALL), in_records(30, "<H", SMALL), in_records(38, "<I", LARGE), in_records(42, "<I", LARGE),
    in_records(46, "<B", (0, 47, 92, 255)),
    in_end(4, "<H", SMALL), in_end(8, "<H", SMALL), in_end(10, "<H", SMALL), in_end(12, "<I", LARGE),
    in_end(16, "<I", LARGE), in_end(20, "<H", SMALL),
    flipped, flipped, flipped, flipped_in_directory, flipped_in_directory, cut, piece_out, more_at_the_end,
    more_in_front, one_record_twice, two_records_change_places,
)


def other_reader(path):
    """Name, size and CRC of each part; None when the other reader takes the file for no archive."""
    try:
        with zipfile.ZipFile(path) as archive:
            found = []
            for info in archive.infolist():
                if info.filename.endswith("/"):
                    continue
                data = archive.read(info)
                found.append((info.orig_filename, len(data), zlib.crc32(data)))
            return found
    except Exception as problem:  # pylint: disable=broad-exception-caught
        return str(problem)


def judge(line, path):
    """What is wrong with the reader's answer, or nothing; and whether it was read."""
    word, _, rest = line.partition("\t")
    if word == "refused":
        return ("" if rest.endswith(".") else f"gives no reason: {line!r}"), False
    if word != "read":
        return f"neither read nor refused: {line[:200]!r}", False
    fields = rest.split("\t")
    ours = [(fields[i], int(fields[i + 1]), int(fields[i + 2], 16)) for i in range(0, len(fields), 3)]
    theirs = other_reader(path)
    return ("" if ours == theirs else f"read otherwise: {str(theirs)[:300]}"), True


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--reader", required=True)
    parser.add_argument("--archives", required=True, nargs="+", type=pathlib.Path)
    parser.add_argument("--count", type=int, default=300)
    options = parser.parse_args()
    failed = read = 0
    with tempfile.TemporaryDirectory() as name:
        paths = []
        for number in range(options.count):
            rng = random.Random(number)
            source = options.archives[number % len(options.archives)].read_bytes()
            path = pathlib.Path(name) / f"{number}.pptx"
            path.write_bytes(MUTATIONS[number % len(MUTATIONS)](rng, source))
            paths.append(path)
        run = subprocess.run([options.reader, *paths], stdout=subprocess.PIPE, check=True)
        lines = run.stdout.decode("utf-8", "surrogateescape").splitlines()
        if len(lines) != len(paths):
            sys.exit(f"{len(lines)} answers for {len(paths)} archives")
        for path, line in zip(paths, lines):
            fault, was_read = judge(line, path)
            read += was_read
            failed += bool(fault)
            if fault:
                print(f"{path.name}: {fault}")
    print(f"{len(paths)} archives: {read} read, {len(paths) - read} refused, {failed} wrongly")
    # Were all refused or all read, nothing would have been compared.
    sys.exit(1 if failed or read < options.count // 10 or read == options.count else 0)


if __name__ == "__main__":
    main()
