// Whole numbers that the classes cannot hold, in the text of a value.
#pragma once

#include <string>
#include <string_view>

namespace corvel {

// `argument` with 0 in the place of each whole number of more than 32 bits; a sign stays. Texts,
// comments, references and reals are left alone.
std::string WithSmallIntegers(std::string_view argument);

}  // namespace corvel
