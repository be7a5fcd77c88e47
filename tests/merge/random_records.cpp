#include "random_records.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <string_view>

namespace corvel::test {

namespace {

// A class and how its record is made. In `attributes` a sign and a letter stand for references to
// records that belong to the set of the letter: `?` one or none, `!` one, `*` a list, `%` values or
// references of a list. `^` is a GUID; `[...]` stands in IFC4 only.
struct Kind {
  int weight;
  std::string_view themes;  // in which it comes up: everything, properties, shapes
  std::string_view sets;
  std::string_view name;
  std::string_view attributes;
};

// Sets: O objects, E elements, V openings, T spatial, H owner histories, L placements,
// A axis placements, D directions, P points, R shapes, S representations, C contexts, I items,
// K curves, F surfaces, G connections, Y property sets, Q properties, q quantities, u units,
// m measures, U unit assignments, M materials, Z groups, B b p o people, 0 the project.
constexpr Kind kKinds[] = {
    {1, "eps", "O0", "IFCPROJECT", "^,?H,$,$,$,$,$,*C,?U"},
    {2, "eps", "OT", "IFCSITE", "^,?H,$,$,$,?L,?R,$,.ELEMENT.,$,$,$,$,$"},
    {2, "ep", "OT", "IFCBUILDING", "^,?H,$,$,$,?L,?R,$,.ELEMENT.,$,$,$"},
    {1, "e", "OT", "IFCBUILDINGSTOREY", "^,?H,$,$,$,?L,?R,$,.ELEMENT.,$"},
    {6, "eps", "OE", "IFCWALL", "^,?H,$,$,$,?L,?R,$[,$]"},
    {4, "es", "OEV", "IFCOPENINGELEMENT", "^,?H,$,$,$,?L,?R,$[,$]"},
    {4, "e", "O", "IFCRELAGGREGATES", "^,?H,$,$,!O,*O"},
    {3, "e", "", "IFCRELCONTAINEDINSPATIALSTRUCTURE", "^,?H,$,$,*E,!T"},
    {3, "es", "", "IFCRELVOIDSELEMENT", "^,?H,$,$,!E,!V"},
    {1, "e", "", "IFCRELFILLSELEMENT", "^,?H,$,$,!V,!E"},
    {4, "ep", "", "IFCRELDEFINESBYPROPERTIES", "^,?H,$,$,*O,!Y"},
    {3, "ep", "", "IFCRELDEFINESBYPROPERTIES", "^,?H,$,$,*O,@"},
    {2, "es", "", "IFCRELCONNECTSELEMENTS", "^,?H,$,$,?G,!E,!E"},
    {2, "e", "", "IFCRELASSIGNSTOGROUP", "^,?H,$,$,*O,$,!Z"},
    {1, "ep", "OZ", "IFCGROUP", "^,?H,$,$,$"},
    {2, "e", "", "IFCRELASSOCIATESMATERIAL", "^,?H,$,$,*O,!M"},
    {1, "e", "M", "IFCMATERIAL", "'m'[,$,$]"},
    {4, "ep", "Y", "IFCPROPERTYSET", "^,?H,$,$,*Q"},
    {2, "ep", "Y", "IFCELEMENTQUANTITY", "^,?H,$,$,$,*q"},
    {3, "ep", "Q", "IFCPROPERTYSINGLEVALUE", "'n',$,IFCLABEL('x'),?u"},
    {1, "ep", "Q", "IFCPROPERTYSINGLEVALUE", "'n',$,$,$"},
    {1, "ep", "Q", "IFCCOMPLEXPROPERTY", "'n',$,'u',*Q"},
    {2, "ep", "q", "IFCQUANTITYLENGTH", "'l',$,?u,1.[,$]"},
    {1, "ep", "u", "IFCSIUNIT", "*,.LENGTHUNIT.,$,.METRE."},
    {1, "e", "u", "IFCCONVERSIONBASEDUNIT", "*,.LENGTHUNIT.,'FOOT',!m"},
    {1, "e", "m", "IFCMEASUREWITHUNIT", "IFCREAL(0.3),!u"},
    {1, "ep", "U", "IFCUNITASSIGNMENT", "*u"},
    {4, "es", "L", "IFCLOCALPLACEMENT", "?L,!A"},
    {4, "es", "A", "IFCAXIS2PLACEMENT3D", "!P,?D,?D"},
    {2, "es", "D", "IFCDIRECTION", "(1.,0.,0.)"},
    {3, "es", "PI", "IFCCARTESIANPOINT", "(0.,0.,0.)"},
    {4, "es", "R", "IFCPRODUCTDEFINITIONSHAPE", "$,$,*S"},
    {4, "es", "S", "IFCSHAPEREPRESENTATION", "!C,$,$,*I"},
    {1, "es", "C", "IFCGEOMETRICREPRESENTATIONCONTEXT", "$,$,3,$,!A,?D"},
    {3, "es", "IK", "IFCPOLYLINE", "*P"},
    {2, "es", "IK", "IFCTRIMMEDCURVE", "!K,%P,%P,.T.,.CARTESIAN."},
    {2, "es", "IF", "IFCPLANE", "!A"},
    {3, "es", "G", "IFCCONNECTIONSURFACEGEOMETRY", "!F,?F"},
    {2, "e", "H", "IFCOWNERHISTORY", "!B,!b,$,.NOCHANGE.,$,$,$,1"},
    {1, "e", "B", "IFCPERSONANDORGANIZATION", "!p,!o,$"},
    {1, "e", "p", "IFCPERSON", "$,'f',$,$,$,$,$,$"},
    {1, "e", "o", "IFCORGANIZATION", "$,'n',$,$,$"},
    {1, "e", "b", "IFCAPPLICATION", "!o,'1','n','i'"},
};

class Writer {
 public:
  Writer(std::mt19937& random, const RecordsShape& shape) : random_(random), shape_(shape) {}

  RandomRecords Write() {
    ChooseKinds();
    for (std::size_t i = 0; i < kinds_.size(); ++i) {
      number_ = numbers_[i];
      records_.records.push_back(
          {number_, std::string(kinds_[i]->name), Attributes(kinds_[i]->attributes)});
    }
    ChooseHostParents();
    return std::move(records_);
  }

 private:
  unsigned Below(std::size_t limit) { return static_cast<unsigned>(random_() % limit); }
  bool OneIn(unsigned count) { return Below(count) == 0; }

  void ChooseKinds() {
    std::vector<const Kind*> drawn;
    const char theme = "eeps"[Below(4)];
    for (const Kind& kind : kKinds) {
      const bool fits = kind.themes.find(theme) != std::string_view::npos;
      if (fits) drawn.insert(drawn.end(), static_cast<std::size_t>(kind.weight), &kind);
    }
    const auto records = static_cast<std::size_t>(shape_.records);
    numbers_.resize(records * (1 + Below(3)));
    std::iota(numbers_.begin(), numbers_.end(), 1);
    std::shuffle(numbers_.begin(), numbers_.end(), random_);
    if (OneIn(2)) std::sort(numbers_.begin(), numbers_.begin() + shape_.records);
    numbers_.resize(records);
    if (OneIn(20)) numbers_[0] = 4294967279u;
    for (std::size_t i = 0; i < records; ++i) {
      const Kind* kind = drawn[Below(drawn.size())];
      // One project, or sometimes none or several; in place of another one, a wall.
      if (kind == &kKinds[0] && !sets_['0'].empty() && !OneIn(10)) kind = &kKinds[4];
      kinds_.push_back(kind);
      for (const char set : kind->sets) sets_[set].push_back(numbers_[i]);
    }
    for (const char set : {'O', 'Z'}) {
      records_.objects.insert(records_.objects.end(), sets_[set].begin(), sets_[set].end());
    }
    std::sort(records_.objects.begin(), records_.objects.end());
  }

  std::string Attributes(std::string_view form) {
    std::string text;
    for (std::size_t i = 0; i < form.size(); ++i) {
      const bool hasSet = i + 1 < form.size() && form[i + 1] != ',';
      switch (form[i]) {
        case '^': text += "'guid" + std::to_string(number_) + "'"; break;
        case '@':
          text += shape_.isIfc4 ? "IFCPROPERTYSETDEFINITIONSET(" + List('Y') + ")" : One('Y', 15);
          break;
        case '?': text += One(form[++i], 3); break;
        case '!': text += One(form[++i], 15); break;
        case '%': text += Trims(form[++i]); break;
        case '[':
        case ']':
          if (form[i] == '[' && !shape_.isIfc4) i = form.find(']', i);
          break;
        case '*':
          if (hasSet) {
            text += List(form[++i]);
            break;
          }
          [[fallthrough]];
        default: text += form[i];
      }
    }
    return text;
  }

  // One in `missing` is left out.
  std::string One(char set, unsigned missing) {
    const std::vector<std::uint32_t>& numbers = sets_[set];
    if (numbers.empty() || OneIn(missing)) return "$";
    return "#" + std::to_string(numbers[Below(numbers.size())]);
  }

  std::string List(char set) {
    std::string text = "(";
    const std::size_t members = Below(static_cast<std::size_t>(shape_.mostMembers) + 1);
    for (std::size_t i = 0; i < members && !sets_[set].empty(); ++i) {
      if (text.size() > 1) text += ",";
      text += "#" + std::to_string(sets_[set][Below(sets_[set].size())]);
    }
    return text + ")";
  }

  std::string Trims(char set) { return OneIn(2) ? "(IFCPARAMETERVALUE(0.5))" : List(set); }

  void ChooseHostParents() {
    const std::vector<std::uint32_t>& objects = records_.objects;
    for (std::size_t i = 0; i < objects.size(); ++i) {
      const unsigned way = Below(6);
      const auto& some = sets_[way == 0 ? 'O' : way < 4 ? 'T' : way == 4 ? '0' : 'E'];
      records_.hostParents.push_back(some.empty() ? 0 : some[Below(some.size())]);
    }
  }

  std::mt19937& random_;
  const RecordsShape& shape_;
  RandomRecords records_;
  std::vector<std::uint32_t> numbers_;
  std::vector<const Kind*> kinds_;
  std::map<char, std::vector<std::uint32_t>> sets_;
  std::uint32_t number_ = 0;
};

}  // namespace

RandomRecords AnyRecords(std::mt19937& random, const RecordsShape& shape) {
  return Writer(random, shape).Write();
}

}  // namespace corvel::test
