"""The text of files that are not in order, read apart from the program: what is wrong is counted,
and the rest is read.

It knows what the models of other makers have: junk between records, a byte order mark, numbers that
stand twice. For all else it raises StepError.
"""

import re

from step_text import Record, StepError, StepFile

_BYTE_ORDER_MARK = b'\xef\xbb\xbf'
_PIECE = re.compile(rb"'(?:\\S\\.|[^'])*'|/\*.*?\*/|;|[^;'/]+|/", re.DOTALL)
_BLANK = re.compile(rb'(?:\s|/\*.*?\*/)*', re.DOTALL)
_RECORD = re.compile(rb'#\d+\s*=\s*\w+\s*\(')
# A value that is not even `$`.
_NOTHING = re.compile(rb'[(,]\s*[,)]')


class LooseFile(StepFile):
    """`wrong`: (rule, subject, number) of what is out of order. Of two records with one number the
    later one has a free one, above all others, in `records`."""

    def __init__(self, data):
        self.wrong = []
        if data.startswith(_BYTE_ORDER_MARK):
            self.wrong.append(('CRV.header.damaged', '', None))
            data = data[len(_BYTE_ORDER_MARK):]
        super().__init__(data)

    def _statements(self, position):
        """(begin, end) of each piece of the section up to and including its ";"."""
        begin = position
        for piece in _PIECE.finditer(self.data, position):
            if piece.group() == b';':
                yield begin, piece.end()
                begin = piece.end()

    def _read_records(self, position):
        doubled = []
        for begin, end in self._statements(position):
            begin = _BLANK.match(self.data, begin, end).end()
            text = self.data[begin:end]
            if text.startswith(b'ENDSEC'):
                break
            if text == b';':
                continue
            found = _RECORD.search(text)
            if not found:
                raise StepError(f'byte {begin}: no record')
            if found.start() != 0:
                self.wrong.append(('CRV.syntax.skipped', '', None))
            record = self._record(begin + found.start(), end)
            if record.number in self.records:
                doubled.append(record)
                self.wrong.append(('CRV.number.doubled', record.name, None))
            else:
                self.records[record.number] = record
        else:
            raise StepError('no ENDSEC')
        for record in doubled:
            number = max(self.records) + 1
            self.records[number] = record._replace(number=number)

    def _record(self, begin, end):
        bare = re.sub(rb"'(?:\\S\\.|[^'])*'", b"''", self.data[begin:end])
        if _NOTHING.search(re.sub(rb'\(\s*\)', b'$', bare)):
            raise StepError(f'byte {begin}: a value that is not there')
        tokens = self.tokens(begin)
        number, _, name, _ = (next(tokens)[1] for _ in range(4))
        arguments = self._read_arguments(tokens, begin)
        last = next(tokens)
        if last[1] != ';' or last[3] != end:
            raise StepError(f'#{number}: no ";" at its end')
        return Record(number, name, arguments, begin, end)
