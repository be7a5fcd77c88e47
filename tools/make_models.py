#!/usr/bin/env python3
"""Makes IFC models: the small ones of samples/, and one of any size for benchmarks.

    make_models.py samples --out DIR
    make_models.py big --schema IFC4 --size 100MB --out FILE [--seed N]
    make_models.py enlarge --model FILE --size 100MB --out FILE

The same arguments give the same bytes, on every system.
"""

import argparse
import sys

from models import big, enlarge, samples
from models.layouts import RELEASES


def _size(text):
    try:
        return big.size_in_bytes(text)
    except ValueError:
        raise argparse.ArgumentTypeError('%r is no size such as 500KB, 100MB or 2GB' % text)


def _parser():
    parser = argparse.ArgumentParser(description=__doc__.split('\n')[0])
    commands = parser.add_subparsers(dest='command', required=True)
    small = commands.add_parser('samples', help='make all small models and their README.md')
    small.add_argument('--out', required=True, metavar='DIR', help='folder, made if missing')
    large = commands.add_parser('big', help='make one model of a given size')
    # The oldest releases lack the footings, members and piles that big models are made of.
    large.add_argument('--schema', default='IFC4', choices=RELEASES[2:])
    large.add_argument('--size', required=True, type=_size,
                       help='bytes, or with KB, MB, GB (powers of ten); met within 5 percent')
    large.add_argument('--out', required=True, metavar='FILE')
    large.add_argument('--seed', type=int, default=1, help='another seed, another model')
    copies = commands.add_parser('enlarge', help='make one model of copies of another')
    copies.add_argument('--model', required=True, metavar='FILE')
    copies.add_argument('--size', required=True, type=_size, help='as above, met by whole copies')
    copies.add_argument('--first', type=int, default=0, metavar='N',
                        help='another number, other GUIDs: how many copies stand in other models')
    copies.add_argument('--out', required=True, metavar='FILE')
    return parser


def main(arguments):
    parser = _parser()
    options = parser.parse_args(arguments)
    if options.command == 'samples':
        samples.write_all(options.out)
        return 0
    try:
        if options.command == 'enlarge':
            written = enlarge.enlarge(options.model, options.size, options.out,
                                      options.first)
        else:
            written = big.write_big(options.schema, options.size, options.out, options.seed)
    except (OSError, big.TooSmall, enlarge.NotEnlargeable) as error:
        parser.error(str(error))
    print('%s: %d bytes' % (options.out, written))
    return 0


if __name__ == '__main__':
    sys.exit(main(sys.argv[1:]))
