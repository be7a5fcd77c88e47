// What the name of a file tells of the model in it.
#pragma once

#include "core/text.h"

namespace FileStream {

// How a model lies in its file.
enum class ModelForm {
  kNone,       // the name is not that of a model
  kPlain,      // .ifc: the bytes of the file
  kPacked,     // .ifczip: the first file of an archive
  kContained,  // .olf: an entry of the viewer's container, named behind a "|"
};

// What the name of a plain model ends in.
inline constexpr char16_t kPlainEnding[] = u".ifc";

// The form that belongs to an extension in lower case, dot included.
ModelForm FormOfExtension(corvel::WideView extension);

// Lower-cased extension of a path with its dot; of `archive|entry` the four characters before the
// "|".
corvel::WideString ExtensionOf(corvel::WideView path);

inline ModelForm FormOf(corvel::WideView path) { return FormOfExtension(ExtensionOf(path)); }

}  // namespace FileStream
