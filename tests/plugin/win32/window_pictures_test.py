#!/usr/bin/env python3
"""Takes pictures of the options window and looks at them: nothing missing, nothing cut.

The pictures stay as PNG files in the folder "artefacts" of the build. Skips without Xvfb.
"""

import os
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest
import zlib
from pathlib import Path

ROOT = Path(__file__).resolve().parents[3]
BUILD = Path(os.environ['CORVEL_BUILD'])
PROGRAM = Path(os.environ['CORVEL_PICTURES'])
ARTEFACTS = BUILD / 'artefacts'
WINE_SERVER = '/usr/lib/wine/wineserver'
WHITE = (255, 255, 255)

# The order of the controls in both forms.
FULL = ['group', 'generate', 'skip', 'units', 'enums', 'remember', 'button']
SHORT = ['group', 'generate', 'skip', 'remember', 'button']


class Picture:
    """Rows of (red, green, blue) from the top, of a BMP file with 32 bits per pixel."""

    def __init__(self, path):
        data = path.read_bytes()
        offset, = struct.unpack_from('<I', data, 10)
        self.width, self.height = struct.unpack_from('<ii', data, 18)
        row = 4 * self.width
        self.rows = []
        for y in reversed(range(self.height)):
            line = data[offset + y * row:offset + (y + 1) * row]
            self.rows.append(list(zip(line[2::4], line[1::4], line[0::4])))

    def save_png(self, path):
        def chunk(kind, body):
            return (struct.pack('>I', len(body)) + kind + body +
                    struct.pack('>I', zlib.crc32(kind + body)))
        lines = b''.join(b'\0' + bytes(value for pixel in row for value in pixel)
                         for row in self.rows)
        path.write_bytes(
            b'\x89PNG\r\n\x1a\n' +
            chunk(b'IHDR', struct.pack('>IIBBBBB', self.width, self.height, 8, 2, 0, 0, 0)) +
            chunk(b'IDAT', zlib.compress(lines)) + chunk(b'IEND', b''))

    def ink(self, left, top, width, height):
        """Number of pixels that are rather dark."""
        return sum(sum(pixel) < 3 * 128 for row in self.rows[top:top + height]
                   for pixel in row[left:left + width])


class Screen:
    """An X server and the Wine that draws on it."""

    def __enter__(self):
        read, write = os.pipe()
        self.server = subprocess.Popen(
            ['Xvfb', '-displayfd', str(write), '-screen', '0', '1280x800x24', '-nolisten', 'tcp'],
            pass_fds=[write], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(write)
        with os.fdopen(read) as display:
            number = display.readline().strip()
        cache = os.environ.get('XDG_CACHE_HOME') or str(Path.home() / '.cache')
        self.environment = dict(os.environ, DISPLAY=':' + number, WINE_UI='x11',
                                WINEPREFIX=cache + '/corvel-wine-x11', WINE_TIMEOUT='120')
        return self

    # Wine first: its programs end in disorder when the screen goes.
    def __exit__(self, *_):
        subprocess.run([WINE_SERVER, '-k'], env=self.environment, check=False, timeout=60)
        self.server.terminate()
        self.server.wait(60)

    # Through a file: Wine's own programs hold on to a pipe for as long as they live.
    def run(self, *command):
        with tempfile.TemporaryFile('w+') as output:
            subprocess.run([str(ROOT / 'tools' / 'wine-run.sh'), *map(str, command)], cwd=BUILD,
                           env=self.environment, check=True, stdin=subprocess.DEVNULL,
                           stdout=output, timeout=400)
            output.seek(0)
            return output.read()


def rectangles(line):
    name, *numbers = line.split()
    values = list(map(int, numbers))
    return name, [tuple(values[i:i + 4]) for i in range(0, len(values), 4)]


class WindowPictures(unittest.TestCase):

    @classmethod
    def setUpClass(cls):
        ARTEFACTS.mkdir(exist_ok=True)
        cls.pictures = {}
        with tempfile.TemporaryDirectory() as folder, Screen() as screen:
            printed = screen.run(PROGRAM, 'Z:' + folder)
            cls.places = dict(map(rectangles, printed.splitlines()))
            for name in cls.places:
                picture = Picture(Path(folder) / (name + '.bmp'))
                picture.save_png(ARTEFACTS / ('options_window_%s.png' % name))
                cls.pictures[name] = picture

    def test_EveryFormAndLanguageWasTaken(self):
        self.assertEqual({'short_en', 'full_en', 'full_pl', 'full_de', 'full_fr', 'full_es'},
                         set(self.pictures))

    def test_PicturesHaveTheSizeOfTheirForm(self):
        for name, picture in self.pictures.items():
            with self.subTest(name=name):
                height = 360 if name == 'short_en' else 420
                self.assertEqual((600, height), (picture.width, picture.height))

    def test_FormsHaveTheirControls(self):
        for name, (_, *controls) in self.places.items():
            with self.subTest(name=name):
                self.assertEqual(len(SHORT if name == 'short_en' else FULL), len(controls))

    def test_ClientAreaIsWhiteAroundTheControls(self):
        for name, picture in self.pictures.items():
            (left, top, width, height), *controls = self.places[name]
            covered = set()
            for x, y, w, h in controls:
                covered.update((column, row) for row in range(y, y + h)
                               for column in range(x, x + w))
            stains = [(x, y) for y in range(top, top + height) for x in range(left, left + width)
                      if (x, y) not in covered and picture.rows[y][x] != WHITE]
            with self.subTest(name=name):
                self.assertEqual([], stains[:5])

    def test_EveryTextIsThereAndEndsBeforeItsControl(self):
        for name, picture in self.pictures.items():
            kinds = SHORT if name == 'short_en' else FULL
            for kind, (x, y, width, height) in zip(kinds, self.places[name][1:]):
                with self.subTest(name=name, kind=kind):
                    if kind == 'group':
                        title = picture.ink(x + 8, y, width - 16, 18)
                        self.assertGreater(title, 150)
                    elif kind == 'button':
                        face = (x + 4, y + 4, width - 8, height - 8)
                        self.assertGreater(picture.ink(*face), 20)
                        self.assertEqual(0, picture.ink(x + 4, y + 4, 4, height - 8))
                        self.assertEqual(0, picture.ink(x + width - 8, y + 4, 4, height - 8))
                    else:
                        self.assertGreater(picture.ink(x + 16, y, width - 16, height), 150)
                        self.assertEqual(0, picture.ink(x + width - 10, y, 10, height))
                        for edge in (y, y + height - 1):
                            self.assertEqual(0, picture.ink(x + 16, edge, width - 16, 1))

    # Each picture was taken with the box for units pressed, which the short form does not show.
    def test_MarksAreDrawn(self):
        kinds = dict(zip(FULL, self.places['full_en'][1:]))
        def ink(kind):
            x, y, _, height = kinds[kind]
            return self.pictures['full_en'].ink(x, y, 14, height)
        self.assertGreater(ink('generate'), ink('skip'))
        self.assertGreater(ink('units'), ink('enums'))
        self.assertEqual(ink('remember'), ink('enums'))


if __name__ == '__main__':
    if shutil.which('Xvfb') is None:
        print('no Xvfb: no pictures', file=sys.stderr)
        sys.exit(77)
    unittest.main()
