#!/usr/bin/env python3
"""What stands in corvel.dll for the system: exports, imports, version and icon."""

import os
import re
import shutil
import struct
import subprocess
import sys
import unittest
import zlib
from pathlib import Path

BUILD = Path(os.environ['CORVEL_BUILD'])
VERSION = os.environ['CORVEL_VERSION']
LIBRARY = BUILD / 'plugins' / 'corvel.dll'
OBJDUMP = shutil.which('x86_64-w64-mingw32-objdump')

EXPORTS = '''get_api_verion get_plugin_info on_drag_enter on_drag_over on_drop on_gui_colors_change
             on_model_load_v2 on_model_save_v2 on_plugin_load on_plugin_unload
             on_undo_redo_action'''.split()
# What every Windows has.
SYSTEM_LIBRARIES = {'advapi32.dll', 'gdi32.dll', 'kernel32.dll', 'msvcrt.dll', 'ole32.dll',
                    'shell32.dll', 'user32.dll'}

RT_ICON, RT_GROUP_ICON, RT_VERSION = 3, 14, 16


def symbol_table(data):
    """Where it begins, and the number of its symbols."""
    header, = struct.unpack_from('<I', data, 0x3C)
    return struct.unpack_from('<II', data, header + 12)


def section_of(data, wanted):
    """The bytes that the file has of a section. Long names stand behind the symbols."""
    header, = struct.unpack_from('<I', data, 0x3C)
    sections, = struct.unpack_from('<H', data, header + 6)
    optional, = struct.unpack_from('<H', data, header + 20)
    table, symbols = symbol_table(data)
    strings = table + 18 * symbols
    for i in range(sections):
        entry = header + 24 + optional + 40 * i
        name = data[entry:entry + 8].rstrip(b'\0')
        if name.startswith(b'/'):
            start = strings + int(name[1:])
            name = data[start:data.index(b'\0', start)]
        if name == wanted:
            virtual, _, size, offset = struct.unpack_from('<IIII', data, entry + 8)
            return data[offset:offset + min(virtual, size)] if offset else b''
    raise ValueError('no section ' + wanted.decode())


class Resources:
    """The resources of a library, by type: the bytes of each."""

    def __init__(self, data):
        header, = struct.unpack_from('<I', data, 0x3C)
        sections, = struct.unpack_from('<H', data, header + 6)
        optional, = struct.unpack_from('<H', data, header + 20)
        # The third of the data directories, which follow 112 bytes of a 64-bit header.
        root, = struct.unpack_from('<I', data, header + 24 + 112 + 2 * 8)
        self.data = data
        self.by_type = {}
        for i in range(sections):
            entry = header + 24 + optional + 40 * i
            _, address, size, offset = struct.unpack_from('<IIII', data, entry + 8)
            if root and address <= root < address + size:
                self.start = offset + root - address
                self.shift = offset - address
                self.walk(0, None)

    def walk(self, table, kind):
        named, numbered = struct.unpack_from('<HH', self.data, self.start + table + 12)
        for i in range(named + numbered):
            identifier, target = struct.unpack_from('<II', self.data,
                                                    self.start + table + 16 + 8 * i)
            own = identifier if kind is None else kind
            if target & 0x80000000:
                self.walk(target & 0x7FFFFFFF, own)
            else:
                address, size = struct.unpack_from('<II', self.data, self.start + target)
                offset = address + self.shift
                self.by_type.setdefault(own, []).append(self.data[offset:offset + size])


class LibraryFile(unittest.TestCase):

    @classmethod
    def setUpClass(cls):
        cls.dump = subprocess.run([OBJDUMP, '-p', str(LIBRARY)], check=True, capture_output=True,
                                  text=True).stdout
        cls.resources = Resources(LIBRARY.read_bytes()).by_type

    def test_ExportsAreTheEntryPointsAndNothingElse(self):
        table = self.dump.split('[Ordinal/Name Pointer] Table', 1)[1].split('\n\n', 1)[0]
        self.assertEqual(EXPORTS, sorted(re.findall(r'^\s*\[\s*\d+\]\s+(\S+)$', table, re.M)))

    def test_ImportsAreOfTheSystemAlone(self):
        imported = {name.lower() for name in re.findall(r'DLL Name: (\S+)', self.dump)}
        self.assertIn('kernel32.dll', imported)
        self.assertEqual(set(), imported - SYSTEM_LIBRARIES)

    def test_LibraryIsFor64Bit(self):
        self.assertIn('file format pei-x86-64', self.dump)

    def test_VersionIsThatOfTheProject(self):
        resource, = self.resources[RT_VERSION]
        numbers = [int(part) for part in VERSION.split('.')] + [0]
        fixed = resource.index(struct.pack('<I', 0xFEEF04BD))
        high, low = struct.unpack_from('<II', resource, fixed + 8)
        self.assertEqual(numbers, [high >> 16, high & 0xFFFF, low >> 16, low & 0xFFFF])
        texts = dict(self.text_of(resource, key)
                     for key in ('ProductName', 'FileVersion', 'ProductVersion',
                                 'OriginalFilename'))
        self.assertEqual({'ProductName': 'Corvel', 'FileVersion': VERSION,
                          'ProductVersion': VERSION, 'OriginalFilename': 'corvel.dll'}, texts)

    def text_of(self, resource, key):
        start = resource.index((key + '\0').encode('utf-16-le'))
        words = resource[start:start + 400].decode('utf-16-le', 'replace').split('\0')
        return key, next(word for word in words[1:] if word)

    def test_IconHasEverySize(self):
        group, = self.resources[RT_GROUP_ICON]
        count, = struct.unpack_from('<H', group, 4)
        sizes = sorted(group[6 + 14 * i] or 256 for i in range(count))
        self.assertEqual([16, 24, 32, 48, 256], sizes)
        self.assertEqual(count, len(self.resources[RT_ICON]))

    def test_LibraryHasNoSymbolTable(self):
        _, count = symbol_table(LIBRARY.read_bytes())
        self.assertEqual(0, count)

    def test_SymbolsStandInTheFileThatTheLibraryNames(self):
        section = section_of(LIBRARY.read_bytes(), b'.gnu_debuglink')
        name, checksum = section[:-4].rstrip(b'\0').decode(), section[-4:]
        self.assertEqual('corvel.dll.debug', name)
        data = (LIBRARY.parent / name).read_bytes()
        self.assertEqual(struct.pack('<I', zlib.crc32(data)), checksum)
        _, count = symbol_table(data)
        self.assertGreater(count, 10000)
        self.assertIn(b'\0on_plugin_load\0', data)
        self.assertIn(b'_ZN6corvel8MergeJob3Run', data)

    def test_SymbolsAreNoSecondLibrary(self):
        self.assertEqual(b'', section_of((LIBRARY.parent / 'corvel.dll.debug').read_bytes(),
                                         b'.text'))

    def test_TextsAndPicturesStandBesideTheLibrary(self):
        names = {path.name for path in (LIBRARY.parent / 'corvel_data').iterdir()}
        self.assertLessEqual({'lang.en', 'options.ico', 'merge.png'}, names)


if __name__ == '__main__':
    if OBJDUMP is None:
        print('no objdump for Windows', file=sys.stderr)
        sys.exit(77)
    unittest.main()
