"""What is told of models that go together badly: lines that change no exit status."""

import unittest

from support import DONE, NOTHING_WRITTEN, CorvelTest, project, wall

METRE = ('#100=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);', '#101=IFCUNITASSIGNMENT((#100));')
MILLIMETRE = ('#100=IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.);', '#101=IFCUNITASSIGNMENT((#100));')
GRAM = ('#100=IFCSIUNIT(*,.LENGTHUNIT.,$,.GRAM.);', '#101=IFCUNITASSIGNMENT((#100));')


def made_of(name, factor, unit='#100', measure='IFCLENGTHMEASURE'):
    return ('#100=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);', '#101=IFCUNITASSIGNMENT((#104));',
            f'#102=IFCMEASUREWITHUNIT({measure}({factor}),{unit});',
            '#103=IFCDIMENSIONALEXPONENTS(1,0,0,0,0,0,0);',
            f"#104=IFCCONVERSIONBASEDUNIT(#103,.LENGTHUNIT.,'{name}',#102);")


def conversion(values):
    return ("#200=IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,$,#203,$);",
            "#201=IFCPROJECTEDCRS('EPSG:25832',$,$,$,$,$,$);",
            f'#202=IFCMAPCONVERSION(#200,#201,{values});', '#203=IFCAXIS2PLACEMENT3D(#204,$,$);',
            '#204=IFCCARTESIANPOINT((0.,0.,0.));')


def property_set(name, eastings):
    return (f"#301=IFCPROPERTYSINGLEVALUE('Eastings',$,IFCREAL({eastings}),$);",
            f"#302=IFCPROPERTYSET('2234567890123456789012',$,'{name}',$,(#301));")


UNCHANGED = '; its numbers are not changed, so that it'


class Warnings(CorvelTest):

    def merge(self, first, *others, options=(), schema='IFC4'):
        names = []
        for number, records in enumerate((first, *others)):
            names.append(f'{"abc"[number]}.ifc')
            walls = wall(2, f'guid{number}', schema=schema)
            self.write(names[-1], project(*records, *walls, schema=schema))
        return self.run_corvel('merge', *names, '-o', 'out.ifc', *options)

    def assert_told(self, ended, *lines):
        self.assert_ended(ended, DONE, out='out.ifc was written.\n',
                          err=''.join(f'corvel: {line}\n' for line in lines))

    def test_models_that_go_together_get_no_word(self):
        same = METRE + conversion('10.,20.,0.,$,$,$')
        self.assert_told(self.merge(same, METRE + conversion('1.0E1,20.,0.,1.,0.,1.')))
        self.assert_told(self.merge((), ()))

    def test_a_foot_beside_a_metre(self):
        self.assert_told(
            self.merge(METRE, made_of('FOOT', 0.3048), METRE),
            f'b.ifc: its length unit is FOOT (0.3048 m), and that of a.ifc is METRE{UNCHANGED} '
            'arrives at another scale')

    def test_the_size_counts_and_not_the_name(self):
        self.assert_told(self.merge(METRE, made_of('metre', 1.)))
        self.assert_told(self.merge(MILLIMETRE, made_of('mm', '1.E-3', measure='IFCRATIOMEASURE')))
        ended = self.merge(made_of('FOOT', 0.3048), made_of('FOOT', 0.3048006096))
        self.assert_told(ended, 'b.ifc: its length unit is FOOT (0.3048006096 m), and that of '
                                f'a.ifc is FOOT (0.3048 m){UNCHANGED} arrives at another scale')

    def test_a_unit_whose_size_cannot_be_told(self):
        circle = made_of('FOOT', 0.3048, unit='#104')
        self.assert_told(self.merge(METRE, circle, ()),
                         f'b.ifc: its length unit is FOOT, and that of a.ifc is METRE{UNCHANGED} may '
                         'arrive at another scale',
                         'c.ifc: its length unit is not stated, and that of a.ifc is METRE'
                         f'{UNCHANGED} may arrive at another scale')

    def test_units_that_are_ignored(self):
        self.assert_told(
            self.merge(METRE, MILLIMETRE, options=['--ignore-units']),
            f'b.ifc: its length unit is MILLIMETRE, and that of a.ifc is METRE{UNCHANGED} arrives at '
            'another scale')

    def test_a_model_that_is_left_out_for_a_prefix_names_the_option(self):
        ended = self.merge(METRE, MILLIMETRE)
        self.assert_ended(ended, NOTHING_WRITTEN)
        self.assertIn('corvel: b.ifc: left out for its units; --ignore-units lets it take part, with '
                      'its numbers as they are\n', ended.err)

    def test_a_model_that_is_left_out_for_another_unit_names_none(self):
        ended = self.merge(METRE, GRAM)
        self.assert_ended(ended, NOTHING_WRITTEN)
        self.assertIn('corvel: b.ifc: left out for its units, which no option lets pass\n', ended.err)

    def test_map_conversions(self):
        first = METRE + conversion('10.,20.,0.,$,$,$')
        place = f'{UNCHANGED} may stand at another place'
        self.assert_told(
            self.merge(first, METRE + conversion('11.5,20.,0.,0.,1.,$'), METRE),
            'b.ifc: its map conversion is not that of a.ifc (Eastings 11.5 for 10, XAxisAbscissa 0 '
            f'for 1, XAxisOrdinate 1 for 0){place}',
            f'c.ifc: it has no map conversion, and a.ifc has one{place}')
        self.assert_told(self.merge(METRE, first),
                         f'b.ifc: it has a map conversion, and a.ifc has none{place}')

    def test_the_property_set_of_an_older_release(self):
        self.assert_told(
            self.merge(property_set('ePSet_MapConversion', '10.'),
                       property_set('EPset_MapConversion', '12.'), schema='IFC2X3'),
            'b.ifc: its map conversion is not that of a.ifc (Eastings 12 for 10)'
            f'{UNCHANGED} may stand at another place')
        self.assert_told(self.merge(property_set('Pset_Other', '10.'), (), schema='IFC2X3'))


class UserFolder(CorvelTest):

    def test_one_that_cannot_be_written_is_no_failure(self):
        self.write('a.ifc', project(*wall(2, 'a')))
        self.write('file', b'')
        ended = self.run_corvel('merge', 'a.ifc', 'a.ifc', '-o', 'out.ifc', '--user-folder', 'file/x')
        self.assert_ended(ended, DONE, out='out.ifc was written.\n')
        self.assertRegex(ended.err, r'^corvel: file[/\\]x[/\\]: this folder cannot be written; what was '
                                    r'merged last is not remembered\n$')
        self.assertEqual(['a.ifc', 'file', 'out.ifc'], self.names())


if __name__ == '__main__':
    unittest.main()
