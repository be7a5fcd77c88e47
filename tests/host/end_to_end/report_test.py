"""Reports of runs against the files that went in and came out, which are counted here by themselves."""

import json
import os
import random
import re
import shutil
import unittest
import zipfile

from support import (DONE, NOTHING_WRITTEN, WITH_REPORTS, WRONG_USAGE, CorvelTest, model, project,
                     wall)

SAMPLES = os.path.join(os.path.dirname(__file__), '..', '..', '..', 'samples')
OFFICE = ('office_architecture_IFC4.ifc', 'office_structure_IFC4.ifc')
HOUSE = 'house_IFC4.ifc'
# Of what a dry run and the run that follows it may tell apart.
OF_ITS_OWN = ('dryRun', 'startedAt', 'stages', 'output')


def classes_of(text):
    """Records of a model's text by class."""
    counts = {}
    for name in re.findall(r'^#\d+\s*=\s*(\w+)\s*\(', text, re.MULTILINE):
        counts[name] = counts.get(name, 0) + 1
    return counts


class ReportTest(CorvelTest):

    def take(self, *samples):
        for sample in samples:
            shutil.copy(os.path.join(SAMPLES, sample), self.folder)

    def text(self, name):
        return self.read(name).decode('latin-1')

    def report(self, name='report.json'):
        return json.loads(self.read(name))

    def assert_adds_up(self, report):
        for entry in report['inputs']:
            with self.subTest(entry['file']):
                records = entry['records']
                self.assertEqual(records['in'], records['kept'] + records['leftOut'] + records['joined'] +
                                 records['notNeeded'])
                self.assertEqual(records['in'], sum(classes_of(self.text(entry['file'])).values()))
                for tally in [entry['products'], *entry['classes']]:
                    self.assertEqual(tally['in'], tally['kept'] + sum(tally['dropped'].values()), tally)
                for key in ('in', 'kept'):
                    self.assertEqual(entry['products'][key], sum(one[key] for one in entry['classes']))
                counted = classes_of(self.text(entry['file']))
                for one in entry['classes']:
                    self.assertEqual(one['in'], counted[one['class'].upper()], one)

    def assert_tells_of(self, report, output):
        """The report against the file that was written."""
        counted = classes_of(self.text(output))
        told = report['output']
        self.assertEqual(told['records'], sum(counted.values()))
        self.assertEqual(told['records'],
                         told['made'] + sum(entry['records']['kept'] for entry in report['inputs']))
        kept = {}
        for entry in report['inputs']:
            for one in entry['classes']:
                name = one['class'].upper()
                kept[name] = kept.get(name, 0) + one['kept']
        for name, count in kept.items():
            self.assertEqual(count, counted.get(name, 0), name)
        self.assertEqual(told['products'], sum(kept.values()))


class Sums(ReportTest):

    def merge(self, *arguments, status=DONE):
        ended = self.run_corvel('merge', *arguments, '-o', 'out.ifc', '--report', 'report.json')
        self.assert_ended(ended, status)
        return self.report()

    def test_a_plain_merge_keeps_all_but_the_later_projects(self):
        self.take(*OFFICE)
        report = self.merge(*OFFICE)
        self.assert_adds_up(report)
        self.assert_tells_of(report, 'out.ifc')
        first, second = report['inputs']
        self.assertEqual((first['records']['in'], 0), (first['records']['kept'], first['records']['joined']))
        self.assertEqual(1, second['records']['joined'])
        self.assertEqual(len(self.read('out.ifc')), report['output']['bytes'])
        self.assertTrue(report['output']['written'])
        self.assertEqual([], report['failures'])

    def test_what_is_hidden_and_what_is_inactive_is_told_by_its_class(self):
        self.take(*OFFICE)
        counted = classes_of(self.text(OFFICE[0]))
        report = self.merge(*OFFICE, '--hide', '1:IfcWindow,IfcFurnishingElement', '--inactive', '1:IfcCovering')
        self.assert_adds_up(report)
        self.assert_tells_of(report, 'out.ifc')
        told = {one['class']: one for one in report['inputs'][0]['classes']}
        for name, reason in (('IfcWindow', 'hidden'), ('IfcFurnishingElement', 'hidden'),
                             ('IfcCovering', 'inactive')):
            self.assertEqual({reason: counted[name.upper()]}, told[name]['dropped'], name)

    def test_openings_that_are_left_out_are_told_as_such(self):
        self.take(*OFFICE)
        report = self.merge(*OFFICE, '--delete-openings')
        told = {one['class']: one for one in report['inputs'][0]['classes']}
        count = classes_of(self.text(OFFICE[0]))['IFCOPENINGELEMENT']
        self.assertEqual({'opening': count}, told['IfcOpeningElement']['dropped'])
        self.assert_tells_of(report, 'out.ifc')

    def test_what_was_not_selected_is_told_and_what_a_selection_needs_is_kept(self):
        self.take(*OFFICE)
        report = self.merge(*OFFICE, '--select', '1:IfcDoor', '--select', '2:IfcBeam')
        self.assert_adds_up(report)
        self.assert_tells_of(report, 'out.ifc')
        for entry, kept in zip(report['inputs'], ('IfcDoor', 'IfcBeam')):
            told = {one['class']: one for one in entry['classes']}
            self.assertEqual({}, told[kept]['dropped'])
            self.assertLess(0, entry['products']['dropped']['notSelected'])

    def test_a_model_that_is_left_out_is_left_out_whole_and_told_why(self):
        self.take(*OFFICE, HOUSE)
        report = self.merge(*OFFICE, HOUSE, status=WITH_REPORTS)
        self.assert_adds_up(report)
        self.assert_tells_of(report, 'out.ifc')
        house = report['inputs'][2]
        self.assertFalse(house['takesPart'])
        self.assertEqual(['units'], house['leftOutFor'])
        self.assertEqual([{'type': 'LENGTHUNIT', 'unit': 'METRE', 'first': 'MILLIMETRE'}],
                         house['unitDifferences'])
        self.assertEqual(house['records']['in'], house['records']['leftOut'])
        self.assertEqual({'modelLeftOut': house['products']['in']}, house['products']['dropped'])
        # What is shown at once is one failure, from its first word to its last.
        failure, = report['failures']
        self.assertTrue(failure.startswith('Not all projects can be merged with'), failure)
        self.assertIn('Projects that will not be merged', failure)
        self.assertIn(OFFICE[1], failure.splitlines()[-1])

    def test_one_building_of_two_copies_joins_what_both_have(self):
        self.take(HOUSE)
        shutil.copy(self.path(HOUSE), self.path('copy.ifc'))
        report = self.merge(HOUSE, 'copy.ifc', '--one-building')
        self.assert_adds_up(report)
        self.assert_tells_of(report, 'out.ifc')
        copy = report['inputs'][1]
        self.assertEqual({'joined': copy['products']['in']}, copy['products']['dropped'])
        steps = {step['step']: step['counts'] for step in report['steps']}
        self.assertEqual(2, steps['stamp']['groups'])
        root = report['tree'][0]
        self.assertEqual(('IfcProject', [0, 1]), (root['class'], root['inputs']))
        self.assertEqual([0, 1], report['tree'][root['children'][0]]['inputs'])

    def test_it_adds_up_whatever_is_asked_for(self):
        self.take(*OFFICE, HOUSE)
        self.write('damaged.ifc', self.text(OFFICE[1]).replace('=IFCCOLUMN(', '=IFCKOLUMN(', 3)
                   .replace(',#', ',#99999,#', 1).encode('latin-1'))
        for job in ((*OFFICE, '--place', 'map'), (*OFFICE, HOUSE, '--one-building', '--units', 'convert'),
                    (HOUSE, OFFICE[0], '--units', 'convert', '--place', 'map', '--prune'),
                    (OFFICE[0], 'damaged.ifc', '--tolerant'),
                    (OFFICE[0], 'damaged.ifc', '--tolerant', '--one-building', '--hide', '1:IfcDoor'),
                    (OFFICE[0], OFFICE[0]), (OFFICE[0], OFFICE[0], '--one-building')):
            with self.subTest(job):
                ended = self.run_corvel('merge', *job, '-o', 'out.ifc', '--report', 'report.json')
                self.assertIn(ended.status, (DONE, WITH_REPORTS), ended.err)
                report = self.report()
                self.assert_adds_up(report)
                self.assert_tells_of(report, 'out.ifc')

    def test_zipped_inputs_and_outputs_add_up_as_the_others_do(self):
        self.take(*OFFICE)
        for name in OFFICE:
            archive = os.fsdecode(self.path(name.replace('.ifc', '.ifczip')))
            with zipfile.ZipFile(archive, 'w', zipfile.ZIP_DEFLATED) as packed:
                packed.writestr(name, self.read(name))
        ended = self.run_corvel('merge', *(name.replace('.ifc', '.ifczip') for name in OFFICE), '-o', 'out.ifczip',
                                '--report', 'report.json', '--hide', '1:IfcDoor')
        self.assert_ended(ended, DONE)
        report = self.report()
        self.assertEqual([os.path.getsize(self.path(name.replace('.ifc', '.ifczip'))) for name in OFFICE],
                         [entry['bytes'] for entry in report['inputs']])
        with zipfile.ZipFile(os.fsdecode(self.path('out.ifczip'))) as packed:
            self.write('unpacked.ifc', packed.read(packed.namelist()[0]))
        for entry, name in zip(report['inputs'], OFFICE):
            entry['file'] = name
        self.assert_adds_up(report)
        self.assert_tells_of(report, 'unpacked.ifc')

    def test_units_of_inputs_stand_beside_that_of_the_result(self):
        self.take(OFFICE[0], HOUSE)
        report = self.merge(OFFICE[0], HOUSE, '--units', 'convert')
        self.assertEqual([('MILLIMETRE', 0.001), ('METRE', 1)],
                         [(entry['lengthUnit'], entry['metresPerUnit']) for entry in report['inputs']])
        self.assertEqual(('MILLIMETRE', 0.001), (report['output']['lengthUnit'], report['output']['metresPerUnit']))
        self.assertEqual(1, report['steps'][0]['input'])
        self.assertIn('converted', report['steps'][0]['lists'])

    def test_extract_and_resave_and_optimise_tell_of_their_model(self):
        self.take(OFFICE[0])
        for arguments in (('extract', OFFICE[0], '-o', 'out.ifc', '--hide', 'IfcWindow', '--prune'),
                          ('extract', OFFICE[0], '-o', 'out.ifc', '--select', 'IfcDoor', '--offset', '1,2,3'),
                          ('resave', OFFICE[0], 'out.ifc'),
                          ('optimise', OFFICE[0], 'out.ifc')):
            with self.subTest(arguments):
                self.assert_ended(self.run_corvel(*arguments, '--report', 'report.json'), DONE)
                report = self.report()
                self.assertEqual(arguments[0], report['report'])
                self.assert_adds_up(report)
                self.assert_tells_of(report, 'out.ifc')


class DryRuns(ReportTest):

    def jobs(self):
        """Random jobs, the same in each run."""
        chance = random.Random(19)
        for _ in range(28):
            # The second model as it is, damaged, in metres, or the first one again.
            second = chance.choice((OFFICE[1], OFFICE[1], 'damaged.ifc', HOUSE, OFFICE[0]))
            job = []
            for at, name in enumerate((OFFICE[0], second)):
                names = sorted(classes_of(self.text(name)))
                products = [name for name in names if name in {
                    'IFCWALL', 'IFCDOOR', 'IFCWINDOW', 'IFCSLAB', 'IFCBEAM', 'IFCCOLUMN', 'IFCSPACE', 'IFCPILE',
                    'IFCBUILDINGSTOREY', 'IFCOPENINGELEMENT', 'IFCCOVERING', 'IFCMEMBER'}]
                listed = ','.join(chance.sample(products, chance.randint(1, 3)))
                option = chance.choice(('--hide', '--inactive', '--select', None))
                if option:
                    job += [option, f'{at + 1}:{listed}']
            if chance.random() < 0.5:
                job += ['--offset', f'2={chance.randint(-9, 9) * 1000},0,{chance.randint(-3, 3) * 500}']
            job += chance.choice(([], ['--one-building'], ['--guids', 'join'], ['--prune'], ['--tree', 'name'],
                                  ['--contexts', 'join', '--stamp'], ['--share-equal'], ['--delete-openings']))
            job += chance.choice(([], ['--place', 'map'], ['--units', 'convert'], ['--tolerant'],
                                  ['--units', 'convert', '--place', 'map', '--tolerant']))
            yield (OFFICE[0], second), job

    def test_a_dry_run_tells_what_the_run_then_does(self):
        self.take(*OFFICE, HOUSE)
        self.write('damaged.ifc', self.text(OFFICE[1]).replace('=IFCCOLUMN(', '=IFCKOLUMN(', 3).encode('latin-1'))
        for inputs, job in self.jobs():
            with self.subTest((inputs, job)):
                dry = self.run_corvel('merge', *inputs, *job, '--dry-run', '--report', 'dry.json')
                before = self.names()
                real = self.run_corvel('merge', *inputs, *job, '-o', 'out.ifc', '--report', 'report.json')
                self.assertEqual(dry.status, real.status, (dry.err, real.err))
                self.assertNotIn('out.ifc', before)
                told, done = self.report('dry.json'), self.report()
                for key in ('records', 'made', 'products'):
                    self.assertEqual(told['output'].get(key), done['output'].get(key))
                for report in (told, done):
                    for key in OF_ITS_OWN:
                        del report[key]
                self.assertEqual(told, done)
                self.assert_adds_up(done)
                if 'out.ifc' in self.names():
                    self.assert_tells_of(self.report(), 'out.ifc')
                for name in ('out.ifc', 'dry.json', 'report.json'):
                    if name in self.names():
                        os.remove(self.path(name))

    def test_a_dry_run_tells_what_is_converted(self):
        self.take(OFFICE[0], HOUSE)
        job = ('merge', OFFICE[0], HOUSE, '--units', 'convert')
        self.assert_ended(self.run_corvel(*job, '--dry-run', '--report', 'dry.json'), DONE)
        self.assert_ended(self.run_corvel(*job, '-o', 'out.ifc', '--report', 'report.json'), DONE)
        told, done = self.report('dry.json'), self.report()
        self.assertEqual(told['steps'], done['steps'])
        self.assertEqual(told['inputs'], done['inputs'])
        units = done['steps'][0]
        self.assertEqual('units', units['step'])
        self.assertEqual(f'Units converted to those of the first: {HOUSE}', units['lists']['converted'][0])
        self.assertRegex(units['lists']['converted'][1], r'^LENGTHUNIT: \d+ values times 1000\.$')
        self.assert_adds_up(done)
        self.assert_tells_of(done, 'out.ifc')

    def test_where_units_agree_already_no_page_says_that_they_were_converted(self):
        self.take(*OFFICE, HOUSE)
        for models, shown in ((OFFICE, 0), ((OFFICE[0], HOUSE), 1)):
            ended = self.run_corvel('merge', *models, '--units', 'convert', '--dry-run', '--report', 'dry.html')
            self.assert_ended(ended, DONE)
            self.assertEqual(shown, self.read('dry.html').count(b"data-t='conversions'"))

    def test_a_dry_run_leaves_nothing_behind_and_tells_each_model(self):
        self.take(*OFFICE)
        before = self.names()
        ended = self.run_corvel('merge', *OFFICE, '--dry-run', '--hide', '1:IfcDoor')
        self.assert_ended(ended, DONE)
        self.assertEqual(before, self.names())
        self.assertIn(f'{OFFICE[0]}: takes part\n  schema IFC4, lengths in MILLIMETRE\n', ended.out)
        self.assertIn('    IfcDoor: 8 in, 0 kept, 8 hidden\n', ended.out)
        self.assertRegex(ended.out, r'\nThe result would have \d+ records, 0 of them new, and 133 products\.\n$')

    def test_a_dry_run_looks_at_the_output_that_it_is_given(self):
        self.take(*OFFICE)
        ended = self.run_corvel('merge', *OFFICE, '--dry-run', '-o', OFFICE[0])
        self.assert_ended(ended, NOTHING_WRITTEN)
        self.assertIn('the output is also an input', ended.err)

    def test_a_dry_run_in_which_something_is_reported_says_so(self):
        self.take(*OFFICE, HOUSE)
        ended = self.run_corvel('merge', *OFFICE, HOUSE, '--dry-run', '--log', 'log.txt')
        self.assert_ended(ended, WITH_REPORTS)
        self.assertIn(f'{HOUSE}: left out: its units are not those of the first, LENGTHUNIT METRE and not '
                      'MILLIMETRE\n', ended.out)
        self.assertIn('This was a dry run, and something was reported.', ended.err)

    def test_a_dry_run_of_a_proposal_is_wrong_usage(self):
        ended = self.run_corvel('merge', 'a.ifc', 'b.ifc', '--dry-run', '--propose-tree', 't.txt')
        self.assert_ended(ended, WRONG_USAGE)
        self.assertIn('--propose-tree writes a list: leave --dry-run out', ended.err)


class Refusals(ReportTest):

    def test_a_report_with_another_ending_is_wrong_usage(self):
        ended = self.run_corvel('resave', 'a.ifc', 'b.ifc', '--report', 'r.txt')
        self.assert_ended(ended, WRONG_USAGE)
        self.assertIn("--report takes a name that ends in .html or .json, not 'r.txt'", ended.err)

    def test_a_report_in_a_folder_that_is_not_there_stops_the_run_before_it_begins(self):
        self.take(HOUSE)
        ended = self.run_corvel('resave', HOUSE, 'out.ifc', '--report', 'nowhere/r.json')
        self.assert_ended(ended, NOTHING_WRITTEN)
        self.assertEqual([HOUSE], self.names())

    def test_a_run_that_fails_has_its_report_and_the_failure_in_it(self):
        self.write('a.ifc', project())
        self.write('b.ifc', project('#2=IFCNOSUCHCLASS();'))
        ended = self.run_corvel('merge', 'a.ifc', 'b.ifc', '-o', 'out.ifc', '--report', 'report.json')
        self.assert_ended(ended, NOTHING_WRITTEN)
        report = self.report()
        self.assertNotEqual([], report['failures'])
        self.assertFalse(report['output']['written'])
        self.assertIsNone(report['places'])
        self.assertNotIn('records', report['output'])

    def test_without_the_option_the_output_is_the_same(self):
        self.take(*OFFICE)
        outputs = []
        for options in ((), ('--report', 'report.json')):
            self.assert_ended(self.run_corvel('merge', *OFFICE, '-o', 'out.ifc', '--stamp', *options), DONE)
            outputs.append(self.read('out.ifc'))
        self.assertEqual(outputs[0], outputs[1])


class Places(ReportTest):

    def places(self, *inputs, options=()):
        ended = self.run_corvel('merge', *inputs, '-o', 'out.ifc', '--report', 'report.json', *options)
        self.assert_ended(ended, DONE)
        places = self.report()['places']
        return [dict(zip(places['columns'], row)) for row in places['products']]

    def test_a_product_stands_where_its_placement_and_the_offset_put_it(self):
        units = ('#50=IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.);', '#51=IFCUNITASSIGNMENT((#50));')
        head = "#1=IFCPROJECT('0YvCt7Q5n0JgN0tW6Vw4pA',$,'P',$,$,$,$,$,#51);"
        for name, guid in (('a.ifc', '1a'), ('b.ifc', '1b')):
            self.write(name, model('\n'.join((head,) + units + wall(2, guid, 2500))))
        rows = self.places('a.ifc', 'b.ifc', options=('--offset', '2=1000000,0,-3000'))
        self.assertEqual([(0, '1a', 2.5, 0, 0), (1, '1b', 1002.5, 0, -3)],
                         [(row['input'], row['guid'], row['x'], row['y'], row['z']) for row in rows])

    def test_hostile_names_come_back_as_they_are(self):
        names = ('</script><script>alert(1)</script>', '<!--', 'a\u2028b', '"\\', '&lt;', '\u00e4\u4e16')
        walls = []
        for at, name in enumerate(names):
            number = 10 * (at + 1)
            coded = ''.join(c if c in '<>/!-&;() ' or c.isalnum() and c.isascii() else
                            {'"': '"', '\\': '\\\\'}.get(c, f'\\X2\\{ord(c):04X}\\X0\\') for c in name)
            walls += [line.replace("'W'", f"'{coded}'") for line in wall(number, f'g{at}')]
        self.write('a.ifc', project(*walls))
        self.write('b.ifc', project(*wall(2, 'other')))
        rows = self.places('a.ifc', 'b.ifc')
        self.assertEqual([*names, 'W'], [row['name'] for row in rows])
        raw = self.read('report.json')
        for sequence in (b'<', b'>', b'&', '\u2028'.encode()):
            self.assertNotIn(sequence, raw)


if __name__ == '__main__':
    unittest.main()
