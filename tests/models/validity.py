"""What a written model breaks of its schema, counted by rule and class.

Made apart from the program: the text is read by step_text.py, what the schema demands stands in
schema_facts.py and express_rules.py. Many models break some rule already when they come, so that
counts are compared: what a merge breaks is what its inputs break, or the merge without any option.
"""

import functools
import re
import sys
from collections import Counter

import express_rules
import schema_facts
import step_text
from step_text import Absent, Reference

_LEAST = re.compile(r'(?:OPTIONAL )?(?:LIST|SET|ARRAY|BAG) \[(\d+):')
_SET = re.compile(r'(?:OPTIONAL )?SET ')
# Where the names of property sets of an object must differ: classes and the places of members.
_SETS_OF_OBJECTS = 'IfcRelDefinesByProperties'


class Classes:
    """Questions about classes of a release, by upper-case names."""

    def __init__(self, release):
        self.release = release
        self.families = {}

    def family(self, entity):
        """The upper-case names of a class and its subtypes; empty where the release lacks it."""
        if entity not in self.families:
            self.families[entity] = {name.upper() for name in self.release.entities
                                     if self.release.is_a(name.upper(), entity)}
        return self.families[entity]

    def place(self, entity, attribute):
        """Where it stands among the arguments; None where the class has no such attribute."""
        names = [one.name for one in self.release.attributes_of(entity.upper())]
        return names.index(attribute) if attribute in names else None

    def expressions(self, upper_name):
        """The declared types of all attributes, in order."""
        found, name = [], self.release._names[upper_name]
        while name is not None:
            name, own = self.release.entities[name]
            found[:0] = [line.split(': ', 1)[1] for line in own]
        return found


@functools.cache
def classes_of(namespace):
    return Classes(schema_facts.release(namespace))


class Checker:
    def __init__(self, data):
        self.file = step_text.StepFile(data)
        identifier = self.file.header['FILESCHEMA'][0][0]
        self.namespace = schema_facts.choose_release(identifier)
        self.classes = classes_of(self.namespace)
        self.records = {number: record for number, record in self.file.records.items()
                        if self.classes.release.is_entity(record.name)}
        self.by_class = {}
        for number, record in self.records.items():
            self.by_class.setdefault(record.name, []).append(number)
        self.broken = Counter()
        self.places = {}

    def run(self):
        rules = express_rules.rules_of(self.namespace)
        self.check_references()
        self.check_members(rules.unique_lists)
        for inverse in rules.inverses:
            self.check_inverse(inverse)
        for entity, attributes in rules.unique:
            self.check_unique(entity, attributes)
        self.check_names_of_sets()
        self.check_names_of_properties()
        return self.broken

    def fail(self, rule, number):
        key = rule, self.records[number].name
        self.broken[key] += 1
        self.places.setdefault(key, []).append(number)

    def of_family(self, entity):
        return sorted(number for name in self.classes.family(entity)
                      for number in self.by_class.get(name, ()))

    def argument(self, number, entity, attribute):
        arguments = self.records[number].arguments
        place = self.classes.place(entity, attribute)
        return arguments[place] if place is not None and place < len(arguments) else Absent('')

    # --- Rules ------------------------------------------------------------------------------------

    def check_references(self):
        """Nothing refers to nothing, and what is mandatory is there."""
        for number, record in self.records.items():
            for reference in step_text.references_in(record.arguments):
                if reference not in self.file.records:
                    self.fail('reference to nothing', number)
            attributes = self.classes.release.attributes_of(record.name)
            for attribute, value in zip(attributes, record.arguments):
                if (attribute.kind.name == schema_facts.REFERENCE and not attribute.optional
                        and isinstance(value, Absent)):
                    self.fail(f'no {attribute.name}', number)

    def check_members(self, unique_lists):
        plans = {}
        for number, record in self.records.items():
            if record.name not in plans:
                plans[record.name] = self.member_plan(record.name, unique_lists)
            for place, name, least, is_unique in plans[record.name]:
                value = record.arguments[place] if place < len(record.arguments) else None
                if not isinstance(value, list):
                    continue
                if len(value) < least:
                    self.fail(f'{name} has too few members', number)
                numbers = [one.number for one in value if isinstance(one, Reference)]
                if is_unique and len(numbers) != len(set(numbers)):
                    self.fail(f'{name} has a member twice', number)

    def member_plan(self, upper_name, unique_lists):
        plan = []
        attributes = self.classes.release.attributes_of(upper_name)
        for place, expression in enumerate(self.classes.expressions(upper_name)):
            least = _LEAST.match(expression)
            if not least:
                continue
            name = attributes[place].name
            is_unique = _SET.match(expression) or any(
                attribute == name and upper_name in self.classes.family(entity)
                for entity, attribute in unique_lists)
            plan.append((place, name, int(least[1]), bool(is_unique)))
        return plan

    def check_inverse(self, inverse):
        objects = set(self.of_family(inverse.entity))
        place = self.classes.place(inverse.referring, inverse.attribute)
        if not objects or place is None:
            return
        users = {}
        for number in self.of_family(inverse.referring):
            arguments = self.records[number].arguments
            for one in set(step_text.references_in(arguments[place:place + 1])):
                users.setdefault(one, set()).add(number)
        rule = f'{inverse.entity}.{inverse.name}'
        for number in objects:
            count = len(users.get(number, ()))
            if count < inverse.least:
                self.fail(f'{rule}: too few', number)
            if inverse.most is not None and count > inverse.most:
                self.fail(f'{rule}: too many', number)

    def check_unique(self, entity, attributes):
        seen = set()
        for number in self.of_family(entity):
            values = [self.argument(number, self.records[number].name, one) for one in attributes]
            if any(isinstance(value, Absent) for value in values):
                continue
            key = repr(values)
            if key in seen:
                self.fail(f'{entity}: {", ".join(attributes)} not unique', number)
            seen.add(key)

    def check_names_of_sets(self):
        """No object has two property sets of one name, and no type has."""
        of_object = {}
        for number in self.of_family(_SETS_OF_OBJECTS):
            definitions = self.argument(number, _SETS_OF_OBJECTS, 'RelatingPropertyDefinition')
            for one in step_text.references_in(self.argument(
                    number, _SETS_OF_OBJECTS, 'RelatedObjects')):
                of_object.setdefault(one, set()).update(step_text.references_in([definitions]))
        for number in self.of_family('IfcTypeObject'):
            sets = self.argument(number, 'IfcTypeObject', 'HasPropertySets')
            if isinstance(sets, list):
                of_object[number] = set(step_text.references_in(sets))
        for number, sets in of_object.items():
            if number in self.records and self.has_doubles(sets, 'IfcPropertySetDefinition'):
                self.fail('property sets of one name', number)

    def check_names_of_properties(self):
        for number in self.of_family('IfcPropertySet'):
            properties = self.argument(number, 'IfcPropertySet', 'HasProperties')
            if isinstance(properties, list) and self.has_doubles(
                    set(step_text.references_in(properties)), 'IfcProperty'):
                self.fail('properties of one name', number)

    def has_doubles(self, numbers, entity):
        names = [self.argument(number, self.records[number].name, 'Name') for number in numbers
                 if number in self.records and self.records[number].name
                 in self.classes.family(entity)]
        names = [name for name in names if isinstance(name, str)]
        return len(names) != len(set(names))


def broken_in(data):
    """How often each rule is broken by objects of each class."""
    return Checker(data).run()


def newly_broken(output, inputs, told):
    """What the output breaks more often than its inputs together and the told merge. All are
    counters."""
    allowed = sum(inputs, Counter()) | told
    return output - allowed


if __name__ == '__main__':
    for path in sys.argv[1:]:
        with open(path, 'rb') as file:
            checker = Checker(file.read())
        for key, count in sorted(checker.run().items()):
            print(path, *key, count, checker.places[key][:3])
