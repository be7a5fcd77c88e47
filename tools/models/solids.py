"""Shapes as points and faces, without a model: what a faceted boundary representation is made of.

A face is a list of loops, the outer one first; a loop is a list of indices into the points, seen
from outside against the clock for the outer loop.
"""

import math


def cos_sin(degrees):
    """Cosine and sine to nine places. The last bit of the C library's result differs between
    systems; rounded, equal models have equal bytes everywhere."""
    angle = math.radians(degrees)
    return round(math.cos(angle), 9), round(math.sin(angle), 9)


def rectangle(x, y, width, depth):
    """Four corners, against the clock."""
    return [(x, y), (x + width, y), (x + width, y + depth), (x, y + depth)]


def circle(radius, corners, x=0.0, y=0.0):
    """A regular polygon on the circle, against the clock."""
    points = []
    for index in range(corners):
        cosine, sine = cos_sin(360.0 * index / corners)
        points.append((x + radius * cosine, y + radius * sine))
    return points


def prism(outline, bottom, top, hole=None):
    """An outline (against the clock) lifted from one height to another, perhaps with a hole
    through it. Its floor and ceiling then have two loops each."""
    loops = [outline] + ([list(reversed(hole))] if hole else [])
    points, faces, floor, ceiling = [], [], [], []
    for loop in loops:
        first, count = len(points), len(loop)
        points += [(x, y, bottom) for x, y in loop] + [(x, y, top) for x, y in loop]
        floor.append([first + index for index in reversed(range(count))])
        ceiling.append([first + count + index for index in range(count)])
        for index in range(count):
            low, next_low = first + index, first + (index + 1) % count
            faces.append([[low, next_low, next_low + count, low + count]])
    return points, [floor, ceiling] + faces


def box(x, y, z, width, depth, height):
    return prism(rectangle(x, y, width, depth), z, z + height)


def upright(solid):
    """The solid tipped over so that what lay in the xy plane stands in the xz plane."""
    points, faces = solid
    return [(x, -z, y) for x, y, z in points], faces


def drum(radius, height, corners, rings):
    """A barrel of many small quadrilaterals, as exporters make of round equipment."""
    points, faces = [], []
    for ring in range(rings + 1):
        level = height * ring / rings
        swell = 1.0 + 0.2 * math.sqrt(max(0.0, 0.25 - (ring / rings - 0.5) ** 2))
        points += [(x, y, level) for x, y in circle(radius * round(swell, 6), corners)]
    for ring in range(rings):
        for index in range(corners):
            low = ring * corners + index
            next_low = ring * corners + (index + 1) % corners
            faces.append([[low, next_low, next_low + corners, low + corners]])
    floor = [list(reversed(range(corners)))]
    ceiling = [[rings * corners + index for index in range(corners)]]
    return points, [floor, ceiling] + faces


def triangles(solid):
    """The faces without holes cut into triangles, for releases that have triangulated sets."""
    points, faces = solid
    result = []
    for loops in faces:
        loop = loops[0]
        result += [[loop[0], loop[index], loop[index + 1]] for index in range(1, len(loop) - 1)]
    return points, result
