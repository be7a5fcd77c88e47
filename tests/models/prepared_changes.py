"""Changes of what the samples do not hold: logical values, and lists of lists.

Each way puts the same things into a model, with values of its own; what differs between two models
is what differs between the values that were put into them.
"""

import itertools
from typing import NamedTuple

from known_changes import numbers_in

LOGICAL = {'.T.': 'true', '.F.': 'false', '.U.': 'unknown'}
METRES, PLAIN = 'm', ''


class Put(NamedTuple):
    """A value of an attribute: how it is written, and how a comparison tells it."""
    written: str
    told: object                      # a text; a list of Put; None: absent
    metres: float = 1.0


def logical(word):
    return Put(word, LOGICAL.get(word))


def numbers(rows, unit=PLAIN, metres=1.0):
    """A list of lists of numbers; reals have a point in the file."""
    def text(value):
        if unit == METRES:
            return f'{value * metres:.12g} m'
        return f'{value:.12g}'

    def row(values):
        written = ','.join(str(value) if isinstance(value, int) else f'{value:.12g}'.replace(
            'e', 'E') if '.' in f'{value:.12g}' else f'{value:.12g}.' for value in values)
        return Put(f'({written})', f"({', '.join(map(text, values))})")

    rows = [row(values) for values in rows]
    return Put(f"({','.join(one.written for one in rows)})", rows)


def told(value):
    if isinstance(value.told, list):
        return f"({', '.join(told(one) for one in value.told)})"
    return value.told


def differences(path, before, after):
    """Of lists of one length the members that differ, else the whole."""
    lists = isinstance(before.told, list) and isinstance(after.told, list)
    if lists and len(before.told) == len(after.told):
        for place, (one, other) in enumerate(zip(before.told, after.told)):
            yield from differences(f'{path}[{place + 1}]', one, other)
    elif told(before) != told(after):
        yield path, told(before), told(after)


# What is put in: each gets the model and the object, and its values by the path of what is told.


def put_properties(text, number, values):
    fits, first = values['Own.Fits'], values['Own.Chosen.ListValues[1]']
    nominal = f'IFCLOGICAL({fits.written})' if fits.told else '$'
    single = text.add('IFCPROPERTYSINGLEVALUE', "'Fits'", '$', nominal, '$')
    several = text.add('IFCPROPERTYLISTVALUE', "'Chosen'", '$',
                       f'(IFCLOGICAL({first.written}),IFCLOGICAL(.F.))', '$')
    held = text.add('IFCPROPERTYSET', "'0000000000000000000099'", text.history, "'Own'", '$',
                    f'(#{single},#{several})')
    text.add('IFCRELDEFINESBYPROPERTIES', "'0000000000000000000098'", text.history, '$', '$',
             f'(#{number})', f'#{held}')


def put_shape(text, number, item):
    """Of its own, beside those that the object has."""
    context = text.of_class('IFCGEOMETRICREPRESENTATIONCONTEXT')[0]
    representation = text.add('IFCSHAPEREPRESENTATION', f'#{context}', "'Own'", "'Own'",
                              f'(#{item})')
    shape, = numbers_in(text.records[number][1][6])
    held = text.records[shape][1]
    held[2] = held[2][:-1] + f',#{representation})'


ITEM = 'Representation.Representations[Own].Items[1].'


def put_surface(text, number, values):
    points = [[text.add('IFCCARTESIANPOINT', one.written) for one in row]
              for row in values['points']]
    net = ','.join('(' + ','.join(f'#{one}' for one in row) + ')' for row in points)
    surface = text.add('IFCBSPLINESURFACEWITHKNOTS', '1', '1', f'({net})', '.UNSPECIFIED.',
                       values[ITEM + 'UClosed'].written, values[ITEM + 'VClosed'].written,
                       values[ITEM + 'SelfIntersect'].written, '(2,2)', '(2,2)', '(0.,1.)',
                       '(0.,1.)', '.UNSPECIFIED.')
    put_shape(text, number, surface)


def put_face_set(text, number, values):
    points = text.add('IFCCARTESIANPOINTLIST3D', values[ITEM + 'Coordinates.CoordList'].written)
    faces = text.add('IFCTRIANGULATEDFACESET', f'#{points}', values[ITEM + 'Normals'].written,
                     '.T.', values[ITEM + 'CoordIndex'].written, '$')
    put_shape(text, number, faces)


# Pairs of values that differ in one thing, or in several. ----------------------------------------


def logical_pairs(paths, others):
    """Each word for each other one, at each path."""
    words = [logical(word) for word in LOGICAL]
    for path in paths:
        for before, after in itertools.permutations(words, 2):
            yield {**others, path: before}, {**others, path: after}


def property_pairs(_):
    others = {'Own.Fits': logical('.T.'), 'Own.Chosen.ListValues[1]': logical('.U.')}
    yield from logical_pairs(others, others)
    absent = {**others, 'Own.Fits': Put('$', None)}
    yield others, absent
    yield absent, others


def surface_pairs(metres):
    def net(*rows):
        return [numbers(row, METRES, metres).told for row in rows]

    row = [(1., 0., 0.), (1., 1., .25)]
    base = {ITEM + 'UClosed': logical('.U.'), ITEM + 'VClosed': logical('.F.'),
            ITEM + 'SelfIntersect': logical('.F.'),
            'points': net([(0., 0., 0.), (0., 1., 0.)], row)}
    yield from logical_pairs([path for path in base if path != 'points'], base)
    yield base, {**base, 'points': net([(0., 0., 0.), (0., 1., 0.)], [(1., 0., 0.), (1., 1., .5)])}
    yield base, {**base, 'points': net([(0., 0., .125), (0., 2., 0.)], row)}
    # Points that change places.
    yield base, {**base, 'points': net([(0., 1., 0.), (0., 0., 0.)], row)}


def face_set_pairs(metres):
    rows = [(0., 0., 0.), (1.5, 0., 0.), (0., 1., 0.), (0., 0., 1.)]
    coordinates, index, normals = (ITEM + name for name in ('Coordinates.CoordList', 'CoordIndex',
                                                            'Normals'))

    def points(*more):
        return numbers(more, METRES, metres)

    base = {coordinates: points(*rows), index: numbers([(1, 2, 3), (1, 2, 4)]),
            normals: Put('$', None)}
    for change in ({coordinates: points(*rows[:3], (0., 0.25, 1.))},
                   {coordinates: points(rows[1], rows[0], *rows[2:])},
                   {coordinates: points(*rows, (1., 1., 1.))},
                   {coordinates: points(rows[0], (0.5, 0.5, 0.5), *rows[1:])},
                   {index: numbers([(1, 2, 3), (1, 4, 2)])},
                   {index: numbers([(1, 2, 4), (1, 2, 3)])},
                   {index: numbers([(1, 2, 3)])},
                   {normals: numbers([(0., 0., 1.)] * 4)},
                   {coordinates: points(*rows[:3], (0., 0., 2.)),
                    index: numbers([(3, 2, 1), (1, 2, 4)])}):
        yield base, {**base, **change}
        yield {**base, **change}, base


def expected_of(before, after):
    """What is told of the object: (path, before, after)."""
    for path in before:
        if path != 'points':
            yield from differences(path, before[path], after[path])
            continue
        for u, (row, other) in enumerate(zip(before['points'], after['points'])):
            for v, (one, two) in enumerate(zip(row, other)):
                yield from differences(f'{ITEM}ControlPointsList[{u + 1}][{v + 1}].Coordinates',
                                       one, two)


# (what is put in, pairs of values, whether releases before IFC4 have the classes)
PREPARED = ((put_properties, property_pairs, True), (put_surface, surface_pairs, False),
            (put_face_set, face_set_pairs, False))
