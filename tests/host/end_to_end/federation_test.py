"""The options that go beyond the fold, as users give them, on the models of this repository."""

import os
import re
import unittest

from support import DONE, NOTHING_WRITTEN, WRONG_USAGE, CorvelTest, project

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

    @staticmethod
    def house_text(house=HOUSE):
        with open(house[len(DRIVE):], encoding='latin-1', newline='') as file:
            return file.read()

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

    def test_a_model_merged_with_itself_is_that_model(self):
        for house in (HOUSE, HOUSE_OF_IFC4):
            with self.subTest(house):
                joined = self.merged('--contexts', 'join', '--guids', 'join', '--prune', house=house)
                self.assert_ended(self.run_corvel('resave', house, 'one.ifc', '--prune'), DONE)
                one = self.read('one.ifc').decode('latin-1')
                self.assertEqual(one.split('DATA;')[1], joined.split('DATA;')[1])

    def test_without_the_prune_nothing_of_the_copy_stays_but_what_its_project_had(self):
        joined = self.merged('--contexts', 'join', '--guids', 'join')
        told = self.merged()
        guids = re.findall(r"^#\d+=IFC\w+\('([0-3][\w$]{21})'", joined, re.MULTILINE)
        self.assertEqual(len(guids), len(set(guids)))
        for name in ('WALLSTANDARDCASE', 'SHAPEREPRESENTATION', 'LOCALPLACEMENT', 'PROPERTYSET',
                     'RELDEFINESBYPROPERTIES', 'OWNERHISTORY', 'STYLEDITEM', 'APPLICATION'):
            with self.subTest(name):
                self.assertLess(0, count(told, name))
                self.assertEqual(count(told, name), 2 * count(joined, name))

    def test_one_wall_that_differs_is_there_twice_with_two_guids(self):
        house = self.house_text()
        wall = re.search(r"^#\d+=IFCWALLSTANDARDCASE\('([^']+)',(#\d+),'([^']*)'", house, re.MULTILINE)
        self.write('other.ifc', house.replace(wall[0], wall[0][:-1] + " changed'").encode('latin-1'))
        ended = self.run_corvel('merge', HOUSE, 'other.ifc', '-o', 'out.ifc', '--contexts', 'join',
                                '--guids', 'join', '--prune')
        self.assert_ended(ended, DONE)
        merged = self.read('out.ifc').decode('latin-1')
        self.assertEqual(count(house, 'WALLSTANDARDCASE') + 1, count(merged, 'WALLSTANDARDCASE'))
        self.assertEqual(count(house, 'DOOR'), count(merged, 'DOOR'))
        changed = re.search(rf"^#\d+=IFCWALLSTANDARDCASE\('([^']+)',#\d+,'{re.escape(wall[3])} changed'",
                            merged, re.MULTILINE)
        self.assertNotEqual(wall[1], changed[1])
        numbers = set(re.findall(r'^#(\d+)=', merged, re.MULTILINE))
        self.assertLessEqual(set(re.findall(r'[(,]#(\d+)', merged)), numbers)

    def test_one_building_of_two_copies_is_one_of_each_with_both_stamps(self):
        for house in (HOUSE, HOUSE_OF_IFC4):
            with self.subTest(house):
                one = self.merged('--one-building', house=house)
                source = self.house_text(house)
                for name in ('SITE', 'BUILDING', 'BUILDINGSTOREY', 'DOOR', 'PROPERTYSET',
                             'RELCONTAINEDINSPATIALSTRUCTURE'):
                    self.assertEqual(count(source, name), count(one, name), name)
                self.assertEqual(count(source, 'GROUP') + 2, count(one, 'GROUP'))
                self.assertIn("'Input 2: " + os.path.basename(house) + "'", one)
                self.assertEqual(one.split('DATA;')[1],
                                 self.merged('--one-building', house=house).split('DATA;')[1])

    def test_options_behind_one_building_change_their_part(self):
        but_stamps = ('--one-building', '--units', 'keep', '--contexts', 'keep', '--place', 'keep',
                      '--tree', 'keep', '--guids', 'keep', '--no-prune', '--no-share-equal',
                      '--header', 'told')
        self.assertEqual(self.merged(), self.merged(*but_stamps, '--no-stamp'))
        self.assertEqual(self.merged('--stamp'), self.merged(*but_stamps))

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
            told, self.merged('--contexts', 'keep', '--place', 'keep', '--tree', 'keep', '--guids',
                              'keep', '--header', 'told'))

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

    def test_a_proposal_writes_a_list_and_no_model(self):
        ended = self.run_corvel('merge', HOUSE, HOUSE, '--propose-tree', 'tree.txt')
        self.assert_ended(ended, DONE)
        self.assertIn('tree.txt was written.', ended.out)
        self.assertFalse([name for name in self.names() if name.endswith(('.ifc', '.part'))])
        words = [line.split()[0] for line in self.read('tree.txt').decode().splitlines()]
        self.assertEqual(words.count('join'), words.count('apart'))
        self.assertIn('join', words)

    def test_a_proposal_that_is_taken_back_is_what_was_proposed(self):
        self.run_corvel('merge', HOUSE, HOUSE, '--propose-tree', 'tree.txt')
        self.assertEqual(self.merged('--tree', 'one'), self.merged('--tree-map', 'tree.txt'))

    def test_a_mistake_in_a_list_stops_the_run_before_it_writes(self):
        for content in (b'join 2:#1\n', b'join 2:#1 1:#1\n'):
            self.write('tree.txt', b'\n' + content)
            ended = self.run_corvel('merge', HOUSE, HOUSE, '-o', 'out.ifc', '--tree-map',
                                    'tree.txt')
            self.assertEqual(NOTHING_WRITTEN, ended.status)
            self.assertIn('tree.txt, line 2: ', ended.err)
            self.assertNotIn('out.ifc', self.names())

    def test_a_list_is_no_model_and_no_input(self):
        for name in ('tree.ifc', HOUSE):
            ended = self.run_corvel('merge', HOUSE, HOUSE, '--propose-tree', name)
            self.assertEqual(NOTHING_WRITTEN, ended.status)
            self.assertIn('the name of the list is that of a model', ended.err)

    def test_another_word_is_wrong_usage(self):
        ended = self.run_corvel('merge', HOUSE, HOUSE, '-o', 'out.ifc', '--contexts', 'both')
        self.assert_ended(ended, WRONG_USAGE)


if __name__ == '__main__':
    unittest.main()
