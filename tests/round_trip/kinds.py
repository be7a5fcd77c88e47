"""The kinds of attributes: how each is spelled, read and written.

A kind makes fields (see texts.Field). `absent` is the text written for an attribute that the file
leaves out, as `$`, as `*` or by ending early; None for a kind that takes that as an error.
"""

import re

import texts
from facts import SIMPLE_TYPES
from texts import Field

AGGREGATE = re.compile(r'(?:LIST|SET|ARRAY|BAG)(?: \[\S+:\S+\])? OF (.+)')

# Defined types that are numbers without being reals.
COUNTS = {'IfcNumericMeasure', 'IfcCountMeasure'}


class Scalar:
    """A value that is read and written by itself: spellings of its own and random ones."""

    def __init__(self, absent, spellings, random_spelling, make_field):
        self.absent = absent
        self._spellings = spellings
        self._random_spelling = random_spelling
        self._make_field = make_field

    def every(self, _maker):
        return [self._make_field(*spelling) for spelling in self._spellings]

    def random(self, maker):
        return self._make_field(*self._random_spelling(maker.rng))


def integer_field(given, value):
    return Field(given, str(value))


def random_integer(rng):
    if rng.random() < 0.3:
        return rng.choice(texts.INTEGER_SPELLINGS)
    value = rng.randrange(-10**rng.randrange(1, 12), 10**rng.randrange(1, 12))
    return str(value), texts.saturated(value)


def random_binary(rng):
    value = rng.randrange(-10**rng.randrange(1, 10), 10**rng.randrange(1, 10))
    return str(value), value


REAL = Scalar('0.', texts.REAL_SPELLINGS, texts.random_real, texts.real_field)
COUNT = Scalar('0', texts.COUNT_SPELLINGS, texts.random_count, texts.count_field)
INTEGER = Scalar('0', texts.INTEGER_SPELLINGS, random_integer, integer_field)
BINARY = Scalar('0', texts.BINARY_SPELLINGS, random_binary, integer_field)


class Text:
    absent = "''"

    def __init__(self):
        self._every = None

    def every(self, maker):
        if self._every is None:
            self._every = list(texts.every_text(maker.rng))
        return self._every

    def random(self, maker):
        return texts.random_text(maker.rng)


class Guid:
    absent = "''"

    def every(self, maker):
        return [texts.random_guid(maker.rng) for _ in range(50)]

    def random(self, maker):
        return texts.random_guid(maker.rng)


class Enumeration:
    """`read_only` values are accepted and come out as `$`, which only an optional one takes."""

    def __init__(self, name, values, read_only=(), absent=None):
        self.name = name
        self.values = values
        self.read_only = read_only
        self.absent = absent
        self.fallback = f'.{values[-1]}.'

    def field(self, value):
        literal = f'.{value}.'
        return Field(literal, '$' if value in self.read_only else literal)

    def every(self, _maker):
        return [self.field(value) for value in self.values if value not in self.read_only]

    def random(self, maker):
        return maker.rng.choice(self.every(maker))


class Reference:
    """An attribute whose type is an entity or a select. None stands for a null reference."""

    absent = '*'

    def __init__(self, target, admitted):
        self.target = target
        self.admitted = admitted

    def random(self, maker):
        chance = maker.rng.random()
        if chance < 0.6:
            return maker.reference(maker.pick(self.admitted))
        if chance < 0.85:
            return maker.inline(maker.pick(self.admitted))
        return maker.dropped(self.admitted)

    def every(self, maker):
        return [self.random(maker) for _ in range(4)]


class Nothing:
    """The value of a class that holds none: whatever stands there is passed over."""

    absent = ''


class List:
    absent = '()'

    def __init__(self, member):
        self.member = member

    def random(self, maker):
        length = maker.rng.choice((0, 1, 2, 3, 3, 4, 8))
        return self.of([self._random_member(maker) for _ in range(length)])

    def every(self, maker):
        """One list with every form of a member, one that is empty, and one that is long."""
        yield self.of(list(self.member.every(maker)))
        yield self.of([])
        yield self.of([self.member.random(maker) for _ in range(60)])

    @staticmethod
    def of(members):
        """Members that are null references leave no trace but their place in the input."""
        field = texts.bracketed(members)
        if not all([member.written for member in members]):
            field.written = texts.bracketed([m for m in members if m.written]).written
        return field

    def _random_member(self, maker):
        member = self.member
        if member.absent is not None and maker.rng.random() < 0.1:
            null = isinstance(member, Reference)
            return Field(maker.rng.choice('$*'), '' if null else member.absent)
        return member.random(maker)


class Attribute:
    """The kind of a whole attribute: mandatory, or optional with `$` for what is absent."""

    def __init__(self, kind, optional):
        self.kind = kind
        self.optional = optional
        self.absent = '$' if optional else kind.absent
        if self.absent is not None:
            self._absent_fields = Field('$', self.absent), Field('*', self.absent)

    def random(self, maker):
        return self.settled(self.kind.random(maker))

    def every(self, maker):
        fields = [self.settled(field) for field in self.kind.every(maker)]
        if self.optional and isinstance(self.kind, Enumeration):
            fields += [self.kind.field(value) for value in self.kind.read_only]
        return fields

    def settled(self, field):
        """A null reference is written as the absent value."""
        return field if field.written else Field(field.given, self.absent)

    def absent_field(self, rng):
        return self._absent_fields[rng.random() < 0.5]


class Kinds:
    """The kinds of all classes of one release."""

    def __init__(self, release):
        self.release = release
        self._text = Text()
        self.own = {name: [Attribute(self._of_type(attribute.type), attribute.optional)
                           for attribute in own]
                    for name, own in release.own_attributes.items()}
        self.of_class = {name: self._with_inherited(name) for name in release.entities}
        for name in release.value_classes:
            kind = self._of_type(name)
            if isinstance(kind, Enumeration):  # IFCBOOLEAN($) is an error
                kind.absent = None
            self.of_class[name] = [Attribute(kind, False)]

    def _with_inherited(self, name):
        above = self.release.supertype[name]
        return (self._with_inherited(above) if above else []) + self.own[name]

    def declared(self):
        """(class, place among its attributes, attribute), each where it is declared; the value of
        a defined type counts as its attribute."""
        for name, attributes in self.of_class.items():
            first = len(attributes) - len(self.own.get(name, attributes))
            for place in range(first, len(attributes)):
                yield name, place, attributes[place]

    def _of_type(self, text):
        release = self.release
        if text == 'IfcNullStyle' and text in release.value_classes:
            return Nothing()
        if text == 'IfcGloballyUniqueId':
            return Guid()
        if text in release.own_attributes or text in release.selects:
            return Reference(text, release.admitted(text))
        if text in release.enumerations:
            return Enumeration(text, release.enumerations[text],
                               release.read_only_values.get(text, ()))
        aggregate = AGGREGATE.fullmatch(text)
        if aggregate:
            return List(self._of_type(aggregate.group(1)))
        if text in SIMPLE_TYPES:
            return self._of_simple_type(text, False)
        return self._of_defined_type(text)

    def _of_defined_type(self, name):
        release = self.release
        if name in COUNTS and not (name == 'IfcCountMeasure' and
                                   release.namespace == 'IFC4X3_ADD2'):
            return COUNT
        inner = release.innermost(name)
        if inner in SIMPLE_TYPES:
            return self._of_simple_type(inner, name in release.value_classes)
        return self._of_type(inner)

    def _of_simple_type(self, simple, has_class):
        """A truth value of a class of its own has an absent form; the plain ones have none."""
        if simple == 'BOOLEAN':
            return Enumeration('BooleanDataType', ['T', 'F'], (), '.F.' if has_class else None)
        if simple == 'LOGICAL':
            return Enumeration('LogicalDataType', ['T', 'F', 'U'], (), '.U.' if has_class else None)
        return {'REAL': REAL, 'INTEGER': INTEGER, 'STRING': self._text, 'BINARY': BINARY}[simple]
