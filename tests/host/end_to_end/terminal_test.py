"""Bars, questions and interrupts, with a terminal and without."""

import fcntl
import os
import pty
import re
import select
import signal
import struct
import termios
import time
import unittest

from support import (ATTEMPTS, CANCELLED, DONE, INTERRUPTED, LONGEST_RUN, NOTHING_WRITTEN,
                     WITH_REPORTS, CorvelTest, is_ready, large_model, project)

QUESTION = 'Cancel: Are you sure you want to cancel?\r\n[y/n] '
# Long enough to be met in the middle of it.
LARGE = large_model(24)


class Terminal:
    """A terminal of its own for one program: its standard input and standard error."""

    def __init__(self, columns=80):
        self.master, self.slave = pty.openpty()
        fcntl.ioctl(self.slave, termios.TIOCSWINSZ, struct.pack('HHHH', 24, columns, 0, 0))
        self.seen = ''

    def options(self):
        def take_terminal():
            os.setsid()
            fcntl.ioctl(self.slave, termios.TIOCSCTTY, 0)

        return {'stdin': self.slave, 'stderr': self.slave, 'preexec_fn': take_terminal,
                'env': {**os.environ, 'TERM': 'xterm'}}

    def read(self, wait):
        """What was shown meanwhile; empty when nothing came for `wait` seconds."""
        if not select.select([self.master], [], [], wait)[0]:
            return ''
        try:
            text = os.read(self.master, 65536).decode(errors='surrogateescape')
        except OSError:
            return ''
        self.seen += text
        return text

    def read_until(self, text):
        end = time.monotonic() + LONGEST_RUN
        while text not in self.seen:
            if time.monotonic() > end:
                raise AssertionError(f'{text!r} never came: {self.seen[-2000:]!r}')
            self.read(0.05)

    def type(self, text):
        os.write(self.master, text.encode())

    def close(self):
        os.close(self.master)
        os.close(self.slave)


class OnATerminal(CorvelTest):

    def setUp(self):
        super().setUp()
        self.terminal = Terminal()
        self.addCleanup(self.terminal.close)

    def start_on_terminal(self, *arguments):
        return self.start(*arguments, **self.terminal.options())

    def end(self, process):
        """Its exit status, everything shown having been read."""
        end = time.monotonic() + LONGEST_RUN
        while process.poll() is None:
            if time.monotonic() > end:
                self.fail(f'hangs: {self.terminal.seen[-2000:]!r}')
            self.terminal.read(0.05)
        while self.terminal.read(0.05):
            pass
        return process.returncode


class Bars(OnATerminal):

    def test_two_are_drawn_in_place_and_taken_away(self):
        self.write('a.ifc', project())
        self.assertEqual(DONE, self.end(self.start_on_terminal('resave', 'a.ifc', 'out.ifc')))
        frames = re.split(r'\r\x1b\[A', self.terminal.seen)
        for frame in frames[:-1]:
            self.assertRegex(frame, r'^Overall progress .*\[[#.]+\] +\d+%\r\n'
                                    r'\S.*: \S+\.ifc.*\[[#.]+\] +\d+%$')
        self.assertGreater(len(frames), 2)
        self.assertTrue(self.terminal.seen.endswith('\r\x1b[2K\x1b[A\x1b[2K'),
                        self.terminal.seen[-100:])
        self.assertIn('\r\nReading file: a.ifc ', self.terminal.seen)
        self.assertIn('\r\nSaving file: out.ifc ', self.terminal.seen)

    def test_the_overall_bar_never_goes_back(self):
        self.write('a.ifc', large_model(2))
        self.write('b.ifc', large_model(1))
        process = self.start_on_terminal('merge', 'a.ifc', 'b.ifc', '-o', 'out.ifc')
        self.assertEqual(DONE, self.end(process))
        overall = [int(p) for p in re.findall(r'Overall progress .*\] +(\d+)%', self.terminal.seen)]
        self.assertEqual(sorted(overall), overall)
        self.assertLessEqual(overall[-1], 100)
        self.assertGreater(overall[-1], 50)
        self.assertIn('Merge: b.ifc 3/3', self.terminal.seen)

    def test_quiet_draws_none(self):
        self.write('a.ifc', project())
        process = self.start_on_terminal('resave', '--quiet', 'a.ifc', 'out.ifc')
        self.assertEqual(DONE, self.end(process))
        self.assertEqual('', self.terminal.seen)

    def test_a_terminal_without_cursor_gets_none(self):
        self.write('a.ifc', project())
        options = self.terminal.options()
        options['env'] = {**options['env'], 'TERM': 'dumb'}
        self.assertEqual(DONE, self.end(self.start('resave', 'a.ifc', 'out.ifc', **options)))
        self.assertEqual('', self.terminal.seen)

    def test_a_message_takes_the_place_of_the_bars(self):
        self.write('a.ifc', project('#2=IFCSPACESHIP($);'))
        process = self.start_on_terminal('resave', 'a.ifc', 'out.ifc')
        self.assertEqual(NOTHING_WRITTEN, self.end(process))
        self.assertRegex(self.terminal.seen, r'(^|\x1b\[2K)corvel: a\.ifc: Entity named: '
                                             r'IFCSPACESHIP not found\.\r\n')

    def test_no_line_is_wider_than_the_terminal(self):
        for columns in (10, 20, 45, 200):
            with self.subTest(columns):
                self.terminal = Terminal(columns)
                self.addCleanup(self.terminal.close)
                self.write('a.ifc', project())
                self.end(self.start_on_terminal('resave', 'a.ifc', 'out.ifc'))
                plain = re.sub(r'\x1b\[\d*[A-Z]', '', self.terminal.seen)
                self.assertLess(max(len(line) for line in re.split('[\r\n]+', plain)), columns)


class Questions(OnATerminal):

    DUPLICATE = project('#7=IFCCARTESIANPOINT((1.,2.));', '#7=IFCCARTESIANPOINT((8.,9.));')

    def ask(self, answer):
        self.write('a.ifc', self.DUPLICATE)
        process = self.start_on_terminal('resave', 'a.ifc', 'out.ifc')
        self.terminal.read_until(QUESTION)
        self.terminal.type(answer)
        return self.end(process)

    def test_a_persons_yes_is_cancelling(self):
        self.assertEqual(CANCELLED, self.ask('y\n'))
        self.assertIn('corvel: Cancelled, nothing was written. ', self.terminal.seen)
        self.assertEqual(['a.ifc', 'out_IFC_LOG.txt'], self.names())

    def test_a_persons_no_goes_on(self):
        self.assertEqual(WITH_REPORTS, self.ask('no\n'))
        self.assertIn('out.ifc', self.names())

    def test_other_words_are_asked_again(self):
        self.assertEqual(WITH_REPORTS, self.ask('perhaps\nNO\n'))

    def test_an_answer_given_before_is_not_asked(self):
        self.write('a.ifc', self.DUPLICATE)
        process = self.start_on_terminal('resave', 'a.ifc', 'out.ifc', '--answer', 'yes')
        self.assertEqual(CANCELLED, self.end(process))
        self.assertNotIn('[y/n]', self.terminal.seen)


class Interrupts(OnATerminal):

    def interrupted(self, text, *arguments):
        """A run that has been interrupted once `text` was shown, and asks whether to stop."""
        for _ in range(ATTEMPTS):
            self.terminal.seen = ''
            process = self.start_on_terminal(*arguments)
            self.terminal.read_until(text)
            self.terminal.type('\x03')
            while process.poll() is None and QUESTION not in self.terminal.seen:
                self.terminal.read(0.05)
            if process.poll() is None:
                return process
            self.end(process)
        self.fail('every run was over before it could be interrupted')

    def resave_interrupted(self, text):
        self.write('a.ifc', LARGE)
        return self.interrupted(text, 'resave', 'a.ifc', 'out.ifc')

    def test_the_key_asks_and_yes_cancels(self):
        process = self.resave_interrupted('Reading file: a.ifc')
        self.terminal.type('y\n')
        self.assertEqual(CANCELLED, self.end(process))
        self.assertTrue(self.terminal.seen.endswith('corvel: Cancelled, nothing was written.\r\n'),
                        self.terminal.seen[-200:])
        self.assertEqual(['a.ifc'], self.names())

    def test_no_goes_on_to_the_end_and_a_later_interrupt_asks_again(self):
        process = self.resave_interrupted('Reading file: a.ifc')
        self.terminal.seen = ''
        self.terminal.type('n\n')
        self.terminal.read_until('Overall progress')
        self.terminal.type('\x03')
        self.terminal.read_until(QUESTION)
        self.terminal.type('n\n')
        self.assertEqual(DONE, self.end(process))
        self.assertEqual(['a.ifc', 'out.ifc'], self.names())

    def test_a_second_one_during_the_question_ends_at_once(self):
        process = self.resave_interrupted('Reading file: a.ifc')
        self.terminal.type('\x03')
        self.assertEqual(INTERRUPTED, self.end(process))
        self.assertNotIn('out.ifc', self.names())

    def test_while_writing_nothing_is_left_of_the_output_with_a_yes(self):
        process = self.resave_interrupted('Saving file: out.ifc')
        self.assertEqual(1, len(self.unfinished()))
        self.assertNotIn('out.ifc', self.names())
        self.terminal.type('y\n')
        self.assertEqual(CANCELLED, self.end(process))
        self.assertEqual(['a.ifc'], self.names())

    def test_while_writing_nothing_is_left_of_the_output_with_a_second_one(self):
        process = self.resave_interrupted('Saving file: out.ifc')
        self.assertEqual(1, len(self.unfinished()))
        self.terminal.type('\x03')
        self.assertEqual(INTERRUPTED, self.end(process))
        self.assertEqual(['a.ifc'], self.names())

    def test_a_request_to_end_ends_a_question_that_nobody_answers(self):
        process = self.resave_interrupted('Reading file: a.ifc')
        process.send_signal(signal.SIGTERM)
        self.assertEqual(CANCELLED, self.end(process))
        self.assertIn('[y/n] \r\ncorvel: Asked to end by SIGTERM.\r\n', self.terminal.seen)
        self.assertTrue(self.terminal.seen.endswith('corvel: Cancelled, nothing was written.\r\n'),
                        self.terminal.seen[-200:])
        self.assertEqual(['a.ifc'], self.names())

    def test_while_merging(self):
        """Wherever it meets the fold, a Yes means that nothing is written."""
        self.write('a.ifc', large_model(4))
        self.write('b.ifc', large_model(8))
        process = self.interrupted('Merge: b.ifc 1/3', 'merge', 'a.ifc', 'b.ifc', '-o',
                                   'out.ifc')
        self.terminal.type('y\n')
        self.assertEqual(CANCELLED, self.end(process))
        self.assertEqual(1, self.terminal.seen.count('[y/n]'))
        self.assertEqual(['a.ifc', 'b.ifc'], self.names())


class InterruptsWithoutATerminal(CorvelTest):

    def start_large(self, *options):
        """Started, and far enough to take an interrupt."""
        self.write('a.ifc', LARGE)
        process = self.start('resave', 'a.ifc', 'out.ifc', *options)
        self.wait_for(lambda: is_ready(process))
        return process

    def test_the_answer_is_yes(self):
        process = self.start_large()
        process.send_signal(signal.SIGINT)
        self.assert_ended(self.finish(process), CANCELLED, out='',
                          err='Cancel: Are you sure you want to cancel?\n'
                              'corvel: Yes, as nobody is asked.\n'
                              'corvel: Cancelled, nothing was written.\n')
        self.assertEqual(['a.ifc'], self.names())

    def test_an_answer_of_no_goes_on(self):
        process = self.start_large('--answer', 'no')
        process.send_signal(signal.SIGINT)
        self.assert_ended(self.finish(process), DONE,
                          err='Cancel: Are you sure you want to cancel?\n'
                              'corvel: No, as nobody is asked.\n')
        self.assertEqual(['a.ifc', 'out.ifc'], self.names())

    def test_an_interrupt_that_was_ignored_stays_ignored(self):
        self.write('a.ifc', LARGE)
        process = self.start('resave', 'a.ifc', 'out.ifc',
                             preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_IGN))
        self.wait_for(lambda: is_ready(process))
        process.send_signal(signal.SIGINT)
        self.assert_ended(self.finish(process), DONE, err='')

    def test_no_bars_are_drawn(self):
        self.write('a.ifc', large_model(1))
        self.assert_ended(self.run_corvel('resave', 'a.ifc', 'out.ifc'), DONE, err='')


if __name__ == '__main__':
    unittest.main()
