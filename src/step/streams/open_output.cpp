#include "step/streams/open_output.h"

#include <utility>

#include "step/streams/outpout_file_stream.h"
#include "step/streams/output_zip_file_stream.h"

namespace FileStream {

namespace {

constexpr std::uint64_t kBlockSize = 1'048'576;
constexpr std::uint64_t kKeepBack = 4'096;

corvel::WideString EndingOf(const corvel::WideString& path) {
  const std::size_t dot = path.find_last_of(u'.');
  return dot == corvel::WideString::npos ? corvel::WideString()
                                         : corvel::ToLowerAscii(path.substr(dot));
}

}  // namespace

bool IsOutputName(const corvel::WideString& path) {
  const corvel::WideString ending = EndingOf(path);
  return ending == u".ifc" || ending == u".ifczip";
}

std::unique_ptr<OutpoutStream> OpenOutput(const corvel::WideString& path, platform::File file,
                                          corvel::ErrorReporter showError) {
  const corvel::WideString ending = EndingOf(path);
  if (ending == u".ifczip") {
    return std::make_unique<OutputZipFileStream>(path, std::move(file), showError);
  }
  if (ending != u".ifc") return nullptr;
  return std::make_unique<OutpoutFileStream>(path, std::move(file), showError, kBlockSize,
                                             kKeepBack);
}

}  // namespace FileStream
