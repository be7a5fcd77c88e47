"""Tokens that an attribute can't take, the report that each gives, and what is read instead."""

from kinds import BINARY, COUNT, INTEGER, REAL, Enumeration, Guid, List, Nothing, Reference, Text
from records import record_of
from texts import Field

SHOWN = {"'x'": 'WStringToken', '5': 'IntegerDataTypeToken', '5.5': 'RealDataTypeToken',
         '.T.': 'enumeration value', '#5': 'IdentifierToken', 'WORD': 'entity name',
         '?': 'UnknownSignToken', '=': 'EqualToken', '"': 'UnknownSignToken',
         '$': 'empty argument'}

# (the words of the report, the tokens)
REFUSED = {
    REAL: ('IfcInteger or IfcReal', ["'x'", '.T.', '#5', '?', '=']),
    COUNT: ('IfcInteger or IfcReal', ["'x'", '.T.', '#5']),
    INTEGER: ('IfcInteger', ["'x'", '.T.', '#5', 'WORD', '?']),
    BINARY: ('IfcBinary', ["'x'", '.T.', '#5', '5.5', 'WORD', '"']),
    Text: ('String', ['5', '5.5', '.T.', '#5', '?']),
    Guid: ('CharString', ['5', '5.5', '.T.', '#5', 'WORD']),
    Reference: ('#, *, entity name, or number(real, integer)', ["'x'", '.T.', '?', '=']),
    Enumeration: ('enumeration value', ["'x'", '5', '5.5', '#5', 'WORD', '?']),
}


class WrongField(Field):
    __slots__ = ('report',)

    def __init__(self, given, written, report):
        super().__init__(given, written)
        self.report = report


def wrong_scalars(kind, takes_absent):
    """WrongFields of a single value; a null reference is the empty text."""
    words, tokens = REFUSED[kind if kind in REFUSED else type(kind)]
    instead = kind.absent
    if isinstance(kind, Enumeration):
        instead = kind.fallback
        if not takes_absent:
            tokens = tokens + ['$']
    if isinstance(kind, Reference):
        instead = ''
        if 'IfcDimensionalExponents' not in kind.admitted:
            tokens = tokens + ['5']
    for token in tokens:
        yield WrongField(token, instead, f'Expected: {words}. Got: {SHOWN[token]}.')
    if isinstance(kind, Enumeration):
        for text in ('NO_SUCH_VALUE', kind.values[0].lower(), ''):
            yield WrongField(f'.{text}.', instead,
                             f'Enume {kind.name} does not contain: "{text}"')


def wrong_fields(kind, takes_absent):
    if isinstance(kind, List):
        for member in wrong_fields(kind.member, kind.member.absent is not None):
            yield WrongField(f'({member.given})', f'({member.written})', member.report)
    elif not isinstance(kind, Nothing):
        yield from wrong_scalars(kind, takes_absent)


def innermost(kind):
    while isinstance(kind, List):
        kind = kind.member
    return kind


def wrong_records(maker, of_enumerations):
    """(record, its report) for each attribute where it is declared and a token that it can't take,
    and now and then for all of them: each report costs a commit of the log to the disk. The values
    around it have to be there, to show that no more than the one token is lost.
    """
    for name, index, attribute in maker.kinds.declared():
        if isinstance(innermost(attribute.kind), Enumeration) != of_enumerations:
            continue
        chosen = list(wrong_fields(attribute.kind, attribute.absent is not None))
        if chosen and maker.rng.random() < 0.9:
            # The report of an unknown value, which stands last, names the enumeration.
            chosen = chosen[-1:] if of_enumerations else [maker.rng.choice(chosen)]
        for wrong in chosen:
            fields = [solid_field(maker, other) for other in maker.kinds.of_class[name]]
            fields[index] = attribute.settled(wrong)
            yield record_of(maker.allot(name), name, fields), wrong.report


def solid_field(maker, attribute):
    """A value that is there; references are left out, since a forward one is reported twice."""
    if isinstance(innermost(attribute.kind), (Reference, Nothing)):
        return attribute.absent_field(maker.rng)
    return attribute.random(maker)
