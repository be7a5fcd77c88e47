// The values of StepWriter.
#include <algorithm>
#include <cstring>

#include "step/numbers/byte_runs.h"
#include "step/numbers/exact_real.h"
#include "step/numbers/number_text.h"
#include "step/writer/step_writer.h"

namespace corvel {

namespace {

constexpr std::size_t kLongestUnit = 12;  // \X2\00E9\X0\ has 12 bytes
constexpr std::size_t kUnitsAtOnce = FileStream::OutpoutStream::kMaxReserve / kLongestUnit;

bool IsHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }

char* PutEscaped(char16_t unit, char* to) {
  constexpr char kHex[] = "0123456789ABCDEF";
  constexpr std::string_view kBegin = "\\X2\\";
  constexpr std::string_view kEnd = "\\X0\\";
  std::copy(kBegin.begin(), kBegin.end(), to);
  for (int i = 0; i < 4; ++i) to[4 + i] = kHex[(unit >> (12 - 4 * i)) & 15];
  std::copy(kEnd.begin(), kEnd.end(), to + 8);
  return to + kLongestUnit;
}

// `before` tells a raw byte from the second half of a surrogate pair.
char* PutUnit(char16_t unit, char16_t before, char* to) {
  if (unit >= 32 && unit <= 126) {
    if (unit == u'\'' || unit == u'\\') *to++ = static_cast<char>(unit);
    *to++ = static_cast<char>(unit);
    return to;
  }
  if (IsRawByte(unit) && !IsHighSurrogate(before)) {
    *to++ = static_cast<char>(unit - kRawByteBase);
    return to;
  }
  return PutEscaped(unit, to);
}

// Eight bytes at once: not 0 when one of them does not stand for itself in the file.
std::uint64_t AnyEncoded(std::uint64_t word) {
  using bytes::All;
  const std::uint64_t quotes = word ^ All('\'');
  const std::uint64_t slashes = word ^ All('\\');
  return (word | (word - All(' ')) | (word + All(1)) | (quotes - All(1)) | (slashes - All(1))) &
         All(0x80);
}

// Bytes that are the units of their value, so none of them a raw one.
char* PutPlain(std::string_view text, char* to) {
  constexpr std::size_t kAtOnce = sizeof(std::uint64_t);
  const char* at = text.data();
  const char* const end = at + text.size();
  while (at != end) {
    if (static_cast<std::size_t>(end - at) >= kAtOnce) {
      if (AnyEncoded(bytes::EightAt(at)) == 0) {
        std::memcpy(to, at, kAtOnce);
        at += kAtOnce;
        to += kAtOnce;
        continue;
      }
    }
    to = PutUnit(static_cast<unsigned char>(*at++), 0, to);
  }
  return to;
}

void PutOpening(FileStream::OutpoutStream& stream, const ClassOpening& opening) {
  std::memcpy(stream.Reserve(ClassOpening::kRoom), opening.text.data(), ClassOpening::kRoom);
  stream.Advance(opening.size);
}

// As Put, for texts whose size the compiler knows.
template <std::size_t kSize>
void PutSigns(FileStream::OutpoutStream& stream, const char (&signs)[kSize]) {
  std::memcpy(stream.Reserve(kSize), signs, kSize - 1);
  stream.Advance(kSize - 1);
}

}  // namespace

void StepWriter::Put(std::string_view bytes) {
  char* const to = stream_->Reserve(bytes.size());
  std::copy(bytes.begin(), bytes.end(), to);
  stream_->Advance(bytes.size());
}

void StepWriter::WritePlain(std::string_view text) {
  PutSigns(*stream_, "'");
  while (!text.empty()) {
    const auto piece = text.substr(0, kUnitsAtOnce);
    char* const begin = stream_->Reserve(FileStream::OutpoutStream::kMaxReserve);
    stream_->Advance(static_cast<std::size_t>(PutPlain(piece, begin) - begin));
    text.remove_prefix(piece.size());
  }
  PutSigns(*stream_, "',");
}

void StepWriter::WriteUnits(WideView text) {
  PutSigns(*stream_, "'");
  char16_t before = 0;
  while (!text.empty()) {
    const auto piece = text.substr(0, kUnitsAtOnce);
    char* const begin = stream_->Reserve(FileStream::OutpoutStream::kMaxReserve);
    char* end = begin;
    for (const char16_t unit : piece) {
      end = PutUnit(unit, before, end);
      before = unit;
    }
    stream_->Advance(static_cast<std::size_t>(end - begin));
    text.remove_prefix(piece.size());
  }
  PutSigns(*stream_, "',");
}

void StepWriter::WriteText(ModelText text) {
  if (text.IsPlain()) {
    WritePlain(text.Plain());
  } else {
    WriteUnits(text.Units());
  }
}

void StepWriter::WriteGuid(const char* guid) { WritePlain(guid); }

void StepWriter::WriteReal(double value) {
  char* const begin = stream_->Reserve(kNumberRoom + 1);
  const bool exact = model_.numbers == NumberForm::kExact;
  char* end = exact ? FormatExactReal(value, begin) : FormatReal(value, begin);
  *end++ = ',';
  stream_->Advance(static_cast<std::size_t>(end - begin));
}

void StepWriter::WriteInteger(std::int32_t value) {
  char* const begin = stream_->Reserve(kNumberRoom + 1);
  char* end = FormatInteger(value, begin);
  *end++ = ',';
  stream_->Advance(static_cast<std::size_t>(end - begin));
}

void StepWriter::WriteCount(double value) {
  char* const begin = stream_->Reserve(kNumberRoom + 1);
  const bool exact = model_.numbers == NumberForm::kExact;
  char* end = exact ? FormatExactCount(value, begin) : FormatCount(value, begin);
  *end++ = ',';
  stream_->Advance(static_cast<std::size_t>(end - begin));
}

void StepWriter::WriteBinaryValue(std::int32_t value) { WriteInteger(value); }

void StepWriter::WriteBoolean(std::int32_t value) { Put(kBooleanDataType.ToText(value)); }

void StepWriter::WriteLogical(std::int32_t value) { Put(kLogicalDataType.ToText(value)); }

void StepWriter::WriteEnum(const EnumTable& table, std::int32_t value) { Put(table.ToText(value)); }

void StepWriter::WriteAbsent() { PutSigns(*stream_, "$,"); }

void StepWriter::WriteRefNumber(std::uint32_t number) {
  char* const begin = stream_->Reserve(kNumberRoom + 2);
  char* end = begin;
  *end++ = '#';
  end = FormatUnsigned(number, end);
  *end++ = ',';
  stream_->Advance(static_cast<std::size_t>(end - begin));
}

bool StepWriter::WriteEntityRef(const IFC::IfcEntity* entity) {
  if (entity == nullptr) {
    PutSigns(*stream_, "*,");
    return false;
  }
  if (entity->marker == IFC::kDeleted) {
    PutSigns(*stream_, "$,");
    return true;
  }
  if (!entity->inlineValue) {
    // An object that was made in the place of a reference has neither number nor text.
    if (entity->marker == IFC::kUnfiled) {
      PutSigns(*stream_, "*,");
    } else {
      WriteRefNumber(entity->marker);
    }
    return false;
  }
  WriteCall(*entity);
  PutSigns(*stream_, ",");
  return false;
}

// `IFCWALL(...)`. Taking the last comma back takes the bracket of the value class without a value,
// `IFCNULLSTYLE)`, as that class is always written; an entity class without attributes, such
// as IfcVertex, keeps it.
void StepWriter::WriteTypedCall(const IFC::IfcEntity& entity) {
  PutOpening(*stream_, openings_.Of(entity));
  entity.write(*this);
  const bool isEmptyEntity = stream_->LastByte() == '(' && entity.isComplexType();
  if (!isEmptyEntity) stream_->StepBack(1);
  PutSigns(*stream_, ")");
}

void StepWriter::WriteCall(const IFC::IfcEntity& entity) {
  if (entity.carries && WriteCarrying(entity)) [[unlikely]]
    return;
  WriteTypedCall(entity);
}

void StepWriter::WriteEntityRefList(const EntityList& list) {
  PutSigns(*stream_, "(");
  bool any = false;
  for (const IFC::IfcEntity* const member : list) {
    if (WriteEntityRef(member)) {
      // The `$,` of a deleted one.
      stream_->StepBack(2);
    } else {
      any = true;
    }
  }
  if (any) stream_->StepBack(1);
  PutSigns(*stream_, "),");
}

template <class Item, class WriteItem>
void StepWriter::WriteGroup(const List<Item>& list, WriteItem writeItem) {
  PutSigns(*stream_, "(");
  for (const Item& item : list) writeItem(item);
  if (!list.empty()) stream_->StepBack(1);
  PutSigns(*stream_, "),");
}

void StepWriter::WriteEntityRefLists(const List<EntityList>& lists) {
  WriteGroup(lists, [this](const EntityList& inner) { WriteEntityRefList(inner); });
}

void StepWriter::WriteRealList(const List<double>& list) {
  WriteGroup(list, [this](double value) { WriteReal(value); });
}

void StepWriter::WriteIntegerList(const List<std::int32_t>& list) {
  WriteGroup(list, [this](std::int32_t value) { WriteInteger(value); });
}

void StepWriter::WriteBinaryList(const List<std::int32_t>& list) {
  WriteGroup(list, [this](std::int32_t value) { WriteBinaryValue(value); });
}

void StepWriter::WriteStringList(const List<ModelText>& list) {
  WriteGroup(list, [this](ModelText text) { WriteText(text); });
}

void StepWriter::WriteBooleanList(const List<std::int32_t>& list) {
  WriteGroup(list, [this](std::int32_t value) { WriteBoolean(value); });
}

void StepWriter::WriteLogicalList(const List<std::int32_t>& list) {
  WriteGroup(list, [this](std::int32_t value) { WriteLogical(value); });
}

void StepWriter::WriteEnumList(const EnumTable& table, const List<std::int32_t>& list) {
  WriteGroup(list, [&](std::int32_t value) { WriteEnum(table, value); });
}

void StepWriter::WriteRealLists(const List<List<double>>& lists) {
  WriteGroup(lists, [this](const List<double>& inner) { WriteRealList(inner); });
}

void StepWriter::WriteIntegerLists(const List<List<std::int32_t>>& lists) {
  WriteGroup(lists, [this](const List<std::int32_t>& inner) { WriteIntegerList(inner); });
}

void StepWriter::WriteEntityLine(const IFC::IfcEntity& entity) {
  if (entity.marker == IFC::kDeleted) return;
  WriteRefNumber(entity.marker);
  stream_->StepBack(1);
  PutSigns(*stream_, "=");
  WriteCall(entity);
  PutSigns(*stream_, ";\n");
}

}  // namespace corvel
