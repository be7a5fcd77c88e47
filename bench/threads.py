"""How much sooner several threads are done, and what they cost: rows for 1, 2 and 4.

What is written is thrown away, so that no disk is waited for. Seconds that went by mean something on
a machine that does nothing else; with fewer cores than threads they tell what too many cost.
"""
import os

from measure import medians, process, stages

COUNTS = (1, 2, 4)


def null_output(folder):
    """A name for the program to write to; the bytes are gone."""
    path = folder / 'null.ifc'
    path.unlink(missing_ok=True)
    path.symlink_to('/dev/null')
    return path


def jobs(build, first, second, out, count):
    """Job -> function that gives stage -> Cost."""
    bench, program = build / 'bench' / 'corvel_job_bench', build / 'bin' / 'corvel'
    return {
        'resave': lambda: stages([bench, '--threads', count, 'resave', first, out]),
        'merge': lambda: {'': process([program, 'merge', '--threads', count, first, second, '-o',
                                       out], one_core=False)},
    }


def print_rows(build, models):
    """`models` have the attributes name, path and second."""
    print(f'{len(os.sched_getaffinity(0))} cores are there to use')
    print(f'{"model":<16}{"threads":>8}' + ''.join(
        f'{what + " x":>10}{"cpu x":>8}' for what in ('read', 'write', 'merge')))
    for model in models:
        out = null_output(model.path.parent)
        costs = medians({f'{count} {job}': run for count in COUNTS
                         for job, run in jobs(build, model.path, model.second, out, count).items()})
        out.unlink()
        for count in COUNTS:
            row = f'{model.name:<16}{count:>8}'
            for stage in ('resave read', 'resave write', 'merge'):
                alone, together = costs[f'1 {stage}'], costs[f'{count} {stage}']
                row += f'{alone.elapsed / together.elapsed:>10.2f}'
                row += f'{together.seconds / alone.seconds:>8.2f}'
            print(row, flush=True)
    print()
