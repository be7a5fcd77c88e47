#include "host/run_checks.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "host/hearing.h"
#include "platform/file.h"
#include "platform/locked_file.h"
#include "platform/native_path.h"
#include "step/streams/input_zip_file_stream.h"
#include "step/streams/model_form.h"
#include "step/writer/unfinished_output.h"

namespace corvel::host {

namespace {

namespace fs = std::filesystem;
using FileStream::FormOf;
using FileStream::ModelForm;

fs::file_type TypeOf(const WideString& path) {
  std::error_code ignored;
  return fs::status(platform::NativePath(path), ignored).type();
}

bool IsContainer(const WideString& path) { return FormOf(path) == ModelForm::kContained; }

// The file that an input lies in: for an entry of a container, the container.
WideString FileOf(const WideString& input) {
  return IsContainer(input) ? input.substr(0, input.find(u'|')) : input;
}

const char16_t* TroubleWithInputType(const WideString& path) {
  switch (TypeOf(path)) {
    case fs::file_type::regular: return nullptr;
    case fs::file_type::not_found: return u"there is no such file";
    case fs::file_type::directory: return u"this is a folder, not a model";
    case fs::file_type::none: return u"this file cannot be reached";
    default: return u"this is no ordinary file";
  }
}

const char16_t* TroubleWithName(const WideString& path) {
  const ModelForm form = FormOf(path);
  if (form == ModelForm::kNone) return u"the name of a model has to end in .ifc or .ifczip";
  return form != ModelForm::kContained || path.find(u'|') != WideString::npos
             ? nullptr
             : u"this is a container; name a model in it: CONTAINER.olf|ENTRY";
}

std::optional<WideString> TroubleWithArchive(const WideString& path) {
  constexpr std::size_t kSmallBuffer = 0x1000;
  std::vector<WideString> told;
  const Hearing hearing(told);
  FileStream::InputZipFileStream stream(path, Hear, kSmallBuffer);
  if (!stream.IsOpen()) return told.empty() ? WideString() : told.front();
  if (stream.TotalSize() == 0 && stream.PeekChar() == -1) return u"the model in it is empty";
  return {};
}

const char16_t* TroubleWithContent(const WideString& path) {
  platform::File file;
  if (!file.Open(path, platform::OpenMode::kRead)) return u"this file cannot be opened for reading";
  return file.Size() == 0 ? u"this file is empty" : nullptr;
}

// A device may stand where the output goes: it takes bytes and keeps none.
const char16_t* TroubleWithOutputType(const WideString& path) {
  switch (TypeOf(path)) {
    case fs::file_type::regular:
    case fs::file_type::not_found:
    case fs::file_type::character: return nullptr;
    case fs::file_type::directory: return u"this is a folder; name a file in it";
    case fs::file_type::none: return u"this file cannot be reached";
    default: return u"this is no ordinary file";
  }
}

bool FolderExists(const WideString& path) {
  const fs::path folder = platform::NativePath(path).parent_path();
  std::error_code ignored;
  return folder.empty() || fs::is_directory(folder, ignored);
}

// As the writer will begin it.
bool CanBeWritten(const WideString& path) {
  UnfinishedOutput output(path);
  return output.Open().IsOpen();
}

std::optional<WideString> Told(const char16_t* trouble) {
  if (trouble == nullptr) return {};
  return trouble;
}

std::optional<WideString> TroubleWithPlace(const WideString& path,
                                           const std::vector<WideString>& inputs) {
  if (auto told = Told(TroubleWithOutputType(path))) return told;
  if (!FolderExists(path)) return u"the folder for the output does not exist";
  const bool isInput = std::any_of(inputs.begin(), inputs.end(), [&](const WideString& input) {
    return input == path || platform::IsSameFile(FileOf(input), path);
  });
  if (isInput) return u"the output is also an input, and inputs are never overwritten";
  if (!CanBeWritten(path)) return u"the output cannot be written there";
  return {};
}

}  // namespace

std::optional<WideString> TroubleWithInput(const WideString& path) {
  if (path.empty()) return u"the name of an input is empty";
  const WideString file = FileOf(path);
  // What is there comes before what it is called: who names a folder has made another mistake.
  if (auto told = Told(TroubleWithInputType(file))) return told;
  if (auto told = Told(TroubleWithName(path))) return told;
  if (auto told = Told(TroubleWithContent(file))) return told;
  return FormOf(path) == ModelForm::kPlain ? std::nullopt : TroubleWithArchive(path);
}

std::optional<WideString> TroubleWithOutput(const WideString& path,
                                            const std::vector<WideString>& inputs) {
  if (path.empty()) return u"the name of the output is empty";
  const ModelForm form = FormOf(path);
  if (form != ModelForm::kPlain && form != ModelForm::kPacked) {
    return u"the name of the output has to end in .ifc or .ifczip";
  }
  return TroubleWithPlace(path, inputs);
}

std::optional<WideString> TroubleWithList(const WideString& path,
                                          const std::vector<WideString>& inputs) {
  if (FormOf(path) != ModelForm::kNone) return u"the name of the list is that of a model";
  return TroubleWithPlace(path, inputs);
}

std::optional<WideString> TroubleWithReport(const WideString& path,
                                            const std::vector<WideString>& inputs) {
  return TroubleWithPlace(path, inputs);
}

std::optional<WideString> TroubleWithWorkFolder(const WideString& folder) {
  if (!platform::IsFolder(folder)) return u"there is no such folder for work files";
  platform::File file;
  if (platform::OpenUnnamedFile(folder, file)) return {};
  return u"work files cannot be kept in this folder; --work-folder names another";
}

std::optional<WideString> TroubleWithLog(const WideString& path) {
  if (FormOf(path) != ModelForm::kNone) {
    return u"the name of the log is that of a model";
  }
  const fs::file_type type = TypeOf(path);
  if (type == fs::file_type::directory) return u"this is a folder; name a file in it";
  if (type != fs::file_type::regular && type != fs::file_type::not_found &&
      type != fs::file_type::none) {
    return u"the log goes to ordinary files only";
  }
  return {};
}

}  // namespace corvel::host
