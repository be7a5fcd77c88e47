#!/usr/bin/env python3
"""Makes the golden output anew: golden.py. Look at the difference before you commit it."""

import os
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, '..', '..', '..', 'src', 'schema'))
sys.dont_write_bytecode = True

# pylint: disable=wrong-import-position
from generator.__main__ import load_schema  # noqa: E402
from generator.bindings import Binding, Method  # noqa: E402
from generator.output import write_if_changed  # noqa: E402
from generator.release import Release  # noqa: E402

GOLDEN = os.path.join(HERE, 'golden', 'TINY')
BINDINGS = {
    'TinyPlainPart': [
        Binding('IFC::IfcProjectVirtual', (
            Method('void setProjectName(corvel::ModelText name)', 'Name = name;'),)),
        Binding('IFC::VIfcMonetaryUnit'),
    ],
    'TinyUnit': [Binding('IFC::IfcUnit')],
}


def tiny_files():
    """Golden file name -> text, as generated now."""
    schema = load_schema(os.path.join(HERE, 'tiny.schema'),
                         os.path.join(HERE, 'tiny_overrides.txt'), 'TINY')
    return Release(schema, BINDINGS, 2, 'tiny.schema and tiny_overrides.txt').files()


if __name__ == '__main__':
    for file_name, text in tiny_files().items():
        write_if_changed(os.path.join(GOLDEN, file_name), text)
