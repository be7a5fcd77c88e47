#!/usr/bin/env python3
"""A reader of another maker agrees: merged models open in web-ifc with the products of all inputs.

web-ifc comes from npm, in the version of web_ifc/package-lock.json, into the build folder. Where
that isn't possible, the test tells so and ends with status 77.
"""

import glob
import json
import os
import shutil
import subprocess
import sys
import unittest
from collections import Counter

import program
import step_text
from kept_records import kept_records
from program import ModelTest, REAL_MODELS, SAMPLES
from scene import Scene

_FOLDER = os.path.join(os.path.dirname(os.path.abspath(__file__)), 'web_ifc')
_SKIPPED = 77
# Releases that web-ifc does not know at this version.
_UNKNOWN = ('IFC2X_FINAL', 'IFC2X2_PLATFORM', 'IFC2X2_FINAL', 'IFC4X4')


def install():
    """The folder with the installed package. None, with a notice, where it cannot be had."""
    target = os.path.join(program.build_folder(), 'web_ifc')
    os.makedirs(target, exist_ok=True)
    lock = os.path.join(_FOLDER, 'package-lock.json')
    kept = os.path.join(target, 'package-lock.json')
    done = os.path.join(target, 'node_modules', '.package-lock.json')   # npm writes it at the end
    if os.path.exists(done) and same_bytes(lock, kept):
        return target
    for name in ('package.json', 'package-lock.json', '.npmrc'):
        shutil.copyfile(os.path.join(_FOLDER, name), os.path.join(target, name))
    try:
        done = subprocess.run(['npm', 'ci'], cwd=target, capture_output=True, text=True,
                              timeout=300, check=False)
    except (OSError, subprocess.TimeoutExpired) as error:
        return give_up(f'npm: {error}')
    return target if done.returncode == 0 else give_up(f'npm ci: {done.stderr.strip()}')


def give_up(reason):
    print(f'skipped: web-ifc cannot be installed: {reason}', file=sys.stderr)


def same_bytes(left, right):
    with open(left, 'rb') as first, open(right, 'rb') as second:
        return first.read() == second.read()


class WebIfc(ModelTest):
    installed = None

    def count(self, names):
        """What web-ifc finds in each file."""
        script = os.path.join(_FOLDER, 'count_products.js')
        done = subprocess.run(['node', script, self.installed, *map(self.path, names)],
                              capture_output=True, text=True, timeout=600, check=False)
        self.assertEqual(done.returncode, 0, done.stderr)
        return [json.loads(line) for line in done.stdout.splitlines()]

    def check(self, paths):
        with self.subTest(files=list(map(os.path.basename, paths))):
            self.need_release(program.identifier_of(paths[0]))
            names = [self.copy(path) for path in paths]
            counted = self.count(names)
            if len(names) > 1:
                self.merge(names, '--ignore-units', output='out.ifc')
                for one, path in zip(counted, paths):
                    one['records'] = len(kept_records(program.model_of(path)))
            else:
                self.resave(names[0])
            self.compare(counted, *self.count(['out.ifc']))

    def compare(self, inputs, result):
        products = sum((Counter(one['products']) for one in inputs), Counter())
        self.assertEqual(products, Counter(result['products']))
        self.assertGreater(sum(products.values()), 0)
        self.assertEqual(sum(one['records'] for one in inputs) - (len(inputs) - 1),
                         result['records'])
        for count in ('meshes', 'placed'):
            self.assertEqual(sum(one[count] for one in inputs), result[count], count)
            self.assertGreater(result[count], 0)


    def check_storey(self, paths):
        """Of each model the storey with the most on it: the geometry of exactly these products."""
        with self.subTest(storeys_of=list(map(os.path.basename, paths))):
            self.need_release(program.identifier_of(paths[0]))
            scenes = [Scene(program.model_of(path)) for path in paths]
            parts = [max((scene.below(storey) for storey in scene.of_class('IfcBuildingStorey')),
                         key=len) for scene in scenes]
            names = [self.copy(path) for path in paths]
            self.merge(names, '--ignore-units', *(
                option for index, part in enumerate(parts, 1) for option in
                ('--select', f'{index}:' + ','.join(f'#{number}' for number in part))))
            *inputs, result = self.count([*names, 'merged.ifc'])
            wanted = {}
            for scene, part, counted in zip(scenes, parts, inputs):
                guids = {scene.model.guids[number] for number in part}
                wanted |= {guid: count for guid, count in counted['geometries'].items()
                           if guid in guids}
            self.assertGreater(len(wanted), 0)
            self.assertEqual(result['geometries'], wanted)


class Samples(WebIfc):

    def test_OneStoreyOfABuilding(self):
        for release in ('IFC2X3', 'IFC4'):
            self.check_storey([os.path.join(SAMPLES, f'office_{part}_{release}.ifc')
                               for part in ('architecture', 'structure')])

    def test_ArchitectureAndStructureOfOneBuilding(self):
        for release in ('IFC2X3', 'IFC4'):
            self.check([os.path.join(SAMPLES, f'office_{part}_{release}.ifc')
                        for part in ('architecture', 'structure')])

    def test_EverySampleWithItselfAndAlone(self):
        for path in program.sample_paths():
            if program.identifier_of(path) not in _UNKNOWN:
                self.check([path])
                self.check([path, path])

    def test_ProductsOfASampleAreThoseOfItsText(self):
        path = os.path.join(SAMPLES, 'office_structure_IFC4.ifc')
        [counted] = self.count([self.copy(path)])
        classes = Counter(record.name for record in step_text.read(path).records.values())
        self.assertEqual(counted['products'],
                         {name: classes[name] for name in counted['products']})
        self.assertEqual(counted['products']['IFCCOLUMN'], 24)


@unittest.skipUnless(os.path.isdir(REAL_MODELS), f'no models of other makers in {REAL_MODELS}')
class RealModels(WebIfc):

    def check_folder(self, name, count):
        paths = sorted(glob.glob(os.path.join(REAL_MODELS, name, '*.ifc')))
        self.assertEqual(len(paths), count)
        self.check(paths)

    def test_OneStoreyOfDuplex(self):
        self.check_storey(sorted(glob.glob(os.path.join(REAL_MODELS, 'duplex', '*.ifc'))))

    def test_Duplex(self):
        self.check_folder('duplex', 2)

    def test_RailwaySections(self):
        self.check_folder('rfi', 3)

    def test_BuildingWithOneProjectGuidInAllFiles(self):
        self.check_folder('pcert', 3)

    def test_Schependomlaan(self):
        self.check_folder('schependomlaan', 3)

    def test_ModelAndItsSecondVersion(self):
        self.check_folder('tekla', 2)


if __name__ == '__main__':
    WebIfc.installed = install()
    if WebIfc.installed is None:
        sys.exit(_SKIPPED)
    unittest.main()
