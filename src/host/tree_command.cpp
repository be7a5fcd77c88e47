#include "host/tree_command.h"

#include <memory>
#include <optional>
#include <vector>

#include "host/display_text.h"
#include "host/model_scene.h"
#include "platform/file.h"
#include "step/reader/skipped_input.h"
#include "step/streams/archive_entries.h"
#include "step/streams/model_form.h"

namespace corvel::host {

namespace {

using FileStream::FormOf;
using FileStream::ModelForm;

bool IsWholeContainer(const WideString& path) {
  return FormOf(path) == ModelForm::kContained && path.find(u'|') == WideString::npos &&
         platform::IsOrdinaryFile(path);
}

ExitStatus ShowEntries(const TreeOrder& order, RunConsole& console, const TextSink& output) {
  const auto entries = FileStream::EntriesOf(order.path);
  if (!entries) {
    console.Say(Printable(order.path) + u": this container cannot be read");
    return ExitStatus::kNothingWritten;
  }
  const bool good = order.json ? WriteEntriesJson(order.path, *entries, output)
                               : WriteEntriesText(order.path, *entries, output);
  return good ? ExitStatus::kDone : ExitStatus::kNothingWritten;
}

class TreeRun {
 public:
  TreeRun(const TreeOrder& order, RunConsole& console, const TextSink& output)
      : order_(order), console_(console), output_(output) {}

  ExitStatus Run() {
    ModelScene scene = ReadScene(order_.path, SceneTexts::kGuidsAndNames, order_.tolerant);
    if (scene.endWithoutClosingLine) {
      scene.problems.push_back(ClosingLineIsMissing(order_.path, *scene.endWithoutClosingLine));
    }
    Say(scene.remarks);
    Say(scene.problems);
    for (const WideString& missing : MissingClasses(scene, order_.choice)) {
      console_.Say(u"--class: no object of " + Printable(order_.path) + u" is of the class " +
                   missing);
    }
    TreeLook look = LookAt(scene, order_.choice);
    const auto properties = ReadProperties(scene);
    if (order_.choice.properties && properties == nullptr) return ExitStatus::kNothingWritten;
    look.properties = properties.get();
    const bool good = order_.json ? WriteTreeJson(order_.path, scene, output_, look)
                                  : WriteTreeText(scene, output_, look);
    return good && scene.problems.empty() ? ExitStatus::kDone : ExitStatus::kNothingWritten;
  }

 private:
  void Say(const std::vector<WideString>& texts) {
    for (const WideString& text : texts) {
      console_.Say(Printable(order_.path).append(u": ").append(text));
    }
  }

  std::unique_ptr<ModelProperties> ReadProperties(const ModelScene& scene) {
    if (!order_.choice.properties || scene.isUnreadable) return nullptr;
    std::vector<WideString> messages;
    auto properties =
        ModelProperties::Read(order_.path, order_.tolerant, order_.workFolder, messages);
    if (properties == nullptr) Say(messages);
    return properties;
  }

  const TreeOrder& order_;
  RunConsole& console_;
  const TextSink& output_;
};

}  // namespace

ExitStatus RunTree(const TreeOrder& order, RunConsole& console, const TextSink& output) {
  if (IsWholeContainer(order.path)) return ShowEntries(order, console, output);
  return TreeRun(order, console, output).Run();
}

}  // namespace corvel::host
