"""Compressed models, in and out, judged by other programs: Python's zipfile, unzip and zipinfo."""

import io
import os
import random
import re
import shutil
import struct
import subprocess
import unittest
import zipfile
import zlib

from support import (CANCELLED, DONE, NOTHING_WRITTEN, ON_WINDOWS, WITH_REPORTS, CorvelTest,
                     data_limit, large_model, model, project, records_of)

MODEL = project('#2=IFCPOLYLINE((#3,#4));', '#3=IFCCARTESIANPOINT((1.,2.));',
                '#4=IFCCARTESIANPOINT((3.5,-2.));')
OTHER = MODEL.replace(b'0YvCt7Q5n0JgN0tW6Vw4pA', b'1YvCt7Q5n0JgN0tW6Vw4pA')

CRC, FLAGS = 14, 6     # places in a local header
DIRECTORY = 2          # the same things stand so much further in the directory's


def small_model(records):
    """A model of some hundred kilobytes."""
    generator = random.Random(2)
    return project(*(f'#{number}=IFCCARTESIANPOINT(({generator.randrange(10 ** 9)}.,1.));'
                     for number in range(2, records)))


def zipped(*entries, comment=b'', **options):
    """The bytes of an archive: entries are (name or ZipInfo, content)."""
    options = {'compression': zipfile.ZIP_DEFLATED, **options}
    holder = io.BytesIO()
    with zipfile.ZipFile(holder, 'w', **options) as archive:
        for name, content in entries:
            archive.writestr(name, content)
        archive.comment = comment
    return holder.getvalue()


class Unseekable(io.BytesIO):
    """Makes zipfile write the sizes behind the data."""

    def seekable(self):
        return False

    def seek(self, *arguments):
        raise io.UnsupportedOperation

    def tell(self):
        raise io.UnsupportedOperation


def streamed(name, content):
    holder = Unseekable()
    with zipfile.ZipFile(holder, 'w', zipfile.ZIP_DEFLATED) as archive:
        archive.writestr(name, content)
    return holder.getvalue()


def with_large_sizes(name, content):
    """Sizes and offset in the field for large archives, here and in the directory, whatever they
    are; the end of the directory in the form for large archives too."""
    packer = zlib.compressobj(6, zlib.DEFLATED, -15)
    packed = packer.compress(content) + packer.flush()
    name = name.encode()
    crc = zlib.crc32(content)
    extra = struct.pack('<HHQQ', 1, 16, len(content), len(packed))
    local = struct.pack('<4s5H3L2H', b'PK\3\4', 45, 0, 8, 0, 33, crc, 0xFFFFFFFF, 0xFFFFFFFF,
                        len(name), len(extra)) + name + extra + packed
    extra = struct.pack('<HHQQQ', 1, 24, len(content), len(packed), 0)
    record = struct.pack('<4s6H3L5H2L', b'PK\1\2', 45, 45, 0, 8, 0, 33, crc, 0xFFFFFFFF,
                         0xFFFFFFFF, len(name), len(extra), 0, 0, 0, 0, 0xFFFFFFFF) + name + extra
    end = struct.pack('<4sQ2H2L4Q', b'PK\6\6', 44, 45, 45, 0, 0, 1, 1, len(record), len(local))
    end += struct.pack('<4sLQL', b'PK\6\7', 0, len(local) + len(record), 1)
    end += struct.pack('<4s4H2LH', b'PK\5\6', 0, 0, 0xFFFF, 0xFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0)
    return local + record + end


class ZipTest(CorvelTest):

    def resave(self, source, output, status=DONE):
        ended = self.run_corvel('resave', source, output)
        self.assert_ended(ended, status)
        return ended

    def plain(self, content=MODEL):
        """What resaving the model gives as a plain file."""
        self.write('plain.ifc', content)
        self.resave('plain.ifc', 'plain_out.ifc')
        return self.read('plain_out.ifc')

    def entry(self, archive):
        """The name and the content of the only entry, as zipfile takes it."""
        with zipfile.ZipFile(self.path(archive).decode()) as file:
            self.assertIsNone(file.testzip())
            info, = file.infolist()
            return info, file.read(info)


class Written(ZipTest):

    def setUp(self):
        super().setUp()
        self.wanted = self.plain()

    def test_the_entry_is_the_plain_file(self):
        self.resave('plain.ifc', 'Merged.ifczip')
        info, content = self.entry('Merged.ifczip')
        self.assertEqual(self.wanted, content)
        self.assertEqual('Merged.ifc', info.filename)

    def test_a_merged_model_too(self):
        self.write('other.ifc', OTHER)
        plain = self.run_corvel('merge', 'plain.ifc', 'other.ifc', '-o', 'a.ifc')
        packed = self.run_corvel('merge', 'plain.ifc', 'other.ifc', '-o', 'a.ifczip')
        self.assertEqual(plain.status, packed.status)
        self.assertEqual(self.read('a.ifc'), self.entry('a.ifczip')[1])

    def test_a_large_model_too(self):
        content = large_model(5)
        wanted = self.plain(content)
        self.resave('plain.ifc', 'large.ifczip')
        self.assertTrue(wanted == self.entry('large.ifczip')[1])
        self.assertLess(len(self.read('large.ifczip')), len(wanted) // 3)

    def test_the_settings(self):
        self.resave('plain.ifc', 'out.ifczip')
        info, _ = self.entry('out.ifczip')
        self.assertEqual((10, 45), (info.create_system, info.create_version))
        self.assertEqual(0, info.flag_bits & ~8)
        self.assertEqual(zipfile.ZIP_DEFLATED, info.compress_type)
        self.assertEqual((1980, 0, 0, 0, 0, 0), info.date_time)
        self.assertEqual((b'', b'', 0), (info.extra, info.comment, info.external_attr))

    def test_the_ending_may_be_in_capitals(self):
        self.resave('plain.ifc', 'Model.IFCZIP')
        self.assertEqual('Model.ifc', self.entry('Model.IFCZIP')[0].filename)

    def test_names_beyond_ascii(self):
        self.resave('plain.ifc', 'kühl.ifczip')
        name, = re.findall(b'PK\1\2.{42}(k.*)PK\5\6', self.read('kühl.ifczip'), re.DOTALL)
        self.assertEqual('kühl.ifc'.encode(), name)
        self.assertEqual(self.wanted, self.entry('kühl.ifczip')[1])

    def test_an_archive_there_already_is_replaced(self):
        self.write('out.ifczip', b'x' * 100_000)
        self.resave('plain.ifc', 'out.ifczip')
        self.assertEqual(self.wanted, self.entry('out.ifczip')[1])

    def test_it_comes_back(self):
        self.resave('plain.ifc', 'a.ifczip')
        self.resave('a.ifczip', 'b.ifczip')
        self.resave('b.ifczip', 'c.ifc')
        self.assertEqual(self.wanted, self.read('c.ifc'))

    @unittest.skipUnless(shutil.which('unzip') and not ON_WINDOWS, 'unzip is not there')
    def test_unzip_finds_nothing_wrong(self):
        self.resave('plain.ifc', 'out.ifczip')
        done = subprocess.run(['unzip', '-t', 'out.ifczip'], cwd=self.folder, capture_output=True,
                              text=True, check=False)
        self.assertEqual(0, done.returncode, done.stdout)
        self.assertIn('testing: out.ifc                  OK', done.stdout)
        self.assertIn('No errors detected', done.stdout)

    @unittest.skipUnless(shutil.which('zipinfo') and not ON_WINDOWS, 'zipinfo is not there')
    def test_zipinfo_shows_the_settings(self):
        self.resave('plain.ifc', 'out.ifczip')
        shown = subprocess.run(['zipinfo', '-v', 'out.ifczip'], cwd=self.folder, check=True,
                               capture_output=True, text=True).stdout
        for label, value in (('version of encoding software', '4.5'),
                             ('compression method', 'deflated'),
                             (r'compression sub-type \(deflation\)', 'normal'),
                             ('file security status', 'not encrypted'),
                             ('length of extra field', '0 bytes'),
                             ('length of file comment', '0 characters'),
                             ('uncompressed size', f'{len(self.wanted)} bytes')):
            with self.subTest(label):
                self.assertRegex(shown, rf'(?m)^  {label}: +{re.escape(value)}$')
        self.assertIn('There is no zipfile comment.', shown)


class Read(ZipTest):

    def setUp(self):
        super().setUp()
        self.wanted = self.plain()

    def check(self, archive):
        """Reads it as an archive of a model and as a container."""
        self.write('in.ifczip', archive)
        self.resave('in.ifczip', 'out.ifc')
        self.assertEqual(self.wanted, self.read('out.ifc'))
        names = zipfile.ZipFile(io.BytesIO(archive)).namelist()
        entry = next(name for name in names if not name.endswith('/'))
        self.write('in.olf', archive)
        self.resave(f'in.olf|{entry}', 'out.ifc')
        self.assertEqual(self.wanted, self.read('out.ifc'))

    def test_stored(self):
        self.check(zipped(('m.ifc', MODEL), compression=zipfile.ZIP_STORED))

    def test_deflated_at_every_level(self):
        for level in range(10):
            with self.subTest(level):
                self.check(zipped(('m.ifc', MODEL), compresslevel=level))

    def test_several_entries(self):
        self.check(zipped(('m.ifc', MODEL), ('n.ifc', b'no model'), ('o.txt', b'')))

    def test_any_name(self):
        self.check(zipped(('read me.txt', MODEL), ('n.ifc', b'no model')))

    def test_a_folder_first(self):
        self.check(zipped(('models/', b''), ('models/new/', b''), ('models/new/m.ifc', MODEL)))

    def test_sizes_behind_the_data(self):
        self.check(streamed('m.ifc', MODEL))

    def test_sizes_for_large_archives(self):
        archive = with_large_sizes('m.ifc', MODEL)
        self.assertEqual(MODEL, zipfile.ZipFile(io.BytesIO(archive)).read('m.ifc'))
        self.check(archive)
        holder = io.BytesIO()
        with zipfile.ZipFile(holder, 'w', zipfile.ZIP_DEFLATED) as file:
            with file.open('m.ifc', 'w', force_zip64=True) as entry:
                entry.write(MODEL)
        self.check(holder.getvalue())

    def test_names_beyond_ascii(self):
        self.check(zipped(('größe/房子.ifc', MODEL)))

    def test_comments_and_extra_fields(self):
        info = zipfile.ZipInfo('m.ifc', (2024, 5, 6, 7, 8, 10))
        info.comment = b'of the entry'
        info.extra = struct.pack('<HHBL', 0x5455, 5, 1, 1_700_000_000)
        info.compress_type = zipfile.ZIP_DEFLATED
        self.check(zipped((info, MODEL), comment=b'of the archive' * 100))

    def test_bytes_in_front(self):
        holder = io.BytesIO(b'#!/bin/sh\nexit\n')
        holder.seek(0, io.SEEK_END)
        with zipfile.ZipFile(holder, 'a', zipfile.ZIP_DEFLATED) as archive:
            archive.writestr('m.ifc', MODEL)
        self.check(holder.getvalue())

    @unittest.skipUnless(shutil.which('zip') and not ON_WINDOWS, 'zip is not there')
    def test_what_zip_writes(self):
        os.mkdir(self.path('sub'))
        self.write('sub/m.ifc', MODEL)
        for options in (['-r'], ['-r', '-D'], ['-0', '-r'], ['-9', '-r'], ['-r', '-fz']):
            with self.subTest(options):
                if os.path.exists(self.path('in.ifczip')):
                    os.remove(self.path('in.ifczip'))
                subprocess.run(['zip', '-q', *options, 'in.ifczip', 'sub'], cwd=self.folder,
                               check=True)
                self.check(self.read('in.ifczip'))

    def test_info_and_merge_take_archives(self):
        self.write('a.ifczip', zipped(('m.ifc', MODEL)))
        self.write('b.olf', zipped(('x', b'y'), ('sub/m.ifc', OTHER)))
        self.write('other.ifc', OTHER)
        packed = self.run_corvel('merge', 'a.ifczip', 'b.olf|sub/m.ifc', '-o', 'z.ifc')
        plain = self.run_corvel('merge', 'plain.ifc', 'other.ifc', '-o', 'p.ifc')
        self.assertEqual(plain.status, packed.status)
        self.assertEqual(records_of(self.read('p.ifc')), records_of(self.read('z.ifc')))
        for name in ('a.ifczip', 'b.olf|sub/m.ifc'):
            ended = self.run_corvel('info', name)
            self.assert_ended(ended, DONE, err='')
            self.assertIn('IFCPOLYLINE', ended.out)
            self.assertIn(f'size in bytes         {len(MODEL)}\n', ended.out)


class Damaged(ZipTest):
    """A message, and nothing written; a tool that is asked for facts says what is wrong."""

    def assert_not_written(self, archive, *messages):
        self.write('in.ifczip', archive)
        ended = self.run_corvel('resave', 'in.ifczip', 'out.ifczip')
        self.assertIn(ended.status, (NOTHING_WRITTEN, CANCELLED), ended.err)
        self.assertFalse(os.path.exists(self.path('out.ifczip')))
        for message in messages or ('in.ifczip',):
            self.assertIn(message, ended.err)
        facts = self.run_corvel('info', 'in.ifczip')
        self.assertEqual(NOTHING_WRITTEN, facts.status, facts.out)
        return ended

    def test_cut_at_every_kilobyte(self):
        archive = zipped(('m.ifc', small_model(9000)))
        self.assertGreater(len(archive), 40 << 10)
        for size in range(0, len(archive), 1024):
            with self.subTest(size):
                self.assert_not_written(archive[:size])

    def test_flipped_bits(self):
        content = small_model(1500)
        wanted = self.plain(content)
        archive = zipped(('m.ifc', content))
        generator = random.Random(5)
        places = [generator.randrange(len(archive) * 8) for _ in range(60)]
        header = range(0, 30 * 8, 7)
        written = 0
        for bit in [*places, *header]:
            flipped = bytearray(archive)
            flipped[bit // 8] ^= 1 << bit % 8
            self.write('in.ifczip', flipped)
            ended = self.run_corvel('resave', 'in.ifczip', 'out.ifc')
            if ended.status == DONE:
                self.assertEqual(wanted, self.read('out.ifc'), bit)
                os.remove(self.path('out.ifc'))
                written += 1
            else:
                self.assertIn(ended.status, (NOTHING_WRITTEN, CANCELLED), ended.err)
                self.assertIn('in.ifczip', ended.err)
                self.assertFalse(os.path.exists(self.path('out.ifc')), bit)
        self.assertLess(written, len(header))

    def change(self, archive, place, form, value):
        """Both headers of the only entry, with another number in them."""
        changed = bytearray(archive)
        struct.pack_into(form, changed, place, value)
        struct.pack_into(form, changed, archive.rindex(b'PK\1\2') + place + DIRECTORY, value)
        return bytes(changed)

    def test_a_wrong_checksum(self):
        for method in (zipfile.ZIP_STORED, zipfile.ZIP_DEFLATED):
            archive = zipped(('m.ifc', MODEL), compression=method)
            self.assert_not_written(self.change(archive, CRC, '<L', 1),
                                    'The data in the zip archive is damaged: in.ifczip')

    def test_sizes_that_lie(self):
        archive = zipped(('m.ifc', small_model(9000)))
        size, = struct.unpack_from('<L', archive, CRC + 8)
        for lie in (1, size - 1, size + 1, 0x7FFFFFFF, 0xFFFFFFFE):
            with self.subTest(lie):
                self.assert_not_written(self.change(archive, CRC + 8, '<L', lie), 'in.ifczip')
        for lie in (0, 1, 1000):
            with self.subTest(lie):
                self.assert_not_written(self.change(archive, CRC + 4, '<L', lie), 'in.ifczip')

    def test_an_encrypted_entry(self):
        archive = zipped(('m.ifc', MODEL))
        self.assert_not_written(self.change(archive, FLAGS, '<H', 1),
                                'Could not open first file in zip archive')

    def test_other_compressions(self):
        for method in (zipfile.ZIP_BZIP2, zipfile.ZIP_LZMA):
            self.assert_not_written(zipped(('m.ifc', MODEL), compression=method),
                                    'Could not open first file in zip archive')

    def test_no_archive_at_all(self):
        self.assert_not_written(MODEL, 'Could not open zip archive: in.ifczip')
        self.assert_not_written(b'', 'this file is empty')

    def test_an_entry_without_bytes(self):
        self.assert_not_written(zipped(('m.ifc', b'')), 'the model in it is empty')

    def test_one_bad_model_keeps_a_merge_from_being_written(self):
        self.write('a.ifc', MODEL)
        archive = zipped(('m.ifc', OTHER))
        self.write('b.ifczip', self.change(archive, CRC, '<L', 1))
        ended = self.run_corvel('merge', 'a.ifc', 'b.ifczip', '-o', 'out.ifc')
        self.assert_ended(ended, NOTHING_WRITTEN)
        self.assertIn('The data in the zip archive is damaged: b.ifczip', ended.err)
        self.assertFalse(os.path.exists(self.path('out.ifc')))

    @unittest.skipIf(ON_WINDOWS, 'memory is limited by the system')
    def test_a_quarter_of_a_gigabyte_of_zeros_takes_less_memory(self):
        limit = 200 << 20
        start, end = model('@').split(b'@')
        for front in (b'', start + b"#1=IFCPROJECT('0YvCt7Q5n0JgN0tW6Vw4pA',$,'P',$,$,$,$,$,$);"):
            self.write_bomb('in.ifczip', front, 1 << 28, end)
            self.assertLess(os.path.getsize(self.path('in.ifczip')), 3 << 20)
            ended, peak = self.run_measured('resave', 'in.ifczip', 'out.ifc')
            self.assertIn(ended, (DONE, NOTHING_WRITTEN, WITH_REPORTS))
            self.assertEqual(ended != NOTHING_WRITTEN, os.path.exists(self.path('out.ifc')))
            self.assertLess(peak, limit)

    def write_bomb(self, name, front, zeros, end):
        with zipfile.ZipFile(self.path(name).decode(), 'w', zipfile.ZIP_DEFLATED) as archive:
            with archive.open('m.ifc', 'w') as entry:
                entry.write(front)
                for _ in range(zeros >> 20):
                    entry.write(bytes(1 << 20))
                entry.write(end)

    def run_measured(self, *arguments):
        """The status and the most memory that the process had, in bytes."""
        process = self.start(*arguments, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        return process.returncode, usage.ru_maxrss << 10


@unittest.skipIf(ON_WINDOWS, 'disks are filled by limits of the system')
class FullDisks(ZipTest):

    def test_the_archive_is_complete_or_absent(self):
        self.write('a.ifc', large_model(3))
        self.resave('a.ifc', 'whole.ifczip')
        size = len(self.read('whole.ifczip'))
        # The working file is smaller than the archive here, so that only the output fails.
        for limit in range(size - 1, size // 2 + (200 << 10), -size // 7):
            with self.subTest(limit):
                ended = self.run_corvel('resave', 'a.ifc', 'whale.ifczip',
                                        preexec_fn=data_limit(limit))
                self.assert_ended(ended, NOTHING_WRITTEN)
                self.assertIn('Could not write to zip file', ended.err)
                self.assertFalse(os.path.exists(self.path('whale.ifczip')))


if __name__ == '__main__':
    unittest.main()
