"""`corvel check` as programs see it: what it writes where, and how it ends."""

import json
import os
import unittest
import zipfile

from support import DONE, NOTHING_WRITTEN, WRONG_USAGE, CorvelTest

ERRORS_FOUND = 4

HEAD = ("ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION(('v'),'2;1');\n"
        "FILE_NAME('n','t',('a'),('o'),'p','s','z');\nFILE_SCHEMA(('IFC4'));\nENDSEC;\nDATA;\n")
TAIL = 'ENDSEC;\nEND-ISO-10303-21;\n'
PROJECT = ("#1=IFCPROJECT('0000000000000000000001',$,'P',$,$,$,$,$,#2);\n"
           "#2=IFCUNITASSIGNMENT((#3));\n#3=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);\n")
POINT = '#9=IFCCARTESIANPOINT(());\n'


class Check(CorvelTest):

    def write_model(self, name, records):
        with open(self.path(name), 'wb') as file:
            file.write((HEAD + records + TAIL).encode())
        return name

    def test_a_good_model_ends_with_0(self):
        ended = self.run_corvel('check', self.write_model('a.ifc', PROJECT))
        self.assert_ended(ended, DONE, err='')
        self.assertTrue(ended.out.startswith('a.ifc\n  release         IFC4\n'), ended.out)
        self.assertTrue(ended.out.endswith('\n  0 errors, 0 warnings, 0 notes\n\n'), ended.out)

    def test_warnings_alone_end_with_0(self):
        ended = self.run_corvel('check', self.write_model('a.ifc', PROJECT + '#9=IFCUNITASSIGNMENT((#3));\n'))
        self.assert_ended(ended, DONE, err='')
        self.assertIn('\n  0 errors, 1 warning, 0 notes\n', ended.out)

    def test_errors_end_with_4(self):
        ended = self.run_corvel('check', self.write_model('a.ifc', PROJECT + POINT))
        self.assert_ended(ended, ERRORS_FOUND, err='')
        self.assertIn('  error   CRV.list.few IfcCartesianPoint.Coordinates\n', ended.out)
        self.assertIn('#9 in line 11 (0 members)\n', ended.out)

    def test_a_file_that_cannot_be_read_ends_with_1_behind_the_others(self):
        good = self.write_model('a.ifc', PROJECT)
        ended = self.run_corvel('check', 'missing.ifc', good)
        self.assert_ended(ended, NOTHING_WRITTEN, err='corvel: missing.ifc: there is no such file\n')
        self.assertIn('a.ifc\n  release', ended.out)

    def test_old_errors_end_with_0_and_new_ones_with_4(self):
        before = self.write_model('a.ifc', PROJECT + POINT)
        ended = self.run_corvel('check', before, '--against', before, before)
        self.assert_ended(ended, DONE, err='')
        self.assertIn('CRV.list.few IfcCartesianPoint.Coordinates, old\n', ended.out)
        self.assertTrue(ended.out.endswith('\nNew: 0 errors, 0 warnings, 0 notes\n'), ended.out)
        after = self.write_model('b.ifc', PROJECT + POINT + POINT.replace('9', '10'))
        ended = self.run_corvel('check', after, '--against', before)
        self.assert_ended(ended, ERRORS_FOUND, err='')
        self.assertIn('IfcCartesianPoint.Coordinates, 1 of them new\n', ended.out)

    def test_json_is_one_object_with_all_files(self):
        first = self.write_model('a.ifc', PROJECT)
        second = self.write_model('b.ifc', PROJECT + POINT)
        ended = self.run_corvel('check', '--json', first, second, 'missing.ifc')
        self.assert_ended(ended, NOTHING_WRITTEN)
        told = json.loads(ended.out)
        self.assertEqual(['a.ifc', 'b.ifc', 'missing.ifc'], [one['file'] for one in told['files']])
        self.assertEqual([0, 1, 0], [one['errors'] for one in told['files']])
        self.assertEqual([{'record': 9, 'line': 11, 'what': '0 members'}],
                         told['files'][1]['findings'][0]['places'])
        self.assertEqual(['there is no such file'], told['files'][2]['problems'])
        self.assertEqual(['CRV.files.guid'], [one['rule'] for one in told['between']])

    def test_an_archive_is_checked_with_the_lines_of_its_file(self):
        with zipfile.ZipFile(os.path.join(self.folder, 'a.ifczip'), 'w', zipfile.ZIP_DEFLATED) as archive:
            archive.writestr('x.ifc', HEAD + PROJECT + POINT + TAIL)
        ended = self.run_corvel('check', 'a.ifczip')
        self.assert_ended(ended, ERRORS_FOUND, err='')
        self.assertIn('#9 in line 11 (0 members)\n', ended.out)

    def test_several_projects_are_a_finding_and_no_message(self):
        second = PROJECT.partition('\n')[0].replace('#1=', '#4=').replace("1',", "4',")
        name = self.write_model('a.ifc', PROJECT + second + '\n')
        ended = self.run_corvel('check', name)
        self.assert_ended(ended, ERRORS_FOUND, err='')
        self.assertIn('PJS101.several', ended.out)
        self.assert_ended(self.run_corvel('info', name), DONE, err='')

    def test_rules_are_explained(self):
        ended = self.run_corvel('check', '--explain', 'crv.LIST.few')
        self.assert_ended(ended, DONE, err='')
        self.assertTrue(ended.out.startswith('CRV.list.few (error)\n\nA list has fewer'), ended.out)
        ended = self.run_corvel('check', '--explain', 'CRV.nothing')
        self.assert_ended(ended, WRONG_USAGE, out='')
        self.assertTrue(ended.err.startswith(
            "corvel: check: there is no rule 'CRV.nothing'. There are:\n  CRV.header.damaged "),
            ended.err)

    def test_nothing_is_left_beside_the_model(self):
        self.write_model('a.ifc', '#1=IFCLOCALPLACEMENT(#2,$);\n#2=IFCLOCALPLACEMENT($,$);\n')
        self.run_corvel('check', 'a.ifc')
        self.assertEqual(['a.ifc'], self.names())

    def test_a_report_has_what_json_has_and_standard_output_stays(self):
        self.write_model('a.ifc', PROJECT + POINT)
        plain = self.run_corvel('check', 'a.ifc')
        ended = self.run_corvel('check', 'a.ifc', '--report', 'r.json', '--report', 'r.HTML')
        self.assert_ended(ended, ERRORS_FOUND, err='')
        self.assertEqual(plain.out, ended.out)
        report = json.loads(self.read('r.json'))
        self.assertEqual('check', report['report'])
        self.assertEqual(json.loads(self.run_corvel('check', 'a.ifc', '--json').out), report['check'])
        self.assertIn(b'<!DOCTYPE html>', self.read('r.HTML'))

    def test_a_report_over_a_file_that_is_read_is_refused_before_anything_is(self):
        model = self.write_model('a.ifc', PROJECT)
        os.rename(self.path(model), self.path('a.html'))
        for arguments in (('a.html',), (self.write_model('b.ifc', PROJECT), '--against', 'a.html')):
            ended = self.run_corvel('check', *arguments, '--report', 'a.html')
            self.assert_ended(ended, NOTHING_WRITTEN)
            self.assertEqual('', ended.out)
            self.assertIn(b'ISO-10303-21', self.read('a.html'))

    def test_a_report_in_a_folder_that_is_not_there_ends_with_1(self):
        ended = self.run_corvel('check', self.write_model('a.ifc', PROJECT), '--report', 'nowhere/r.html')
        self.assert_ended(ended, NOTHING_WRITTEN)
        self.assertEqual('', ended.out)

    def test_a_report_needs_files_and_an_ending(self):
        ended = self.run_corvel('check', '--explain', 'CRV.list.few', '--report', 'r.html')
        self.assert_ended(ended, WRONG_USAGE)
        self.assertIn('--explain writes no report', ended.err)
        ended = self.run_corvel('check', 'a.ifc', '--report', 'r.txt')
        self.assert_ended(ended, WRONG_USAGE)


if __name__ == '__main__':
    unittest.main()
