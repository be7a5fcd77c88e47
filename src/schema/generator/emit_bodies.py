"""The functions of the classes."""

import re

from .kinds import attribute_kind, lives_on, value_kind
from .statements import collect_statement, read_statement, write_statement


def function(head, statements):
    return [head + ' {'] + ['  ' + statement for statement in statements if statement] + ['}']


def fixed_functions(name):
    return [f'const char16_t* {name}::getClassName() const {{ return u"{name}"; }}']


def creator(name):
    return [f'IFC::IfcEntity* New{name}(corvel::MemoryPool& pool) {{ return pool.New<{name}>(); }}']


def creator_declaration(name):
    return f'IFC::IfcEntity* New{name}(corvel::MemoryPool& pool);'


def class_test(schema, name):
    scope = 'IFC::' if name in schema.shared else ''
    return f'corvel::ClassTest is{name}(corvel::IsOfClass<{scope}{name}>);'


def slots(name, supertype, members):
    """collectChildren, read and write of `members`, a list of (kind, name, optional): whichever has
    something to do, the supertype's first."""
    parts = (('void {}::collectChildren(IFC::ChildQueue& queue) const', 'collectChildren(queue)',
              collect_statement),
             ('void {}::read(corvel::Parser& parser)', 'read(parser)', read_statement),
             ('void {}::write(corvel::StepWriter& writer) const', 'write(writer)', write_statement))
    lines = []
    for head, call, statement_of in parts:
        statements = [statement for member in members if (statement := statement_of(*member))]
        if statements:
            first = [f'{supertype}::{call};'] if supertype else []
            lines += function(head.format(name), first + statements)
    return lines


def entity_functions(schema, entity):
    members = [(attribute_kind(schema, entity, attribute), attribute.name, attribute.optional)
               for attribute in entity.attributes]
    lines = fixed_functions(entity.name) + slots(entity.name, entity.supertype, members)
    if needed := lives_on(schema, entity):
        lines += function(f'bool {entity.name}::hasNoLiveMembers() const',
                          [f'return corvel::NoneIsLive({needed.name});'])
    return lines + creator(entity.name)


def value_functions(schema, name):
    kind = value_kind(schema, name)
    members = [] if kind.scalar == 'nothing' else [(kind, 'value', False)]
    return fixed_functions(name) + slots(name, None, members) + creator(name)


def interface_functions(name, bindings):
    """Forwarders from the operations of the interfaces to their bodies."""
    lines = []
    for binding in bindings:
        for method in binding.methods:
            head = re.sub(r'(\w+)\(', name + r'::\1(', method.declaration, count=1)
            lines += function(head, [method.call])
    return lines
