// Entries whose sizes stand in the field for large archives ("zip64"), whatever their size.
#pragma once

#include "step/streams/archive_file.h"

namespace FileStream {

// Many programs write every entry as if it were larger than 4 GiB. The classic zip library looks
// for the mark of such sizes in an `unsigned long`, and where that has 64 bits it never finds it.
// Where the current entry's sizes were left unread, this makes the library read them as they are,
// as long as they fit into 32 bits; it changes nothing otherwise. False: the archive is damaged
// there. `file` is the one under `archive`, whose current entry has just been gone to.
bool ReadSizesOfLargeEntry(unzFile archive, ArchiveFile& file);

}  // namespace FileStream
