"""What makes files smaller and keeps all that they say, as users ask for it."""

import os
import re
import unittest

from support import DONE, WRONG_USAGE, CorvelTest, project

# Numbers that 15 digits do not hold, and the forms that files have them in.
NUMBERS = """#2=IFCCARTESIANPOINT((0.30000000000000004,-1.2345678901234567E+02,6.02214076e23));
#3=IFCCARTESIANPOINT((-0.,100000.,1.E-4));
#4=IFCCARTESIANPOINT((0.1,4.9406564584124654E-324,2.2250738585072011E-308));
#5=IFCQUANTITYCOUNT('n',$,$,1234567);
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
        self.assertIn("#5=IFCQUANTITYCOUNT('n',$,$,1234567);", written)
        self.assertIn('#3=IFCCARTESIANPOINT((-0.,1.E+05,1.E-04));', written)

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
        self.write('in.ifc', project(NUMBERS))
        ended = self.run_corvel('merge', 'in.ifc', 'in.ifc', '-o', 'out.ifc', '--numbers', 'exact')
        self.assert_ended(ended, DONE)
        self.assertEqual(2, self.read('out.ifc').count(b'((0.30000000000000004,'))

    def test_another_word_is_wrong_usage(self):
        ended = self.run_corvel('resave', 'in.ifc', 'out.ifc', '--numbers', '17')
        self.assert_ended(ended, WRONG_USAGE)
        self.assertIn("--numbers takes 'told' or 'exact', not '17'", ended.err)


if __name__ == '__main__':
    unittest.main()
