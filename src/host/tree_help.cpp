#include "host/tree_help.h"

namespace corvel::host {

namespace {

constexpr char16_t kTree[] =
    uR"help(corvel tree - shows the objects of one model as a tree

Usage:
  corvel tree FILE [--depth N] [--class LIST] [--properties] [--json]

Shows the IfcProject and every product of FILE, each in a line below its
parent with its number, class, GUID ("-" for none) and name: what is needed to
write the lists of 'corvel merge'. The file is read once and no objects are
made of it; records that cannot be read are passed over.

The parent of an object is what an IfcRelAggregates or IfcRelNests relates it
to, or the structure of an IfcRelContainedInSpatialStructure, or the element
of an IfcRelVoidsElement. Of several such relations that with the smallest
number counts, and an object without any belongs to the first IfcProject.
Children stand in order of their numbers. Of objects whose parents go in a
circle the first stands at the top. Below a depth of 32 the lines go no
further in; the depth then stands in front of them, as in "[33]".

Of a container without the name of an entry the entries are shown, each as
'CONTAINER.olf|ENTRY' with its bytes.

Options:
  --depth N               N levels from the top; 1 is the IfcProject alone
  --class LIST            objects of these classes alone, without indent:
                          IfcWall,IfcDoor (not their subtypes)
  --properties            behind each name the properties and quantities, as in
                          " | Pset_WallCommon.FireRating = 'F30'", with those
                          of the type; takes a whole reading of the model
  --json                  for programs, see below
  --tolerant              look into a spoilt file as merge and resave take it
                          with this option
  -h, --help              this text
  --work-folder DIR       where files of the moment go
  --quiet, --ignore-enum-errors, --answer yes|no, --log FILE,
  --threads N, --user-folder DIR
                          taken as by the other commands; there is nothing
                          that they change

With --json one object goes to standard output:
  {"file":     the name as given,
   "schema":   the release, such as "IFC2X3", or null when none serves it,
   "remarks":  [texts worth knowing],
   "problems": [texts; empty when the file can be read],
   "objects":  [{"number", "class", "guid", "name",
                 "parent": its number, or null for none,
                 "properties": {name: value}, with --properties}, ...]}
Objects stand in order of their numbers, one to a line. Of a container it is
{"file", "entries": [{"name", "bytes"}, ...]}.

Exit status:
  0    the objects were shown
  1    the file has a problem, and a message tells it
  2    wrong usage

Examples:
  corvel tree house.ifc
  corvel tree --json house.ifc | jq '.objects[] | select(.class == "IfcDoor")'
)help";

}  // namespace

WideView TreeHelp() { return kTree; }

}  // namespace corvel::host
