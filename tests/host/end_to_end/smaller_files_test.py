"""What makes files smaller and keeps all that they say, as users ask for it."""

import os
import random
import re
import unittest

from plain_sharer import PlainSharer, random_model, records_of, spelt_out
from support import DONE, WRONG_USAGE, CorvelTest, project, wall

SAMPLES = os.path.join(os.path.dirname(__file__), '..', '..', '..', 'samples')
# Under an emulator the program sees this machine's root as a drive.
DRIVE = 'Z:' if os.environ.get('CORVEL_SYSTEM') == 'Windows' else ''
HOUSE = os.path.abspath(os.path.join(SAMPLES, 'house_IFC4.ifc'))

GUID = '2O2Fr$t4X7Zf8NOew3FLOH'

# Numbers that 15 digits do not hold, and the forms that files have them in.
NUMBERS = """#2=IFCCARTESIANPOINT((0.30000000000000004,-1.2345678901234567E+02,6.02214076e23));
#3=IFCCARTESIANPOINT((-0.,100000.,1.E-4));
#4=IFCCARTESIANPOINT((0.1,4.9406564584124654E-324,2.2250738585072011E-308));
#5=IFCQUANTITYCOUNT('n',$,$,1234567,$);
#6=IFCPROPERTYSINGLEVALUE('p',$,IFCREAL(1.0000000000000002),$);"""


def reals(text):
    """All reals of a file, as doubles."""
    data = text.split('DATA;')[1]
    return [float(number) for number in re.findall(r'-?\d+\.\d*(?:[Ee][+-]?\d+)?', data)]


class ExactNumbers(CorvelTest):

    def resaved(self, source, *options):
        ended = self.run_corvel('resave', source, 'out.ifc', *options)
        self.assert_ended(ended, DONE)
        return self.read('out.ifc').decode('ascii')

    def test_no_real_is_changed(self):
        self.write('in.ifc', project(NUMBERS))
        written = self.resaved('in.ifc', '--numbers', 'exact')
        self.assertEqual([number.hex() for number in reals(project(NUMBERS).decode('ascii'))],
                         [number.hex() for number in reals(written)])
        self.assertIn("#5=IFCQUANTITYCOUNT('n',$,$,1234567,$);", written)
        self.assertIn('#3=IFCCARTESIANPOINT((-0.,1.E+05,0.0001));', written)

    def test_what_is_written_exactly_is_written_the_same_again(self):
        self.write('in.ifc', project(NUMBERS))
        written = self.resaved('in.ifc', '--numbers', 'exact')
        os.rename(os.path.join(self.folder, 'out.ifc'), os.path.join(self.folder, 'exact.ifc'))
        self.assertEqual(written, self.resaved('exact.ifc', '--numbers', 'exact'))

    def test_told_numbers_are_those_of_no_option(self):
        self.write('in.ifc', project(NUMBERS))
        told = self.resaved('in.ifc')
        self.assertEqual(told, self.resaved('in.ifc', '--numbers', 'told'))
        self.assertIn('#2=IFCCARTESIANPOINT((3.E-01,-1.23456789012346E+02,6.02214076E+23));', told)

    def test_a_merge_writes_exact_numbers_too(self):
        self.write('in.ifc', project(*wall(2, GUID)).replace(b'1.,', b'0.30000000000000004,'))
        ended = self.run_corvel('merge', 'in.ifc', 'in.ifc', '-o', 'out.ifc', '--numbers', 'exact')
        self.assert_ended(ended, DONE)
        self.assertEqual(2, self.read('out.ifc').count(b'((0.30000000000000004,'))

    def test_another_word_is_wrong_usage(self):
        ended = self.run_corvel('resave', 'in.ifc', 'out.ifc', '--numbers', '17')
        self.assert_ended(ended, WRONG_USAGE)
        self.assertIn("--numbers takes 'told' or 'exact', not '17'", ended.err)


class SharedEqual(CorvelTest):

    def shared(self, source, *options):
        ended = self.run_corvel('resave', source, 'out.ifc', '--share-equal', *options)
        self.assert_ended(ended, DONE)
        return self.read('out.ifc').decode('ascii')

    def test_random_models_are_shared_as_by_comparing_each_with_each(self):
        for seed in range(40):
            with self.subTest(seed=seed):
                lines = random_model(random.Random(seed), 120)
                self.write('in.ifc', project(*lines))
                shared = self.shared('in.ifc')
                before = records_of(project(*lines).decode('ascii'))
                after = records_of(shared)
                self.assertEqual(PlainSharer(before).count(), len(after))
                self.assertEqual(spelt_out(before), spelt_out(after))
                self.write('once.ifc', shared.encode('ascii'))
                self.assertEqual(shared, self.shared('once.ifc'))

    def test_a_house_says_the_same_in_fewer_records(self):
        with open(HOUSE, encoding='ascii') as file:
            before = records_of(file.read())
        shared = self.shared(DRIVE + HOUSE)
        after = records_of(shared)
        self.assertLess(len(after), 0.6 * len(before))
        self.write('once.ifc', shared.encode('ascii'))
        self.assertEqual(shared, self.shared('once.ifc'))

    def test_a_merge_of_two_copies_has_the_points_of_one(self):
        ended = self.run_corvel('merge', DRIVE + HOUSE, DRIVE + HOUSE, '-o', 'out.ifc',
                                '--share-equal')
        self.assert_ended(ended, DONE)
        merged = self.read('out.ifc')
        self.assertEqual(self.shared(DRIVE + HOUSE).count('=IFCCARTESIANPOINT('),
                         merged.count(b'=IFCCARTESIANPOINT('))


class Optimised(CorvelTest):

    def test_is_what_a_resave_with_the_three_options_is_and_tells_what_it_saved(self):
        ended = self.run_corvel('optimise', DRIVE + HOUSE, 'small.ifc')
        self.assert_ended(ended, DONE, err='')
        small = self.read('small.ifc')
        self.assert_ended(self.run_corvel('resave', DRIVE + HOUSE, 'out.ifc', '--share-equal',
                                          '--prune', '--numbers', 'exact'), DONE)
        self.assertEqual(small, self.read('out.ifc'))
        with open(HOUSE, 'rb') as file:
            house = file.read()
        told = re.fullmatch(
            r'small\.ifc was written\.\nRecords: (\d+) before, (\d+) now, [\d.]+ % saved\.\n'
            r'Bytes: (\d+) before, (\d+) now, [\d.]+ % saved\.\n',
            ended.out.replace('\r\n', '\n'))
        self.assertIsNotNone(told, ended.out)
        self.assertEqual([len(records_of(house.decode('ascii'))),
                          len(records_of(small.decode('ascii'))), len(house), len(small)],
                         [int(number) for number in told.groups()])

    def test_an_optimised_model_cannot_be_optimised(self):
        self.assert_ended(self.run_corvel('optimise', DRIVE + HOUSE, 'one.ifc'), DONE)
        self.assert_ended(self.run_corvel('optimise', 'one.ifc', 'two.ifc', '--quiet'), DONE,
                          out='')
        self.assertEqual(self.read('one.ifc'), self.read('two.ifc'))


if __name__ == '__main__':
    unittest.main()
