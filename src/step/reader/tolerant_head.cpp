#include "step/reader/tolerant_head.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "step/reader/record_mender.h"
#include "step/reader/schema_identifier.h"
#include "step/reader/stream_bytes.h"
#include "step/streams/input_text_stream.h"

namespace corvel {

namespace {

constexpr int kEnd = StreamBytes::kEnd;
constexpr std::size_t kLongestHead = 0xA00000;
constexpr char kIsoLine[] = "ISO-10303-21";

struct HeadRecord {
  std::string_view name;
  std::string_view missing;  // its arguments where the file has none
};
constexpr HeadRecord kHeadRecords[] = {{"FILE_DESCRIPTION", "((''),'2;1')"},
                                       {"FILE_NAME", "('','',(''),(''),'','','')"},
                                       {"FILE_SCHEMA", "((''))"}};

int Unheard(const char* /*key*/, const WideString& /*message*/, int /*mode*/) { return 0; }

Scanner ScannerOf(std::string text) {
  return {std::make_unique<FileStream::InputTextStream>(std::move(text)), Unheard};
}

// `DATA;` or `DATA(`
bool AtData(StreamBytes& bytes) {
  const std::size_t mark = bytes.Mark();
  bool found = true;
  for (const char c : {'D', 'A', 'T', 'A'}) found = found && bytes.Take() == c;
  if (found) {
    bytes.TakeBlanks();
    found = bytes.Peek() == ';' || bytes.Peek() == '(';
  }
  bytes.GoBack(mark);
  return found;
}

void TakeString(StreamBytes& bytes) {
  bytes.Take();
  while (bytes.Peek() != kEnd && bytes.Take() != '\'') {
  }
}

// Moves to where the records begin: at the start of a line, or behind a ";". A file may leave a
// string of its header open, so that both ways to look at it are tried.
bool FindRecords(StreamBytes& bytes, bool heedsStrings) {
  Tolerance unheard;
  RecordMender mender(unheard);
  const std::size_t start = bytes.Mark();
  for (bool isStart = true; bytes.Mark() - start < kLongestHead;) {
    const int c = bytes.Peek();
    if (c == kEnd) return false;
    if (isStart && (AtData(bytes) || bytes.AtRecord())) return true;
    if (c == '\'' && heedsStrings) {
      TakeString(bytes);
      continue;
    }
    bytes.Take();
    if (c == '/' && bytes.Peek() == '*') {
      bytes.Take();
      mender.TakeComment(bytes, nullptr);
    }
    const bool isBlank = IsBlank(static_cast<char>(c));
    isStart = c == ';' || c == '\n' || (isStart && isBlank);
  }
  return false;
}

// At a record, or at the word DATA with one behind it.
bool RecordsFollow(StreamBytes& bytes) {
  const std::size_t mark = bytes.Mark();
  if (!bytes.AtRecord()) {
    for (int c = bytes.Peek(); c != kEnd && c != '\n' && c != ';'; c = bytes.Peek()) bytes.Take();
    bytes.Take();
    bytes.TakeBlanks();
  }
  const bool found = bytes.AtRecord();
  bytes.GoBack(mark);
  return found;
}

// What seems to stand in a string of the header, and is followed by records, is none of it.
std::string TakeHeadText(StreamBytes& bytes) {
  const std::size_t start = bytes.Mark();
  const bool found = FindRecords(bytes, true);
  std::size_t end = bytes.Mark();
  bytes.GoBack(start);
  FindRecords(bytes, false);
  if (!found || (bytes.Mark() < end && RecordsFollow(bytes))) end = bytes.Mark();
  bytes.GoBack(start);
  std::string text;
  while (bytes.Mark() < end) text.push_back(static_cast<char>(bytes.Take()));
  return text;
}

// What can be written as a first and a last line, and is no more than that when it is read again.
bool IsPlainLine(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) {
    return c >= ' ' && c < 0x7F && std::string_view("'#=(;").find(c) == std::string_view::npos;
  });
}

// One whose section ends, and which says what its schema is.
std::unique_ptr<HeaderToken> AsItStands(const std::string& text, std::string& isoLine) {
  if (text.find("ENDSEC") == std::string::npos) return nullptr;
  Scanner scanner = ScannerOf(text);
  const Token& first = *scanner.PeekToken();
  if (first.Is(TokenType::IsoToken) && IsPlainLine(first.text)) isoLine = first.text;
  auto header = ReadHeaderToken(scanner);
  if (header == nullptr || header->schemaIdentifier.empty() || scanner.IsStopped()) return nullptr;
  return header;
}

// A header refers to nothing, and what is no number at all would stop its reading.
std::string WithoutNumbers(const std::string& text) {
  std::string left;
  bool inString = false;
  for (const char c : text) {
    if (c == '\'') inString = !inString;
    if (c != '#' || inString) left.push_back(c);
  }
  return left;
}

// The arguments of a record of the header, closed as those of the model are.
std::string ArgumentsOf(const std::string& text, const HeadRecord& record) {
  std::size_t begin = text.find(record.name);
  if (begin == std::string::npos) return std::string(record.missing);
  begin += record.name.size();
  std::size_t end = text.size();
  for (const HeadRecord& other : kHeadRecords) end = std::min(end, text.find(other.name, begin));
  Tolerance unheard;
  Scanner scanner = ScannerOf("=" + text.substr(begin, end - begin));
  const std::string arguments = WithoutNumbers(RecordMender(unheard).Take(scanner, 0).text);
  return arguments.starts_with('(') ? arguments : std::string(record.missing);
}

// The first thing that somebody would mend.
std::string FlawOf(const std::string& text) {
  if (text.starts_with("\xEF\xBB\xBF")) return "a byte order mark in front of ISO-10303-21";
  if (text.find(kIsoLine) == std::string::npos) return "no ISO-10303-21";
  if (text.find("HEADER") == std::string::npos) return "no HEADER";
  for (const HeadRecord& record : kHeadRecords) {
    if (text.find(record.name) == std::string::npos) return "no " + std::string(record.name);
  }
  return text.find("ENDSEC") == std::string::npos ? "no ENDSEC behind it" : "";
}

std::string Mended(const std::string& text) {
  std::string mended = kIsoLine;
  mended += ";HEADER;";
  for (const HeadRecord& record : kHeadRecords) {
    mended.append(record.name).append(ArgumentsOf(text, record)).append(";");
  }
  return mended + "ENDSEC;\n";
}

}  // namespace

TolerantHead TakeTolerantHead(Scanner& scanner) {
  StreamBytes bytes(scanner);
  TolerantHead head;
  head.text = TakeHeadText(bytes);
  bytes.Forget();
  head.isoLine = kIsoLine;
  head.header = AsItStands(head.text, head.isoLine);
  head.isMended = head.header == nullptr;
  if (!head.isMended) return head;
  head.flaw = FlawOf(head.text);
  head.text = Mended(head.text);
  Scanner mended = ScannerOf(head.text);
  head.header = ReadHeaderToken(mended);
  if (head.header == nullptr) head.header = std::make_unique<HeaderToken>();
  return head;
}

}  // namespace corvel
