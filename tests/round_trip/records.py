"""Records of every class with attributes of every kind, each with the line that must come out."""

from kinds import List, Nothing, Reference, Scalar, Text
from texts import Field, gap

LARGEST_NUMBER = 4294967279
DEEPEST_INLINE = 2

# Arguments that no class has. They are passed over up to the end of the record.
SURPLUS = (",5", ",'a;b)'", ",(#1,(2.,$))", ",IFCLABEL('x')", ',.T.', ',$,*', ',#3', ',()',
           ",$,#4,'#5=IFCX();'")


class Record:
    """`given` and `written` are the texts of all arguments."""

    __slots__ = ('number', 'name', 'given', 'written')

    def __init__(self, number, class_name, given, written):
        self.number = number
        self.name = class_name.upper()
        self.given = given
        self.written = written

    def given_text(self, rng):
        if rng.random() > 0.05:
            return f'#{self.number}={self.name}({self.given});'
        # The scanner drops underscores.
        name = self.name[:5] + '__' + self.name[5:]
        return (f'#{self.number}{gap()}={gap()} _{name}{gap()}({self.given} /* ; */){gap()};')

    def written_line(self):
        """The value class without a value has no last comma that could be taken back: its bracket
        goes."""
        bracket = '' if self.name == 'IFCNULLSTYLE' else '('
        return f'#{self.number}={self.name}{bracket}{self.written});'


def record_of(number, class_name, fields, given_count=None, surplus=''):
    """The file gives the first `given_count` of all attributes of the class."""
    given = ','.join([gap() + field.given for field in fields[:given_count]])
    written = ','.join([field.written for field in fields])
    return Record(number, class_name, given + surplus, written)


class Numbers:
    """Record numbers in no order, with gaps, up to the largest; none is given out twice."""

    def __init__(self, rng, count):
        # At multiples of 500,000 the engine looks at the disk, which is none of our business.
        dense = [n for n in range(1, count * 3 + 100) if n % 500000 != 0]
        high = list(range(LARGEST_NUMBER - 200, LARGEST_NUMBER + 1))
        self._free = rng.sample(dense, count + 20) + rng.sample(high[:-1], 50)
        rng.shuffle(self._free)
        self.dangling = [self._free.pop() for _ in range(20)] + [LARGEST_NUMBER - 1000]
        self._free.append(LARGEST_NUMBER)

    def take(self):
        return self._free.pop()


class Maker:
    """What the kinds need to make a field: chance, the numbers of the records, typed values.

    `record_count` is the most records that will be made.
    """

    def __init__(self, kinds, rng, record_count):
        self.kinds = kinds
        self.rng = rng
        self.numbers = Numbers(rng, record_count)
        self._numbers_of = {name: [] for name in kinds.release.classes}
        self._one_of = {}
        self._depth = 0
        self._current = None

    def allot(self, class_name):
        """A number for a record of the class, which may be referred to before it is made."""
        number = self.numbers.take()
        self._numbers_of[class_name].append(number)
        return number

    # --- For the kinds ---------------------------------------------------------------------------

    def pick(self, class_names):
        return self.rng.choice(class_names)

    def reference(self, class_name):
        number = self.rng.choice(self._numbers_of[class_name])
        if self._current is not None and self._current[1] == class_name:
            number = self._current[0]  # to itself
        text = f'#{number}'
        return Field(text, text)

    def can_stand_inline(self, class_name):
        """A class without a value loses its bracket when it is written inside another record."""
        attributes = self.kinds.of_class[class_name]
        return bool(attributes) and not isinstance(attributes[0].kind, Nothing)

    def inline(self, class_name):
        """`IFCLABEL('x')`; now and then in a bracket of its own, which is not written back."""
        if not self.can_stand_inline(class_name) or self._depth == DEEPEST_INLINE:
            return self.reference(class_name)
        self._depth += 1
        fields, given_count = self.random_fields(class_name)
        self._depth -= 1
        field = inline_field(class_name, fields, given_count)
        if self.rng.random() < 0.2:
            field.given = f'({gap()}{field.given})'
        return field

    def one_of(self, class_name):
        """A reference to an object of the class and a typed value of it, the same ones each time;
        two references for a class that can't stand inline."""
        if class_name not in self._one_of:
            reference = self.reference(class_name)
            inline = reference
            if self.can_stand_inline(class_name):
                inline = inline_field(class_name, self.sparse_fields(class_name))
            self._one_of[class_name] = reference, inline
        return self._one_of[class_name]

    def dropped(self, admitted):
        """What a reference to one of `admitted` can't be; it reads as null without a word."""
        kind = self.rng.randrange(5)
        if kind == 0:
            return Field(self.rng.choice(('$', '*', '()', '( )')), '')
        if kind == 1:
            return Field(f'#{self.rng.choice(self.numbers.dangling)}', '')
        refused = self.rng.choice(self.kinds.release.classes)
        if refused in admitted:
            return Field('$', '')
        field = self.reference(refused) if kind == 2 else self.inline(refused)
        return Field(field.given, '')

    # --- Records ---------------------------------------------------------------------------------

    def least_given(self, class_name):
        """How many arguments a record of the class can't do without."""
        attributes = self.kinds.of_class[class_name]
        needed = [i for i, attribute in enumerate(attributes) if attribute.absent is None]
        return needed[-1] + 1 if needed else 0

    def random_fields(self, class_name):
        """Random attributes, and how many of them the file gives: mostly all."""
        attributes = self.kinds.of_class[class_name]
        given_count = len(attributes)
        if self.rng.random() < 0.2:
            given_count = self.rng.randint(self.least_given(class_name), given_count)
        fields = [self._random_field(attribute) if i < given_count else
                  attribute.absent_field(self.rng) for i, attribute in enumerate(attributes)]
        return fields, given_count

    def _random_field(self, attribute):
        if isinstance(attribute.kind, Nothing):
            return Field(self.rng.choice(('.NULL.', '', "'x'")), '')
        if attribute.absent is not None and self.rng.random() < 0.15:
            return attribute.absent_field(self.rng)
        return attribute.random(self)

    def random_record(self, number, class_name):
        self._current = (number, class_name) if self.rng.random() < 0.5 else None
        fields, given_count = self.random_fields(class_name)
        self._current = None
        surplus = ''
        if given_count == len(fields) and self.rng.random() < 0.2:
            surplus = self.rng.choice(SURPLUS)
        return record_of(number, class_name, fields, given_count, surplus)

    def sparse_fields(self, class_name):
        """Every attribute absent that can be, and the others as they come."""
        return [attribute.random(self) if attribute.absent is None else
                attribute.absent_field(self.rng) for attribute in self.kinds.of_class[class_name]]


def inline_field(class_name, fields, given_count=None):
    name = class_name.upper()
    given = ','.join([gap() + field.given for field in fields[:given_count]])
    return Field(f'{name}({given})', f'{name}({",".join([field.written for field in fields])})')


# --- Whole models --------------------------------------------------------------------------------

def records_of_every_class(maker, per_class=4):
    """Random records; besides one of absent attributes and one of no more than is needed."""
    allotted = [(maker.allot(name), name) for name in maker.kinds.release.classes
                for _ in range(per_class)]
    for number, name in allotted:
        yield maker.random_record(number, name)
    for name in maker.kinds.release.classes:
        yield record_of(maker.allot(name), name, maker.sparse_fields(name))
        yield record_of(maker.allot(name), name, maker.sparse_fields(name),
                        maker.least_given(name))


def records_of_every_spelling(maker):
    """Each attribute where it is declared, in every spelling of its kind."""
    for name, index, attribute in maker.kinds.declared():
        for field in spellings(maker, name, attribute):
            fields = maker.sparse_fields(name)
            fields[index] = field
            yield record_of(maker.allot(name), name, fields)


def spellings(maker, class_name, attribute):
    """All of them for defined types and lists, and for enumerations everywhere. The numbers and
    texts of entities are read by the same readers: a few of their many spellings will do."""
    kind = attribute.kind
    if isinstance(kind, Nothing):
        return []
    if isinstance(kind, Text) and class_name != 'IfcLabel':
        return [attribute.random(maker) for _ in range(4)]
    every = attribute.every(maker)
    if isinstance(kind, Scalar) and class_name in maker.kinds.own:
        return maker.rng.sample(every, 12)
    return every


def lists_of_all_classes(maker):
    """For each list of references one that names a record of every class: those stay that the
    attribute admits. And one with a typed value of every class."""
    classes = maker.kinds.release.classes
    for name, index, attribute in maker.kinds.declared():
        kind = attribute.kind
        if not isinstance(kind, List) or not isinstance(kind.member, Reference):
            continue
        for form in range(2):
            given = [maker.one_of(other)[form].given for other in classes]
            written = [maker.one_of(other)[form].written for other in kind.member.admitted]
            fields = maker.sparse_fields(name)
            fields[index] = Field('(' + ','.join(given) + ')', '(' + ','.join(written) + ')')
            yield record_of(maker.allot(name), name, fields)


def references_to_all_classes(maker):
    """The same for single references: every class once for each class or select that some
    attribute refers to, and for the other attributes of that type a few classes."""
    release = maker.kinds.release
    seen = set()
    for name, index, attribute in maker.kinds.declared():
        kind = attribute.kind
        if not isinstance(kind, Reference):
            continue
        tried = release.classes
        if kind.target in seen:
            tried = maker.rng.sample(tried, 12) + maker.rng.choices(kind.admitted, k=6)
        seen.add(kind.target)
        # These records differ in one argument; the others are made once.
        fields = maker.sparse_fields(name)
        fields[index] = Field('\0', '\0')
        frame = record_of(0, name, fields)
        given_before, given_behind = frame.given.split('\0')
        before, behind = frame.written.split('\0')
        admitted = set(kind.admitted)
        for other in tried:
            for field in maker.one_of(other)[:2 if other in release.value_classes else 1]:
                written = field.written if other in admitted else attribute.absent
                yield Record(maker.allot(name), name, given_before + field.given + given_behind,
                             before + written + behind)
