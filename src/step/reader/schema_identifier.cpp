#include "step/reader/schema_identifier.h"

#include <utility>

#include "step/log/ifc_log.h"
#include "step/reader/tolerant_head.h"

namespace corvel {

namespace {

constexpr std::size_t kHeaderBuffer = 0x100000;

}  // namespace

std::optional<SchemaNamespace> ChooseSchemaNamespace(const WideString& identifier,
                                                     ErrorReporter showError) {
  const WideView id = identifier;
  if (id == u"IFC2X2_PLATFORM") return SchemaNamespace::IFC2X2_PLATFORM;
  if (id == u"IFC2X2_FINAL") return SchemaNamespace::IFC2X2_FINAL;
  if (id == u"IFC2X3") return SchemaNamespace::IFC2X3;
  // Only the exact name reaches IFC2X3: "IFC2X3_TC1" and even "IFC2X4" land here.
  if (id.starts_with(u"IFC2X")) return SchemaNamespace::IFC2X_FINAL;
  if (id == u"IFC4") return SchemaNamespace::IFC4;
  if (id == u"IFC4X1") return SchemaNamespace::IFC4X1;
  if (id == u"IFC4X2") return SchemaNamespace::IFC4X2;
  if (id == u"IFC4X3" || id == u"IFC4X3_ADD2") return SchemaNamespace::IFC4X3_ADD2;
  if (id == u"IFC4X4") return SchemaNamespace::IFC4X4;
  if (id.starts_with(u"IFC4X3")) {
    showError(
        "",
        u"Schema identifier: " + identifier + u" is not supported. IFC4X3_ADD2 is used instead.\n",
        kReportLog);
    return SchemaNamespace::IFC4X3_ADD2;
  }
  return std::nullopt;
}

std::unique_ptr<HeaderToken> ReadHeaderToken(Scanner& scanner) {
  if (!scanner.NextToken()->Is(TokenType::IsoToken)) return nullptr;
  if (!scanner.NextToken()->Is(TokenType::SemicolonToken)) return nullptr;
  return std::move(scanner.NextToken()->header);
}

SchemaOfFile ReadSchemaOfFile(const WideString& path, ErrorReporter showError, bool tolerant) {
  IfcLog::Instance().LogText(u"[readSchemaIdentifier]");
  SchemaOfFile result;
  std::unique_ptr<HeaderToken> header;
  {
    Scanner scanner(path, kHeaderBuffer, showError);
    if (scanner.Stream() == nullptr) return result;
    if (!scanner.IsOpen()) {
      result.damaged = scanner.Stream()->IsDamaged();
      showError("could_not_open_file", u". File path: " + path, kReportShow);
      return result;
    }
    header = tolerant ? TakeTolerantHead(scanner).header : ReadHeaderToken(scanner);
    // It has been reported; nothing more can be said of a file that did not come as it is.
    result.damaged = scanner.Stream()->IsDamaged();
    if (result.damaged) return result;
    result.opened = true;
  }
  if (header == nullptr) {
    showError("", kNoHeader, kReportShow);
    return result;
  }
  result.identifier = std::move(header->schemaIdentifier);
  IfcLog::Instance().LogText(u"[End readSchemaIdentifier]");
  return result;
}

}  // namespace corvel
