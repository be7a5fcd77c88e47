#include "step/reader/parallel/batch_reader.h"

#include <utility>

#include "step/streams/input_view_stream.h"

namespace corvel {

namespace {

// Whatever would be told ends the batch before that.
int Refuse(const char* /*key*/, const WideString& /*message*/, int /*mode*/) {
  throw MisfitInRecord();
}

}  // namespace

BatchReader::BatchReader(const Parser& model, MemoryPool& pool)
    : filed_(nullptr),
      references_(pool, own_, false),
      parser_(model.ignoreEnumErrors, Refuse, nullptr) {
  parser_.factories = model.factories;
  parser_.ahead = &references_;
}

BatchReader::BatchReader(const Parser& model, MemoryPool& pool, const NumberTable& filed)
    : filed_(&filed),
      references_(pool, filed, true),
      parser_(model.ignoreEnumErrors, Refuse, nullptr) {
  parser_.factories = model.factories;
  parser_.ahead = &references_;
}

BatchReader::~BatchReader() = default;

void BatchReader::Read(RecordBatch& batch) {
  // Too little memory ends the batch too: the parser of the model meets it again.
  try {
    Open(batch);
    while (ReadRecord(batch)) {
    }
  } catch (const MisfitInRecord&) {
  } catch (const std::exception&) {
  }
  parser_.ClearScratch();
  parser_.valueDepth = 0;
  parser_.scanner.reset();
}

void BatchReader::Open(RecordBatch& batch) {
  own_.Clear();
  references_.StartBatch(batch);
  skipped_ = {};
  parser_.scanner =
      std::make_unique<Scanner>(std::make_unique<FileStream::InputViewStream>(
                                    std::string_view(batch.bytes.data(), batch.bytes.size())),
                                Refuse);
  parser_.scanner->NoteIn(&skipped_);
}

// False at the end of what is plain.
bool BatchReader::ReadRecord(RecordBatch& batch) {
  Scanner& scanner = *parser_.scanner;
  FileStream::InputStream& stream = *scanner.Stream();
  std::uint32_t number = 0;
  const TokenType first = TakeNumber(number);
  if (first == TokenType::EndOfFileToken && skipped_.IsEmpty()) {
    // A byte of 255 looks like the end of the input, wherever it stands.
    batch.isWhole = stream.Cursor() == batch.bytes.data() + batch.bytes.size();
  }
  if (first != TokenType::IdentifierToken) return false;
  if (number == 0 || scanner.Argument() != 1 || !skipped_.IsEmpty()) return false;
  scanner.EnterRecord();
  const auto offset = [&] {
    return static_cast<std::uint32_t>(stream.Cursor() - batch.bytes.data());
  };
  RecordBatch::Stop stop{.numberEnd = offset()};
  RecordBatch::Record record{.number = number};
  record.entity = TakeEntity(number, record.slot);
  if (record.entity == nullptr) return false;
  record.entity->read(parser_);
  if (!scanner.TakeRecordEnd()) {
    scanner.TakeSign(')');
    if (!scanner.TakeSemicolon()) borders_.FinishRecord(scanner);
  }
  scanner.LeaveRecord();
  if (!skipped_.IsEmpty()) return false;
  scanner.ClearTokens();
  if (filed_ == nullptr && !own_.Add(number, record.entity)) return false;
  record.end = offset();
  record.numbersEnd = static_cast<std::uint32_t>(batch.numbers.size());
  batch.records.push_back(record);
  stop.line = scanner.Line();
  batch.stops.push_back(stop);
  return true;
}

// Of the next record. Gives what stands there.
TokenType BatchReader::TakeNumber(std::uint32_t& number) {
  Scanner& scanner = *parser_.scanner;
  scanner.StartStatement();
  if (scanner.TakeIdentifier(number)) return TokenType::IdentifierToken;
  const Token& token = *scanner.NextToken();
  number = token.number;
  return token.type;
}

// The object of a record, with the scanner behind the "(". Null: none that is plain.
IFC::IfcEntity* BatchReader::TakeEntity(std::uint32_t number, std::uint32_t& slot) {
  if (!parser_.scanner->TakeSign('=')) return nullptr;
  const FactoryRow* const row = TakeRow();
  if (row == nullptr) return nullptr;
  slot = static_cast<std::uint32_t>(row - parser_.factories->slots);
  if (filed_ != nullptr) return filed_->Find(number);
  IFC::IfcEntity* const entity = row->create(references_.Pool());
  entity->SetMarker(number);
  return entity;
}

const FactoryRow* BatchReader::TakeRow() {
  Scanner& scanner = *parser_.scanner;
  const std::string_view call = scanner.PeekCall();
  const FactoryRow* row = call.empty() ? nullptr : parser_.factories->FindRow(call);
  if (row != nullptr) {
    scanner.TakeCall(call);
    return row;
  }
  std::string_view name;
  if (!scanner.TakeClassName(name)) {
    const Token& token = *scanner.NextToken();
    if (!token.Is(TokenType::EntityNameToken)) return nullptr;
    name = token.text;
  }
  row = parser_.factories->FindRow(name);
  return row != nullptr && scanner.TakeSign('(') ? row : nullptr;
}

}  // namespace corvel
