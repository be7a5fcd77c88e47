#!/usr/bin/env python3
"""The files that stand beside the plug-in: texts in every language, pictures of the right size."""

import re
import struct
import unittest
import zlib
from pathlib import Path

ROOT = Path(__file__).resolve().parents[3]
DATA = ROOT / 'data' / 'corvel_data'
LANGUAGES = ['en', 'pl', 'de', 'fr', 'es']

KEYS = set('''
    group.Corvel btn_merge btn_merge.hint merge_active merge_active.hint merge_visible
    merge_visible.hint merge_selected merge_selected.hint options_window_name
    btn_options_description open_recent_created_file_button_name
    open_recent_created_file_button_description
    btn_set_coordinate_center btn_set_coordinates btn_reset_coordinate_center
    option_guid_duplication_group_name option_guid_duplication_generate
    option_guid_duplication_skip option_guid_duplication_remember option_ignore_units
    option_ignore_enume_errors btn_ok merge_specific
    progress_bar_overall_progress progress_bar_loading progress_bar_deleting progress_bar_saving
    continue_question progress_bar_cancel_message btnCancelName checking_files reading_file
    deleting_entities_from exporting_file_as finalizing merged
    name nameAndGuid
    no_file_selected_caption no_file_selected_message merging_terminate unable_to_continue
    combining_failed error_caption merge_combine_log show_log_question large_file_question
    fail_to_open_last_created_file_message filter_caption due_to_invalid_schema
    due_to_invalid_units not_all_projects_merge projects_that_will_be_merged
    projects_that_will_not_be_merged
    could_not_open_file could_not_open_file_extension could_not_open_file_write
    unknown_schema_identifier unknown_entity_name_in_schema
    '''.split())

SENTENCES = ['btn_merge.hint', 'merge_active.hint', 'merge_visible.hint', 'merge_selected.hint',
             'btn_options_description', 'open_recent_created_file_button_description',
             'no_file_selected_message', 'combining_failed', 'large_file_question',
             'fail_to_open_last_created_file_message', 'could_not_open_file_write',
             'merging_terminate']
QUESTIONS = ['continue_question', 'progress_bar_cancel_message', 'show_log_question']
# Buttons and titles: a few words without a full stop.
CAPTIONS = ['group.Corvel', 'btn_merge', 'merge_active', 'merge_visible', 'merge_selected',
            'options_window_name', 'open_recent_created_file_button_name',
            'btn_set_coordinate_center', 'btn_set_coordinates', 'btn_reset_coordinate_center',
            'btn_ok', 'name', 'nameAndGuid', 'error_caption', 'no_file_selected_caption',
            'btnCancelName', 'filter_caption', 'finalizing']
OPTIONS = ['option_guid_duplication_group_name', 'option_guid_duplication_generate',
           'option_guid_duplication_skip', 'option_guid_duplication_remember',
           'option_ignore_units', 'option_ignore_enume_errors']
# They get a blank and more text behind them.
BEFORE_A_BLANK = ['could_not_open_file', 'could_not_open_file_extension',
                  'could_not_open_file_write', 'unknown_schema_identifier',
                  'unknown_entity_name_in_schema', 'merge_combine_log', 'not_all_projects_merge']

# They get a colon behind them, and the name of a file or a list of units.
BEFORE_A_COLON = {'btn_merge', 'checking_files', 'reading_file', 'deleting_entities_from',
                  'exporting_file_as', 'due_to_invalid_units'}

# Pixels of each picture: the ribbon's large ones and its small ones.
PICTURES = {'merge.png': 32, 'open.png': 32, 'merge_small.png': 16, 'combine_active.png': 16,
            'combine_visible_small.png': 16, 'combine_selected.png': 16, 'options.png': 16,
            'open_small.png': 16}
ICONS = [DATA / 'options.ico', ROOT / 'data' / 'icons' / 'corvel.ico']
ICON_SIZES = [16, 24, 32, 48, 256]

NO_BREAK_SPACE = '\u00a0'


def data_of(language):
    return (DATA / ('lang.' + language)).read_bytes()


def decode(text):
    """The text that stands behind "="; a ValueError tells what is wrong with it."""
    if text.startswith('"'):
        match = re.fullmatch(r'"((?:[^"\\]|\\.)*)"', text)
        if not match:
            raise ValueError('quotes')
        text = match.group(1)
    elif text != text.strip():
        raise ValueError('blanks at the end of a text without quotes')
    if re.search(r'\\(?![n\\"])', re.sub(r'\\[n\\"]', '', text)):
        raise ValueError('escape')
    return re.sub(r'\\([n\\"])', lambda m: {'n': '\n'}.get(m.group(1), m.group(1)), text)


def lines_of(language):
    """Number of the line, key and raw text, for each line that is no comment."""
    lines = data_of(language).decode('utf-8').split('\n')
    return [(number, *line.partition(' = ')[::2]) for number, line in enumerate(lines, 1)
            if line and not line.startswith('#')]


def texts_of(language):
    return {key: decode(raw) for _, key, raw in lines_of(language)}


def png_size(data):
    """Width and height; a ValueError tells what is wrong with the picture."""
    if data[:8] != b'\x89PNG\r\n\x1a\n':
        raise ValueError('signature')
    at, size, last = 8, None, None
    while at < len(data):
        length, last = struct.unpack('>I4s', data[at:at + 8])
        body = data[at + 8:at + 8 + length]
        (checksum,) = struct.unpack('>I', data[at + 8 + length:at + 12 + length])
        if checksum != zlib.crc32(last + body):
            raise ValueError('checksum of ' + str(last))
        if last == b'IHDR':
            size = struct.unpack('>II', body[:8])
            if tuple(body[8:10]) != (8, 6):
                raise ValueError('not 8 bits of red, green, blue and alpha')
        at += 12 + length
    if last != b'IEND':
        raise ValueError('cut short')
    return size


def ico_sizes(data):
    """The sides of the pictures in an icon, as its directory and the pictures themselves say."""
    reserved, kind, count = struct.unpack('<HHH', data[:6])
    if (reserved, kind) != (0, 1):
        raise ValueError('no icon')
    sizes = []
    for i in range(count):
        width, height, _, _, _, bits, length, offset = struct.unpack(
            '<BBBBHHII', data[6 + 16 * i:22 + 16 * i])
        picture = data[offset:offset + length]
        if len(picture) != length or bits != 32:
            raise ValueError('picture %d' % i)
        if picture[:4] == b'\x89PNG':
            own = png_size(picture)
        else:  # a bitmap of double height: colours, then the mask
            header, own_width, own_height, _, depth = struct.unpack('<IiiHH', picture[:16])
            if header != 40 or depth != 32:
                raise ValueError('bitmap %d' % i)
            own = (own_width, own_height // 2)
        if own != (width or 256, height or 256) or own[0] != own[1]:
            raise ValueError('size of picture %d' % i)
        sizes.append(own[0])
    return sizes


class LanguageFiles(unittest.TestCase):

    def for_every_language(self, check):
        for language in LANGUAGES:
            with self.subTest(language=language):
                check(language)

    def test_TheseLanguagesAndNoOthersAreThere(self):
        self.assertEqual(sorted('lang.' + language for language in LANGUAGES),
                         sorted(path.name for path in DATA.glob('lang.*')))

    def test_FilesAreUtf8WithoutAMarkAndEndLinesWithLf(self):
        def check(language):
            data = data_of(language)
            data.decode('utf-8', errors='strict')
            self.assertFalse(data.startswith(b'\xef\xbb\xbf'))
            self.assertNotIn(b'\r', data)
            self.assertNotIn(b'\t', data)
            self.assertTrue(data.endswith(b'\n') and not data.endswith(b'\n\n'))
        self.for_every_language(check)

    def test_EveryFileHasEveryKeyOnceAndNoOther(self):
        self.assertEqual(60, len(KEYS))

        def check(language):
            self.assertEqual(sorted(KEYS), sorted(key for _, key, _ in lines_of(language)))
        self.for_every_language(check)

    def test_EveryTextIsWellFormedAndNotEmpty(self):
        for language in LANGUAGES:
            for number, key, raw in lines_of(language):
                with self.subTest(language=language, line=number, key=key):
                    self.assertNotEqual('', decode(raw).strip())

    def test_KeysStandInTheSameOrderUnderTheSameComments(self):
        def shape(language):
            lines = data_of(language).decode('utf-8').split('\n')
            return [line.partition(' = ')[0] for line in lines[lines.index(''):]]

        def check(language):
            self.assertEqual(shape('en'), shape(language))
        self.for_every_language(check)

    def test_TranslationsBeginAndEndWithTheSameLineFeeds(self):
        english = texts_of('en')

        def ends(text):
            return (len(text) - len(text.lstrip('\n')), len(text) - len(text.rstrip('\n')))

        def check(language):
            for key, text in texts_of(language).items():
                with self.subTest(key=key):
                    self.assertEqual(ends(english[key]), ends(text))
                    self.assertNotIn('\n', text.strip('\n'))
        self.for_every_language(check)

    def test_SentencesEndWithAFullStopAndQuestionsWithAQuestionMark(self):
        def check(language):
            texts = texts_of(language)
            for key in SENTENCES:
                self.assertTrue(texts[key].endswith('.'), key)
            for key in QUESTIONS:
                self.assertTrue(texts[key].endswith('?'), key)
        self.for_every_language(check)

    def test_CaptionsAreShort(self):
        def check(language):
            texts = texts_of(language)
            for key in CAPTIONS:
                self.assertRegex(texts[key], r'^[^\n]{1,40}$', key)
                self.assertNotIn(texts[key][-1], '.:!?')
            for key in OPTIONS:
                self.assertRegex(texts[key], r'^[^\n]{1,60}$', key)
                self.assertNotIn(texts[key][-1], '.:!?')
        self.for_every_language(check)

    def test_TextsWithMoreBehindThemDoNotEndWithABlank(self):
        def check(language):
            texts = texts_of(language)
            for key in BEFORE_A_BLANK:
                self.assertEqual(texts[key].strip(), texts[key], key)
        self.for_every_language(check)

    def test_TheNameOfTheResultKeepsToFileNames(self):
        def check(language):
            self.assertRegex(texts_of(language)['merged'], r'^_[a-z]+$')
        self.for_every_language(check)

    def test_FrenchPunctuationHasItsNoBreakSpace(self):
        for key, text in texts_of('fr').items():
            with self.subTest(key=key):
                self.assertNotRegex(text, '[^%s][:;?!]' % NO_BREAK_SPACE)
                self.assertNotRegex(text, '%s[^:;?!]' % NO_BREAK_SPACE)

    def test_FrenchTextsEndWithANoBreakSpaceWhereAColonFollows(self):
        self.assertEqual(BEFORE_A_COLON, {key for key, text in texts_of('fr').items()
                                          if text.endswith(NO_BREAK_SPACE)})

    def test_BlanksAreThoseThatEveryFontHas(self):
        def check(language):
            for key, text in texts_of(language).items():
                self.assertNotRegex(text, '[\u2000-\u200f\u202f\u205f\u2060\u3000\ufeff]', key)
        self.for_every_language(check)

    def test_EnglishTextsGluedTogetherReadWell(self):
        text = texts_of('en')
        self.assertEqual(
            'Not all projects can be merged with "a.ifc"(IFC4) because their IFC schema is '
            'different.\n'
            'Projects that will not be merged:\n'
            'b.ifc(IFC2X3)\n',
            text['not_all_projects_merge'] + ' "a.ifc"(IFC4)' + text['due_to_invalid_schema'] +
            '.' + text['projects_that_will_not_be_merged'] + 'b.ifc(IFC2X3)\n')
        self.assertEqual(
            'This file could not be read completely:\n'
            'D:\\a.ifc\n'
            'The merge will be terminated.\n'
            'Log file: D:\\a_LOG.txt',
            text['unable_to_continue'] + 'D:\\a.ifc' + text['merging_terminate'] + '\n' +
            text['merge_combine_log'] + ' ' + 'D:\\a_LOG.txt')

    def test_EveryKeyThatTheSourcesNameHasAText(self):
        call = re.compile(r'\b(?:(?:Get)?Text|TextOf|[sS]howError_?)\(\s*"([^"]+)"')
        found = set()
        for layer in ('core', 'step', 'schema', 'merge', 'plugin'):
            for path in sorted((ROOT / 'src' / layer).rglob('*.cpp')):
                for key in call.findall(path.read_text(encoding='utf-8')):
                    found.add(key)
                    with self.subTest(file=str(path.relative_to(ROOT)), key=key):
                        self.assertIn(key, KEYS)
        self.assertIn('could_not_open_file', found)


class DecodeOfThisTest(unittest.TestCase):
    """The checks above are worth as much as what `decode` refuses."""

    def test_Refuses(self):
        for raw in ('"open', '"a"b"', '"a\\"', '"', 'a\\t', 'a\\', '"\\x"', ' a', 'a '):
            with self.subTest(raw=raw):
                self.assertRaises(ValueError, decode, raw)

    def test_Decodes(self):
        self.assertEqual(' \n\\n"', decode('" \\n\\\\n\\""'))
        self.assertEqual('the "a" counts', decode('the "a" counts'))


class Pictures(unittest.TestCase):

    def test_EveryPictureOfTheRibbonIsThereInItsSize(self):
        for name, size in PICTURES.items():
            with self.subTest(name=name):
                self.assertEqual((size, size), png_size((DATA / name).read_bytes()))

    def test_IconsHoldAllSizes(self):
        for path in ICONS:
            with self.subTest(name=path.name):
                self.assertEqual(ICON_SIZES, ico_sizes(path.read_bytes()))

    def test_EveryPictureHasItsDrawing(self):
        pictures = {Path(name).stem for name in PICTURES} | {path.stem for path in ICONS}
        drawings = {path.stem for path in (ROOT / 'data' / 'icons').glob('*.svg')}
        self.assertEqual(pictures, drawings)

    def test_NothingElseIsShipped(self):
        names = {'lang.' + language for language in LANGUAGES} | set(PICTURES) | {'options.ico'}
        self.assertEqual(names, {path.name for path in DATA.iterdir()})

    def test_EveryPictureThatThePlugInNamesIsThere(self):
        for path in sorted((ROOT / 'src' / 'plugin').rglob('*.cpp')):
            for name in re.findall(r'"(?:[^"]*[\\/])?(\w+\.(?:png|ico))"',
                                   path.read_text(encoding='utf-8')):
                with self.subTest(file=path.name, name=name):
                    self.assertTrue((DATA / name).is_file())


if __name__ == '__main__':
    unittest.main()
