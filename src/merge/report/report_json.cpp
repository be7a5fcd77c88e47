#include "merge/report/report_json.h"

#include "merge/report/json_text.h"
#include "merge/unit_texts.h"

namespace corvel {

namespace {

constexpr int kFormat = 1;
// Metres are told to the tenth of a millimetre, angles to a thousandth of a degree.
constexpr int kLengthDigits = 4;
constexpr int kAngleDigits = 3;

constexpr std::string_view kReasons[kDropReasons] = {"modelLeftOut", "inactive", "hidden",
                                                     "notSelected",  "opening",  "hangsOnDropped",
                                                     "notNeeded",    "joined"};

class Writer {
 public:
  explicit Writer(const RunReport& report) : report_(report) {}

  std::string Write() {
    json_.BeginObject();
    json_.Member("report", report_.command);
    json_.Member("format", kFormat);
    json_.Member("program", "corvel " CORVEL_VERSION);
    json_.Member("dryRun", report_.isDryRun);
    json_.Member("startedAt", report_.startedAt);
    Line("failures");
    Texts(report_.failures);
    Line("messages");
    Texts(report_.messages);
    Line("output");
    Output();
    Line("inputs");
    Each(report_.inputs, [this](const InputReport& input) { Input(input); });
    Line("steps");
    Each(report_.steps, [this](const StepReport& step) { Step(step); });
    Line("stages");
    Each(report_.stages, [this](const StageReport& stage) { Stage(stage); });
    Line("tree");
    Tree();
    Line("places");
    Places();
    json_.NewLine();
    json_.EndObject();
    return json_.Take() + "\n";
  }

 private:
  void Line(std::string_view key) {
    json_.NewLine();
    json_.Key(key);
  }

  void Texts(const std::vector<WideString>& texts) {
    json_.BeginArray();
    for (const WideString& text : texts) json_.Value(text);
    json_.EndArray();
  }

  template <class Items, class Action>
  void Each(const Items& items, Action action) {
    json_.BeginArray();
    for (const auto& item : items) {
      json_.NewLine();
      action(item);
    }
    json_.EndArray();
  }

  void Output() {
    const OutputReport& output = report_.output;
    json_.BeginObject();
    json_.Key("file");
    if (output.path.empty()) {
      json_.Null();
    } else {
      json_.Value(output.path);
    }
    json_.Member("written", output.written);
    json_.Member("cancelled", output.cancelled);
    if (!output.keptAt.empty()) json_.Member("keptAt", output.keptAt);
    if (output.written) json_.Member("bytes", output.bytes);
    if (output.isKnown) {
      json_.Member("records", output.records);
      json_.Member("made", output.made);
      json_.Member("products", output.products);
    }
    json_.EndObject();
  }

  void Input(const InputReport& input) {
    json_.BeginObject();
    json_.Member("file", input.path);
    json_.Member("bytes", input.bytes);
    json_.Member("schema", input.schema);
    json_.Member("read", input.isRead);
    json_.Member("takesPart", input.takesPart);
    json_.Key("leftOutFor");
    json_.BeginArray();
    if (!input.isRead) json_.Value("reading");
    if (input.schemaDiffers) json_.Value("schema");
    if (input.unitsDiffer) json_.Value("units");
    json_.EndArray();
    UnitDifferences(input.unitDifferences);
    json_.Member("lengthUnit", input.lengthUnit);
    json_.Member("metresPerUnit", input.metresPerUnit);
    json_.Key("offsetMm").BeginArray();
    for (const double value : input.offsetMm) json_.Value(value);
    json_.EndArray();
    Records(input.records);
    json_.Key("products");
    Products(input.products, {});
    json_.Key("classes");
    Each(input.classes, [this](const ClassTally& tally) { Products(tally.products, tally.name); });
    json_.Key("remarks");
    Texts(input.remarks);
    json_.EndObject();
  }

  void UnitDifferences(const std::vector<UnitComparison>& rows) {
    json_.Key("unitDifferences").BeginArray();
    for (const UnitComparison& row : rows) {
      json_.BeginObject();
      json_.Member("type", WithoutDotsAndCommas(row.unitType));
      json_.Member("unit", WithoutDotsAndCommas(row.otherLabel));
      json_.Member("first", WithoutDotsAndCommas(row.unitLabel));
      json_.EndObject();
    }
    json_.EndArray();
  }

  void Records(const RecordTally& tally) {
    json_.Key("records").BeginObject();
    json_.Member("in", tally.in);
    json_.Member("kept", tally.kept);
    json_.Member("leftOut", tally.leftOut);
    json_.Member("joined", tally.joined);
    json_.Member("notNeeded", tally.notNeeded);
    json_.EndObject();
  }

  void Products(const ProductTally& tally, std::string_view className) {
    json_.BeginObject();
    if (!className.empty()) json_.Member("class", className);
    json_.Member("in", tally.in);
    json_.Member("kept", tally.kept);
    json_.Key("dropped").BeginObject();
    for (std::size_t i = 0; i < kDropReasons; ++i) {
      if (tally.dropped[i] != 0) json_.Member(kReasons[i], tally.dropped[i]);
    }
    json_.EndObject();
    json_.EndObject();
  }

  void Step(const StepReport& step) {
    json_.BeginObject();
    json_.Member("step", step.step);
    json_.Key("counts").BeginObject();
    for (const auto& [name, count] : step.counts) json_.Member(name, count);
    json_.EndObject();
    json_.Key("lists").BeginObject();
    for (const auto& [name, lines] : step.lists) {
      json_.Key(name);
      Texts(lines);
    }
    json_.EndObject();
    json_.EndObject();
  }

  void Stage(const StageReport& stage) {
    json_.BeginObject();
    json_.Member("stage", WordOf(stage.stage));
    if (!stage.path.empty()) json_.Member("file", stage.path);
    json_.Key("seconds").Rounded(stage.seconds, kLengthDigits);
    json_.Member("memoryBytes", stage.memoryBytes);
    json_.EndObject();
  }

  // Children by their position in the list, the root first.
  void Tree() {
    if (!report_.places) return json_.Null();
    Each(report_.places->tree, [this](const SpatialNode& node) {
      json_.BeginObject();
      json_.Member("class", node.className);
      json_.Member("guid", FromUtf8(node.guid));
      json_.Member("name", node.name);
      Numbers("inputs", node.inputs);
      Numbers("products", node.products);
      Numbers("children", node.children);
      json_.EndObject();
    });
  }

  template <class Number>
  void Numbers(std::string_view key, const std::vector<Number>& numbers) {
    json_.Key(key).BeginArray();
    for (const Number number : numbers) json_.Value(number);
    json_.EndArray();
  }

  void Places() {
    if (!report_.places) return json_.Null();
    const ModelPlaces& places = *report_.places;
    json_.BeginObject();
    json_.Member("unit", "metre");
    json_.Key("north");
    if (places.north) {
      json_.BeginArray();
      for (const double value : *places.north) json_.Rounded(value, kLengthDigits);
      json_.EndArray();
    } else {
      json_.Null();
    }
    json_.Member("withoutPlace", places.withoutPlace);
    json_.Key("storeys");
    Each(places.storeys, [this](const StoreyPlace& storey) {
      json_.BeginObject();
      json_.Member("input", storey.input);
      json_.Member("name", storey.name);
      json_.Key("height").Rounded(storey.height, kLengthDigits);
      json_.EndObject();
    });
    json_.Key("classes");
    Each(places.classes, [this](const ClassOfPlaces& one) {
      json_.BeginObject();
      json_.Member("class", one.name);
      json_.Member("products", one.products);
      json_.Member("listed", one.listed);
      json_.EndObject();
    });
    json_.Key("columns").BeginArray();
    for (const char* const column : {"input", "class", "guid", "name", "x", "y", "z", "boxX",
                                     "boxY", "boxZ", "width", "depth", "height", "degrees"}) {
      json_.Value(column);
    }
    json_.EndArray();
    json_.Key("products");
    Each(places.products, [this](const ProductPlace& product) { Place(product); });
    json_.EndObject();
  }

  // A row, since there are very many; what has no box ends before it.
  void Place(const ProductPlace& product) {
    json_.BeginArray();
    json_.Value(product.input);
    json_.Value(product.classIndex);
    json_.Value(FromUtf8(product.guid));
    json_.Value(product.name);
    for (const double value : product.origin) json_.Rounded(value, kLengthDigits);
    if (product.box) {
      for (const double value : product.box->centre) json_.Rounded(value, kLengthDigits);
      for (const double value : product.box->size) json_.Rounded(value, kLengthDigits);
      json_.Rounded(product.box->degrees, kAngleDigits);
    }
    json_.EndArray();
  }

  const RunReport& report_;
  JsonText json_;
};

}  // namespace

std::string_view WordOf(DropReason reason) { return kReasons[static_cast<std::size_t>(reason)]; }

std::string_view WordOf(RunStage stage) {
  switch (stage) {
    case RunStage::kRead: return "read";
    case RunStage::kCompare: return "compare";
    case RunStage::kChoose: return "choose";
    case RunStage::kFold: return "fold";
    case RunStage::kJoin: return "join";
    case RunStage::kLook: return "look";
    case RunStage::kWrite: break;
  }
  return "write";
}

std::string ReportAsJson(const RunReport& report) { return Writer(report).Write(); }

}  // namespace corvel
