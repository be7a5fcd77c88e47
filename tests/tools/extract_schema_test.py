#!/usr/bin/env python3
"""Tests of tools/extract_schema.py."""

import importlib.util
import os
import sys
import tempfile
import textwrap
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
TOOL = os.path.join(ROOT, 'tools', 'extract_schema.py')
RELEASES = os.path.join(ROOT, 'src', 'schema', 'releases')
TEXTS = os.path.join(os.path.dirname(ROOT), 'shared', 'express')
sys.dont_write_bytecode = True


def load_module(path):
    spec = importlib.util.spec_from_file_location(os.path.basename(path)[:-3], path)
    module = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(module)
    return module


EXTRACT = load_module(TOOL)


def facts_of(text):
    """Without the two lines that every file begins with."""
    facts = EXTRACT.facts_of('SCHEMA TINY;\n' + textwrap.dedent(text) + 'END_SCHEMA;\n')
    return facts.split('\n\n', 1)[1]


class Extraction(unittest.TestCase):
    maxDiff = None

    def test_file_begins_with_its_origin_and_the_schema(self):
        self.assertEqual(
            '# Facts of one release of the schema, taken from its published text by '
            'tools/extract_schema.py.\nschema TINY\n\nentity TinyPart\n',
            EXTRACT.facts_of('SCHEMA TINY; ENTITY TinyPart; END_ENTITY; END_SCHEMA;'))

    def test_enumerations_and_selects_keep_the_order_of_their_members(self):
        self.assertEqual('''\
enumeration TinyEnum
  ZERO
  ALPHA

select TinySelect
  TinyB
  TinyA
''', facts_of('''\
            TYPE TinySelect = SELECT
              (TinyB
              ,TinyA);
            END_TYPE;
            TYPE TinyEnum = ENUMERATION OF (ZERO, ALPHA);
            END_TYPE;
            '''))

    def test_types_lose_widths_and_rules(self):
        self.assertEqual('''\
type TinyBits = BINARY
type TinyLabel = STRING
type TinyList = LIST [3:?] OF INTEGER
type TinySet = SET OF TinyLabel
''', facts_of('''\
            TYPE TinyLabel = STRING (255);
             WHERE WR1 : SELF <> '); END_TYPE; (*';
            END_TYPE;
            TYPE TinyBits = BINARY (32) FIXED;
            END_TYPE;
            TYPE TinyList = LIST [3:?] OF UNIQUE INTEGER;
              WHERE WR1 : ABS(SELF[1]) < 360;
            END_TYPE;
            TYPE TinySet = SET OF TinyLabel;
            END_TYPE;
            '''))

    def test_entity_keeps_explicit_attributes_only(self):
        self.assertEqual('''\
abstract entity TinyPart < TinyRoot
  Name: OPTIONAL TinyLabel
  X: REAL
  Y: REAL
  Grid: ARRAY [0:2] OF LIST [1:?] OF TinyPart

entity TinyRoot
''', facts_of('''\
            ENTITY TinyPart -- the part; ENTITY
             ABSTRACT SUPERTYPE OF (ONEOF
                (TinyWall
                ,TinySlab))
             SUBTYPE OF (TinyRoot);
                Name : OPTIONAL TinyLabel;
                X, Y : REAL;
                Grid : ARRAY [0:2] OF OPTIONAL LIST [1:?] OF UNIQUE TinyPart;
             DERIVE
                SELF\\TinyRoot.Kind : TinyKind := TinyKind.A;
                Area : REAL := X * Y;
             INVERSE
                Owners : SET [0:?] OF TinyRoot FOR Parts;
             UNIQUE
                UR1 : Name;
             WHERE
                WR1 : X > 0.;
            END_ENTITY;
            ENTITY TinyRoot;
            END_ENTITY;
            '''))

    def test_functions_rules_and_constants_are_skipped(self):
        self.assertEqual('entity TinyPart\n', facts_of('''\
            CONSTANT Zero : REAL := 0.; END_CONSTANT;
            FUNCTION Outer(X : REAL) : REAL;
              FUNCTION Inner(Y : REAL) : REAL; RETURN (Y); END_FUNCTION;
              ENTITY_COUNT := 1;
              RETURN (Inner(X));
            END_FUNCTION;
            RULE One FOR (TinyPart); WHERE WR1 : TRUE; END_RULE;
            (* ENTITY TinyNever; (* nested *) END_ENTITY; *)
            ENTITY TinyPart; END_ENTITY;
            '''))


class Refusals(unittest.TestCase):
    def assert_refused(self, message, text):
        with self.assertRaises(EXTRACT.ExpressError) as caught:
            facts_of(text)
        self.assertEqual(message, str(caught.exception))

    def test_two_supertypes(self):
        self.assert_refused('TinyC has more than one supertype',
                            'ENTITY TinyC SUBTYPE OF (TinyA, TinyB); END_ENTITY;')

    def test_redeclaration_as_explicit(self):
        self.assert_refused('TinyC redeclares an attribute other than as derived',
                            'ENTITY TinyC; SELF\\TinyA.Name : TinyLabel; END_ENTITY;')

    def test_unknown_declaration(self):
        self.assert_refused('no rule for a declaration that begins with SUBTYPE_CONSTRAINT',
                            'SUBTYPE_CONSTRAINT x FOR TinyA; END_SUBTYPE_CONSTRAINT;')

    def test_unknown_word_in_a_head(self):
        self.assert_refused('TinyA: no rule for CONNOTATIONAL in the head of an entity',
                            'ENTITY TinyA CONNOTATIONAL; END_ENTITY;')

    def test_enumeration_that_extends_another(self):
        self.assert_refused(
            'expected ( at the end of "SCHEMA TINY ; TYPE TinyE = ENUMERATION OF BASED_ON"',
            'TYPE TinyE = ENUMERATION OF BASED_ON TinyF; END_TYPE;')

    def test_text_that_ends_early(self):
        with self.assertRaises(EXTRACT.ExpressError) as caught:
            EXTRACT.facts_of('SCHEMA TINY; ENTITY TinyA; Name : ')
        self.assertEqual('the text ends in the middle of a declaration', str(caught.exception))


@unittest.skipUnless(os.path.isdir(TEXTS), 'the published texts are not here')
class PublishedTexts(unittest.TestCase):
    maxDiff = None

    def names(self):
        return sorted(name[:-4] for name in os.listdir(TEXTS) if name.endswith('.exp'))

    def test_committed_facts_are_what_the_tool_gives(self):
        self.assertEqual(self.names(), sorted(name[:-7] for name in os.listdir(RELEASES)
                                              if name.endswith('.schema')))
        with tempfile.TemporaryDirectory() as folder:
            for name in self.names():
                path = os.path.join(folder, name)
                EXTRACT.main(['', os.path.join(TEXTS, name + '.exp'), path])
                with open(path, encoding='ascii') as made, \
                        open(os.path.join(RELEASES, name + '.schema'), encoding='ascii') as kept:
                    self.assertEqual(kept.read(), made.read(), name)

    def test_an_independent_extractor_agrees(self):
        sys.path.insert(0, os.path.join(ROOT, 'src', 'schema'))
        from generator.model import parse_schema
        other = load_module(os.path.join(TEXTS, 'facts.py'))
        attributes = 0
        for name in self.names():
            theirs = other.read(os.path.join(TEXTS, name + '.exp'))
            with open(os.path.join(RELEASES, name + '.schema'), encoding='ascii') as file:
                ours = parse_schema(file.read(), name)
            self.assertEqual(
                {entity['name']: (entity['abstract'], entity['supertype'],
                                  [(one['name'], one['optional'], self.text(one['type']))
                                   for one in entity['attributes']])
                 for entity in theirs['entities'].values()},
                {entity.name: (entity.abstract, entity.supertype,
                               [(one.name, one.optional, str(one.type))
                                for one in entity.attributes])
                 for entity in ours.entities.values()})
            self.assertEqual({key: self.text(one['type']) for key, one in theirs['types'].items()},
                             {key: str(one) for key, one in ours.types.items()})
            self.assertEqual({key: one['values'] for key, one in theirs['enumerations'].items()},
                             {key: [value.name for value in one.values]
                              for key, one in ours.enumerations.items()})
            self.assertEqual({key: one['members'] for key, one in theirs['selects'].items()},
                             ours.selects)
            attributes += sum(len(entity.attributes) for entity in ours.entities.values())
        self.assertEqual(12081, attributes)

    def text(self, expression):
        """The other extractor's type expression as the facts write it."""
        if expression['kind'] != 'agg':
            return expression['name']
        bounds = '' if expression['lo'] is None else f" [{expression['lo']}:{expression['hi']}]"
        return f"{expression['agg']}{bounds} OF {self.text(expression['of'])}"


if __name__ == '__main__':
    unittest.main()
