// The yardsticks on a real file, as one process that prints its stages as corvel_job_bench does.
//
//   corvel_yardsticks tokens FILE
//   corvel_yardsticks read FILE
//   corvel_yardsticks resave FILE OUT
#include <exception>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "plain_model.h"
#include "stage.h"
#include "token_loop.h"

namespace {

using corvel::bench::Stage;

// By blocks, as a reader of tokens would: each token that a block cuts counts twice.
int RunTokens(const std::string& path, std::uintmax_t bytes) {
  std::size_t tokens = 0;
  {
    const Stage stage("tokens", bytes);
    std::ifstream file(path, std::ios::binary);
    std::vector<char> block(1 << 20);
    while (file.read(block.data(), static_cast<std::streamsize>(block.size())) ||
           file.gcount() != 0) {
      tokens += corvel::bench::CountTokens({block.data(), static_cast<std::size_t>(file.gcount())});
    }
  }
  std::fprintf(stderr, "%zu tokens\n", tokens);
  return 0;
}

int RunModel(const std::vector<std::string>& arguments, std::uintmax_t bytes) {
  std::optional<corvel::bench::PlainModel> model;
  {
    const Stage stage("read", bytes);
    model.emplace(arguments[1]);
  }
  if (arguments.size() > 2) {
    const Stage stage("write", bytes);
    model->Write(arguments[2]);
  }
  const Stage stage("release", bytes);
  model.reset();
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  const std::string job = arguments.empty() ? "" : arguments[0];
  const std::size_t wanted = job == "tokens" || job == "read" ? 2 : job == "resave" ? 3 : 0;
  if (wanted == 0 || arguments.size() != wanted) {
    std::fprintf(stderr, "usage: corvel_yardsticks tokens FILE | read FILE | resave FILE OUT\n");
    return 2;
  }
  try {
    const std::uintmax_t bytes = std::filesystem::file_size(arguments[1]);
    return job == "tokens" ? RunTokens(arguments[1], bytes) : RunModel(arguments, bytes);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
