#!/usr/bin/env python3
"""Tests of tools/make_models.py and of the samples that it made."""

import collections
import os
import re
import subprocess
import sys
import tempfile
import unittest

_ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
_TOOL = os.path.join(_ROOT, 'tools', 'make_models.py')
_SAMPLES = os.path.join(_ROOT, 'samples')
sys.path.insert(0, os.path.dirname(_TOOL))

# pylint: disable=wrong-import-position
from models import big, layouts, samples, solids, step_text  # noqa: E402
from models.geometry import Geometry  # noqa: E402
from models.model import Habits, Model, guid_text  # noqa: E402

_STRING = re.compile(rb"'(?:[^']|'')*'")
_RECORD = re.compile(rb'^#(\d+)= ?([A-Z0-9]+)\((.*)\);\r?$', re.M)
_GUID = re.compile(rb"[0-3][0-9A-Za-z_$]{21}\Z")


class File:
    """What a file holds, found without any part of the maker."""

    def __init__(self, data):
        self.data = data
        self.records = _RECORD.findall(data)
        self.numbers = [int(number) for number, _, _ in self.records]
        self.references = [
            [int(reference) for reference in re.findall(rb'#(\d+)', _STRING.sub(b'', values))]
            for _, _, values in self.records]
        self.guids = [match.group(1) for match in (
            re.match(rb"'([^']{22})',#\d+,", values) for _, _, values in self.records)
            if match]

    def of_class(self, name):
        return [values for _, entity, values in self.records if entity == name.encode('ascii')]

    def count_forward(self):
        """References to records that stand later in the file."""
        places = {number: place for place, number in enumerate(self.numbers)}
        return sum(places[reference] > place for place, references in enumerate(self.references)
                   for reference in references)

    def share_of_forward_records(self):
        """Percent of the records that refer to one that stands later in the file."""
        places = {number: place for place, number in enumerate(self.numbers)}
        forward = sum(any(places[reference] > place for reference in references)
                      for place, references in enumerate(self.references))
        return 100.0 * forward / len(self.records)


def sample(name):
    with open(os.path.join(_SAMPLES, name), 'rb') as file:
        return File(file.read())


def read_all(folder):
    """File name to bytes."""
    contents = {}
    for name in os.listdir(folder):
        with open(os.path.join(folder, name), 'rb') as file:
            contents[name] = file.read()
    return contents


def run_tool(*arguments, hash_seed='0'):
    environment = dict(os.environ, PYTHONHASHSEED=hash_seed, PYTHONDONTWRITEBYTECODE='1')
    return subprocess.run([sys.executable, _TOOL, *arguments], env=environment, text=True,
                          capture_output=True, check=False)


def make_big(folder, *arguments, hash_seed='0'):
    path = os.path.join(folder, 'big.ifc')
    result = run_tool('big', '--out', path, *arguments, hash_seed=hash_seed)
    assert result.returncode == 0, result.stderr
    with open(path, 'rb') as file:
        return file.read()


class WellFormed:
    """Checks that samples and big models share."""

    def assert_well_formed(self, file, release):
        data = file.data
        self.assertTrue(data.startswith(b'ISO-10303-21;'), data[:20])
        self.assertIn(b"FILE_SCHEMA(('%s'));" % release.encode('ascii'), data)
        self.assertTrue(data.replace(b'\r', b'').endswith(b'ENDSEC;\nEND-ISO-10303-21;\n'))
        self.assertEqual(data.count(b'\n#'), len(file.records), 'a line is no record')
        self.assertEqual(len(set(file.numbers)), len(file.numbers), 'a number occurs twice')
        defined = set(file.numbers)
        dangling = {reference for references in file.references for reference in references
                    if reference not in defined}
        self.assertEqual(set(), dangling)
        self.assertEqual([], [guid for guid in file.guids if not _GUID.match(guid)])
        repeated = [guid for guid, times in collections.Counter(file.guids).items() if times > 1]
        self.assertEqual([], repeated)
        self.assertEqual(1, len(file.of_class('IFCPROJECT')))
        self.assertNotRegex(_STRING.sub(b'', data), rb'[{}]', 'a hole was not filled')


class CommittedSamples(unittest.TestCase, WellFormed):
    def test_they_are_what_the_maker_makes_now(self):
        made, committed = samples.make_all(), read_all(_SAMPLES)
        self.assertEqual(sorted(made), sorted(committed))
        differing = [name for name in made if made[name] != committed[name]]
        self.assertEqual([], differing, 'make them anew with tools/make_models.py')

    def test_every_release_has_one(self):
        self.assertEqual(set(layouts.RELEASES),
                         {sample.release for sample in samples.SAMPLES})

    def test_numbers_references_and_guids_are_sound(self):
        for entry in samples.SAMPLES:
            with self.subTest(entry.name):
                self.assert_well_formed(sample(entry.name), entry.release)

    def test_they_stay_small(self):
        sizes = {entry.name: os.path.getsize(os.path.join(_SAMPLES, entry.name))
                 for entry in samples.SAMPLES}
        self.assertEqual({}, {name: size for name, size in sizes.items()
                              if not 20000 <= size <= 200000})
        self.assertLess(sum(sizes.values()), 1500000)

    def test_every_house_is_complete(self):
        wanted = ('IFCSITE', 'IFCBUILDING', 'IFCBUILDINGSTOREY', 'IFCWALL', 'IFCOPENINGELEMENT',
                  'IFCRELVOIDSELEMENT', 'IFCRELFILLSELEMENT', 'IFCDOOR', 'IFCPROPERTYSET',
                  'IFCRELDEFINESBYTYPE', 'IFCRELASSOCIATESMATERIAL', 'IFCOWNERHISTORY',
                  'IFCUNITASSIGNMENT', 'IFCGEOMETRICREPRESENTATIONCONTEXT', 'IFCEXTRUDEDAREASOLID',
                  'IFCFACETEDBREP', 'IFCFACEBOUND')
        for release in layouts.RELEASES:
            file = sample('house_%s.ifc' % release)
            self.assertEqual([], [name for name in wanted if not file.of_class(name)], release)

    def test_references_point_forward_and_back(self):
        for entry in samples.SAMPLES:
            self.assertGreater(sample(entry.name).count_forward(), 20, entry.name)

    def test_strings_need_every_kind_of_escape(self):
        data = b''.join(sample(entry.name).data for entry in samples.SAMPLES)
        for text in (b"d''int\\X2\\00E9\\X0\\rieur", b'C:\\\\M\\X2\\00F6\\X0\\bel\\\\',
                     b'\\X4\\0001F3E0\\X0\\', b'\\X2\\4F1A8B705BA4\\X0\\', b'K\\S\\|che'):
            self.assertIn(text, data)

    def test_line_ends_differ_between_files(self):
        crlf = sample('house_IFC2X2_PLATFORM.ifc').data
        self.assertEqual(crlf.count(b'\n'), crlf.count(b'\r\n'))
        self.assertNotIn(b'\r', sample('house_IFC4.ifc').data)

    def test_the_oldest_releases_name_every_object(self):
        for release in ('IFC2X_FINAL', 'IFC2X2_PLATFORM'):
            for _, entity, values in sample('house_%s.ifc' % release).records:
                if re.match(rb"'[^']{22}',#\d+,", values):
                    self.assertRegex(values, rb"^'[^']{22}',#\d+,'(?:[^']|'')*','", entity)

    def test_both_models_of_the_office_fit_together(self):
        for release in ('IFC2X3', 'IFC4'):
            pair = [sample('office_%s_%s.ifc' % (kind, release))
                    for kind in ('architecture', 'structure')]
            architecture, structure = pair
            self.assertEqual([1, 1], [file.numbers[0] for file in pair])
            self.assertNotEqual(*[file.of_class('IFCPROJECT')[0][:24] for file in pair])
            self.assertFalse(set(architecture.guids) & set(structure.guids))
            for entity in ('IFCSITE', 'IFCBUILDING', 'IFCBUILDINGSTOREY'):
                self.assertEqual(*[[re.match(rb"'[^']*',#\d+,('(?:[^']|'')*')", values).group(1)
                                    for values in file.of_class(entity)] for file in pair])
            for place in (b'(150000.,75250.,408000.)', b'(4000.,6000.,0.)', b'(0.,0.,3600.)'):
                self.assertTrue(all(place in file.of_class('IFCCARTESIANPOINT') for file in pair))


class Determinism(unittest.TestCase):
    def test_samples_do_not_depend_on_the_order_of_sets(self):
        made = []
        for hash_seed in ('1', '2'):
            with tempfile.TemporaryDirectory() as folder:
                self.assertEqual(0, run_tool('samples', '--out', folder,
                                             hash_seed=hash_seed).returncode)
                made.append(read_all(folder))
        self.assertTrue(made[0] == made[1])

    def test_same_arguments_give_the_same_big_model(self):
        with tempfile.TemporaryDirectory() as folder:
            first = make_big(folder, '--size', '300KB', '--seed', '5', hash_seed='1')
            self.assertTrue(first == make_big(folder, '--size', '300KB', '--seed', '5',
                                              hash_seed='2'))
            self.assertFalse(first == make_big(folder, '--size', '300KB', '--seed', '6'))


class BigModels(unittest.TestCase, WellFormed):
    def test_size_is_met_and_all_is_sound(self):
        with tempfile.TemporaryDirectory() as folder:
            for release, size in (('IFC2X3', 250000), ('IFC4', 1000000), ('IFC2X3', 3000000)):
                with self.subTest(release=release, size=size):
                    data = make_big(folder, '--schema', release, '--size', str(size))
                    self.assertLess(abs(len(data) - size), size * 0.05)
                    self.assert_well_formed(File(data), release)

    def test_shares_are_those_of_real_exports(self):
        with tempfile.TemporaryDirectory() as folder:
            file = File(make_big(folder, '--size', '3MB'))
        counts = collections.Counter(entity.decode() for _, entity, _ in file.records)
        share = {name: 100.0 * count / len(file.records) for name, count in counts.items()}
        for name, low, high in (
                ('IFCCARTESIANPOINT', 14, 26), ('IFCPOLYLOOP', 9, 20), ('IFCFACE', 9, 20),
                ('IFCPROPERTYSINGLEVALUE', 8, 16), ('IFCPROPERTYSET', 2, 5),
                ('IFCRELDEFINESBYPROPERTIES', 2.5, 6), ('IFCDIRECTION', 1, 5),
                ('IFCQUANTITYLENGTH', 1, 6), ('IFCLOCALPLACEMENT', 0.5, 3)):
            self.assertTrue(low < share[name] < high, '%s: %f' % (name, share[name]))
        self.assertTrue(45 < len(file.data) / len(file.records) < 75)
        self.assertTrue(5 < file.share_of_forward_records() < 20)
        self.assertRegex(file.data, rb'\d\.\d+E-\d\d[,)]')
        self.assertRegex(file.data, rb'[(,]\d{4}\.\d{11}[,)]')

    def test_a_size_without_room_is_refused(self):
        result = run_tool('big', '--size', '10KB', '--out', os.devnull)
        self.assertEqual(2, result.returncode)
        self.assertRegex(result.stderr, r'the smallest model of IFC4 has \d+ bytes')

    def test_a_wrong_size_is_named(self):
        result = run_tool('big', '--size', '10XB', '--out', os.devnull)
        self.assertEqual(2, result.returncode)
        self.assertIn("'10XB' is no size such as 500KB, 100MB or 2GB", result.stderr)

    def test_sizes_are_powers_of_ten(self):
        self.assertEqual([1234, 500000, 1500000, 2000000000],
                         [big.size_in_bytes(text) for text in ('1234', '500KB', '1.5mb', '2GB')])


class EnlargedModels(unittest.TestCase, WellFormed):
    def make(self, name, size, folder, first=0):
        path = os.path.join(folder, 'large.ifc')
        result = run_tool('enlarge', '--model', os.path.join(_SAMPLES, name), '--size', str(size),
                          '--first', str(first), '--out', path)
        self.assertEqual(0, result.returncode, result.stderr)
        with open(path, 'rb') as file:
            return File(file.read())

    def test_copies_have_numbers_and_guids_of_their_own_and_one_project(self):
        for release in ('IFC2X3', 'IFC4', 'IFC4X3_ADD2'):
            name = 'house_%s.ifc' % release
            one = sample(name)
            with tempfile.TemporaryDirectory() as folder:
                file = self.make(name, 3 * len(one.data), folder)
            self.assert_well_formed(file, release)
            copies = len(file.of_class('IFCBUILDING')) // len(one.of_class('IFCBUILDING'))
            self.assertGreaterEqual(copies, 3)
            self.assertEqual(len(file.records), copies * (len(one.records) - 1) + 1)
            self.assertEqual(file.records[:len(one.records)], one.records)
            self.assertGreaterEqual(len(file.data), 3 * len(one.data))
            self.assertLess(len(file.data), 5 * len(one.data))

    def test_models_of_different_copies_share_no_guid(self):
        with tempfile.TemporaryDirectory() as folder:
            files = [self.make('house_IFC4.ifc', 250000, folder, first) for first in (0, 100)]
        self.assertFalse(set(files[0].guids) & set(files[1].guids))

    def test_a_file_without_records_is_refused(self):
        result = run_tool('enlarge', '--model', _TOOL, '--size', '1MB', '--out', os.devnull)
        self.assertEqual(2, result.returncode)
        self.assertIn('there is no DATA section', result.stderr)


class StepText(unittest.TestCase):
    def test_reals_have_a_point_and_at_most_fifteen_digits(self):
        values = (0.0, -0.0, 3.0, 0.1 + 0.2, 1234.56789012345678, 1.5e-05, 1e-05, 2e20, -0.25)
        self.assertEqual(['0.', '0.', '3.', '0.3', '1234.56789012346', '1.5E-05', '1.E-05',
                          '2.E+20', '-0.25'], [step_text.real_text(value) for value in values])

    def test_strings_double_apostrophes_and_backslashes(self):
        self.assertEqual("'d''été \\\\'".replace('é', '\\X2\\00E9\\X0\\'),
                         step_text.string_text("d'été \\"))

    def test_neighbouring_wide_letters_share_a_group(self):
        self.assertEqual("'a\\X2\\4F1A8B70\\X0\\b\\X4\\0001F3E0\\X0\\'",
                         step_text.string_text('a会議b🏠'))

    def test_older_exporters_shift_western_letters(self):
        # The section sign would be shifted to an apostrophe.
        self.assertEqual("'K\\S\\|che \\X2\\00A7\\X0\\ \\X2\\4F1A\\X0\\'",
                         step_text.string_text('Küche § 会', latin=True))

    def test_values_have_the_form_of_their_kind(self):
        value = [None, step_text.DERIVED, True, 7, 7.0, step_text.Enum('AREA'), [],
                 step_text.Typed('IfcLabel', 'x')]
        self.assertEqual("($,*,.T.,7,7.,.AREA.,(),IFCLABEL('x'))", step_text.value_text(value))

    def test_guids_begin_with_two_bits(self):
        self.assertEqual('0' * 22, guid_text(0))
        self.assertEqual('3' + '$' * 21, guid_text((1 << 128) - 1))
        self.assertEqual('0' * 21 + '1', guid_text(1))


class Records(unittest.TestCase):
    def test_releases_give_a_record_its_attributes(self):
        for release, line in (('IFC2X3', "#1=IFCMATERIAL('Holz');\n"),
                              ('IFC4', "#1=IFCMATERIAL('Holz',$,$);\n")):
            model = Model(release, 1)
            material = model.add('IfcMaterial', Name='Holz', Category=None)
            model.number_records()
            self.assertEqual(line, model.record_text(material))

    def test_an_attribute_that_no_release_has_is_an_error(self):
        with self.assertRaisesRegex(ValueError, 'IfcMaterial has no Nmae'):
            Model('IFC4', 1).add('IfcMaterial', Nmae='Holz')

    def test_a_missing_attribute_is_an_error(self):
        with self.assertRaisesRegex(ValueError, 'IfcMaterial needs Name'):
            Model('IFC4', 1).add('IfcMaterial')

    def test_a_class_that_no_release_has_is_an_error(self):
        with self.assertRaisesRegex(ValueError, 'no release has IfcMaterail'):
            Model('IFC4', 1).add('IfcMaterail')

    def test_an_abstract_class_is_an_error(self):
        with self.assertRaisesRegex(ValueError, 'IfcCurve is abstract in IFC4'):
            Model('IFC4', 1).add('IfcCurve')

    def test_a_class_of_another_release_is_an_error(self):
        with self.assertRaisesRegex(ValueError, 'IFC2X3 has no IfcTunnel'):
            Model('IFC2X3', 1).add('IfcTunnel')

    def test_a_class_may_be_missing_between_releases(self):
        self.assertEqual(['IFC4X2', 'IFC4X4'],
                         [release for release in ('IFC4X2', 'IFC4X3_ADD2', 'IFC4X4')
                          if layouts.has_class(release, 'IfcDoorStyle')])

    def test_whole_first_puts_a_record_before_its_parts(self):
        model = Model('IFC4', 1, Habits(whole_first=True, number_step=2, first_number=5))
        point = model.add('IfcCartesianPoint', Coordinates=[0.0, 1.5])
        line = model.add_whole('IfcPolyline', point, Points=[point, point])
        model.number_records()
        self.assertEqual("#5=IFCPOLYLINE((#7,#7));\n#7=IFCCARTESIANPOINT((0.,1.5));\n",
                         model.record_text(line) + model.record_text(point))

    def test_lengths_take_the_unit_of_the_model(self):
        model = Model('IFC4', 1)
        point = Geometry(model, 1000.0).point(1.25, 0.0)
        self.assertEqual([1250.0, 0.0], point.values[0])


def volume(solid):
    """Six times the signed volume over six: positive when the faces look outwards."""
    points, faces = solid
    total = 0.0
    for loops in faces:
        for loop in loops:
            ax, ay, az = points[loop[0]]
            for second, third in zip(loop[1:], loop[2:]):
                bx, by, bz = points[second]
                cx, cy, cz = points[third]
                total += (ax * (by * cz - bz * cy) - ay * (bx * cz - bz * cx)
                          + az * (bx * cy - by * cx))
    return total / 6.0


class Solids(unittest.TestCase):
    def test_faces_look_outwards(self):
        hollow = solids.prism(solids.rectangle(0, 0, 4, 3), 0, 2, solids.rectangle(1, 1, 1, 1))
        self.assertAlmostEqual(24.0, volume(solids.box(1.0, -2.0, 3.0, 2.0, 3.0, 4.0)))
        self.assertAlmostEqual(22.0, volume(hollow))
        self.assertAlmostEqual(22.0, volume(solids.upright(hollow)))
        self.assertGreater(volume(solids.drum(1.0, 2.0, 24, 4)), 6.2)

    def test_every_edge_is_used_once_each_way(self):
        hollow = solids.prism(solids.circle(2.0, 9), 0, 2, solids.circle(1.0, 5))
        for _, faces in (hollow, solids.drum(1.0, 2.0, 8, 3)):
            edges = collections.Counter(
                (loop[index - 1], corner) for loops in faces for loop in loops
                for index, corner in enumerate(loop))
            self.assertEqual({1}, set(edges.values()))
            self.assertEqual(set(edges), {(last, first) for first, last in edges})

    def test_triangles_keep_the_volume(self):
        points, triangles = solids.triangles(solids.drum(1.0, 2.0, 8, 3))
        self.assertAlmostEqual(volume(solids.drum(1.0, 2.0, 8, 3)),
                               volume((points, [[triangle] for triangle in triangles])))


if __name__ == '__main__':
    unittest.main()
