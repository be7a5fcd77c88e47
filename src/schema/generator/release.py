"""Puts the files of one release together."""

from .emit_attributes import attribute_tables
from .emit_bodies import (class_test, creator_declaration, entity_functions, interface_functions,
                          value_functions)
from .emit_classes import entity_class, select_classes, value_class
from .emit_tables import enumeration_declarations, enumeration_tables, registry
from .kinds import class_test_targets, used_enumerations
from .layout import Layout, Shards
from .model import SchemaError
from .output import header, source_file


# The classes are of no standard layout, since their root is a virtual base. Their members belong to
# a chain of plain bases that begins where the object does, so that their places are constants.
OFFSETS_ARE_MEANT = ['#ifdef __GNUC__', '#pragma GCC diagnostic ignored "-Winvalid-offsetof"',
                     '#endif', '']


def refuse_name_clashes(schema):
    """A flag must not meet an attribute: `Foo` optional beside a `FooPresent`."""
    for entity in schema.entities.values():
        names = []
        for attribute in entity.attributes:
            names += [attribute.name] + ([attribute.name + 'Present'] if attribute.optional else [])
        for name in names:
            if names.count(name) > 1:
                raise SchemaError(f'{schema.namespace} {entity.name}: two members named {name}')


class Release:
    """`bindings` gives, for a class name, the interfaces that the class implements."""

    def __init__(self, schema, bindings, shard_count, source):
        refuse_name_clashes(schema)
        for name in bindings:
            if name not in schema.entities:
                raise SchemaError(f'{schema.namespace}: interfaces are bound to {name}, '
                                  'which is no entity')
        self.schema = schema
        self.bindings = bindings
        self.source = source
        self.folder = schema.namespace
        self.layout = Layout(schema)
        self.shards = Shards(schema, shard_count)
        self.values = schema.value_types()
        self.enumerations = used_enumerations(schema)
        self.targets = class_test_targets(schema)

    def files(self):
        """File name -> text."""
        files = {
            'selects.h': self.header([], select_classes(self.schema)),
            'values.h': self.values_header(),
            'classes_common.h': self.classes_header(
                self.shards.common, ['selects.h', 'schema/interfaces/interfaces.h']),
            'classes.h': self.header(
                [self.inside(name) for name in self.class_headers() + ['values.h']], []),
            'enums.h': self.header(['step/enum_table.h'],
                                   enumeration_declarations(self.enumerations)),
            'enums.cpp': self.source_file([self.inside('enums.h')],
                                          enumeration_tables(self.schema, self.enumerations)),
            'class_tests.h': self.header(
                ['core/entity_cast.h'],
                [f'extern corvel::ClassTest is{name};' for name in self.targets]),
            'creators.h': self.header(
                ['core/entity.h', 'core/memory_pool.h'],
                [creator_declaration(name) for name in self.class_names()]),
            'types.cpp': self.types_source(),
            'registry.cpp': self.registry_source(),
            'interfaces.cpp': self.interfaces_source(),
            'attributes.cpp': self.attributes_source(),
        }
        for part in range(self.shards.count):
            files[f'classes_{part:02}.h'] = self.classes_header(
                self.shards.own_declarations(part), ['classes_common.h'])
            files[f'entities_{part:02}.cpp'] = self.entities_source(part)
        return files

    def class_names(self):
        return sorted(list(self.schema.entities) + self.values)

    def class_headers(self):
        return [f'classes_{part:02}.h' for part in range(self.shards.count)]

    def inside(self, name):
        """A file of this release, as others include it."""
        return name if '/' in name else f'{self.folder}/{name}'

    def header(self, includes, body):
        return header(self.source, self.schema.namespace, includes, body)

    def source_file(self, includes, body):
        return source_file(self.source, self.schema.namespace, includes, body)

    def values_header(self):
        body = [line for name in self.values for line in value_class(self.schema, name)]
        return self.header(['schema/generated_class.h', self.inside('selects.h')], body[:-1])

    def classes_header(self, names, includes):
        body = []
        for name in names:
            body += entity_class(self.schema, self.layout, self.schema.entities[name],
                                 self.bindings.get(name, []))
        return self.header(['schema/generated_class.h'] + [self.inside(name) for name in includes],
                           body[:-1])

    def body_includes(self):
        return [self.inside('class_tests.h'), self.inside('creators.h'), self.inside('enums.h'),
                'schema/generated_support.h']

    def entities_source(self, part):
        names = self.shards.parts[part]
        body = [class_test(self.schema, name) for name in names if name in self.targets]
        for name in names:
            body += [''] + entity_functions(self.schema, self.schema.entities[name])
        return self.source_file([self.inside(f'classes_{part:02}.h')] + self.body_includes(), body)

    def types_source(self):
        """The values, and the tests of all targets that are no entities."""
        body = [class_test(self.schema, name) for name in self.targets
                if name not in self.schema.entities]
        for name in self.values:
            body += [''] + value_functions(self.schema, name)
        includes = [self.inside('values.h')] + self.body_includes()
        return self.source_file(includes + ['schema/interfaces/interfaces.h'], body)

    def registry_source(self):
        body = ['extern const corvel::ReleaseClasses kClasses;',
                'extern const corvel::FactoryTable kFactories;'] + registry(self.class_names())
        return self.source_file([self.inside('creators.h'), 'step/factories.h'], body)

    def attributes_source(self):
        body = ['extern const corvel::ReleaseClasses kClasses;', '']
        body += OFFSETS_ARE_MEANT + attribute_tables(self.schema)
        includes = [self.inside('classes.h'), self.inside('class_tests.h'), self.inside('enums.h'),
                    '<cstddef>', '<typeinfo>', 'step/class_facts.h']
        return self.source_file(includes, body)

    def interfaces_source(self):
        body = []
        for name in sorted(self.bindings):
            body += interface_functions(name, self.bindings[name])
        includes = [self.inside('classes.h'), self.inside('enums.h'),
                    'schema/interfaces/implement.h']
        return self.source_file(includes, body)
