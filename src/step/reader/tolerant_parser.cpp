// What the parser does in tolerant readings alone.
#include <utility>

#include "step/reader/parser.h"
#include "step/reader/tolerant_head.h"
#include "step/reader/tolerant_reading.h"
#include "step/streams/input_text_stream.h"

namespace corvel {

namespace {

// One that no record has, `candidate` if possible.
std::uint32_t FreeNumber(const IFC::MainContainer& container, std::uint32_t candidate) {
  if (candidate == 0 || candidate > IFC::kLargestNumber) candidate = 1;
  while (container.HasEntityWithOrginalNumber(candidate)) ++candidate;
  return candidate;
}

}  // namespace

void Parser::StartTolerantReading() {
  if (tolerance == nullptr) return;
  tolerant_ = std::make_unique<TolerantReading>(*tolerance, skipped_);
  tolerant_->mender.NoteIn(notes.records.get());
}

void Parser::StartSecondPassTolerantly() {
  scanner->ReadTolerantly(false);
  tolerant_->mender.StartInput();
  tolerant_->mender.NoteIn(nullptr);
  looksAtText_ = true;
}

void Parser::ReadHeadTolerantly() {
  TolerantHead head = TakeTolerantHead(*scanner);
  isoLine = Widen(head.isoLine);
  headerToken = std::move(head.header);
  notes.headWasMended = head.isMended;
  if (head.isMended) {
    if (notes.records != nullptr) notes.records->NoteHead(head.flaw);
    tolerance->Tell(
        u"The HEADER section was not as it should be: what could be found of it is kept.");
  }
  scanner->ReadTolerantly(true);
}

// What is no record at the first look.
bool Parser::FindRecordTolerantly(std::uint32_t& number) {
  scanner->Rewind(0);
  if (tolerant_->highest != 0) tolerant_->borders.EnterData();
  for (;;) {
    switch (tolerant_->borders.FindRecord(*scanner, number)) {
      case TolerantBorders::Found::kRecord: return true;
      case TolerantBorders::Found::kNumberlessRecord: PutAside(0); break;
      case TolerantBorders::Found::kEnd: return false;
    }
  }
}

// Whether an earlier record has the number.
bool Parser::HasRecord(std::uint32_t number) {
  return mainContainer->HasEntityWithOrginalNumber(number);
}

// Behind the record. What the strict way does not get through is read once more.
IFC::IfcEntity* Parser::ReadEntityTolerantly(std::uint32_t number) {
  tolerant_->Enter(number, scanner->Stream()->StatementSize());
  if (notes.records != nullptr && tolerant_->isOfFile) {
    notes.records->AtRecord(number, Position() - static_cast<std::int64_t>(tolerant_->start));
  }
  try {
    IFC::IfcEntity* const entity = ReadNewEntity(number);
    if (scanner->TakeRecordEnd()) [[likely]]
      return entity;
    if (scanner->TakeSign(')') && scanner->TakeSemicolon()) return entity;
    if (entity == nullptr || IsStopped()) return entity;
  } catch (const MisfitInRecord&) {
    ClearScratch();
  }
  scanner->Rewind(tolerant_->start);
  looksAtText_ = true;
  IFC::IfcEntity* const entity = ReadMisfitRecord(number);
  looksAtText_ = false;
  return entity;
}

// What is not got through even so is mended, and read the same way again.
IFC::IfcEntity* Parser::ReadMisfitRecord(std::uint32_t number) {
  for (bool mends = false;; mends = true) {
    try {
      if (mends) MendRecord();
      IFC::IfcEntity* const entity = ReadNewEntity(number);
      if (entity == nullptr || IsStopped()) return entity;
      if (TakeCloseBrackets()) {
        TakeRestOfRecord();
        return entity;
      }
    } catch (const MisfitInRecord&) {
      ClearScratch();
    }
    if (mends) break;
  }
  // Not even then.
  IFC::IfcEntity* const carried = CarryingReader(*this).ReadUnknown(number);
  TakeRestOfRecord();
  return carried;
}

IFC::IfcEntity* Parser::ReadArgumentsTolerantly(IFC::IfcEntity* entity) {
  if (!entity->carries || !CarryingReader::IsCarried(*entity)) [[likely]] {
    try {
      entity->read(*this);
      const char sign = scanner->PeekSign();
      if (sign == ')') [[likely]]
        return entity;
      const bool isBracket = sign == '\0' && scanner->PeekToken()->Is(TokenType::CloseBracketToken);
      if (isBracket || IsStopped()) return entity;
    } catch (const MisfitInRecord&) {
      ClearScratch();
    }
  }
  // What the text is spoilt by may be all that does not fit.
  if (!tolerant_->isMended && !carrying.allAreFiled) {
    MendRecord();
    if (tolerant_->isChanged) throw MisfitInRecord();
  }
  return CarryingReader(*this).Read(*entity);
}

// What has no class of the release may have one once it is mended.
IFC::IfcEntity* Parser::ReadUnknownRecord(std::uint32_t number) {
  if (!tolerant_->isMended) throw MisfitInRecord();
  return CarryingReader(*this).ReadUnknown(number);
}

// Also those too many. True before a ";".
bool Parser::TakeCloseBrackets() {
  for (;;) {
    while (scanner->TakeSign(')')) {
    }
    if (scanner->PeekSign() == ';') return true;
    const TokenType type = scanner->PeekToken()->getType();
    if (type != TokenType::CloseBracketToken) return type == TokenType::SemicolonToken;
    scanner->NextToken();
  }
}

void Parser::MendRecord() {
  TolerantReading& tolerant = *tolerant_;
  scanner->Rewind(tolerant.start);
  scanner->TrustRecord();
  if (std::exchange(tolerant.isMended, true)) return;
  const MendedRecord record = tolerant.mender.Take(*scanner, tolerant.number);
  tolerant.offset = record.offset;
  tolerant.size = record.text.size() + 2;
  tolerant.isChanged = record.isChanged;
  scanner->Stream()->Replace(tolerant.start, "=" + record.text + ";");
}

void Parser::PassMendedRecord() {
  MendRecord();
  FileStream::InputStream& stream = *scanner->Stream();
  const std::size_t end = tolerant_->start + tolerant_->size - 1;
  while (stream.StatementSize() < end && stream.HasByte()) stream.SetCursor(stream.Cursor() + 1);
}

std::int64_t Parser::RecordOffset() const {
  return tolerant_->isOfFile ? tolerant_->offset : Tolerance::kNowhere;
}

// `number`: what it has and cannot keep.
void Parser::PutAside(std::uint32_t number) {
  MendedRecord record = tolerant_->mender.Take(*scanner, number);
  scanner->Rewind(scanner->Stream()->StatementSize());
  scanner->Stream()->ClearStatementText();
  tolerant_->putAside.push_back(
      {std::move(record.text), std::move(record.className), number, record.offset});
}

// Behind all others of the file: their references go to the first of a number.
bool Parser::ReadPutAside() {
  const auto records = std::move(tolerant_->putAside);
  if (records.empty()) return true;
  std::string text;
  std::uint32_t number = 0;
  for (const auto [known, entity] : mainContainer->originalEntities) number = known;
  for (const auto& record : records) {
    number = FreeNumber(*mainContainer, number + 1);
    text += "#" + std::to_string(number) + "=" + record.text + ";\n";
    const bool isDuplicate = record.number != 0;
    const std::string was = isDuplicate ? "was #" + std::to_string(record.number) : "";
    tolerance->Note(isDuplicate ? Misfit::kDuplicatedNumber : Misfit::kNumberlessRecord,
                    record.className, was, number, record.offset);
  }
  auto file = std::exchange(
      scanner, std::make_unique<Scanner>(
                   std::make_unique<FileStream::InputTextStream>(std::move(text)), showError));
  scanner->ReadTolerantly(false);
  tolerant_->mender.StartInput();
  tolerant_->isOfFile = false;
  bool read = true;
  for (number = 0; read && FindRecordTolerantly(number);) read = ReadRecord(number);
  if (scanner->IsStopped()) file->Stop();
  scanner = std::move(file);
  return read;
}

// What had to be carried, mended or passed over, once all of it is known.
void Parser::TellMisfits() {
  notes.misfits = tolerance->Groups();
  for (WideString& text : tolerance->TakeTexts(filePath)) {
    showError("", text + u"\n", kReportLog);
    remarks.push_back(std::move(text));
  }
}

}  // namespace corvel
