"""Wrong usage and help. The words of every error are held by the unit tests."""

import json
import unittest

from support import DONE, NOTHING_WRITTEN, WRONG_USAGE, CorvelTest, project, wall


class Usage(CorvelTest):

    def test_help_and_version_go_to_standard_output(self):
        for arguments in (('--help',), ('-h',), ('--version',), ('merge', '--help'),
                          ('extract', '--help'), ('resave', '--help'), ('optimise', '--help'),
                          ('info', '--help'), ('tree', '--help'),
                          ('diff', '--help'), ('check', '--help')):
            with self.subTest(arguments):
                ended = self.run_corvel(*arguments)
                self.assert_ended(ended, DONE, err='')
                self.assertTrue(ended.out.startswith('corvel '), ended.out)

    def test_wrong_usage_goes_to_standard_error_and_ends_with_2(self):
        for arguments, begin in (
                ((), 'corvel: a command is needed.\n'),
                (('mrege',), "corvel: unknown command 'mrege'; the nearest is 'merge'.\n"),
                (('merge', '--quite', 'a', 'b'),
                 "corvel: merge: unknown option '--quite'; the nearest is '--quiet'. "),
                (('merge', 'a.ifc', '-o', 'b.ifc'),
                 'corvel: merge: two files or more are needed, and 1 is given\n'),
                (('resave', 'a.ifc'),
                 'corvel: resave: one input and one output are needed, and 1 file is given\n'),
                (('tree', 'a.ifc', 'b.ifc'), 'corvel: tree: one file is needed, and 2 are given\n'),
                (('info', '--answer', 'perhaps', 'a.ifc'),
                 "corvel: info: --answer takes 'yes' or 'no', not 'perhaps'\n")):
            with self.subTest(arguments):
                ended = self.run_corvel(*arguments)
                self.assert_ended(ended, WRONG_USAGE, out='')
                self.assertTrue(ended.err.startswith(begin), ended.err)
                self.assertRegex(ended.err, r"See 'corvel .*--help'\.\n$")

    def test_programs_that_follow_the_progress_are_told_its_end(self):
        self.write('a.ifc', project(*wall(2, 'g1')))
        self.write('b.ifc', project(*wall(2, 'g2')))
        merge = ('merge', 'a.ifc', 'b.ifc', '-o', 'o.ifc')
        for words, status in ((merge, DONE), (('merge', 'a.ifc', 'b.ifc'), WRONG_USAGE),
                              ((*merge, '--no-such-option'), WRONG_USAGE),
                              (('merge', 'a.ifc', 'missing.ifc', '-o', 'o.ifc'), NOTHING_WRITTEN),
                              (('info', 'a.ifc'), WRONG_USAGE), (('nothing',), WRONG_USAGE)):
            for option in (('--progress', 'json'), ('--progress=json',)):
                with self.subTest(words=words, option=option):
                    ended = self.run_corvel(*words, *option)
                    self.assert_ended(ended, status)
                    lines = ended.err.splitlines()
                    self.assertEqual({'event': 'end', 'status': status}, json.loads(lines[-1]))
                    self.assertEqual(1, sum('"end"' in line for line in lines))
        for words in (merge, ('merge', 'a.ifc', 'b.ifc'), (*merge, '--progress', 'yaml')):
            self.assertNotIn('"end"', self.run_corvel(*words).err)

    def test_nothing_is_read_or_made(self):
        self.run_corvel('merge', 'a.ifc', 'b.ifc', '-o', 'out.ifc', '--wrong')
        self.assertEqual([], self.names())


if __name__ == '__main__':
    unittest.main()
