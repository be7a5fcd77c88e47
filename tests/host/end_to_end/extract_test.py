"""What is chosen of one model, by the marking of a merge."""

import os
import re
import unittest

from plain_sharer import records_of, references_of
from support import DONE, NOTHING_WRITTEN, WRONG_USAGE, CorvelTest, project, wall

SAMPLES = os.path.join(os.path.dirname(__file__), '..', '..', '..', 'samples')
# Under an emulator the program sees this machine's root as a drive.
DRIVE = 'Z:' if os.environ.get('CORVEL_SYSTEM') == 'Windows' else ''
HOUSE = DRIVE + os.path.abspath(os.path.join(SAMPLES, 'house_IFC4.ifc'))
GUIDS = ('2O2Fr$t4X7Zf8NOew3FLOH', '1hqIFTRjfV6AWq_bMtnZwI')


class Extracted(CorvelTest):

    def extracted(self, source, *options):
        self.assert_ended(self.run_corvel('extract', source, '-o', 'out.ifc', *options), DONE)
        return records_of(self.read('out.ifc').decode('latin-1'))

    def two_walls(self):
        self.write('in.ifc', project(*wall(10, GUIDS[0]), *wall(20, GUIDS[1], 2)))
        return 'in.ifc'

    def test_the_selected_objects_stay_with_what_they_need(self):
        records = self.extracted(self.two_walls(), '--select', '#20')
        self.assertEqual([1, 20, 21, 22, 23], sorted(records))

    def test_objects_are_named_by_class_number_and_guid(self):
        source = self.two_walls()
        self.assertEqual([1, 10, 11, 12, 13], sorted(self.extracted(source, '--hide', GUIDS[1])))
        self.assertEqual([1, 10, 11, 12, 13], sorted(self.extracted(source, '--inactive', '#20')))
        self.assertEqual(9, len(self.extracted(source, '--select', 'ifcwall')))

    def test_without_a_choice_everything_stays(self):
        self.assertEqual(9, len(self.extracted(self.two_walls())))

    def test_is_what_a_merge_keeps_of_its_first_model(self):
        self.write('other.ifc', project(*wall(10, GUIDS[0])))
        for chosen in ('IfcDoor', 'IfcWall,IfcWallStandardCase', 'IfcWindow'):
            with self.subTest(chosen):
                ended = self.run_corvel('merge', HOUSE, 'other.ifc', '-o', 'out.ifc',
                                        '--select', '1:' + chosen, '--select', '2:IfcWall')
                self.assert_ended(ended, DONE)
                merged = records_of(self.read('out.ifc').decode('latin-1'))
                records = self.extracted(HOUSE, '--select', chosen)
                self.assertLess(10, len(records))
                self.assertEqual(records, {number: merged[number] for number in records})
                self.assertEqual(4, len(merged) - len(records), 'the other wall')

    def test_nothing_dangles_and_all_steps_of_federation_work(self):
        records = self.extracted(HOUSE, '--select', 'IfcDoor', '--prune', '--share-equal',
                                 '--stamp', '--header', 'new', '--numbers', 'exact')
        for _, arguments in records.values():
            self.assertLessEqual(set(references_of(arguments)), set(records))
        text = self.read('out.ifc').decode('latin-1')
        self.assertIn("'Input 1: house_IFC4.ifc'", text)
        self.assertEqual(1, text.count('=IFCGROUP('))
        self.assertNotIn('=IFCWINDOW(', text)

    def test_a_proposal_of_a_tree_is_written_instead_of_a_model(self):
        ended = self.run_corvel('extract', HOUSE, '--propose-tree', 'tree.txt')
        self.assert_ended(ended, DONE)
        self.assertEqual(['tree.txt'], self.names())
        self.assertTrue(self.read('tree.txt'))

    def test_an_offset_moves_the_model(self):
        told = self.extracted(HOUSE)
        moved = self.extracted(HOUSE, '--offset', '0,0,1250')
        added = [moved[number] for number in sorted(set(moved) - set(told))]
        self.assertEqual(('IFCCARTESIANPOINT', '(0.,0.,1.25E+00)'), added[0])
        self.assertEqual('IFCLOCALPLACEMENT', added[-1][0])

    def test_where_nothing_is_chosen_nothing_is_written(self):
        for mode, option in (('selected', ()), ('active', ('--inactive', 'IfcWall'))):
            with self.subTest(mode):
                ended = self.run_corvel('extract', self.two_walls(), '-o', 'none.ifc', '--mode',
                                        mode, *option)
                self.assert_ended(ended, NOTHING_WRITTEN)
                self.assertIn(f'corvel: No object is {mode}.\n', ended.err)
                self.assertNotIn('none.ifc', self.names())

    def test_a_name_of_nothing_is_wrong_usage(self):
        ended = self.run_corvel('extract', self.two_walls(), '-o', 'out.ifc', '--select', 'IfcDoor')
        self.assert_ended(ended, WRONG_USAGE)
        self.assertIn('IfcDoor', ended.err)

    def test_the_input_is_never_overwritten(self):
        ended = self.run_corvel('extract', self.two_walls(), '-o', 'in.ifc')
        self.assert_ended(ended, NOTHING_WRITTEN)
        self.assertTrue(re.search('never overwritten', ended.err), ended.err)


if __name__ == '__main__':
    unittest.main()
