#!/usr/bin/env python3
"""The order of records in a file says nothing: references forward and back come out the same."""

import os
import random
import unittest

import program
import step_text
import written_form
from program import ModelTest


def reordered(file, numbers):
    """The same file with its records in the order of `numbers`."""
    records = [file.data[file.records[number].begin:file.records[number].end] for number in numbers]
    return b'\n'.join([file.data[:file.data_begin], *records, b'ENDSEC;\nEND-ISO-10303-21;\n'])


def dependency_order(file):
    """Every record behind all that it refers to."""
    order, entered = {}, set()
    for start in file.records:
        stack = [start]
        while stack:
            number = stack[-1]
            missing = [reference for reference in
                       step_text.references_in(file.records[number].arguments)
                       if reference not in order and reference in file.records]
            if number in order or not missing:
                order[stack.pop()] = None
            else:
                assert number not in entered, f'#{number} refers to itself'
                entered.add(number)
                stack += missing
    return list(order)


def count_forward(file, order):
    places = {number: place for place, number in enumerate(order)}
    return sum(places[reference] >= places[number] for number in order
               for reference in step_text.references_in(file.records[number].arguments))


def renumbered(file, numbering):
    """The same file under other numbers, which stand where a reference can stand only."""
    data, position, parts = file.data, file.data_begin, []
    for kind, value, begin, end in file.tokens(position):
        if kind == 'reference':
            parts += [data[position:begin], b'#%d' % numbering[value]]
            position = end
    return data[:file.data_begin] + b''.join(parts) + data[position:]


class RecordOrder(ModelTest):

    def on_each_sample(self, check):
        """Runs check(file, what it is when resaved)."""
        for path in program.sample_paths():
            with self.subTest(model=os.path.basename(path)):
                self.need_release(program.identifier_of(path))
                check(step_text.read(path), self.resave(self.copy(path)))

    def test_DependencyOrderReversedAndShuffledGiveTheSameFile(self):
        self.on_each_sample(self.check_orders)

    def check_orders(self, file, wanted):
        sorted_order = dependency_order(file)
        shuffled = list(file.records)
        random.Random(2024).shuffle(shuffled)
        self.assertEqual(count_forward(file, sorted_order), 0)
        self.assertGreater(count_forward(file, shuffled), len(shuffled) // 2)
        for name, order in (('sorted', sorted_order), ('reversed', sorted_order[::-1]),
                            ('shuffled', shuffled)):
            with self.subTest(order=name):
                self.assertEqual(set(order), set(file.records))
                self.write(name + '.ifc', reordered(file, order))
                self.assert_same_file(wanted, self.resave(name + '.ifc'))

    def test_OtherNumbersGiveTheSameRecordsUnderThem(self):
        self.on_each_sample(self.check_numbers)

    def check_numbers(self, file, wanted):
        numbers = list(file.records)
        others = random.Random(7).sample(range(1, 2 ** 32 - 16), len(numbers))
        numbering = dict(zip(numbers, others))
        self.write('renumbered.ifc', renumbered(file, numbering))
        written = step_text.StepFile(self.resave('renumbered.ifc'))
        self.assertEqual(list(written.records), sorted(others))
        back = renumbered(written, {new: old for old, new in numbering.items()})
        self.assertEqual(sorted(back.splitlines()), sorted(wanted.splitlines()))

    def test_MergeOfShuffledModelsIsThatOfTheModels(self):
        self.need_release('IFC4')
        names = []
        for part in ('architecture', 'structure'):
            file = step_text.read(os.path.join(program.SAMPLES, f'office_{part}_IFC4.ifc'))
            order = list(file.records)
            random.Random(part).shuffle(order)
            names.append((self.write(f'{part}.ifc', file.data),
                          self.write(f'{part}_shuffled.ifc', reordered(file, order))))
        plain, shuffled = zip(*names)
        self.assert_same_file(self.merge(plain), self.merge(shuffled, output='shuffled.ifc'))


class EveryRecordRefersForward(ModelTest):
    """No order is right for these: the last record refers to itself."""

    HEAD = (b"ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION (('d'),'2;1');\n"
            b"FILE_NAME ('n','t',('a'),('o'),'p','s','z');\nFILE_SCHEMA (('IFC4'));\nENDSEC;\n\n"
            b'DATA;\n')
    TAIL = b'ENDSEC;\nEND-ISO-10303-21;\n'

    def check(self, lines):
        self.need_release('IFC4')
        data = self.HEAD + b''.join(lines) + self.TAIL
        file = step_text.StepFile(data)
        for number, record in file.records.items():
            self.assertGreaterEqual(min(step_text.references_in(record.arguments)), number)
        self.write('forward.ifc', data)
        self.assert_same_file(data, self.resave('forward.ifc'))
        self.assert_same_file(data, written_form.Model(file).text())

    def test_SingleReferences(self):
        lines = [b'#%d=IFCLOCALPLACEMENT(#%d,*);\n' % (i, i + 1) for i in range(1, 2000)]
        self.check([*lines, b'#2000=IFCLOCALPLACEMENT(#2000,*);\n'])

    def test_MembersOfLists(self):
        lines = [b"#%d=IFCCOMPLEXPROPERTY('n',$,'u',(#%d,#2000,#2000));\n" % (i, i + 1)
                 for i in range(1, 2000)]
        self.check([*lines, b"#2000=IFCCOMPLEXPROPERTY('n',$,'u',(#2000));\n"])


if __name__ == '__main__':
    unittest.main()
