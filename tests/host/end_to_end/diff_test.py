"""Two models, compared on the command line."""

import json
import os
import random
import re
import signal
import unittest

from support import (CANCELLED, DONE, NOTHING_WRITTEN, ON_WINDOWS,
                     WRONG_USAGE, CorvelTest, large_model, project, wall)

DIFFERENT = 4
SAMPLES = os.path.join(os.path.dirname(__file__), '..', '..', '..', 'samples')
# Under an emulator the program sees this machine's root as a drive.
DRIVE = 'Z:' if os.environ.get('CORVEL_SYSTEM') == 'Windows' else ''
GUID = '2O2Fr$t4X7Zf8NOew3FLOH'


# Objects whose GUIDs programs make anew with each export.
NAMELESS = re.compile(r"^(IFCREL\w*|IFCPROPERTYSET|IFCELEMENTQUANTITY)\('[^']*'")
DIGITS = '0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_$'


def another_export(text, seed):
    """The same model with other numbers, in another order, and with other GUIDs of relations."""
    chance = random.Random(seed)
    head, data = text.split('DATA;', 1)
    data, tail = data.rsplit('ENDSEC;', 1)
    records = re.findall(r"#(\d+)=((?:[^;']|'(?:[^']|'')*')*;)", data)
    numbers = list(range(1, len(records) + 1))
    chance.shuffle(numbers)
    new = {old: str(number) for (old, _), number in zip(records, numbers)}

    def renumbered(record):
        pieces = re.split(r"('(?:[^']|'')*')", record)
        return ''.join(piece if piece.startswith("'") else
                       re.sub(r'#(\d+)', lambda found: '#' + new[found.group(1)], piece)
                       for piece in pieces)

    def renamed(record):
        guid = '0' + ''.join(chance.choice(DIGITS) for _ in range(21))
        return NAMELESS.sub(lambda found: f"{found.group(1)}('{guid}'", record)

    lines = [f'#{new[number]}={renamed(renumbered(record))}\n' for number, record in records]
    chance.shuffle(lines)
    return head + 'DATA;\n' + ''.join(lines) + 'ENDSEC;' + tail


class Diff(CorvelTest):

    def setUp(self):
        super().setUp()
        self.write('a.ifc', project(*wall(10, GUID)))
        self.write('b.ifc', project(*wall(20, GUID, 3)))

    def test_the_same_is_0_and_a_difference_is_4(self):
        self.assert_ended(self.run_corvel('diff', 'a.ifc', 'a.ifc'), DONE, err='', out=(
            '--- a.ifc (IFC4, 2 objects)\n+++ a.ifc (IFC4, 2 objects)\nno difference\n'))
        self.assert_ended(self.run_corvel('diff', 'a.ifc', 'b.ifc'), DIFFERENT, err='', out=(
            '--- a.ifc (IFC4, 2 objects)\n+++ b.ifc (IFC4, 2 objects)\n'
            '0 removed, 0 added, 1 changed, 0 under another GUID, 1 the same\n'
            f"~ IfcWall {GUID} 'W' #20\n    moved by 2 m (2, 0, 0)\n"))

    def test_the_tolerance_is_in_millimetres(self):
        self.assert_ended(self.run_corvel('diff', '--tolerance', '2000', 'a.ifc', 'b.ifc'), DONE)
        self.assert_ended(self.run_corvel('diff', '--tolerance', '1999', 'a.ifc', 'b.ifc'),
                          DIFFERENT)

    def test_json_tells_the_same(self):
        ended = self.run_corvel('diff', '--json', 'a.ifc', 'b.ifc')
        self.assert_ended(ended, DIFFERENT, err='')
        told = json.loads(ended.out)
        self.assertEqual([2, 0, 0], told['changed'][0]['changes'][0]['movement']['by'])
        self.assertFalse(told['equal'])

    def test_what_cannot_be_read_is_1(self):
        self.assert_ended(self.run_corvel('diff', 'a.ifc', 'none.ifc'), NOTHING_WRITTEN, out='',
                          err='corvel: none.ifc: there is no such file\n')
        self.write('c.ifc', b'nothing')
        self.assertEqual(NOTHING_WRITTEN, self.run_corvel('diff', 'c.ifc', 'a.ifc').status)

    def test_wrong_usage_is_2(self):
        for words, told in ((('a.ifc',), 'two files are needed, and 1 is given'),
                            (('a.ifc', 'b.ifc', '--tolerance', '0'),
                             "--tolerance takes a number of millimetres above 0, not '0'"),
                            (('a.ifc', 'b.ifc', '--tolerance', '1e'),
                             "--tolerance takes a number of millimetres above 0, not '1e'")):
            self.assert_ended(self.run_corvel('diff', *words), WRONG_USAGE, out='',
                              err=f"corvel: diff: {told}\nSee 'corvel diff --help'.\n")

    def test_inputs_and_their_folder_stay_as_they_are(self):
        before = {name: self.read(name) for name in os.listdir(self.folder)}
        self.run_corvel('diff', 'a.ifc', 'b.ifc')
        self.assertEqual(before, {name: self.read(name) for name in os.listdir(self.folder)})

    def test_a_saved_model_is_the_same(self):
        self.assert_ended(self.run_corvel('resave', 'a.ifc', 'out.ifc'), DONE)
        self.assert_ended(self.run_corvel('diff', 'a.ifc', 'out.ifc'), DONE)

    def test_a_merge_adds_to_its_first_input(self):
        self.write('c.ifc', project(*wall(30, '1hqIFTRjfV6AWq_bMtnZwI', 9)))
        self.run_corvel('merge', 'a.ifc', 'c.ifc', '-o', 'out.ifc')
        told = json.loads(self.run_corvel('diff', '--json', 'a.ifc', 'out.ifc').out)
        self.assertEqual(['1hqIFTRjfV6AWq_bMtnZwI'], [one['guid'] for one in told['added']])
        self.assertEqual(([], [], 2), (told['removed'], told['changed'], told['same']))

    def told(self, before, after):
        return json.loads(self.run_corvel('diff', '--json', before, after).out)

    def test_a_merge_says_what_the_fold_says(self):
        """All of both inputs is there; the second project has given way to the first."""
        first, second = (DRIVE + os.path.abspath(os.path.join(SAMPLES, f'office_{part}_IFC4.ifc'))
                         for part in ('architecture', 'structure'))
        self.run_corvel('merge', first, second, '-o', 'out.ifc')
        told = self.told(first, 'out.ifc')
        self.assertEqual(([], [], []), (told['removed'], told['changed'], told['renamed']))
        added = {one['guid'] for one in told['added']} - {''}
        told = self.told(second, 'out.ifc')
        self.assertEqual(['IfcProject'], [one['class'] for one in told['removed']])
        self.assertEqual([], told['renamed'])
        self.assertEqual([('IfcSite', 'part of')],
                         [(one['before']['class'], change['path'])
                          for one in told['changed'] for change in one['changes']])
        self.assertEqual(told['before']['objects'] - 1, len(added))
        first_ones = {one['guid'] for one in told['added']} - {''}
        self.assertFalse(added & first_ones)

    def test_two_exports_of_one_model_are_the_same(self):
        for name in ('house_IFC4', 'office_structure_IFC4', 'office_architecture_IFC2X3'):
            with open(os.path.join(SAMPLES, name + '.ifc'), encoding='latin-1', newline='') as file:
                text = file.read()
            self.write('first.ifc', text.encode('latin-1'))
            for seed in range(2):
                with self.subTest(name, seed=seed):
                    other = another_export(text, seed).encode('latin-1')
                    self.assertNotEqual(other, self.read('first.ifc'))
                    self.write('second.ifc', other)
                    ended = self.run_corvel('diff', 'first.ifc', 'second.ifc')
                    self.assertEqual('no difference', ended.out.splitlines()[-1], ended.out)
                    self.assert_ended(ended, DONE)

    def test_one_building_is_told_by_what_has_become_one(self):
        first, second = (DRIVE + os.path.abspath(os.path.join(SAMPLES, f'office_{part}_IFC4.ifc'))
                         for part in ('architecture', 'structure'))
        self.run_corvel('merge', '--one-building', first, second, '-o', 'out.ifc')
        told = self.told(second, 'out.ifc')
        self.assertEqual(['IfcSite', 'IfcBuilding', 'IfcBuildingStorey', 'IfcBuildingStorey'],
                         [one['before']['class'] for one in told['renamed']])
        self.assertEqual(['IfcProject'], [one['class'] for one in told['removed']])
        kinds = {change['path'] for one in told['changed'] for change in one['changes']}
        self.assertEqual({'group', 'part of'}, kinds)

    @unittest.skipIf(ON_WINDOWS, 'there is no such signal')
    def test_a_request_to_end_is_3(self):
        self.write('large.ifc', large_model(24))
        process = self.start('diff', 'large.ifc', 'large.ifc')
        self.wait_for(lambda: self.is_reading(process))
        process.send_signal(signal.SIGTERM)
        self.assertEqual(CANCELLED, self.finish(process).status)

    def is_reading(self, process):
        """The signal is caught once the files are looked into."""
        with open(f'/proc/{process.pid}/status', encoding='ascii') as status:
            caught = next(line for line in status if line.startswith('SigCgt:'))
        return int(caught.split()[1], 16) >> (signal.SIGTERM - 1) & 1


if __name__ == '__main__':
    unittest.main()
