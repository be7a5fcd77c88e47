"""Records as text with holes, so that one element built once can be written a million times.

A hole is `{kind}` or `{kind:argument}` in the text of the records. No other text of a model may
have braces. Kinds: `n` the number of a record of the element itself; `storey`,
`storey_placement`, `building_placement` the number of a record around it; `x`, `y`, `z` a length
that varies with the size of the element; `zero` a length of nothing, or the dust that exporters
leave in its place; `real` a varied real; `guid`, `tag`, `word` a text.
"""

import re

from .geometry import Geometry
from .model import Model, guid_text
from .step_text import Raw, real_text

_HOLE = re.compile(r'\{(\w+)(?::([^{}]*))?\}')

# As they stand in the file, with what is doubled or escaped there.
_WORDS = ('REI 60', 'REI 90', 'Beton C25/30', 'Stahl S235', 'Wand', 'Lager', 'Phase 2', 'ja',
          'nein', 'Typ A', 'Typ B', 'n/a', '', 'D\\X2\\00E4\\X0\\mmung 120', 'B\\X2\\00FC\\X0\\ro',
          "chef d''\\X2\\00E9\\X0\\tage", 'P:\\\\Plan', '\\X2\\4F1A8B705BA4\\X0\\')

# Every third element has a round size, whose lengths come out short, as drawn by hand.
_ROUND_SIZES = (0.5, 0.75, 1.0, 1.25, 1.5, 2.0)


class VariedModel(Model):
    """A model that, once `varied`, leaves holes for the texts that no two elements share."""

    varied = False

    def new_guid(self):
        return '{guid}' if self.varied else super().new_guid()


class VariedGeometry(Geometry):
    """Geometry that leaves holes for lengths when its model is varied."""

    def length(self, metres, axis='x'):
        value = super().length(metres, axis)
        if not self.model.varied:
            return value
        return Raw('{%s:%r}' % (axis, value)) if value else Raw('{zero}')

    def forget_shared(self):
        """Makes the next element bring its own directions and origin."""
        self._shared.clear()


class Filler:
    """What fills the holes. Set the numbers around an element before it is written."""

    def __init__(self, random):
        self.random = random
        self.base = 0  # number of the element's first record
        self.storey = self.storey_placement = self.building_placement = 0
        self._tag = 200000
        self._sizes = {'x': 1.0, 'y': 1.0, 'z': 1.0}

    def new_element(self):
        """Draws sizes and a tag for the next element."""
        self._tag += 1 + int(self.random.random() * 40)
        for axis in 'xyz':
            chance = self.random.random()
            if chance < 1 / 3:
                size = _ROUND_SIZES[int(chance * 3 * len(_ROUND_SIZES))]
            else:
                size = 0.5 + 1.5 * self.random.random()
            self._sizes[axis] = size

    def sources(self):
        """Kind of hole to (function, conversion of its argument)."""
        def name(argument):
            return argument
        return {
            'n': (lambda offset: self.base + offset, int),
            'storey': (lambda _: self.storey, name),
            'storey_placement': (lambda _: self.storey_placement, name),
            'building_placement': (lambda _: self.building_placement, name),
            'x': (lambda value: real_text(value * self._sizes['x']), float),
            'y': (lambda value: real_text(value * self._sizes['y']), float),
            'z': (lambda value: real_text(value * self._sizes['z']), float),
            'zero': (lambda _: self._zero(), name),
            'real': (lambda _: self._real(), name),
            'guid': (lambda _: guid_text(self.random.getrandbits(128)), name),
            'tag': (lambda _: self._tag, name),
            'word': (lambda _: _WORDS[int(self.random.random() * len(_WORDS))], name),
        }

    def _real(self):
        """Up to a thousand, one in eight so small that it needs an exponent."""
        return real_text(self.random.random() * (1000.0 if self.random.random() < 0.875 else 1e-4))

    def _zero(self):
        if self.random.random() < 0.05:
            return real_text((self.random.random() - 0.5) * 1e-10)
        return '0.'


class Template:
    """The text of some records with its holes found. `elements` are the offsets of the records
    that belong into the storey; `links` are (relation, relating attribute, relating number,
    offset)."""

    def __init__(self, model, records, elements, links):
        for offset, record in enumerate(records):
            record.number = '{n:%d}' % offset
        pieces = _HOLE.split(''.join(model.record_text(record) for record in records))
        self.count = len(records)
        self.elements = [records.index(element) for element in elements]
        self.links = [(relation, attribute, number, records.index(element))
                      for relation, attribute, number, element in links]
        self._holes = list(zip(pieces[1::3], pieces[2::3]))
        self._text = '%s'.join(literal.replace('%', '%%') for literal in pieces[::3])
        self._calls = None

    def fill(self, filler):
        """The text of one element. A template serves one filler."""
        if self._calls is None:
            sources = filler.sources()
            self._calls = []
            for kind, argument in self._holes:
                function, convert = sources[kind]
                self._calls.append((function, convert(argument)))
        filler.new_element()
        return self._text % tuple([function(argument) for function, argument in self._calls])
