"""Equal objects found the slow way: each is spelt out whole and compared with each other one."""

import re

RECORD = re.compile(r'^#(\d+)=(\w+)\((.*)\);$', re.MULTILINE)
REFERENCE = re.compile(r"'(?:[^']|'')*'|#(\d+)")

# Of the classes in random_model. The rest has an identity of its own.
SHAREABLE = {'IFCCARTESIANPOINT', 'IFCPOLYLINE', 'IFCPOLYLOOP', 'IFCFACEOUTERBOUND', 'IFCFACE',
             'IFCCLOSEDSHELL', 'IFCFACETEDBREP', 'IFCSTYLEDITEM', 'IFCCOLOURRGB', 'IFCMATERIAL',
             'IFCMATERIALLAYER', 'IFCMATERIALLAYERSET', 'IFCPROPERTYSINGLEVALUE'}
# What holds nothing twice.
DISTINCT = {'IFCPOLYLOOP', 'IFCFACE', 'IFCCLOSEDSHELL', 'IFCPROPERTYSET', 'IFCSHAPEREPRESENTATION',
            'IFCPRESENTATIONLAYERASSIGNMENT', 'IFCSTYLEDITEM'}


def records_of(text):
    """Class and arguments by number."""
    return {int(number): (name, arguments) for number, name, arguments in RECORD.findall(text)}


def references_of(arguments):
    return [int(found.group(1)) for found in REFERENCE.finditer(arguments) if found.group(1)]


class PlainSharer:
    """Tells which objects of a model are written once."""

    def __init__(self, records):
        self.records = records
        self.pinned = set()
        owners = {}
        self.items = {}
        for number, (name, arguments) in records.items():
            for referred in references_of(arguments):
                if name == 'IFCMATERIALLAYERSET':
                    owners.setdefault(referred, []).append(number)
                if name == 'IFCSTYLEDITEM' and arguments.startswith(f'#{referred},'):
                    self.items.setdefault(referred, []).append(number)
                if name == 'IFCPRESENTATIONLAYERASSIGNMENT':
                    self.items.setdefault(referred, []).append(number)
        self.owners = owners
        for layer, sets in owners.items():
            if len(sets) > 1:
                self.pinned |= {layer, *sets}
        self.pinned |= self._twice_in_sets()

    def _twice_in_sets(self):
        """Of members of one set that say the same, all but the first."""
        contents = self._contents()
        pinned = set()
        for name, arguments in self.records.values():
            if name not in DISTINCT:
                continue
            first = {}
            for member in references_of(arguments):
                if contents.get(member) is not None:
                    if first.setdefault(contents[member], member) != member:
                        pinned.add(member)
        return pinned

    def _contents(self):
        known = {}
        for number, (name, _) in self.records.items():
            if name in SHAREABLE:
                self._content(number, known)
        return {number: content for number, content in known.items()
                if content != f'#{number}'}

    def _content(self, number, known):
        if number in known:
            return known[number]
        name, arguments = self.records[number]
        if name not in SHAREABLE or number in self.pinned:
            known[number] = f'#{number}'
            return known[number]
        text = name + self._spelt(arguments, known)
        if number in self.owners:
            text = 'owned ' + text
        says = {self._description(number, other, known) for other in self.items.get(number, ())}
        known[number] = f'[{text}{sorted(says)}]'
        return known[number]

    def _spelt(self, arguments, known):
        return REFERENCE.sub(
            lambda found: self._content(int(found.group(1)), known) if found.group(1)
            else found.group(), arguments)

    def _description(self, number, other, known):
        name, arguments = self.records[other]
        plain = name == 'IFCSTYLEDITEM' and other not in self.pinned and other not in self.items
        if not plain:
            return f'#{other}'
        return self._spelt(arguments.removeprefix(f'#{number}'), known)

    def count(self):
        """So many records stay."""
        contents = self._contents()
        groups = {}
        for number, content in contents.items():
            if number not in self.owners:
                groups.setdefault(content, []).append(number)
        gone = {number for group in groups.values() for number in group[1:]}
        # Members go with the set that they are of.
        gone |= {layer for layer, sets in self.owners.items() if set(sets) <= gone}
        return len(self.records) - len(gone)


def spelt_out(records):
    """What each object with a GUID says in the end, whoever says it for it."""
    ids = {}
    numbers = {}

    def id_of(number):
        if number not in numbers:
            name, arguments = records[number]
            text = name + REFERENCE.sub(
                lambda found: f'@{id_of(int(found.group(1)))}' if found.group(1)
                else found.group(), arguments)
            numbers[number] = ids.setdefault(text, text)
        return numbers[number]

    return [id_of(number) for number, (name, _) in sorted(records.items())
            if name not in SHAREABLE]


def random_model(random, size):
    """Records that say little, so that many say the same, in any order of their numbers."""
    records = []
    kinds = {}

    def some(kind):
        return f'#{random.choice(kinds[kind])}' if kinds.get(kind) else None

    def several(kind, least, most):
        members = [some(kind) for _ in range(random.randint(least, most))]
        return None if None in members else '(' + ','.join(dict.fromkeys(members)) + ')'

    makers = {
        'IFCCARTESIANPOINT': lambda: f'({random.randint(0, 2)}.,{random.randint(0, 1)}.)',
        'IFCCOLOURRGB': lambda: f'$,{random.randint(0, 1)}.,0.,0.',
        'IFCMATERIAL': lambda: f"'m{random.randint(0, 2)}',$,$",
        'IFCPROPERTYSINGLEVALUE': lambda: f"'p{random.randint(0, 3)}',$,IFCLABEL('#1'),$",
        'IFCPOLYLINE': lambda: several('IFCCARTESIANPOINT', 2, 3),
        'IFCPOLYLOOP': lambda: several('IFCCARTESIANPOINT', 3, 4),
        'IFCFACEOUTERBOUND': lambda: _join(some('IFCPOLYLOOP'), '.T.'),
        'IFCFACE': lambda: several('IFCFACEOUTERBOUND', 1, 2),
        'IFCCLOSEDSHELL': lambda: several('IFCFACE', 1, 3),
        'IFCFACETEDBREP': lambda: some('IFCCLOSEDSHELL'),
        'IFCMATERIALLAYER': lambda: _join(some('IFCMATERIAL'), '1.,$,$,$,$,$'),
        'IFCMATERIALLAYERSET': lambda: _join(several('IFCMATERIALLAYER', 1, 2), '$,$'),
        'IFCSTYLEDITEM': lambda: _join(
            some(random.choice(('IFCPOLYLINE', 'IFCFACETEDBREP', 'IFCPOLYLOOP'))),
            '()', f"'s{random.randint(0, 1)}'"),
        'IFCPROPERTYSET': lambda: _join(f"'{len(records)}',$,'s',$",
                                        several('IFCPROPERTYSINGLEVALUE', 1, 4)),
        'IFCSHAPEREPRESENTATION': lambda: _join("*,'Body','Brep'",
                                                several('IFCFACETEDBREP', 1, 2)),
        'IFCPRESENTATIONLAYERASSIGNMENT': lambda: _join(
            "'l',$", several('IFCPOLYLINE', 1, 2), '$'),
    }
    numbers = list(range(2, size + 2))
    random.shuffle(numbers)
    while numbers:
        name = random.choice(tuple(makers))
        if name == 'IFCPRESENTATIONLAYERASSIGNMENT' and random.random() < 0.8:
            continue
        arguments = makers[name]()
        if arguments is None:
            continue
        number = numbers.pop()
        kinds.setdefault(name, []).append(number)
        records.append((number, f'#{number}={name}({arguments});'))
    return [line for _, line in sorted(records)]


def _join(*arguments):
    return None if None in arguments else ','.join(arguments)
