"""Merges of a part of what is shown: lists of objects, offsets, options for one run."""

import os
import re
import unittest

from support import (DONE, NOTHING_WRITTEN, ON_WINDOWS, WITH_REPORTS, WRONG_USAGE, CorvelTest,
                     project, records_of, wall)

UNITS = ('#900=IFCUNITASSIGNMENT((#901));', '#901=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);')
PROJECT_WITH_UNITS = "#1=IFCPROJECT('0YvCt7Q5n0JgN0tW6Vw4pA',$,'P',$,$,$,$,$,#900);"
TOO_FEW = ('corvel: A merge needs at least two projects. Make sure that the objects you chose '
           'belong to two or more loaded projects.\ncorvel: Nothing was written.\n')


def house(name):
    """A building of two storeys on a site; a wall with an opening on each, a slab on the first."""
    return project(
        f"#2=IFCSITE('{name}site',$,$,$,$,$,$,$,$,$,$,$,$,$);",
        f"#3=IFCBUILDING('{name}building',$,$,$,$,$,$,$,$,$,$,$);",
        f"#4=IFCBUILDINGSTOREY('{name}ground',$,$,$,$,$,$,$,$,$);",
        f"#5=IFCBUILDINGSTOREY('{name}upper',$,$,$,$,$,$,$,$,$);",
        *wall(10, name + 'wall1', 1), *wall(20, name + 'wall2', 2),
        f"#30=IFCSLAB('{name}slab',$,$,$,$,$,$,$,$);",
        f"#31=IFCOPENINGELEMENT('{name}hole1',$,$,$,$,$,$,$,$);",
        f"#32=IFCOPENINGELEMENT('{name}hole2',$,$,$,$,$,$,$,$);",
        f"#40=IFCRELAGGREGATES('{name}r1',$,$,$,#1,(#2));",
        f"#41=IFCRELAGGREGATES('{name}r2',$,$,$,#2,(#3));",
        f"#42=IFCRELAGGREGATES('{name}r3',$,$,$,#3,(#4,#5));",
        f"#43=IFCRELCONTAINEDINSPATIALSTRUCTURE('{name}r4',$,$,$,(#10,#30),#4);",
        f"#44=IFCRELCONTAINEDINSPATIALSTRUCTURE('{name}r5',$,$,$,(#20),#5);",
        f"#45=IFCRELVOIDSELEMENT('{name}r6',$,$,$,#10,#31);",
        f"#46=IFCRELVOIDSELEMENT('{name}r7',$,$,$,#20,#32);")


ALL = {'site', 'building', 'ground', 'upper', 'wall1', 'wall2', 'slab', 'hole1', 'hole2'}
ABOVE_GROUND = {'site', 'building', 'ground'}


class Selection(CorvelTest):

    def setUp(self):
        super().setUp()
        for name in 'abc':
            self.write(name + '.ifc', house(name))

    def merge(self, *options, inputs=('a.ifc', 'b.ifc')):
        return self.run_corvel('merge', *inputs, '-o', 'out.ifc', *options)

    def kept(self, model):
        """The objects of one of the houses in the output, without the letter of the house."""
        lines = records_of(self.read('out.ifc'))
        self.assertFalse(self.dangling(lines))
        found = {match[1] for line in lines if (match := re.search(rf"\('{model}(\w+)'", line))}
        return {name for name in found if not re.fullmatch(r'r\d', name)}

    @staticmethod
    def dangling(lines):
        """References to numbers that no line defines."""
        defined = {line.split('=')[0] for line in lines}
        return [line for line in lines
                if set(re.findall(r'#\d+', line.split('=', 1)[1])) - defined]

    def merged(self, *options, **named):
        self.assert_ended(self.merge(*options, **named), DONE, err='')

    def test_without_lists_everything_is_kept(self):
        self.merged()
        self.assertEqual([ALL, ALL], [self.kept('a'), self.kept('b')])

    def test_selected_objects_keep_what_they_stand_in(self):
        self.merged('--select', '1:#10', '--select', 'b.ifc:IFCSLAB')
        self.assertEqual(ABOVE_GROUND | {'wall1'}, self.kept('a'))
        self.assertEqual(ABOVE_GROUND | {'slab'}, self.kept('b'))

    def test_lists_on_one_model_add_up(self):
        self.merged('--select', '1:#10,aslab', '--select', '1:#31', '--select', '2:IfcSlab')
        self.assertEqual(ABOVE_GROUND | {'wall1', 'slab', 'hole1'}, self.kept('a'))

    def test_hidden_objects_are_left_out(self):
        self.merged('--hide', '1:IfcSlab', '--hide', '2:bwall2')
        self.assertEqual(ALL - {'slab'}, self.kept('a'))
        self.assertEqual(ALL - {'wall2', 'hole2'}, self.kept('b'))

    def test_inactive_objects_are_left_out(self):
        self.merged('--inactive', '1:ifcslab')
        self.assertEqual([ALL - {'slab'}, ALL], [self.kept('a'), self.kept('b')])

    def test_an_opening_is_as_visible_as_its_wall(self):
        self.merged('--hide', '1:IfcOpeningElement')
        self.assertEqual(ALL, self.kept('a'))

    def test_the_mode_decides_which_lists_count(self):
        self.merged('--hide', '1:IfcSlab', '--mode', 'active')
        self.assertEqual(ALL, self.kept('a'))
        self.merged('--select', '1:#10', '--hide', '1:IfcSlab', '--mode', 'visible')
        self.assertEqual(ALL - {'slab'}, self.kept('a'))

    def test_the_project_stands_for_its_objects(self):
        self.merged('--select', '1:IfcProject', '--select', '2:bslab')
        self.assertEqual([ALL, ABOVE_GROUND | {'slab'}], [self.kept('a'), self.kept('b')])

    def test_a_model_of_which_nothing_is_kept_takes_no_part(self):
        self.merged('--select', 'a.ifc:#30', '--select', 'c.ifc:#30',
                    inputs=('a.ifc', 'b.ifc', 'c.ifc'))
        self.assertEqual([ABOVE_GROUND | {'slab'}, set(), ABOVE_GROUND | {'slab'}],
                         [self.kept(name) for name in 'abc'])

    def test_two_models_have_to_take_part(self):
        for options in (('--select', '1:#30'), ('--mode', 'selected'),
                        ('--inactive', '2:IfcProject'), ('--hide', '1:IfcProject')):
            with self.subTest(options):
                self.assert_ended(self.merge(*options), NOTHING_WRITTEN, err=TOO_FEW, out='')
        self.assertNotIn('out.ifc', self.names())

    def test_nothing_active_is_told(self):
        self.assert_ended(
            self.merge('--inactive', '1:IfcProject', '--inactive', '2:#1', '--select', '1:#10'),
            NOTHING_WRITTEN, out='',
            err='corvel: No object is active.\ncorvel: Nothing was written.\n')

    def test_a_model_with_a_project_alone_takes_part(self):
        self.write('empty.ifc', project())
        self.merged(inputs=('a.ifc', 'empty.ifc'))
        self.assertEqual(ALL, self.kept('a'))

    def test_names_of_files_may_have_colons(self):
        if ON_WINDOWS:
            self.skipTest('there a colon means something else')
        os.mkdir(self.path('x:y'))
        self.write('x:y/d:1.ifc', house('d'))
        for name in ('x:y/d:1.ifc', 'd:1.ifc', '2'):
            with self.subTest(name):
                self.merged('--select', '1:#30', '--select', name + ':#10',
                            inputs=('a.ifc', 'x:y/d:1.ifc'))
                self.assertEqual(ABOVE_GROUND | {'wall1'}, self.kept('d'))

    def test_what_matches_nothing_is_told_before_anything_is_made(self):
        self.assert_ended(
            self.merge('--hide', '2:#10,#11,IfcWal,nobody', '--select', '1:#99'), WRONG_USAGE,
            out='',
            err='corvel: --select: no object of a.ifc has the number #99\n'
                "corvel: See 'corvel tree a.ifc'.\n"
                'corvel: --hide: no object of b.ifc has the number #11\n'
                'corvel: --hide: no object of b.ifc is of the class IfcWal; the nearest there is '
                'IfcWall\n'
                'corvel: --hide: no object of b.ifc has the GUID nobody\n'
                "corvel: See 'corvel tree b.ifc'.\n")
        self.assertEqual(['a.ifc', 'b.ifc', 'c.ifc'], sorted(os.listdir(self.folder)))

    def test_a_list_on_a_file_that_is_no_model_tells_why(self):
        self.write('b.ifc', b'hello')
        self.assert_ended(
            self.merge('--hide', '2:IfcWall'), NOTHING_WRITTEN, out='',
            err="corvel: b.ifc: this is no STEP file, it begins with 'hello'\n"
                'corvel: Nothing was written.\n')

    def test_wrong_words_are_wrong_usage(self):
        for options, begin in (
                (('--select', 'z.ifc:#1'), "--select: there is no input 'z.ifc'"),
                (('--hide', 'a.ifc'), "--hide takes FILE:LIST, not 'a.ifc'"),
                (('--inactive', '1:#x'), "--inactive: '#x' is no number of a record"),
                (('--mode', 'all'), "--mode takes 'active', 'visible' or 'selected', not 'all'"),
                (('--offset', '1=1,2,nan'), '--offset takes FILE=X,Y,Z with three numbers'),
                (('--center', '1,2'), '--center takes X,Y,Z with three numbers, not'),
                (('--on-duplicate-guid', 'x'), "--on-duplicate-guid takes 'generate' or 'skip'"),
                (('--ofset', '1=1,2,3'), "unknown option '--ofset'; the nearest is '--offset'")):
            with self.subTest(options):
                ended = self.merge(*options)
                self.assert_ended(ended, WRONG_USAGE, out='')
                self.assertTrue(ended.err.startswith('corvel: merge: ' + begin), ended.err)

    def test_openings_can_be_deleted(self):
        self.merged('--delete-openings')
        self.assertEqual([ALL - {'hole1', 'hole2'}] * 2, [self.kept('a'), self.kept('b')])


class Options(CorvelTest):
    """Options that hold for one run."""

    def metres(self, name, *records):
        content = project(*UNITS, *records).decode()
        start = content.index('#1=IFCPROJECT')
        rest = content[content.index('\n', start):]
        self.write(name, (content[:start] + PROJECT_WITH_UNITS + rest).encode())

    def shifts(self):
        """By how much the placement above that of each wall moves it; None where there is none."""
        records = dict(line.split('=', 1) for line in records_of(self.read('out.ifc')))
        found = []
        for text in records.values():
            if not text.startswith('IFCWALL('):
                continue
            placement = records[re.findall(r'#\d+', text)[-1]]
            above = re.match(r'IFCLOCALPLACEMENT\((#\d+),', placement)
            point = None
            if above:
                axes = records[re.findall(r'#\d+', records[above[1]])[-1]]
                texts = re.match(r'IFCCARTESIANPOINT\(\((.*)\)\);',
                                 records[re.findall(r'#\d+', axes)[0]])[1]
                point = [float(text) for text in texts.split(',')]
            found.append(point)
        return found

    def test_an_offset_moves_its_model_in_millimetres(self):
        self.metres('a.ifc', *wall(2, 'a'))
        self.metres('b.ifc', *wall(2, 'b'))
        self.assert_ended(self.run_corvel('merge', 'a.ifc', 'b.ifc', '-o', 'out.ifc', '--offset',
                                          'b.ifc=1000,-2500,0.5'), DONE, err='')
        self.assertEqual([None, [1, -2.5, 0.0005]], self.shifts())

    def test_the_centre_moves_all_models_in_metres(self):
        self.metres('a.ifc', *wall(2, 'a'))
        self.metres('b.ifc', *wall(2, 'b'))
        self.assert_ended(self.run_corvel('merge', 'a.ifc', 'b.ifc', '-o', 'out.ifc', '--center',
                                          '-10,20,0', '--offset', '2=0,0,1000'), DONE, err='')
        self.assertEqual([[10, -20, 0], [10, -20, 1]], self.shifts())

    def test_models_of_other_units_take_part_when_units_are_ignored(self):
        self.metres('a.ifc', *wall(2, 'a'))
        self.metres('b.ifc', *wall(2, 'b'))
        self.write('b.ifc', self.read('b.ifc').replace(b'$,.METRE.', b'.MILLI.,.METRE.'))
        ended = self.run_corvel('merge', 'a.ifc', 'b.ifc', '-o', 'out.ifc')
        self.assertNotIn('out.ifc', self.names())
        self.assert_ended(ended, NOTHING_WRITTEN, out='')
        ended = self.run_corvel('merge', 'a.ifc', 'b.ifc', '-o', 'out.ifc', '--ignore-units')
        self.assertIn(ended.status, (DONE, WITH_REPORTS), ended.err)
        self.assertEqual(2, self.read('out.ifc').count(b'=IFCWALL('))

    def test_options_of_one_run_are_not_remembered(self):
        self.write('a.ifc', project(*wall(2, 'a')))
        self.write('b.ifc', project(*wall(2, 'b')))
        os.mkdir(self.path('user'))
        self.write('user/config.txt', b'true\nfalse\nfalse\nfalse\n7\n8\nfalse\n')
        self.assert_ended(
            self.run_corvel('merge', 'a.ifc', 'b.ifc', '-o', 'out.ifc', '--user-folder', 'user',
                            '--ignore-units', '--delete-openings', '--ignore-enum-errors',
                            '--on-duplicate-guid', 'skip'), DONE, err='')
        self.assertEqual(b'true\nfalse\nfalse\nfalse\n7\n8\nfalse\n',
                         self.read('user/config.txt').replace(b'\r\n', b'\n'))


if __name__ == '__main__':
    unittest.main()
