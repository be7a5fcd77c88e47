#include "host/help_texts.h"

#include "host/check/check_help.h"
#include "host/diff/diff_help.h"
#include "host/tree_help.h"

namespace corvel::host {

namespace {

constexpr char16_t kGeneral[] =
    uR"help(corvel - merges building models in the IFC format

Usage:
  corvel merge FILE FILE... -o OUT   fold all models into the first, write OUT
  corvel extract IN -o OUT           write what is chosen of one model
  corvel resave IN OUT               read one model and write it back
  corvel optimise IN OUT             write one model as small as it can be
  corvel info FILE...                tell what files hold
  corvel tree FILE                   show the objects of one model as a tree
  corvel diff A B                    tell what has changed between two models
  corvel check FILE...               tell what is in models and wrong with them
  corvel COMMAND --help              all about one command
  corvel --help                      this text
  corvel --version                   the version

Models are STEP physical files (.ifc, .ifczip) of the releases IFC2X_FINAL,
IFC2X2_PLATFORM, IFC2X2_FINAL, IFC2X3, IFC4, IFC4X1, IFC4X2, IFC4X3_ADD2 and
IFC4X4.

Exit status:
  0    done: written (or shown), and nothing was reported
  1    nothing was written; with info and tree: a file had a problem
  2    wrong usage
  3    cancelled by the user or by SIGTERM, nothing was written
  4    written, but errors or remarks were reported; with diff: the models
       are different; with check: errors were found
  130  interrupted a second time

A file name that begins with "-" goes behind "--". "-" itself is standard
input, which is kept as a file in the work folder meanwhile, or as OUT standard
output: the model is sent, as plain IFC, when it is complete, and nothing else
goes there. Where FILE... stands a folder means all models in it, by name (on
Windows also patterns are files: *.ifc), and --files0-from LIST adds the files
that LIST names, each with a NUL behind it; "-" as LIST is standard input.
)help";

constexpr char16_t kMerge[] =
    uR"help(corvel merge - folds several models into the first and writes one file

Usage:
  corvel merge FILE FILE... -o OUT [options] [--] [FILE...]

Reads each FILE in the order given, folds all into the first, and writes OUT.
The first FILE gives the header, the project and the units of the result: the
projects of the other files give way to it, and everything else of them is
added, with new numbers where theirs are taken. All files have to be of one
schema; those of another than the first are left out, with a report. The same
file may be given twice. A model whose length unit or map conversion is not
that of the first is told in a line: no number of it is changed.

The plug-in of the viewer does the work, so that its config.txt counts here as
well: the choices made in its options window are yours.

)help";

constexpr char16_t kMergeOptions[] =
    uR"help(Options:
  -o, --output OUT        the file to write; required
  --mode active|visible|selected
                          which objects of the models are kept, see below
  --inactive FILE:LIST    these objects are not active
  --hide FILE:LIST        these objects are not visible
  --select FILE:LIST      these objects are selected
  --offset FILE=X,Y,Z     show this model so far from its own coordinates, in
                          millimetres; once for each model
  --center X,Y,Z          the coordinate centre of all models, in metres: it
                          becomes the origin
  --ignore-units          models whose units have other prefixes take part,
                          with their numbers as they are
  --delete-openings       openings go with what they are in
  --on-duplicate-guid generate|skip
                          the choice of the options window about a GUID that
                          two models share; it has no effect: both objects are
                          written, and keep it
  --dry-run               do everything but write, and tell what would become
                          of each model; takes no -o, and looks at one that is
                          given
)help";

constexpr char16_t kFederationOptions[] =
    uR"help(  --units keep|convert    convert: all values of a later model are rewritten in
                          the units of the first, and it takes part whatever
                          its own were
  --contexts keep|join    join: a context of a later model gives way to an
                          equal one of an earlier model, and those that stay
                          are entered in the project
  --place keep|map        map: later models stand relative to the first as
                          their map conversions say, if these are of one
                          reference system; what is shown elsewhere stays
  --tree keep|guid|name|elevation|one
                          sites, buildings and storeys of later models give
                          way to those of earlier ones, from the top down:
                          those of equal GUID; also of equal name or height;
                          also of equal height; as by name, and the only ones
                          of their level whatever they are called
  --tolerance MM          storeys that differ by no more are at one height; 10
                          without this option
  --propose-tree FILE     write to FILE what would become one and why, and what
                          stays apart, and nothing else; takes no -o, and
                          without --tree it is that of --tree one
  --tree-map FILE         take that file back, changed or not: what it tells
                          comes before all that --tree looks for
  --guids keep|renew|join renew: objects whose GUID an earlier one has get one
                          of their own, the same in each run; join: those that
                          say the same as that one give way to it before
  --prune                 leave out what nothing with a GUID needs
  --stamp                 a group for each model, with its products
  --header told|new       new: name, time and program of this run, and the
                          inputs in the description; told: that of the first
  --share-equal           write objects that say the same and have no identity
                          of their own once
  --one-building          --units convert --contexts join --place map
                          --tree one --guids join --prune --share-equal
                          --stamp --header new; options behind it change their
                          part: also --no-prune, --no-share-equal, --no-stamp
  --numbers told|exact    exact: each real in the fewest digits that read back
                          as the same number; told: in 15 digits
)help";

constexpr char16_t kMergeLists[] =
    uR"help(Objects that are kept:
Each model has objects: its IfcProject and every product, which are walls as
well as storeys and openings. 'corvel tree FILE' shows them. At first all are
active and visible, and none is selected. Of each model are kept, by --mode,
  active      the active objects
  visible     those that are both active and visible
  selected    the selected objects
and what they need. Without --mode it is 'selected' if there is a --select,
else 'visible' if there is a --hide, and 'active' otherwise. A model of which
nothing is kept takes no part, and at least two have to.

FILE is the position of a model among the inputs, 1 for the first, or its name
as given, or its file name. LIST has one or more of these, with commas between
them:
  #123        the object with that number
  IfcWall     all objects of that class, in any case, not those of subclasses
  2O2Fr$t4X7Zf8NOew3FLOH
              the object with that GUID
The IfcProject stands for all objects of its model. Whatever matches nothing is
wrong usage. Quote lists: '#' and '$' mean something to most shells. These
options may be given any number of times.

)help";

constexpr char16_t kExtract[] =
    uR"help(corvel extract - writes what is chosen of one model

Usage:
  corvel extract IN -o OUT [options]

Reads IN, marks its objects as a merge does with each of its models, and writes
OUT with those that are kept and all that they need, under their numbers.

Options:
  -o, --output OUT        the file to write; required
  --mode active|visible|selected
                          which objects are kept, see below
  --inactive LIST         these objects are not active
  --hide LIST             these objects are not visible
  --select LIST           these objects are selected
  --offset X,Y,Z          move the model so far from its own coordinates, in
                          millimetres
  --center X,Y,Z          the coordinate centre, in metres: it becomes the
                          origin
  --delete-openings       openings go with what they are in
)help";

constexpr char16_t kExtractLists[] =
    uR"help(Objects that are kept:
The model has objects: its IfcProject and every product, which are walls as
well as storeys and openings. 'corvel tree IN' shows them. At first all are
active and visible, and none is selected. Kept are, by --mode,
  active      the active objects
  visible     those that are both active and visible
  selected    the selected objects
and what they need. Without --mode it is 'selected' if there is a --select,
else 'visible' if there is a --hide, and 'active' otherwise.

LIST has one or more of these, with commas between them:
  #123        the object with that number
  IfcWall     all objects of that class, in any case, not those of subclasses
  2O2Fr$t4X7Zf8NOew3FLOH
              the object with that GUID
The IfcProject stands for all objects. Whatever matches nothing is wrong usage.
Quote lists: '#' and '$' mean something to most shells. These options may be
given any number of times.

)help";

constexpr char16_t kExtractExamples[] =
    uR"help(Examples:
  corvel extract house.ifc -o doors.ifc --select IfcDoor --prune
  corvel extract house.ifc -o bare.ifc --hide IfcSpace,IfcAnnotation
  corvel extract house.ifc -o moved.ifc --offset 0,0,-3500
)help";

constexpr char16_t kResave[] =
    uR"help(corvel resave - reads one model and writes it back

Usage:
  corvel resave IN OUT [options]

Reads IN and writes OUT with every record that was read, in order of their
numbers, one record to a line.

Options:
  --prune                 leave out what nothing with a GUID needs
  --share-equal           write objects that say the same and have no identity
                          of their own once
  --numbers told|exact    exact: each real in the fewest digits that read back
                          as the same number; told: in 15 digits
)help";

constexpr char16_t kOptimise[] =
    uR"help(corvel optimise - writes one model as small as it can be

Usage:
  corvel optimise IN OUT [options]

Reads IN and writes OUT as 'corvel resave' does with --prune, --share-equal and
--numbers exact: without records that nothing with a GUID needs, with equal
ones once, and with reals in the fewest digits that read back as the same
numbers. Tells how many records and bytes there were and are; bytes are those
of the model's text, packed or not.

Options:
  --no-prune              keep what nothing with a GUID needs
  --no-share-equal        write equal objects as often as they are there
  --numbers told          write reals in 15 digits
)help";

constexpr char16_t kModelOptions[] =
    uR"help(  --tolerant              open every model: what does not fit its release is
                          carried as it stands, and told once a kind and class
  --ignore-enum-errors    replace enumeration values that the release does
                          not know, and log that, instead of asking whether
                          to stop
  --quiet                 no progress bars and no word about success; reports
                          are shown still
  --threads N             read and write with so many threads, in the place of
                          one for each core that there is to use; no byte of
                          the output and no message depends on their number
  --answer yes|no         answer every question so instead of asking. The
                          question is always whether to stop.
  --report FILE           write what became of each model, and of what they
                          hold, to FILE: .html is a page for a browser, .json
                          the same for programs. Also when the run fails. May
                          be given twice; docs/report.md tells what is in it
  --progress bars|json    json: in the place of bars, progress as lines of JSON
                          on standard error; docs/report.md tells what is in
                          them
  --log FILE              where the log goes if there is one, in the place of
                          NAME_IFC_LOG.txt beside the output NAME.ifc
  --user-folder DIR       where config.txt and LastPath.txt lie, in the place
                          of Orlenta/plugins/corvel in your local data folder
  --work-folder DIR       where work files lie while a model is read, in the
                          place of the system's temporary folder
  -h, --help              this text

)help";

constexpr char16_t kModelFiles[] =
    uR"help(Inputs and output have names that end in .ifc or in .ifczip, a zip archive
whose first file is the model. 'CONTAINER.olf|ENTRY' is an input as well. OUT
may be there already: it is then replaced, in one step, when the new one is
complete. It must not be one of the inputs.
Before anything is read, all files are looked at, and the run is refused with a
message for each that is missing, a folder, empty, no STEP file or otherwise of
no use, and when no later model has the schema of the first.

Progress is shown in two bars, of the whole run and of the step at work, where
standard error is a terminal. Ctrl-C stops at the next tick of the progress;
on a terminal you are asked whether to stop, and without one the answer is
yes. A second Ctrl-C while the first has no answer yet ends the program at
once with exit status 130. SIGTERM and SIGHUP (on Windows Ctrl-Break, the end
of the session, the closing of the console) stop the run without a question.

OUT is either complete or what it was before: until then the new one stands
beside it as .OUT.corvel-PROCESS-NUMBER.part, so that its folder must take new
files. Whatever ends a run early removes that file; what a run leaves that was
ended by force goes with the next run that writes the same OUT. Where OUT is a
link, the file behind it is replaced; hard links to it keep the old content; a
device is written to itself. Mode, owner and group (on Windows attributes and
access rules) are kept where that can be done.

Beside the output there may be
  NAME_IFC_LOG.txt        the log, beside the output NAME.ifc, or the FILE of
                          --log. It is made by the first report: a run with
                          nothing to tell makes none. A log that is there is
                          replaced; for a file that is none of ours the next
                          number is taken, NAME_IFC_LOG2.txt and so on. If it
                          cannot be made, the run goes on without it.

While a model is read, a work file without a name lies in the system's
temporary folder (TMPDIR or /tmp; on Windows TMP or TEMP), or in that of
--work-folder, and goes with the reading, however it ends. It may become as
large as the model. Inputs may lie in folders that cannot be written.

Exit status:
  0    OUT was written, and nothing was reported
  1    nothing was written, and a message tells why: also when a question came
       up (such as after an unknown value) that nobody could be asked
  2    wrong usage
  3    cancelled: the question whether to stop was answered with yes, by you or
       by --answer, or the run was interrupted, or asked to end by SIGTERM and
       the like; nothing was written
  4    OUT was written, but something was reported. Everything that goes to
       the log as a report counts, also what is not shown, such as
       "IFC4X3_ADD2 is used instead" or a replaced enumeration value, and
       whatever --tolerant had to carry or to pass over. The log is kept, and
       its path is told.
  130  interrupted a second time, nothing was written

)help";

constexpr char16_t kMergeExamples[] =
    uR"help(Examples:
  corvel merge architecture.ifc structure.ifc -o building.ifc
  corvel merge --quiet --answer yes -o all.ifc a.ifc b.ifc c.ifc
  corvel merge a.ifc b.ifc --propose-tree tree.txt
  corvel merge a.ifc b.ifc --tree-map tree.txt -o building.ifc
  corvel merge a.ifc b.ifc -o out.ifc --hide '1:IfcSpace,IfcAnnotation'
  corvel merge a.ifc b.ifc -o out.ifc --select '1:#42,#57' --select 2:IfcBeam
  corvel merge a.ifc b.ifc -o out.ifc --offset 2=0,0,-3500
  corvel merge -o out.ifc -- -odd-name.ifc other.ifc
)help";

constexpr char16_t kResaveExamples[] =
    uR"help(Examples:
  corvel resave house.ifc house-clean.ifc
  corvel resave --ignore-enum-errors draft.ifc readable.ifc
)help";

constexpr char16_t kOptimiseExamples[] =
    uR"help(Examples:
  corvel optimise house.ifc house-small.ifc
  corvel optimise --no-prune house.ifc house-small.ifczip
)help";

constexpr char16_t kInfo[] =
    uR"help(corvel info - tells what model files hold

Usage:
  corvel info FILE... [--quick] [--json]

Shows for each FILE its size; the exporter, the units, where on earth it
stands, its sites, buildings and storeys with their heights, the products of
each class, how far their placements reach, and doubled GUIDs; then the fields
of its header, the release whose classes would serve it, the number of records,
and the number of records per class, the most frequent class first and equal
ones by name. The last of these works also on records that a merge would
refuse. An instance of several classes at once counts as "(complex)", a record
without a class name as "(nameless)". What is wrong tells corvel check.

For the first of these the whole model is read: that takes as long as a
resave, without its writing, and two bytes of memory for each of the file.
With --quick the file is looked through once, in constant memory.

Options:
  --quick                 leave out what takes the whole model: all up to the
                          doubled GUIDs
  --json                  for programs, see below
  --tolerant              look into a spoilt file as merge and resave take it
                          with this option
  -h, --help              this text
  --work-folder DIR       for the file that the reading needs meanwhile
  --quiet, --ignore-enum-errors, --answer yes|no, --log FILE,
  --threads N, --user-folder DIR
                          taken as by the other commands; there is nothing
                          that they change

With --json one object goes to standard output:
  {"files": [{
    "file":     the name as given,
    "bytes":    size,
    "header":   null without a readable header, or an object with
                "description" [], "implementationLevel", "name", "timeStamp",
                "author" [], "organization" [], "preprocessorVersion",
                "originatingSystem", "authorization", "schemaIdentifier",
    "schema":   the release, such as "IFC2X3", or null when none serves it,
    "records":  number of records,
    "classes":  {"IFCWALL": number of records, ...}, in the order told above,
    "remarks":  [texts worth knowing],
    "problems": [texts; empty when the file can be read],
    "model":    the facts told first, as "facts" in docs/check.schema.json;
                null when the file cannot be read, and with --quick
  }, ...]}
Bytes of the file that are no valid text stand there as U+FFFD.

Files with problems get a message on standard error; the other files are shown
all the same.

Exit status:
  0    all files were shown, and none has a problem
  1    a file has a problem
  2    wrong usage

Examples:
  corvel info house.ifc
  corvel info --json *.ifc | jq '.files[] | {file, walls: .classes.IFCWALL}'
)help";

}  // namespace

WideView GeneralHelp() { return kGeneral; }

WideView HelpOf(Command command) {
  static const WideString merge = WideString(kMerge) + kMergeOptions + kFederationOptions +
                                  kModelOptions + kMergeLists + kModelFiles + kMergeExamples;
  static const WideString extract = WideString(kExtract) + kFederationOptions + kModelOptions +
                                    kExtractLists + kModelFiles + kExtractExamples;
  static const WideString resave =
      WideString(kResave) + kModelOptions + kModelFiles + kResaveExamples;
  static const WideString optimise =
      WideString(kOptimise) + kModelOptions + kModelFiles + kOptimiseExamples;
  switch (command) {
    case Command::kMerge: return merge;
    case Command::kExtract: return extract;
    case Command::kResave: return resave;
    case Command::kOptimise: return optimise;
    case Command::kInfo: return kInfo;
    case Command::kTree: return TreeHelp();
    case Command::kDiff: return diff::Help();
    case Command::kCheck: return CheckHelp();
  }
  return kGeneral;
}

WideString VersionText() { return u"corvel " + Widen(CORVEL_VERSION) + u"\n"; }

}  // namespace corvel::host
