"""The statements that read, write and walk one member of a class."""

# How the functions of the readers and the writer name a scalar, and a list around it.
READER = {'reference': 'EntityRef', 'real': 'Real', 'count': 'Real', 'integer': 'Integer',
          'binary': 'Binary', 'text': 'String', 'guid': 'Guid', 'boolean': 'Boolean',
          'logical': 'Logical', 'enumeration': 'Enum'}
SCALAR_WRITER = dict(READER, count='Count', text='Text', binary='BinaryValue')
LISTS = {0: '', 1: 'List', 2: 'Lists'}


def read_statement(kind, name, optional):
    reader, more = READER[kind.scalar] + LISTS[kind.depth], ''
    if kind.scalar == 'reference':
        more = f', is{kind.target}'
    elif kind.scalar == 'enumeration':
        more = f', k{kind.target}'
    if optional:
        return f'corvel::ReadOptional{reader}(parser{more}, {name}, {name}Present);'
    # A reference may be bound once its record has been read, so the reader is told its place.
    if kind.depth or kind.scalar == 'reference':
        return f'corvel::Read{reader}(parser{more}, {name});'
    if kind.scalar in ('boolean', 'logical') and not kind.plain:
        reader += 'Value'
    return f'{name} = corvel::Read{reader}(parser{more});'


def write_statement(kind, name, optional):
    names = READER if kind.depth else SCALAR_WRITER
    writer = names[kind.scalar] + LISTS[kind.depth]
    table = f'k{kind.target}, ' if kind.scalar == 'enumeration' else ''
    if optional:
        return f'corvel::WriteOptional{writer}(writer, {table}{name}, {name}Present);'
    return f'writer.Write{writer}({table}{name});'


def collect_statement(kind, name, optional):
    """None for what holds no reference."""
    if kind.scalar != 'reference':
        return None
    form = {0: 'Reference', 1: 'List', 2: 'Lists'}[kind.depth]
    if kind.values_refer:
        form += 'ThroughValues'
    if optional:
        return f'corvel::CollectOptional{form}(queue, {name}, {name}Present);'
    return f'corvel::Collect{form}(queue, {name});'
