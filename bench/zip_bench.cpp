// What compression costs, as ratios in one run: each model is read and written plain and packed in
// turn, and its text is deflated and inflated by zlib alone. bench/run.sh runs it.
//
//   corvel_zip_bench FOLDER FILE...      FOLDER takes the files that are made
//
// Processor time with the sum of checks that an archive has, the medians of five rounds. The ratios
// are packed by plain and zlib together: what compression costs beyond zlib.
#include <zlib.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "merge/document.h"
#include "platform/file.h"
#include "step/log/utilities.h"

namespace {

using corvel::IfcDocument;
using corvel::WideString;

constexpr int kRounds = 5;

int Report(const char* key, const WideString& message, int mode) {
  if (mode != corvel::kReportLog) {
    std::fprintf(stderr, "%s%s\n", key, corvel::ToUtf8(message).c_str());
  }
  return 0;
}

bool GoOn(int, int, const WideString*, bool, int) { return true; }

double SecondsOf(const std::function<void()>& work) {
  const auto now = [] {
    std::timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
  };
  const double start = now();
  work();
  return now() - start;
}

double Median(std::vector<double> values) {
  std::nth_element(values.begin(), values.begin() + kRounds / 2, values.end());
  return values[kRounds / 2];
}

void Require(bool done, const WideString& path) {
  if (done) return;
  std::fprintf(stderr, "failed: %s\n", corvel::ToUtf8(path).c_str());
  std::exit(1);
}

std::string BytesOf(const WideString& path) {
  platform::File file;
  Require(file.Open(path, platform::OpenMode::kRead), path);
  std::string bytes(static_cast<std::size_t>(file.Size()), '\0');
  Require(file.Read(bytes.data(), bytes.size()) == bytes.size(), path);
  return bytes;
}

constexpr int kNoFrame = -15;

// As an archive has it: no frame, level 6, output in pieces.
std::string Deflate(const std::string& text) {
  z_stream stream{};
  deflateInit2(&stream, 6, Z_DEFLATED, kNoFrame, 8, Z_DEFAULT_STRATEGY);
  std::vector<Bytef> piece(0x10000);
  std::string deflated;
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
  stream.avail_in = static_cast<uInt>(text.size());
  int result = Z_OK;
  while (result == Z_OK) {
    stream.next_out = piece.data();
    stream.avail_out = static_cast<uInt>(piece.size());
    result = deflate(&stream, Z_FINISH);
    deflated.append(reinterpret_cast<const char*>(piece.data()), piece.size() - stream.avail_out);
    if (result == Z_BUF_ERROR) result = Z_OK;
  }
  deflateEnd(&stream);
  return deflated;
}

// Output in pieces, each used again.
void Inflate(const std::string& deflated) {
  z_stream stream{};
  inflateInit2(&stream, kNoFrame);
  std::vector<Bytef> piece(0x40000);
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(deflated.data()));
  stream.avail_in = static_cast<uInt>(deflated.size());
  int result = Z_OK;
  while (result == Z_OK) {
    stream.next_out = piece.data();
    stream.avail_out = static_cast<uInt>(piece.size());
    result = inflate(&stream, Z_NO_FLUSH);
  }
  Require(result == Z_STREAM_END, u"inflate");
  inflateEnd(&stream);
}

struct Times {
  std::vector<double> readPlain, readPacked, writePlain, writePacked, deflate, inflate, checksum;
};

void Round(const WideString& folder, const WideString& model, Times& times) {
  const WideString plain = folder + u"/plain.ifc";
  const WideString packed = folder + u"/packed.ifczip";
  const auto read = [](const WideString& path) {
    auto document = std::make_unique<IfcDocument>(true, Report, GoOn);
    Require(document->OpenFile(path, 1) != 0, path);
    return document;
  };
  const auto write = [](IfcDocument& document, const WideString& path) {
    Require(document.SaveFile(path) == 1, path);
  };
  {
    const auto document = read(model);
    write(*document, plain);  // the lists of the header are gone from here on
    times.writePlain.push_back(SecondsOf([&] { write(*document, plain); }));
    times.writePacked.push_back(SecondsOf([&] { write(*document, packed); }));
  }
  const std::string text = BytesOf(plain);
  std::string deflated;
  times.deflate.push_back(SecondsOf([&] { deflated = Deflate(text); }));
  times.inflate.push_back(SecondsOf([&] { Inflate(deflated); }));
  times.checksum.push_back(SecondsOf([&] {
    crc32(0, reinterpret_cast<const Bytef*>(text.data()), static_cast<uInt>(text.size()));
  }));
  std::unique_ptr<IfcDocument> document;
  times.readPlain.push_back(SecondsOf([&] { document = read(plain); }));
  document.reset();
  times.readPacked.push_back(SecondsOf([&] { document = read(packed); }));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: corvel_zip_bench FOLDER FILE...\n");
    return 2;
  }
  corvel::MemoryReportOutput() = nullptr;
  const WideString folder = corvel::FromUtf8(argv[1]);
  std::printf("%-22s%8s%8s%8s%7s%8s%8s%8s%7s\n", "model", "read", "inflate", "packed", "ratio",
              "write", "deflate", "packed", "ratio");
  for (int i = 2; i < argc; ++i) {
    Times times;
    for (int round = 0; round < kRounds; ++round) {
      Round(folder, corvel::FromUtf8(argv[i]), times);
    }
    const double checksum = Median(times.checksum);
    const double read = Median(times.readPlain);
    const double inflate = Median(times.inflate) + checksum;
    const double readPacked = Median(times.readPacked);
    const double write = Median(times.writePlain);
    const double deflate = Median(times.deflate) + checksum;
    const double writePacked = Median(times.writePacked);
    std::printf("%-22s%8.3f%8.3f%8.3f%7.2f%8.3f%8.3f%8.3f%7.2f\n",
                std::filesystem::path(argv[i]).filename().string().c_str(), read, inflate,
                readPacked, readPacked / (read + inflate), write, deflate, writePacked,
                writePacked / (write + deflate));
  }
  for (const char16_t* name :
       {u"/plain.ifc", u"/packed.ifczip", u"/plain_TEMP.ifc", u"/packed_TEMP.ifc"}) {
    platform::RemoveFile(folder + name);
  }
  return 0;
}
