#include "step/streams/open_output.h"

#include "step/streams/outpout_file_stream.h"
#include "step/streams/output_zip_file_stream.h"

namespace FileStream {

namespace {
constexpr std::uint64_t kBlockSize = 1'048'576;
constexpr std::uint64_t kKeepBack = 4'096;
}  // namespace

std::unique_ptr<OutpoutStream> OpenOutput(const corvel::WideString& path,
                                          corvel::ErrorReporter showError) {
  const std::size_t dot = path.find_last_of(u'.');
  if (dot == corvel::WideString::npos) return nullptr;
  const corvel::WideString ending = corvel::ToLowerAscii(path.substr(dot));
  if (ending == u".ifczip") return std::make_unique<OutputZipFileStream>(path, showError);
  if (ending != u".ifc") return nullptr;
  return std::make_unique<OutpoutFileStream>(path, showError, kBlockSize, kKeepBack);
}

}  // namespace FileStream
