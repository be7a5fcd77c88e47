"""What writing equal objects once costs a resave, beside reading."""
from measure import medians, process, stages
from threads import null_output

READINGS = 3.0          # at most: a third of the rate of reading
BYTES_PER_OBJECT = 16.0


def records_of(path):
    """About as many as there are: a text may hold a semicolon."""
    with open(path, 'rb') as file:
        return sum(part.count(b';') for part in iter(lambda: file.read(1 << 20), b''))


def print_rows(build, models):
    """`models` have the attributes name and path."""
    bench, program = build / 'bench' / 'corvel_job_bench', build / 'bin' / 'corvel'
    for model in models:
        out = null_output(model.path.parent)

        def resave(*options, path=model.path, out=out):
            return {'': process([program, 'resave', path, out, *options])}
        costs = medians({'read': lambda path=model.path: stages([bench, 'read', path]),
                         'told': resave, 'shared': lambda: resave('--share-equal')})
        out.unlink()
        more = costs['shared'].seconds - costs['told'].seconds
        memory = (costs['shared'].peak - costs['told'].peak) / records_of(model.path)
        print(f'{model.name}: --share-equal costs {more * 1e3:.0f} ms, '
              f'{more / costs["read read"].seconds:.2f} readings (at most {READINGS:.0f}), '
              f'{memory:.1f} bytes an object (at most {BYTES_PER_OBJECT:.0f})', flush=True)
    print()
