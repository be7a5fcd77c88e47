#include "step/record_numbers.h"

#include <charconv>
#include <cmath>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

#include "step/reader/scanner.h"
#include "step/streams/block_outpout_stream.h"
#include "step/writer/step_writer.h"

namespace corvel {

namespace {

// What the writer says, in memory. The keep-back is more than a writer ever takes back.
class TextOutput final : public FileStream::BlockOutpoutStream {
 public:
  TextOutput() : BlockOutpoutStream(kBlockSize, kMaxReserve) {
    if (!AllocateBuffer()) throw std::bad_alloc();
  }

  std::string TakeText() {
    text_.append(window_, position_);
    return std::move(text_);
  }

  void Write(const void* bytes, std::size_t count) override {
    Append({static_cast<const char*>(bytes), count});
  }
  bool Close() override { return true; }
  bool IsOpen() const override { return true; }
  bool IsEof() const override { return false; }
  void MovePosition(std::int64_t delta, int /*whence*/) override {
    if (delta < 0 && position_ < static_cast<std::uint64_t>(-delta)) {
      throw std::runtime_error("Unable to move pointer below 0.");
    }
    position_ += static_cast<std::uint64_t>(delta);
  }
  void WriteNarrowString(const std::string& text) override { Append(text); }

 private:
  static constexpr std::uint64_t kBlockSize = 4096;

  void FlushWindow() override {
    text_.append(window_, DueBytes());
    KeepTail(DueBytes());
  }

  std::string text_;
};

// One window that holds everything.
class TextInput final : public FileStream::InputStream {
 public:
  explicit TextInput(std::string text) : InputStream(u"", nullptr), text_(std::move(text)) {
    SetWindow(text_.data(), text_.data() + text_.size());
  }

  std::size_t Read(void* /*destination*/, std::size_t /*count*/) override { return 0; }
  int PeekChar() override { return IsEof() ? -1 : static_cast<signed char>(*Cursor()); }
  int Close() override { return 0; }
  bool IsOpen() const override { return true; }
  bool IsEof() const override { return Cursor() == WindowEnd(); }
  std::int64_t Position() const override { return Cursor() - text_.data(); }
  int NextEntry() override { return -1; }
  std::int64_t TotalSize() const override { return static_cast<std::int64_t>(text_.size()); }
  bool IsDamaged() const override { return false; }

 private:
  bool FillWindow() override { return false; }

  std::string text_;
};

// What stops the scanner leaves the numbers behind it out.
int TellNobody(const char* /*key*/, const WideString& /*message*/, int /*mode*/) { return 0; }

std::optional<double> NumberIn(const Token& token) {
  if (token.Is(TokenType::RealDataTypeToken) || token.Is(TokenType::IntegerDataTypeToken)) {
    return token.real;
  }
  const std::string text = token.Is(TokenType::WstringToken) ? Narrow(token.wide) : std::string();
  double number = 0.0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  // "inf" and "nan" are words of a text, and no numbers.
  return result.ec == std::errc() && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

}  // namespace

// Commas are no tokens; the scanner counts them, and references with them.
std::vector<std::optional<double>> NumbersOf(const IFC::IfcEntity& entity) {
  TextOutput output;
  StepWriter writer(output);
  entity.write(writer);
  Scanner scanner(std::make_unique<TextInput>(output.TakeText()), TellNobody);
  std::vector<std::optional<double>> numbers(1);
  int depth = 0;
  std::uint32_t counted = 0;
  for (const Token* token = scanner.NextToken(); !token->Is(TokenType::EndOfFileToken);
       token = scanner.NextToken()) {
    if (token->Is(TokenType::IdentifierToken)) ++counted;
    if (depth == 0) numbers.resize(numbers.size() + scanner.Argument() - counted);
    counted = scanner.Argument();
    if (token->Is(TokenType::OpenBracketToken)) ++depth;
    if (token->Is(TokenType::CloseBracketToken)) --depth;
    if (!numbers.back()) numbers.back() = NumberIn(*token);
  }
  return numbers;
}

}  // namespace corvel
