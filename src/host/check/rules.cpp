#include "host/check/rules.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace corvel::host {

namespace {

using enum Severity;

constexpr Rule kTable[] = {
    {RuleId::kHeader, "CRV.header.damaged", kError, u"The HEADER section is not as it should be",
     u"What could be found of it by the names of its records is kept.",
     u"FILE_NAME('a.ifc');  (without the other six values)"},
    {RuleId::kCutShort, "CRV.file.cut", kError, u"The file has no closing line",
     u"END-ISO-10303-21; is missing at the end: the file seems to be cut short, and records may be "
     u"lost. Ask for the file once more.",
     u"a file that ends behind its last record"},
    {RuleId::kSkipped, "CRV.syntax.skipped", kError, u"Bytes between the records are no record",
     u"They are passed over, and a save leaves them out.", u"#1=IFCWALL(...); hello #2=..."},
    {RuleId::kSection, "CRV.syntax.section", kWarning, u"A section that is not read",
     u"Models have a HEADER and one DATA section. Others (ANCHOR, REFERENCE, SIGNATURE, a second "
     u"DATA) are passed over, and a save leaves them out.",
     u"ANCHOR; ... ENDSEC;"},
    {RuleId::kString, "CRV.syntax.string", kError, u"A text has no apostrophe at its end",
     u"It is closed at the end of its line.", u"#1=IFCLABEL('wall);"},
    {RuleId::kEnumeration, "CRV.syntax.enum", kError, u"An enumeration value has no second point",
     u"It is closed.", u"#1=IFCSIUNIT(*,.LENGTHUNIT,$,.METRE.);"},
    {RuleId::kBracket, "CRV.syntax.bracket", kError, u"A record has no closing bracket",
     u"It is closed.", u"#1=IFCDIRECTION((0.,0.,1.);"},
    {RuleId::kComment, "CRV.syntax.comment", kError, u"A comment has no end",
     u"It is left out up to the end of its line.", u"#1=IFCDIRECTION((0.,/* up 1.));"},
    {RuleId::kSemicolon, "CRV.syntax.semicolon", kError, u"A record has no \";\" at its end",
     u"It ends before the next record.", u"#1=IFCDIRECTION((0.,0.,1.)) #2=..."},
    {RuleId::kStrayBytes, "CRV.syntax.stray", kError, u"Bytes within a record mean nothing",
     u"They are passed over, and a save leaves them out.", u"#1=IFCDIRECTION((0.,0.,1.)) !;"},
    {RuleId::kEndInRecord, "CRV.syntax.end", kError, u"The file ends inside of a record",
     u"The record is closed. What stood behind it is lost.", u"#1=IFCWALL('2o1y (end)"},
    {RuleId::kHiddenRecords, "CRV.syntax.hidden", kWarning,
     u"A comment or a text holds what looks like records",
     u"They are no part of the model. Somebody may have taken them out on purpose; or the end of a "
     u"comment, or an apostrophe, stands where it should not. Texts keep them.",
     u"/* (line) #1=IFCWALL(...); (line) */"},

    {RuleId::kSchema, "IFC101.schema", kError, u"No release has the schema that the file names",
     u"The release that has most of the file's classes reads it.",
     u"FILE_SCHEMA(('IFC4X4_17239AAA'));"},
    {RuleId::kUnknownClass, "CRV.class.unknown", kError, u"The release has no such class",
     u"The record is carried as it stands. If another release has the class, it counts as what it "
     u"is there.",
     u"#1=IFCSPACESHIP();"},
    {RuleId::kComplexInstance, "CRV.class.several", kError, u"An instance of several classes",
     u"No release of IFC has such. The record is carried as it stands.", u"#1=(IFCA()IFCB());"},
    {RuleId::kNoClass, "CRV.class.none", kError, u"A record without a class",
     u"It is carried as it stands.", u"#1=;"},
    {RuleId::kArgumentCount, "CRV.arguments.count", kError,
     u"More or fewer values than the class has attributes",
     u"They are carried as they stand. Often the file is of another release than it says.",
     u"#1=IFCDIRECTION((0.,0.,1.),$);"},
    {RuleId::kDoubledNumber, "CRV.number.doubled", kError, u"Two records have one number",
     u"References go to the first of them. The later one gets a free number.",
     u"#1=IFCWALL(...); #1=IFCDOOR(...);"},
    {RuleId::kNoNumber, "CRV.number.none", kError, u"A record without a number",
     u"It gets a free one; nothing can refer to it.", u"=IFCWALL(...);"},

    {RuleId::kUnknownValue, "CRV.enum.unknown", kError,
     u"The enumeration of the attribute has no such value",
     u"The value is carried as it stands. Often the file is of another release than it says.",
     u"#1=IFCSLAB(...,.SPACESHIP.);"},
    {RuleId::kWrongValue, "CRV.value.wrong", kError,
     u"A value of a type that the attribute refuses",
     u"It is carried as it stands. A mandatory enumeration without a value counts as such, too.",
     u"#1=IFCDIRECTION('up');"},
    {RuleId::kLargeInteger, "CRV.value.large", kWarning, u"A whole number of more than 32 bits",
     u"The schemas have no bounds for whole numbers, but many programs keep 32 bits of them. It is "
     u"carried as it stands.",
     u"#1=IFCPROPERTYSINGLEVALUE('a',$,IFCINTEGER(9876543210),$);"},
    {RuleId::kMissingValue, "CRV.value.missing", kError, u"A mandatory attribute has no value",
     u"A save writes * for a reference, 0. for a number, '' for a text, .F. or .U. for a truth "
     u"value and () for a list. Enumerations without a value are told by CRV.value.wrong, lists "
     u"that need members by "
     u"CRV.list.few.",
     u"#1=IFCLOCALPLACEMENT($,$);"},
    {RuleId::kWrongReference, "CRV.reference.wrong", kError,
     u"A reference to an object of a class that the attribute refuses",
     u"It is carried as it stands.", u"#1=IFCLOCALPLACEMENT($,#1);"},
    {RuleId::kDanglingReference, "CRV.reference.dangling", kError,
     u"A reference to a number that no record has",
     u"It is carried as it stands. Such files were often edited or filtered.",
     u"#1=IFCLOCALPLACEMENT(#99,#2);"},
    {RuleId::kFewMembers, "CRV.list.few", kError, u"A list has fewer members than it needs",
     u"A relation with an empty list relates nothing. A mandatory list that is absent counts as "
     u"empty.",
     u"#1=IFCRELAGGREGATES('2o1y...',$,$,$,#2,());"},
    {RuleId::kManyMembers, "CRV.list.many", kError, u"A list has more members than it may have",
     u"Programs may leave out those too many.", u"#1=IFCCARTESIANPOINT((0.,0.,0.,0.));"},
    {RuleId::kDoubledMember, "CRV.list.doubled", kError, u"A set has a member twice",
     u"Programs may count it twice.", u"#1=IFCRELAGGREGATES('2o1y...',$,$,$,#2,(#3,#3));"},
    {RuleId::kFewRelations, "CRV.inverse.few", kError,
     u"An object stands in fewer relations than it needs",
     u"An opening, for instance, that voids nothing.",
     u"an IfcOpeningElement without an IfcRelVoidsElement"},
    {RuleId::kManyRelations, "CRV.inverse.many", kError,
     u"An object stands in more relations than it may stand in",
     u"An element, for instance, that is contained in two storeys: programs differ in which one "
     u"they show.",
     u"two IfcRelContainedInSpatialStructure with #3"},
    {RuleId::kSeveralAnswers, "CRV.inverse.ambiguous", kWarning,
     u"Several relations say differently what an object is",
     u"It has several types or materials, and nobody can tell which one counts.",
     u"two IfcRelAssociatesMaterial with #3"},
    {RuleId::kChangedReal, "CRV.save.real", kNote, u"A save shortens the number",
     u"Numbers are written with 15 significant digits. resave, merge, extract and optimise keep "
     u"every digit that counts with --numbers exact.",
     u"#1=IFCDIRECTION((0.,0.12345678901234567));"},
    {RuleId::kChangedNumber, "CRV.save.number", kNote, u"A save shortens the count to six digits",
     u"A value of type NUMBER is written with six significant digits; --numbers exact keeps all.",
     u"#1=IFCQUANTITYCOUNT('bricks',$,$,1234567);"},
    {RuleId::kAddedText, "CRV.save.text", kNote, u"A save writes '' for a text that is not there",
     u"Names and descriptions of roots in models of IFC2X and of the platform of IFC2X2: their "
     u"schemas do without, and the classes that read them hold a text.",
     u"#1=IFCCOLUMN('2o1y...',#2,$,$,$,#3,#4,$);  (in a model of IFC2X)"},

    {RuleId::kMalformedGuid, "PJS003.malformed", kError, u"A GUID is malformed",
     u"It has 22 characters out of 0-9 A-Z a-z _ $, and begins with 0, 1, 2 or 3. Programs that "
     u"take it apart fail.",
     u"#1=IFCWALL('wall-1',...);"},
    {RuleId::kDoubledGuid, "PJS003.doubled", kError, u"Several objects have one GUID",
     u"Programs that look objects up by GUID find one of them. A merge gives the later ones new "
     u"GUIDs.",
     u"#1=IFCWALL('2o1y...',...); #2=IFCDOOR('2o1y...',...);"},
    {RuleId::kNoProject, "PJS101.missing", kError, u"The model has no IfcProject",
     u"Nothing tells its units and its contexts. A merge cannot use it.",
     u"a file without an IfcProject"},
    {RuleId::kSeveralProjects, "PJS101.several", kError, u"The model has several projects",
     u"The first one counts in a merge.", u"#1=IFCPROJECT(...); #2=IFCPROJECT(...);"},
    {RuleId::kNoUnits, "CRV.units.missing", kWarning, u"The project names no units",
     u"Lengths are taken for metres.", u"#1=IFCPROJECT(...,(#2),$);"},
    {RuleId::kUnlistedUnits, "CRV.units.unlisted", kWarning,
     u"No project names this unit assignment", u"It measures nothing.",
     u"an IfcUnitAssignment that nothing refers to"},
    {RuleId::kNoContext, "GEM051.missing", kError,
     u"Shapes without a geometric context in the project",
     u"Nothing tells where their coordinates begin.", u"#1=IFCPROJECT(...,(),#2);"},
    {RuleId::kUnlistedContext, "CRV.context.unlisted", kWarning,
     u"No project names this representation context",
     u"Programs may not show what is represented in it.",
     u"an IfcGeometricRepresentationContext that no project lists"},
    {RuleId::kPlacementCircle, "CRV.placement.circle", kError, u"Placements go in a circle",
     u"Each stands on the next, and none anywhere.",
     u"#1=IFCLOCALPLACEMENT(#2,#3); #2=IFCLOCALPLACEMENT(#1,#3);"},

    {RuleId::kOtherRelease, "CRV.files.release", kError, u"Another release than the first file's",
     u"A merge leaves the file out.", u"a.ifc is IFC2X3, b.ifc is IFC4"},
    {RuleId::kOtherUnit, "CRV.files.unit", kWarning, u"Another unit than the first file's",
     u"Unless it is asked to convert, a merge changes no number: it leaves out a file of which an "
     u"SI "
     u"unit of length, area, volume, mass or plane angle differs, and of other units of length "
     u"takes "
     u"the numbers as they are.",
     u"a.ifc is in millimetres, b.ifc in metres"},
    {RuleId::kOtherPlace, "CRV.files.place", kWarning,
     u"Another map conversion than the first file's",
     u"The models may stand beside each other after a merge.",
     u"a.ifc has Eastings 155000, b.ifc has none"},
    {RuleId::kFarApart, "CRV.files.apart", kWarning, u"More than a kilometre from the first file",
     u"The boxes around the placements of the two models are so far apart: one of them may have "
     u"coordinates of a map, and the other not.",
     u"a.ifc stands at 0, b.ifc at 155000, 463000"},
    {RuleId::kSharedGuid, "CRV.files.guid", kNote, u"Objects of an earlier file have these GUIDs",
     u"Common of project, site, building and storeys. Others are twice in a merge, under a new "
     u"GUID, unless it is asked to make one of them.",
     u"the same wall in a.ifc and b.ifc"},
    {RuleId::kGuidOfOtherClass, "CRV.files.class", kWarning,
     u"Objects of another class in an earlier file have these GUIDs",
     u"One of the two files has changed the class, or invented the GUID.",
     u"'2o1y...' is a wall in a.ifc and a door in b.ifc"},
};

static_assert(std::size(kTable) == kRules);

constexpr bool IsInOrder() {
  for (std::size_t i = 0; i < kRules; ++i) {
    if (static_cast<std::size_t>(kTable[i].id) != i) return false;
  }
  return true;
}
static_assert(IsInOrder());

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

}  // namespace

std::string_view NameOf(Severity severity) {
  switch (severity) {
    case kNote: return "note";
    case kWarning: return "warning";
    case kError: return "error";
  }
  return {};
}

std::span<const Rule> Rules() { return kTable; }

const Rule& RuleOf(RuleId id) { return kTable[static_cast<std::size_t>(id)]; }

const Rule* FindRule(std::string_view name) {
  const auto isIt = [name](const Rule& rule) {
    return std::equal(rule.name.begin(), rule.name.end(), name.begin(), name.end(),
                      [](char a, char b) { return Lower(a) == Lower(b); });
  };
  const auto* const found = std::find_if(std::begin(kTable), std::end(kTable), isIt);
  return found == std::end(kTable) ? nullptr : found;
}

}  // namespace corvel::host
