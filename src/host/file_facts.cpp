#include "host/file_facts.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "host/hearing.h"
#include "host/model_opening.h"
#include "host/run_checks.h"
#include "step/reader/record_skipper.h"
#include "step/reader/scanner.h"
#include "step/reader/skipped_input.h"

namespace corvel::host {

namespace {

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
  for (const Token* token = scanner.NextToken(); !token->Is(TokenType::EndOfFileToken);
       token = scanner.NextToken()) {
    if (!token->Is(TokenType::IdentifierToken)) continue;
    const std::uint32_t number = token->number;
    if (number == 0) {
      scanner.RefuseNumber();
      return;
    }
    ++facts.records;
    if (ReadRecord(scanner, counts)) continue;
    facts.problems.push_back(u"The file ends inside of record #" + ToWide(number) + u".");
    return;
  }
  if (scanner.IsStopped() || scanner.MetClosingLine()) return;
  facts.problems.push_back(ClosingLineIsMissing(facts.path, scanner.Stream()->Position()));
}

void ListClasses(const ClassCounts& counts, FileFacts& facts) {
  facts.classes.assign(counts.begin(), counts.end());
  std::sort(facts.classes.begin(), facts.classes.end(), [](const auto& a, const auto& b) {
    return a.second != b.second ? a.second > b.second : a.first < b.first;
  });
}

void ReadOpened(Scanner& scanner, bool tolerant, FileFacts& facts) {
  facts.bytes = scanner.Stream()->TotalSize();
  if (tolerant) {
    if (auto told = NoModelFile(facts.path, tolerant)) {
      facts.problems.push_back(std::move(*told));
      return;
    }
  }
  facts.header = ReadHeader(scanner, facts.path, facts.problems);
  if (facts.header == nullptr) return;
  facts.schema = ChooseSchema(facts.header->schemaIdentifier, facts.path, tolerant, facts.remarks,
                              facts.problems);
  ClassCounts counts;
  ReadRecords(scanner, facts, counts);
  ListClasses(counts, facts);
}

}  // namespace

FileFacts ReadFacts(const WideString& path, bool tolerant) {
  FileFacts facts;
  facts.path = path;
  if (auto trouble = TroubleWithInput(path)) {
    facts.problems.push_back(std::move(*trouble));
    return facts;
  }
  const auto scanner = OpenModel(path, tolerant);
  if (scanner->IsOpen()) {
    const Hearing problems(facts.problems);
    ReadOpened(*scanner, tolerant, facts);
  } else {
    facts.problems.emplace_back(u"Could not open the file");
  }
  return facts;
}

}  // namespace corvel::host
