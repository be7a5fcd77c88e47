"""What comparing two models costs beside reading them."""
from measure import medians, process, stages

READINGS = 2.5      # of one of the two, altogether
BYTES_PER_BYTE = 3.5


def print_rows(build, models):
    """For each model: beside what it is when it has been saved again, and beside another one."""
    program, bench = build / 'bin' / 'corvel', build / 'bench' / 'corvel_job_bench'
    for model in models:
        saved = model.path.with_name('out.ifc')
        process([program, 'resave', model.path, saved])
        for name, other in (('saved again', saved), ('another model', model.second)):
            print_pair(program, bench, model, name, other)
        saved.unlink(missing_ok=True)


def print_pair(program, bench, model, name, other):
    """One line. A reading is the mean of those of the two models, with their release."""
    costs = medians({
        'first': lambda: stages([bench, 'read', model.path]),
        'other': lambda: stages([bench, 'read', other]),
        'diff': lambda: {'': process([program, 'diff', model.path, other])},
    })
    reading = sum(costs[f'{one} {stage}'].seconds for one in ('first', 'other')
                  for stage in ('read', 'release')) / 2
    size = model.path.stat().st_size + other.stat().st_size
    diff = costs['diff']
    print(f'diff of {model.name} and {name}: {size / 1e6 / diff.seconds:.0f} MB/s, '
          f'{diff.seconds / reading:.2f} readings (at most {READINGS}), '
          f'peak {diff.peak / size:.2f} bytes per byte (at most {BYTES_PER_BYTE})')
