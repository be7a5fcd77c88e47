#include "host/check/check_help.h"

namespace corvel::host {

namespace {

constexpr char16_t kCheck[] =
    uR"help(corvel check - tells what is in models, and what is wrong with them

Usage:
  corvel check FILE... [--json]
  corvel check OUT --against IN... [--json]
  corvel check --explain RULE

Reads each FILE as with --tolerant, so that it never stops at the first
problem, and writes nothing. Of each file it tells the release, the exporter,
the units, where on earth it stands, its sites, buildings and storeys, the
products of each class, how far their placements reach, and then all that is
wrong: by rule, the worst first, with the number of places and the first three
of them. Of several files it tells at the end what does not fit together.

  error      the file breaks its schema, or the format
  warning    programs may differ in what they make of it
  note       worth knowing; nothing is broken

Options:
  --against IN...         tell of each finding in OUT whether it is old (in one
                          of the files IN as well), new or gone. Objects are
                          recognised by their GUIDs, others by what they say.
                          Takes all names up to the next option; a folder or
                          "-" is taken as in the place of FILE
  --files0-from LIST      these files as well: their names, each with a NUL
                          behind it
  --explain RULE          tell what a rule is about, and an example
  --json                  one JSON object, see docs/check.schema.json
  --report FILE           write all of it to FILE as well, with a plan and an
                          elevation: a page (.html) or JSON (.json); see
                          docs/report.md. Can be given again
  --quiet                 no progress on the terminal
  --answer yes|no         answer questions without asking
  --work-folder FOLDER    for the files that the reading needs meanwhile
  --tolerant, --ignore-enum-errors
                          taken, and nothing new: a check reads like that
  -h, --help              this text

Examples:
  corvel check house.ifc ducts.ifc
  corvel check all.ifc --against house.ifc ducts.ifc
  corvel check --explain CRV.list.few

Exit status:
  0    no errors (with --against: no new ones); there may be warnings
  1    a file could not be read
  2    wrong usage
  3    cancelled
  4    errors were found (with --against: new ones)
)help";

}  // namespace

WideView CheckHelp() { return kCheck; }

}  // namespace corvel::host
