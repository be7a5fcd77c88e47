"""A STEP file of records, and the file that must come out of it."""

HEADER = ("ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION (('every class'),'2;1');\n"
          "FILE_NAME ('n','2026-01-01T00:00:00',('a'),('o'),'p','s','');\n"
          "FILE_SCHEMA (('{}'));\nENDSEC;\n\nDATA;\n")
FOOTER = 'ENDSEC;\nEND-ISO-10303-21;\n'


def encoded(text):
    """Characters from 128 to 255 stand for raw bytes here."""
    return text.encode('latin-1')


def input_file(namespace, record_texts, line_end='\n', footer=FOOTER):
    header = HEADER.format(namespace)
    if line_end != '\n':
        header, footer = header.replace('\n', line_end), footer.replace('\n', line_end)
    return encoded(header + ''.join(record_texts) + footer)


def output_file(namespace, records):
    lines = [record.written_line() + '\n' for record in sorted(records, key=lambda r: r.number)]
    return encoded(HEADER.format(namespace) + ''.join(lines) + FOOTER)


def laid_out(rng, records, line_ends=('\n', '\n', '\r\n', '', ' \t', '\n\n/* #9=( */\n')):
    """The texts of the records, one, several or a part of one to a line."""
    return [record.given_text(rng) + rng.choice(line_ends) for record in records]
