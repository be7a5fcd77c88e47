#!/usr/bin/env python3
"""A short run of tools/side_by_side.py, and what it makes of wrong outputs."""

import os
import subprocess
import sys
import unittest

_ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
_TOOL = os.path.join(_ROOT, 'tools', 'side_by_side.py')
sys.path.insert(0, os.path.dirname(_TOOL))

# pylint: disable=wrong-import-position
import side_by_side  # noqa: E402

_CORVEL = os.environ.get('CORVEL', 'corvel')
_TEST_HOST = os.path.join(os.environ.get('CORVEL_BUILD', ''),
                          'tests/plugin/test_host/corvel_test_host')


class SideBySide(unittest.TestCase):

    def test_every_output_of_runs_that_share_their_inputs_is_right(self):
        ended = subprocess.run([sys.executable, _TOOL, '--corvel', _CORVEL, '--test-host',
                                _TEST_HOST, '--runs', '4', '--size', '600KB'],
                               stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                               check=False)
        self.assertEqual(0, ended.returncode, ended.stdout)
        self.assertEqual('command line: 4 rounds of two runs, 0 outputs wrong\n'
                         'plug-in: 4 rounds of two runs, 0 outputs wrong\n', ended.stdout)


class Difference(unittest.TestCase):

    def test_equal_outputs_have_none(self):
        self.assertIsNone(side_by_side.difference(b'a\nb\n', b'a\nb\n'))

    def test_missing_short_and_changed_outputs_are_told(self):
        self.assertEqual('is missing', side_by_side.difference(b'a', None))
        self.assertEqual('has 2 bytes for 4, 1 lines are others',
                         side_by_side.difference(b'a\nb\n', b'a\n'))
        self.assertEqual('has 4 bytes for 4, 1 lines are others',
                         side_by_side.difference(b'a\nb\n', b'a\nc\n'))


if __name__ == '__main__':
    unittest.main()
