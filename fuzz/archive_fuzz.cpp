// Any bytes as an archive: opening and reading end, memory stays bounded, and the size of the
// windows does not show in what is delivered. What cannot be read whole is told, once. The first
// byte chooses the window and whether it is an archive of a model or a container.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "step/streams/input_zip_file_stream.h"
#include "support/temporary_folder.h"

namespace {

int reports = 0;

int CountReport(const char*, const corvel::WideString&, int) {
  ++reports;
  return 0;
}

struct Outcome {
  bool opened = false;
  bool damaged = false;
  std::string content;
};

// Entries may grow a thousandfold: what is compared is bounded.
constexpr std::size_t kEnough = 1 << 20;

Outcome Read(const corvel::WideString& path, std::size_t windowSize) {
  reports = 0;
  Outcome outcome;
  FileStream::InputZipFileStream stream(path, CountReport, windowSize);
  outcome.opened = stream.IsOpen();
  bool more = true;
  while (outcome.content.size() < kEnough && (more = stream.Refill())) {
    if (stream.WindowEnd() - stream.Cursor() > static_cast<std::ptrdiff_t>(windowSize)) {
      std::abort();
    }
    outcome.content.append(stream.Cursor(), stream.WindowEnd());
    stream.SetCursor(stream.WindowEnd());
    stream.ClearStatementText();
  }
  outcome.damaged = stream.IsDamaged();
  if (outcome.opened && !more && !stream.IsEof()) std::abort();
  if (stream.NextEntry() == 0 && stream.TotalSize() < 0) std::abort();
  // Closed or damaged, and nothing else, is told.
  const bool bad = !outcome.opened || outcome.damaged;
  if (reports != (bad ? 1 : 0)) std::abort();
  return outcome;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  static const corvel::test::TemporaryFolder folder;
  const bool isContainer = data[0] >= 128;
  const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  const corvel::WideString path = isContainer ? folder.Write("a.olf", bytes) + u"|sub/model.ifc"
                                              : folder.Write("a.ifczip", bytes);
  const Outcome small = Read(path, data[0] % 128 + 1u);
  const Outcome large = Read(path, 1 << 16);
  if (small.opened != large.opened) std::abort();
  if (small.content.size() >= kEnough || large.content.size() >= kEnough) return 0;
  if (small.damaged != large.damaged) std::abort();
  // Where decompression fails the last window is lost, so that small windows get further.
  const bool same =
      small.damaged ? small.content.starts_with(large.content) : small.content == large.content;
  if (!same) std::abort();
  return 0;
}
