"""Models through pipes, and lists of files."""

import io
import json
import os
import signal
import subprocess
import unittest
import zipfile

from support import (CANCELLED, DONE, LONGEST_RUN, NOTHING_WRITTEN, ON_WINDOWS, PROGRAM,
                     WITH_REPORTS, WRONG_USAGE, CorvelTest, Ended, is_ready, project, wall)

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

    def test_bytes_are_not_translated(self):
        # Line feeds with and without a return, the end of a text of old, and no UTF-8.
        given = MODEL.replace(b"'W'", b"'\x1a\xe4\x00 \r'").replace(b';\nDATA', b';\r\nDATA')
        self.write('in.ifc', given)
        filed = self.run_corvel('resave', '--tolerant', 'in.ifc', 'out.ifc')
        status, out, _ = self.piped(given, 'resave', '--tolerant', '-', '-')
        self.assertEqual((filed.status, self.read('out.ifc')), (status, out))
        self.assertIn(b'\xe4', out)
        self.assertNotIn(b'\r\n', out)
        facts = json.loads(self.piped(given, 'info', '--json', '-')[1])['files'][0]
        self.assertEqual(len(given), facts['bytes'])

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

    # Each command that reads a model, and where it writes one to.
    READING = (('resave', '-', 'o.ifc'), ('optimise', '-', 'o.ifc'), ('extract', '-', '-o', 'o.ifc'),
               ('merge', '-', 'a.ifc', '-o', 'o.ifc'), ('merge', 'a.ifc', '-', '-o', 'o.ifc'),
               ('info', '-'), ('tree', '-'), ('check', '-'), ('diff', '-', 'a.ifc'),
               ('diff', 'a.ifc', '-'))
    WRITING = (('resave', 'a.ifc', '-'), ('optimise', 'a.ifc', '-'), ('extract', 'a.ifc', '-o', '-'),
               ('merge', 'a.ifc', 'b.ifc', '-o', '-'))

    def test_every_command_takes_one_and_says_so_when_there_is_nothing(self):
        for words in self.READING:
            with self.subTest(words):
                self.write('a.ifc', project(*wall(10, GUIDS[1])))
                status, _, err = self.piped(MODEL, *words)
                self.assertIn(status, (DONE, WITH_REPORTS), err)
                self.assertEqual((NOTHING_WRITTEN, b'', 'corvel: standard input is empty\n'),
                                 self.piped(b'', *words))

    def test_what_is_told_of_it_calls_it_by_its_name(self):
        self.write('a.ifc', MODEL)
        broken = MODEL[:MODEL.index(b'IFCWALL') + 4]
        for words in self.READING:
            with self.subTest(words):
                status, out, err = self.piped(broken, *words)
                self.assertNotEqual(DONE, status if words[0] != 'tree' else NOTHING_WRITTEN)
                self.assertNotIn('stdin', out.decode() + err)
                if words[0] not in ('check', 'info', 'tree'):
                    self.assertIn('corvel: standard input: ', err)
        for words in (('diff', '-', 'a.ifc'), ('diff', '--json', 'a.ifc', '-'), ('info', '-'),
                      ('info', '--json', '-'), ('check', '-'), ('check', '--json', '-')):
            with self.subTest(words):
                out = self.piped(MODEL, *words)[1]
                self.assertIn(b'standard input', out)
                self.assertNotIn(b'stdin', out)

    def texts_of(self, given, *words):
        """All that a run tells anywhere, by where; what is told of names alone stays."""
        for name in ('r.html', 'r.json', 'o.ifc', 'tree.txt', 'stdout_IFC_LOG.txt',
                     'stdin_IFC_LOG.txt', 'o_IFC_LOG.txt'):
            if os.path.exists(self.path(name)):
                os.remove(self.path(name))
        _, out, err = self.piped(given, *words)
        told = {'out': out.decode(), 'err': err}
        for name in self.names():
            if name not in ('work', 'a.ifc'):
                told[name] = self.read(name).decode()
        return told

    def assert_told_by_name(self, told, *places):
        for place, text in told.items():
            self.assertNotIn('_stdin.', text, place)
            self.assertNotIn('_stdout.', text, place)
            self.assertNotIn('work/corvel_', text, place)
        for place in places:
            self.assertIn('standard input', told[place], place)

    def test_reports_call_it_by_its_name(self):
        self.write('a.ifc', project(*wall(10, GUIDS[1])))
        reports = ('--report', 'r.html', '--report', 'r.json')
        for words in (('resave', '-', 'o.ifc'), ('merge', '-', 'a.ifc', '-o', 'o.ifc'),
                      ('merge', 'a.ifc', '-', '-o', '-'), ('check', '-'), ('check', 'a.ifc', '-'),
                      ('check', 'a.ifc', '--against', '-')):
            with self.subTest(words):
                told = self.texts_of(MODEL, *words, *reports)
                self.assert_told_by_name(told, 'r.html', 'r.json')
        report = json.loads(self.texts_of(MODEL, 'merge', '-', 'a.ifc', '-o', '-', *reports)['r.json'])
        self.assertEqual(['standard input', 'a.ifc'], [model['file'] for model in report['inputs']])
        self.assertEqual(len(MODEL), report['inputs'][0]['bytes'])
        self.assertEqual('standard output', report['output']['file'])
        self.assertGreater(report['output']['bytes'], len(MODEL))

    def test_what_federation_tells_calls_it_by_its_name(self):
        other = project(*wall(10, GUIDS[0], x=5)).replace(b"'P'", b"'Q'")
        self.write('a.ifc', other)
        told = self.texts_of(MODEL, 'merge', '-', 'a.ifc', '-o', 'o.ifc', '--one-building',
                             '--report', 'r.json')
        self.assert_told_by_name(told, 'o.ifc', 'r.json')
        again = self.texts_of(MODEL, 'merge', '-', 'a.ifc', '-o', 'o.ifc', '--one-building')
        group = [line for line in told['o.ifc'].splitlines() if "'standard input'" in line]
        self.assertIn(group[-1], again['o.ifc'], 'GUIDs do not depend on the run')

    def test_a_proposed_tree_is_taken_in_a_later_run(self):
        self.write('a.ifc', project(*wall(10, GUIDS[1])))
        told = self.texts_of(MODEL, 'merge', '-', 'a.ifc', '--propose-tree', 'tree.txt')
        self.assertIn('input 1 standard input\n', told['tree.txt'])
        self.assert_told_by_name(told)
        ended = self.piped(MODEL, 'merge', '-', 'a.ifc', '--tree-map', 'tree.txt', '-o', 'o.ifc')
        self.assertEqual((DONE, b'o.ifc was written.\n', ''),
                         (ended[0], ended[1].replace(b'\r\n', b'\n'), ended[2]))

    def test_the_log_calls_it_by_its_name(self):
        broken = MODEL.replace(b"'W',$,$,", b"'W',$,7,")
        self.write('a.ifc', project(*wall(10, GUIDS[1])))
        for words in (('resave', '-', 'o.ifc', '--log', 'told.log'),
                      ('merge', 'a.ifc', '-', '-o', 'o.ifc', '--log', 'told.log')):
            with self.subTest(words):
                told = self.texts_of(broken, *words)
                self.assertIn('told.log', told['err'])
                self.assert_told_by_name(told, 'told.log')
                os.remove(self.path('told.log'))

    def test_a_dry_run_keeps_its_log_where_it_is_found(self):
        broken = MODEL.replace(b"'W',$,$,", b"'W',$,7,")
        self.write('a.ifc', project(*wall(10, GUIDS[1])))
        told = self.texts_of(broken, 'merge', '-', 'a.ifc', '--dry-run')
        self.assert_told_by_name(told, 'out', 'stdin_IFC_LOG.txt')
        self.assertIn('More is told in the log: stdin_IFC_LOG.txt', told['err'])

    def test_progress_calls_it_by_its_name(self):
        self.write('a.ifc', project(*wall(10, GUIDS[1])))
        for words in (('merge', '-', 'a.ifc', '-o', 'o.ifc'), ('resave', '-', 'o.ifc')):
            with self.subTest(words):
                told = self.texts_of(MODEL, *words, '--progress', 'json')
                self.assert_told_by_name(told, 'err')
                for line in told['err'].splitlines():
                    json.loads(line)

    def test_an_output_that_is_gone_is_not_remembered(self):
        self.write('a.ifc', project(*wall(10, GUIDS[1])))
        os.mkdir(self.path('user'))
        for output, remembered in (('o.ifc', True), ('-', False)):
            self.piped(MODEL, 'merge', '-', 'a.ifc', '-o', output, '--user-folder', 'user')
            file = self.path('user/LastPath.txt')
            self.assertEqual(remembered, os.path.exists(file))
            if remembered:
                os.remove(file)

    def test_who_takes_no_more_is_no_success(self):
        for name, guid in zip(('a.ifc', 'b.ifc'), GUIDS):
            self.write(name, project(*wall(10, guid)))
        for words in self.WRITING:
            with self.subTest(words):
                reading, writing = os.pipe()
                os.close(reading)
                with os.fdopen(writing, 'wb') as closed:
                    ended = subprocess.run([PROGRAM, *words], stdout=closed, check=False,
                                           stderr=subprocess.PIPE, cwd=self.folder)
                self.assertEqual((NOTHING_WRITTEN, b'corvel: standard output did not take the whole '
                                  b'model\n'),
                                 (ended.returncode, ended.stderr.replace(b'\r\n', b'\n')))

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

    def test_a_check_takes_folders_lists_and_standard_input(self):
        one, other = 'models/a.ifc', 'models/b.ifc'
        self.write('list', b'models/b.ifc\0models/a.ifc\0')
        for words, files in ((('models',), [one, other]),
                             (('--files0-from', 'list'), ['models/b.ifc', 'models/a.ifc'])):
            ended = self.run_corvel('check', '--json', *words)
            self.assertEqual('', ended.err)
            told = json.loads(ended.out)['files']
            self.assertEqual(files, [file['file'] for file in told])
            self.assertTrue(all(file['facts']['products'] == {'IfcWall': 1} for file in told))
        with open(self.path('models/a.ifc'), 'rb') as model:
            ended = self.run_corvel('check', '-', stdin=model)
        self.assertEqual('', ended.err)
        self.assertIn('  products        1 of 1 class', ended.out)

    def test_patterns_are_for_the_shell_or_where_it_leaves_them_for_us(self):
        pattern = 'models\\*.IFC' if ON_WINDOWS else 'models/*.ifc'
        names = [pattern[:-5] + name for name in ('a.ifc', 'b.ifc')]
        self.write('models/c.txt', b'no model')
        for command in ('check', 'info'):
            told = json.loads(self.expanded(command, '--json', pattern).out)
            self.assertEqual(names, [file['file'] for file in told['files']])
        self.assert_ended(self.expanded('merge', pattern, '-o', 'out.ifc'), DONE)
        told = json.loads(self.expanded('check', '--json', 'out.ifc', '--against', pattern).out)
        self.assertEqual(names, told['against']['files'])

    def expanded(self, *words):
        """On Windows the program gets the pattern, elsewhere what the shell makes of it."""
        if ON_WINDOWS:
            return self.run_corvel(*words)
        ended = subprocess.run(' '.join((PROGRAM,) + words), shell=True, cwd=self.folder,
                               capture_output=True, check=False)
        return Ended(ended.returncode, ended.stdout.decode(), ended.stderr.decode())

    def test_a_pattern_that_nothing_fits_is_told(self):
        for words in (('check', 'x*.ifc'), ('info', 'x*.ifc'), ('check', 'models/a.ifc', '--against', 'x*.ifc'),
                      ('merge', 'x*.ifc', 'models', '-o', 'out.ifc')):
            with self.subTest(words):
                pattern = next(word for word in words if '*' in word)
                ended = self.run_corvel(*words)
                if ON_WINDOWS:
                    self.assert_ended(ended, WRONG_USAGE, out='', err=(
                        f"corvel: {words[0]}: '{pattern}': no file fits\n"
                        f"See 'corvel {words[0]} --help'.\n"))
                else:  # where nobody but the shell expands it, so that it names a file
                    self.assertEqual(NOTHING_WRITTEN, ended.status)
                    self.assertIn(f'corvel: {pattern}: there is no such file\n', ended.err)
        if not ON_WINDOWS:
            self.write('x*.ifc', MODEL)
            self.assertIn('IfcWall', self.run_corvel('check', 'x*.ifc').out)

    def test_a_check_is_against_folders_too(self):
        self.assert_ended(self.run_corvel('merge', 'models', '-o', 'out.ifc'), DONE)
        ended = self.run_corvel('check', '--json', 'out.ifc', '--against', 'models')
        self.assertEqual(['models/a.ifc', 'models/b.ifc'], json.loads(ended.out)['against']['files'])
        os.mkdir(self.path('empty'))
        self.assert_ended(self.run_corvel('check', 'out.ifc', '--against', 'empty'), WRONG_USAGE,
                          err=("corvel: check: 'empty': no model lies in this folder\n"
                               "See 'corvel check --help'.\n"))

    def test_a_list_counts_as_what_is_typed(self):
        self.write('list', b'models/a.ifc\0')
        self.assert_ended(self.run_corvel('merge', '--files0-from', 'list', '-o', 'out.ifc'),
                          WRONG_USAGE, err=('corvel: merge: two files or more are needed, and 1 is '
                                            "given\nSee 'corvel merge --help'.\n"))

    def test_an_empty_name_in_a_list_is_wrong_usage(self):
        self.write('list', b'models/a.ifc\0\0models/b.ifc\0')
        for command in ('info', 'check'):
            self.assert_ended(self.run_corvel(command, '--files0-from', 'list'), WRONG_USAGE, err=(
                f"corvel: {command}: --files0-from: 'list' has an empty name\n"
                f"See 'corvel {command} --help'.\n"))

    def test_an_entry_that_cannot_be_read_is_told_and_the_others_are_shown(self):
        os.mkdir(self.path('folder'))
        self.write('list', b'models/a.ifc\0none.ifc\0folder\0models/b.ifc\0')
        ended = self.run_corvel('info', '--files0-from', 'list')
        self.assert_ended(ended, NOTHING_WRITTEN, err=(
            'corvel: none.ifc: there is no such file\n'
            'corvel: folder: this is a folder, not a model\n'))
        for name in ('a.ifc', 'b.ifc'):
            self.assertIn(f'models/{name}', ended.out)
        self.assert_ended(self.run_corvel('merge', '--files0-from', 'list', '-o', 'out.ifc'),
                          NOTHING_WRITTEN, err=('corvel: none.ifc: there is no such file\n'
                                                'corvel: folder: this is a folder, not a model\n'
                                                'corvel: Nothing was written.\n'))
        self.assertFalse(os.path.exists(self.path('out.ifc')))

    def test_a_list_that_is_missing_is_wrong_usage(self):
        self.assert_ended(self.run_corvel('info', '--files0-from', 'none'), WRONG_USAGE, err=(
            "corvel: info: --files0-from: 'none' cannot be read\nSee 'corvel info --help'.\n"))


if __name__ == '__main__':
    unittest.main()
