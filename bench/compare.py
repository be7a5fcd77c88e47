"""Compares two builds pair by pair.

    compare.py BASE_BUILD BUILD MODELS SIZE...

Each row has the ratio of processor time, new over old: the median over the pairs, and half the
distance between the quartiles as its spread. A row is slower when its ratio exceeds 1 by more than
the threshold and the spread together. What several threads do has a second row, for the time that
went by: it means something where each of them has a core.
"""
import statistics
import sys
from pathlib import Path

from many import merge_many
from measure import Failed, process, stages

PAIRS = 9
THRESHOLD = 0.05
MANY = 200         # small models
TOGETHER = (2, 4)  # threads, beside one
SHORTEST = 0.005   # seconds: stages below are all noise


def programs(build):
    """The benchmark of jobs, and the command line."""
    return build / 'bench' / 'corvel_job_bench', build / 'bin' / 'corvel'


def jobs_together(build, first, second, out):
    """The same for jobs that several threads do."""
    bench, program = programs(build)
    found = {}
    for count in TOGETHER:
        found[f'resave {count}'] = lambda count=count: stages(
            [bench, '--threads', count, 'resave', first, out])
        found[f'program {count}'] = lambda count=count: {'merge': process(
            [program, 'merge', '--threads', count, first, second, '-o', out], one_core=False)}
    return found


def jobs(build, first, second, out):
    """Job -> function that gives stage -> Cost."""
    bench, program = programs(build)
    return {
        'resave': lambda: stages([bench, 'resave', first, out]),
        'merge': lambda: stages([bench, 'merge', out, first, second]),
        'mark': lambda: stages([bench, 'mark', first]),
        'program': lambda: {'merge': process([program, 'merge', first, second, '-o', out])},
        'many': lambda: {'merge': merge_many(program, out.parent, MANY, out)},
        **jobs_together(build, first, second, out),
    }


def known_jobs(build, models, out):
    """The jobs that the build can do; what it cannot is told."""
    known = set()
    for job, run in jobs(build, *models, out).items():
        try:
            run()
            known.add(job)
        except Failed as error:
            print(f'left out: {job}: {error}', file=sys.stderr)
    return known


def run_all(build, names, models, out):
    """`job stage` -> seconds."""
    found = {}
    together = jobs_together(build, *models, out).keys()
    for job, run in jobs(build, *models, out).items():
        if job not in names:
            continue
        for stage, cost in run().items():
            found[f'{job} {stage}'] = cost.seconds
            if job in together and cost.elapsed:
                found[f'{job} {stage} wall'] = cost.elapsed
    return found


def pairs_of(builds, models, out):
    """Row -> list of (old, new) seconds. Which of the two begins alternates."""
    names = known_jobs(builds[0], models, out) & known_jobs(builds[1], models, out)
    rows = {}
    for index in range(PAIRS):
        order = (0, 1) if index % 2 == 0 else (1, 0)
        found = {which: run_all(builds[which], names, models, out) for which in order}
        for row in found[0].keys() & found[1].keys():
            rows.setdefault(row, []).append((found[0][row], found[1][row]))
    return rows


def judge(pairs):
    """(ratio, spread, slower) of one row."""
    ratios = [new / old for old, new in pairs]
    low, ratio, high = statistics.quantiles(ratios, n=4)
    spread = (high - low) / 2
    return ratio, spread, ratio > 1 + THRESHOLD + spread


def main():
    builds = [Path(sys.argv[1]), Path(sys.argv[2])]
    folder, sizes = Path(sys.argv[3]), sys.argv[4:]
    out = folder / 'out.ifc'
    slower = False
    print(f'{"model":<15}{"row":<22}{"old s":>9}{"new s":>9}{"new/old":>9}{"spread":>9}')
    for schema in ('IFC2X3', 'IFC4'):
        for size in sizes:
            models = [folder / f'{schema}_{size}{end}.ifc' for end in ('', '_2')]
            for row, pairs in sorted(pairs_of(builds, models, out).items()):
                old, new = map(statistics.median, zip(*pairs))
                if max(old, new) < SHORTEST:
                    continue
                ratio, spread, is_slower = judge(pairs)
                slower = slower or is_slower
                print(f'{schema + " " + size:<15}{row:<22}{old:>9.3f}{new:>9.3f}{ratio:>9.3f}'
                      f'{spread:>9.3f}{"  SLOWER" if is_slower else ""}', flush=True)
    out.unlink(missing_ok=True)
    return 1 if slower else 0


if __name__ == '__main__':
    sys.exit(main())
