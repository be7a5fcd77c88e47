"""The sample files: which there are and what each holds."""

import os
import zlib

from . import infrastructure, plans
from .architecture import Architecture
from .layouts import RELEASES, has_class
from .model import Habits, Model
from .project import Facts, Project
from .step_text import Header
from .structure import Structure

_COMMAND = 'python3 tools/make_models.py samples --out samples'

_NOTES = r"""
Each pair `office_architecture_*`, `office_structure_*` belongs together: one site, one building and
the same storeys by name, coordinates that agree, different projects, and record numbers that both
begin at 1. The files differ in habits as exporters do: line ends, blanks after `=`, gaps between
numbers, `\S\` or `\X2\` for letters beyond ASCII, relations before what they relate.
"""

_UNIT_WORDS = {'METRE': 'metres', 'MILLIMETRE': 'millimetres', 'FOOT': 'feet'}

# How the programs write whose exports the samples imitate, and their length units.
_HOUSE_STYLES = {
    'IFC2X_FINAL': ('METRE', dict(latin=True)),
    'IFC2X2_PLATFORM': ('METRE', dict(line_end='\r\n', whole_first=True)),
    'IFC2X2_FINAL': ('MILLIMETRE', dict(blank_after_equals=True)),
    'IFC2X3': ('FOOT', {}),
    'IFC4': ('METRE', dict(number_step=3, first_number=12)),
    'IFC4X1': ('METRE', dict(blank_after_equals=True)),
    'IFC4X2': ('MILLIMETRE', dict(whole_first=True)),
    'IFC4X3_ADD2': ('METRE', {}),
    'IFC4X4': ('METRE', dict(first_number=100)),
}


class Sample:
    """A file name, its release, the function that builds it, and what the table says of it."""

    def __init__(self, name, release, build, about):
        self.name = name
        self.release = release
        self.build = build
        self.about = about

    def file_bytes(self):
        project, program = self.build(self)
        header = Header(self.name, program, ('Zoë Müller',), ('Atelier d\'architecture',))
        return project.model.file_bytes(header)

    @property
    def seed(self):
        return zlib.crc32(self.name.encode('ascii'))


def _house(sample, length_unit=None):
    """Two storeys, a gable wall and, where the release has alignments, the street in front."""
    unit, habits = _HOUSE_STYLES[sample.release]
    unit = length_unit or unit
    program = ('Plan Drafter', '3.1')
    facts = Facts('Haus "Žofie"', 'Parzelle 1219', "Maison d'Émilie",
                  [('Erdgeschoß', 0.0), ('Étage 1', plans.HOUSE_HEIGHT)], unit,
                  ('Müller', 'Zoë'), "Atelier d'architecture \\ Genève", program, 30.0,
                  (2500.123456789, 1117.5, 373.6), (12.5, 8.25, 0.0))
    project = Project(Model(sample.release, sample.seed, Habits(**habits)), facts)
    site = project.site()
    _, storeys = project.building(site)
    architecture = Architecture(project)
    spaces = []
    for upper, storey in enumerate(storeys):
        walls, rooms = architecture.storey(storey, plans.house(bool(upper)))
        spaces += rooms
        architecture.classify(walls[:4], 'Bauteile', 'C2.%d' % upper, 'Außenwand')
    top = plans.house(True)
    architecture.stair(storeys[0], plans.HOUSE_HEIGHT)
    architecture.roof(storeys[-1], top)
    architecture.gable_wall(storeys[-1], top)
    architecture.zone('Nutzung – Wohnen', spaces)
    if project.model.has('IfcAlignment'):
        infrastructure.street(architecture, site)
    architecture.finish()
    return project, ' '.join(program)


def _office_facts(name, person, company, program):
    """Both models of the office agree on where it stands, on its storeys and on its unit."""
    storeys = [(storey, index * plans.OFFICE_HEIGHT)
               for index, storey in enumerate(('EG', '1. OG'))]
    return Facts(name, 'Areal Süd', 'Bürohaus "Les Tilleuls"', storeys, 'MILLIMETRE', person,
                 company, program, 12.5, (150.0, 75.25, 408.0), (4.0, 6.0, 0.0))


def _office_architecture(sample):
    program = ('Plan Drafter', '3.1')
    facts = _office_facts('Bürohaus – Architektur', ('Müller', 'Zoë'), 'Atelier', program)
    project = Project(Model(sample.release, sample.seed), facts)
    _, storeys = project.building(project.site())
    architecture = Architecture(project)
    for storey in storeys:
        walls, rooms = architecture.storey(storey, plans.office())
        architecture.zone('Mieter ' + storey.record.values[2], rooms)
        architecture.classify(walls, 'Bauteile', 'C2', 'Wände')
    architecture.finish()
    return project, ' '.join(program)


def _office_structure(sample):
    program = ('Frame Designer', '2024 "B"')
    facts = _office_facts('Bürohaus – Tragwerk', ("O'Hara", 'Seán'), 'Ingénieurs réunis',
                          program)
    habits = Habits(blank_after_equals=True, whole_first=True)
    project = Project(Model(sample.release, sample.seed, habits), facts)
    _, storeys = project.building(project.site())
    structure = Structure(project)
    structure.grid(storeys[0])
    structure.foundations(storeys[0])
    structure.frame(storeys[0], plans.OFFICE_HEIGHT, storeys[1])
    structure.frame(storeys[1], plans.OFFICE_HEIGHT)
    structure.finish()
    return project, ' '.join(program)


def _all_samples():
    samples = []
    for release in RELEASES:
        unit = _UNIT_WORDS[_HOUSE_STYLES[release][0]]
        street = ', the street in front of it' if has_class(release, 'IfcAlignment') else ''
        samples.append(Sample(
            'house_%s.ifc' % release, release, _house,
            'A house of two storeys in %s: walls, openings, doors, windows, slabs, spaces, '
            'roof, stair, furniture%s' % (unit, street)))
    for release in ('IFC2X3', 'IFC4'):
        samples.append(Sample(
            'office_architecture_%s.ifc' % release, release, _office_architecture,
            'An office, set with the next: walls, openings, doors, windows, slabs, spaces'))
        samples.append(Sample(
            'office_structure_%s.ifc' % release, release, _office_structure,
            'The same office: grid, footings, piles, columns, beams, slabs, bars'))
    samples.append(Sample('railway_IFC4X3_ADD2.ifc', 'IFC4X3_ADD2', infrastructure.railway,
                          'A track: alignment, referents, rails, sleepers, ballast'))
    samples.append(Sample('tunnel_IFC4X4.ifc', 'IFC4X4', infrastructure.tunnel,
                          'A railway tunnel: alignment, rings of lining, excavation, bolts, rock'))
    return samples


SAMPLES = _all_samples()


def house_bytes(release, length_unit):
    """The house of a release in another length unit: one of LENGTH_UNITS in project.py."""
    [sample] = [one for one in SAMPLES if one.name == 'house_%s.ifc' % release]
    project, program = _house(sample, length_unit)
    return project.model.file_bytes(Header(sample.name, program, ('Zoë Müller',), ('Atelier',)))


def readme_bytes(contents):
    """The table of the files. `contents` is file name to bytes."""
    lines = ['# Sample models', '',
             'Small models of our own making, one or more for every supported release. They are '
             'made by', '`tools/make_models.py`; never edit them, but change the maker and run', '',
             '    %s' % _COMMAND, '',
             'The same script makes a model of any size:', '',
             '    python3 tools/make_models.py big --schema IFC4 --size 100MB --out big.ifc', '',
             '| File | Release | Records | Bytes | What it holds |', '|---|---|---|---|---|']
    for sample in SAMPLES:
        data = contents[sample.name]
        lines.append('| `%s` | %s | %d | %d | %s |' % (
            sample.name, sample.release, data.count(b'\n#'), len(data), sample.about))
    return ('\n'.join(lines) + '\n' + _NOTES).encode('utf-8')


def make_all():
    """File name to bytes of all samples and their README.md."""
    contents = {sample.name: sample.file_bytes() for sample in SAMPLES}
    contents['README.md'] = readme_bytes(contents)
    return contents


def write_all(folder):
    os.makedirs(folder, exist_ok=True)
    for name, data in make_all().items():
        with open(os.path.join(folder, name), 'wb') as file:
            file.write(data)
