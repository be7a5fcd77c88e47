#include "plain_model.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <stdexcept>

namespace corvel::bench {

using Kind = Cell::Kind;

namespace {

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsName(char c) { return (c >= 'A' && c <= 'Z') || IsDigit(c) || c == '_'; }

}  // namespace

class PlainModel::Reader {
 public:
  // The byte behind the text is 0.
  Reader(PlainModel& model, const char* at) : model_(model), at_(at) {}

  void ReadRecords() {
    while (Next() == '#') {
      PlainRecord record;
      ++at_;
      record.number = static_cast<std::uint32_t>(ReadUnsigned());
      Expect('=');
      record.name = ReadName();
      const Cell arguments = ReadList();
      record.first = arguments.first;
      record.size = arguments.size;
      Expect(';');
      model_.records_.push_back(record);
    }
  }
  const char* Position() const { return at_; }

 private:
  char Next() {
    while (*at_ == ' ' || *at_ == '\n' || *at_ == '\r' || *at_ == '\t') ++at_;
    return *at_;
  }
  void Expect(char sign) {
    if (Next() != sign) throw std::runtime_error(std::string("no ") + sign);
    ++at_;
  }
  std::uint64_t ReadUnsigned() {
    std::uint64_t value = 0;
    while (IsDigit(*at_)) value = value * 10 + static_cast<std::uint64_t>(*at_++ - '0');
    return value;
  }
  std::string_view ReadName() {
    Next();
    const char* const begin = at_;
    while (IsName(*at_)) ++at_;
    return {begin, static_cast<std::size_t>(at_ - begin)};
  }

  // The cells of a list gather on a stack until its end is met, so that they lie side by side.
  Cell ReadList() {
    Expect('(');
    const std::size_t bottom = open_.size();
    for (char next = Next(); next != ')'; next = Next()) {
      if (next == ',') {
        ++at_;
      } else {
        const Cell value = ReadValue(next);
        open_.push_back(value);
      }
    }
    ++at_;
    return Close(bottom, Kind::kList);
  }
  Cell Close(std::size_t bottom, Kind kind) {
    Cell list;
    list.first = model_.cells_.size();
    list.size = static_cast<std::uint32_t>(open_.size() - bottom);
    list.kind = kind;
    model_.cells_.insert(model_.cells_.end(), open_.begin() + static_cast<std::ptrdiff_t>(bottom),
                         open_.end());
    open_.resize(bottom);
    return list;
  }

  Cell ReadValue(char next) {
    switch (next) {
      case '#': return ReadReference();
      case '\'': return ReadText();
      case '.': return ReadEnumeration();
      case '(': return ReadList();
      case '$': ++at_; return Of(Kind::kAbsent, 0);
      case '*': ++at_; return Of(Kind::kDerived, 0);
      default: return IsDigit(next) || next == '-' ? ReadNumber() : ReadTyped();
    }
  }
  static Cell Of(Kind kind, std::uint64_t first) {
    Cell cell;
    cell.first = first;
    cell.kind = kind;
    return cell;
  }
  Cell ReadReference() {
    ++at_;
    return Of(Kind::kReference, ReadUnsigned());  // the number, until all records are there
  }
  static Cell TextOf(Kind kind, const char* begin, const char* end) {
    Cell cell;
    cell.text = begin;
    cell.size = static_cast<std::uint32_t>(end - begin);
    cell.kind = kind;
    return cell;
  }
  Cell ReadText() {
    const char* const begin = ++at_;
    for (;; at_ += 2) {
      at_ = std::strchr(at_, '\'');
      if (at_ == nullptr) throw std::runtime_error("a text has no end");
      if (at_[1] != '\'') break;
    }
    return TextOf(Kind::kText, begin, at_++);
  }
  Cell ReadEnumeration() {
    const char* const begin = at_++;
    while (IsName(*at_)) ++at_;
    Expect('.');
    return TextOf(Kind::kWord, begin, at_);
  }
  Cell ReadNumber() {
    const char* end = at_;
    bool isReal = false;
    for (; IsDigit(*end) || *end == '-' || *end == '+' || *end == '.' || *end == 'E'; ++end) {
      isReal |= *end == '.';
    }
    Cell cell = Of(isReal ? Kind::kReal : Kind::kInteger, 0);
    if (isReal) {
      std::from_chars(at_, end, cell.real);
    } else {
      std::from_chars(at_, end, cell.integer);
    }
    at_ = end;
    return cell;
  }
  Cell ReadTyped() {
    const std::string_view name = ReadName();
    if (name.empty()) throw std::runtime_error("an unknown value");
    const Cell arguments = ReadList();
    const std::size_t bottom = open_.size();
    open_.push_back(TextOf(Kind::kWord, name.data(), name.data() + name.size()));
    open_.push_back(arguments);
    return Close(bottom, Kind::kTyped);
  }

  PlainModel& model_;
  const char* at_;
  std::vector<Cell> open_;
};

PlainModel::PlainModel(const std::string& path) {
  Load(path);
  const std::string_view all(text_.get(), size_);
  const std::size_t data = all.find("\nDATA;");
  const std::size_t begin = data == all.npos ? all.npos : all.find('#', data);
  if (begin == all.npos) throw std::runtime_error("no records");
  head_ = all.substr(0, begin);
  cells_.reserve(size_ / 3);  // room only: pages that nothing is stored in cost nothing
  records_.reserve(size_ / 16);
  Reader reader(*this, all.data() + begin);
  reader.ReadRecords();
  tail_ = all.substr(static_cast<std::size_t>(reader.Position() - all.data()));
  Resolve();
}

void PlainModel::Load(const std::string& path) {
  const File file(std::fopen(path.c_str(), "rb"));
  if (file == nullptr) throw std::runtime_error("cannot open " + path);
  std::fseek(file.get(), 0, SEEK_END);
  size_ = static_cast<std::size_t>(std::ftell(file.get()));
  std::rewind(file.get());
  text_.reset(new char[size_ + 1]);
  text_[size_] = '\0';
  if (std::fread(text_.get(), 1, size_, file.get()) != size_) {
    throw std::runtime_error("cannot read " + path);
  }
}

void PlainModel::Resolve() {
  std::uint32_t largest = 0;
  for (const PlainRecord& record : records_) largest = std::max(largest, record.number);
  constexpr std::uint32_t kNone = 0xFFFFFFFFu;
  std::vector<std::uint32_t> indexes(std::size_t{largest} + 1, kNone);
  for (std::size_t i = 0; i < records_.size(); ++i) {
    indexes[records_[i].number] = static_cast<std::uint32_t>(i);
  }
  for (Cell& cell : cells_) {
    if (cell.kind != Kind::kReference) continue;
    if (cell.first > largest || indexes[cell.first] == kNone) {
      throw std::runtime_error("no record #" + std::to_string(cell.first));
    }
    cell.first = indexes[cell.first];
  }
}

class PlainModel::Writer {
 public:
  Writer(const PlainModel& model, const std::string& path)
      : model_(model), file_(std::fopen(path.c_str(), "wb")) {
    if (file_ == nullptr) throw std::runtime_error("cannot open " + path);
    block_.reserve(2 * kBlock);
  }

  void Write() {
    block_ = model_.head_;
    for (const PlainRecord& record : model_.records_) {
      block_ += '#';
      Number(record.number);
      block_ += '=';
      block_ += record.name;
      List(record.first, record.size);
      block_ += ";\n";
      if (block_.size() >= kBlock) Flush();
    }
    block_ += model_.tail_;
    Flush();
    if (std::fflush(file_.get()) != 0) throw std::runtime_error("cannot write");
  }

 private:
  static constexpr std::size_t kBlock = 1 << 20;

  void Flush() {
    if (std::fwrite(block_.data(), 1, block_.size(), file_.get()) != block_.size()) {
      throw std::runtime_error("cannot write");
    }
    block_.clear();
  }
  template <class Value>
  void Number(Value value) {
    char digits[32];
    block_.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
  }
  void Real(double value) {
    char digits[32];
    char* const end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    char* const exponent = std::find(digits, end, 'e');
    block_.append(digits, exponent);
    if (std::find(digits, exponent, '.') == exponent) block_ += '.';
    if (exponent == end) return;
    block_ += 'E';
    block_.append(exponent + 1, end);
  }
  void List(std::uint64_t first, std::uint32_t size) {
    block_ += '(';
    for (std::uint64_t i = first; i < first + size; ++i) {
      if (i != first) block_ += ',';
      Value(model_.cells_[i]);
    }
    block_ += ')';
  }
  void Value(const Cell& cell) {
    switch (cell.kind) {
      case Kind::kAbsent: block_ += '$'; break;
      case Kind::kDerived: block_ += '*'; break;
      case Kind::kInteger: Number(cell.integer); break;
      case Kind::kReal: Real(cell.real); break;
      case Kind::kWord: block_.append(cell.text, cell.size); break;
      case Kind::kList: List(cell.first, cell.size); break;
      case Kind::kText:
        block_ += '\'';
        block_.append(cell.text, cell.size) += '\'';
        break;
      case Kind::kReference:
        block_ += '#';
        Number(model_.records_[cell.first].number);
        break;
      case Kind::kTyped: {
        Value(model_.cells_[cell.first]);
        Value(model_.cells_[cell.first + 1]);
        break;
      }
    }
  }

  const PlainModel& model_;
  File file_;
  std::string block_;
};

void PlainModel::Write(const std::string& path) const { Writer(*this, path).Write(); }

}  // namespace corvel::bench
