"""Measures whole jobs on each model beside the yardsticks and prints one table.

    table.py BUILD MODELS SIZE...

BUILD is the folder of the release build; MODELS holds the models that run.sh has made.
"""
import sys
from pathlib import Path

import diffs
import one_building
import reports
import sharing
import threads
from many import COUNTS, SAMPLE, merge_many
from measure import Failed, ROOT, medians, process, stages, web_ifc_folder

READ_RATE, RESAVE_RATE, MERGE_RATE = 150.0, 100.0, 65.0  # MB per second
READ_PEAK, MERGE_PEAK = 4.0, 5.0                         # bytes per byte of input
FLAT_SHARE = 85.0                                        # percent of the rate at the smallest size
FOUR_PEAK = 6.0                                          # GiB
START_TIME, REGISTRY_TIME = 30.0, 1.0                    # ms
WINE_SHARE = 60.0                                        # percent of the native rate
MANY_SHARE = 87.0                                        # percent of the rate at ten models
KEPT = 0.5                                               # the same, once all is released
NEEDED_FOR_RATES = 20e6                                  # bytes: smaller models have no target


def verdict(value, target, unit, at_most=False):
    """`150 MB/s: missed by 12 %`"""
    distance = 100.0 * (value / target - 1.0) * (-1.0 if at_most else 1.0)
    word = 'met' if distance >= 0 else f'missed by {-distance:.0f} %'
    return f'{target:.4g} {unit}: {word}'


class Model:
    """A model, and another of the same kind that it is merged with."""

    def __init__(self, name, path, second):
        self.name, self.path, self.second = name, path, second
        self.bytes = path.stat().st_size
        self.both = self.bytes + second.stat().st_size
        self.costs = {}

    def rate(self, *names, size=None):
        """MB per second over some stages; None when one of them was not measured."""
        if any(name not in self.costs for name in names):
            return None
        seconds = sum(self.costs[name].seconds for name in names)
        return (size or self.bytes) / 1e6 / max(seconds, 1e-6)

    def peak(self, name, size=None):
        return self.costs[name].peak / (size or self.bytes)


class Measuring:
    """All jobs on one model."""

    def __init__(self, build, out, web_ifc):
        self._bench = build / 'bench' / 'corvel_job_bench'
        self._yardsticks = build / 'bench' / 'corvel_yardsticks'
        self._program = build / 'bin' / 'corvel'
        self._out = out
        self._web_ifc = web_ifc

    def measure(self, model):
        out, first, second = self._out, model.path, model.second
        jobs = {
            'read': lambda: stages([self._bench, 'read', first]),
            'resave': lambda: stages([self._bench, 'resave', first, out]),
            'merge': lambda: stages([self._bench, 'merge', out, first, second]),
            'mark': lambda: stages([self._bench, 'mark', first]),
            'program': lambda: {'merge': process(
                [self._program, 'merge', first, second, '-o', out])},
            'loop': lambda: stages([self._yardsticks, 'tokens', first]),
            'plain': lambda: stages([self._yardsticks, 'resave', first, out]),
        }
        if self._web_ifc:
            jobs['web-ifc'] = lambda: stages(
                ['node', ROOT / 'bench' / 'web_ifc_open.mjs', self._web_ifc, first])
        model.costs = medians(jobs)
        out.unlink(missing_ok=True)


HEAD = (f'{"model":<16}{"what":<14}{"MB/s":>7}{"/loop":>7}{"/plain":>7}{"/web":>7}'
        f'{"peak/B":>8}{"kept/B":>8}  targets')


class Rows:
    """Prints what was measured of one model."""

    def __init__(self, model):
        self._model = model
        self._loop = model.rate('loop tokens')
        self._plain_read = model.rate('plain read')
        self._plain_resave = model.rate('plain read', 'plain write')
        self._web = model.rate('web-ifc read')

    def _row(self, what, rate, plain=None, peak=None, kept=None, targets=()):
        def ratio(other):
            return f'{rate / other:>7.2f}' if other else f'{"":>7}'
        def bytes_per_byte(value):
            return f'{"":>8}' if value is None else f'{value:>8.2f}'
        web = self._web if what in ('read', 'plain read', 'byte loop') else None
        print(f'{self._model.name:<16}{what:<14}{rate:>7.0f}{ratio(plain and self._loop)}'
              f'{ratio(plain)}{ratio(web)}{bytes_per_byte(peak)}{bytes_per_byte(kept)}'
              f'  {"; ".join(targets)}'.rstrip())

    def print(self):
        model, plain = self._model, self._plain_resave
        counts = model.bytes >= NEEDED_FOR_RATES
        read, mark = model.rate('read read'), model.rate('mark mark')
        resave = model.rate('resave read', 'resave write')
        merge = model.rate('program merge', size=model.both)
        peak, merge_peak = model.peak('read read'), model.peak('program merge', model.both)
        kept = (model.costs['read release'].resident
                - model.costs['read start'].resident) / model.bytes
        self._row('read', read, self._plain_read, peak, kept, counts * (
            verdict(read, READ_RATE, 'MB/s'), verdict(peak, READ_PEAK, 'peak/B', True),
            verdict(kept, KEPT, 'kept/B', True)))
        self._row('resave', resave, plain, model.peak('resave write'), None, counts * (
            verdict(resave, RESAVE_RATE, 'MB/s'),))
        self._row('merge', merge, plain, merge_peak, None, counts * (
            verdict(merge, MERGE_RATE, 'MB/s'), verdict(merge_peak, MERGE_PEAK, 'peak/B', True)))
        for stage in ('fold', 'write'):
            self._row('  its ' + stage, model.rate('merge ' + stage, size=model.both))
        self._row('mark half', mark, None, model.peak('mark mark'), None, counts * (
            verdict(mark, read, 'MB/s as read'),))
        self._row('byte loop', self._loop)
        self._row('plain read', self._plain_read, None, model.peak('plain read'))
        self._row('plain resave', plain, None, model.peak('plain write'))
        if self._web:
            self._row('web-ifc read', self._web, None, model.peak('web-ifc read'))


def print_flatness(models):
    """The rate of reading at the largest size beside that at the smallest."""
    first, last = models[0], models[-1]
    if first is last:
        return
    share = 100.0 * last.rate('read read') / first.rate('read read')
    print(f'{last.name}: reads at {share:.0f} % of the rate of {first.name}  '
          f'{verdict(share, FLAT_SHARE, "%")}')


def print_small(build, models):
    """What does not grow with the models."""
    program = build / 'bin' / 'corvel'
    samples = ROOT / 'samples'
    pair = [samples / f'office_{part}_IFC4.ifc' for part in ('architecture', 'structure')]
    small = []
    for sample in pair:  # reading leaves files beside the input
        small.append(models / sample.name)
        small[-1].write_bytes(sample.read_bytes())
    out = models / 'out.ifc'
    costs = medians({
        'help': lambda: {'': process([program, '--help'])},
        'merge': lambda: {'': process([program, 'merge', *small, '-o', out])},
        'bench': lambda: stages([build / 'bench' / 'corvel_job_bench', 'registry']),
    })
    out.unlink(missing_ok=True)
    sizes = ' and '.join(f'{path.stat().st_size / 1000:.0f}' for path in small)
    start, merge, registry = costs['help'], costs['merge'], costs['bench registry']
    print(f'start of the program: {start.seconds * 1e3:.1f} ms of processor time, '
          f'{start.elapsed * 1e3:.1f} ms elapsed')
    print(f'merge of {sizes} KB: {merge.seconds * 1e3:.1f} ms of processor time, '
          f'{merge.elapsed * 1e3:.1f} ms elapsed  '
          f'{verdict(merge.seconds * 1e3, START_TIME, "ms", True)}')
    print(f'registry of all releases: {registry.seconds * 1e6:.0f} us  '
          f'{verdict(registry.seconds * 1e3, REGISTRY_TIME, "ms", True)}')


def print_four(build, models, size):
    """Four models at once; only where run.sh has made them."""
    paths = [models / f'IFC4_{size}{end}.ifc' for end in ('', '_2', '_3', '_4')]
    if not all(path.exists() for path in paths):
        return
    out = models / 'out.ifc'
    cost = process([build / 'bin' / 'corvel', 'merge', *paths, '-o', out])
    out.unlink(missing_ok=True)
    total = sum(path.stat().st_size for path in paths)
    peak = cost.peak / 2 ** 30
    print(f'merge of four models of {size}: {total / 1e6 / cost.seconds:.0f} MB/s, peak '
          f'{peak:.2f} GiB  {verdict(peak, FOUR_PEAK, "GiB", True)}')


def print_many(build, models):
    """Many small models: as many bytes a second as with ten, and as many bytes of memory a byte."""
    program, out = build / 'bin' / 'corvel', models / 'out.ifc'
    costs = medians({count: (lambda count=count: {'': merge_many(program, models, count, out)})
                     for count in COUNTS})
    out.unlink(missing_ok=True)
    size = SAMPLE.stat().st_size
    rates = {count: count * size / 1e6 / costs[f'{count}'].seconds for count in COUNTS}
    for count in COUNTS:
        share = 100.0 * rates[count] / rates[10]
        target = '  ' + verdict(share, MANY_SHARE, '%') if count > 10 else ''
        print(f'merge of {count} models of {size / 1000:.0f} KB: {rates[count]:.1f} MB/s, '
              f'{share:.0f} % of the rate of 10, peak {costs[f"{count}"].peak / count / size:.2f} '
              f'bytes per byte{target}')


def print_wine(build, models, size):
    """The program for Windows beside the native one; only where it has been built. What a process
    takes before it reads anything is left out on both sides."""
    program = ROOT / 'build' / 'windows' / 'bin' / 'corvel.exe'
    if not program.exists():
        print(f'skipped: {program.relative_to(ROOT)} is not there (./test windows builds it)')
        return
    wine = ROOT / 'tools' / 'wine-run.sh'
    model, out = models / f'IFC4_{size}.ifc', models / 'out.ifc'
    costs = medians({
        f'{name} {job}': (lambda command=command: {'': process(command)})
        for name, start in (('native', [build / 'bin' / 'corvel']), ('wine', [wine, program]))
        for job, command in (('start', [*start, '--help']),
                             ('resave', [*start, 'resave', model, out]))})
    out.unlink(missing_ok=True)
    native, windows = (costs[f'{name} resave'].seconds - costs[f'{name} start'].seconds
                       for name in ('native', 'wine'))
    share = 100.0 * native / windows
    print(f'resave of {size} under Wine: {model.stat().st_size / 1e6 / windows:.0f} MB/s, '
          f'{share:.0f} % of the native rate  {verdict(share, WINE_SHARE, "%")}')


def measured_models(models, sizes):
    """Groups of models of rising size."""
    for schema in ('IFC2X3', 'IFC4'):
        yield [Model(f'{schema} {size}', models / f'{schema}_{size}.ifc',
                     models / f'{schema}_{size}_2.ifc') for size in sizes]
    for path in sorted(models.glob('enlarged_*_1.ifc')):
        name = path.name[len('enlarged_'):-len('_1.ifc')]
        yield [Model(name[:15], path, path.with_name(f'enlarged_{name}_2.ifc'))]


def main():
    build, models, sizes = Path(sys.argv[1]), Path(sys.argv[2]), sys.argv[3:]
    measuring = Measuring(build, models / 'out.ifc', web_ifc_folder(build))
    print(HEAD)
    groups = list(measured_models(models, sizes))
    for group in groups:
        for model in group:
            measuring.measure(model)
            Rows(model).print()
            sys.stdout.flush()
    print()
    for group in groups:
        print_flatness(group)
    threads.print_rows(build, [group[-1] for group in groups])
    diffs.print_rows(build, [group[-1] for group in groups])
    one_building.print_rows(build, [group[-1] for group in groups])
    sharing.print_rows(build, [group[-1] for group in groups])
    reports.print_rows(build, [group[-1] for group in groups])
    print_small(build, models)
    print_four(build, models, sizes[-1])
    print_many(build, models)
    print_wine(build, models, sizes[min(1, len(sizes) - 1)])


if __name__ == '__main__':
    try:
        main()
    except Failed as error:
        sys.exit(str(error))
