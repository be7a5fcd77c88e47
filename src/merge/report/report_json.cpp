#include "merge/report/report_json.h"

#include "merge/report/shared/json_text.h"
#include "merge/report/shared/places_json.h"
#include "merge/unit_texts.h"

namespace corvel {

namespace {

constexpr int kFormat = 1;
constexpr int kSecondsDigits = 4;

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
    Told("failures", "failureFiles", report_.failures);
    Told("messages", "messageFiles", report_.messages);
    Line("output");
    Output();
    Line("inputs");
    json_.EachOnALine(report_.inputs, [this](const InputReport& input) { Input(input); });
    Line("steps");
    json_.EachOnALine(report_.steps, [this](const StepReport& step) { Step(step); });
    Line("stages");
    json_.EachOnALine(report_.stages, [this](const StageReport& stage) { Stage(stage); });
    Line("tree");
    if (report_.places) {
      AddTree(report_.places->tree, json_);
    } else {
      json_.Null();
    }
    Line("places");
    AddPlaces(report_.places ? &*report_.places : nullptr, json_);
    json_.NewLine();
    json_.EndObject();
    return json_.Take() + "\n";
  }

 private:
  void Line(std::string_view key) {
    json_.NewLine();
    json_.Key(key);
  }

  // The texts, and beside each the file that it is about.
  void Told(std::string_view key, std::string_view filesKey, const std::vector<ToldText>& told) {
    Line(key);
    json_.BeginArray();
    for (const ToldText& one : told) json_.Value(one.text);
    json_.EndArray();
    Line(filesKey);
    json_.BeginArray();
    for (const ToldText& one : told) TextOrNull(one.file);
    json_.EndArray();
  }

  void TextOrNull(const WideString& text) {
    if (text.empty()) {
      json_.Null();
    } else {
      json_.Value(text);
    }
  }

  void Output() {
    const OutputReport& output = report_.output;
    json_.BeginObject();
    json_.Key("file");
    TextOrNull(output.path);
    json_.Member("written", output.written);
    json_.Member("cancelled", output.cancelled);
    if (!output.keptAt.empty()) json_.Member("keptAt", output.keptAt);
    if (output.written) json_.Member("bytes", output.bytes);
    if (output.isKnown) {
      json_.Member("records", output.records);
      json_.Member("made", output.made);
      json_.Member("products", output.products);
      json_.Member("lengthUnit", output.lengthUnit);
      json_.Member("metresPerUnit", output.metresPerUnit);
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
    json_.EachOnALine(input.classes,
                      [this](const ClassTally& tally) { Products(tally.products, tally.name); });
    json_.Key("remarks");
    json_.Texts(input.remarks);
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
    if (step.input) json_.Member("input", *step.input);
    json_.Key("counts").BeginObject();
    for (const auto& [name, count] : step.counts) json_.Member(name, count);
    json_.EndObject();
    json_.Key("lists").BeginObject();
    for (const auto& [name, lines] : step.lists) {
      json_.Key(name);
      json_.Texts(lines);
    }
    json_.EndObject();
    json_.EndObject();
  }

  void Stage(const StageReport& stage) {
    json_.BeginObject();
    json_.Member("stage", WordOf(stage.stage));
    if (!stage.path.empty()) json_.Member("file", stage.path);
    json_.Key("seconds").Rounded(stage.seconds, kSecondsDigits);
    json_.Member("memoryBytes", stage.memoryBytes);
    json_.EndObject();
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
