"""Whatever comes in, a run ends with a message and leaves nothing half done."""

import io
import os
import random
import re
import shutil
import subprocess
import tempfile
import unittest
import zipfile

from support import (CANCELLED, DONE, LONGEST_RUN, NOTHING_WRITTEN, PROGRAM, WITH_REPORTS,
                     CorvelTest, data_limit, large_model, model, project, wall)

POINT = '#7=IFCCARTESIANPOINT((1.,2.));'

LOG = ' More is told in the log: out_IFC_LOG.txt\n'
NO_HEADER = 'Unable to read header token. No schema identifier can be read.'

# One of each kind of value, references in both directions, strings with escapes.
SMALL = project(
    '#2=IFCOWNERHISTORY(#3,#4,$,.ADDED.,$,$,$,1700000000);',
    "#3=IFCPERSONANDORGANIZATION(#5,#6,$);",
    "#4=IFCAPPLICATION(#6,'1','it''s \\X2\\00FC\\X0\\','x');",
    "#5=IFCPERSON($,'n',$,('a','b'),$,$,$,$);",
    "#6=IFCORGANIZATION($,'o',$,$,$);",
    "#7=IFCPROPERTYSINGLEVALUE('p',$,IFCLENGTHMEASURE(1.5E-3),$);",
    '#8=IFCPOLYLINE((#9,#10));',
    '#9=IFCCARTESIANPOINT((0.,-1.,2.5));',
    '#10=IFCCARTESIANPOINT((1.,2.));').replace(b"$,'P',$", b"#2,'P',$")


class Refused(CorvelTest):
    """Before anything is read: a message for the file, and not even a log."""

    def assert_refused(self, message, *arguments):
        before = self.names()
        self.assert_ended(self.run_corvel(*arguments), NOTHING_WRITTEN, out='',
                          err=f'corvel: {message}\ncorvel: Nothing was written.\n')
        self.assertEqual(before, self.names())

    def setUp(self):
        super().setUp()
        self.write('a.ifc', project())

    def test_a_missing_file(self):
        self.assert_refused('none.ifc: there is no such file', 'resave', 'none.ifc', 'out.ifc')
        self.assert_refused('none.ifc: there is no such file', 'merge', 'a.ifc', 'none.ifc', '-o',
                            'out.ifc')

    def test_a_folder(self):
        os.mkdir(self.path('folder.ifc'))
        self.assert_refused('folder.ifc: this is a folder, not a model', 'resave', 'folder.ifc',
                            'out.ifc')

    def test_an_empty_file(self):
        self.write('empty.ifc', b'')
        self.assert_refused('empty.ifc: this file is empty', 'merge', 'empty.ifc', 'a.ifc', '-o',
                            'out.ifc')

    def test_a_file_of_another_kind(self):
        self.write('a.txt', project())
        self.assert_refused('a.txt: the name of a model has to end in .ifc or .ifczip', 'resave', 'a.txt',
                            'out.ifc')

    def test_a_log_that_is_named_as_a_model_is_not_overwritten(self):
        self.write('a_IFC_LOG.txt', b'kept')
        self.assert_refused('a_IFC_LOG.txt: the name of a model has to end in .ifc or .ifczip', 'merge',
                            'a.ifc', 'a_IFC_LOG.txt', '-o', 'out.ifc')
        self.assertEqual(b'kept', self.read('a_IFC_LOG.txt'))

    def test_a_pipe_that_nobody_writes_to(self):
        os.mkfifo(self.path('pipe.ifc'))
        self.assert_refused('pipe.ifc: this is no ordinary file', 'resave', 'pipe.ifc', 'out.ifc')
        self.assert_refused('pipe.ifc: this is no ordinary file', 'resave', 'a.ifc', 'pipe.ifc')

    def test_an_output_that_is_an_input(self):
        before = self.read('a.ifc')
        os.link(self.path('a.ifc'), self.path('hard.ifc'))
        os.symlink('a.ifc', self.path('soft.ifc'))
        for name in ('a.ifc', './a.ifc', 'hard.ifc', 'soft.ifc'):
            with self.subTest(name):
                self.assert_refused(
                    f'{name}: the output is also an input, and inputs are never overwritten',
                    'resave', 'a.ifc', name)
        self.assertEqual(before, self.read('a.ifc'))

    def test_an_output_that_cannot_be(self):
        os.mkdir(self.path('folder.ifc'))
        for name, message in (
                ('none/out.ifc', 'the folder for the output does not exist'),
                ('folder.ifc', 'this is a folder; name a file in it'),
                ('out.txt', 'the name of the output has to end in .ifc or .ifczip'),
                ('out', 'the name of the output has to end in .ifc or .ifczip'),
                ('/proc/out.ifc', 'the output cannot be written there')):
            with self.subTest(name):
                self.assert_refused(f'{name}: {message}', 'resave', 'a.ifc', name)

    def test_all_that_is_wrong_is_told_at_once(self):
        self.assert_refused(
            'x.ifc: there is no such file\ncorvel: y.ifc: there is no such file\n'
            'corvel: out: the name of the output has to end in .ifc or .ifczip',
            'merge', 'x.ifc', 'a.ifc', 'y.ifc', '-o', 'out')

    def test_a_file_that_is_no_step_file_says_what_it_is(self):
        for content, what in ((b'hello\nyou', "'hello'"),
                              (b'\n <?xml version="1.0"?>', "'<?xml version=\"1.0\"?>' (XML)"),
                              (b'{"type": 1}', "'{\"type\": 1}' (JSON)"),
                              (b'\x1f\x8b\x08\x00abc', '1F 8B 08 00 (gzip)'),
                              (b'PK\x03\x04abc',
                               '50 4B 03 04 (a zip archive, whose name has to end in .ifczip)'),
                              (b'\xef\xbb\xbf' + SMALL, 'EF BB BF 49 (a byte order mark)'),
                              (b'\xff\xfeI\x00', 'FF FE 49 00 (text in UTF-16)'),
                              (b'\xff', 'FF')):
            with self.subTest(what):
                self.write('x.ifc', content)
                self.assert_refused(f'x.ifc: this is no STEP file, it begins with {what}', 'merge',
                                    'a.ifc', 'x.ifc', '-o', 'out.ifc')

    def test_an_archive_without_a_model(self):
        with zipfile.ZipFile(os.path.join(self.folder, 'x.ifczip'), 'w') as archive:
            archive.writestr('readme.txt', 'hello')
        self.assert_refused("x.ifczip: the model in it is no STEP file, it begins with 'hello'",
                            'resave', 'x.ifczip', 'out.ifc')

    def test_a_header_that_cannot_be_read(self):
        self.write('x.ifc', b'ISO-10303-21;\nHEAD')
        self.assert_refused(f'x.ifc: {NO_HEADER}', 'merge', 'x.ifc', 'a.ifc', '-o', 'out.ifc')

    def test_a_schema_that_nothing_serves(self):
        self.write('x.ifc', project(schema='IFC5'))
        self.assert_refused("x.ifc: no release of IFC serves its schema 'IFC5'", 'resave', 'x.ifc',
                            'out.ifc')
        self.assert_refused("x.ifc: no release of IFC serves its schema 'IFC5'", 'merge', 'x.ifc',
                            'a.ifc', '-o', 'out.ifc')
        self.write('x.ifc', project(schema='\x1b[2J'))
        self.assert_refused("x.ifc: no release of IFC serves its schema '?[2J'", 'resave', 'x.ifc',
                            'out.ifc')

    def test_models_none_of_which_has_the_schema_of_the_first(self):
        self.write('b.ifc', project(schema='IFC2X3'))
        self.write('c.ifc', project(schema='IFC5'))
        self.assert_refused(
            "b.ifc: its schema is 'IFC2X3', and that of the first, a.ifc, is 'IFC4'\n"
            "corvel: c.ifc: its schema is 'IFC5', and that of the first, a.ifc, is 'IFC4'",
            'merge', 'a.ifc', 'b.ifc', 'c.ifc', '-o', 'out.ifc')

    def test_an_empty_name(self):
        self.assert_refused(': the name of an input is empty', 'resave', '', 'out.ifc')
        self.assert_refused(': the name of the output is empty', 'resave', 'a.ifc', '')


class Unreadable(CorvelTest):

    def assert_unreadable(self, content, *messages):
        """Each message is a line with the name of the file; the log is kept, nothing else."""
        self.write('a.ifc', content)
        lines = ''.join(f'corvel: a.ifc: {message}\n' for message in messages)
        self.assert_ended(self.run_corvel('resave', 'a.ifc', 'out.ifc'), NOTHING_WRITTEN, out='',
                          err=lines + 'corvel: Nothing was written.' + LOG)
        self.assertEqual(['a.ifc', 'out_IFC_LOG.txt'], self.names())

    def test_an_unknown_class(self):
        self.assert_unreadable(
            project('#2=IFCSPACESHIP($);'), 'Entity named: IFCSPACESHIP not found.',
            'Unable to read entity, marker #2. Parsing will be terminate.')

    def test_a_complex_instance(self):
        self.assert_unreadable(
            project('#2=(IFCNAMEDUNIT(*,.LENGTHUNIT.)IFCSIUNIT($,.METRE.));'),
            'Expected: entity name. Got: OpenBracketToken.',
            'Unable to read entity, marker #2. Parsing will be terminate.')

    def test_a_number_that_is_too_large(self):
        self.assert_unreadable(project('#4294967280=IFCWALL();'), 'stoul argument out of range')

    def test_a_bad_later_file_of_a_merge(self):
        self.write('a.ifc', project())
        self.write('b.ifc', project('#2=IFCSPACESHIP($);'))
        self.assert_ended(
            self.run_corvel('merge', 'a.ifc', 'b.ifc', '-o', 'out.ifc'), NOTHING_WRITTEN, out='',
            err='corvel: b.ifc: Entity named: IFCSPACESHIP not found.\n'
                'corvel: b.ifc: Unable to read entity, marker #2. Parsing will be terminate.\n'
                'corvel: Nothing was written.' + LOG)
        self.assertEqual(['a.ifc', 'b.ifc', 'out_IFC_LOG.txt'], self.names())

    def test_a_file_of_no_release_is_left_out_and_named(self):
        self.write('a.ifc', project(POINT))
        self.write('b.ifc', project(schema='IFC5'))
        self.write('c.ifc', project())
        self.assert_ended(
            self.run_corvel('merge', 'a.ifc', 'b.ifc', 'c.ifc', '-o', 'out.ifc'), WITH_REPORTS,
            err='corvel: b.ifc: Unknown schema identifier : IFC5\n'
                'corvel: Not all projects can be merged with "a.ifc"(IFC4) because their IFC '
                'schema is different.\nProjects that will not be merged:\nb.ifc(IFC5)\n\n'
                'Projects that will be merged with the first one:\n\nc.ifc"\n'
                'corvel: out.ifc was written, but something was reported.' + LOG)

    def test_an_output_that_is_there_survives_a_run_that_fails_before_writing(self):
        self.write('a.ifc', project('#2=IFCSPACESHIP($);'))
        self.write('out.ifc', b'kept')
        self.assert_ended(self.run_corvel('resave', 'a.ifc', 'out.ifc'), NOTHING_WRITTEN)
        self.assertEqual(b'kept', self.read('out.ifc'))


class Damaged(CorvelTest):
    """No sensible outcome is prescribed, but order is kept."""

    def assert_orderly(self, content, what):
        self.write('a.ifc', content)
        try:
            ended = self.run_corvel('resave', 'a.ifc', 'out.ifc')
        except subprocess.TimeoutExpired:
            self.fail(f'hangs on {what}')
        names = set(self.names())
        self.assertIn(ended.status, (DONE, NOTHING_WRITTEN, CANCELLED, WITH_REPORTS),
                      (what, ended.err))
        written = {'out.ifc'} if ended.status in (DONE, WITH_REPORTS) else set()
        # Refusals before the run leave no log, nor does a run without reports.
        self.assertEqual({'a.ifc'} | written, names - {'out_IFC_LOG.txt'}, what)
        if ended.status != DONE:
            self.assertIn('a.ifc: ', ended.err, what)
        if ended.status == NOTHING_WRITTEN:
            self.assertIn('Nothing was written.', ended.err, what)
        elif ended.status == CANCELLED:
            self.assertIn('corvel: Cancelled, nothing was written.', ended.err, what)
        else:
            # The closing line repeats the first word of the input, whatever that is.
            self.assertRegex(self.read('out.ifc'), rb'(?s)^ISO.*\nENDSEC;\nEND-ISO[^\n]*;\n$', what)
        for name in names - {'a.ifc'}:
            os.remove(self.path(name))
        return ended.status

    def test_cut_at_every_byte_but_in_the_middle_of_words(self):
        statuses = {size: self.assert_orderly(SMALL[:size], f'the first {size} bytes')
                    for size in range(len(SMALL) + 1)
                    if not re.match(rb'\w{4}', SMALL[max(size - 2, 0):size + 2])}
        whole = SMALL.index(b'END-ISO-10303-21;') + len(b'END-ISO-10303-21;')
        self.assertEqual({DONE}, {statuses[size] for size in statuses if size >= whole})
        self.assertNotIn(DONE, [statuses[size] for size in statuses if size < whole])
        # Without a readable schema identifier there is no model at all.
        schema = SMALL.index(b"'IFC4'") + len(b"'IFC4")
        self.assertEqual({NOTHING_WRITTEN}, {statuses[size] for size in statuses if size < schema})
        # Between two records nothing is lost of those that are there.
        self.assertEqual(WITH_REPORTS, statuses[SMALL.index(b'\n#2=') + 1])

    def test_a_cut_file_is_told_and_written_as_far_as_it_goes(self):
        self.write('a.ifc', SMALL[:SMALL.index(b'\n#2=')])
        self.assert_ended(
            self.run_corvel('resave', 'a.ifc', 'out.ifc'), WITH_REPORTS,
            err='corvel: a.ifc: The closing line END-ISO-10303-21; is missing: the file seems to '
                'be cut short. The reading ended in line 8.\n'
                'corvel: out.ifc was written, but something was reported.' + LOG)

    def test_random_bytes(self):
        source = random.Random(1)
        for number in range(30):
            self.assertEqual(NOTHING_WRITTEN,
                             self.assert_orderly(source.randbytes(source.randrange(1, 5000)),
                                                 f'random file {number}'))

    def test_random_bytes_behind_a_header(self):
        source = random.Random(2)
        head = SMALL[:SMALL.index(b'DATA;\n') + 6]
        for number in range(40):
            self.assert_orderly(head + source.randbytes(source.randrange(1, 3000)),
                                f'random data {number}')

    def test_random_changes(self):
        source = random.Random(3)
        alphabet = b"#()=,;'*$./\\X0123456789EABC\n \xff\x00-"
        for number in range(150):
            content = bytearray(SMALL)
            for _ in range(source.randrange(1, 5)):
                content[source.randrange(len(content))] = source.choice(alphabet)
            self.assert_orderly(bytes(content), f'change {number}: {bytes(content)!r}')

    def test_values_nested_without_end(self):
        deep = '(' * 100000
        self.assert_orderly(project(f'#2=IFCPOLYLINE({deep}'), 'open brackets')
        deep = 'IFCLABEL(' * 100000
        self.assert_orderly(project(f"#2=IFCPROPERTYSINGLEVALUE('p',$,{deep}"), 'open values')

    def test_comments_and_commas_without_end(self):
        self.assert_orderly(project('#2=IFCPOLYLINE((' + '/**/,' * 300000), 'comments')

    def test_a_string_without_end(self):
        self.assert_orderly(project("#2=IFCPERSON('" + 'x' * 3000000), 'a string')


class Unreliable(CorvelTest):
    """A file of a merge whose objects cannot be told: half a merge is none."""

    def assert_nothing_is_merged(self, name, content, message):
        self.write('a.ifc', project(*wall(10, '1' * 22)))
        self.write(name, content)
        before = self.names()
        self.assert_ended(self.run_corvel('merge', 'a.ifc', name, '-o', 'out.ifc'),
                          NOTHING_WRITTEN, out='',
                          err=f'corvel: {name}: {message}\ncorvel: Nothing was written.\n')
        self.assertEqual(before, self.names())

    def test_a_file_that_ends_inside_of_a_string(self):
        self.assert_nothing_is_merged('b.ifc', project("#2=IFCPERSON('x,$,$,$,$,$,$,$);"),
                                      'The file ends inside of a string.')

    def test_an_archive_that_is_damaged(self):
        packed = io.BytesIO()
        with zipfile.ZipFile(packed, 'w', zipfile.ZIP_STORED) as archive:
            archive.writestr('b.ifc', project(*wall(20, '2' * 22)))
        self.assert_nothing_is_merged(
            'b.ifczip', packed.getvalue().replace(b"'P'", b"'Q'"),
            'The data in the zip archive is damaged: b.ifczip')

    def test_one_without_its_closing_line_is_merged_and_told(self):
        self.write('a.ifc', project(*wall(10, '1' * 22)))
        content = project(*wall(20, '2' * 22))
        self.write('b.ifc', content[:content.index(b'ENDSEC;\nEND-ISO')])
        ended = self.run_corvel('merge', 'a.ifc', 'b.ifc', '-o', 'out.ifc')
        self.assert_ended(ended, WITH_REPORTS)
        self.assertIn('corvel: b.ifc: The closing line END-ISO-10303-21; is missing: the file '
                      'seems to be cut short. The reading ended in line 13.\n', ended.err)
        self.assertEqual(2, self.read('out.ifc').count(b'=IFCWALL('))


class FullDisk(CorvelTest):

    def test_a_device_that_takes_nothing(self):
        self.write('a.ifc', project())
        os.symlink('/dev/full', self.path('out.ifc'))
        self.assert_ended(
            self.run_corvel('resave', 'a.ifc', 'out.ifc'), NOTHING_WRITTEN, out='',
            err='corvel: out.ifc: Could not write to file\ncorvel: Nothing was written.' + LOG)
        self.assertEqual(['a.ifc', 'out.ifc', 'out_IFC_LOG.txt'], self.names())
        self.assertTrue(os.path.islink(self.path('out.ifc')))
        self.assertTrue(os.path.exists('/dev/full'))

    def large(self):
        self.write('a.ifc', large_model(4))

    def assert_nothing_is_written(self, ended, output):
        self.assert_ended(ended, NOTHING_WRITTEN, out='')
        self.assertRegex(ended.err, rf'^corvel: {output}: Error occurred while writing entity: '
                                    r'#\d+\.Unable to write to file\n')
        self.assertTrue(ended.err.endswith('corvel: Nothing was written.' + LOG), ended.err)

    def test_a_disk_that_gets_full_in_the_middle(self):
        self.large()
        ended = self.run_corvel('resave', 'a.ifc', 'out.ifc', preexec_fn=data_limit(2500000))
        self.assert_nothing_is_written(ended, 'out.ifc')
        self.assertEqual(['a.ifc', 'out_IFC_LOG.txt'], self.names())

    def test_the_file_behind_a_link_goes_too(self):
        self.large()
        os.mkdir(self.path('sub'))
        os.symlink('sub/target.ifc', self.path('out.ifc'))
        ended = self.run_corvel('resave', 'a.ifc', 'out.ifc', preexec_fn=data_limit(2500000))
        self.assert_nothing_is_written(ended, 'out.ifc')
        self.assertEqual([], os.listdir(os.path.join(self.folder, 'sub')))

    def test_a_working_file_that_does_not_fit(self):
        # Every record refers forward, so that all of them go to the working file.
        lines = [f'#{n}=IFCPOLYLINE((#{n + 1},#{n + 1}));' for n in range(1, 200000)]
        self.write('a.ifc', model('\n'.join(lines)))
        ended = self.run_corvel('resave', 'a.ifc', 'out.ifc', preexec_fn=data_limit(1000000))
        self.assert_ended(ended, NOTHING_WRITTEN)
        self.assertIn('corvel: a.ifc: ', ended.err)
        self.assertEqual(['a.ifc', 'out_IFC_LOG.txt'], self.names())


class NoRights(CorvelTest):
    """As a user to whom the rights of files apply."""

    NOBODY = 65534

    def run_limited(self, *arguments):
        options = {}
        if os.geteuid() == 0:
            options = {'user': self.NOBODY, 'group': self.NOBODY, 'extra_groups': []}
        return self.run_corvel(*arguments, **options)

    def setUp(self):
        super().setUp()
        self.write('a.ifc', project())
        probe = self.run_limited('--version') if self.program_can_be_run() else None
        if probe is None or probe.status != DONE:
            self.skipTest('another user cannot run the program')

    def program_can_be_run(self):
        try:
            self.run_limited('--version')
            return True
        except PermissionError:
            return False

    def tearDown(self):
        os.chmod(self.folder, 0o755)

    def test_an_input_that_may_not_be_read(self):
        os.chmod(self.folder, 0o777)
        os.chmod(self.path('a.ifc'), 0)
        self.assert_ended(self.run_limited('resave', 'a.ifc', 'out.ifc'), NOTHING_WRITTEN,
                          err='corvel: a.ifc: this file cannot be opened for reading\n'
                              'corvel: Nothing was written.\n')

    def test_a_folder_of_the_output_that_may_not_be_written(self):
        os.chmod(self.folder, 0o777)
        os.mkdir(self.path('sub'))
        os.chmod(self.path('sub'), 0o555)
        self.assert_ended(self.run_limited('resave', 'a.ifc', 'sub/out.ifc'), NOTHING_WRITTEN,
                          err='corvel: sub/out.ifc: the output cannot be written there\n'
                              'corvel: Nothing was written.\n')
        self.assertEqual(['a.ifc', 'sub'], self.names())

    def test_an_output_that_may_not_be_replaced(self):
        os.chmod(self.folder, 0o755)
        self.write('out.ifc', b'kept')
        os.chmod(self.path('out.ifc'), 0o444)
        ended = self.run_limited('resave', 'a.ifc', 'out.ifc')
        self.assert_ended(ended, NOTHING_WRITTEN)
        self.assertIn('corvel: out.ifc: the output cannot be written there\n', ended.err)
        self.assertEqual(b'kept', self.read('out.ifc'))

    def test_a_folder_of_the_input_that_may_not_be_written(self):
        os.chmod(self.folder, 0o555)
        target = tempfile.mkdtemp(prefix='corvel_host_')
        self.addCleanup(shutil.rmtree, target)
        os.chmod(target, 0o777)
        ended = self.run_limited('resave', 'a.ifc', os.path.join(target, 'out.ifc'))
        self.assert_ended(ended, DONE)
        self.assertEqual(['out.ifc'], os.listdir(target))

    def test_a_folder_for_work_files_that_may_not_be_written(self):
        os.chmod(self.folder, 0o777)
        os.mkdir(self.path('work'), 0o555)
        ended = self.run_limited('resave', 'a.ifc', 'out.ifc', '--work-folder', 'work')
        self.assert_ended(ended, NOTHING_WRITTEN,
                          err='corvel: work: work files cannot be kept in this folder; '
                              '--work-folder names another\n'
                              'corvel: Nothing was written.\n')


class Memory(CorvelTest):

    def test_too_little_of_it_is_told(self):
        import resource
        self.write('a.ifc', large_model(12))

        def limited(megabytes):
            limit = (megabytes << 20, megabytes << 20)
            return lambda: resource.setrlimit(resource.RLIMIT_AS, limit)

        def starts(megabytes):
            return self.run_corvel('--version', preexec_fn=limited(megabytes)).status == DONE

        if not starts(1024):
            self.skipTest('the program does not start in a gigabyte, as with a sanitizer')
        least = next(megabytes for megabytes in range(16, 1028, 4) if starts(megabytes))
        for megabytes in range(least, least + 80, 4):
            with self.subTest(megabytes):
                ended = self.run_corvel('resave', 'a.ifc', 'out.ifc',
                                        preexec_fn=limited(megabytes))
                self.assertIn(ended.status, (DONE, NOTHING_WRITTEN), ended.err)
                self.assertEqual(ended.status == DONE, 'out.ifc' in self.names())
                if ended.status == NOTHING_WRITTEN:
                    self.assertRegex(ended.err, '(?i)memory|alloc')
                else:
                    os.remove(self.path('out.ifc'))


if __name__ == '__main__':
    unittest.main()
