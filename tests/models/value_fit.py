"""Whether a value may stand where a record has it: what a published schema says of types, and what
the program is known to take all the same."""

import schema_facts
from step_text import Absent, Enumeration, Reference, Typed

WRONG, UNKNOWN, REFUSED, LARGE = ('CRV.value.wrong', 'CRV.enum.unknown', 'CRV.reference.wrong',
                                  'CRV.value.large')
_MOST = 2**31 - 1
_WORDS = {schema_facts.BOOLEAN: ('T', 'F'), schema_facts.LOGICAL: ('T', 'F', 'U')}


def misfits(value, kind, records, release):
    """The rules that a value breaks where one of this kind is wanted; `$` is another's business."""
    name = kind.name
    if name in _WORDS or name == schema_facts.ENUMERATION:
        return _of_words(value, _WORDS.get(name, kind.values), name == schema_facts.ENUMERATION)
    if isinstance(value, Absent):
        return set()
    if name == schema_facts.REFERENCE:
        return _of_reference(value, kind, records, release)
    if name == schema_facts.LIST:
        if not isinstance(value, list):
            return {WRONG}
        return set().union(*(misfits(one, kind.of, records, release) for one in value))
    if name in (schema_facts.TEXT, schema_facts.GUID):
        return set() if isinstance(value, str) else {WRONG}
    if not isinstance(value, (int, float)):
        return {WRONG}
    if name == schema_facts.INTEGER:
        if value != int(value):
            return {WRONG}
        return {LARGE} if abs(value) > _MOST else set()
    return set()


def _of_words(value, words, is_needed):
    """A word of none is told as such only where an enumeration is wanted."""
    if isinstance(value, Enumeration):
        return set() if value.name in words else {UNKNOWN}
    return {WRONG} if is_needed or not isinstance(value, Absent) else set()


def _of_reference(value, kind, records, release):
    if isinstance(value, Reference):
        target = records.get(value.number)
        # One that is not there, and one of a class that is not, are told by other rules.
        is_known = target is not None and release.is_entity(target.name)
        return {REFUSED} if is_known and target.name not in kind.targets else set()
    if not isinstance(value, Typed) or len(value.arguments) != 1:
        return {WRONG}
    if not release.is_value(value.name):
        return {WRONG}
    inner = misfits(value.arguments[0], release.value_kind(value.name), records, release)
    inner = {WRONG if rule == UNKNOWN else rule for rule in inner}
    return inner if value.name in kind.targets else {WRONG} | (inner - {LARGE})


def fits(record, release, records):
    """The release has the class, with as many attributes, and takes all the values."""
    if not release.is_entity(record.name):
        return False
    attributes = release.attributes_of(record.name)
    return len(attributes) == len(record.arguments) and not any(
        misfits(value, attribute.kind, records, release)
        for attribute, value in zip(attributes, record.arguments)
        if not (attribute.optional and isinstance(value, Absent)))
