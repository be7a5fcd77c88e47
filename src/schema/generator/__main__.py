"""The command line of the generator.

    python3 -m generator --schema FILE --overrides FILE --namespace NAME --out DIR --shards N
    python3 -m generator --registry NAME,NAME... --out DIR

The first form writes the classes of one release to DIR/NAME, the second DIR/schema_registry.cpp,
which knows the releases of a build. A file that would not change is not touched.
"""

import argparse
import os
import sys

from .emit_tables import ALL_NAMESPACES, schema_registry
from .model import SchemaError, parse_schema
from .output import first_line, include_lines, write_if_changed
from .overrides import apply_overrides
from .release import Release


def read_text(path):
    with open(path, encoding='ascii') as file:
        return file.read()


def load_schema(schema_path, overrides_path, namespace):
    """The facts of a release with the overrides applied."""
    schema = parse_schema(read_text(schema_path), namespace, os.path.basename(schema_path))
    apply_overrides(schema, read_text(overrides_path), os.path.basename(overrides_path))
    return schema


def generate_release(arguments):
    from .bindings import bindings_for
    schema = load_schema(arguments.schema, arguments.overrides, arguments.namespace)
    source = ' and '.join(os.path.basename(path) for path in (arguments.schema,
                                                              arguments.overrides))
    release = Release(schema, bindings_for(schema), arguments.shards, source)
    for name, text in release.files().items():
        write_if_changed(os.path.join(arguments.out, arguments.namespace, name), text)


def generate_registry(arguments):
    namespaces = arguments.registry.split(',')
    for name in namespaces:
        if name not in ALL_NAMESPACES:
            raise SchemaError(f'there is no release {name}')
    lines = [first_line('the list of releases')]
    lines += include_lines(['<stdexcept>', 'schema/registry.h'])
    text = '\n'.join(lines + schema_registry(namespaces)) + '\n'
    write_if_changed(os.path.join(arguments.out, 'schema_registry.cpp'), text)


def main():
    parser = argparse.ArgumentParser(prog='generator', description='Generates the schema classes.')
    parser.add_argument('--schema', help='facts of the release')
    parser.add_argument('--overrides', help='where the classes differ from the facts')
    parser.add_argument('--namespace', help='C++ namespace of the release')
    parser.add_argument('--shards', type=int, default=4, help='number of sources for the entities')
    parser.add_argument('--registry', help='releases of the build, with commas')
    parser.add_argument('--out', required=True, help='folder of the generated files')
    arguments = parser.parse_args()
    if not arguments.registry and not (arguments.schema and arguments.overrides
                                       and arguments.namespace and arguments.shards > 0):
        parser.error('give --registry, or --schema, --overrides, --namespace and --shards')
    try:
        if arguments.registry:
            generate_registry(arguments)
        else:
            generate_release(arguments)
    except SchemaError as error:
        sys.exit(f'generator: {error}')


if __name__ == '__main__':
    main()
