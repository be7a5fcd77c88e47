#include "step/carried/carrying_reader.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <span>
#include <utility>

#include "core/main_container.h"
#include "core/text.h"
#include "step/carried/carried_objects.h"
#include "step/carried/large_integers.h"
#include "step/carried/record_spelling.h"
#include "step/reader/parser.h"
#include "step/reader/record_mender.h"
#include "step/streams/input_text_stream.h"
#include "step/streams/outpout_text_stream.h"
#include "step/writer/step_writer.h"

namespace corvel {

namespace {

// What an enumeration holds whose value is carried: no row has this number.
constexpr std::int32_t kNoValue = -1;

// Stands for the class of records that have none of the release.
constexpr FactoryRow kCarriedRow{};

bool IsOneOfValues(const AttributeFacts& facts) {
  return facts.depth == 0 && facts.Values() != nullptr;
}

// A text that the attribute takes, for one that it does not.
std::string_view PlaceHolder(const AttributeFacts& facts) {
  if (!IsOneOfValues(facts) || facts.IsOptional()) return "$";
  std::string_view literal = facts.Values()->rows.back().literal;
  literal.remove_suffix(1);
  return literal;
}

// The attribute is to have no value, whatever stood in for it.
void MakeBlank(IFC::IfcEntity& entity, const AttributeFacts& facts) {
  if (!IsOneOfValues(facts) || facts.IsOptional()) return;
  auto* const begin = static_cast<std::byte*>(dynamic_cast<void*>(&entity));
  *reinterpret_cast<std::int32_t*>(begin + facts.offset) = kNoValue;
}

// The name as tables of classes have it.
std::string ClassNameOf(const RecordText& record) { return TableName(record.name); }

Misfit KindOfUnknown(const RecordText& record) {
  if (!record.name.empty()) return Misfit::kUnknownClass;
  return record.hasBrackets ? Misfit::kComplexInstance : Misfit::kNoClass;
}

// Puts another scanner and other classes in the place of the parser's own for a while. The text is
// none of the file: what it lacks is not noted.
class Borrowed {
 public:
  Borrowed(Parser& parser, std::string text, const FactoryTable& release)
      : parser_(parser),
        records_(std::move(parser.notes.records)),
        factories_(std::exchange(parser.factories, &release)),
        byOther_(std::exchange(parser.carrying.byOtherRelease, &release != factories_)),
        scanner_(std::make_unique<Scanner>(
            std::make_unique<FileStream::InputTextStream>(std::move(text)), parser.showError)) {
    scanner_->ReadTolerantly(false);
    scanner_->EnterRecord();
    std::swap(parser_.scanner, scanner_);
  }
  ~Borrowed() {
    std::swap(parser_.scanner, scanner_);
    parser_.notes.records = std::move(records_);
    parser_.factories = factories_;
    parser_.carrying.byOtherRelease = byOther_;
  }
  Borrowed(const Borrowed&) = delete;
  Borrowed& operator=(const Borrowed&) = delete;

 private:
  Parser& parser_;
  std::unique_ptr<RecordNotes> records_;
  const FactoryTable* factories_;
  bool byOther_;
  std::unique_ptr<Scanner> scanner_;
};

// Arguments joined to a text, with the end of each.
struct Joined {
  std::string text;
  std::vector<std::int64_t> ends;

  void Add(std::string_view argument) {
    if (!text.empty()) text += ',';
    text += argument;
    ends.push_back(static_cast<std::int64_t>(text.size()));
  }
  // Which argument the scanner stands in, or behind.
  std::size_t ArgumentAt(std::int64_t position) const {
    const auto found = std::lower_bound(ends.begin(), ends.end(), position);
    return static_cast<std::size_t>(found - ends.begin());
  }
};

template <class Item>
std::span<Item> Keep(const std::vector<Item>& items, MemoryPool& pool) {
  if (items.empty()) return {};
  auto* const kept = pool.NewArray<Item>(items.size());
  std::copy(items.begin(), items.end(), kept);
  return {kept, items.size()};
}

}  // namespace

// --- The record at hand --------------------------------------------------------------------------

bool CarryingReader::IsCarried(const IFC::IfcEntity& entity) {
  return entity.carries && (dynamic_cast<const IFC::CarriedEntity*>(&entity) != nullptr ||
                            CarriedTable::Find(entity) != nullptr);
}

IFC::IfcEntity* CarryingReader::Read(IFC::IfcEntity& entity) {
  const std::string text = TakeRecord();
  const RecordText record = CutRecord(text);
  return IsCarried(entity) ? ReadAgain(entity, record) : ReadText(entity, record);
}

IFC::IfcEntity* CarryingReader::ReadUnknown(std::uint32_t number) {
  const std::string text = TakeRecord();
  const RecordText record = CutRecord(text);
  parser_.tolerance->Note(KindOfUnknown(record), ClassNameOf(record), {}, number, offset_);
  parser_.row_ = &kCarriedRow;
  IFC::IfcEntity* const other = ReadByOther(record, number);
  return other != nullptr ? other : ReadByNone(record, number);
}

bool CarryingReader::Fits(IFC::IfcEntity& entity) {
  parser_.carrying.object = &entity;
  try {
    entity.read(parser_);
    return parser_.scanner->PeekSign() == ')' && !parser_.scanner->IsStopped();
  } catch (const MisfitInRecord&) {
    parser_.ClearScratch();
    return false;
  }
}

// The text of the record up to its ";", which is the next token.
std::string CarryingReader::TakeRecord() {
  parser_.PassMendedRecord();
  offset_ = parser_.RecordOffset();
  return parser_.scanner->Stream()->StatementText();
}

IFC::IfcEntity* CarryingReader::ReadText(IFC::IfcEntity& entity, const RecordText& record) {
  const ClassFacts* const facts = parser_.factories->classes->Find(ClassNameOf(record));
  const std::uint32_t number = entity.marker;
  std::vector<std::size_t> misfits;
  const bool isRead = facts != nullptr && ReadMended(entity, *facts, record, misfits);
  const bool isCountWrong = facts == nullptr || facts->AttributeCount() != record.arguments.size();
  if (isCountWrong) {
    parser_.tolerance->Note(Misfit::kArgumentCount, ClassNameOf(record), {}, number, offset_);
  }
  if (isCountWrong && !misfits.empty()) {
    if (IFC::IfcEntity* const other = ReadByOther(record, number)) return other;
  }
  if (!isRead) {
    parser_.row_ = &kCarriedRow;
    return ReadByNone(record, number);
  }
  NoteArguments(entity, *facts, record, misfits);
  NoteAbsent(entity, record);
  Carry(entity, *facts, record, misfits);
  return &entity;
}

// All records are known now: the object stays what it is, and what was not found may be found.
IFC::IfcEntity* CarryingReader::ReadAgain(IFC::IfcEntity& entity, const RecordText& record) {
  if (auto* const carried = dynamic_cast<CarriedRecord*>(&entity)) {
    carried->Fill(record, FindTarget(), parser_.Pool());
    return &entity;
  }
  const FactoryTable* const release = CarriedTable::Find(entity)->release;
  if (release != parser_.factories) {
    ReadBy(*release, entity, record);
    return &entity;
  }
  std::vector<std::size_t> misfits;
  const ClassFacts& facts = *parser_.factories->classes->Find(ClassNameOf(record));
  if (ReadMended(entity, facts, record, misfits)) Carry(entity, facts, record, misfits);
  return &entity;
}

// --- By the classes of the release ---------------------------------------------------------------

// Each attempt finds one argument more that its attribute does not take. False when there is none
// to blame.
bool CarryingReader::ReadMended(IFC::IfcEntity& entity, const ClassFacts& facts,
                                const RecordText& record, std::vector<std::size_t>& misfits) {
  const std::size_t count = facts.AttributeCount();
  std::vector<bool> isMisfit(count);
  for (;;) {
    Joined joined;
    for (std::size_t i = 0; i < count; ++i) {
      const bool isThere = i < record.arguments.size() && !isMisfit[i];
      joined.Add(isThere && !record.arguments[i].empty() ? record.arguments[i]
                                                         : PlaceHolder(facts.Attribute(i)));
    }
    const Borrowed borrowed(parser_, joined.text + ");", *parser_.factories);
    if (Fits(entity)) break;
    const std::size_t at = joined.ArgumentAt(parser_.scanner->Stream()->Position());
    if (at >= count || at >= record.arguments.size() || isMisfit[at]) return false;
    isMisfit[at] = true;
  }
  for (std::size_t i = 0; i < count; ++i) {
    const bool isEmpty = i < record.arguments.size() && record.arguments[i].empty();
    if (isMisfit[i] || isEmpty) misfits.push_back(i);
    if (isMisfit[i] || isEmpty || i >= record.arguments.size()) {
      MakeBlank(entity, facts.Attribute(i));
    }
  }
  return true;
}

std::vector<std::size_t> CarryingReader::LargeOnes(IFC::IfcEntity& entity, const ClassFacts& facts,
                                                   const RecordText& record,
                                                   const std::vector<std::size_t>& misfits) {
  std::vector<std::size_t> large;
  bool wasReadOver = false;
  for (const std::size_t index : misfits) {
    const std::string smaller = WithSmallIntegers(record.arguments[index]);
    if (smaller == record.arguments[index]) continue;
    RecordText changed = record;
    changed.arguments[index] = smaller;
    std::vector<std::size_t> left;
    const bool isRead = ReadMended(entity, facts, changed, left);
    wasReadOver = true;
    if (isRead && std::find(left.begin(), left.end(), index) == left.end()) large.push_back(index);
  }
  std::vector<std::size_t> again;
  if (wasReadOver) ReadMended(entity, facts, record, again);
  return large;
}

void CarryingReader::Carry(IFC::IfcEntity& entity, const ClassFacts& facts,
                           const RecordText& record, const std::vector<std::size_t>& misfits) {
  MemoryPool& pool = parser_.Pool();
  std::vector<std::size_t> indexes = misfits;
  for (std::size_t i = facts.AttributeCount(); i < record.arguments.size(); ++i) {
    indexes.push_back(i);
  }
  std::vector<CarriedArgument> arguments;
  std::vector<IFC::IfcEntity*> children;
  for (const std::size_t index : indexes) {
    CarriedValue* const value = NewCarriedValue(record.arguments[index], FindTarget(), pool);
    arguments.push_back({static_cast<std::uint32_t>(index), value});
    for (const CarriedReference& reference : value->text.references) {
      if (reference.target != nullptr) children.push_back(reference.target);
    }
  }
  const bool isCountWrong = record.arguments.size() != facts.AttributeCount();
  if (arguments.empty() && !isCountWrong) return;
  parser_.mainContainer->Carried().Set(
      entity, {.argumentCount = static_cast<std::uint32_t>(record.arguments.size()),
               .arguments = Keep(arguments, pool),
               .children = Keep(children, pool),
               .spelling = isCountWrong ? Spelling(entity, record) : nullptr,
               .release = parser_.factories,
               .byOtherRelease = false});
}

void CarryingReader::NoteArguments(IFC::IfcEntity& entity, const ClassFacts& facts,
                                   const RecordText& record,
                                   const std::vector<std::size_t>& misfits) {
  const std::string className = Narrow(entity.getClassName());
  RecordNotes* const notes = parser_.notes.records.get();
  std::vector<std::size_t> large;
  if (notes != nullptr) large = LargeOnes(entity, facts, record, misfits);
  for (const std::size_t index : misfits) {
    const AttributeFacts& attribute = facts.Attribute(index);
    if (std::find(large.begin(), large.end(), index) != large.end()) {
      notes->NoteLarge({entity.marker, attribute.name, offset_});
      continue;
    }
    const bool isEnumeration =
        attribute.Values() != nullptr && record.arguments[index].starts_with('.');
    parser_.tolerance->Note(isEnumeration ? Misfit::kUnknownEnumValue : Misfit::kWrongValue,
                            className, attribute.name, entity.marker, offset_);
  }
}

// Of all attributes: whoever asks knows which of them are numbers.
void CarryingReader::NoteAbsent(const IFC::IfcEntity& entity, const RecordText& record) {
  RecordNotes* const notes = parser_.notes.records.get();
  if (notes == nullptr) return;
  for (std::uint32_t i = 0; i < record.arguments.size(); ++i) {
    if (record.arguments[i] == "$" || record.arguments[i] == "*")
      notes->NoteAbsent(entity.marker, i);
  }
}

// --- By the classes of another release -----------------------------------------------------------

namespace {

// Those next to `own` come first, and of two the newer one.
std::vector<const FactoryTable*> ByDistance(std::span<const FactoryTable* const> releases,
                                            const FactoryTable* own) {
  const auto place = std::find(releases.begin(), releases.end(), own) - releases.begin();
  std::vector<std::pair<std::ptrdiff_t, const FactoryTable*>> found;
  for (std::ptrdiff_t i = std::ssize(releases) - 1; i >= 0; --i) {
    const FactoryTable* const release = *(releases.begin() + i);
    if (release != own) found.emplace_back(std::abs(i - place), release);
  }
  std::stable_sort(found.begin(), found.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<const FactoryTable*> sorted;
  sorted.reserve(found.size());
  for (const auto& [distance, release] : found) sorted.push_back(release);
  return sorted;
}

}  // namespace

IFC::IfcEntity* CarryingReader::ReadByOther(const RecordText& record, std::uint32_t number) {
  const std::string name = ClassNameOf(record);
  for (const FactoryTable* const release :
       ByDistance(parser_.carrying.otherReleases, parser_.factories)) {
    const ClassFacts* const facts = release->classes->Find(name);
    const EntityCreator create = release->Find(name);
    if (facts == nullptr || create == nullptr) continue;
    if (facts->AttributeCount() != record.arguments.size()) continue;
    IFC::IfcEntity* const entity = create(parser_.Pool());
    if (!entity->isComplexType()) continue;
    entity->SetMarker(number);
    if (ReadBy(*release, *entity, record)) return entity;
  }
  return nullptr;
}

bool CarryingReader::ReadBy(const FactoryTable& release, IFC::IfcEntity& entity,
                            const RecordText& record) {
  Joined joined;
  for (const std::string_view argument : record.arguments) joined.Add(argument);
  {
    const Borrowed borrowed(parser_, joined.text + ");", release);
    if (!Fits(entity)) return false;
  }
  parser_.mainContainer->Carried().Set(
      entity, {.argumentCount = static_cast<std::uint32_t>(record.arguments.size()),
               .spelling = Spelling(entity, record),
               .release = &release,
               .byOtherRelease = &release != parser_.factories});
  return true;
}

// Compared with what the writer makes of the values that have just been read.
const RecordSpelling* CarryingReader::Spelling(const IFC::IfcEntity& entity,
                                               const RecordText& record) {
  FileStream::OutpoutTextStream stream;
  StepWriter(stream).WriteTypedCall(entity);
  return SpellingOf(record, CutRecord(stream.Text()), parser_.Pool());
}

// --- By none -------------------------------------------------------------------------------------

IFC::IfcEntity* CarryingReader::ReadByNone(const RecordText& record, std::uint32_t number) {
  CarriedRecord* const carried = CarriedRecord::New(CountOfCarried(record), parser_.Pool());
  carried->SetMarker(number);
  carried->Fill(record, FindTarget(), parser_.Pool());
  return carried;
}

// --- References ----------------------------------------------------------------------------------

FindRecord CarryingReader::FindTarget() const {
  return [this](std::uint32_t number) {
    IFC::IfcEntity* const target = parser_.mainContainer->GetEntityByOrginalNumber(number);
    if (target == nullptr) parser_.forwardReference = true;
    return target;
  };
}

IFC::IfcEntity* KeepReference(Parser& parser, IFC::IfcEntity* entity, std::uint32_t number) {
  CarryingState& state = parser.carrying;
  // Of the classes of another release there are no objects in the model. What has been told of the
  // object itself goes for what refers to it.
  if (entity != nullptr && (state.byOtherRelease || IsOfNoClassOfModel(*entity))) return entity;
  IFC::IfcEntity& holder = *state.object;
  const std::string what = "#" + std::to_string(number);
  parser.tolerance->Note(entity == nullptr ? Misfit::kDanglingReference : Misfit::kRefusedReference,
                         Narrow(holder.getClassName()), what, holder.marker);
  holder.carries = true;
  if (entity != nullptr) return entity;
  return NewCarriedValue(
      what, [](std::uint32_t) { return nullptr; }, parser.Pool());
}

IFC::IfcEntity* KeepValue(Parser& parser, IFC::IfcEntity* value) {
  if (value == nullptr) return nullptr;
  CarryingState& state = parser.carrying;
  if (state.byOtherRelease) throw MisfitInRecord();
  IFC::IfcEntity& holder = *state.object;
  parser.tolerance->Note(Misfit::kWrongValue, Narrow(holder.getClassName()),
                         Narrow(value->getClassName()), holder.marker);
  holder.carries = true;
  return value;
}

}  // namespace corvel
