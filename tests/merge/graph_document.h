// A document whose model is put together by the test, without a file.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "core/main_container.h"
#include "merge/document.h"
#include "merge/guid_choice.h"
#include "merge/merge_documents.h"
#include "step/reader/parser.h"
#include "support/graph.h"
#include "support/recorded_progress.h"
#include "support/recorded_reports.h"
#include "support/test_platform.h"

namespace corvel::test {

class GraphDocument {
 public:
  explicit GraphDocument(const WideString& path)
      : document_(false, RecordedReports::Reporter, RecordedProgress::Callback) {
    document_.mainContainer = std::make_unique<IFC::MainContainer>(
        RecordedReports::Reporter, RecordedProgress::Callback, 1 << 10);
    document_.GetParser().filePath = path;
  }

  IfcDocument& operator*() { return document_; }
  IfcDocument* operator->() { return &document_; }
  auto& GuidIndex() { return document_.GetParser().guidIndex; }

  // Files an object that was made elsewhere.
  void File(std::uint32_t number, IFC::IfcEntity& entity) {
    entity.marker = number;
    document_.mainContainer->AddEntityByOrginalNumber(&entity, number);
  }
  // Makes and files.
  template <class Class>
  Class& Add(std::uint32_t number) {
    Class& entity = graph_.Add<Class>();
    File(number, entity);
    return entity;
  }
  template <class Class>
  Class& AddRoot(std::uint32_t number, std::string_view guid, WideView name = u"") {
    Class& entity = graph_.AddRoot<Class>(guid, name);
    File(number, entity);
    return entity;
  }
  // With its first members.
  template <class Class>
  Class& AddRelation(std::uint32_t number, std::string_view guid,
                     std::initializer_list<IFC::IfcEntity*> members) {
    Class& relation = AddRoot<Class>(number, guid);
    for (IFC::IfcEntity* const member : members) relation.RefersTo(member);
    return relation;
  }

  std::vector<std::uint32_t> Numbers() const {
    std::vector<std::uint32_t> numbers;
    const NumberTable& entities = document_.mainContainer->entities;
    for (auto at = entities.First(); at; at = entities.Next(at.number)) {
      numbers.push_back(at.number);
    }
    return numbers;
  }
  IFC::IfcEntity* At(std::uint32_t number) const {
    return document_.mainContainer->entities.Find(number);
  }

 private:
  Graph graph_;
  IfcDocument document_;
};

// Answers the cancel question as the test says, whatever other boxes come before.
class MergePlatform : public TestPlatform {
 public:
  bool userMeansToCancel = true;

  platform::Answer ShowMessageBox(std::u16string_view title, std::u16string_view text,
                                  platform::Buttons buttons, platform::Icon icon) override {
    boxes.push_back({std::u16string(title), std::u16string(text), buttons, icon});
    if (buttons != platform::Buttons::kYesNo) return platform::Answer::kOk;
    return userMeansToCancel ? platform::Answer::kYes : platform::Answer::kNo;
  }
};

// What is process-wide, set anew for each test and put back afterwards.
class MergeWorld {
 public:
  MergeWorld() { Reset(); }
  ~MergeWorld() { Reset(); }
  MergeWorld(const MergeWorld&) = delete;
  MergeWorld& operator=(const MergeWorld&) = delete;

  // What the user answers to the question about equal GUIDs, and how often it was asked.
  void UserWantsNewGuids(bool wants) { Wants() = wants; }
  int Questions() const { return Asked(); }

  MergePlatform system;
  RecordedReports reports;
  RecordedProgress progress;

 private:
  static void Reset() {
    IFC::MainContainer::ResetUniqueMarker();
    RememberedGuidChoice() = kAskAboutGuids;
    Wants() = true;
    Asked() = 0;
    SetGuidQuestion([] {
      ++Asked();
      return Wants();
    });
  }
  static bool& Wants() {
    static bool wants = true;
    return wants;
  }
  static int& Asked() {
    static int asked = 0;
    return asked;
  }
};

}  // namespace corvel::test
