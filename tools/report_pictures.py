#!/usr/bin/env python3
"""Makes the pictures of docs/report: reports of merges of the samples, as a browser shows them.

    CORVEL=build/dev/bin/corvel tools/report_pictures.py [FOLDER]

Needs a browser, see tests/host/end_to_end/browser.py.
"""

import math
import os
import re
import shutil
import subprocess
import sys
import tempfile

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
sys.path.insert(0, os.path.join(ROOT, 'tests', 'host', 'end_to_end'))

import browser  # noqa: E402  (in that folder)

CORVEL = os.environ.get('CORVEL', 'corvel')
ARCHITECTURE, STRUCTURE = (os.path.join(ROOT, 'samples', f'office_{name}_IFC4.ifc')
                           for name in ('architecture', 'structure'))
# Where the office of the samples stands, in metres, and how far it is turned.
CORNER, DEGREES, STOREYS = (152.6065, 81.9735), 12.5, (408.0, 411.6)
FOOT = 0.3048


class Services:
    """The ducts and pipes of the office, in a length unit of so many metres."""

    def __init__(self, metres, units):
        self.metres = metres
        self.lines = []
        self.count = 100
        self.units = units

    def add(self, text):
        self.count += 1
        self.lines.append(f'#{self.count}={text};')
        return f'#{self.count}'

    def length(self, value):
        return repr(round(value / self.metres, 6))

    def point(self, *values):
        return self.add(f"IFCCARTESIANPOINT(({','.join(map(self.length, values))}))")

    def placed(self, x, y, z, above='$'):
        axes = self.add(f'IFCAXIS2PLACEMENT3D({self.point(x, y, z)},$,$)')
        return self.add(f'IFCLOCALPLACEMENT({above},{axes})')

    def segment(self, kind, name, place, size, along):
        """A duct or pipe from `place`, which goes so far in x and y."""
        width, height = size
        reach = math.hypot(*along)
        direction = self.add(f'IFCDIRECTION(({along[0] / reach!r},{along[1] / reach!r},0.))')
        up = self.add('IFCDIRECTION((0.,0.,1.))')
        axes = self.add(f'IFCAXIS2PLACEMENT3D({self.point(0.0, 0.0, 0.0)},{direction},{up})')
        profile = self.add(f'IFCRECTANGLEPROFILEDEF(.AREA.,$,$,{self.length(height)},{self.length(width)})')
        ahead = self.add('IFCDIRECTION((0.,0.,1.))')
        solid = self.add(f'IFCEXTRUDEDAREASOLID({profile},{axes},{ahead},{self.length(reach)})')
        body = self.add(f"IFCSHAPEREPRESENTATION(#12,'Body','SweptSolid',({solid}))")
        shape = self.add(f'IFCPRODUCTDEFINITIONSHAPE($,$,({body}))')
        return self.add(f"IFC{kind}('{self.count:022d}',$,'{name}',$,$,{place},{shape},$,$)")

    def text(self):
        angle = math.radians(DEGREES)
        turn = self.add(f'IFCDIRECTION(({math.cos(angle)!r},{math.sin(angle)!r},0.))')
        up = self.add('IFCDIRECTION((0.,0.,1.))')
        axes = self.add(f'IFCAXIS2PLACEMENT3D({self.point(*CORNER, 0.0)},{up},{turn})')
        base = self.add(f'IFCLOCALPLACEMENT($,{axes})')
        for at, level in enumerate(STOREYS):
            storey = self.placed(0.0, 0.0, level, base)
            members = []
            for row in range(3):
                place = self.placed(1.0, 2.2 + 3.3 * row, 2.6, storey)
                members.append(self.segment('DUCTSEGMENT', f'Supply air {at}.{row}', place, (0.5, 0.3), (16.0, 0.0)))
            for column in range(5):
                place = self.placed(1.8 + 3.6 * column, 1.0, 2.95, storey)
                members.append(self.segment('PIPESEGMENT', f'Heating {at}.{column}', place, (0.1, 0.1), (0.0, 9.0)))
            name = ('EG', '1. OG')[at]
            node = self.add(f"IFCBUILDINGSTOREY('s{at:021d}',$,'{name}',$,$,{storey},$,$,.ELEMENT.,$)")
            self.add(f"IFCRELAGGREGATES('a{at:021d}',$,$,$,#13,({node}))")
            self.add(f"IFCRELCONTAINEDINSPATIALSTRUCTURE('c{at:021d}',$,$,$,({','.join(members)}),{node})")
        return ("ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION(('x'),'2;1');\n"
                "FILE_NAME('services','2026-01-02T03:04:05',(''),(''),'','','');\n"
                "FILE_SCHEMA(('IFC4'));\nENDSEC;\nDATA;\n"
                "#10=IFCCARTESIANPOINT((0.,0.,0.));\n#11=IFCAXIS2PLACEMENT3D(#10,$,$);\n"
                "#12=IFCGEOMETRICREPRESENTATIONCONTEXT('3D','Model',3,1.E-05,#11,$);\n"
                "#13=IFCBUILDING('b000000000000000000000',$,'Services',$,$,$,$,$,.ELEMENT.,$,$,$);\n"
                "#14=IFCPROJECT('p000000000000000000000',$,'Services',$,$,$,$,(#12),#15);\n"
                "#16=IFCRELAGGREGATES('r000000000000000000000',$,$,$,#14,(#13));\n"
                f"{self.units}\n" + '\n'.join(self.lines) + '\nENDSEC;\nEND-ISO-10303-21;\n')


MILLIMETRES = '#15=IFCUNITASSIGNMENT((#17));\n#17=IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.);'
FEET = ("#15=IFCUNITASSIGNMENT((#17));\n#17=IFCCONVERSIONBASEDUNIT(#18,.LENGTHUNIT.,'FOOT',#19);\n"
        '#18=IFCDIMENSIONALEXPONENTS(1,0,0,0,0,0,0);\n'
        '#19=IFCMEASUREWITHUNIT(IFCLENGTHMEASURE(0.3048),#20);\n#20=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);')


def report(folder, name, inputs, *options):
    """The page of a merge in that folder, whose names are without any, as the pictures show them."""
    subprocess.run([CORVEL, 'merge', *inputs, '-o', name + '.ifc', '--report', name + '.html', '--quiet', *options],
                   check=True, cwd=folder)
    return os.path.join(folder, name + '.html')


def spoilt(text):
    """A model as tools leave it that edit text: GUIDs that are none, a class of nobody, a reference to nothing."""
    text = re.sub(r"IFCBEAM\('\w{22}'", "IFCBEAM('beam'", text, count=4)
    text = text.replace('=IFCCOLUMN(', '=IFCKOLUMN(', 3)
    return re.sub(r'(IFCRELAGGREGATES\(.*),\(#\d+', r'\1,(#99999', text, count=2)


def check_report(folder, name, inputs):
    """The page of a check, which finds errors."""
    subprocess.run([CORVEL, 'check', *inputs, '--report', name + '.html', '--quiet'], cwd=folder, check=False,
                   stdout=subprocess.DEVNULL)
    return os.path.join(folder, name + '.html')


def drawings_of(page):
    """A copy of the page with its drawings alone."""
    with open(page, encoding='utf-8') as file:
        text = file.read()
    copy = page.replace('.html', '_drawings.html')
    with open(copy, 'w', encoding='utf-8') as file:
        file.write(text.replace('</head>', '<style>#top, main > :not(#where) { display: none; }</style></head>', 1))
    return copy


def main():
    pictures = sys.argv[1] if len(sys.argv) > 1 else os.path.join(ROOT, 'docs', 'report')
    os.makedirs(pictures, exist_ok=True)
    if browser.PROGRAM is None:
        sys.exit('There is no browser on this machine.')

    with tempfile.TemporaryDirectory() as folder:
        for sample in (ARCHITECTURE, STRUCTURE):
            shutil.copy(sample, folder)
        inputs = [os.path.basename(sample) for sample in (ARCHITECTURE, STRUCTURE)]
        for name, metres, units in (('office_services.ifc', 0.001, MILLIMETRES),
                                    ('office_services_in_feet.ifc', FOOT, FEET)):
            with open(os.path.join(folder, name), 'w', encoding='ascii', newline='\n') as file:
                file.write(Services(metres, units).text())

        def picture(name, page, width, height, dark=False):
            console = browser.screenshot(page, os.path.join(pictures, name + '.png'), width, height, dark)
            if console:
                sys.exit(f'{name}: {console}')

        metric, imperial = [*inputs, 'office_services.ifc'], [*inputs, 'office_services_in_feet.ifc']
        office = report(folder, 'office', metric, '--one-building', '--hide', '1:IfcDoor')
        picture('disciplines', office, 1280, 3500)
        picture('narrow', office, 400, 2950)
        picture('dark', office, 1280, 1580, dark=True)
        far = report(folder, 'far', metric, '--offset', '2=1000000,0,0')
        picture('far_away', drawings_of(far), 1280, 700)
        with open(os.path.join(folder, inputs[1]), encoding='ascii') as file:
            structure = file.read()
        with open(os.path.join(folder, 'office_structure_spoilt.ifc'), 'w', encoding='ascii', newline='\n') as file:
            file.write(spoilt(structure))
        checked = check_report(folder, 'checked', [inputs[0], 'office_structure_spoilt.ifc'])
        picture('check', checked, 1280, 1500)
        feet = report(folder, 'feet', imperial)
        picture('feet', drawings_of(feet), 1280, 1830)


if __name__ == '__main__':
    main()
