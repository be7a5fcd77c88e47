"""Runs that go well, and what they leave behind."""

import json
import os
import subprocess
import unittest

from support import (CANCELLED, DONE, NOTHING_WRITTEN, ON_WINDOWS, PROGRAM, PROJECT, WITH_REPORTS,
                     WRONG_USAGE, CorvelTest, model, project, records_of, wall)

STOPPED = ('Stopped at a value that nobody could be asked about: see --answer and '
           '--ignore-enum-errors.')
POINT = '#7=IFCCARTESIANPOINT((1.,2.));'


class Resave(CorvelTest):

    def test_one_model_is_read_and_written(self):
        self.write('a.ifc', project(POINT))
        self.assert_ended(self.run_corvel('resave', 'a.ifc', 'out.ifc'), DONE, err='',
                          out='out.ifc was written.\n')
        self.assertEqual([PROJECT, POINT], records_of(self.read('out.ifc')))

    def test_nothing_else_is_left(self):
        self.write('a.ifc', project('#7=IFCPOLYLINE((#8,#9));', '#8=IFCCARTESIANPOINT((1.,2.));',
                                    '#9=IFCCARTESIANPOINT((3.,4.));'))
        self.run_corvel('resave', 'a.ifc', 'out.ifc')
        self.assertEqual(['a.ifc', 'out.ifc'], self.names())

    def test_written_twice_gives_the_same_bytes(self):
        self.write('a.ifc', project(POINT))
        self.run_corvel('resave', 'a.ifc', 'b.ifc')
        self.run_corvel('resave', 'b.ifc', 'c.ifc')
        self.assertEqual(self.read('b.ifc'), self.read('c.ifc'))

    def test_quiet_says_nothing(self):
        self.write('a.ifc', project())
        self.assert_ended(self.run_corvel('resave', '--quiet', 'a.ifc', 'out.ifc'), DONE, err='',
                          out='')

    def test_an_output_that_is_there_is_replaced(self):
        self.write('a.ifc', project(POINT))
        self.write('out.ifc', b'x' * 100000)
        self.assert_ended(self.run_corvel('resave', 'a.ifc', 'out.ifc'), DONE)
        self.assertTrue(self.read('out.ifc').endswith(b'END-ISO-10303-21;\n'))

    def test_capital_endings_are_models_too(self):
        self.write('A.IFC', project())
        self.assert_ended(self.run_corvel('resave', 'A.IFC', 'OUT.IFC'), DONE)
        self.assertEqual(['A.IFC', 'OUT.IFC'], self.names())


class Merge(CorvelTest):

    def points_of(self, name):
        return [line.split('=')[1] for line in records_of(self.read(name)) if 'POINT' in line]

    def test_all_objects_are_written_with_what_they_need_and_one_project(self):
        self.write('a.ifc', project(*wall(2, 'a', 1)))
        self.write('b.ifc', project(*wall(2, 'b', 3)))
        self.assert_ended(self.run_corvel('merge', 'a.ifc', 'b.ifc', '-o', 'out.ifc'), DONE,
                          err='', out='out.ifc was written.\n')
        lines = records_of(self.read('out.ifc'))
        self.assertEqual(9, len(lines))
        self.assertEqual(1, sum('=IFCPROJECT(' in line for line in lines))
        self.assertEqual(2, sum('=IFCWALL(' in line for line in lines))
        self.assertEqual(['IFCCARTESIANPOINT((1.,0.,0.));', 'IFCCARTESIANPOINT((3.,0.,0.));'],
                         self.points_of('out.ifc'))
        self.assertEqual(len(lines), len({line.split('=')[0] for line in lines}))

    def test_records_that_no_object_needs_are_left_out(self):
        self.write('a.ifc', project(POINT))
        self.write('b.ifc', project(*wall(2, 'b', 3)))
        self.assert_ended(self.run_corvel('merge', 'a.ifc', 'b.ifc', '-o', 'out.ifc'), DONE)
        self.assertEqual(['IFCCARTESIANPOINT((3.,0.,0.));'], self.points_of('out.ifc'))

    def test_a_model_may_be_merged_with_itself(self):
        self.write('a.ifc', project(*wall(2, 'a')))
        self.assert_ended(self.run_corvel('merge', 'a.ifc', 'a.ifc', '-o', 'out.ifc'), DONE)
        self.assertEqual(9, len(records_of(self.read('out.ifc'))))

    def test_three_models_fold_into_the_first(self):
        for name, x in (('a', 1), ('b', 2), ('c', 3)):
            self.write(name + '.ifc', project(*wall(2, name, x)))
        self.assert_ended(
            self.run_corvel('merge', 'a.ifc', 'b.ifc', 'c.ifc', '-o', 'out.ifc'), DONE)
        self.assertEqual([f'IFCCARTESIANPOINT(({x}.,0.,0.));' for x in (1, 2, 3)],
                         self.points_of('out.ifc'))

    def test_nothing_else_is_left(self):
        self.write('a.ifc', project(POINT))
        self.write('b.ifc', project('#7=IFCPOLYLINE((#8,#8));', '#8=IFCCARTESIANPOINT((1.,2.));'))
        self.run_corvel('merge', 'a.ifc', 'b.ifc', '-o', 'out.ifc')
        self.assertEqual(['a.ifc', 'b.ifc', 'out.ifc'], self.names())

    def test_the_same_run_gives_the_same_bytes(self):
        for name in ('a', 'b'):
            records = (wall(n, f'{name}{n}', n) for n in range(2, 400, 4))
            self.write(name + '.ifc', project(*(line for lines in records for line in lines)))
        self.run_corvel('merge', 'a.ifc', 'b.ifc', '-o', 'one.ifc')
        self.run_corvel('merge', 'a.ifc', 'b.ifc', '-o', 'two.ifc')
        self.assertEqual(801, len(records_of(self.read('one.ifc'))))
        self.assertEqual(self.read('one.ifc'), self.read('two.ifc'))


class Reports(CorvelTest):

    def test_a_report_keeps_the_log_and_tells_where_it_is(self):
        self.write('a.ifc', project())
        self.write('b.ifc', model(POINT))
        self.assert_ended(
            self.run_corvel('merge', 'a.ifc', 'b.ifc', '-o', 'out.ifc'), WITH_REPORTS, out='',
            err="corvel: b.ifc: Unable to merge projects properly because couldn't find IfcProject "
                'entity.\n'
                'corvel: out.ifc was written, but something was reported. More is told in the log: '
                'out_IFC_LOG.txt\n')
        self.assertEqual(['a.ifc', 'b.ifc', 'out.ifc', 'out_IFC_LOG.txt'], self.names())
        self.assertIn(b"couldn't find IfcProject entity.", self.read('out_IFC_LOG.txt'))

    def test_what_is_only_logged_counts_too(self):
        self.write('a.ifc', project("#2=IFCACTORROLE(.NOSUCHROLE.,$,$);"))
        ended = self.run_corvel('resave', '--ignore-enum-errors', 'a.ifc', 'out.ifc')
        self.assert_ended(ended, WITH_REPORTS,
                          err='corvel: out.ifc was written, but something was reported. More is told '
                              'in the log: out_IFC_LOG.txt\n')
        self.assertIn(b'does not contain: "NOSUCHROLE"', self.read('out_IFC_LOG.txt'))

    def test_an_unknown_enumeration_value_stops_without_the_option(self):
        self.write('a.ifc', project("#2=IFCACTORROLE(.NOSUCHROLE.,$,$);"))
        ended = self.run_corvel('resave', 'a.ifc', 'out.ifc')
        self.assert_ended(ended, NOTHING_WRITTEN)
        self.assertIn('corvel: ' + STOPPED, ended.err)
        self.assertIn('corvel: a.ifc: Enume IfcRoleEnum does not contain: "NOSUCHROLE"\n',
                      ended.err)
        self.assertNotIn('out.ifc', self.names())

    def test_a_replaced_schema_is_a_report(self):
        self.write('a.ifc', project(schema='IFC4X3_RC4'))
        ended = self.run_corvel('resave', 'a.ifc', 'out.ifc')
        if 'is left out of this build' in ended.err:
            self.skipTest('the program under test has fewer releases')
        self.assert_ended(ended, WITH_REPORTS)
        self.assertIn(b'Schema identifier: IFC4X3_RC4 is not supported. IFC4X3_ADD2 is used '
                      b'instead.', self.read('out_IFC_LOG.txt'))

    def report(self, *options, **others):
        """A run that has something to tell."""
        self.write('a.ifc', project("#2=IFCACTORROLE(.NOSUCHROLE.,$,$);"))
        return self.run_corvel('resave', '--ignore-enum-errors', 'a.ifc', 'out.ifc', *options,
                               **others)

    def assert_reported(self, ended, log, before=''):
        self.assert_ended(ended, WITH_REPORTS,
                          err=f'{before}corvel: out.ifc was written, but something was reported. '
                              f'More is told in the log: {log}\n')
        content = self.read(log)
        self.assertRegex(content, rb'^\[\d\d-\d\d-\d{4}    \d\d:\d\d:\d\d\]\r\n')
        self.assertIn(b'does not contain: "NOSUCHROLE"', content)
        self.assertIn(b'Saving DONE', content)

    def test_a_log_of_an_earlier_run_is_replaced(self):
        self.write('out_IFC_LOG.txt', b'[07-03-2024    09:05:00]\r\nold')
        self.assert_reported(self.report(), 'out_IFC_LOG.txt')
        self.assertEqual(['a.ifc', 'out.ifc', 'out_IFC_LOG.txt'], self.names())
        self.assertNotIn(b'old', self.read('out_IFC_LOG.txt'))

    def test_a_file_that_is_no_log_is_left_alone(self):
        self.write('out_IFC_LOG.txt', b'[07-03-2024 09:05:00] notes')
        os.mkdir(self.path('out_IFC_LOG2.txt'))
        self.assert_reported(self.report(), 'out_IFC_LOG3.txt')
        self.assertEqual(b'[07-03-2024 09:05:00] notes', self.read('out_IFC_LOG.txt'))

    def test_a_run_without_reports_makes_no_log_and_deletes_none(self):
        self.write('a.ifc', project())
        old = b'[07-03-2024    09:05:00]\r\nof an earlier run'
        self.write('out_IFC_LOG.txt', old)
        self.assert_ended(self.run_corvel('resave', 'a.ifc', 'out.ifc'), DONE, err='')
        self.assertEqual(old, self.read('out_IFC_LOG.txt'))

    def test_the_log_stands_beside_the_output(self):
        os.mkdir(self.path('sub'))
        self.write('a.ifc', project("#2=IFCACTORROLE(.NOSUCHROLE.,$,$);"))
        self.run_corvel('resave', '--ignore-enum-errors', 'a.ifc', 'sub/out.ifczip')
        self.assertEqual(['out.ifczip', 'out_IFC_LOG.txt'],
                         sorted(os.listdir(os.path.join(self.folder, 'sub'))))
        self.assertEqual(['a.ifc', 'sub'], self.names())

    def test_the_log_goes_where_it_is_wanted(self):
        os.mkdir(self.path('logs'))
        self.assert_reported(self.report('--log', 'logs/today.log'), 'logs/today.log')
        self.assertEqual(['a.ifc', 'logs', 'out.ifc'], self.names())
        self.write('logs/today.log', b'of somebody else')
        self.assert_reported(self.report('--log', 'logs/today.log'), 'logs/today2.log')

    def test_a_folder_that_refuses_the_log_is_no_failure(self):
        self.assert_ended(
            self.report('--log', 'nowhere/log.txt'), WITH_REPORTS,
            err='corvel: nowhere/log.txt: the log cannot be written there; the run goes on without '
                'it\n'
                'corvel: out.ifc was written, but something was reported.\n')
        self.assertEqual(['a.ifc', 'out.ifc'], self.names())

    def test_a_log_is_no_model_and_no_folder(self):
        self.write('a.ifc', project())
        for name, trouble in (('a.ifc', 'the name of the log is that of a model'),
                              ('.', 'this is a folder; name a file in it')):
            self.assert_ended(self.run_corvel('resave', 'a.ifc', 'out.ifc', '--log', name),
                              NOTHING_WRITTEN,
                              err=f'corvel: {name}: {trouble}\ncorvel: Nothing was written.\n')
        self.assertEqual(['a.ifc'], self.names())


class Answers(CorvelTest):
    """A number given twice asks whether to stop."""

    QUESTION = ('Logfile error: AddEntityByOrginalNumber method error: Entity with marker: 7 '
                'already exists.\n'
                'corvel: a.ifc: Entity duplicated: #7\n'
                'Cancel: Are you sure you want to cancel?\n')

    def setUp(self):
        super().setUp()
        self.write('a.ifc', project(POINT, '#7=IFCCARTESIANPOINT((8.,9.));'))

    def test_without_a_terminal_the_answer_is_yes_and_nobodys_wish(self):
        self.assert_ended(
            self.run_corvel('resave', 'a.ifc', 'out.ifc'), NOTHING_WRITTEN, out='',
            err=self.QUESTION + 'corvel: Yes, as nobody is asked.\ncorvel: ' + STOPPED +
                ' Nothing was written. More is told in the log: out_IFC_LOG.txt\n')
        self.assertEqual(['a.ifc', 'out_IFC_LOG.txt'], self.names())

    def test_yes_is_given_unasked(self):
        ended = self.run_corvel('resave', '--answer', 'yes', 'a.ifc', 'out.ifc')
        self.assert_ended(ended, CANCELLED)
        self.assertIn('corvel: Cancelled, nothing was written. ', ended.err)

    def test_no_goes_on_with_the_first_of_the_two(self):
        self.assert_ended(
            self.run_corvel('resave', '--answer', 'no', 'a.ifc', 'out.ifc'), WITH_REPORTS,
            err=self.QUESTION + 'corvel: No, as nobody is asked.\n'
                'corvel: out.ifc was written, but something was reported. More is told in the log: '
                'out_IFC_LOG.txt\n')
        self.assertIn(POINT, records_of(self.read('out.ifc')))
        self.assertEqual(2, len(records_of(self.read('out.ifc'))))


class Names(CorvelTest):

    def test_names_that_begin_with_a_dash(self):
        self.write('-a.ifc', project())
        self.write('--quiet', b'')
        self.assert_ended(self.run_corvel('merge', '-o', '-out.ifc', '--', '-a.ifc', '-a.ifc'),
                          DONE, err='', out='-out.ifc was written.\n')
        self.assertEqual(['--quiet', '-a.ifc', '-out.ifc'], self.names())

    def test_names_beyond_ascii(self):
        for name in ('Büro.ifc', '建物.ifc', '🏠 a b.ifc', "quote'.ifc", 'quote".ifc'):
            if ON_WINDOWS and '"' in name:
                continue  # no name may hold it there
            with self.subTest(name):
                self.write(name, project())
                out = 'out ' + name
                self.assert_ended(self.run_corvel('resave', name, out), DONE, err='',
                                  out=out + ' was written.\n')
                self.assertIn(out, self.names())

    @unittest.skipIf(ON_WINDOWS, 'every name is text there')
    def test_names_that_are_no_text(self):
        name = os.fsdecode(b'a\xff\xe9.ifc')
        out = os.fsdecode(b'out\xc3.ifc')
        self.write(name, project())
        self.assert_ended(self.run_corvel('resave', name, out), DONE, err='',
                          out=out + ' was written.\n')
        self.assertEqual(sorted([name, out]), self.names())

    @unittest.skipIf(ON_WINDOWS, 'no name may hold such characters there')
    def test_names_in_messages_are_safe_to_show(self):
        name, shown = 'a\x1b[2J\u202e\n.ifc', 'a?[2J??.ifc'
        self.assert_ended(self.run_corvel('resave', name, 'out.ifc'), NOTHING_WRITTEN,
                          err=f'corvel: {shown}: there is no such file\n'
                              'corvel: Nothing was written.\n')
        self.write(name, project("#2=IFCACTORROLE(.NOSUCHROLE.,$,$);"))
        ended = self.run_corvel('resave', name, 'out' + name, '--answer', 'no')
        self.assert_ended(ended, WITH_REPORTS)
        self.assertIn(f'corvel: {shown}: Enume IfcRoleEnum does not contain', ended.err)
        self.assertIn(f'corvel: out{shown} was written, but', ended.err)
        self.assertNotIn('\x1b', ended.err)
        self.assertNotIn('\u202e', ended.err)

    def test_folders_in_names(self):
        os.mkdir(self.path('sub'))
        self.write('sub/a.ifc', project())
        self.write('b.ifc', model(POINT))
        self.assert_ended(self.run_corvel('merge', 'sub/a.ifc', './b.ifc', '-o', 'sub/out.ifc'),
                          WITH_REPORTS)
        self.assertEqual(['a.ifc', 'out.ifc', 'out_IFC_LOG.txt'],
                         sorted(os.listdir(os.path.join(self.folder, 'sub'))))
        self.assertEqual(['b.ifc', 'sub'], self.names())


class WorkFiles(CorvelTest):
    """Where the reading keeps what it needs twice."""

    # The loop is read again once its point is there.
    MODEL = project('#2=IFCPOLYLOOP((#3));', '#3=IFCCARTESIANPOINT((0.,1.));')

    def setUp(self):
        super().setUp()
        self.write('a.ifc', self.MODEL)
        os.mkdir(self.path('work'))

    def assert_resaved(self, *options, **environment):
        ended = self.run_corvel('resave', 'a.ifc', 'out.ifc', *options,
                                env={**os.environ, **environment})
        self.assert_ended(ended, DONE, err='')
        self.assertIn(b'#2=IFCPOLYLOOP((#3));', self.read('out.ifc'))

    def test_nothing_is_left_of_them(self):
        for options in ((), ('--work-folder', 'work'), ('--work-folder=work',)):
            self.assert_resaved(*options)
            self.assertEqual(['a.ifc', 'out.ifc', 'work'], self.names())
            self.assertEqual([], os.listdir(self.path('work')))

    def test_nothing_is_left_of_them_by_a_merge(self):
        for name, number, guid in (('a.ifc', 10, 'a' * 22), ('b.ifc', 20, 'b' * 22)):
            self.write(name, project(*wall(number, guid)))  # each of its records refers forward
        self.run_corvel('merge', 'a.ifc', 'b.ifc', '-o', 'out.ifc', '--work-folder', 'work')
        for number in (10, 20):
            self.assertRegex(self.read('out.ifc'), b"IFCWALL\\(.*,#%d,\\$,\\$,\\$\\);" % (number + 1))
        self.assertEqual([], [name for name in self.names() if 'TEMP' in name])
        self.assertEqual([], os.listdir(self.path('work')))

    def test_nothing_is_left_of_a_reading_that_fails(self):
        self.write('bad.ifc', project('#2=IFCPOLYLOOP((#3));', '#3=IFCNOSUCHCLASS();'))
        ended = self.run_corvel('resave', 'bad.ifc', 'out.ifc', '--work-folder', 'work')
        self.assert_ended(ended, NOTHING_WRITTEN)
        self.assertEqual([], [name for name in self.names() if 'TEMP' in name])
        self.assertEqual([], os.listdir(self.path('work')))

    def test_files_of_their_former_names_are_not_touched(self):
        self.write('a_TEMP.ifc', b'#9=IFCWALL();')
        self.assert_resaved()
        self.assertEqual(b'#9=IFCWALL();', self.read('a_TEMP.ifc'))
        self.assert_ended(self.run_corvel('resave', 'a.ifc', 'a_TEMP.ifc'), DONE)
        self.assertEqual(['a.ifc', 'a_TEMP.ifc', 'out.ifc', 'work'], self.names())

    @unittest.skipIf(ON_WINDOWS, 'the folder has other names there')
    def test_they_go_where_the_system_wants_them(self):
        self.assert_resaved(TMPDIR=self.path('work').decode())
        ended = self.run_corvel('resave', 'a.ifc', 'out.ifc', env={**os.environ, 'TMPDIR': 'none'})
        self.assert_ended(ended, NOTHING_WRITTEN,
                          err='corvel: none: there is no such folder for work files\n'
                              'corvel: Nothing was written.\n')

    def test_a_folder_that_is_none_is_refused_before_anything_is_read(self):
        for folder in ('none', 'a.ifc'):
            ended = self.run_corvel('resave', 'a.ifc', 'out.ifc', '--work-folder', folder)
            self.assert_ended(ended, NOTHING_WRITTEN,
                              err=f'corvel: {folder}: there is no such folder for work files\n'
                                  'corvel: Nothing was written.\n')

    def test_an_option_without_a_folder_is_wrong_usage(self):
        ended = self.run_corvel('resave', 'a.ifc', 'out.ifc', '--work-folder=')
        self.assertEqual(WRONG_USAGE, ended.status)
        self.assertIn('--work-folder', ended.err)


class Info(CorvelTest):

    def test_json_tells_all_files_and_their_problems(self):
        self.write('a.ifc', project(POINT, '#8=IFCCARTESIANPOINT((3.,4.));'))
        self.write('b.ifc', b'no model')
        ended = self.run_corvel('info', '--json', 'a.ifc', 'b.ifc', 'c.ifc')
        self.assert_ended(
            ended, NOTHING_WRITTEN,
            err="corvel: b.ifc: this is no STEP file, it begins with 'no model'\n"
                'corvel: c.ifc: there is no such file\n')
        a, b, c = json.loads(ended.out)['files']
        self.assertEqual({'IFCCARTESIANPOINT': 2, 'IFCPROJECT': 1}, a['classes'])
        self.assertEqual(['IFCCARTESIANPOINT', 'IFCPROJECT'], list(a['classes']))
        self.assertEqual((3, 'IFC4', []), (a['records'], a['schema'], a['problems']))
        self.assertEqual(len(self.read('a.ifc')), a['bytes'])
        self.assertEqual('view', a['header']['description'][0])
        self.assertEqual(('IFC4', [1]), (a['model']['release'], a['model']['projects']))
        self.assertEqual((8, None, None), (b['bytes'], b['header'], b['schema']))
        self.assertEqual((None, None), (b['model'], c['model']))
        self.assertEqual((0, ['there is no such file']), (c['bytes'], c['problems']))

    def test_a_quick_look_leaves_out_the_facts_of_the_model_alone(self):
        self.write('a.ifc', project(POINT))
        whole = self.run_corvel('info', 'a.ifc')
        quick = self.run_corvel('info', '--quick', 'a.ifc')
        self.assert_ended(quick, DONE, err='')
        self.assertIn('  doubled GUIDs   0\n', whole.out)
        self.assertNotIn('doubled GUIDs', quick.out)
        kept = [line for line in whole.out.splitlines() if line in quick.out.splitlines()]
        self.assertEqual(kept, quick.out.splitlines())
        told, = json.loads(self.run_corvel('info', '--quick', '--json', 'a.ifc').out)['files']
        expected, = json.loads(self.run_corvel('info', '--json', 'a.ifc').out)['files']
        self.assertEqual({**expected, 'model': None}, told)

    def test_files_behind_a_bad_one_are_shown(self):
        self.write('b.ifc', project())
        ended = self.run_corvel('info', 'none.ifc', 'b.ifc')
        self.assert_ended(ended, NOTHING_WRITTEN, err='corvel: none.ifc: there is no such file\n')
        self.assertTrue(ended.out.startswith('b.ifc\n'), ended.out)
        self.assertIn('           1  IFCPROJECT\n', ended.out)

    def test_good_files_have_status_0_and_nothing_is_left(self):
        self.write('a.ifc', project())
        self.assert_ended(self.run_corvel('info', 'a.ifc', 'a.ifc'), DONE, err='')
        self.assertEqual(['a.ifc'], self.names())

    def test_a_full_standard_output_is_a_failure(self):
        self.write('a.ifc', project())
        with open('/dev/full', 'wb') as full:
            self.assert_ended(self.run_corvel('info', 'a.ifc', stdout=full), NOTHING_WRITTEN)
            self.assert_ended(self.run_corvel('--help', stdout=full), NOTHING_WRITTEN)


class Streams(CorvelTest):

    def test_messages_never_land_in_a_model(self):
        """A closed standard stream has the number that the next opened file would get."""
        self.write('a.ifc', project(POINT))
        self.write('b.ifc', model('#9=IFCDIRECTION((1.,0.));'))
        subprocess.run(['sh', '-c', 'exec "$0" merge a.ifc b.ifc -o out.ifc 0<&- 1>&- 2>&-',
                        PROGRAM], cwd=self.folder, timeout=60)
        content = self.read('out.ifc')
        self.assertTrue(content.startswith(b'ISO-10303-21;\nHEADER;\n'))
        self.assertTrue(content.endswith(b'ENDSEC;\nEND-ISO-10303-21;\n'))
        self.assertNotIn(b'corvel', content)

    def test_a_reader_that_goes_away_does_not_end_the_run(self):
        self.write('a.ifc', project())
        self.write('b.ifc', model(POINT))
        reading, writing = os.pipe()
        os.close(reading)
        ended = self.run_corvel('merge', 'a.ifc', 'b.ifc', '-o', 'out.ifc', stderr=writing)
        os.close(writing)
        self.assert_ended(ended, WITH_REPORTS)
        self.assertTrue(self.read('out.ifc').endswith(b'END-ISO-10303-21;\n'))


if __name__ == '__main__':
    unittest.main()
