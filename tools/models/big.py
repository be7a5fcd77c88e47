"""Models of any size for benchmarks: buildings of storeys, filled with copies of prototypes.

Written as a stream: nothing is kept but the numbers of the buildings and of one storey's elements.
"""

import random

from .project import Facts, Project
from .prototypes import Prototypes
from .step_text import FOOTER_TEXT, Enum, Header, header_text
from .templates import Filler, Template, VariedGeometry, VariedModel

_STOREYS = 8
_ELEMENTS = 48
# Share of the elements that are written as some exporters do: what refers before what is referred
# to. A tenth of all records then has a reference forward; in real exports none to two fifths have.
_WHOLE_FIRST = 0.15
_UNITS = {'KB': 10 ** 3, 'MB': 10 ** 6, 'GB': 10 ** 9}

# What an element adds to the relations of its storey, and a building to that of the site.
_ELEMENT_MARGIN, _BUILDING_MARGIN, _END_MARGIN = 100, 12, 1000


class TooSmall(Exception):
    """The asked size has no room for what every model holds."""


def size_in_bytes(text):
    """The bytes that a size such as 500KB, 100MB or 2GB names; powers of ten."""
    number, unit = text[:-2], text[-2:].upper()
    if unit not in _UNITS:
        number, unit = text, None
    return int(float(number) * _UNITS.get(unit, 1))


class _Reference:
    """Stands for a record of which only the number is known, or the hole where it will be."""

    def __init__(self, number):
        self.number = number


def _references(numbers):
    return [_Reference(number) for number in numbers]


class _Stock:
    """What a big model is made of: its head, with one element of each kind, and the templates."""

    def __init__(self, release, seed):
        self.model = VariedModel(release, 2 * seed)
        facts = Facts('Großprojekt', 'Areal Nord', 'Haus 0', [('Musteretage', 0.0)], 'MILLIMETRE',
                      ('Müller', 'Zoë'), 'Ingénieurs réunis', ('Plan Drafter', '3.1'))
        self._project = Project(self.model, facts, VariedGeometry)
        self.site = self._project.site()
        _, storeys = self._project.building(self.site)
        prototypes = Prototypes(self._project)
        prototypes.build_all(storeys[0])
        self.next_number = self.model.number_records()
        self.head = ''.join([header_text(Header('big', 'Plan Drafter 3.1'), release)] + [
            self.model.record_text(record) for record in self.model.records])
        # Not the model's seed: its sequence holds GUIDs that must not come again.
        self.filler = Filler(random.Random(2 * seed + 1))
        self._prepare(prototypes)

    def _prepare(self, prototypes):
        self.model.varied = True
        self.building = self._spatial('IfcBuilding', self.site.placement, 'Haus {tag}')
        self.storey = self._spatial('IfcBuildingStorey', _Reference('{building_placement}'),
                                    'Etage {tag}')
        around = (_Reference('{storey}'), _Reference('{storey_placement}'))
        self._elements, self._reversed = [], []
        for name in prototypes.kinds:
            records, elements, links = prototypes.build(name, *around)
            self._elements.append(Template(self.model, records, elements, links))
            self._reversed.append(Template(self.model, records[::-1], elements, links))
        self.model.varied = False
        self.filler.base = 100000  # so that the numbers have their usual length
        self._usual_sizes = [len(template.fill(self.filler)) for template in self._elements]
        self.smallest = min(self._usual_sizes) + _ELEMENT_MARGIN
        weights = [weight for weight, _ in prototypes.kinds.values()]
        self._thresholds = [sum(weights[:index + 1]) / sum(weights)
                            for index in range(len(weights))]

    def _spatial(self, entity, parent, name):
        """A spatial object and its placement, which is the last record but one."""
        first = len(self.model.records)
        self._project.geometry.forget_shared()
        placement = self._project.geometry.placement(parent, (0.0, 0.0, 3.6), 90.0)
        record = self.model.add(entity, Name=name, ObjectPlacement=placement,
                                CompositionType=Enum('ELEMENT'))
        records = self.model.records[first:]
        del self.model.records[first:]
        return Template(self.model, records, [record], [])

    def choose(self, room):
        """The templates for one storey: until it is full or `room` bytes are, but one at least.
        What has no room any more gives way to the smallest kind."""
        chosen = []
        while len(chosen) < _ELEMENTS and (room >= self.smallest or not chosen):
            index = self._draw()
            if self._usual_sizes[index] > room:
                index = self._usual_sizes.index(min(self._usual_sizes))
            whole_first = self.filler.random.random() < _WHOLE_FIRST
            chosen.append((self._reversed if whole_first else self._elements)[index])
            room -= self._usual_sizes[index] + _ELEMENT_MARGIN
        return chosen

    def _draw(self):
        """One of the kinds by its weight."""
        chance = self.filler.random.random()
        return next(index for index, threshold in enumerate(self._thresholds)
                    if chance < threshold)


class _Writer:
    """Writes one model from a stock to a binary stream."""

    def __init__(self, stock, stream, size):
        self._stock = stock
        self._filler = stock.filler
        self._stream = stream
        self._size = size
        self._next = stock.next_number
        self._buildings = []
        self.written = 0

    def write(self):
        self._put(self._stock.head)
        while self._room() >= self._stock.smallest:
            self._write_building()
        self._relate('IfcRelAggregates', RelatingObject=self._stock.site.record,
                     RelatedObjects=_references(self._buildings))
        self._put(FOOTER_TEXT)

    def _room(self):
        """Bytes left for elements, once the end of the file has its share."""
        return self._size - self.written - _END_MARGIN - _BUILDING_MARGIN * len(self._buildings)

    def _put(self, text):
        self._stream.write(text.encode('ascii'))
        self.written += len(text)

    def _copy(self, template):
        """Writes a copy of a template under the next numbers."""
        self._filler.base = self._next
        self._put(template.fill(self._filler))
        self._next += template.count

    def _copy_spatial(self, template):
        """Writes a building or storey; gives the numbers of it and of its placement."""
        self._copy(template)
        return self._next - 1, self._next - 2

    def _relate(self, entity, **attributes):
        record = self._stock.model.add(entity, **attributes)
        self._stock.model.records.pop()
        record.number = self._next
        self._next += 1
        self._put(self._stock.model.record_text(record))

    def _write_building(self):
        building, self._filler.building_placement = self._copy_spatial(self._stock.building)
        self._buildings.append(building)
        storeys = []
        while len(storeys) < _STOREYS and (
                self._room() >= self._stock.smallest or not storeys):
            storeys.append(self._write_storey(relation_first=len(storeys) % 2 == 0))
        self._relate('IfcRelAggregates', RelatingObject=_Reference(building),
                     RelatedObjects=_references(storeys))

    def _write_storey(self, relation_first):
        """A storey and its elements. The relation that lists them stands before or behind them:
        real files have both."""
        self._filler.storey, self._filler.storey_placement = self._copy_spatial(
            self._stock.storey)
        storey = self._filler.storey
        chosen = self._stock.choose(self._room())
        bases, base = [], self._next + relation_first
        for template in chosen:
            bases.append(base)
            base += template.count
        contained = [base + offset for template, base in zip(chosen, bases)
                     for offset in template.elements]
        if relation_first:
            self._contain(storey, contained)
        for template in chosen:
            self._copy(template)
        if not relation_first:
            self._contain(storey, contained)
        self._write_links(chosen, bases)
        return storey

    def _contain(self, storey, contained):
        self._relate('IfcRelContainedInSpatialStructure', RelatingStructure=_Reference(storey),
                     RelatedElements=_references(contained))

    def _write_links(self, chosen, bases):
        """Types and materials of a storey's elements: one relation for each of them."""
        groups = {}
        for template, base in zip(chosen, bases):
            for relation, attribute, number, offset in template.links:
                groups.setdefault((relation, attribute, number), []).append(base + offset)
        for (relation, attribute, number), related in groups.items():
            self._relate(relation, RelatedObjects=_references(related),
                         **{attribute: _Reference(number)})


def write_big(release, size, path, seed):
    """Makes a model of about `size` bytes at `path`; gives its exact size."""
    stock = _Stock(release, seed)
    smallest = len(stock.head) + 50000
    if size < smallest:
        raise TooSmall('the smallest model of %s has %d bytes' % (release, smallest))
    with open(path, 'wb', buffering=1 << 20) as stream:
        writer = _Writer(stock, stream, size)
        writer.write()
    return writer.written
