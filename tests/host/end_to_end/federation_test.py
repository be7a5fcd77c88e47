"""The options that go beyond the fold, as users give them, on the models of this repository."""

import os
import re
import unittest

from support import DONE, WRONG_USAGE, CorvelTest, project

SAMPLES = os.path.join(os.path.dirname(__file__), '..', '..', '..', 'samples')
# Under an emulator the program sees this machine's root as a drive.
DRIVE = 'Z:' if os.environ.get('CORVEL_SYSTEM') == 'Windows' else ''
HOUSE = DRIVE + os.path.abspath(os.path.join(SAMPLES, 'house_IFC2X3.ifc'))
HOUSE_OF_IFC4 = DRIVE + os.path.abspath(os.path.join(SAMPLES, 'house_IFC4.ifc'))
ALL = ('--contexts', 'join', '--tree', 'one', '--guids', 'renew', '--prune', '--stamp', '--header', 'new')


def count(text, class_name):
    return len(re.findall(rf'^#\d+=IFC{class_name}\(', text, re.MULTILINE))


class Federation(CorvelTest):

    def merged(self, *options, house=HOUSE):
        ended = self.run_corvel('merge', house, house, '-o', 'out.ifc', *options)
        self.assert_ended(ended, DONE)
        return self.read('out.ifc').decode('latin-1')

    def test_contexts_of_two_models_become_one_and_nothing_dangles(self):
        for house in (HOUSE, HOUSE_OF_IFC4):
            with self.subTest(house):
                told = self.merged(house=house)
                joined = self.merged('--contexts', 'join', house=house)
                name = 'GEOMETRICREPRESENTATIONCONTEXT'
                self.assertEqual(2 * count(joined, name), count(told, name))
                name = 'GEOMETRICREPRESENTATIONSUBCONTEXT'
                self.assertEqual(2 * count(joined, name), count(told, name))
                numbers = set(re.findall(r'^#(\d+)=', joined, re.MULTILINE))
                self.assertLessEqual(set(re.findall(r'[(,]#(\d+)', joined)), numbers)

    def test_renewed_guids_are_unique_and_the_same_in_each_run(self):
        first = self.merged('--guids', 'renew')
        guids = re.findall(r"^#\d+=IFC\w+\('([0-3][\w$]{21})'", first, re.MULTILINE)
        self.assertEqual(len(guids), len(set(guids)))
        self.assertEqual(first, self.merged('--guids', 'renew'))

    def test_a_stamp_adds_a_group_and_its_relation_for_each_model(self):
        told = self.merged()
        stamped = self.merged('--stamp')
        self.assertEqual(count(told, 'GROUP') + 2, count(stamped, 'GROUP'))
        self.assertEqual(count(told, 'RELASSIGNSTOGROUP') + 2, count(stamped, 'RELASSIGNSTOGROUP'))
        self.assertIn(",'house_IFC2X3.ifc',$,$);", stamped)

    def test_a_new_header_tells_of_the_output_and_the_inputs(self):
        header = self.merged('--header', 'new').split('ENDSEC')[0]
        self.assertIn("'Input 1: house_IFC2X3.ifc','Input 2: house_IFC2X3.ifc'", header)
        self.assertIn("FILE_NAME ('out.ifc',", header)

    def test_words_for_the_usual_leave_the_output_as_it_is(self):
        told = self.merged()
        self.assertEqual(
            told, self.merged('--contexts', 'keep', '--tree', 'keep', '--guids', 'keep', '--header', 'told'))

    def test_pruning_leaves_nothing_dangling_and_no_product_out(self):
        told = self.merged('--select', '1:IfcWallStandardCase', '--select', '2:IfcDoor')
        pruned = self.merged('--select', '1:IfcWallStandardCase', '--select', '2:IfcDoor', '--prune')
        self.assertLess(len(pruned), len(told))
        guid = re.compile(r"^#\d+=IFC\w+\('[0-3][\w$]{21}'.*$", re.MULTILINE)
        self.assertEqual(guid.findall(told), guid.findall(pruned))
        numbers = set(re.findall(r'^#(\d+)=', pruned, re.MULTILINE))
        self.assertLessEqual(set(re.findall(r'[(,]#(\d+)', pruned)), numbers)

    def test_a_resave_may_prune_too(self):
        self.write('in.ifc', project('#2=IFCCARTESIANPOINT((1.,2.));'))
        self.assert_ended(self.run_corvel('resave', 'in.ifc', 'out.ifc', '--prune'), DONE)
        self.assertNotIn(b'IFCCARTESIANPOINT', self.read('out.ifc'))

    def test_a_model_without_records_to_join_is_no_trouble(self):
        self.write('a.ifc', b"ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION((''),'2;1');\n"
                   b"FILE_NAME('','',(''),(''),'','','');\nFILE_SCHEMA(('IFC4'));\nENDSEC;\nDATA;\n"
                   b"#1=IFCPROJECT('0YvCt7Q5n0JgN0tW6Vw4pA',$,'P',$,$,$,$,$,$);\n"
                   b"ENDSEC;\nEND-ISO-10303-21;\n")
        ended = self.run_corvel('merge', 'a.ifc', 'a.ifc', '-o', 'out.ifc', *ALL)
        self.assert_ended(ended, DONE)

    def test_the_trees_of_two_models_become_one(self):
        for house in (HOUSE, HOUSE_OF_IFC4):
            with self.subTest(house):
                told = self.merged(house=house)
                joined = self.merged('--tree', 'one', house=house)
                for name in ('SITE', 'BUILDING', 'BUILDINGSTOREY'):
                    self.assertEqual(2 * count(joined, name), count(told, name))
                self.assertEqual(count(joined, 'WALLSTANDARDCASE'), count(told, 'WALLSTANDARDCASE'))
                numbers = set(re.findall(r'^#(\d+)=', joined, re.MULTILINE))
                self.assertLessEqual(set(re.findall(r'[(,]#(\d+)', joined)), numbers)

    def test_another_word_is_wrong_usage(self):
        ended = self.run_corvel('merge', HOUSE, HOUSE, '-o', 'out.ifc', '--contexts', 'both')
        self.assert_ended(ended, WRONG_USAGE)


if __name__ == '__main__':
    unittest.main()
