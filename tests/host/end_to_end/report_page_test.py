"""The page of a report in a browser: what its script does, and what a person sees. Skips without a browser."""

import html
import json
import re
import struct
import unittest
import zlib

import browser
from support import DONE, NOTHING_WRITTEN, WITH_REPORTS, CorvelTest, project, wall

# Whoever runs one of these as a script changes the title of the page.
HOSTILE = ("</script><script>document.title=''stolen''</script>", "<img src=x onerror=document.title=''stolen''>",
           "{{json}}", "\\X2\\2028\\X0\\", "\\X2\\202E\\X0\\turned", '"><svg onload=alert(1)>')
MEASURE = ("<script>addEventListener('load', function () { document.body.setAttribute('data-measured',"
           "document.documentElement.scrollWidth + ' ' + window.innerWidth); });</script></body>")


def pixels(png):
    """Width, height and the set of the bytes' rows of a PNG: a blank page has few that differ."""
    width, height = struct.unpack('>II', png[16:24])
    at, packed = 8, b''
    while at < len(png):
        length, kind = struct.unpack('>I4s', png[at:at + 8])
        if kind == b'IDAT':
            packed += png[at + 8:at + 8 + length]
        at += 12 + length
    data = zlib.decompress(packed)
    row = len(data) // height
    return width, height, {data[start:start + row] for start in range(0, len(data), row)}


@unittest.skipIf(browser.PROGRAM is None, 'there is no browser on this machine')
class Page(CorvelTest):

    def setUp(self):
        super().setUp()
        walls = []
        for at, name in enumerate(HOSTILE):
            walls += [line.replace("'W'", f"'{name}'") for line in wall(10 * (at + 1), f'guid{at}', 3 * at)]
        self.write('a.ifc', project(*walls))
        self.write('b.ifc', project(*wall(2, 'other', 1)))
        ended = self.run_corvel('merge', 'a.ifc', 'b.ifc', '-o', 'out.ifc', '--report', 'r.html', '--report',
                                'r.json')
        self.assert_ended(ended, DONE)

    # A start of a browser takes a second or more: each looks at whatever it can.
    def look(self, language, width):
        page = self.read('r.html').decode('utf-8').replace('</body>', MEASURE)
        self.write('measured.html', page.encode('utf-8'))
        shown, console = browser.dom(self.path('measured.html'), language, width, 1600, self.path('page.png'))
        self.assertEqual([], console)
        shown_width, height, rows = pixels(self.read('page.png'))
        self.assertEqual((width, 1600), (shown_width, height))
        self.assertLess(300, len(rows))
        needed, there = map(int, re.search(r'data-measured="(\d+) (\d+)"', shown).groups())
        self.assertLessEqual(needed, there)
        return shown

    def test_on_a_desk_names_are_not_run_and_the_language_is_that_of_the_browser(self):
        shown = self.look('de', 1280)
        self.assertIn('<title>out.ifc \u00b7 corvel merge</title>', shown)
        self.assertIn('&lt;/script&gt;&lt;script&gt;', shown)
        self.assertIn('<h2 data-t="inputs">Eingaben</h2>', shown)
        self.assertIn('<option value="fr" lang="fr">Fran\u00e7ais</option>', shown)
        found = re.search(r'<script type="application/json" id="report">\n(.*?)</script>', shown, re.DOTALL)
        self.assertEqual(json.loads(self.read('r.json')), json.loads(found[1]))

    def test_numbers_and_hints_follow_the_language(self):
        slab = [line.replace('IFCWALL', 'IFCSLAB') for line in wall(10, 'slab', 2)]
        self.write('b.ifc', project(*wall(2, 'other', 1), *slab))
        self.assert_ended(self.run_corvel('merge', 'a.ifc', 'b.ifc', '-o', 'out.ifc', '--report', 'r.html', '--hide',
                                          '2:IfcWall', '--offset', '1=1234500,-12345.5,0'), WITH_REPORTS)
        for language, dropped, *wanted in (
                ('en', 'dropped', '1,234,500', '-12,345.5', '0.0'), ('de', 'entfallen', '1.234.500', '-12.345,5', '0,0'),
                ('fr', 'écartés', '1\u202f234\u202f500', '-12\u202f345,5', '0,0'),
                ('es', 'descartados', '1.234.500', '-12.345,5', '0,0'),
                ('pl', 'odrzucone', '1\u00a0234\u00a0500', '-12\u00a0345,5', '0,0')):
            shown, _ = browser.dom(self.path('r.html'), language)
            told = dict(re.findall(r'data-n="([^"]*)">([^<]*)<', shown.replace('&nbsp;', '\u00a0')))
            self.assertEqual(wanted[:2], [told['1234500'], told['-12345.5']])
            # A number that is a point behind its first figures is one with a fraction in each of them.
            self.assertEqual({wanted[2][1]}, {text[len(plain.split('.')[0])] for plain, text in told.items()
                                              if re.match(r'\d{1,3}\.', plain)})
            titles = re.findall(r'<path class="flow [^>]*><title>(.*?)</title>', shown)
            titles = [html.unescape(re.sub(r'<[^>]*>', '', title)) for title in titles]
            self.assertIn(f'b.ifc → {dropped}', [title.rstrip(': \u00a01') for title in titles])

    def test_on_a_telephone_a_language_that_there_is_not_becomes_english(self):
        self.assertIn('<h2 data-t="inputs">Inputs</h2>', self.look('it', 400))

    def test_it_fits_on_a_telephone(self):
        for width, language in ((360, 'de'), (400, 'en')):
            self.assertEqual(0, browser.overflow(self.path('r.html'), width, language), (width, language))

    def test_all_but_the_choice_of_a_language_is_there_without_the_script(self):
        page = re.sub(r'<script.*?</script>', '', self.read('r.html').decode('utf-8'), flags=re.DOTALL)
        text = html.unescape(re.sub(r'<[^>]*>', ' ', page))
        for word in ('Written', 'a.ifc', 'IfcWall', 'Plan', 'Elevation', 'Tree of the result', 'Reading'):
            self.assertIn(word, text)
        self.assertRegex(page, r"<label id=\"languages\" hidden>")
        self.assertEqual(2 * (len(HOSTILE) + 1), page.count("class='p'"))

    def test_each_word_of_a_federation_is_there_in_each_language(self):
        self.assert_ended(self.run_corvel('merge', 'a.ifc', 'b.ifc', '-o', 'out.ifc', '--report', 'r.html',
                                          '--one-building'), DONE)
        page = self.read('r.html').decode('utf-8')
        found = re.search(r'<script type="application/json" id="texts">\n(.*?)</script>', page, re.DOTALL)
        texts = json.loads(found[1])
        words = set(re.findall(r"data-t='([^']+)'", page))
        for step in ('units', 'place', 'contexts', 'tree', 'objects', 'mend', 'relations', 'guids', 'prune', 'share',
                     'stamp'):
            self.assertIn('step.' + step, words)
        self.assertEqual(5, len(texts))
        for language, own in texts.items():
            self.assertEqual(set(), words - own['texts'].keys(), language)

    def test_a_run_that_failed_has_its_failure_first(self):
        self.write('b.ifc', project('#2=IFCNOSUCHCLASS();'))
        self.assert_ended(self.run_corvel('merge', 'a.ifc', 'b.ifc', '-o', 'out.ifc', '--report', 'r.html'),
                          NOTHING_WRITTEN)
        shown, console = browser.dom(self.path('r.html'))
        self.assertEqual([], console)
        self.assertLess(shown.index('id="failures"'), shown.index('data-t="notWritten"'))
        failures = re.search(r'<section id="failures">.*?</section>', shown, re.DOTALL)[0]
        told = [re.sub(r'<[^>]*>', '', item) for item in re.findall(r'<li>.*?</li>', failures)]
        self.assertEqual('b.ifc: Entity named: IFCNOSUCHCLASS not found.', told[0])
        self.assertTrue(told[1].startswith('b.ifc: Unable to read'), told)


@unittest.skipIf(browser.PROGRAM is None, 'there is no browser on this machine')
class PageOfACheck(CorvelTest):

    def setUp(self):
        super().setUp()
        walls = []
        for at, name in enumerate(HOSTILE):
            walls += [line.replace("'W'", f"'{name}'") for line in wall(10 * (at + 1), f'guid{at}', 3 * at)]
        self.write('a.ifc', project(*walls, '#90=IFCNOSUCHCLASS();', '#91=IFCDIRECTION((0.,0.,1.);'))
        self.write('b.ifc', project(*wall(2, HOSTILE[-1], 1)))
        ended = self.run_corvel('check', 'a.ifc', 'b.ifc', 'missing.ifc', '--report', 'r.html', '--report', 'r.json')
        self.assert_ended(ended, NOTHING_WRITTEN)

    def look(self, language, width):
        page = self.read('r.html').decode('utf-8').replace('</body>', MEASURE)
        self.write('measured.html', page.encode('utf-8'))
        shown, console = browser.dom(self.path('measured.html'), language, width)
        self.assertEqual([], console)
        needed, there = map(int, re.search(r'data-measured="(\d+) (\d+)"', shown).groups())
        self.assertLessEqual(needed, there)
        return shown

    def test_on_a_desk_no_name_is_run_and_the_json_is_that_of_the_report(self):
        shown = self.look('pl', 1280)
        self.assertIn('<title>a.ifc, b.ifc, missing.ifc \u00b7 corvel check</title>', shown)
        self.assertIn('<h2 data-t="findings">Co znaleziono</h2>', shown)
        found = re.search(r'<script type="application/json" id="report">\n(.*?)</script>', shown, re.DOTALL)
        self.assertEqual(json.loads(self.read('r.json')), json.loads(found[1]))

    def test_it_fits_on_a_telephone_and_wider_ones(self):
        for width, language in ((360, 'pl'), (400, 'de'), (500, 'de')):
            self.assertEqual(0, browser.overflow(self.path('r.html'), width, language), (width, language))

    def test_all_but_the_choice_of_a_language_is_there_without_the_script(self):
        page = re.sub(r'<script.*?</script>', '', self.read('r.html').decode('utf-8'), flags=re.DOTALL)
        text = html.unescape(re.sub(r'<[^>]*>', ' ', page))
        for word in ('missing.ifc: there is no such file', 'The release has no such class', 'CRV.class.unknown',
                     'A record has no closing bracket', 'IfcWall', 'Plan', 'Elevation', 'Spatial trees'):
            self.assertIn(word, text)
        self.assertLess(text.index('there is no such file'), text.index('CRV.class.unknown'))
        self.assertEqual(2 * (len(HOSTILE) + 1), page.count("class='p'"))


if __name__ == '__main__':
    unittest.main()
