#include "host/file_facts.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "host/record_skipper.h"
#include "host/run_checks.h"
#include "platform/file.h"
#include "step/reader/scanner.h"
#include "step/reader/schema_identifier.h"

namespace corvel::host {

namespace {

constexpr std::size_t kBufferSize = 0x100000;

// What the scanner and the choice of the schema say while a file is read. They report through
// plain functions.
std::vector<WideString>* heard = nullptr;

int Hear(const char* /*key*/, const WideString& message, int /*mode*/) {
  if (heard == nullptr) return 0;
  heard->push_back(message.substr(0, message.find_last_not_of(u"\n ") + 1));
  return 0;
}

class Hearing {
 public:
  explicit Hearing(std::vector<WideString>& messages) : before_(std::exchange(heard, &messages)) {}
  ~Hearing() { heard = before_; }
  Hearing(const Hearing&) = delete;
  Hearing& operator=(const Hearing&) = delete;

 private:
  std::vector<WideString>* before_;
};

using ClassCounts = std::unordered_map<std::string, std::uint64_t>;

void CountRecord(ClassCounts& counts, const Token& name) {
  switch (name.getType()) {
    case TokenType::EntityNameToken: ++counts[name.text]; break;
    case TokenType::OpenBracketToken: ++counts[kComplexInstance]; break;
    default: ++counts[kNamelessInstance]; break;
  }
}

// Behind the number of a record. False when the input ends inside it.
bool ReadRecord(Scanner& scanner, ClassCounts& counts) {
  if (scanner.PeekToken()->Is(TokenType::EqualToken)) scanner.NextToken();
  const Token& name = *scanner.NextToken();
  CountRecord(counts, name);
  if (name.Is(TokenType::SemicolonToken)) return true;
  return !name.Is(TokenType::EndOfFileToken) && SkipToSemicolon(*scanner.Stream());
}

// The records, up to the end of the input. What is missing there is a problem.
void ReadRecords(Scanner& scanner, FileFacts& facts, ClassCounts& counts) {
  bool closed = false;
  for (const Token* token = scanner.NextToken(); !token->Is(TokenType::EndOfFileToken);
       token = scanner.NextToken()) {
    if (token->Is(TokenType::EndIsoToken)) closed = true;
    if (!token->Is(TokenType::IdentifierToken)) continue;
    const std::uint32_t number = token->number;
    ++facts.records;
    if (ReadRecord(scanner, counts)) continue;
    facts.problems.push_back(u"The file ends inside of record #" + ToWide(number) + u".");
    return;
  }
  if (!closed && !scanner.IsStopped()) facts.problems.push_back(kCutShort);
}

void ListClasses(const ClassCounts& counts, FileFacts& facts) {
  facts.classes.assign(counts.begin(), counts.end());
  std::sort(facts.classes.begin(), facts.classes.end(), [](const auto& a, const auto& b) {
    return a.second != b.second ? a.second > b.second : a.first < b.first;
  });
}

// In the strict order in which a reading of the model takes it.
std::unique_ptr<HeaderToken> ReadHeader(Scanner& scanner) {
  if (!scanner.NextToken()->Is(TokenType::IsoToken)) return nullptr;
  if (!scanner.NextToken()->Is(TokenType::SemicolonToken)) return nullptr;
  return std::move(scanner.NextToken()->header);
}

void ReadOpened(Scanner& scanner, FileFacts& facts) {
  facts.bytes = scanner.Stream()->TotalSize();
  facts.header = ReadHeader(scanner);
  if (facts.header == nullptr) {
    facts.problems.emplace_back(u"Unable to read header token. No schema identifier can be read.");
    return;
  }
  const WideString& identifier = facts.header->schemaIdentifier;
  {
    const Hearing remarks(facts.remarks);
    facts.schema = ChooseSchemaNamespace(identifier, Hear);
  }
  if (!facts.schema) {
    facts.problems.push_back(u"Unknown schema identifier: " + identifier);
  }
  ClassCounts counts;
  ReadRecords(scanner, facts, counts);
  ListClasses(counts, facts);
}

}  // namespace

FileFacts ReadFacts(const WideString& path) {
  FileFacts facts;
  facts.path = path;
  if (auto trouble = TroubleWithInput(path)) {
    facts.problems.push_back(std::move(*trouble));
    return facts;
  }
  Scanner scanner(path, kBufferSize, Hear);
  if (scanner.IsOpen()) {
    const Hearing problems(facts.problems);
    ReadOpened(scanner, facts);
  } else {
    facts.problems.push_back(u"Could not open the file");
  }
  return facts;
}

}  // namespace corvel::host
