#!/usr/bin/env python3
"""Writes the fuzzers' seeds: small files of the format, whole and damaged, and scripts before them.

usage: make_seeds.py CORPUS_FOLDER

The seeds are committed; this program says how each was made, and makes the same again.
"""
import itertools
import pathlib
import random
import struct
import sys

SIGNATURE = b'\x89SIM\r\n\x1a\n'


def uuid(number):
    return f'{number:012x}4{number:03x}8{number:015x}'.encode()[:32]


def locator(offset, index):
    return struct.pack('<Qi', offset, index)


def string(text):
    raw = text.encode()
    return struct.pack('<I', len(raw)) + raw + b'\0' * (-len(raw) % 4)


def pool(entries, data=b'', length=None, version=6, user=b'FUZZ', count=None, last=False):
    size = 48 + 32 * len(entries) + len(data)
    digits = b'%016d' % (0 if last else size if length is None else length)
    return (SIGNATURE + struct.pack('<b7x', version) + user + digits[-16:]
            + struct.pack('<III', 2, 0, len(entries) if count is None else count)
            + b''.join(entries) + data)


def files():
    """Yields (name, bytes): whole files first, then one damage each."""
    records = locator(0, 0) + locator(4, 1) + locator(9, -1) + string('temperature')
    a, b, c = uuid(1), uuid(2), uuid(3)
    yield 'empty', b''
    yield 'one-pool', pool([a], last=True)
    yield 'one-pool-data', pool([a], records, last=True)
    yield 'two-pools', pool([a], string('mesh')) + pool([b, a], records, last=True)
    yield 'three-pools', pool([a], records) + pool([b, a], records) + pool([c, a, b], records)
    yield 'all-frozen', pool([a], records) + pool([b], records)
    yield 'unknown-references', pool([a, b, c], records, last=True)
    yield 'repeated-reference', pool([a, b, b, a], records, last=True)
    yield 'many-pools', b''.join(pool([uuid(i)], b'x' * (i % 7)) for i in range(70))
    yield 'wide-directory', pool([uuid(i) for i in range(70)], records, last=True)
    yield 'not-hexadecimal', pool([bytes(range(32))], records, last=True)
    yield 'empty-string', pool([a], string('') + string('after'), last=True)
    yield 'lying-string', pool([a], b'\xff\xff\xff\xff' + b'text', last=True)
    yield 'far-locator', pool([a], locator(2**63, 0) + locator(2**64 - 1, 0), last=True)
    yield 'bad-reference', pool([a], locator(0, 7) + locator(0, -9), last=True)
    whole = pool([a], string('mesh')) + pool([b, a], records, last=True)
    for length in range(0, len(whole), 11):
        yield f'cut-{length:03}', whole[:length]
    for length in (0, 1, 47, 48, 79, 80, 81, 92, 93, 228, 10**9, 10**15, 9999999999999999):
        yield f'length-{length}', pool([a], string('mesh'), length=length) + pool([b], records)
    for digits in (b'/' * 16, b':' * 16, b'\0' * 16, b'\xff' * 16, b'\x7f' * 16, b'\x80' * 16,
                   b'000000000000-900', b'18446744073709551'[:16]):
        damaged = bytearray(whole)
        damaged[20:36] = digits
        yield f'digits-{digits.hex()[:12]}', bytes(damaged)
    for count in (0, 2, 3, 5, 255, 65536, 2**27 - 2, 2**27, 2**31 - 1, 2**31, 2**32 - 1):
        yield f'count-{count}', pool([a], records, count=count, last=True)
    for version in (-128, -1, 0, 1, 2, 3, 5, 7, 127):
        yield f'version-{version}', pool([a], records, version=version, last=True)
    for position in range(0, 80, 3):
        damaged = bytearray(whole)
        damaged[position] ^= 0x41
        yield f'flip-{position:02}', bytes(damaged)
    yield 'same-pool-twice', pool([a], records) + pool([a], records, last=True)
    yield 'other-user', pool([a], records, user=b'ELSE', last=True)
    yield 'nested-headers', nested()


def nested():
    """Headers that lie in each other's directories and announce directories that overlap."""
    out = bytearray(64 * 64)
    for i in range(40):
        header = pool([uuid(i)], length=56, count=8)[:48]
        out[i * 56:i * 56 + 48] = header
    return bytes(out)


def scripts(size, number):
    """Yields `number` scripts of `size` bytes, plain ones first, then random ones."""
    yield bytes(size)
    yield bytes(range(size))
    generator = random.Random(20)
    for _ in range(number - 2):
        yield bytes(generator.randrange(256) for _ in range(size))


def seeds():
    every = list(files())
    some = [bytes_ for name, bytes_ in every[:15]]
    for name, data in every:
        yield 'open_file', name, data
    for name, data in every[1:12] + every[-30:]:
        yield 'version_queries', name, data[:16]
    for number, (x, y) in enumerate(itertools.product(some[2:8], some[3:8])):
        three = x + y + x
        cuts = bytes([256 * len(x) // len(three) + 1, 256 * (len(x) + len(y)) // len(three) + 1])
        yield 'three_files', f'{number:02}', cuts + three
    for number, script in enumerate(scripts(32, 12)):
        yield 'locator_streams', f'{number:02}', script + locator(0, 0) + string('node') * 20
    for number, script in enumerate(scripts(48, 24)):
        yield 'calls', f'{number:02}', script + some[number % len(some)]
    for number, text in enumerate(('a', 'abcd', 'temperature', 'x' * 300)):
        yield 'buffer_streams', f'string-{number}', b'\x03' + string(text) + b'\x02\0\0'
    yield 'buffer_streams', 'locator', b'\x01' + locator(5, -1) + b'\x01' + locator(5, 0)
    yield 'buffer_streams', 'lying', b'\x03' + b'\xfd\xff\xff\xff' + b'text'


def main():
    corpus = pathlib.Path(sys.argv[1])
    total = 0
    for target, name, data in seeds():
        folder = corpus / target
        folder.mkdir(parents=True, exist_ok=True)
        (folder / f'seed-{name}').write_bytes(data)
        total += 1
    print(f'{total} seeds')


if __name__ == '__main__':
    main()
