"""The declarations: selects, values, entities."""

from .kinds import attribute_kind, lives_on, value_kind


def select_class(schema, name):
    bases = ', '.join(f'public {above}' for above in visible_selects(schema, name))
    return f'class {name}' + (f' : {bases}' if bases else '') + ' {};'


def visible_selects(schema, name):
    """The selects of the release that admit `name` itself: direct bases of its class."""
    return [select for select in schema.selects_admitting(name) if select not in schema.shared]


def select_classes(schema):
    """Empty classes, each behind those that it derives from. An empty base costs an object nothing,
    and dynamic_cast finds it all the same."""
    done, lines = set(), []

    def declare(name):
        if name in done:
            return
        done.add(name)
        for above in visible_selects(schema, name):
            declare(above)
        lines.append(select_class(schema, name))

    for name in sorted(schema.selects):
        if name not in schema.shared:
            declare(name)
    return lines


def class_head(name, bases):
    """`class X : public A, public B {`, broken where it gets long."""
    line = f'class {name} : ' + ', '.join(bases) + ' {'
    if len(line) <= 100:
        return [line]
    lines = [f'class {name}']
    for i, base in enumerate(bases):
        begin, end = '    : ' if i == 0 else '      ', ',' if i + 1 < len(bases) else ' {'
        lines.append(begin + base + end)
    return lines


def constructor(name):
    return [' public:', f'  CORVEL_CONSTRUCTOR {name}() noexcept {{}}']


def value_class(schema, name):
    kind = value_kind(schema, name)
    bases = ['public virtual IFC::IfcSimpleType']
    bases += [f'public {select}' for select in visible_selects(schema, name)]
    lines = class_head(name, bases) + constructor(name)
    if kind.depth:
        lines.append(f'  {kind.member_type()} value;')
    elif kind.scalar != 'nothing':
        lines.append(f'  {kind.member_type()} value = {kind.default};')
    lines.append('  const char16_t* getClassName() const override;')
    if kind.scalar == 'reference':
        lines.append('  void collectChildren(IFC::ChildQueue& queue) const override;')
    if kind.scalar != 'nothing':
        lines += ['  void read(corvel::Parser& parser) override;',
                  '  void write(corvel::StepWriter& writer) const override;']
    return lines + ['};', '']


def entity_bases(schema, entity, bindings):
    bases = [f'public {entity.supertype}' if entity.supertype
             else 'public virtual IFC::IfcComplexType']
    bases += [f'public {select}' for select in visible_selects(schema, entity.name)]
    return bases + [f'public virtual {binding.interface}' for binding in bindings]


def entity_class(schema, layout, entity, bindings):
    lines = class_head(entity.name, entity_bases(schema, entity, bindings))
    lines += constructor(entity.name)
    for member in layout.orders[entity.name]:
        default = f' = {member.default}' if member.default else ''
        lines.append(f'  {member.type} {member.name}{default};')
    lines.append('  const char16_t* getClassName() const override;')
    kinds = [attribute_kind(schema, entity, attribute) for attribute in entity.attributes]
    if any(kind.scalar == 'reference' for kind in kinds):
        lines.append('  void collectChildren(IFC::ChildQueue& queue) const override;')
    if kinds:
        lines += ['  void read(corvel::Parser& parser) override;',
                  '  void write(corvel::StepWriter& writer) const override;']
    if lives_on(schema, entity):
        lines.append('  bool hasNoLiveMembers() const override;')
    for binding in bindings:
        lines += [f'  {method.declaration} override;' for method in binding.methods]
    return lines + ['};', '']
