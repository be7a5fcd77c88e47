#include "step/numbers/plain_real.h"

#include <cstdint>

#include "step/numbers/byte_runs.h"
#include "step/numbers/exact_tens.h"

namespace corvel {

namespace {

constexpr unsigned kFullRun = 8;
constexpr unsigned kMostDigits = 19;  // that 64 bits hold, whatever they are
constexpr std::uint64_t kWholeTens[] = {1,      10,      100,      1000,     10000,
                                        100000, 1000000, 10000000, 100000000};

// Takes digits behind those of `number`.
struct Digits {
  std::uint64_t number = 0;
  unsigned count = 0;

  unsigned Take(const char*& at) {
    const DigitRun run = DigitsAt(at);
    number = number * kWholeTens[run.count] + run.value;
    count += run.count;
    at += run.count;
    return run.count;
  }
};

// Of "E-07" at `at`, which is moved behind it. False: it is none that a double has.
bool TakePower(const char*& at, int& power) {
  if (*at != 'E' && *at != 'e') return true;
  ++at;
  const bool negative = *at == '-';
  if (negative || *at == '+') ++at;
  const DigitRun run = DigitsAt(at);
  if (run.count == 0 || run.count > 2) return false;
  at += run.count;
  power += negative ? -static_cast<int>(run.value) : static_cast<int>(run.value);
  return true;
}

}  // namespace

const char* TakePlainReal(const char* at, double& value) {
  const bool negative = *at == '-';
  if (negative) ++at;
  Digits digits;
  const unsigned whole = digits.Take(at);
  if (whole == 0 || whole == kFullRun || *at != '.') return nullptr;
  ++at;
  if (digits.Take(at) == kFullRun && digits.Take(at) == kFullRun) return nullptr;
  if (digits.count > kMostDigits || digits.number > kLargestWhole) return nullptr;
  int power = static_cast<int>(whole) - static_cast<int>(digits.count);
  if (!TakePower(at, power)) return nullptr;
  if (*at != ',' && *at != ')') return nullptr;
  if (power < -kLargestTen || power > kLargestTen) return nullptr;
  const double magnitude = TimesTen(digits.number, power);
  value = negative ? -magnitude : magnitude;
  return at;
}

}  // namespace corvel
