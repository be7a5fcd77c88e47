#!/usr/bin/env python3
"""Every class of one release, created by name, read and written.

Usage: round_trip_test.py RELEASE [unittest arguments]; the program is named by CORVEL.
"""

import os
import random
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import records
import wrong_tokens
from examples import EXAMPLES
from facts import RELEASES, Release
from kinds import Kinds
from model_file import input_file, laid_out, output_file
from records import Maker, Record

CLASSES = {'IFC2X_FINAL': 449, 'IFC2X2_PLATFORM': 397, 'IFC2X2_FINAL': 729, 'IFC2X3': 753,
           'IFC4': 890, 'IFC4X1': 915, 'IFC4X2': 930, 'IFC4X3_ADD2': 990, 'IFC4X4': 1018}
TREE_BOX = 'Logfile error: MainContainer::AddEntity. IfcTree already exists.'
# Said once a file of spellings after which a reader stands elsewhere than their writer did.
LEFT_OUT = re.compile(r'corvel: in\.ifc: (What stands behind the arguments of a record was left out'
                      r'|A number has no end: what follows was left out up to the next "," or "\)")'
                      r'\. Places: \d+, the first in line \d+ at #\d+\.')
WRITTEN_WITH_REPORTS = 'corvel: out.ifc was written, but something was reported.'
MOST_SHOWN = 8


class RoundTrip(unittest.TestCase):
    release = None  # set by main
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.corvel = os.environ['CORVEL']
        cls.kinds = Kinds(cls.release)

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.rng = random.Random(f'{self.release.namespace} {self.id()}')

    # --- Running -----------------------------------------------------------------------------

    def resave(self, data, *options):
        """(exit status, lines on standard error, bytes written or None)"""
        (self.folder / 'in.ifc').write_bytes(data)
        out = self.folder / 'out.ifc'
        out.unlink(missing_ok=True)
        run = subprocess.run([self.corvel, 'resave', 'in.ifc', 'out.ifc', '--quiet', *options],
                             cwd=self.folder, stdin=subprocess.DEVNULL, capture_output=True,
                             check=False, timeout=600)
        return (run.returncode, run.stderr.decode().splitlines(),
                out.read_bytes() if out.exists() else None)

    def resave_silently(self, data):
        """The bytes written; the one word allowed is the box about projects beside the first."""
        status, lines, written = self.resave(data)
        self.assertEqual([], [line for line in lines if line != TREE_BOX][:MOST_SHOWN])
        self.assertEqual(0, status)
        return written

    def resave_spellings(self, data):
        """As resave_silently, where spellings may leave something over, which is then told."""
        status, lines, written = self.resave(data)
        left_out = [line for line in lines if LEFT_OUT.fullmatch(line)]
        others = [line for line in lines if line != TREE_BOX and line not in left_out]
        if left_out:
            self.assertTrue(others.pop().startswith(WRITTEN_WITH_REPORTS))
        self.assertEqual([], others[:MOST_SHOWN])
        self.assertEqual(4 if left_out else 0, status)
        return written

    def resave_with_reports(self, data, *options):
        """(exit status, reports in order, bytes written); no question stops the reading."""
        status, lines, written = self.resave(data, '--answer', 'no', *options)
        mark = 'corvel: in.ifc: '
        return status, [line[len(mark):] for line in lines
                        if line.startswith(mark) and not LEFT_OUT.fullmatch(line)], written

    def assert_written(self, model, written):
        """That `written` is what must come out of the records of `model`."""
        wanted = output_file(self.release.namespace, model)
        if written == wanted:
            return
        given = {record.number: record.given for record in model}
        shown = []
        wanted_lines, written_lines = (data.decode('latin-1').split('\n')
                                       for data in (wanted, written))
        for want, got in zip(wanted_lines, written_lines):
            if want != got and len(shown) < MOST_SHOWN:
                number = re.match('#([0-9]+)', want)
                begin = max(0, len(os.path.commonprefix((want, got))) - 100)
                shown.append(f'\ngiven   {given[int(number[1])][:1000] if number else ""}'
                             f'\nwanted  {want[:40]} ... {want[begin:begin + 300]}'
                             f'\nwritten {got[:40]} ... {got[begin:begin + 300]}')
        self.fail(f'{len(wanted_lines)} lines wanted, {len(written_lines)} written' +
                  ''.join(shown))

    def assert_round_trip(self, model, data):
        """Read and written `model` is as wanted, and that read and written is the same."""
        written = self.resave_spellings(data)
        self.assert_written(model, written)
        self.assertTrue(self.resave_silently(written) == written, 'The second time differs.')

    def shuffled_file(self, model):
        self.rng.shuffle(model)
        return input_file(self.release.namespace, laid_out(self.rng, model))

    # --- Every class -------------------------------------------------------------------------

    def test_every_class_with_attributes_of_every_kind(self):
        maker = Maker(self.kinds, self.rng, 80000)
        model = list(records.records_of_every_class(maker))
        model += records.records_of_every_spelling(maker)
        self.assertEqual(CLASSES[self.release.namespace], len({record.name for record in model}))
        self.assert_round_trip(model, self.shuffled_file(model))

    def test_references_take_the_classes_that_the_schema_admits(self):
        maker = Maker(self.kinds, self.rng, 300000)
        model = list(records.records_of_every_class(maker, per_class=1))
        model += records.lists_of_all_classes(maker)
        model += records.references_to_all_classes(maker)
        self.assert_round_trip(model, self.shuffled_file(model))

    # --- Order and layout ----------------------------------------------------------------------

    def test_order_of_records_changes_nothing(self):
        maker = Maker(self.kinds, self.rng, 20000)
        model = list(records.records_of_every_class(maker, per_class=2))
        for order in (sorted(model, key=lambda record: record.number),
                      sorted(model, key=lambda record: -record.number),
                      self.rng.sample(model, len(model))):
            data = input_file(self.release.namespace, laid_out(self.rng, order))
            self.assert_written(model, self.resave_spellings(data))

    def test_file_of_nothing_but_forward_references(self):
        last = 5000  # which refers to itself: that is forward too
        model = []
        for number in range(1, last + 1):
            arguments = f'.UNION.,#{min(number + 1, last)},#{last}'
            model.append(Record(number, 'IfcBooleanResult', arguments, arguments))
        data = input_file(self.release.namespace, laid_out(self.rng, model))
        self.assert_round_trip(model, data)

    def test_line_ends_and_large_records(self):
        maker = Maker(self.kinds, self.rng, 20000)
        model = list(records.records_of_every_class(maker, per_class=1))
        text = 'A string of a mebibyte. ' * 43691
        model.append(Record(maker.allot('IfcLabel'), 'IfcLabel', f"'{text}'", f"'{text}'"))
        self.assertIn(records.LARGEST_NUMBER, [record.number for record in model])
        for line_end in ('\n', '\r\n', '', '\r', '\n\n \t\n'):
            texts = laid_out(self.rng, model, [line_end])
            with self.subTest(line_end=line_end):
                data = input_file(self.release.namespace, texts, line_end if line_end else '\n')
                self.assert_written(model, self.resave_spellings(data))
        with self.subTest('no newline at the end'):
            data = input_file(self.release.namespace, texts).rstrip()
            self.assert_written(model, self.resave_spellings(data))

    # --- Wrong attributes ------------------------------------------------------------------------

    def test_wrong_tokens_are_reported_and_replaced(self):
        maker = Maker(self.kinds, self.rng, 40000)
        pairs = list(wrong_tokens.wrong_records(maker, of_enumerations=False))
        self.assert_reported(pairs)

    def test_wrong_enumeration_values_are_reported_and_replaced(self):
        maker = Maker(self.kinds, self.rng, 40000)
        pairs = list(wrong_tokens.wrong_records(maker, of_enumerations=True))
        self.assert_reported(pairs)

    def assert_reported(self, pairs):
        model = [record for record, _ in pairs]
        data = input_file(self.release.namespace, laid_out(self.rng, model))
        status, reports, written = self.resave_with_reports(data)
        self.assert_same_reports(pairs, reports)
        self.assertEqual(4, status)
        self.assert_written(model, written)

    def assert_same_reports(self, pairs, reports):
        for (record, wanted), report in zip(pairs, reports):
            self.assertEqual(wanted, report, f'{record.name}({record.given})')
        self.assertEqual(len(pairs), len(reports))

    def test_wrong_enumeration_values_need_no_question_when_ignored(self):
        maker = Maker(self.kinds, self.rng, 40000)
        pairs = list(wrong_tokens.wrong_records(maker, of_enumerations=True))
        model = [record for record, _ in pairs]
        data = input_file(self.release.namespace, laid_out(self.rng, model))
        status, lines, written = self.resave(data, '--ignore-enum-errors')
        lines = [line for line in lines if not LEFT_OUT.fullmatch(line)]
        self.assertEqual(1, len(lines), lines[:MOST_SHOWN])  # where the log is
        self.assertEqual(4, status)
        self.assert_written(model, written)
        log = (self.folder / 'out_IFC_LOG.txt').read_text('utf-8')
        self.assert_same_reports(pairs, re.findall(r'Expected: .*|Enume .*? contain: ".*?"', log))

    # --- Names -----------------------------------------------------------------------------------

    def unknown_names(self):
        """What any release or a careless writer might use: selects, enumerations, types without a
        class, classes of other releases."""
        names = {'IFCWALLX', 'WALL', 'IfcWall', 'ifcwall', 'IfcLabel', 'X', 'IFC'}
        for other in map(Release, RELEASES):
            for table in (other.own_attributes, other.types, other.enumerations, other.selects):
                names.update(name.upper() for name in table)
        return sorted(names - {name.upper() for name in self.release.classes})

    def test_unknown_name_of_a_typed_value_is_reported_and_dropped(self):
        attributes = [attribute.name for attribute in
                      self.release.attributes('IfcPropertySingleValue')]
        self.assertEqual(['NominalValue', 'Unit'], attributes[2:])
        null = self.kinds.of_class['IfcPropertySingleValue'][2].absent
        names = self.unknown_names()
        self.assertLess({name.upper() for name in self.release.selects}, set(names))
        model = [Record(1, 'IfcSiUnit', '*,.LENGTHUNIT.,$,.METRE.', '*,.LENGTHUNIT.,$,.METRE.')]
        for number, name in enumerate(names, 2):
            value = self.rng.choice((f'{name}(1.)', f'({name}(1.))', f'{name} ( )', name,
                                     f"{name}(1.,('),',IFCX(2)),$)", f"({name}(('x')))"))
            model.append(Record(number, 'IfcPropertySingleValue', f"'n',$,{value},#1",
                                f"'n',$,{null},#1"))
        data = input_file(self.release.namespace, laid_out(self.rng, model))
        status, reports, written = self.resave_with_reports(data)
        self.assertEqual([f'The schema has no class named {name}' for name in names], reports)
        self.assertEqual(4, status)
        self.assert_written(model, written)

    def test_unknown_name_of_a_record_ends_the_reading(self):
        for name in ['IFCVALUE', 'IFCUNIT', 'IfcWall', *self.rng.sample(self.unknown_names(), 5)]:
            with self.subTest(name):
                data = input_file(self.release.namespace,
                                  ["#1=IFCLABEL('x');\n", f'#2={name}($);\n', '#3=IFCREAL(1.);\n'])
                status, reports, written = self.resave_with_reports(data)
                self.assertEqual([f'Entity named: {name} not found.',
                                  'Unable to read entity, marker #2. Parsing will be terminate.'],
                                 reports)
                self.assertEqual(1, status)
                self.assertIsNone(written)

    # --- Examples --------------------------------------------------------------------------------

    def test_examples(self):
        for example in EXAMPLES:
            if self.release.namespace not in example.releases:
                continue
            with self.subTest(example.given[0]):
                data = input_file(self.release.namespace, [line + '\n' for line in example.given])
                status, lines, written = self.resave(data, '--answer', 'no')
                mark = 'corvel: in.ifc: '
                reports = [line[len(mark):] for line in lines if line.startswith(mark)]
                self.assertEqual(example.reports, reports)
                if example.written is None:
                    self.assertEqual((1, None), (status, written))
                    continue
                wanted = input_file(self.release.namespace, [w + '\n' for w in example.written])
                self.assertEqual(wanted.decode('latin-1'), written.decode('latin-1'))
                self.assertEqual(4 if reports else 0, status)


def main():
    if len(sys.argv) < 2 or sys.argv[1] not in RELEASES or 'CORVEL' not in os.environ:
        sys.exit(__doc__)
    RoundTrip.release = Release(sys.argv.pop(1))
    unittest.main()


if __name__ == '__main__':
    main()
