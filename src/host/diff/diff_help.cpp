#include "host/diff/diff_help.h"

namespace corvel::host::diff {

namespace {

constexpr char16_t kDiff[] =
    uR"help(corvel diff - tells what has changed between two models

Usage:
  corvel diff A B [--tolerance MM] [--json]

Reads both files and compares what they say: not the numbers of records, nor
their order, nor what order sets have, nor the GUIDs of relations and of sets
of properties, nor owner histories. Lengths, areas and volumes are compared in
metres, plane angles in degrees, whatever the units of the models.

An object is found again by its GUID; one that is not, by class, content and
place; and then by class, name and place, where these belong to one object of
each model. What has no GUID belongs to the object that leads to it.

Shown are objects that were removed (-), added (+) or changed (~), and those
that are there under another GUID (=). Of a changed object: its class,
attributes, property values and quantities (set.property), its place in the
world (moved by how much, turned), type, material, where it is contained, and
its other relations. A change that three objects or more have in common, such
as one move, is told once (*). Lines have 80 columns at most; what does not
fit ends in "...". On a terminal lines have colours.

Options:
  --tolerance MM          lengths and places that differ by no more than this
                          many millimetres are the same; 0.001 without it
  --json                  for programs: one object, as docs/diff.schema.json
                          describes it, with all values whole
  --tolerant              read spoilt files as merge and resave take them
                          with this option
  --ignore-enum-errors    unknown enumeration values are replaced, not asked
                          about
  --answer yes|no         answer all questions so, without asking
  --threads N             as many as work on a reading; the cores without it
  --work-folder DIR       where files of the moment go
  --quiet                 no progress on a terminal
  -h, --help              this text
  --log FILE, --user-folder DIR
                          taken as by the other commands; there is nothing
                          that they change

Exit status:
  0    the models are the same
  1    a file could not be read
  2    wrong usage
  3    cancelled
  4    the models are different

Examples:
  corvel diff monday.ifc tuesday.ifc
  corvel diff --tolerance 1 architect.ifc merged.ifc
  corvel diff --json a.ifc b.ifc | jq '.changed[].after.name'
)help";

}  // namespace

WideView Help() { return kDiff; }

}  // namespace corvel::host::diff
