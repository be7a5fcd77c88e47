"""Models through pipes, and lists of files."""

import io
import os
import signal
import subprocess
import unittest
import zipfile

from support import (CANCELLED, DONE, LONGEST_RUN, NOTHING_WRITTEN, ON_WINDOWS, PROGRAM, WRONG_USAGE,
                     CorvelTest, is_ready, project, wall)

GUIDS = ('2O2Fr$t4X7Zf8NOew3FLOH', '1hqIFTRjfV6AWq_bMtnZwI')
MODEL = project(*wall(10, GUIDS[0]))


class Pipes(CorvelTest):

    def piped(self, given, *arguments):
        """Status, bytes of standard output and text of standard error."""
        os.makedirs(self.path('work'), exist_ok=True)
        ended = subprocess.run([PROGRAM, *arguments, '--work-folder', 'work'], input=given,
                               capture_output=True, cwd=self.folder, check=False)
        self.assertEqual([], os.listdir(self.path('work')), 'nothing stays')
        return ended.returncode, ended.stdout, ended.stderr.decode().replace('\r\n', '\n')

    def saved(self):
        self.write('in.ifc', MODEL)
        self.assert_ended(self.run_corvel('resave', 'in.ifc', 'out.ifc'), DONE)
        return self.read('out.ifc')

    def test_a_model_goes_in_and_out(self):
        self.assertEqual((DONE, self.saved(), ''), self.piped(MODEL, 'resave', '-', '-'))

    def test_a_packed_model_is_known_by_its_first_bytes(self):
        packed = io.BytesIO()
        with zipfile.ZipFile(packed, 'w') as archive:
            archive.writestr('m.ifc', MODEL)
        self.assertEqual((DONE, self.saved(), ''), self.piped(packed.getvalue(), 'resave', '-', '-'))

    def test_a_merge_takes_one_and_gives_one(self):
        self.write('b.ifc', project(*wall(10, GUIDS[1])))
        status, out, err = self.piped(MODEL, 'merge', '-', 'b.ifc', '-o', '-')
        self.assertEqual((DONE, ''), (status, err))
        for guid in GUIDS:
            self.assertIn(guid.encode(), out)

    def test_nothing_is_sent_of_what_failed(self):
        status, out, err = self.piped(b'no model', 'resave', '-', '-')
        self.assertEqual((NOTHING_WRITTEN, b''), (status, out))
        self.assertIn('Nothing was written.', err)

    def test_standard_input_is_needed_and_there_once(self):
        self.assertEqual((NOTHING_WRITTEN, b'', 'corvel: standard input is empty\n'),
                         self.piped(b'', 'tree', '-'))
        self.assertEqual((NOTHING_WRITTEN, b'', 'corvel: standard input is there once only\n'),
                         self.piped(MODEL, 'diff', '-', '-'))

    def test_the_reading_commands_take_one(self):
        self.write('a.ifc', MODEL)
        status, out, _ = self.piped(MODEL, 'tree', '-')
        self.assertEqual(DONE, status)
        self.assertIn(GUIDS[0].encode(), out)
        self.assertEqual(DONE, self.piped(MODEL, 'diff', 'a.ifc', '-')[0])
        self.assertEqual(DONE, self.piped(MODEL, 'info', '-')[0])

    @unittest.skipIf(ON_WINDOWS, 'there is no such signal')
    def test_an_interrupt_ends_the_waiting_for_more(self):
        os.mkdir(self.path('work'))
        process = self.start('tree', '-', '--work-folder', 'work', stdin=subprocess.PIPE)
        process.stdin.write(MODEL[:100])
        process.stdin.flush()
        self.wait_for(lambda: is_ready(process) and os.listdir(self.path('work')))
        process.send_signal(signal.SIGINT)
        self.assertEqual(CANCELLED, process.wait(timeout=LONGEST_RUN))
        self.assertEqual(b'corvel: Cancelled, nothing was read.\n', process.stderr.read())
        self.assertEqual([], os.listdir(self.path('work')))

    def test_a_file_of_that_name_has_a_path(self):
        self.write('-', b'')
        self.assert_ended(self.run_corvel('tree', './-'), NOTHING_WRITTEN, out='', err=(
            'corvel: ./-: the name of a model has to end in .ifc or .ifczip\n'))


class Containers(CorvelTest):

    def test_entries_are_told_as_inputs_are_named(self):
        packed = io.BytesIO()
        with zipfile.ZipFile(packed, 'w') as archive:
            archive.writestr('one.ifc', MODEL)
            archive.writestr('two.ifc', b'x')
        self.write('c.olf', packed.getvalue())
        self.assert_ended(self.run_corvel('tree', 'c.olf'), DONE, err='', out=(
            f'c.olf|one.ifc  {len(MODEL)} bytes\nc.olf|two.ifc  1 bytes\n'))
        self.assertIn(GUIDS[0], self.run_corvel('tree', 'c.olf|one.ifc').out)
        self.write('bad.olf', b'x')
        self.assert_ended(self.run_corvel('tree', 'bad.olf'), NOTHING_WRITTEN, out='',
                          err='corvel: bad.olf: this container cannot be read\n')


class Lists(CorvelTest):

    def setUp(self):
        super().setUp()
        os.mkdir(self.path('models'))
        for name, guid in zip(('a.ifc', 'b.ifc'), GUIDS):
            self.write('models/' + name, project(*wall(10, guid)))

    def merged(self, *words, **options):
        self.assert_ended(self.run_corvel('merge', *words, '-o', 'out.ifc', **options), DONE)
        return [guid for guid in GUIDS if guid.encode() in self.read('out.ifc')]

    def test_a_folder_stands_for_its_models(self):
        self.assertEqual(list(GUIDS), self.merged('models'))

    def test_a_list_names_files(self):
        self.write('list', b'models/a.ifc\0models/b.ifc\0')
        self.assertEqual(list(GUIDS), self.merged('--files0-from', 'list'))
        with open(self.path('list'), 'rb') as listing:
            self.assertEqual(list(GUIDS), self.merged('--files0-from', '-', stdin=listing))

    def test_a_list_counts_as_what_is_typed(self):
        self.write('list', b'models/a.ifc\0')
        self.assert_ended(self.run_corvel('merge', '--files0-from', 'list', '-o', 'out.ifc'),
                          WRONG_USAGE, err=('corvel: merge: two files or more are needed, and 1 is '
                                            "given\nSee 'corvel merge --help'.\n"))

    def test_a_list_that_is_missing_is_wrong_usage(self):
        self.assert_ended(self.run_corvel('info', '--files0-from', 'none'), WRONG_USAGE, err=(
            "corvel: info: --files0-from: 'none' cannot be read\nSee 'corvel info --help'.\n"))


if __name__ == '__main__':
    unittest.main()
