#include "core/text.h"

#include "platform/utf8.h"

namespace corvel {

static_assert(kRawByteBase == platform::kRawByteBase, "paths and model text share these units");

WideString FromUtf8(std::string_view text) { return platform::FromUtf8(text); }

std::string ToUtf8(WideView text) { return platform::ToUtf8(text); }

void AppendUtf8(WideView text, std::string& bytes) { platform::AppendUtf8(text, bytes); }

}  // namespace corvel
