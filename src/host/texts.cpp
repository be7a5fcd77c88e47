#include "host/texts.h"

#include <algorithm>
#include <iterator>

namespace corvel::host {

namespace {

struct Text {
  std::string_view key;
  WideView text;
};

constexpr Text kTexts[] = {
    // Reports: they stand before a message, with a blank between.
    {"could_not_open_file", u"Could not open the file"},
    {"could_not_open_file_extension", u"Could not open a file whose name does not end in .ifc:"},
    {"could_not_open_file_write", u"Could not open the file for writing."},
    {"fail_to_open_last_created_file_message", u"Could not open the last created file."},
    {"unknown_entity_name_in_schema", u"The schema has no class named"},
    {"unknown_schema_identifier", u"Unknown schema identifier"},
    // Cancelling.
    {"btnCancelName", u"Cancel"},
    {"continue_question", u"Do you want to continue?"},
    {"progress_bar_cancel_message", u"Are you sure you want to cancel?"},
    // Progress.
    {"btn_merge", u"Merging"},
    {"exporting_file_as", u"Writing"},
    {"finalizing", u"Finishing"},
    {"progress_bar_overall_progress", u"Overall progress"},
    {"reading_file", u"Reading"},
    // Of this program alone.
    {"file_was_cut_short",
     u"The closing line END-ISO-10303-21; is missing: the file seems to be cut short."},
    // End of a run.
    {"merge_combine_log", u"More is told in the log:"},
};

}  // namespace

WideString TextOf(std::string_view key) {
  const auto* const found = std::find_if(std::begin(kTexts), std::end(kTexts),
                                         [key](const Text& entry) { return entry.key == key; });
  return found == std::end(kTexts) ? Widen(key) : WideString(found->text);
}

}  // namespace corvel::host
