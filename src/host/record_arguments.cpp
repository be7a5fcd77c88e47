#include "host/record_arguments.h"

#include <charconv>
#include <memory>
#include <stdexcept>

#include "step/streams/outpout_stream.h"
#include "step/writer/step_writer.h"

namespace corvel::host {

namespace {

// Everything that is written stays in the window.
class TextStream final : public FileStream::OutpoutStream {
 public:
  TextStream() { Grow(4 * kMaxReserve); }

  std::string_view Text() const { return {window_, static_cast<std::size_t>(position_)}; }

  void Write(const void* bytes, std::size_t count) override {
    Append({static_cast<const char*>(bytes), count});
  }
  bool Close() override { return true; }
  bool IsOpen() const override { return true; }
  bool IsEof() const override { return false; }
  void MovePosition(std::int64_t delta, int /*whence*/) override {
    const auto moved = static_cast<std::int64_t>(position_) + delta;
    if (moved < 0) throw std::runtime_error("Unable to move pointer below 0.");
    position_ = static_cast<std::uint64_t>(moved);
  }
  void WriteNarrowString(const std::string& text) override { Append(text); }
  void WriteNarrowText(const char* text) override { Append(text); }
  void WriteWideString(const WideString& text) override { Append(Narrow(text)); }
  void WriteWideText(const char16_t* text) override { Append(Narrow(text)); }
  void FlushIfFull() override {}

 private:
  void FlushWindow() override { Grow(2 * windowCapacity_); }
  void Grow(std::uint64_t capacity) {
    std::string larger(static_cast<std::size_t>(capacity), '\0');
    larger.replace(0, static_cast<std::size_t>(position_), Text());
    buffer_ = std::move(larger);
    window_ = buffer_.data();
    windowCapacity_ = capacity;
  }

  std::string buffer_;
};

// Where the argument at the start of `text` ends: at a comma outside of strings and brackets.
std::size_t EndOfArgument(std::string_view text) {
  int depth = 0;
  bool quoted = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '\'') quoted = !quoted;
    if (quoted) continue;
    if (c == '(') ++depth;
    if (c == ')') --depth;
    if (c == ',' && depth == 0) return i;
  }
  return text.size();
}

}  // namespace

std::vector<std::string> ArgumentsOf(const IFC::IfcEntity& entity) {
  TextStream stream;
  StepWriter writer(stream);
  entity.write(writer);
  std::vector<std::string> arguments;
  for (std::string_view rest = stream.Text(); !rest.empty();) {
    const std::size_t end = EndOfArgument(rest);
    arguments.emplace_back(rest.substr(0, end));
    rest.remove_prefix(end == rest.size() ? end : end + 1);
  }
  return arguments;
}

std::optional<double> NumberIn(std::string_view argument) {
  const std::size_t bracket = argument.find('(');
  if (bracket != std::string_view::npos) argument.remove_prefix(bracket + 1);
  if (argument.starts_with('\'')) argument.remove_prefix(1);
  double number = 0.0;
  const auto result = std::from_chars(argument.data(), argument.data() + argument.size(), number);
  if (result.ec != std::errc()) return {};
  return number;
}

}  // namespace corvel::host
