// A document on its way from the text of its records through a file, well or badly, and the base of
// tests on that way. What only needs a good model has it shorter in model.h.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/cancellation.h"
#include "core/entity_cast.h"
#include "core/main_container.h"
#include "merge/document.h"
#include "step/log/utilities.h"
#include "step/reader/parser.h"
#include "support/quiet_reading.h"
#include "support/recorded_progress.h"
#include "support/recorded_reports.h"
#include "support/step_text.h"
#include "support/temporary_folder.h"
#include "support/test_platform.h"
#include "support/written_text.h"

namespace corvel::test {

struct ReadOptions {
  std::string schema = "IFC4";
  bool ignoreEnumErrors = false;
  bool tolerant = false;
  std::string fileName = "model.ifc";
  int fileCount = 1;
};

// Reports and ticks go to RecordedReports and RecordedProgress.
class ReadModel {
 public:
  explicit ReadModel(std::string_view records, ReadOptions options = {})
      : ReadModel(std::move(options)) {
    Read(ModelFile(records, options_.schema));
  }
  // From all bytes of a file.
  static ReadModel OfFile(std::string_view bytes, ReadOptions options = {}) {
    ReadModel model(std::move(options));
    model.Read(bytes);
    return model;
  }

  // What OpenFile said.
  bool IsRead() const { return read_; }
  IfcDocument& Document() { return *document_; }
  Parser& GetParser() { return document_->GetParser(); }
  IFC::MainContainer& Container() { return *document_->mainContainer; }
  TemporaryFolder& Folder() { return *folder_; }

  // By the number in the file; null if there is none.
  IFC::IfcEntity* operator[](std::uint32_t number) {
    return Container().GetEntityByOrginalNumber(number);
  }
  template <class Interface>
  Interface* As(std::uint32_t number) {
    return EntityCast<Interface>((*this)[number]);
  }

  // "#1=IFCWALL(...);" as it is written, without the line end; empty for a deleted entity.
  std::string Line(std::uint32_t number) {
    std::string line = LineOf(*(*this)[number]);
    if (!line.empty()) line.pop_back();
    return line;
  }
  // All lines in the order of the output, each with its line end.
  std::string Lines() { return LinesOf(Container()); }
  // All bytes that SaveFile leaves; it has to succeed.
  std::string Saved() {
    EXPECT_EQ(1, document_->SaveFile(folder_->Path("saved.ifc")));
    return folder_->Read("saved.ifc");
  }

 private:
  explicit ReadModel(ReadOptions options)
      : options_(std::move(options)),
        folder_(std::make_unique<TemporaryFolder>()),
        document_(std::make_unique<IfcDocument>(
            options_.ignoreEnumErrors, RecordedReports::Reporter, RecordedProgress::Callback)) {}

  void Read(std::string_view bytes) {
    if (options_.tolerant) document_->ReadTolerantly();
    const WideString path = folder_->Write(options_.fileName, bytes);
    read_ = document_->OpenFile(path, options_.fileCount) != 0;
  }

  ReadOptions options_;
  std::unique_ptr<TemporaryFolder> folder_;
  std::unique_ptr<IfcDocument> document_;
  bool read_ = false;
};

// A machine of its own, and the process-wide values as at the start of a run.
class ReadTest : public testing::Test {
 protected:
  ReadTest() {
    Cancellation::OfProcess().mode = CancelMode::kAsk;
    IFC::MainContainer::ResetUniqueMarker();
  }
  ~ReadTest() override { IFC::MainContainer::ResetUniqueMarker(); }

  // The next `count` boxes are answered with No; without a word a question gets a Yes.
  void AnswerNo(std::size_t count) {
    platform_.answers.insert(platform_.answers.end(), count, platform::Answer::kNo);
  }
  // How often the question of a cancellation has been asked.
  std::size_t QuestionsAsked() const {
    std::size_t count = 0;
    for (const TestPlatform::Box& box : platform_.boxes) {
      if (box.buttons == platform::Buttons::kYesNo) ++count;
    }
    return count;
  }
  // The messages that were shown or logged, in order.
  std::vector<std::string> Messages() const {
    std::vector<std::string> messages;
    for (const Report& report : *reports_) messages.push_back(Narrow(report.message));
    return messages;
  }

  TestPlatform platform_;
  RecordedReports reports_;
  RecordedProgress progress_;

 private:
  QuietReading quiet_;
};

}  // namespace corvel::test
