#!/usr/bin/env python3
"""Whatever is asked for beyond the plain fold, the model stays a good one: it breaks nothing of its
schema that its inputs don't break, or the told merge of them."""

import itertools
import os
import unittest
from collections import Counter

import express_rules
import grid_models
import halves
import program
import schema_facts
import step_text
import validity
import written_form
from program import ModelTest, SAMPLES

EXPRESS = os.environ.get('CORVEL_EXPRESS',
                         os.path.join(os.path.dirname(program.ROOT), 'shared', 'express'))

OPTIONS = [('--contexts', 'join'), ('--place', 'map'), ('--guids', 'renew'), ('--guids', 'join'),
           ('--prune',), ('--stamp',), ('--header', 'new'), ('--numbers', 'exact'), ('--share-equal',),
           ('--tree', 'guid'), ('--tree', 'name'), ('--tree', 'elevation'), ('--tree', 'one')]
ALL = ('--one-building', '--numbers', 'exact')


class Rules(unittest.TestCase):

    def test_TheTableIsWhatTheTextsOfTheSchemasSay(self):
        if not os.path.isdir(EXPRESS):
            self.skipTest('the texts of the schemas are not there')
        self.assertEqual(express_rules.table(),
                         express_rules.table_of(express_rules.texts_in(EXPRESS)))

    def test_EveryReleaseHasInversesAndUniqueGuids(self):
        for release in express_rules.table().split('\n')[0].partition(' | ')[2].split():
            rules = express_rules.rules_of(release)
            self.assertGreater(len(rules.inverses), 20)
            self.assertIn(('IfcRoot', ('GlobalId',)), rules.unique)


class Checker(unittest.TestCase):
    """What is broken in a small model is found."""

    RECORDS = (b"#1=IFCPERSON($,'a',$,$,$,$,$,$);#2=IFCORGANIZATION($,'o',$,$,$);"
               b"#3=IFCPERSONANDORGANIZATION(#1,#2,$);#4=IFCAPPLICATION(#2,'1','n','i');"
               b"#5=IFCOWNERHISTORY(#3,#4,$,.ADDED.,$,$,$,1);"
               b"#6=IFCWALL('0000000000000000000001',#5,'w',$,$,$,$,$);"
               b"#7=IFCPROPERTYSINGLEVALUE('p',$,$,$);"
               b"#8=IFCPROPERTYSET('0000000000000000000002',#5,'s',$,(#7));"
               b"#9=IFCRELDEFINESBYPROPERTIES('0000000000000000000003',#5,$,$,(#6),#8);")

    def broken(self, *changes):
        records = self.RECORDS
        for old, new in changes:
            self.assertIn(old, records)
            records = records.replace(old, new)
        return validity.broken_in(b"ISO-10303-21;HEADER;FILE_SCHEMA(('IFC2X3'));ENDSEC;DATA;"
                                  + records + b'ENDSEC;END-ISO-10303-21;')

    def expect(self, rule, entity, *changes):
        self.assertEqual(Counter({(rule, entity): 1}), self.broken(*changes))

    def test_AGoodModelBreaksNothing(self):
        self.assertEqual(Counter(), self.broken())

    def test_AReferenceToNothingIsFound(self):
        self.expect('reference to nothing', 'IFCPERSONANDORGANIZATION', (b'(#1,#2,$)', b'(#77,#2,$)'))

    def test_AMandatoryReferenceThatIsGoneIsFound(self):
        self.expect('no TheOrganization', 'IFCPERSONANDORGANIZATION', (b'(#1,#2,$)', b'(#1,*,$)'))

    def test_AnEmptySetIsFound(self):
        self.expect('HasProperties has too few members', 'IFCPROPERTYSET', (b'(#7)', b'()'))

    def test_AMemberTwiceIsFound(self):
        self.expect('RelatedObjects has a member twice', 'IFCRELDEFINESBYPROPERTIES',
                    (b'(#6)', b'(#6,#6)'))

    def test_AGuidTwiceIsFound(self):
        self.expect('IfcRoot: GlobalId not unique', 'IFCPROPERTYSET', (b'0002', b'0001'))

    def test_TwoApplicationsOfOneIdentifierAreFound(self):
        found = self.broken((b'#5=', b"#40=IFCAPPLICATION(#2,'2','n','i');#5="))
        self.assertEqual(Counter({('IfcApplication: ApplicationIdentifier not unique',
                                   'IFCAPPLICATION'): 1}), found)

    def test_TwoPropertySetsOfOneNameAreFound(self):
        self.expect('property sets of one name', 'IFCWALL', (
            b'#9=', b"#18=IFCPROPERTYSET('0000000000000000000004',#5,'s',$,(#7));"
            b"#19=IFCRELDEFINESBYPROPERTIES('0000000000000000000005',#5,$,$,(#6),#18);#9="))

    def test_TwoPropertiesOfOneNameAreFound(self):
        self.expect('properties of one name', 'IFCPROPERTYSET', (
            b'(#7)', b'(#7,#17)'), (b'#8=', b"#17=IFCPROPERTYSINGLEVALUE('p',$,$,$);#8="))

    def test_ARelationTooManyIsFound(self):
        self.expect('IfcPropertySetDefinition.PropertyDefinitionOf: too many', 'IFCPROPERTYSET', (
            b'#9=', b"#19=IFCRELDEFINESBYPROPERTIES('0000000000000000000005',#5,$,$,(#6),#8);#9="))

    def test_AnOpeningWithoutItsHostIsFound(self):
        self.expect('IfcFeatureElementSubtraction.VoidsElements: too few', 'IFCOPENINGELEMENT', (
            b'#9=', b"#19=IFCOPENINGELEMENT('0000000000000000000005',#5,$,$,$,$,$,$);#9="))


def is_built(path):
    return schema_facts.choose_release(program.identifier_of(path)) in program.built_releases()


class Merging(ModelTest):

    def merged(self, names, *options):
        result = program.run(['merge', '--quiet', '--ignore-units', *names, '-o', 'merged.ifc',
                              *options], self.folder)
        self.assertIn(result.status, (program.DONE, program.WRITTEN_WITH_REPORTS), result.errors)
        return self.read('merged.ifc')

    def check(self, names, inputs, told, options):
        with self.subTest(models=names, options=' '.join(options)):
            written = self.merged(names, *options)
            self.assertEqual(
                Counter(), validity.newly_broken(validity.broken_in(written), inputs, told))
            numbers = ('--numbers', 'exact') if '--numbers' in options else ()
            self.resave('merged.ifc', *numbers)
            self.assert_same_file(written, self.read('out.ifc'))

    def check_all(self, paths, choices):
        if is_built(paths[0]):
            self.check_names([self.copy(path) for path in paths], choices)

    def check_names(self, names, choices):
        inputs = [validity.broken_in(self.read(name)) for name in names]
        told = validity.broken_in(self.merged(names))
        for options in choices:
            self.check(names, inputs, told, options)


class Merges(Merging):

    def test_ModelsOfEveryReleaseWithThemselves(self):
        """Every object is there twice. Each option has a release or two, and all have every one: of
        small models each has each."""
        for place, path in enumerate(program.sample_paths()):
            if os.path.basename(path).startswith('house'):
                self.check_all([path, path], [OPTIONS[place % len(OPTIONS)], ALL])

    def test_SmallModelsOfEveryReleaseThroughEveryOption(self):
        for release in program.built_releases():
            name = self.write(f'{release}.ifc', grid_models.frame_bytes(release))
            self.check_names([name, name], [*OPTIONS, ALL])
            in_feet = self.write(f'{release}_feet.ifc', grid_models.frame_bytes(release, 'FOOT'))
            self.check_names([name, in_feet], [('--units', 'convert', '--numbers', 'exact'), ALL])

    def test_ArchitectureAndStructureOfOneBuilding(self):
        for release in ('IFC2X3', 'IFC4'):
            self.check_all([os.path.join(SAMPLES, f'office_{part}_{release}.ifc')
                            for part in ('architecture', 'structure')], [*OPTIONS, ALL])

    def test_SelectionsArePrunedToGoodModels(self):
        for name in ('house_IFC2X3', 'house_IFC4', 'tunnel_IFC4X4'):
            path = os.path.join(SAMPLES, name + '.ifc')
            if not is_built(path):
                continue
            names = [self.copy(path)] * 2
            inputs = [validity.broken_in(self.read(names[0]))] * 2
            for choice in (('--hide', '2:IfcWall,IfcWallStandardCase,IfcSlab'),
                           ('--select', '1:IfcProject', '--select', '2:IfcSlab')):
                if name.startswith('tunnel'):
                    choice = ('--mode', 'active')
                told = validity.broken_in(self.merged(names, *choice))
                self.check(names, inputs, told, (*choice, '--prune'))


class Halves(Merging):
    """A model cut in two and joined again."""

    def check_joined(self, path, seed):
        if not is_built(path):
            return
        model = program.model_of(path)
        cut = halves.Cut(model, seed).halves
        whole = halves.tree_of(model.text())
        names = [self.write('a.ifc', cut[0]), self.write('b.ifc', cut[1])]
        told = self.merged(names)
        self.assertNotEqual(whole, halves.tree_of(told))
        for order in (names, names[::-1]):
            with self.subTest(model=os.path.basename(path), order=order):
                joined = self.merged(order, '--one-building')
                found = halves.tree_of(joined)
                self.assertEqual((Counter(), Counter()), (whole - found, found - whole))
                self.assertEqual(Counter(), validity.newly_broken(
                    validity.broken_in(joined), [validity.broken_in(one) for one in cut],
                    validity.broken_in(told)))

    def test_ThreePartsInAnyOrderAreTheWholeAgain(self):
        for name in ('house_IFC2X3', 'office_architecture_IFC4'):
            path = os.path.join(SAMPLES, name + '.ifc')
            if not is_built(path):
                continue
            model = program.model_of(path)
            first, rest = halves.Cut(model, 5).halves
            parts = [first, *halves.Cut(written_form.Model(step_text.StepFile(rest)), 6).halves]
            names = [self.write(f'{place}.ifc', part) for place, part in enumerate(parts)]
            whole = halves.tree_of(model.text())
            for order in itertools.permutations(names):
                with self.subTest(model=name, order=order):
                    found = halves.tree_of(self.merged(order, '--one-building'))
                    self.assertEqual((Counter(), Counter()), (whole - found, found - whole))

    def test_OfModelsOfEveryReleaseAreTheWholeAgain(self):
        for seed, path in enumerate(program.sample_paths()):
            self.check_joined(path, seed)


if __name__ == '__main__':
    unittest.main()
