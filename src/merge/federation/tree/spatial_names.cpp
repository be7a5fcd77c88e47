#include "merge/federation/tree/spatial_names.h"

#include <algorithm>
#include <iterator>

namespace corvel {

namespace {

// The list stands in docs/one_building.md for users.
constexpr WideView kGeneric[] = {
    // What programs put in.
    u"default", u"defaultsite", u"defaultbuilding", u"defaultstorey", u"defaultstory",
    u"defaultlevel", u"defaultfloor", u"undefined", u"notdefined", u"unnamed", u"untitled",
    u"unknown", u"unset", u"none", u"null", u"nil", u"empty", u"new", u"standard", u"n/a", u"na",
    u"noname", u"nosite", u"nobuilding", u"nostorey", u"-", u"--", u"?", u".", u"_", u"tbd",
    // The words for the things.
    u"project", u"site", u"building", u"storey", u"story", u"buildingstorey", u"buildingstory",
    u"level", u"floor", u"facility", u"facilitypart", u"bridge", u"road", u"railway", u"ifcproject",
    u"ifcsite", u"ifcbuilding", u"ifcbuildingstorey", u"ifcfacility", u"sitename", u"buildingname",
    u"storeyname", u"levelname", u"mysite", u"mybuilding", u"mystorey",
    // The same in the languages of the programs that are at home around us.
    u"gelände", u"grundstück", u"gebäude", u"geschoss", u"geschoß", u"stockwerk", u"etage",
    u"ebene", u"undefiniert", u"unbenannt", u"unbekannt", u"nichtdefiniert", u"terrein", u"gebouw",
    u"verdieping", u"bouwlaag", u"onbekend", u"standaard", u"terrain", u"bâtiment", u"étage",
    u"niveau", u"inconnu", u"nondéfini", u"pardéfaut", u"sito", u"edificio", u"piano", u"sitio",
    u"planta", u"nivel", u"sindefinir", u"tomt", u"bygning", u"byggnad", u"etasje", u"våning",
    u"rakennus", u"kerros", u"działka", u"budynek", u"kondygnacja", u"nivo", u"lokacija", u"stavba",
    u"etaža", u"sprat", u"участок", u"здание", u"этаж"};

bool IsBlank(char16_t unit) {
  return unit <= u' ' || unit == 0xA0 || (unit >= 0x2000 && unit <= 0x200B) || unit == 0x202F ||
         unit == 0x3000;
}

bool IsIn(char16_t unit, char16_t first, char16_t last) { return unit >= first && unit <= last; }

// Pairs of letters that stand next to each other, the capital at an even number.
bool IsEvenCapital(char16_t unit) {
  return IsIn(unit, 0x100, 0x137) || IsIn(unit, 0x14A, 0x177) || IsIn(unit, 0x460, 0x481) ||
         IsIn(unit, 0x48A, 0x4BF) || IsIn(unit, 0x1E00, 0x1EFF);
}

bool IsOddCapital(char16_t unit) { return IsIn(unit, 0x139, 0x148) || IsIn(unit, 0x179, 0x17E); }

char16_t Lower(char16_t unit) {
  constexpr char16_t kLatin = 0x20;
  const auto moved = [unit](int distance) { return static_cast<char16_t>(unit + distance); };
  if (IsIn(unit, u'A', u'Z')) return moved(kLatin);
  if (unit < 0xC0) return unit;
  if (IsIn(unit, 0xC0, 0xDE) && unit != 0xD7) return moved(kLatin);
  if (IsEvenCapital(unit)) return unit % 2 == 0 ? moved(1) : unit;
  if (IsOddCapital(unit)) return unit % 2 != 0 ? moved(1) : unit;
  if (IsIn(unit, 0x391, 0x3AB) && unit != 0x3A2) return moved(kLatin);
  if (IsIn(unit, 0x410, 0x42F)) return moved(kLatin);
  if (IsIn(unit, 0x400, 0x40F)) return moved(0x50);
  return unit;
}

}  // namespace

WideString ComparableName(WideView name) {
  WideString comparable;
  for (const char16_t unit : name) {
    if (!IsBlank(unit)) comparable.push_back(Lower(unit));
  }
  return comparable;
}

bool IsGenericName(WideView comparable) {
  return comparable.empty() ||
         std::find(std::begin(kGeneric), std::end(kGeneric), comparable) != std::end(kGeneric);
}

}  // namespace corvel
