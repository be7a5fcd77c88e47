"""Spoils good models: of each kind of misfit a function that gives the spoilt file, and beside it
what should be left of that as a good text (to be counted, not to be read).

A model is bytes with one record a line, as the program writes it. `pick` chooses among places, the
same way in each run.
"""

import random
import re

_RECORD = re.compile(rb'^#(\d+)=(IFC\w+)\((.*)\);$', re.M)
_ENUMERATION = re.compile(rb"(?<=[,(])\.[A-Z]\w+\.(?=[,)])")
# The last argument of a record, a string without anything special.
_LAST_STRING = re.compile(rb"^(#\d+=IFC\w+\([^'\n]*(?:'[^'\n\\]*'[^'\n]*)*)'([A-Za-z0-9 ]*)'\);$", re.M)


def records_of(data):
    return list(_RECORD.finditer(data))


class Spoiler:
    def __init__(self, seed):
        self.pick = random.Random(seed)

    def record(self, data, accept=lambda match: True, at_least=0):
        """A record of the model; None when no one will do."""
        found = [match for match in records_of(data)[at_least:] if accept(match)]
        return self.pick.choice(found) if found else None


def _replaced(data, match, text):
    return data[:match.start()] + text + data[match.end():]


def _both(data):
    return None if data is None else (data, data)


def _largest(data):
    return max(int(match[1]) for match in records_of(data))


# --- Kinds ----------------------------------------------------------------------------------------

def schema_in_small_letters(_, data):
    return _both(re.sub(rb"(FILE_SCHEMA ?\(\(')(\w+)'",
                        lambda match: match[1] + b' ' + match[2].lower() + b" '", data))


def schema_draft(_, data):
    return _both(re.sub(rb"(FILE_SCHEMA ?\(\(')(\w+)'",
                        lambda match: match[1] + match[2] + b"_17239AAA'", data))


def unknown_class(spoiler, data):
    match = spoiler.record(data)
    return _both(_replaced(data, match, b'#%s=IFCNOTHINGOFTHEKIND(%s);' % (match[1], match[3])))


def argument_more(spoiler, data):
    match = spoiler.record(data)
    separator = b',' if match[3] else b''
    return _both(_replaced(data, match, b"#%s=%s(%s%s'more');" %
                           (match[1], match[2], match[3], separator)))


def argument_less(spoiler, data):
    match = spoiler.record(data, lambda one: one[3].endswith((b',$', b',*')))
    return match and _both(_replaced(data, match, b'#%s=%s(%s);' %
                                     (match[1], match[2], match[3][:-2])))


def unknown_enumeration(spoiler, data):
    found = list(_ENUMERATION.finditer(data))
    return _both(_replaced(data, spoiler.pick.choice(found), b'.OUT_OF_THIS_WORLD.'))


def absent_enumeration(spoiler, data):
    found = list(_ENUMERATION.finditer(data))
    return _both(_replaced(data, spoiler.pick.choice(found), b'$'))


def text_for_enumeration(spoiler, data):
    found = list(_ENUMERATION.finditer(data))
    return _both(_replaced(data, spoiler.pick.choice(found), b"'a; text'"))


def text_for_numbers(spoiler, data):
    match = spoiler.record(data, lambda one: one[2] == b'IFCCARTESIANPOINT')
    return _both(_replaced(data, match, b"#%s=IFCCARTESIANPOINT(('one',2.,3.));" % match[1]))


def list_for_text(spoiler, data):
    match = spoiler.record(data, lambda one: one[3].startswith(b"'"))
    text = re.sub(rb"^('[^']*')", rb'(\1)', match[3])
    return _both(_replaced(data, match, b'#%s=%s(%s);' % (match[1], match[2], text)))


def refused_reference(spoiler, data):
    """A placement hangs on a record that is no placement."""
    match = spoiler.record(data, lambda one: one[2] == b'IFCLOCALPLACEMENT')
    target = spoiler.record(data, lambda one: one[2] == b'IFCCARTESIANPOINT')
    return match and target and _both(
        _replaced(data, match, b'#%s=IFCLOCALPLACEMENT(#%s,#%s);' %
                  (match[1], target[1], target[1])))


def no_semicolon(spoiler, data):
    match = spoiler.record(data)
    return _replaced(data, match, match[0][:-1]), data


def no_bracket(spoiler, data):
    match = spoiler.record(data)
    return _replaced(data, match, match[0][:-2] + b';'), data


def open_string(spoiler, data):
    found = list(_LAST_STRING.finditer(data))
    if not found:
        return None
    match = spoiler.pick.choice(found)
    return _replaced(data, match, match[1] + b"'" + match[2] + b');'), data


def stray_bytes(spoiler, data):
    match = spoiler.record(data, at_least=1)
    return _replaced(data, match, b"it's \xFF nothing\x00\n;;" + match[0] + b' and more\n'), data


def stray_bytes_inside(spoiler, data):
    match = spoiler.record(data)
    return _replaced(data, match, b'#%s=%s(\x01\x80%s\xFF) stray;' %
                     (match[1], match[2], match[3])), data


def complex_instance(spoiler, data):
    match = spoiler.record(data)
    return _both(_replaced(data, match, b"#%s=(IFCONE(%s)IFCTWO(.A.,'b'));" % (match[1], match[3])))


def open_comment(spoiler, data):
    match = spoiler.record(data)
    return _replaced(data, match, b'/* here\n' + match[0]), data


def open_comment_inside(spoiler, data):
    match = spoiler.record(data)
    return _replaced(data, match, b'#%s=%s(/*%s);' % (match[1], match[2], match[3])), data


def duplicated_number(spoiler, data):
    match = spoiler.record(data)
    again = b'%s\n#%%d=IFCLABEL(\'again\');' % match[0].replace(b'%', b'%%')
    return (_replaced(data, match, again % int(match[1])),
            _replaced(data, match, again % (_largest(data) + 1)))


def numberless_record(spoiler, data):
    match = spoiler.record(data)
    return (_replaced(data, match, match[0] + b"\n=IFCLABEL('numberless');"),
            _replaced(data, match, match[0] + b"\n#%d=IFCLABEL('numberless');" %
                      (_largest(data) + 1)))


def no_header_end(_, data):
    return data.replace(b'ENDSEC;', b'', 1), data


def byte_order_mark(_, data):
    return b'\xEF\xBB\xBF' + data, data


def cut_short(_, data):
    """Within the last record."""
    match = records_of(data)[-1]
    return data[:match.end() - 2], data


KINDS = [value for name, value in list(globals().items())
         if callable(value) and not name.startswith('_')
         and name not in ('Spoiler', 'records_of')]
# These may leave nothing to be told: a name that is only spelled in another way, and an attribute
# that may be absent.
SILENT = {schema_in_small_letters, absent_enumeration}
