// A parser on the arguments of a record, for tests of single readers.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/cancellation.h"
#include "schema/registry.h"
#include "support/read_model.h"
#include "support/token_list.h"

namespace corvel::test {

class AttributeTest : public ReadTest {
 protected:
  AttributeTest() {
    parser_.factories = &FactoriesOf(SchemaNamespace::IFC4);
    parser_.mainContainer =
        std::make_unique<IFC::MainContainer>(RecordedReports::Reporter, nullptr, 1 << 16);
  }

  // The parser, about to read `text`: "1.5,$);". A new text is a new input in the same model.
  Parser& On(std::string text) {
    parser_.scanner = ScannerOn(std::move(text), RecordedReports::Reporter);
    parser_.state = ParserState::kNotFinished;
    parser_.forwardReference = false;
    Cancellation::OfProcess().mode = CancelMode::kAsk;
    return parser_;
  }
  // A parser that has failed, with `text` still in front of it.
  Parser& Stopped(std::string text) {
    On(std::move(text)).state = ParserState::kFailed;
    return parser_;
  }
  // The tokens that the readers have left.
  TokenList Rest() { return TokensOf(*parser_.scanner, 1000); }

  // Reads the record "(...)" into a new object, which is filed under `number`.
  IFC::IfcEntity* File(std::uint32_t number, const std::string& className,
                       const std::string& record = "()") {
    IFC::IfcEntity* const entity = parser_.factories->Find(className)(parser_.Pool());
    entity->SetMarker(number);
    parser_.mainContainer->AddEntityByOrginalNumber(entity, number);
    On(record + ";").scanner->NextToken();
    EXPECT_EQ(entity, parser_.ReadArguments(entity));
    return entity;
  }
  // A stopped reader gives its value, which `read` checks, and touches nothing.
  template <class Read>
  void ExpectUntouchedWhenStopped(Read read) {
    read(Stopped("$,7"));
    EXPECT_EQ((TokenList{"$", "integer 7"}), Rest());
    Parser& parser = On("$,7");
    parser.scanner->Stop();
    read(parser);
    EXPECT_EQ(std::vector<std::string>{}, Reported());
  }
  // What has been reported since the last call, "0: Expected: ...".
  std::vector<std::string> Reported() {
    std::vector<std::string> reported;
    for (std::size_t i = seen_; i < reports_->size(); ++i) {
      const Report& report = (*reports_)[i];
      reported.push_back(std::to_string(report.mode) + ": " + report.key +
                         (report.key.empty() ? "" : " ") + Narrow(report.message));
    }
    seen_ = reports_->size();
    return reported;
  }

  Parser parser_{false, RecordedReports::Reporter, nullptr};

 private:
  std::size_t seen_ = 0;
};

}  // namespace corvel::test
