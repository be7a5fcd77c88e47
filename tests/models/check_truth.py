"""What `corvel check` should find in a model, counted by rule and subject.

Made apart from the program, and slow: the text is read by loose_text.py, what the schema demands
stands in schema_facts.py and express_rules.py,
and what values may stand where in value_fit.py.
"""

import re
from collections import Counter

import express_rules
import schema_facts
import step_text
import value_fit
from loose_text import LooseFile
from step_text import Absent, Reference, Typed

_LIST = re.compile(r'(LIST|SET|ARRAY|BAG)(?: \[(\d+):(\d+|\?)\])? OF (?:UNIQUE )?(.+)\Z')
_GUID = re.compile(r'[0-3][0-9A-Za-z_$]{21}\Z')
# Classes whose attributes are derived, so that "*" stands there.
_DERIVED = {('IfcGeometricRepresentationSubContext', 'WorldCoordinateSystem'),
            ('IfcGeometricRepresentationSubContext', 'CoordinateSpaceDimension'),
            ('IfcGeometricRepresentationSubContext', 'TrueNorth'),
            ('IfcGeometricRepresentationSubContext', 'Precision'),
            ('IfcOrientedEdge', 'EdgeStart'), ('IfcOrientedEdge', 'EdgeEnd'),
            ('IfcSIUnit', 'Dimensions'), ('IfcMirroredProfileDef', 'Operator'),
            ('IfcSurfaceRenderingProperties', 'AmbientColor')}
_MISSED = {schema_facts.REFERENCE, schema_facts.REAL, schema_facts.COUNT, schema_facts.INTEGER,
           schema_facts.BINARY, schema_facts.TEXT, schema_facts.BOOLEAN, schema_facts.LOGICAL}


RELEASES = ('IFC2X_FINAL', 'IFC2X2_PLATFORM', 'IFC2X2_FINAL', 'IFC2X3', 'IFC4', 'IFC4X1', 'IFC4X2',
            'IFC4X3_ADD2', 'IFC4X4')


class Truth:
    """`found`: rule -> Counter of subjects. `places`: (rule, subject) -> records."""

    # Rules about which this says something; the others it does not know.
    RULES = {'CRV.value.missing', 'CRV.list.few', 'CRV.list.many', 'CRV.list.doubled',
             'CRV.reference.dangling', 'CRV.inverse.few', 'CRV.inverse.many',
             'CRV.inverse.ambiguous', 'CRV.header.damaged', 'CRV.syntax.skipped',
             'CRV.class.unknown',
             'CRV.number.doubled', 'CRV.arguments.count', 'CRV.enum.unknown', 'CRV.value.wrong',
             'CRV.value.large', 'CRV.reference.wrong', 'IFC101.schema', 'CRV.save.real',
             'CRV.save.number',
             'CRV.save.text',
             'PJS003.malformed', 'PJS003.doubled', 'PJS101.missing', 'PJS101.several',
             'CRV.units.missing', 'CRV.units.unlisted', 'CRV.context.unlisted', 'GEM051.missing',
             'CRV.placement.circle'}

    def __init__(self, data, told_release=None):
        """`told_release`: the one that serves a schema that no release has, as the program says."""
        self.file = LooseFile(data)
        self.found, self.places = {}, {}
        for wrong in self.file.wrong:
            self._fail(*wrong)
        namespace = self._namespace(self.file.header['FILESCHEMA'][0][0], told_release)
        self.release = schema_facts.release(namespace)
        self.rules = express_rules.rules_of(namespace)
        self.records = {}
        for number, record in self.file.records.items():
            if self._is_of_release(record):
                self.records[number] = record
        self._lists = {}
        self._numbers = {name.upper() for name in self.release.types if self._is_number(name)}
        for record in self.records.values():
            self._check_record(record)
        self._check_guids()
        self._check_project()
        self._check_circles()
        self._check_answers()
        for inverse in self.rules.inverses:
            if inverse.referring.startswith('IfcRel'):
                self._check_inverse(inverse)

    _ACCEPTED = re.compile(r'IFC(2X\w*|4|4X1|4X2|4X3|4X3_ADD2|4X4)\Z', re.IGNORECASE)

    def _namespace(self, identifier, told):
        """No other release has more of the classes of a file than the one that was taken."""
        if self._ACCEPTED.match(identifier):
            return schema_facts.choose_release(identifier.upper())
        self._fail('IFC101.schema', '', None)
        known = {one: sum(schema_facts.release(one).is_entity(record.name)
                          for record in self.file.records.values()) for one in RELEASES}
        if known[told] != max(known.values()):
            raise AssertionError(f'{told} has fewer classes of the file than others: {known}')
        return told

    def _is_of_release(self, record):
        """Tells of a record that its class does not hold as a whole. False: another reads it."""
        if not self.release.is_entity(record.name):
            self._fail('CRV.class.unknown', record.name, record.number)
            return False
        if len(self.release.attributes_of(record.name)) == len(record.arguments):
            return True
        self._fail('CRV.arguments.count', record.name, record.number)
        return not self._misfits(record) or not any(
            value_fit.fits(record, schema_facts.release(one), self.file.records)
            for one in RELEASES)

    def _misfits(self, record):
        """Of each attribute the rules that its value breaks, as far as the record has values."""
        found = {}
        for attribute, value in zip(self.release.attributes_of(record.name), record.arguments):
            if attribute.optional and isinstance(value, Absent):
                continue
            broken = value_fit.misfits(value, attribute.kind, self.file.records, self.release)
            if broken:
                found[attribute.name] = broken
        return found

    def _fail(self, rule, subject, number):
        self.found.setdefault(rule, Counter())[subject] += 1
        self.places.setdefault((rule, subject), []).append(number)

    def _name(self, record):
        return self.release._names[record.name]

    def _of(self, entity):
        return [record for record in self.records.values()
                if self.release.is_a(record.name, entity)]

    def _value(self, record, attribute):
        names = [one.name for one in self.release.attributes_of(record.name)]
        return record.arguments[names.index(attribute)] if attribute in names else None

    # One record -----------------------------------------------------------------------------------

    def _check_record(self, record):
        name = self._name(record)
        misfit = self._misfits(record)
        for rule in set().union(*misfit.values()):
            self._fail(rule, name, record.number)
        attributes = self.release.attributes_of(record.name)
        for place, (attribute, value) in enumerate(zip(attributes, record.arguments)):
            subject = f'{name}.{attribute.name}'
            if isinstance(value, Absent):
                if (not attribute.optional and attribute.kind.name in _MISSED
                        and not self._is_derived(record, attribute.name)):
                    # Optional in all published schemas, whatever holds it.
                    is_name = (attribute.name in ('Name', 'Description')
                               and self.release.is_a(record.name, 'IfcRoot'))
                    rule = ('CRV.save.text', '') if is_name else ('CRV.value.missing', subject)
                    self._fail(*rule, record.number)
            elif attribute.kind.name != schema_facts.GUID:
                is_count = attribute.kind.name == schema_facts.COUNT
                for rule in sorted(set(self._shortened(value, is_count))):
                    self._fail(rule, '', record.number)
            lists = self._lists_of(record.name)[place]
            if lists and isinstance(value, Absent) and not attribute.optional:
                value = []
            if lists and isinstance(value, list):
                self._check_list(value, lists, subject, record.number)
        dangling = [one for one in step_text.references_in(record.arguments)
                    if one not in self.file.records]
        if dangling:
            self._fail('CRV.reference.dangling', name, record.number)

    def _is_derived(self, record, attribute):
        return any(attribute == one and self.release.is_a(record.name, entity)
                   for entity, one in _DERIVED)

    def _shortened(self, value, is_count):
        """Rules that the numbers in a value break."""
        if isinstance(value, list):
            return [rule for one in value for rule in self._shortened(one, is_count)]
        if isinstance(value, Typed):
            return self._shortened(value.arguments, value.name in self._numbers)
        if is_count and isinstance(value, (int, float)) and float(f'{value:.5E}') != value:
            return ['CRV.save.number']
        if not is_count and isinstance(value, float) and float(f'{value:.14E}') != value:
            return ['CRV.save.real']
        return []

    def _is_number(self, expression):
        while expression in self.release.types:
            expression = self.release.types[expression]
        return expression == 'NUMBER'

    def _lists_of(self, upper_name):
        """Of each attribute its lists, the outermost first: kind, least and most."""
        if upper_name not in self._lists:
            expressions, name = [], self.release._names[upper_name]
            while name is not None:
                name, own = self.release.entities[name]
                expressions[:0] = [line.split(': ', 1)[1] for line in own]
            self._lists[upper_name] = [self._lists_in(one) for one in expressions]
        return self._lists[upper_name]

    def _lists_in(self, expression):
        lists = []
        expression = expression.removeprefix('OPTIONAL ')
        while True:
            if match := _LIST.match(expression):
                kind, least, most, expression = match.groups()
                least, most = int(least or 0), float('inf') if most in (None, '?') else int(most)
                if kind == 'ARRAY':  # whose bounds are those of its index
                    least = most = most - least + 1
                    least = 0 if most == float('inf') else least
                lists.append((kind, least, most))
            elif expression in self.release.types:
                expression = self.release.types[expression]
            else:
                return lists

    def _check_list(self, value, lists, subject, number):
        (kind, least, most), inner = lists[0], lists[1:]
        if len(value) < least:
            self._fail('CRV.list.few', subject, number)
        if len(value) > most:
            self._fail('CRV.list.many', subject, number)
        references = [one for one in value if isinstance(one, Reference)]
        if kind == 'SET' and len(set(references)) != len(references):
            self._fail('CRV.list.doubled', subject, number)
        for one in value:
            if inner and isinstance(one, list):
                self._check_list(one, inner, subject, number)

    # All of them ----------------------------------------------------------------------------------

    def _check_guids(self):
        seen = Counter()
        for record in self._of('IfcRoot'):
            guid = record.arguments[0]
            guid = guid if isinstance(guid, str) else ''
            if not _GUID.match(guid):
                self._fail('PJS003.malformed', self._name(record), record.number)
            if guid:
                seen[guid] += 1
                if seen[guid] == 2:
                    self._fail('PJS003.doubled', '', record.number)

    def _check_project(self):
        projects = self._of('IfcProject')
        if not projects:
            self._fail('PJS101.missing', '', None)
        for project in projects[1:]:
            self._fail('PJS101.several', '', project.number)
        units, contexts = set(), set()
        listing = {record.number: record for record in projects + self._of('IfcContext')}
        for record in listing.values():
            units.update(step_text.references_in([self._value(record, 'UnitsInContext')]))
            contexts.update(step_text.references_in([self._value(record, 'RepresentationContexts')]))
        for project in projects:
            if isinstance(self._value(project, 'UnitsInContext'), Absent):
                self._fail('CRV.units.missing', '', project.number)
        for record in self._of('IfcUnitAssignment'):
            if record.number not in units:
                self._fail('CRV.units.unlisted', self._name(record), record.number)
        for record in self._of('IfcRepresentationContext'):
            if self.release.is_a(record.name, 'IfcGeometricRepresentationSubContext'):
                continue
            if record.number not in contexts:
                self._fail('CRV.context.unlisted', self._name(record), record.number)
        geometric = any(self.release.is_a(self.records[one].name, 'IfcGeometricRepresentationContext')
                        for one in contexts if one in self.records)
        if projects and self._of('IfcRepresentation') and not geometric:
            self._fail('GEM051.missing', '', projects[0].number)

    def _check_circles(self):
        outer = {}
        for record in self._of('IfcObjectPlacement'):
            value = self._value(record, 'PlacementRelTo')
            if isinstance(value, Reference):
                outer[record.number] = value.number
        told = set()
        for number in outer:
            way = []
            while number in outer and number not in way:
                way.append(number)
                number = outer[number]
            if number in way:
                least = min(way[way.index(number):])
                if least not in told:
                    told.add(least)
                    self._fail('CRV.placement.circle', '', least)

    def _check_answers(self):
        """One type and one material: an inverse says so of types from IFC4 on."""
        asked = [('IfcRoot', 'IfcRelAssociatesMaterial')]
        if self.release.namespace.startswith('IFC2X'):
            asked.append(('IfcObject', 'IfcRelDefinesByType'))
        for entity, relation in asked:
            answers = Counter(
                one for record in self._of(relation)
                for one in set(step_text.references_in([self._value(record, 'RelatedObjects')])))
            for number, count in answers.items():
                record = self.records.get(number)
                if count > 1 and record and self.release.is_a(record.name, entity):
                    self._fail('CRV.inverse.ambiguous', self._name(record), number)

    def _check_inverse(self, inverse):
        objects = {record.number for record in self._of(inverse.entity)}
        users = {}
        for record in self._of(inverse.referring) if objects else ():
            for one in set(step_text.references_in([self._value(record, inverse.attribute)])):
                users[one] = users.get(one, 0) + 1
        for number in objects:
            name = self._name(self.records[number])
            if users.get(number, 0) < inverse.least:
                self._fail('CRV.inverse.few', name, number)
            if inverse.most is not None and users.get(number, 0) > inverse.most:
                self._fail('CRV.inverse.many', name, number)
