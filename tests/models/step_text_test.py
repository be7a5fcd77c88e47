#!/usr/bin/env python3
"""The plain reader and the plain writer of the other tests, on texts that fit into one line."""

import unittest

import merged_form
import schema_facts
import step_text
import written_form
from kept_records import kept_records
from step_text import Absent, Enumeration, RAW_BYTE, Reference, StepFile, Typed


SITE = "IFCSITE('',$,$,$,$,$,$,$,.ELEMENT.)"


def file_of(records, schema='IFC4'):
    if isinstance(records, str):
        records = records.encode('ascii')
    return StepFile(b"ISO-10303-21;HEADER;FILE_DESCRIPTION((),'2;1');FILE_NAME('','',$,$,'','','');"
                    b"FILE_SCHEMA(('%s'));ENDSEC;DATA;%sENDSEC;END-ISO-10303-21;"
                    % (schema.encode('ascii'), records))


def values(text):
    return file_of(b'#1=X(' + text + b');').records[1].arguments


def written(record, schema='IFC4', others='', **options):
    """What is written for #1, and the rules that it took."""
    model = written_form.Model(file_of(record + others, schema), **options)
    line = written_form.line_text(1, model.lines[1], lambda number: number)
    return line.decode('latin-1').rstrip('\n'), dict(model.rules)


class Reading(unittest.TestCase):

    def test_ValuesOfEveryKind(self):
        self.assertEqual(
            values(b"$,*,#12,.T.,-3,'it''s',(1,(2)),IFC_REAL(1.5)"),
            [Absent('$'), Absent('*'), Reference(12), Enumeration('T'), -3, "it's", [1, [2]],
             Typed('IFCREAL', [1.5])])

    def test_WholeNumberAndRealAreKeptApart(self):
        self.assertEqual(list(map(type, values(b'1,1.,-,1.5E-3 '))), [int, float, int, float])
        self.assertEqual(values(b'-,1.5E-3 ,-.5'), [0, 0.0015, -0.5])

    def test_CommentsAndLineEndsStandAnywhereBetweenTokens(self):
        file = file_of("/* #9=X(); ' */#1\r\n=\rX( /* a */ 1\n,2 ) ;#2=Y();")
        self.assertEqual([(record.name, record.arguments) for record in file.records.values()],
                         [('X', [1, 2]), ('Y', [])])

    def test_DirectivesInStrings(self):
        self.assertEqual(values(rb"'\X2\00E9004100\X0\','\S\d\PB\\S\a','\X\E4','C:\\x','\S\''"),
                         ['\xe9A', '\xe4\xe1', '\xe4', 'C:\\x', '\xa7'])

    def test_RawBytesAreNoCharacters(self):
        self.assertEqual(values(b"'\xe9\\X2\\00E9\\X0\\'"), [chr(RAW_BYTE + 0xE9) + '\xe9'])

    def test_HighGroupComesBehindTheLowOne(self):
        self.assertEqual(values(rb"'\X4\0001F600000000E5\X0\'"), ['\uf600\u0001\xe5'])

    def test_TextOfARecordRunsToItsSemicolon(self):
        file = file_of("#1=X();\n #2=Y('; #3=');")
        record = file.records[2]
        self.assertEqual(file.data[record.begin:record.end], b"#2=Y('; #3=');")

    def test_TwoRecordsOfOneNumberAreRefused(self):
        with self.assertRaises(step_text.StepError):
            file_of('#1=X();#1=Y();')


class Facts(unittest.TestCase):

    def test_ReleaseOfAnIdentifier(self):
        for identifier, release in (('IFC2X3', 'IFC2X3'), ('IFC2X3_TC1', 'IFC2X_FINAL'),
                                    ('IFC4X3_RC4', 'IFC4X3_ADD2'), ('IFC4x1', None),
                                    ('IFC5', None)):
            self.assertEqual(schema_facts.choose_release(identifier), release)

    def test_NumberOfClasses(self):
        for name, entities, value_types in (('IFC2X_FINAL', 370, 79), ('IFC2X3', 653, 100),
                                            ('IFC4', 776, 114), ('IFC4X4', 905, 113)):
            release = schema_facts.release(name)
            names = [*map(str.upper, {*release.entities, *release.types, *release.enumerations})]
            self.assertEqual(sum(map(release.is_entity, names)), entities)
            self.assertEqual(sum(map(release.is_value, names)), value_types)

    def test_AttributesOfTheSupertypeComeFirst(self):
        names = [a.name for a in schema_facts.release('IFC4').attributes_of('IFCWALL')]
        self.assertEqual(names, ['GlobalId', 'OwnerHistory', 'Name', 'Description', 'ObjectType',
                                 'ObjectPlacement', 'Representation', 'Tag', 'PredefinedType'])


class Writing(unittest.TestCase):

    def test_Reals(self):
        for number, text in ((3.0, b'3.'), (-0.0, b'0.'), (1.5, b'1.5E+00'), (0.001, b'1.E-03'),
                             (2147483647.0, b'2147483647.'), (2147483648.0, b'2.147483648E+09'),
                             (-2147483648.0, b'-2147483648.'), (1e30, b'1.E+30'),
                             (123.456789012345678, b'1.23456789012346E+02')):
            self.assertEqual(written_form.real_text(number), text)

    def test_Texts(self):
        for text, out in (("It's", b"'It''s'"), ('C:\\x', b"'C:\\\\x'"),
                          ('\xe9', b"'\\X2\\00E9\\X0\\'"), ('a\0b', b"'a'"),
                          ('\n', b"'\\X2\\000A\\X0\\'"),
                          (chr(RAW_BYTE + 0xE9), b"'\xe9'")):
            self.assertEqual(written_form.text_bytes(text), out)

    def test_StarsOfTheSubcontext(self):
        self.assertEqual(
            written("#1=IFCGEOMETRICREPRESENTATIONSUBCONTEXT('Body','Model',*,*,*,*,#20,$,"
                    '.MODEL_VIEW.,$);', others="#20=IFCGEOMETRICREPRESENTATIONCONTEXT();"),
            ("#1=IFCGEOMETRICREPRESENTATIONSUBCONTEXT('Body','Model',0,$,*,$,#20,$,"
             '.MODEL_VIEW.,$);',
             {'absent integer becomes its default': 2, 'optional * becomes $': 2, 'short record': 1,
              'mandatory reference $ becomes *': 1}))

    def test_ReferenceThatLeadsNowhere(self):
        self.assertEqual(written('#1=IFCRELAGGREGATES($,#3,$,$,#4,(#5,$,#2));',
                                 others='#2=IFCSITE();'),
                         ("#1=IFCRELAGGREGATES('',$,$,$,*,(#2));",
                          {'absent GUID becomes its default': 2, 'dangling reference is lost': 3,
                           '$ in a list of references is dropped': 1, 'short record': 1}))

    def test_WrongClassAndValueThatIsNotAdmitted(self):
        self.assertEqual(
            written("#1=IFCCURVESTYLE($,#2,IFCLABEL('x'),#1,.T.);", others='#2=IFCSITE();'),
            ('#1=IFCCURVESTYLE($,$,$,$,.T.);',
             {'absent GUID becomes its default': 1, 'reference to a wrong class is lost': 2,
              'short record': 1, 'value that the select does not admit is lost': 1}))

    def test_NumbersThatDoNotFit(self):
        self.assertEqual(
            written('#1=IFCDIMENSIONALEXPONENTS(1,2147483648,5.7,$,0,0);'),
            ('#1=IFCDIMENSIONALEXPONENTS(1,2147483647,5,0,0,0,0);',
             {'integer held to 32 bits': 1, 'real for an integer': 1, 'short record': 1,
              'absent integer becomes its default': 2}))

    def test_CountsHaveSixDigitsInAllReleasesButOne(self):
        record = "#1=IFCQUANTITYCOUNT('n',$,$,1234567,$);"
        self.assertEqual(written(record, 'IFC4')[0], "#1=IFCQUANTITYCOUNT('n',$,$,1.23457e+06,$);")
        self.assertEqual(written(record, 'IFC4X3')[0], "#1=IFCQUANTITYCOUNT('n',$,$,1234567,$);")

    def test_UnknownEnumerationValueIsReplacedOnlyIfWanted(self):
        record = '#1=IFCOWNERHISTORY(*,*,.READWRITE.,.NEW.,$,$,$,0);'
        with self.assertRaises(written_form.Refusal):
            written(record)
        self.assertEqual(written(record, ignore_enum_errors=True),
                         ('#1=IFCOWNERHISTORY(*,*,.READWRITE.,.NOTDEFINED.,$,$,$,0);',
                          {'unknown enumeration value becomes the last one': 1}))


class Merging(unittest.TestCase):

    def merge(self, *texts):
        models = [written_form.Model(file_of(text)) for text in texts]
        return merged_form.Merged(models)

    def test_NumbersStayWhereTheyAreFree(self):
        merged = self.merge(f"#1=IFCPROJECT('a');#7={SITE};",
                            f"#3=IFCPROJECT('b');#7={SITE};#5={SITE};",
                            f"#3={SITE};#9={SITE};#7=IFCPROJECT('c');")
        self.assertEqual(merged.numbering, [{1: 1, 7: 7}, {3: 1, 5: 5, 7: 10}, {3: 3, 7: 1, 9: 9}])

    def test_ReferencesFollowTheirRecords(self):
        merged = self.merge(f'#1={SITE};', "#1=IFCSITE('',$,$,$,$,#2,$,$,.ELEMENT.);"
                                           '#2=IFCLOCALPLACEMENT();')
        self.assertIn(b"#2=IFCLOCALPLACEMENT($,*);\n#3=IFCSITE('NEW',$,$,$,$,#2,", merged.text())

    def test_WhatNoObjectNeedsIsDroppedAndItsNumberIsNotGivenAway(self):
        merged = self.merge(f'#1={SITE};#2=IFCPERSON();', f'#1=IFCPERSON();#2={SITE};')
        self.assertEqual(merged.numbering, [{1: 1}, {2: 3}])

    def test_WhatHangsTogetherWithAnObjectIsKept(self):
        model = written_form.Model(file_of(
            '#1=IFCSITE(\'\',#2,$,$,$,$,$,$,.ELEMENT.);#2=IFCOWNERHISTORY();'
            "#3=IFCRELDEFINESBYPROPERTIES('',#2,$,$,(#1),#4);#4=IFCPROPERTYSET('',#2,$,$,(#5));"
            "#5=IFCCOMPLEXPROPERTY('',$,'',(#6));#6=IFCPROPERTYREFERENCEVALUE('',$,$,$);"
            "#7=IFCRELDEFINESBYPROPERTIES('',#2,$,$,(),#8);#8=IFCPROPERTYSET('',$,$,$,(#9));"
            "#9=IFCPROPERTYREFERENCEVALUE('',$,$,$);#10=IFCPERSON();"))
        self.assertEqual(kept_records(model), {1, 2, 3, 4, 5, 6})

    def test_WhatCannotExistIsDropped(self):
        model = written_form.Model(file_of(
            f"#1={SITE};#3=IFCRELDEFINESBYPROPERTIES('',$,$,$,(#1),#4);"
            "#4=IFCPROPERTYSET('',$,$,$,(#5));#5=IFCCOMPLEXPROPERTY('',$,'',());"))
        self.assertEqual(kept_records(model), {1})

    def test_FirstOfEqualGuidsIsKept(self):
        merged = self.merge("#1=IFCPROJECT('a');#2=IFCSITE('a',$,$,$,$,$,$,$,.ELEMENT.);",
                            "#1=IFCSITE('a',$,$,$,$,$,$,$,.ELEMENT.);"
                            "#5=IFCSITE('',$,$,$,$,$,$,$,.ELEMENT.);")
        self.assertEqual(merged.new_guids, {2, 5})


if __name__ == '__main__':
    unittest.main()
