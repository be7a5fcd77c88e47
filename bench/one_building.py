"""What joining two models to one building costs beside a merge that joins nothing."""
from measure import medians, process, stages
from threads import null_output

# What concerns two models in one unit and at one place.
JOINING = ('--one-building', '--no-share-equal', '--units', 'keep', '--place', 'keep')
SHARE_OF_READING = 60  # percent, at most


def jobs(build, first, second, out):
    """Job -> function that gives stage -> Cost."""
    bench, program = build / 'bench' / 'corvel_job_bench', build / 'bin' / 'corvel'

    def merge(*options):
        return {'': process([program, 'merge', first, second, '-o', out, *options])}
    return {
        'first': lambda: stages([bench, 'read', first]),
        'second': lambda: stages([bench, 'read', second]),
        'told': merge,
        'joined': lambda: merge(*JOINING),
        'all': lambda: merge('--one-building'),
    }


def print_rows(build, models):
    """`models` have the attributes name, path and second."""
    for model in models:
        out = null_output(model.path.parent)
        costs = medians(jobs(build, model.path, model.second, out))
        out.unlink()
        reading = costs['first read'].seconds + costs['second read'].seconds
        for job, options in (('joined', ' '.join(JOINING)), ('all', '--one-building')):
            more = costs[job].seconds - costs['told'].seconds
            share = 100.0 * more / reading
            target = f' (at most {SHARE_OF_READING})' if job == 'joined' else ''
            print(f'{model.name}: {options} costs {more * 1e3:.0f} ms, {share:.0f} % of reading'
                  f'{target}', flush=True)
    print()
