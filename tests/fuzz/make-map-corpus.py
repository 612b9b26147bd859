#!/usr/bin/env python3
"""Writes the stored inputs of the street map's tile decoder: a good vector tile and the damaged
and hostile ones the decoder was written against, so every test run replays them.
Run from the repository root: python3 tests/fuzz/make-map-corpus.py"""
import gzip, os

root = os.path.join(os.path.dirname(os.path.abspath(__file__)), "corpus", "vector-tile")


def varint(n):
    out = bytearray()
    while True:
        byte = n & 0x7F
        n >>= 7
        if n:
            out.append(byte | 0x80)
        else:
            out.append(byte)
            return bytes(out)


def field(number, wire, payload):
    if wire == 0:
        return varint(number << 3) + varint(payload)
    return varint((number << 3) | 2) + varint(len(payload)) + payload


def zigzag(n):
    return (n << 1) ^ (n >> 31)


def command(cid, count):
    return (cid & 7) | (count << 3)


def packed(values):
    return b"".join(varint(v) for v in values)


def line(points):
    x = y = 0
    out = [command(1, 1)]
    for i, (px, py) in enumerate(points):
        if i == 1:
            out.append(command(2, len(points) - 1))
        out += [zigzag(px - x), zigzag(py - y)]
        x, y = px, py
    return out


def feature(kind, geometry, tags):
    return field(2, 2, packed(tags)) + field(3, 0, kind) + field(4, 2, packed(geometry))


def value(text):
    return field(1, 2, text.encode())


def layer(name, features, keys, values, extent=4096):
    body = field(15, 0, 2) + field(1, 2, name.encode())
    for f in features:
        body += field(2, 2, f)
    for k in keys:
        body += field(3, 2, k.encode())
    for v in values:
        body += field(4, 2, value(v))
    return field(3, 2, body + field(5, 0, extent))


def write(name, data):
    os.makedirs(root, exist_ok=True)
    with open(os.path.join(root, name), "wb") as f:
        f.write(data)


street = feature(2, line([(0, 2048), (4096, 2048)]), [0, 0, 1, 1])
ring = [command(1, 1), zigzag(1000), zigzag(1000), command(2, 3), zigzag(2000), 0, 0, zigzag(2000), zigzag(-2000), 0,
        command(7, 1)]
park = feature(3, ring, [0, 2])
good = layer("road", [street], ["class", "name"], ["street", "Línea"]) + layer("landuse", [park], ["class", "name"],
                                                                            ["street", "Línea", "park"])
write("good.mvt", good)
write("good.mvt.gz", gzip.compress(good))
write("truncated.mvt", good[: len(good) // 2])
write("not-gzip.gz", b"\x1f\x8b\x08\x00" + b"\xff" * 40)
# A LineTo that claims more points than follow it.
write("past-the-end.mvt", layer("road", [feature(2, [command(1, 1), 2, 2, command(2, 50), 2, 2], [0, 0])], ["class"], ["street"]))
# Attribute indexes beyond the layer's keys and values.
write("bad-key.mvt", layer("road", [feature(2, line([(0, 0), (10, 10)]), [7, 0])], ["class"], ["street"]))
write("bad-value.mvt", layer("road", [feature(2, line([(0, 0), (10, 10)]), [0, 9])], ["class"], ["street"]))
# A layer the style doesn't know, and a feature of unknown type: nothing to draw, nothing wrong.
write("unknown-layer.mvt", layer("aerodrome", [feature(0, [], [])], [], []))
# A million-point line, small once gzipped: refused by the point budget, not followed.
million = [command(1, 1), 0, 0, command(2, 1000000)] + [2, 2] * 1000000
write("million-points.mvt.gz", gzip.compress(layer("road", [feature(2, million, [0, 0])], ["class"], ["street"])))
# A ring closed before it has points, and a zero extent.
write("early-close.mvt", layer("water", [feature(3, [command(7, 1)], [])], [], []))
write("zero-extent.mvt", layer("road", [street], ["class", "name"], ["street", "x"], extent=0))
# Coordinates that would overflow a 32-bit sum.
write("overflow.mvt", layer("road", [feature(2, [command(1, 1), zigzag(2**31 - 1), 0, command(2, 2)] + [zigzag(2**31 - 1), 0] * 2,
                                             [])], [], []))
