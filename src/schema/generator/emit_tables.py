"""The tables: enumerations and the registry of class names."""

import os
import re

MASK_64 = (1 << 64) - 1


def enumeration_declarations(names):
    return [f'extern const corvel::EnumTable k{name};' for name in names]


def enumeration_tables(schema, names):
    lines = []
    for name in names:
        lines.append(f'static constexpr corvel::EnumRow k{name}Rows[] = {{')
        for value in schema.enumerations[name].values:
            flag = ', true' if value.read_only else ''
            lines.append(f'    {{".{value.name}.,", {value.number}{flag}}},')
        lines += ['};', f'const corvel::EnumTable k{name}{{u"{name}", k{name}Rows}};', '']
    return lines[:-1]


def hash_of_name(key):
    """corvel::HashOfName."""
    name = key.encode('ascii')
    if len(name) < 8:
        first, last = b'', name
    else:
        at = min(3, len(name) - 8)
        first, last = name[at:at + 8], name[-8:]
    multiplier = 0x9E3779B97F4A7C15
    mixed = (int.from_bytes(first, 'little') + len(name)) * multiplier & MASK_64
    mixed ^= mixed >> 32
    return ((mixed ^ int.from_bytes(last, 'little')) * multiplier & MASK_64) >> 32


def table_size(rows):
    """A power of two that `rows` rows fill to one half at most."""
    size = 1
    while size < 2 * rows:
        size *= 2
    return size


def laid_out(keys):
    """The keys in the slots of an open hash table with linear probing; None in a free slot."""
    slots = [None] * table_size(len(keys))
    for key in keys:
        at = hash_of_name(key) & (len(slots) - 1)
        while slots[at] is not None:
            at = (at + 1) & (len(slots) - 1)
        slots[at] = key
    return slots


def registry(class_names):
    names = {name.upper(): name for name in class_names}
    slots = laid_out(sorted(names))
    lines = [f'static constexpr corvel::FactoryRow kSlots[{len(slots)}] = {{']
    lines += ['    {},' if key is None else f'    {{"{key}", New{names[key]}}},' for key in slots]
    return lines + ['};', f'const corvel::FactoryTable kFactories{{kSlots, {len(slots) - 1}, '
                    f'{len(names)}, &kClasses}};']


def all_namespaces():
    path = os.path.join(os.path.dirname(__file__), '..', '..', 'step', 'releases.inc')
    with open(path, encoding='ascii') as file:
        return tuple(re.findall(r'^CORVEL_RELEASE\((\w+)\)$', file.read(), re.MULTILINE))


ALL_NAMESPACES = all_namespaces()


def schema_registry(namespaces):
    """The body of schema_registry.cpp for the releases of one build."""
    lines = [f'namespace {name} {{ extern const corvel::FactoryTable kFactories; }}'
             for name in namespaces]
    lines += ['', 'namespace corvel {', '',
              'const FactoryTable& FactoriesOf(SchemaNamespace schema) {', '  switch (schema) {']
    for name in ALL_NAMESPACES:
        lines.append(f'    case SchemaNamespace::{name}:')
        lines.append(f'      return {name}::kFactories;' if name in namespaces
                     else f'      throw std::logic_error("{name} is left out of this build");')
    lines += ['  }', '  throw std::logic_error("no such schema namespace");', '}', '',
              'std::span<const FactoryTable* const> BuiltFactories() {',
              '  static constexpr const FactoryTable* kBuilt[] = {']
    lines += [f'      &{name}::kFactories,' for name in ALL_NAMESPACES if name in namespaces]
    lines += ['  };', '  return kBuilt;', '}', '',
              'std::string_view NameOf(SchemaNamespace schema) {', '  switch (schema) {']
    for name in ALL_NAMESPACES:
        lines += [f'    case SchemaNamespace::{name}:', f'      return "{name}";']
    lines += ['  }', '  throw std::logic_error("no such schema namespace");', '}', '',
              '}  // namespace corvel']
    return lines
