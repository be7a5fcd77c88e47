"""Which attributes the records of each class have in each release: the project's own tables of
facts, src/schema/releases/*.schema, read for names, order and optionality."""

import collections
import functools
import os
import re

_SOURCE = os.path.join(os.path.dirname(os.path.abspath(__file__)), '..', '..', 'src')
_FOLDER = os.path.join(_SOURCE, 'schema', 'releases')

# Texts of FILE_SCHEMA, in order of age.
with open(os.path.join(_SOURCE, 'step', 'releases.inc'), encoding='ascii') as _list:
    RELEASES = tuple(re.findall(r'^CORVEL_RELEASE\((\w+)\)$', _list.read(), re.MULTILINE))

_ENTITY = re.compile(r'(abstract )?entity (\w+)(?: < (\w+))?$')
_ATTRIBUTE = re.compile(r'  (\w+): (OPTIONAL )?')

Attribute = collections.namedtuple('Attribute', 'name required')
_Entity = collections.namedtuple('_Entity', 'abstract supertype own')


@functools.lru_cache(maxsize=None)
def _entities(release):
    """Class name to _Entity, whose `own` are the attributes that it declares itself."""
    entities, current = {}, None
    with open(os.path.join(_FOLDER, release + '.schema'), encoding='ascii') as file:
        for line in file:
            head = _ENTITY.match(line.rstrip('\n'))
            if head:
                current = _Entity(bool(head.group(1)), head.group(3), [])
                entities[head.group(2)] = current
            elif not line.startswith('  '):
                current = None
            elif current:
                attribute = _ATTRIBUTE.match(line)
                current.own.append(Attribute(attribute.group(1), not attribute.group(2)))
    return entities


def has_class(release, entity):
    """Whether the release has the class. A class that no release has is an error."""
    if not any(entity in _entities(any_release) for any_release in RELEASES):
        raise ValueError('no release has %s' % entity)
    return entity in _entities(release)


@functools.lru_cache(maxsize=None)
def attributes(release, entity):
    """The attributes of a class in a release, in the order of the file."""
    if not has_class(release, entity):
        raise ValueError('%s has no %s' % (release, entity))
    if _entities(release)[entity].abstract:
        raise ValueError('%s is abstract in %s' % (entity, release))
    return _with_inherited(release, entity)


def _with_inherited(release, entity):
    result = []
    while entity:
        _, supertype, own = _entities(release)[entity]
        result = own + result
        entity = supertype
    return tuple(result)


@functools.lru_cache(maxsize=None)
def names_in_any_release(entity):
    """All attribute names that the class has in one release or another."""
    return frozenset(attribute.name for release in RELEASES if entity in _entities(release)
                     for attribute in _with_inherited(release, entity))
