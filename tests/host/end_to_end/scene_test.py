"""`corvel tree`: the objects of a model, as people and as programs see them."""

import glob
import json
import os
import re
import sys
import unittest

from support import DONE, NOTHING_WRITTEN, PROJECT, CorvelTest, model, project

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), '..', '..', 'models'))
import program  # noqa: E402  (from the folder above, as all of these)
import schema_facts  # noqa: E402
import step_text  # noqa: E402

_LIST = os.path.join(os.path.dirname(os.path.abspath(__file__)), '..', '..', '..', 'src', 'step',
                     'releases.inc')
with open(_LIST, encoding='ascii') as _file:
    RELEASES = re.findall(r'^CORVEL_RELEASE\((\w+)\)', _file.read(), re.MULTILINE)

HOUSE = ("#2=IFCSITE('s',$,'Site',$,$,$,$,$,$,$,$,$,$,$);",
         "#3=IFCBUILDING('b',$,'B\\X2\\00FC\\X0\\ro',$,$,$,$,$,$,$,$,$);",
         "#4=IFCWALL('w',$,'Wall',$,$,$,$,$,$);",
         "#5=IFCOPENINGELEMENT('o',$,$,$,$,$,$,$,$);",
         "#6=IFCDOOR('d',$,'Door',$,$,$,$,$,$,$,$,$,$);",
         "#10=IFCRELAGGREGATES('r1',$,$,$,#1,(#2));",
         "#11=IFCRELAGGREGATES('r2',$,$,$,#2,(#3));",
         "#12=IFCRELCONTAINEDINSPATIALSTRUCTURE('r3',$,$,$,(#6,#4),#3);",
         "#13=IFCRELVOIDSELEMENT('r4',$,$,$,#4,#5);",
         "#14=IFCRELFILLSELEMENT('r5',$,$,$,#5,#6);")


class Tree(CorvelTest):

    def test_objects_stand_below_their_parents(self):
        self.write('a.ifc', project(*HOUSE))
        self.assert_ended(
            self.run_corvel('tree', 'a.ifc'), DONE, err='',
            out='#1 IfcProject 0YvCt7Q5n0JgN0tW6Vw4pA P\n'
                '  #2 IfcSite s Site\n'
                '    #3 IfcBuilding b Büro\n'
                '      #4 IfcWall w Wall\n'
                '        #5 IfcOpeningElement o\n'
                '      #6 IfcDoor d Door\n')

    def test_json_has_the_same_objects(self):
        self.write('a.ifc', project(*HOUSE))
        ended = self.run_corvel('tree', '--json', 'a.ifc')
        self.assert_ended(ended, DONE, err='')
        tree = json.loads(ended.out)
        self.assertEqual(['file', 'schema', 'remarks', 'problems', 'objects'], list(tree))
        self.assertEqual(['a.ifc', 'IFC4', [], []], list(tree.values())[:4])
        self.assertEqual([(1, None), (2, 1), (3, 2), (4, 3), (5, 4), (6, 3)],
                         [(o['number'], o['parent']) for o in tree['objects']])
        self.assertEqual({'number': 3, 'class': 'IfcBuilding', 'guid': 'b', 'name': 'Büro',
                          'parent': 2}, tree['objects'][2])

    def test_a_terminal_is_safe_from_names(self):
        self.write('a.ifc', model("#4=IFCWALL('\x1b]0;x\x07',$,'\x1b[2J');"))
        self.assert_ended(self.run_corvel('tree', 'a.ifc'), DONE, err='',
                          out='#4 IfcWall ?]0;x? ?[2J\n')

    def test_objects_in_a_circle_are_shown(self):
        self.write('a.ifc', project(
            "#4=IFCWALL('a');", "#5=IFCWALL('b');", "#6=IFCRELNESTS('r',$,$,$,#5,(#4));",
            "#7=IFCRELNESTS('r',$,$,$,#4,(#5));"))
        self.assert_ended(self.run_corvel('tree', 'a.ifc'), DONE, err='',
                          out='#1 IfcProject 0YvCt7Q5n0JgN0tW6Vw4pA P\n'
                              '#4 IfcWall a\n  #5 IfcWall b\n')

    def test_broken_records_are_passed_over(self):
        self.write('a.ifc', project("#4=IFCWALL('a'", "#5=IFCNOSUCHCLASS();", '#=IFCWALL();',
                                    "#6=(IFCWALL('x')IFCDOOR('y'));", "#7=IFCSLAB('s');"))
        ended = self.run_corvel('tree', 'a.ifc')
        self.assert_ended(ended, DONE, err='',
                          out='#1 IfcProject 0YvCt7Q5n0JgN0tW6Vw4pA P\n'
                              '  #4 IfcWall a\n  #7 IfcSlab s\n')

    def test_a_file_that_is_no_model_is_a_problem(self):
        self.write('a.ifc', b'hello')
        message = "this is no STEP file, it begins with 'hello'"
        self.assert_ended(self.run_corvel('tree', 'a.ifc'), NOTHING_WRITTEN, out='',
                          err=f'corvel: a.ifc: {message}\n')
        ended = self.run_corvel('tree', '--json', 'a.ifc')
        self.assert_ended(ended, NOTHING_WRITTEN)
        self.assertEqual([message], json.loads(ended.out)['problems'])
        self.assert_ended(self.run_corvel('tree', 'none.ifc'), NOTHING_WRITTEN, out='',
                          err='corvel: none.ifc: there is no such file\n')

    def test_a_file_that_was_cut_short_is_a_problem(self):
        whole = project("#4=IFCWALL('a');", "#5=IFCWALL('b');")
        self.write('a.ifc', whole[:whole.index(b"'b'")])
        self.assert_ended(self.run_corvel('tree', 'a.ifc'), NOTHING_WRITTEN,
                          err='corvel: a.ifc: The closing line END-ISO-10303-21; is missing: the file '
                              'seems to be cut short. The reading ended in line 10.\n',
                          out='#1 IfcProject 0YvCt7Q5n0JgN0tW6Vw4pA P\n'
                              '  #4 IfcWall a\n  #5 IfcWall -\n')

    def test_a_chain_of_a_hundred_thousand_is_shown(self):
        count = 100000
        lines = [PROJECT]
        for n in range(2, count + 2):
            lines.append(f"#{n}=IFCWALL('g');")
            lines.append(f"#{n + count}=IFCRELNESTS('r',$,$,$,#{n - 1},(#{n}));")
        self.write('a.ifc', model('\n'.join(lines)))
        ended = self.run_corvel('tree', 'a.ifc')
        self.assert_ended(ended, DONE, err='')
        shown = ended.out.splitlines()
        self.assertEqual(count + 1, len(shown))
        self.assertEqual(f'[{count}] #{count + 1} IfcWall g', shown[-1].strip())

    def test_nothing_is_made_beside_the_file(self):
        self.write('a.ifc', project(*HOUSE))
        self.run_corvel('tree', 'a.ifc')
        self.assertEqual(['a.ifc'], os.listdir(self.folder))


class Releases(CorvelTest):
    """The tables of facts tell where each release has what the scene is made of."""

    def record(self, release, number, name, **values):
        """A record with these attributes and nothing else."""
        attributes = [attribute.name for attribute in release.attributes_of(name)]
        self.assertLessEqual(set(values), set(attributes), name)
        texts = ','.join(values.get(attribute, '$') for attribute in attributes)
        return f'#{number}={name}({texts});'

    def tree(self, namespace, records):
        # The one release that no identifier names.
        schema = 'IFC2X' if namespace == 'IFC2X_FINAL' else namespace
        self.write('a.ifc', model('\n'.join(records), schema))
        ended = self.run_corvel('tree', '--json', 'a.ifc')
        if 'is left out of this build' in ended.err:
            self.skipTest('the program under test has fewer releases')
        self.assert_ended(ended, DONE)
        return json.loads(ended.out)['objects']

    def relations(self, release):
        """Class, attribute with the parent, attribute with the children."""
        for upper, name in ((name.upper(), name) for name in release.entities):
            for ancestor, parent, child in (
                    ('IfcRelAggregates', 'RelatingObject', 'RelatedObjects'),
                    ('IfcRelNests', 'RelatingObject', 'RelatedObjects'),
                    ('IfcRelContainedInSpatialStructure', 'RelatingStructure', 'RelatedElements'),
                    ('IfcRelVoidsElement', 'RelatingBuildingElement', 'RelatedOpeningElement')):
                if release.is_a(upper, ancestor):
                    yield name, parent, child

    def test_every_relation_gives_a_parent(self):
        for namespace in RELEASES:
            with self.subTest(namespace):
                release = schema_facts.release(namespace)
                records = [self.record(release, 1, 'IFCPROJECT', GlobalId="'p'"),
                           self.record(release, 2, 'IFCBUILDING', GlobalId="'b'")]
                wanted = [None, 1]
                found = list(self.relations(release))
                self.assertEqual(5 if namespace == 'IFC2X_FINAL' else 4, len(found))
                for number, (name, parent, child) in enumerate(found, 10):
                    children = f'#{number}' if child == 'RelatedOpeningElement' else f'(#{number})'
                    records += [
                        self.record(release, number, 'IFCOPENINGELEMENT', GlobalId="'o'"),
                        self.record(release, number + 10, name.upper(), **{parent: '#2',
                                                                           child: children})]
                    wanted.append(2)
                objects = self.tree(namespace, records)
                self.assertEqual(wanted, [o['parent'] for o in objects])

    def test_every_product_is_an_object_with_its_guid_and_name(self):
        for namespace in RELEASES:
            with self.subTest(namespace):
                release = schema_facts.release(namespace)
                records, wanted = [], []
                for number, name in enumerate(release.entities, 1):
                    upper = name.upper()
                    values = {}
                    if release.is_a(upper, 'IfcRoot'):
                        values = {'GlobalId': f"'g{number}'", 'Name': f"'{name} {number}'"}
                    records.append(self.record(release, number, upper, **values))
                    if release.is_a(upper, 'IfcProduct') or release.is_a(upper, 'IfcProject'):
                        wanted.append((number, name, f'g{number}', f'{name} {number}'))
                objects = self.tree(namespace, records)
                self.assertEqual(wanted, [(o['number'], o['class'], o['guid'], o['name'])
                                          for o in objects])


# Bytes: the plain reader is slow.
LARGEST = 3 << 20

PARENTS = {'IFCRELAGGREGATES': (4, 5), 'IFCRELNESTS': (4, 5), 'IFCRELVOIDSELEMENT': (4, 5),
           'IFCRELCONTAINEDINSPATIALSTRUCTURE': (5, 4)}


def scene_of(path, release):
    """Numbers, classes and parents, from a reader that holds the whole model."""
    records = step_text.read(path).records
    objects = {number: None for number, record in sorted(records.items())
               if release.is_a(record.name, 'IfcProduct') or record.name == 'IFCPROJECT'}
    projects = [number for number in objects if records[number].name == 'IFCPROJECT']
    for number in sorted(records, reverse=True):
        record = records[number]
        if record.name not in PARENTS:
            continue
        parent, children = (record.arguments[place] for place in PARENTS[record.name])
        for child in children if isinstance(children, list) else [children]:
            related = isinstance(child, step_text.Reference) and child.number in objects
            if related and parent.number in objects:
                objects[child.number] = parent.number
    for number in objects:
        if objects[number] is None and projects:
            objects[number] = projects[0]
    if projects:
        objects[projects[0]] = None
    return [(number, records[number].name, parent) for number, parent in objects.items()]


class WholeModels(CorvelTest):

    def test_the_tree_is_that_of_a_plain_reader(self):
        seen = 0
        real = glob.glob(os.path.join(program.REAL_MODELS, '**', '*.ifc'), recursive=True)
        for path in program.sample_paths() + [path for path in sorted(real)
                                              if os.path.getsize(path) < LARGEST]:
            release = schema_facts.choose_release(program.identifier_of(path))
            with open(path, 'rb') as file:
                readable = file.read(3) == b'ISO'
            if release not in program.built_releases() or not readable:
                continue
            with self.subTest(path):
                ended = self.run_corvel('tree', '--json', path)
                self.assert_ended(ended, DONE)
                objects = json.loads(ended.out)['objects']
                wanted = scene_of(path, schema_facts.release(release))
                self.assertEqual(wanted, [(o['number'], o['class'].upper(), o['parent'])
                                          for o in objects])
                seen += 1
        self.assertGreater(seen, 3)


if __name__ == '__main__':
    unittest.main()
