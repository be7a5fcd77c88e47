// Which program wrote a model.
#pragma once

#include "core/text.h"
#include "merge/document.h"

namespace corvel::host {

struct Exporter {
  WideString application;        // of the first IfcApplication: its full name and version
  WideString originatingSystem;  // as the header names it, here and below
  WideString preprocessorVersion;
  WideString timeStamp;

  // The first of these that says something; empty when none does.
  const WideString& Name() const;
  bool operator==(const Exporter&) const = default;
};

// What the header says. The application is the caller's to add (see ApplicationText).
Exporter ExporterInHeader(const IfcDocument& document);
// "Name 1.2" of an IfcApplication.
WideString ApplicationText(const IFC::IfcEntity& application);

}  // namespace corvel::host
