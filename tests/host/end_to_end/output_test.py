"""An output is there whole or not at all, and what stood there before stays until it is."""

import os
import random
import signal
import time
import unittest

from support import (ATTEMPTS, CANCELLED, DONE, INTERRUPTED, NOTHING_WRITTEN, CorvelTest,
                     data_limit, is_ready, large_model, project, records_of)

OLDER = project('#2=IFCDIRECTION((1.,0.));')
LARGE = large_model(6)
CANCELLED_BY = ('corvel: Asked to end by {}.\n'
                'corvel: Cancelled, nothing was written.\n')


def is_whole(content):
    return (content.startswith(b'ISO-10303-21;\nHEADER;\n')
            and content.endswith(b';\nENDSEC;\nEND-ISO-10303-21;\n'))


class OutputTest(CorvelTest):

    def setUp(self):
        super().setUp()
        self.write('a.ifc', LARGE)
        self.write('out.ifc', OLDER)

    def assert_older(self):
        self.assertEqual(OLDER, self.read('out.ifc'))

    def while_writing(self, act, *options):
        """A run whose output is half written when `act(process)` is done with it; how it ended."""
        for _ in range(ATTEMPTS):
            self.write('out.ifc', OLDER)
            process = self.start('resave', 'a.ifc', 'out.ifc', *options)
            self.wait_for(lambda: self.unfinished() or process.poll() is not None)
            # The early look at the output makes such a file for a moment, too.
            self.wait_for(lambda: self.is_half_written() or process.poll() is not None)
            act(process)
            ended = self.finish(process)
            if ended.status != DONE:
                return ended
        self.fail('every run was over before')

    def is_half_written(self):
        for name in self.unfinished():
            try:
                return os.path.getsize(self.path(name)) > 0
            except OSError:
                pass  # it was gone again
        return False


class Requests(OutputTest):

    def test_to_end_leave_the_older_output_and_nothing_else(self):
        for request in (signal.SIGTERM, signal.SIGHUP):
            with self.subTest(request):
                ended = self.while_writing(lambda process: process.send_signal(request))
                self.assert_ended(ended, CANCELLED, out='', err=CANCELLED_BY.format(request.name))
                self.assert_older()
                self.assertEqual(['a.ifc', 'out.ifc'], self.names())

    def test_to_end_that_come_twice_mean_no_more(self):
        def twice(process):
            process.send_signal(signal.SIGTERM)
            process.send_signal(signal.SIGHUP)
            process.send_signal(signal.SIGTERM)

        ended = self.while_writing(twice)
        self.assertEqual(CANCELLED, ended.status, ended.err)
        self.assertEqual(['a.ifc', 'out.ifc'], self.names())

    def test_to_end_ask_nobody_and_no_answer_given_before_counts(self):
        ended = self.while_writing(lambda process: process.send_signal(signal.SIGTERM),
                                   '--answer', 'no')
        self.assert_ended(ended, CANCELLED, err=CANCELLED_BY.format('SIGTERM'))
        self.assert_older()

    def test_to_end_are_heard_while_a_model_is_read(self):
        process = self.start('resave', 'a.ifc', 'out.ifc')
        self.wait_for(lambda: is_ready(process))
        process.send_signal(signal.SIGTERM)
        self.assert_ended(self.finish(process), CANCELLED, err=CANCELLED_BY.format('SIGTERM'))
        self.assert_older()

    def test_to_end_are_heard_before_anything_is_read(self):
        self.write('b.ifc', project())
        heard = 0
        for _ in range(ATTEMPTS):
            self.write('out.ifc', OLDER)
            process = self.start('merge', 'a.ifc', 'b.ifc', '-o', 'out.ifc')
            time.sleep(random.uniform(0.002, 0.05))
            process.send_signal(signal.SIGTERM)
            ended = self.finish(process)
            if ended.status == DONE:
                continue  # on a fast machine the run may be over by then
            # Before the program catches them, signals end it as they end any other.
            self.assertIn(ended.status, (CANCELLED, -signal.SIGTERM), ended.err)
            self.assert_older()
            self.assertEqual(['a.ifc', 'b.ifc', 'out.ifc'], self.names())
            heard += 1
        self.assertGreater(heard, 0)

    def test_that_were_ignored_stay_ignored(self):
        for request in (signal.SIGTERM, signal.SIGHUP):
            with self.subTest(request):
                process = self.start('resave', 'a.ifc', 'out.ifc',
                                     preexec_fn=lambda: signal.signal(request, signal.SIG_IGN))
                self.wait_for(self.is_half_written)
                process.send_signal(request)
                self.assert_ended(self.finish(process), DONE, err='')
                self.assertTrue(is_whole(self.read('out.ifc')))

    def test_by_the_key_leave_the_older_output(self):
        ended = self.while_writing(lambda process: process.send_signal(signal.SIGINT))
        self.assert_ended(ended, CANCELLED)
        self.assert_older()
        self.assertEqual(['a.ifc', 'out.ifc'], self.names())

    def test_by_the_key_twice_leave_the_older_output(self):
        def twice(process):
            process.send_signal(signal.SIGSTOP)
            process.send_signal(signal.SIGINT)
            process.send_signal(signal.SIGCONT)
            process.send_signal(signal.SIGINT)

        ended = self.while_writing(twice)
        # The second may come when the first has its answer already.
        self.assertIn(ended.status, (INTERRUPTED, CANCELLED))
        self.assert_older()
        self.assertEqual([], self.unfinished())


class Failures(OutputTest):

    def test_of_a_full_disk_leave_the_older_output(self):
        for name in ('out.ifc', 'out.ifczip'):
            with self.subTest(name):
                self.write(name, OLDER)
                before = set(self.names()) - {'out_IFC_LOG.txt'}
                # Room for what the reader puts aside, and not for the output.
                ended = self.run_corvel('resave', 'a.ifc', name,
                                        preexec_fn=data_limit(900_000))
                self.assertEqual(NOTHING_WRITTEN, ended.status, ended.err)
                self.assertEqual(OLDER, self.read(name))
                self.assertEqual(before, set(self.names()) - {'out_IFC_LOG.txt'})

    def test_of_a_run_that_cannot_read_leave_the_older_output(self):
        self.write('a.ifc', project('#2=IFCNOSUCHCLASS();'))
        self.assert_ended(self.run_corvel('resave', 'a.ifc', 'out.ifc'), NOTHING_WRITTEN)
        self.assert_older()

    def test_to_put_the_output_at_its_place_tell_where_it_lies(self):
        def take_the_place(process):
            process.send_signal(signal.SIGSTOP)
            os.remove(self.path('out.ifc'))
            os.mkdir(self.path('out.ifc'))
            process.send_signal(signal.SIGCONT)

        def forget():
            if os.path.isdir(self.path('out.ifc')):
                os.rmdir(self.path('out.ifc'))

        self.addCleanup(forget)
        ended = self.while_writing(take_the_place)
        self.assertEqual(NOTHING_WRITTEN, ended.status, ended.err)
        (kept,) = [name for name in self.names() if name.endswith('.complete')]
        self.assertIn(f'corvel: out.ifc was not written. The complete output lies in {kept}. ',
                      ended.err)
        self.assertTrue(is_whole(self.read(kept)))
        self.assertEqual([], self.unfinished())


class Kills(OutputTest):

    def kill(self, process):
        process.kill()

    def test_leave_the_older_output_and_the_next_run_cleans_up(self):
        self.while_writing(self.kill)
        self.assert_older()
        self.assertEqual(1, len(self.unfinished()))
        self.write('b.ifc', project())
        self.assert_ended(self.run_corvel('resave', 'b.ifc', 'other.ifc'), DONE)
        self.assertEqual(1, len(self.unfinished()))
        self.assert_ended(self.run_corvel('resave', 'b.ifc', 'out.ifc'), DONE)
        self.assertEqual([], self.unfinished())

    def test_at_any_moment_leave_a_whole_output(self):
        self.assert_ended(self.run_corvel('resave', 'a.ifc', 'out.ifc'), DONE)
        whole = self.read('out.ifc')
        for _ in range(6):
            self.write('out.ifc', OLDER)
            process = self.start('resave', 'a.ifc', 'out.ifc')
            time.sleep(random.uniform(0, 0.4))
            process.kill()
            process.wait()
            self.assertIn(self.read('out.ifc'), (OLDER, whole))
        self.assert_ended(self.run_corvel('resave', 'a.ifc', 'out.ifc'), DONE)
        self.assertEqual([], self.unfinished())

    def test_leave_an_output_alone_that_another_run_writes(self):
        live = self.start('resave', 'a.ifc', 'out.ifc')
        self.wait_for(self.is_half_written)
        live.send_signal(signal.SIGSTOP)
        self.write('b.ifc', project())
        self.assert_ended(self.run_corvel('resave', 'b.ifc', 'out.ifc'), DONE)
        self.assertEqual(1, len(self.unfinished()))
        live.send_signal(signal.SIGCONT)
        self.assert_ended(self.finish(live), DONE)
        self.assertTrue(is_whole(self.read('out.ifc')))
        self.assertGreater(len(records_of(self.read('out.ifc'))), 1000)
        self.assertEqual([], self.unfinished())


class SideBySide(CorvelTest):

    def test_two_runs_into_one_output_give_one_of_the_two(self):
        outputs = []
        for i, name in enumerate(('a.ifc', 'b.ifc')):
            os.mkdir(self.path(str(i)))
            self.write(f'{i}/{name}', large_model(1, first=2 + i))
            self.assert_ended(self.run_corvel('resave', f'{i}/{name}', 'out.ifc'), DONE)
            outputs.append(self.read('out.ifc'))
        self.assertNotEqual(*outputs)
        for _ in range(5):
            runs = [self.start('resave', '0/a.ifc', 'out.ifc'),
                    self.start('resave', '1/b.ifc', 'out.ifc')]
            for run in runs:
                self.assert_ended(self.finish(run), DONE)
            self.assertIn(self.read('out.ifc'), outputs)
            self.assertEqual([], self.unfinished())


class EarlyLook(CorvelTest):

    def test_at_the_output_touches_nothing(self):
        self.write('out.ifc', OLDER)
        before = os.stat(self.path('out.ifc'))
        ended = self.run_corvel('merge', 'none.ifc', 'none.ifc', '-o', 'out.ifc')
        self.assert_ended(ended, NOTHING_WRITTEN)
        after = os.stat(self.path('out.ifc'))
        self.assertEqual((before.st_ino, before.st_mtime_ns), (after.st_ino, after.st_mtime_ns))
        self.assertEqual(['out.ifc'], self.names())

    def test_at_an_output_that_is_not_there_leaves_none(self):
        self.assert_ended(self.run_corvel('merge', 'none.ifc', 'none.ifc', '-o', 'out.ifc'),
                          NOTHING_WRITTEN)
        self.assertEqual([], self.names())


if __name__ == '__main__':
    unittest.main()
