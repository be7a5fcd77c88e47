// Writes one model as a STEP physical file, plain or as the entry of an archive.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/entity.h"
#include "core/list.h"
#include "core/main_container.h"
#include "core/outcome.h"
#include "core/reporting.h"
#include "core/text.h"
#include "step/enum_table.h"
#include "step/numbers/number_form.h"
#include "step/streams/outpout_stream.h"
#include "step/writer/class_openings.h"

namespace corvel {

class LinesInOrder;
class LinesOfRange;
class Ticker;
class UnfinishedOutput;
struct CarriedParts;
struct CarriedText;
struct HeaderToken;
struct RecordText;

// What of a model is written. All of it is borrowed.
struct ModelToWrite {
  IFC::MainContainer* container = nullptr;  // null, or no header: there is no model to write
  HeaderToken* header = nullptr;
  WideString isoLine;                        // the word that the file begins with
  IFC::IfcEntity* unitAssignment = nullptr;  // may be null
  NumberForm numbers = NumberForm::kTold;
  // Nobody asks the objects for anything behind the writing: their markers stay as they are, which
  // saves a visit of each reference.
  bool isReleasedNext = false;
  // Threads that make the text, that of the caller among them. They change no byte of it.
  unsigned threads = 1;
};

// Turns the objects of a model into bytes. Every value ends with a comma; whoever closes a group
// takes the last comma back. Nothing here numbers or sorts: that is settled before.
class StepWriter {
 public:
  // WriteFile chooses the stream by the ending of `path`; `showError` gets every failure once.
  StepWriter(ErrorReporter showError, ProgressCallback progress, ModelToWrite model,
             WideString path);
  // Whether objects that carry something are written, or a std::logic_error is thrown.
  enum class Carried : bool { kRefused, kWritten };
  // For values and single lines: writes to a stream of the caller, which is borrowed. Not for
  // WriteFile.
  explicit StepWriter(FileStream::OutpoutStream& stream, NumberForm numbers = NumberForm::kTold,
                      Carried carried = Carried::kWritten);
  ~StepWriter();
  StepWriter(const StepWriter&) = delete;
  StepWriter& operator=(const StepWriter&) = delete;

  // Once. Complete: the output is at its place. Otherwise the path has what it had before, a file
  // or none, and a failure has been reported. Empties the lists of the header record, and leaves
  // all markers 0 unless the model is released next.
  Outcome WriteFile();
  // Where the complete output lies when WriteFile failed because it could not be put at its place;
  // empty otherwise.
  WideString KeptAt() const;

  // `#12=IFCWALL(...);` and a line feed; nothing for a deleted entity.
  void WriteEntityLine(const IFC::IfcEntity& entity);

  // --- Values ----------------------------------------------------------------------------------
  // All of these, and WriteEntityLine, throw std::runtime_error when the stream cannot write. Texts
  // and lists are borrowed for the call.
  void WriteText(ModelText text);    // 'text', encoded, up to the NUL
  void WriteGuid(const char* guid);  // as WriteText, each byte a character
  void WriteReal(double value);      // 3., 2.5E-05, (exact: see step/numbers/exact_real.h)
  void WriteInteger(std::int32_t value);
  // Six significant digits and no forced point, unless numbers are exact: 3, 1e+06,
  void WriteCount(double value);
  void WriteBinaryValue(std::int32_t value);
  void WriteBoolean(std::int32_t value);  // .T., .F., and $, for any other number
  void WriteLogical(std::int32_t value);
  void WriteEnum(const EnumTable& table, std::int32_t value);
  void WriteAbsent();  // $,

  // `#12,`; a typed value in place; `*,` for null; `$,` for a deleted entity, and then true.
  bool WriteEntityRef(const IFC::IfcEntity* entity);
  // Deleted members vanish; `(),` when none is left.
  void WriteEntityRefList(const EntityList& list);
  void WriteEntityRefLists(const List<EntityList>& lists);

  void WriteRealList(const List<double>& list);
  void WriteIntegerList(const List<std::int32_t>& list);
  void WriteBinaryList(const List<std::int32_t>& list);
  void WriteStringList(const List<ModelText>& list);
  void WriteBooleanList(const List<std::int32_t>& list);
  void WriteLogicalList(const List<std::int32_t>& list);
  void WriteEnumList(const EnumTable& table, const List<std::int32_t>& list);
  void WriteRealLists(const List<List<double>>& lists);
  void WriteIntegerLists(const List<List<std::int32_t>>& lists);

  // `IFCWALL(...)`, by the class alone, whatever the object carries.
  void WriteTypedCall(const IFC::IfcEntity& entity);

  // --- What tolerant readings carry --------------------------------------------------------------
  // The text with the numbers of its objects; no comma behind it.
  void WriteCarriedText(const CarriedText& text);
  void WriteBytes(std::string_view bytes);  // as they are
  void TakeBackComma();                     // the last byte that was written

 private:
  template <class Item, class WriteItem>
  void WriteGroup(const List<Item>& list, WriteItem writeItem);
  void WritePlain(std::string_view text);
  void WriteUnits(WideView text);
  void WriteRefNumber(std::uint32_t number);
  void WriteCall(const IFC::IfcEntity& entity);
  bool WriteCarrying(const IFC::IfcEntity& entity);
  void WriteMixed(const CarriedParts& parts, const RecordText& typed);
  void WriteArgument(const CarriedParts& parts, const RecordText& typed, std::size_t index);
  std::string TextOfTyped(const IFC::IfcEntity& entity);
  std::uint32_t NumberOfMissing(std::uint32_t number);
  std::uint32_t NextMissing();
  void Put(std::string_view bytes);

  bool OpenStream();
  Outcome WriteAll();
  void WriteHeader();
  void WriteHeaderList(std::vector<WideString>& texts);
  Outcome WriteData();
  Outcome WriteEach(Ticker& ticker);
  Outcome WriteTogether(LinesInOrder& lines, Ticker& ticker);
  Outcome WriteLines(const LinesOfRange& lines, Ticker& ticker);
  bool HasRoomFor(std::string_view text) const;
  bool WriteGuarded(const IFC::IfcEntity& entity);
  Outcome Finish();
  Outcome EndEarly(Outcome outcome);
  void CleanUp();

  ErrorReporter showError_ = nullptr;
  ProgressCallback progress_ = nullptr;
  ModelToWrite model_;
  WideString path_;
  std::unique_ptr<UnfinishedOutput> output_;
  std::unique_ptr<FileStream::OutpoutStream> ownStream_;  // writes to output_, goes before it
  FileStream::OutpoutStream* stream_ = nullptr;
  Carried carried_ = Carried::kWritten;
  ClassOpenings openings_;
  // Numbers of nothing that are taken in the meantime, with those that are written instead.
  std::unordered_map<std::uint32_t, std::uint32_t> missing_;
  std::uint32_t lastMissing_ = 0;
};

}  // namespace corvel
