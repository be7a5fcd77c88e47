"""Changes of models that are made on purpose, and what a comparison has to tell of each."""

import re

DIGITS = '0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_$'
_RECORD = re.compile(r"#(\d+)\s*=\s*(\w+)\s*\(((?:[^;']|'(?:[^']|'')*')*)\)\s*;")
_PIECE = re.compile(r"'(?:[^']|'')*'|[(),]|[^(),'\s]+")
_PLAIN = re.compile(r"'[A-Za-z0-9 ]+'$")
NO_OBJECTS = re.compile(r'IFCREL|IFCPROPERTYSET|IFCELEMENTQUANTITY')


def arguments_of(text):
    """The arguments of a record or a list, as they are written."""
    found, depth = [''], 0
    for piece in _PIECE.findall(text):
        depth += {'(': 1, ')': -1}.get(piece, 0)
        if piece == ',' and depth == 0:
            found.append('')
        else:
            found[-1] += piece
    return found


def numbers_in(text):
    """What the text refers to, in order."""
    return [int(number) for number in re.findall(r'#(\d+)', re.sub(r"'(?:[^']|'')*'", '', text))]


class Text:
    """A model as records that can be changed: number -> [class, arguments]."""

    def __init__(self, path):
        with open(path, encoding='latin-1', newline='') as file:
            text = file.read()
        self.head, data = text.split('DATA;', 1)
        data, self.tail = data.rsplit('ENDSEC;', 1)
        self.records = {int(number): [name, arguments_of(held)]
                        for number, name, held in _RECORD.findall(data)}

        self.history = next((f'#{at}' for at in self.of_class('IFCOWNERHISTORY')), '$')
        self.metres = self._metres()

    def _metres(self):
        """Of a unit of length."""
        assignment, = self.of_class('IFCUNITASSIGNMENT')
        for number in numbers_in(self.records[assignment][1][0]):
            name, arguments = self.records[number]
            if name == 'IFCSIUNIT' and arguments[1] == '.LENGTHUNIT.':
                return {'$': 1.0, '.MILLI.': 1e-3, '.CENTI.': 1e-2}[arguments[2]]
            if name == 'IFCCONVERSIONBASEDUNIT' and arguments[2] == "'FOOT'":
                return 0.3048
        raise AssertionError('no unit of length')

    def of_class(self, *names):
        return [number for number, (name, _) in self.records.items() if name in names]

    def relations(self, name, related):
        """Those of a class that name this object, in order of number."""
        return [number for number in self.of_class(name)
                if related in numbers_in(','.join(self.records[number][1]))]

    def guid(self, number):
        return self.records[number][1][0].strip("'")

    def add(self, name, *arguments):
        number = max(self.records) + 1
        self.records[number] = [name, list(arguments)]
        return number

    def written(self, chance=None):
        """The bytes; with a chance, under other numbers, in another order, and with new GUIDs of
        relations and sets of properties."""
        order = list(self.records)
        new = {number: number for number in order}
        if chance:
            shuffled = list(range(1, len(order) + 1))
            chance.shuffle(shuffled)
            new = dict(zip(order, shuffled))
            chance.shuffle(order)

        def renumbered(text):
            pieces = re.split(r"('(?:[^']|'')*')", text)
            return ''.join(piece if piece.startswith("'") else re.sub(
                r'#(\d+)', lambda found: f'#{new[int(found.group(1))]}', piece)
                           for piece in pieces)

        lines = []
        for number in order:
            name, arguments = self.records[number]
            if chance and NO_OBJECTS.match(name):
                guid = '0' + ''.join(chance.choice(DIGITS) for _ in range(21))
                arguments = [f"'{guid}'", *arguments[1:]]
            lines.append(f'#{new[number]}={name}({renumbered(",".join(arguments))});\n')
        return (self.head + 'DATA;\n' + ''.join(lines) + 'ENDSEC;' + self.tail).encode('latin-1')


class Expected:
    """What is to be told: GUID -> set of (path, before, after), and what came, went or moved."""

    def __init__(self):
        self.changed = {}
        self.moved = {}
        self.removed, self.added, self.renamed = set(), set(), {}

    def change(self, guid, path, before, after):
        self.changed.setdefault(guid, set()).add((path, before, after))


# Changes of one object each: they get the model, the object, what is expected, and a source of
# chances, and give False where the object has nothing of the kind. ---------------------------------

NAME, DESCRIPTION, OBJECT_TYPE, PLACEMENT = 2, 3, 4, 5


def another_name(text, number, expected, _):
    arguments = text.records[number][1]
    if not _PLAIN.match(arguments[NAME]):
        return False
    expected.change(text.guid(number), 'Name', arguments[NAME], "'Renamed'")
    arguments[NAME] = "'Renamed'"
    return True


def a_description(text, number, expected, _):
    """Present where there was none, or absent where there was one."""
    arguments = text.records[number][1]
    if arguments[DESCRIPTION] not in ('$', "''"):
        return False
    was = None if arguments[DESCRIPTION] == '$' else "''"
    arguments[DESCRIPTION] = "'It''s new'"
    expected.change(text.guid(number), 'Description', was, "'It's new'")
    return True


def no_object_type(text, number, expected, _):
    arguments = text.records[number][1]
    if not _PLAIN.match(arguments[OBJECT_TYPE]):
        return False
    expected.change(text.guid(number), 'ObjectType', arguments[OBJECT_TYPE], None)
    arguments[OBJECT_TYPE] = '$'
    return True


def another_guid(text, number, expected, chance):
    new = '0' + ''.join(chance.choice(DIGITS) for _ in range(21))
    expected.renamed[text.guid(number)] = new
    text.records[number][1][0] = f"'{new}'"
    return True


def another_class(text, number, expected, _):
    """One of two classes with the same attributes."""
    other = {'IFCBEAM': 'IFCCOLUMN', 'IFCCOLUMN': 'IFCBEAM', 'IFCSLAB': 'IFCROOF',
             'IFCWALLSTANDARDCASE': 'IFCWALL'}.get(text.records[number][0])
    names = {'IFCWALLSTANDARDCASE': 'IfcWallStandardCase', 'IFCWALL': 'IfcWall',
             'IFCBEAM': 'IfcBeam', 'IFCCOLUMN': 'IfcColumn'}
    if other not in names:
        return False
    expected.change(text.guid(number), 'class', names[text.records[number][0]], names[other])
    text.records[number][0] = other
    return True


def moved(text, number, expected, _):
    """By half a unit along its own x axis, with all that stands on it."""
    by = 0.5 * text.metres
    placement, = numbers_in(text.records[number][1][PLACEMENT]) or [None]
    if placement is None:
        return False
    standing = {placement}
    while True:
        more = {at for at in text.of_class('IFCLOCALPLACEMENT')
                if set(numbers_in(text.records[at][1][0])) & standing} - standing
        if not more:
            break
        standing |= more
    along = text.add('IFCCARTESIANPOINT', '(0.5,0.,0.)')
    inner = text.add('IFCAXIS2PLACEMENT3D', f'#{along}', '$', '$')
    # A placement between this one and what it stands on would turn the move: it goes inside.
    outer = text.add('IFCLOCALPLACEMENT', *text.records[placement][1])
    text.records[placement][1] = [f'#{outer}', f'#{inner}']
    for other, (_, arguments) in text.records.items():
        if len(arguments) > PLACEMENT and set(numbers_in(arguments[PLACEMENT])) & standing:
            if arguments[PLACEMENT].startswith('#') and arguments[0].startswith("'"):
                expected.moved[text.guid(other)] = expected.moved.get(text.guid(other), 0) + by
    return True


def sets_of(text, number, holder, held):
    """(set, its name) that only this object has by relations."""
    for relation in text.relations(holder, number):
        arguments = text.records[relation][1]
        target = numbers_in(arguments[5])[0]
        alone = numbers_in(arguments[4]) == [number]
        shared = sum(f'#{target}' in arguments for _, arguments in text.records.values())
        if alone and shared == 1 and text.records[target][0] == held:
            yield target, text.records[target][1][NAME].strip("'")


def another_property(text, number, expected, _):
    for target, name in sets_of(text, number, 'IFCRELDEFINESBYPROPERTIES', 'IFCPROPERTYSET'):
        for at in numbers_in(text.records[target][1][-1]):
            kind, arguments = text.records[at]
            told = {'IFCBOOLEAN(.T.)': ('true', 'IFCBOOLEAN(.F.)', 'false'),
                    'IFCBOOLEAN(.F.)': ('false', 'IFCBOOLEAN(.T.)', 'true')}.get(arguments[2])
            if kind != 'IFCPROPERTYSINGLEVALUE' or told is None:
                continue
            was, arguments[2], becomes = told
            path = f"{name}.{arguments[0][1:-1]}"
            expected.change(text.guid(number), path, was, becomes)
            return True
    return False


def a_new_property(text, number, expected, _):
    for target, name in sets_of(text, number, 'IFCRELDEFINESBYPROPERTIES', 'IFCPROPERTYSET'):
        new = text.add('IFCPROPERTYSINGLEVALUE', "'Grade'", '$', "IFCLABEL('II')", '$')
        held = text.records[target][1]
        held[-1] = held[-1][:-1] + f',#{new})'
        expected.change(text.guid(number), f'{name}.Grade', None, "'II'")
        return True
    return False


def another_type_of_value(text, number, expected, _):
    for target, name in sets_of(text, number, 'IFCRELDEFINESBYPROPERTIES', 'IFCPROPERTYSET'):
        for at in numbers_in(text.records[target][1][-1]):
            arguments = text.records[at][1]
            found = re.match(r"IFCLABEL\(('[A-Za-z0-9 ]+')\)$", arguments[2])
            if not found:
                continue
            arguments[2] = f'IFCTEXT({found.group(1)})'
            expected.change(text.guid(number), f'{name}.{arguments[0][1:-1]}',
                            f'IfcLabel {found.group(1)}', f'IfcText {found.group(1)}')
            return True
    return False


def another_quantity(text, number, expected, _):
    for target, name in sets_of(text, number, 'IFCRELDEFINESBYPROPERTIES', 'IFCELEMENTQUANTITY'):
        for at in numbers_in(text.records[target][1][-1]):
            kind, arguments = text.records[at]
            if kind != 'IFCQUANTITYLENGTH' or not re.match(r'[0-9]+\.[0-9]*$', arguments[3]):
                continue
            expected.change(text.guid(number), f'{name}.{arguments[0][1:-1]}',
                            *(f'{float(value) * text.metres:.12g} m'
                              for value in (arguments[3], '1234.5')))
            arguments[3] = '1234.5'
            return True
    return False


def without_material(text, number, expected, _):
    for relation in text.relations('IFCRELASSOCIATESMATERIAL', number):
        arguments = text.records[relation][1]
        members = numbers_in(arguments[4])
        if number not in members:
            continue
        if len(members) == 1:
            del text.records[relation]
        else:
            arguments[4] = '(' + ','.join(f'#{at}' for at in members if at != number) + ')'
        expected.change(text.guid(number), 'material', ANY, None)
        return True
    return False


def another_material(text, number, expected, _):
    has_list = any(f'#{at}' in text.records[relation][1]
                   for relation in text.relations('IFCRELASSOCIATESMATERIAL', number)
                   for at in text.of_class('IFCMATERIALLIST'))
    if has_list or not without_material(text, number, Expected(), None):
        return False
    material = text.add('IFCMATERIALLIST', f"(#{text.of_class('IFCMATERIAL')[0]})")
    text.add('IFCRELASSOCIATESMATERIAL', "'0000000000000000000002'", text.history, '$', '$',
             f'(#{number})', f'#{material}')
    expected.change(text.guid(number), 'material', ANY, 'IfcMaterialList')
    return True


def classified(text, number, expected, _):
    """A relation that there was none of."""
    count = {'IFC2': 4, 'IFC4': 6}[re.search(r"FILE_SCHEMA\(\('(IFC\d)", text.head).group(1)]
    reference = text.add('IFCCLASSIFICATIONREFERENCE', '$', "'21.1'", "'Walls'",
                         *['$'] * (count - 3))
    text.add('IFCRELASSOCIATESCLASSIFICATION', "'0000000000000000000000'", text.history, '$', '$',
             f'(#{number})', f'#{reference}')
    expected.change(text.guid(number), 'classification', None, "IfcClassificationReference 'Walls'")
    return True


def in_another_storey(text, number, expected, _):
    relations = text.of_class('IFCRELCONTAINEDINSPATIALSTRUCTURE')
    storeys = {numbers_in(text.records[at][1][5])[0]: at for at in relations}
    for storey, relation in storeys.items():
        arguments = text.records[relation][1]
        members = numbers_in(arguments[4])
        others = [at for at in storeys if at != storey]
        if number not in members or len(members) == 1 or not others:
            continue
        arguments[4] = '(' + ','.join(f'#{at}' for at in members if at != number) + ')'
        there = text.records[storeys[others[0]]][1]
        there[4] = there[4][:-1] + f',#{number})'
        expected.change(text.guid(number), 'contained in', ANY, ANY)
        return True
    return False


def of_another_type(text, number, expected, _):
    for relation in text.relations('IFCRELDEFINESBYTYPE', number):
        arguments = text.records[relation][1]
        kind = text.records[numbers_in(arguments[5])[0]][0]
        others = [at for at in text.of_class(kind) if f'#{at}' != arguments[5]]
        if number not in numbers_in(arguments[4]):
            continue
        members = [at for at in numbers_in(arguments[4]) if at != number]
        if members:
            arguments[4] = '(' + ','.join(f'#{at}' for at in members) + ')'
        else:
            del text.records[relation]
        if others:
            text.add('IFCRELDEFINESBYTYPE', "'0000000000000000000001'", arguments[1], '$', '$',
                     f'(#{number})', f'#{others[0]}')
        expected.change(text.guid(number), 'type', ANY, ANY if others else None)
        return True
    return False


ANY = '(any)'
CHANGES = (another_name, a_description, no_object_type, another_guid, another_class, moved,
           another_property, a_new_property, another_type_of_value, another_quantity,
           without_material, another_material, classified, in_another_storey, of_another_type)
