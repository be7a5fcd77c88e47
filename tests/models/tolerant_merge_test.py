#!/usr/bin/env python3
"""Merges of spoilt models: but for what is spoilt they give what good ones give."""

import re
import unittest

import misfits
import program
import step_text
from tolerant_case import TolerantTest

_OFFSET = ('--offset', '1=0,0,-3500', '--offset', '2=1000,2000.5,-300', '--center', '100,200,3')
# Kinds that are mended without a trace.
_MENDED = [misfits.no_semicolon, misfits.no_bracket, misfits.open_string, misfits.stray_bytes,
           misfits.stray_bytes_inside, misfits.open_comment, misfits.open_comment_inside,
           misfits.no_header_end, misfits.byte_order_mark, misfits.cut_short]
# Kinds that leave a record what it is, without one of its values.
_OF_VALUES = [misfits.unknown_enumeration, misfits.absent_enumeration, misfits.text_for_enumeration,
              misfits.text_for_numbers, misfits.argument_more, misfits.argument_less]
_OTHERS = [kind for kind in misfits.KINDS if kind not in (*_MENDED, *_OF_VALUES)]
_MODES = ('active', 'visible', 'selected')
_ELEMENT = re.compile(rb"^#(\d+)=IFC(?:WALL|WALLSTANDARDCASE|BUILDINGELEMENTPROXY|COLUMN|SLAB|"
                      rb"COURSE|TRACKELEMENT|BEAM)\((.*)\);$", re.M)


def class_of_others(identifier):
    """A product that this release does not have, with the arguments of an element and these."""
    newer = not identifier.startswith('IFC2X')
    return (b'IFCEQUIPMENTELEMENT', b'') if newer else (b'IFCCHIMNEY', b',.NOTDEFINED.')


def arguments_of_element(text):
    """The first eight arguments of a record: those of IfcElement."""
    depth, commas, in_string = 0, 0, False
    for place, byte in enumerate(text):
        char = chr(byte)
        if char == "'":
            in_string = not in_string
        elif not in_string and char in '()':
            depth += 1 if char == '(' else -1
        elif not in_string and char == ',' and depth == 0:
            commas += 1
            if commas == 8:
                return text[:place]
    return text


class SpoiltMerges(TolerantTest):

    def check_same(self, good, spoilt, *options):
        self.assert_same_file(self.merged(good, good, *options),
                              self.merged(good, spoilt, *options))

    def check_one_record_differs(self, good, spoilt, *options):
        """The record that is spoilt comes as it stands; all others are those of the good model."""
        wanted = self.merged(good, good, *options).splitlines()
        found = self.merged(good, spoilt, *options).splitlines()
        self.assertEqual(len(wanted), len(found))
        different = [pair for pair in zip(wanted, found) if pair[0] != pair[1]]
        self.assertLessEqual(len(different), 1)
        for one, other in different:
            self.assertEqual(one.split(b'=')[0], other.split(b'=')[0])
        return different

    def check(self, kinds, check, options_of):
        """Each kind in a release or two. A unit may be what is spoilt."""
        checked = 0
        for place, (identifier, data, kind, spoilt) in enumerate(
                self.spoilt_models(kinds, len(kinds))):
            with self.subTest(schema=identifier, kind=kind.__name__):
                check(data, spoilt[0], '--ignore-units', *options_of(data, place))
                checked += 1
        self.assertGreater(checked, 0)

    # --- Offsets, modes, selections ---------------------------------------------------------------

    def test_MendedModelsAreMovedAsGoodOnes(self):
        self.check(_MENDED, self.check_same, lambda data, place: _OFFSET)

    def test_ModelsWithCarriedValuesAreMovedAsGoodOnes(self):
        self.check(_OF_VALUES, self.check_one_record_differs, lambda data, place: _OFFSET)

    def test_ModelsWithCarriedValuesAreMergedInEveryModeAsGoodOnes(self):
        def options_of(_, place):
            everything = ('--select', '1:IfcProject', '--select', '2:IfcProject')
            mode = _MODES[place % 3]
            return ('--mode', mode, *(everything if mode == 'selected' else ()))
        self.check(_OF_VALUES, self.check_one_record_differs, options_of)

    def test_EveryOtherKindIsMergedAndKeepsWhatItHolds(self):
        for identifier, data, kind, spoilt in self.spoilt_models(_OTHERS, len(_OTHERS)):
            with self.subTest(schema=identifier, kind=kind.__name__):
                self.assert_same_file(*(self.merged(data, second, '--ignore-units', *_OFFSET)
                                        for second in spoilt[::-1]))

    @staticmethod
    def one_element(data, place):
        elements = _ELEMENT.findall(data)
        number = elements[place % len(elements)][0].decode()
        return '--select', f'1:#{number}', '--select', f'2:#{number}'

    def test_OneElementOfMendedModelsIsThatOfGoodOnes(self):
        self.check(_MENDED, self.check_same, self.one_element)

    def test_OneElementOfModelsWithCarriedValuesIsThatOfGoodOnes(self):
        self.check(_OF_VALUES, self.check_one_record_differs, self.one_element)

    def test_HiddenElementsOfSpoiltModelsAreHidden(self):
        def options_of(data, place):
            return '--hide', '2:' + self.one_element(data, place)[1][2:]
        self.check(_OF_VALUES, self.check_one_record_differs, options_of)

    # --- Units ------------------------------------------------------------------------------------

    @staticmethod
    def in_other_units(data):
        """Metres for millimetres, or the other way round."""
        metre, milli = b'.LENGTHUNIT.,$,.METRE.', b'.LENGTHUNIT.,.MILLI.,.METRE.'
        return data.replace(milli, metre) if milli in data else data.replace(metre, milli)

    def test_OtherUnitsOfSpoiltModelsAreFoundAsThoseOfGoodOnes(self):
        refused = 0
        for identifier, data, kind, spoilt in self.spoilt_models(
                [misfits.no_semicolon, misfits.open_comment, misfits.argument_more], 3):
            with self.subTest(schema=identifier, kind=kind.__name__):
                self.write('a.ifc', data)
                results = []
                for second in (data, spoilt[0]):
                    self.write('b.ifc', self.in_other_units(second))
                    result = program.run(['merge', '--tolerant', '--quiet', 'a.ifc', 'b.ifc', '-o',
                                          'out.ifc'], self.folder)
                    refused += result.status == program.NOTHING_WRITTEN
                    results.append([line for line in result.errors.splitlines()
                                    if 'UNIT' in line or 'its length unit is' in line])
                self.assertNotEqual([], results[0])
                self.assertEqual(*results)
        self.assertGreater(refused, 0)

    def test_ModelsWithOtherUnitsAreMovedInTheirOwn(self):
        for identifier, data, kind, spoilt in self.spoilt_models(_MENDED, 10):
            with self.subTest(schema=identifier, kind=kind.__name__):
                self.assert_same_file(*(self.merged(data, self.in_other_units(second), *_OFFSET,
                                                    '--ignore-units')
                                        for second in (data, spoilt[0])))

    # --- Classes of other releases, and of none ---------------------------------------------------

    def with_class_of_others(self, data, identifier):
        """One element is of a class that another release has: the bytes, and its number."""
        match = _ELEMENT.search(data)
        name, more = class_of_others(identifier)
        record = b'#%s=%s(%s%s);' % (match[1], name, arguments_of_element(match[2]), more)
        return data[:match.start()] + record + data[match.end():], match[1].decode(), name

    def check_class_of_others(self, *options, selects=False, hides=False):
        for place, (identifier, data) in enumerate(self.models()):
            if (selects or hides) and place % 3 != hides:
                continue
            with self.subTest(schema=identifier):
                spoilt, number, name = self.with_class_of_others(data, identifier)
                choice = ()
                if selects:
                    choice = ('--select', f'1:#{number}', '--select', f'2:#{number}')
                if hides:
                    choice = ('--hide', f'2:#{number}')
                different = self.check_one_record_differs(data, spoilt, *options, *choice)
                self.assertEqual(0 if hides else 1, len(different))
                for _, line in different:
                    self.assertIn(b'=%s(' % name, line)
                if selects or hides:
                    by_class = ('--select', f'1:#{number}', '--select') if selects else ('--hide',)
                    self.assert_same_file(
                        self.merged(data, spoilt, *options, *choice),
                        self.merged(data, spoilt, *options, *by_class, f'2:{name.decode()}'))

    def test_AClassOfAnotherReleaseIsMovedAsTheProductThatItIsThere(self):
        self.check_class_of_others(*_OFFSET)

    def test_AClassOfAnotherReleaseIsSelectedByNumberAndByName(self):
        self.check_class_of_others(selects=True)

    def test_AClassOfAnotherReleaseIsHiddenByNumberAndByName(self):
        self.check_class_of_others(hides=True)

    def test_WhatAClassOfNoReleaseRefersToStaysItsOwn(self):
        for identifier, data in self.models():
            with self.subTest(schema=identifier):
                elements = list(_ELEMENT.finditer(data))
                kept, dropped = elements[0], elements[-1]
                self.assertNotEqual(kept[1], dropped[1])
                record = b"#999999=IFCNOTHINGOFTHEKIND('odd',#%s,(#%s,#%s),.A.,IFCODD(#%s));\n" % (
                    kept[1], dropped[1], kept[1], kept[1])
                spoilt = data.replace(b'ENDSEC;\nEND', record + b'ENDSEC;\nEND')
                self.assertIn(record, spoilt)
                guid, other = (one[2][1:23].decode() for one in (kept, dropped))
                own = {int(one[1]) for one in (kept, dropped)}
                self.check_odd_record([guid, other, guid, guid], own, self.merged(data, spoilt))
                self.check_odd_record([guid, guid, guid], own, self.merged(
                    data, spoilt, '--hide', f'2:#{dropped[1].decode()}'))

    def check_odd_record(self, guids, of_first, written):
        """It refers to objects of these GUIDs, and to none of the first model."""
        file = step_text.StepFile(b"ISO-10303-21;\nHEADER;\nENDSEC;\n" + written)
        [record] = [one for one in file.records.values() if one.name == 'IFCNOTHINGOFTHEKIND']
        numbers = list(step_text.references_in(record.arguments))
        self.assertEqual(guids, [file.records[number].arguments[0] for number in numbers])
        self.assertEqual(set(), set(numbers) & of_first)


if __name__ == '__main__':
    unittest.main()
