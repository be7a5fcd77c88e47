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
LANGUAGES = ['en', 'pl', 'de', 'fr', 'es']
# Dots per inch of the screens that the pictures are taken on; the usual ones come last and stay.
USUAL, FINE = 96, 192

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
    """An X server and the Wine that draws on it, with so many dots per inch."""

    def __init__(self, dots):
        self.dots = dots

    def __enter__(self):
        read, write = os.pipe()
        self.server = subprocess.Popen(
            ['Xvfb', '-displayfd', str(write), '-screen', '0', '1280x1024x24', '-nolisten', 'tcp'],
            pass_fds=[write], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(write)
        with os.fdopen(read) as display:
            number = display.readline().strip()
        cache = os.environ.get('XDG_CACHE_HOME') or str(Path.home() / '.cache')
        self.environment = dict(os.environ, DISPLAY=':' + number, WINE_UI='x11',
                                WINEPREFIX=cache + '/corvel-wine-x11', WINE_TIMEOUT='120')
        # Programs that run already, the desktop's among them, keep the dots of their start.
        self.run('reg', 'add', r'HKCU\Control Panel\Desktop', '/v', 'LogPixels', '/t', 'REG_DWORD',
                 '/d', self.dots, '/f')
        self.end_wine()
        return self

    def end_wine(self):
        for option in ('-k', '-w'):
            subprocess.run([WINE_SERVER, option], env=self.environment, check=False, timeout=60)

    # Wine first: its programs end in disorder when the screen goes.
    def __exit__(self, *_):
        self.end_wine()
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


def scale_of(name):
    return FINE // USUAL if name.endswith(str(FINE)) else 1


def kinds_of(name):
    return SHORT if name.startswith('short') else FULL


class WindowPictures(unittest.TestCase):

    @classmethod
    def setUpClass(cls):
        ARTEFACTS.mkdir(exist_ok=True)
        cls.places = {}
        cls.pictures = {}
        for dots in (FINE, USUAL):
            with tempfile.TemporaryDirectory() as folder, Screen(dots) as screen:
                printed = screen.run(PROGRAM, 'Z:' + folder)
                for name, places in map(rectangles, printed.splitlines()):
                    cls.places[name] = places
                    cls.pictures[name] = Picture(Path(folder) / (name + '.bmp'))
                    cls.pictures[name].save_png(ARTEFACTS / ('options_window_%s.png' % name))

    def for_every_picture(self, check):
        for name, picture in self.pictures.items():
            with self.subTest(name=name):
                client, *controls = self.places[name]
                check(name, picture, client, controls)

    def test_EveryFormAndLanguageWasTaken(self):
        wanted = {form + language for form in ('full_', 'short_') for language in LANGUAGES}
        wanted.update('full_%s_%d' % (language, FINE) for language in LANGUAGES)
        wanted.add('short_en_%d' % FINE)
        self.assertEqual(wanted, set(self.pictures))

    def test_PicturesHaveTheSizeOfTheirForm(self):
        def check(name, picture, _client, _controls):
            height = 360 if kinds_of(name) is SHORT else 420
            self.assertEqual((600 * scale_of(name), height * scale_of(name)),
                             (picture.width, picture.height))
        self.for_every_picture(check)

    def test_FormsHaveTheirControls(self):
        def check(name, _picture, _client, controls):
            self.assertEqual(len(kinds_of(name)), len(controls))
        self.for_every_picture(check)

    def test_ControlsStandInsideTheWindow(self):
        def check(_name, _picture, client, controls):
            left, top, width, height = client
            for x, y, w, h in controls:
                self.assertTrue(left <= x and x + w <= left + width, (client, x, w))
                self.assertTrue(top <= y and y + h <= top + height, (client, y, h))
        self.for_every_picture(check)

    def test_ClientAreaIsWhiteAroundTheControls(self):
        def check(_name, picture, client, controls):
            left, top, width, height = client
            for y in range(top, top + height):
                row = picture.rows[y][left:left + width]
                for x, control_top, w, h in controls:
                    if control_top <= y < control_top + h:
                        row[x - left:x - left + w] = [WHITE] * w
                self.assertEqual([WHITE] * width, row, y)
        self.for_every_picture(check)

    def test_EveryTextIsThereAndEndsBeforeItsControl(self):
        def check(name, picture, _client, controls):
            n = scale_of(name)
            for kind, (x, y, width, height) in zip(kinds_of(name), controls):
                if kind == 'group':
                    title = picture.ink(x + 8 * n, y, width - 16 * n, 18 * n)
                    self.assertGreater(title, 150)
                elif kind == 'button':
                    face = (x + 4 * n, y + 4 * n, width - 8 * n, height - 8 * n)
                    self.assertGreater(picture.ink(*face), 20)
                    for side in (x + 4 * n, x + width - 8 * n):
                        self.assertEqual(0, picture.ink(side, y + 4 * n, 4 * n, height - 8 * n))
                else:
                    mark = 16 * n
                    self.assertGreater(picture.ink(x + mark, y, width - mark, height), 150, kind)
                    self.assertEqual(0, picture.ink(x + width - 10 * n, y, 10 * n, height), kind)
                    for edge in (y, y + height - 1):
                        self.assertEqual(0, picture.ink(x + mark, edge, width - mark, 1), kind)
        self.for_every_picture(check)

    # A mark that is as high as its control may be higher.
    def test_NoMarkIsCut(self):
        def check(name, picture, _client, controls):
            for kind, (x, y, _, height) in zip(kinds_of(name), controls):
                if kind in ('group', 'button'):
                    continue
                self.assertGreater(picture.ink(x, y, 16 * scale_of(name), height), 10, kind)
                for edge in (y, y + height - 1):
                    self.assertEqual({WHITE}, set(picture.rows[edge][x:x + 16 * scale_of(name)]),
                                     kind)
        self.for_every_picture(check)

    # Each picture was taken with the box for units pressed, which the short form does not show.
    def test_MarksAreDrawn(self):
        def check(name, picture, _client, controls):
            kinds = dict(zip(kinds_of(name), controls))

            def ink(kind):
                x, y, _, height = kinds[kind]
                return picture.ink(x, y, 14 * scale_of(name), height)
            self.assertGreater(ink('generate'), ink('skip'))
            if 'units' in kinds:
                self.assertGreater(ink('units'), ink('enums'))
                self.assertEqual(ink('remember'), ink('enums'))
        self.for_every_picture(check)


if __name__ == '__main__':
    if shutil.which('Xvfb') is None:
        print('no Xvfb: no pictures', file=sys.stderr)
        sys.exit(77)
    unittest.main()
