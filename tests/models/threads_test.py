#!/usr/bin/env python3
"""Every number of threads gives the same output, messages, exit status and log."""

import os
import re
import sys
import unittest

import golden_test
import misfits
import program
from tolerant_case import TolerantTest

_ALONE = 1
# An emulator takes its time for each start.
_TOGETHER = (3,) if 'CORVEL_SYSTEM' in os.environ else (2, 3, 8)
_GOLDEN = os.path.join(os.path.dirname(os.path.abspath(__file__)), 'golden')
# What is another in each run: the time, the memory of the machine, new GUIDs.
_TIME = re.compile(rb'^\[\d\d-\d\d-\d{4} +\d\d:\d\d:\d\d\]', re.M)
_MEMORY = re.compile(rb'\d+ MB')
_GUID_IN_LOG = re.compile(rb'(?<=for this object: ")\S{22}|(?<=Generating new GUID: )\S{22}')


def without_chance(log):
    return _GUID_IN_LOG.sub(b'NEW', _MEMORY.sub(b'MB', _TIME.sub(b'', log)))


class Threads(TolerantTest):

    def left_by(self, arguments, threads):
        """What a run says, and its new files by name."""
        before = set(os.listdir(self.folder))
        result = program.run([*arguments, '--threads', f'{threads}'], self.folder)
        files = {}
        for name in set(os.listdir(self.folder)) - before:
            data = self.read(name)
            files[name] = without_chance(data) if name.endswith('_LOG.txt') else data
            os.remove(self.path(name))
        return result, files

    def assert_no_difference(self, arguments, wanted=None):
        """`wanted`: the output, with NEW where a GUID is. Gives what one thread has left."""
        said, files = self.left_by(arguments, _ALONE)
        for threads in _TOGETHER:
            with self.subTest(arguments=arguments, threads=threads):
                said_together, files_together = self.left_by(arguments, threads)
                self.assertEqual(said, said_together)
                self.assertEqual(sorted(files), sorted(files_together))
                for name, data in files.items():
                    pair = [data, files_together[name]]
                    if wanted is not None and name == 'out.ifc':
                        pair = [golden_test.hide_new_guids(one, wanted) for one in pair]
                    self.assert_same_file(*pair)
        return said, files

    def test_GoldenCases(self):
        for case in golden_test.case_names():
            with self.subTest(case=case):
                self.setUp()
                self.play_golden_case(os.path.join(_GOLDEN, case))

    def play_golden_case(self, folder):
        for name in os.listdir(folder):
            if name.endswith('.ifc'):
                self.copy(os.path.join(folder, name))
                if not self.has_release(program.identifier_of(os.path.join(folder, name))):
                    return
        with open(os.path.join(folder, 'job.txt'), encoding='ascii') as job:
            arguments = job.read().split()
        wanted = None
        if os.path.exists(os.path.join(folder, 'wanted', 'out.ifc')):
            with open(os.path.join(folder, 'wanted', 'out.ifc'), 'rb') as file:
                wanted = file.read()
        self.assert_no_difference(arguments, wanted)

    @unittest.skipIf('CORVEL_SYSTEM' in os.environ, 'an emulator takes its time for each start')
    def test_SpoiltModelsReadWithTolerance(self):
        compared = 0
        for _, _, kind, (spoilt, *_) in self.spoilt_models(misfits.KINDS, share=4):
            self.write('a.ifc', spoilt)
            with self.subTest(kind=kind.__name__):
                self.assert_no_difference(['resave', '--tolerant', 'a.ifc', 'out.ifc'])
                compared += 1
        self.assertGreater(compared, 10)

    def test_SpoiltModelsReadStrictly(self):
        models = self.spoilt_models(misfits.KINDS, share=4)
        for place, (_, _, _, (spoilt, *_)) in zip(range(8), models):
            self.write('a.ifc', spoilt)
            with self.subTest(place=place):
                self.assert_no_difference(['resave', '--answer', 'no', 'a.ifc', 'out.ifc'])

    def test_Samples(self):
        names = [self.copy(path) for path in program.sample_paths()
                 if self.has_release(program.identifier_of(path))]
        for name in names:
            self.assert_no_difference(['resave', name, 'out.ifc'])
        pair = [name for name in names if name.endswith('IFC4.ifc')][:2]
        self.assertEqual(len(pair), 2)
        # A new header has the time.
        self.assert_no_difference(['merge', *pair, '-o', 'out.ifczip', '--one-building',
                                   '--header', 'told'])


if __name__ == '__main__':
    sys.exit(unittest.main())
