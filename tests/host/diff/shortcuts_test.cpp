// What a comparison finds by its shortcuts, and what without them.
#include "host/diff/shortcuts.h"

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "host/diff/diff_of_models.h"
#include "host/diff/diff_text.h"

namespace corvel::host::diff {

namespace {

using DiffShortcuts = test::ReadTest;

// A house of a few storeys whose records are told by names such as "@wall3", so that they can be
// numbered and ordered in any way.
class RandomHouse {
 public:
  explicit RandomHouse(unsigned seed) : random_(seed) {
    Add("unit", "IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.)");
    Add("units", "IFCUNITASSIGNMENT((@unit))");
    Add("origin", "IFCCARTESIANPOINT((0.,0.,0.))");
    Add("axes", "IFCAXIS2PLACEMENT3D(@origin,$,$)");
    Add("context", "IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,1.E-5,@axes,$)");
    Add("project", "IFCPROJECT('project',$,'P',$,$,$,$,(@context),@units)");
    Add("brick", "IFCMATERIAL('Brick',$,$)");
    for (int i = 0; i < kStoreys; ++i) AddStorey(i);
    for (int i = 0; i < kProducts; ++i) AddProduct(i);
    for (int i = 0; i < kStoreys; ++i) AddContainment(i);
    Add("alone", "IFCPROPERTYSET('alone',$,'Of nobody',$,(@p0_0))");
    Add("of_alone", "IFCRELASSOCIATESMATERIAL('of_alone',$,$,$,(@styled0),@brick)");
  }

  // Some of everything that happens to models.
  void Change() {
    for (int i = Below(4); i > 0; --i) ChangeText();
    for (int i = Below(3); i > 0; --i) Move();
    for (int i = Below(3); i > 0; --i) Remove();
    for (int i = Below(3); i > 0; --i) RenewGuid();
    if (Below(2) == 0) TurnSets();
    if (Below(2) == 0) Renumber();
    if (Below(2) == 0) std::shuffle(records_.begin(), records_.end(), random_);
  }

  std::string Text() const {
    std::string text;
    for (const Record& record : records_) {
      text += "#" + std::to_string(record.number) + "=" + Numbered(record.text) + ";\n";
    }
    return text;
  }

 private:
  static constexpr int kStoreys = 3;
  static constexpr int kProducts = 14;
  static constexpr int kFaces = 5;

  struct Record {
    std::string name;
    std::string text;
    int number = 0;
  };

  int Below(int end) { return static_cast<int>(random_() % static_cast<unsigned>(end)); }
  std::string Coordinate() { return std::to_string(Below(4) * 1000) + "."; }

  void Add(const std::string& name, const std::string& text) {
    records_.push_back({name, text, static_cast<int>(records_.size()) + 1});
  }
  std::string AddPoint(const std::string& name) {
    Add(name,
        "IFCCARTESIANPOINT((" + Coordinate() + "," + Coordinate() + "," + Coordinate() + "))");
    return "@" + name;
  }

  void AddStorey(int index) {
    const std::string i = std::to_string(index);
    Add("splace" + i, "IFCLOCALPLACEMENT($,@axes)");
    Add("storey" + i, "IFCBUILDINGSTOREY('storey" + i + "',$,'Level " + i + "',$,$,@splace" + i +
                          ",$,$,.ELEMENT.,0.)");
  }

  void AddContainment(int index) {
    std::string members;
    for (int i = index; i < kProducts; i += kStoreys) members += ",@product" + std::to_string(i);
    const std::string i = std::to_string(index);
    Add("contained" + i, "IFCRELCONTAINEDINSPATIALSTRUCTURE('contained" + i + "',$,$,$,(" +
                             members.substr(1) + "),@storey" + i + ")");
  }

  void AddProduct(int index) {
    const std::string i = std::to_string(index);
    Add("paxes" + i, "IFCAXIS2PLACEMENT3D(" + AddPoint("place" + i) + ",$,$)");
    Add("placement" + i,
        "IFCLOCALPLACEMENT(@splace" + std::to_string(index % kStoreys) + ",@paxes" + i + ")");
    std::string faces;
    for (int k = 0; k < kFaces; ++k) faces += "," + AddFace(i + "_" + std::to_string(k));
    Add("shell" + i, "IFCCLOSEDSHELL((" + faces.substr(1) + "))");
    Add("brep" + i, "IFCFACETEDBREP(@shell" + i + ")");
    Add("body" + i, "IFCSHAPEREPRESENTATION(@context,'Body','Brep',(@brep" + i + "))");
    Add("shape" + i, "IFCPRODUCTDEFINITIONSHAPE($,$,(@body" + i + "))");
    // Some have one GUID, and some no name of their own.
    const std::string guid = index % 7 == 6 ? "twice" : "product" + i;
    const std::string name = index % 3 == 0 ? "Wall" : "Wall " + i;
    Add("product" + i, "IFCWALL('" + guid + "',$,'" + name + "',$,$,@placement" + i + ",@shape" +
                           i + ",'T',.STANDARD.)");
    Add("styled" + i, "IFCSTYLEDITEM(@brep" + i + ",(),'Style " + std::to_string(Below(2)) + "')");
    std::string properties;
    for (int k = 0; k < 3; ++k) properties += "," + AddProperty(i + "_" + std::to_string(k));
    Add("set" + i, "IFCPROPERTYSET('set" + i + "',$,'Pset',$,(" + properties.substr(1) + "))");
    Add("defines" + i,
        "IFCRELDEFINESBYPROPERTIES('defines" + i + "',$,$,$,(@product" + i + "),@set" + i + ")");
    if (index % 2 == 0) {
      Add("material" + i,
          "IFCRELASSOCIATESMATERIAL('material" + i + "',$,$,$,(@product" + i + "),@brick)");
    }
  }

  std::string AddFace(const std::string& name) {
    std::string points;
    for (int k = 0; k < 3; ++k) points += "," + AddPoint("point" + name + std::to_string(k));
    Add("loop" + name, "IFCPOLYLOOP((" + points.substr(1) + "))");
    Add("bound" + name, "IFCFACEOUTERBOUND(@loop" + name + ",.T.)");
    Add("face" + name, "IFCFACE((@bound" + name + "))");
    return "@face" + name;
  }

  std::string AddProperty(const std::string& name) {
    Add("p" + name, "IFCPROPERTYSINGLEVALUE('P" + name.substr(name.size() - 1) +
                        "',$,IFCLABEL('value " + std::to_string(Below(3)) + "'),$)");
    return "@p" + name;
  }

  Record& Any(const std::string& start) {
    std::vector<Record*> found;
    for (Record& record : records_) {
      if (record.text.starts_with(start)) found.push_back(&record);
    }
    return *found[static_cast<std::size_t>(Below(static_cast<int>(found.size())))];
  }

  void ChangeText() {
    Record& record = Any(Below(2) == 0 ? "IFCPROPERTYSINGLEVALUE" : "IFCWALL");
    record.text.insert(record.text.find('\'', record.text.find(",$,") + 3) + 1, "x");
  }
  void Move() {
    Record& record = Any("IFCCARTESIANPOINT");
    record.text.insert(record.text.find("((") + 2, "7");
  }
  // With whatever was the last to refer to it.
  void Remove() {
    const Record gone = Any(Below(2) == 0 ? "IFCWALL" : "IFCREL");
    std::erase_if(records_, [&](const Record& record) { return record.name == gone.name; });
  }
  void RenewGuid() {
    Record& record = Any("IFCWALL");
    record.text.insert(record.text.find('\'') + 1, "new");
  }
  // The last member becomes the first.
  void TurnSets() {
    for (Record& record : records_) {
      if (!record.text.starts_with("IFCCLOSEDSHELL((")) continue;
      const std::size_t first = record.text.find("((") + 2;
      const std::size_t last = record.text.rfind(',');
      if (last == std::string::npos) continue;
      const std::string member = record.text.substr(last + 1, record.text.size() - last - 3);
      record.text.erase(last, member.size() + 1);
      record.text.insert(first, member + ",");
    }
  }
  void Renumber() {
    std::vector<int> numbers;
    for (const Record& record : records_) numbers.push_back(record.number);
    if (Below(2) == 0) {
      std::shuffle(numbers.begin(), numbers.end(), random_);
    } else {
      for (int& number : numbers) number = number * 3 + 100;
    }
    for (std::size_t i = 0; i < records_.size(); ++i) records_[i].number = numbers[i];
  }

  // What has been removed is no member any more, and nothing where it stood alone.
  std::string Numbered(const std::string& text) const {
    std::string numbered;
    for (std::size_t at = 0; at < text.size();) {
      if (text[at] != '@') {
        numbered += text[at++];
        continue;
      }
      const std::size_t end = text.find_first_of(",)", at);
      const std::string name = text.substr(at + 1, end - at - 1);
      at = end;
      const auto found = std::find_if(records_.begin(), records_.end(),
                                      [&](const Record& record) { return record.name == name; });
      if (found != records_.end()) {
        numbered += "#" + std::to_string(found->number);
      } else {
        numbered += '$';
      }
    }
    return numbered;
  }

  std::mt19937 random_;
  std::vector<Record> records_;
};

std::string JsonOf(const std::string& before, const std::string& after, Shortcuts shortcuts) {
  test::ReadModel one(before);
  test::ReadModel other(after);
  EXPECT_TRUE(one.IsRead() && other.IsRead());
  auto diff = CompareModels(
      one.Document(), other.Document(), Tolerance{}, [](int) { return true; }, shortcuts);
  diff->before.path = diff->after.path = "";
  WideString text;
  EXPECT_TRUE(WriteDiffJson(*diff, 0.001, [&](WideView piece) {
    text += piece;
    return true;
  }));
  return ToUtf8(text);
}

}  // namespace

TEST_F(DiffShortcuts, FindWhatIsFoundWithoutThem) {
  constexpr unsigned kTurns = 60;
  for (unsigned seed = 0; seed < kTurns; ++seed) {
    RandomHouse house(seed);
    const std::string before = house.Text();
    house.Change();
    const std::string after = house.Text();
    EXPECT_EQ(JsonOf(before, after, Shortcuts::kNone), JsonOf(before, after, Shortcuts::kTaken))
        << "seed " << seed;
  }
}

TEST_F(DiffShortcuts, AModelInAnotherOrderWithOtherNumbersIsTheSameWithThemAndWithout) {
  RandomHouse house(1);
  const std::string before = house.Text();
  std::string after = before;
  for (std::size_t at = after.find('#'); at != std::string::npos; at = after.find('#', at + 1)) {
    after.insert(at + 1, "9");
  }
  for (const Shortcuts shortcuts : {Shortcuts::kTaken, Shortcuts::kNone}) {
    EXPECT_NE(std::string::npos, JsonOf(before, after, shortcuts).find("\"equal\": true"));
  }
}

}  // namespace corvel::host::diff
