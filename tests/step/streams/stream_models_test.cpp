// The file streams against plain models of themselves: tiny buffers, random operations.
#include <gtest/gtest.h>

#include <random>
#include <stdexcept>

#include "step/streams/input_file_stream.h"
#include "step/streams/outpout_file_stream.h"
#include "support/temporary_folder.h"

namespace FileStream {
namespace {

using corvel::test::TemporaryFolder;

class Random {
 public:
  explicit Random(unsigned seed) : engine_(seed) {}
  std::size_t Below(std::size_t limit) { return engine_() % limit; }
  std::string Text(std::size_t length) {
    std::string text(length, '\0');
    for (char& byte : text) byte = "abcdefgh;;\n\xE4\xFF"[Below(13)];
    return text;
  }

 private:
  std::mt19937 engine_;
};

// --- Writing -------------------------------------------------------------------------------------

// One byte at a time, the file a string.
struct OutpoutModel {
  OutpoutModel(std::size_t block, std::size_t keep)
      : blockSize(block), keepBack(keep), buffer(block + keep + OutpoutStream::kMaxReserve, '\0') {
    FillMargin();
    written = keepBack;
  }

  void FillMargin() {
    for (std::size_t i = 0; i < keepBack; ++i) buffer[i] = i + 1 == keepBack ? '\n' : ' ';
  }
  void FlushIfFull() {
    if (position >= blockSize + keepBack) Flush();
  }
  void Flush() {
    file.append(buffer.data(), position - keepBack);
    for (std::size_t i = 0; i < keepBack; ++i) buffer[i] = buffer[position - keepBack + i];
    position = keepBack;
  }
  void Put(char byte) {
    buffer[position++] = byte;
    written = std::max(written, position);
  }
  void Store(const std::string& text) {
    for (const char byte : text) {
      FlushIfFull();  // what the window has filled goes out before the next store
      Put(byte);
      FlushIfFull();
    }
  }
  void UseWindow(const std::string& text) {
    if (position + text.size() > buffer.size()) Flush();
    for (const char byte : text) Put(byte);
  }
  void Commit() {
    file.append(buffer.data(), position);
    FillMargin();
    position = keepBack;
  }
  void CloseAndReopen() {
    if (position > keepBack) Commit();
  }

  std::size_t blockSize;
  std::size_t keepBack;
  std::string buffer;
  std::string file;
  std::size_t position = 0;
  std::size_t written = 0;  // bytes of the buffer that hold something
};

void StoreInOneOfFourWays(OutpoutFileStream& stream, const std::string& text, std::size_t way) {
  switch (way) {
    case 0: stream.WriteNarrowString(text); break;
    case 1: stream.WriteNarrowText(text.c_str()); break;
    case 2: stream.WriteWideString(corvel::Widen(text)); break;
    default: stream.WriteWideText(corvel::Widen(text).c_str()); break;
  }
}

void MoveBoth(OutpoutFileStream& stream, OutpoutModel& model, Random& random) {
  // Forward only over bytes that hold something.
  const std::int64_t ahead =
      static_cast<std::int64_t>(model.written) - static_cast<std::int64_t>(model.position);
  const std::int64_t delta =
      std::min<std::int64_t>(static_cast<std::int64_t>(random.Below(2 * model.keepBack + 6)) -
                                 static_cast<std::int64_t>(model.keepBack) - 3,
                             ahead);
  const std::int64_t target = static_cast<std::int64_t>(model.position) + delta;
  if (target < 0) {
    ASSERT_THROW(stream.MovePosition(delta), std::runtime_error);
  } else {
    stream.MovePosition(delta);
    model.position = static_cast<std::size_t>(target);
  }
}

void RunOperation(OutpoutFileStream& stream, OutpoutModel& model, Random& random) {
  const std::size_t operation = random.Below(20);
  if (operation < 9) {
    const std::string text = random.Text(random.Below(3 * (model.blockSize + model.keepBack)));
    StoreInOneOfFourWays(stream, text, operation % 4);
    model.Store(text);
  } else if (operation < 13) {
    MoveBoth(stream, model, random);
  } else if (operation < 16) {
    const std::string text = random.Text(random.Below(OutpoutStream::kMaxReserve + 1));
    text.copy(stream.Reserve(text.size()), text.size());
    stream.Advance(text.size());
    model.UseWindow(text);
  } else if (operation == 16) {
    stream.FlushIfFull();
    model.FlushIfFull();
  } else if (operation == 17) {
    ASSERT_TRUE(stream.Commit());
    model.Commit();
  } else if (operation == 18) {
    ASSERT_TRUE(stream.Close());
    ASSERT_TRUE(stream.Reopen());
    model.CloseAndReopen();
  } else {
    const std::string text = random.Text(random.Below(5));
    stream.Write(text.data(), text.size());
    model.file += text;
  }
}

TEST(StreamModels, WritingLeavesTheBytesOfTheModelAfterEveryOperation) {
  TemporaryFolder folder;
  for (unsigned seed = 0; seed < 200; ++seed) {
    // A name for each round: some file systems hand a file that is emptied to the disk at once.
    const std::string name = std::to_string(seed) + ".ifc";
    Random random(seed);
    const std::size_t blockSize = 1 + random.Below(20);
    const std::size_t keepBack = random.Below(7);
    OutpoutFileStream stream(folder.Path(name), nullptr, blockSize, keepBack);
    OutpoutModel model(blockSize, keepBack);
    for (int step = 0; step < 40; ++step) {
      ASSERT_NO_FATAL_FAILURE(RunOperation(stream, model, random));
      ASSERT_EQ(model.file, folder.Read(name)) << "seed " << seed << " step " << step;
    }
    ASSERT_TRUE(stream.Commit());
    model.Commit();
    ASSERT_EQ(model.file, folder.Read(name)) << "seed " << seed;
  }
}

// --- Reading -------------------------------------------------------------------------------------

// The rules byte by byte, the file a string.
struct InputModel {
  bool Refill() {
    buffer = file.substr(std::min(offset, file.size()), capacity);
    offset += buffer.size();
    at = 0;
    end = buffer.size() < capacity;
    return !buffer.empty();
  }
  int GetChar() {
    if (at == buffer.size() && !Refill()) return -1;
    const char byte = buffer[at++];
    semicolon = byte == ';';
    statement.push_back(byte);
    return static_cast<signed char>(byte);
  }
  int PeekChar() const {
    if (at < buffer.size()) return static_cast<signed char>(buffer[at]);
    return offset < file.size() ? static_cast<signed char>(file[offset]) : -1;
  }
  std::string Read(std::size_t count) {
    std::string taken;
    while (taken.size() < count) {
      if (at == buffer.size()) {
        const std::size_t wanted = count - taken.size();
        if (end) break;
        if (wanted >= 2 * capacity) {
          const std::string rest = file.substr(std::min(offset, file.size()), wanted);
          offset += rest.size();
          end = rest.size() < wanted;
          return taken + rest;
        }
        if (!Refill()) {
          end = true;
          break;
        }
      }
      taken.push_back(buffer[at++]);
    }
    return taken;
  }

  std::string file;
  std::size_t capacity;
  std::string buffer = {};
  std::size_t at = 0;
  std::size_t offset = 0;
  bool end = false;
  bool semicolon = false;
  std::string statement = {};
};

void RunOperation(InputFileStream& stream, InputModel& model, Random& random) {
  const std::size_t operation = random.Below(12);
  if (operation < 3) {
    ASSERT_EQ(model.GetChar(), stream.GetChar());
  } else if (operation < 5) {
    ASSERT_EQ(model.PeekChar(), stream.PeekChar());
  } else if (operation < 7) {
    std::string taken(random.Below(4 * model.capacity), '\0');
    const std::string expected = model.Read(taken.size());
    taken.resize(stream.Read(taken.data(), taken.size()));
    ASSERT_EQ(expected, taken);
  } else if (operation < 10) {
    const std::size_t inWindow = static_cast<std::size_t>(stream.WindowEnd() - stream.Cursor());
    ASSERT_EQ(model.buffer.size() - model.at, inWindow);
    if (inWindow == 0) {
      ASSERT_EQ(model.Refill(), stream.Refill());
    } else {
      const std::size_t count = 1 + random.Below(inWindow);
      for (std::size_t i = 0; i < count; ++i) model.GetChar();
      stream.SetCursor(stream.Cursor() + count);
    }
  } else if (operation == 10) {
    stream.ClearStatementText();
    model.statement.clear();
  } else {
    ASSERT_EQ(model.statement, stream.StatementView());
  }
}

TEST(StreamModels, ReadingGivesTheBytesAndStatesOfTheModelAfterEveryOperation) {
  TemporaryFolder folder;
  for (unsigned seed = 0; seed < 1500; ++seed) {
    Random random(seed);
    InputModel model{random.Text(random.Below(60)), 1 + random.Below(12)};
    InputFileStream stream(folder.Write(std::to_string(seed), model.file), nullptr, model.capacity);
    for (int step = 0; step < 80; ++step) {
      ASSERT_NO_FATAL_FAILURE(RunOperation(stream, model, random)) << "seed " << seed;
      ASSERT_EQ(model.statement, stream.StatementText()) << "seed " << seed << " step " << step;
      ASSERT_EQ(model.semicolon, stream.LastWasSemicolon()) << "seed " << seed;
      ASSERT_EQ(model.at == model.buffer.size() && model.end, stream.IsEof()) << "seed " << seed;
      ASSERT_EQ(static_cast<std::int64_t>(model.offset - (model.buffer.size() - model.at)),
                stream.Position());
    }
  }
}

}  // namespace
}  // namespace FileStream
