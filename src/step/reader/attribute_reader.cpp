#include "step/reader/attribute_reader.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string_view>

#include "step/carried/carrying_reader.h"
#include "step/reader/byte_kinds.h"
#include "step/reader/depth_guard.h"
#include "step/reader/parser.h"
#include "step/reader/string_decoder.h"

namespace corvel {

namespace {

// Tokens that end something: no reader takes them as a value.
bool Ends(const Token& token) {
  return token.Is(TokenType::CloseBracketToken) || token.Is(TokenType::SemicolonToken) ||
         token.Is(TokenType::EndOfFileToken);
}

// Takes the next token, which should be `usual`, unless the record ends there.
void TakeInRecord(Parser& parser, char usual) {
  Scanner& scanner = *parser.scanner;
  if (scanner.TakeSign(usual)) return;
  const TokenType type = scanner.PeekToken()->getType();
  const bool isUsual =
      type == (usual == '(' ? TokenType::OpenBracketToken : TokenType::CloseBracketToken);
  if (!isUsual) parser.RaiseMisfit();
  if (type != TokenType::SemicolonToken && type != TokenType::EndOfFileToken) scanner.NextToken();
}

// Reports the next token as wrong, takes it unless it ends something, and asks whether to go on.
void RejectToken(Parser& parser, const char16_t* expected) {
  const Token& token = *parser.scanner->PeekToken();
  parser.RaiseMisfit();
  const char16_t* const got = token.getName();
  if (!Ends(token)) parser.scanner->NextToken();
  parser.ExpectedArgumentError(expected, got, kReportShow);
  parser.Cancel();
}

// As RejectToken for enumerations, which may be set to go on without a question.
void RejectEnumToken(Parser& parser) {
  if (!parser.ignoreEnumErrors) {
    RejectToken(parser, u"EnumerationToken");
    return;
  }
  const Token& token = *parser.scanner->PeekToken();
  parser.RaiseMisfit();
  const char16_t* const got = token.getName();
  if (!Ends(token)) parser.scanner->NextToken();
  parser.ExpectedArgumentError(u"EnumerationToken", got, kReportLog);
}

bool IsNan(std::string_view word) {
  constexpr auto same = [](char c, char lower) { return (c | 0x20) == lower; };
  return word.size() == 3 && same(word[0], 'n') && same(word[1], 'a') && same(word[2], 'n');
}

bool TakeOpenBracket(Parser& parser) {
  if (parser.scanner->TakeSign('(')) return true;
  if (!parser.scanner->PeekToken()->Is(TokenType::OpenBracketToken)) return false;
  parser.scanner->NextToken();
  return true;
}

bool TakeIdentifier(Scanner& scanner, std::uint32_t& number) {
  if (scanner.TakeIdentifier(number)) [[likely]]
    return true;
  const char sign = scanner.PeekSign();
  if (sign == '$' || IsLetter(sign) || !scanner.PeekToken()->Is(TokenType::IdentifierToken)) {
    return false;
  }
  number = scanner.NextToken()->number;
  return true;
}

// --- Scalars without the tests that all readers begin with ---------------------------------------

// Behind the word of `IFCREAL(1.5)`: only a token with a point is accepted inside.
double ReadTypedReal(Parser& parser) {
  Scanner& scanner = *parser.scanner;
  if (TakeOpenBracket(parser) && scanner.PeekToken()->Is(TokenType::RealDataTypeToken)) {
    const double value = scanner.NextToken()->real;
    const bool isClosed = scanner.PeekToken()->Is(TokenType::CloseBracketToken);
    if (!isClosed) parser.RaiseMisfit();
    if (isClosed) scanner.NextToken();
    return value;
  }
  RejectToken(parser, u"IfcInteger or IfcReal");
  return 0.0;
}

// What an attribute that is a number holds without one; of truth values the caller knows it.
std::int32_t AbsentNumberOf(Parser& parser) {
  if (parser.notes.records != nullptr) NoteAbsentNumber(parser);
  return 0;
}

std::int32_t CutToInteger(double value) {
  if (std::isnan(value)) return 0;
  constexpr double kLeast = std::numeric_limits<std::int32_t>::min();
  constexpr double kMost = std::numeric_limits<std::int32_t>::max();
  if (value <= kLeast) return std::numeric_limits<std::int32_t>::min();
  if (value >= kMost) return std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(value);
}

// --- References ----------------------------------------------------------------------------------

// The bracket behind a name that means nothing, so that the record can go on behind it.
void SkipBracket(Scanner& scanner) {
  if (!scanner.PeekToken()->Is(TokenType::OpenBracketToken)) return;
  int depth = 0;
  do {
    const TokenType type = scanner.PeekToken()->getType();
    if (type == TokenType::SemicolonToken || type == TokenType::EndOfFileToken) return;
    if (type == TokenType::OpenBracketToken) ++depth;
    if (type == TokenType::CloseBracketToken) --depth;
    scanner.NextToken();
  } while (depth > 0);
}

// `IFCLABEL('x')`, its name just taken; `bracket` when an extra bracket stands around it.
IFC::IfcEntity* ReadTypedValue(Parser& parser, std::string_view name, bool bracket) {
  Scanner& scanner = *parser.scanner;
  const EntityCreator create = parser.factories->Find(name);
  if (create == nullptr) {
    parser.RaiseMisfit();
    // A copy: the name goes as soon as the stream moves on.
    const WideString unknown = Widen(name);
    SkipBracket(scanner);
    if (bracket) TakeInRecord(parser, ')');
    parser.showError("unknown_entity_name_in_schema", unknown, kReportShow);
    return nullptr;
  }
  const DepthGuard depth(parser);
  IFC::IfcEntity* const value = create(parser.Pool());
  value->inlineValue = true;
  TakeInRecord(parser, '(');
  value->read(parser);
  TakeInRecord(parser, ')');
  if (bracket) TakeInRecord(parser, ')');
  return value;
}

// Everything but `#12` and an absent value.
IFC::IfcEntity* ReadUnusualRef(Parser& parser, ClassTest& admitted) {
  Scanner& scanner = *parser.scanner;
  if (std::string_view name; scanner.TakeClassName(name)) {
    return ReadTypedValue(parser, name, false);
  }
  const TokenType type = scanner.PeekToken()->getType();
  if (type == TokenType::EntityNameToken) {
    return ReadTypedValue(parser, scanner.NextToken()->text, false);
  }
  if (type == TokenType::OpenBracketToken) {
    scanner.NextToken();
    const TokenType behind = scanner.PeekToken()->getType();
    if (behind == TokenType::CloseBracketToken) {
      scanner.NextToken();
      return nullptr;
    }
    if (behind == TokenType::EntityNameToken) {
      return ReadTypedValue(parser, scanner.NextToken()->text, true);
    }
  }
  parser.RaiseMisfit();
  // A bare number means a parameter value, which nothing can take: the record is unreadable.
  if (type == TokenType::RealDataTypeToken) throw UnreadableRecord();
  if (type == TokenType::IntegerDataTypeToken) {
    // In the place of dimensional exponents an integer stands for new ones, all 0. They are filed
    // nowhere and have no number, under which the writer could refer to them.
    if (const EntityCreator create = parser.factories->Find("IFCDIMENSIONALEXPONENTS")) {
      IFC::IfcEntity* const exponents = create(parser.Pool());
      if (admitted.Admits(exponents)) {
        scanner.NextToken();
        return exponents;
      }
    }
  }
  constexpr const char16_t* kExpected = u"#, *, entity name, or number(real, integer)";
  if (type == TokenType::OpenBracketToken) {  // already taken
    parser.ExpectedArgumentError(kExpected, NameOf(type), kReportShow);
    parser.Cancel();
  } else {
    RejectToken(parser, kExpected);
  }
  return nullptr;
}

// --- Aggregates ----------------------------------------------------------------------------------

// Items are gathered on a stack of the parser (lists stand inside lists) and stored in one piece.
template <class Item, class ReadItem>
void ReadItems(Parser& parser, List<Item>& list, ReadItem readItem) {
  Scanner& scanner = *parser.scanner;
  if (!TakeOpenBracket(parser)) {
    const Token& token = *scanner.PeekToken();
    parser.RaiseMisfit();
    parser.ExpectedArgumentError(u"OpenBracketToken", token.getName(), kReportShow);
    parser.Cancel();
    list.Clear();
    return;
  }
  std::vector<Item>& gathered = parser.Scratch<Item>();
  const std::size_t base = gathered.size();
  std::size_t seen = 0;
  for (; parser.StandsAtValue() || !IsListEnd(parser); ++seen) readItem(gathered);
  if (!scanner.TakeSign(')')) {
    if (scanner.PeekToken()->Is(TokenType::CloseBracketToken)) {
      scanner.NextToken();
    } else {
      parser.RaiseMisfit();
    }
  }
  // Room for members that only the second pass can resolve.
  list.Assign({gathered.data() + base, gathered.size() - base}, parser.Pool(), seen);
  gathered.resize(base);
}

template <class Item, class ReadItem>
void ReadValueList(Parser& parser, List<Item>& list, ReadItem readItem) {
  if (parser.IsStopped() || IsAbsent(parser)) {
    list.Clear();
    return;
  }
  ReadItems(parser, list,
            [&](std::vector<Item>& gathered) { gathered.push_back(readItem(parser)); });
}

// A list of lists: what is no inner list is a wrong token, and taken so that the list goes on.
template <class Inner, class ReadInner>
void ReadLists(Parser& parser, List<Inner>& lists, ReadInner readInner) {
  if (parser.IsStopped() || IsAbsent(parser)) {
    lists.Clear();
    return;
  }
  ReadItems(parser, lists, [&](std::vector<Inner>& gathered) {
    const TokenType type = parser.scanner->PeekToken()->getType();
    if (type != TokenType::OpenBracketToken && type != TokenType::EmptyParameterToken) {
      RejectToken(parser, u"OpenBracketToken");
      return;
    }
    Inner inner;
    readInner(inner);
    gathered.push_back(inner);
  });
}

// A record or a value with too few arguments, of which a strict reading says nothing.
bool EndsEarly(const Parser& parser) {
  if (parser.tolerance != nullptr) throw MisfitInRecord();
  return true;
}

// The members may be pending.
void ReadMembers(Parser& parser, ClassTest& admitted, EntityList& list) {
  if (parser.IsStopped() || IsAbsent(parser)) {
    list.Clear();
    return;
  }
  ReadItems(parser, list, [&](std::vector<IFC::IfcEntity*>& gathered) {
    if (IFC::IfcEntity* const member = ReadEntityRef(parser, admitted)) gathered.push_back(member);
  });
}

}  // namespace

bool IsAbsent(Parser& parser) {
  if (parser.IsStopped()) return false;
  const char sign = parser.scanner->PeekSign();
  if (IsOfKind(sign, kValueByte)) return false;
  if (sign == '$' || sign == '*') return parser.scanner->TakeSign(sign);
  if (sign == ')') return EndsEarly(parser);
  const TokenType type = parser.scanner->PeekToken()->getType();
  if (type == TokenType::EmptyParameterToken) {
    parser.scanner->NextToken();
    return true;
  }
  return type == TokenType::CloseBracketToken && EndsEarly(parser);
}

bool IsListEnd(Parser& parser) {
  if (parser.IsStopped()) return true;
  const char sign = parser.scanner->PeekSign();
  if (IsOfKind(sign, kValueByte)) return false;
  // Looking ahead may have stopped the scanner.
  return sign == ')' || Ends(*parser.scanner->PeekToken()) || parser.IsStopped();
}

double ReadReal(Parser& parser) {
  if (parser.IsStopped()) return 0.0;
  Scanner& scanner = *parser.scanner;
  double value = 0.0;
  if (scanner.TakeNumber(value)) return value;
  if (IsAbsent(parser)) return AbsentNumberOf(parser);
  const Token& token = *scanner.PeekToken();
  if (token.Is(TokenType::RealDataTypeToken) || token.Is(TokenType::IntegerDataTypeToken)) {
    return scanner.NextToken()->real;
  }
  if (token.Is(TokenType::EntityNameToken)) {
    if (!IsNan(scanner.NextToken()->text)) return ReadTypedReal(parser);
    parser.RaiseMisfit();
    return 0.0;
  }
  RejectToken(parser, u"IfcInteger or IfcReal");
  return 0.0;
}

std::int32_t ReadInteger(Parser& parser) {
  if (parser.IsStopped()) return 0;
  Scanner& scanner = *parser.scanner;
  std::int32_t value = 0;
  if (scanner.TakeInteger(value)) return value;
  if (IsAbsent(parser)) return AbsentNumberOf(parser);
  const Token& token = *scanner.PeekToken();
  const bool isInteger = token.Is(TokenType::IntegerDataTypeToken);
  if (isInteger || token.Is(TokenType::RealDataTypeToken)) {
    const std::int32_t cut = isInteger ? token.integer : CutToInteger(token.real);
    if (cut != token.real) parser.RaiseMisfit();
    scanner.NextToken();
    return cut;
  }
  if (token.Is(TokenType::EntityNameToken) && IsNan(token.text)) {
    parser.RaiseMisfit();
    scanner.NextToken();
    return 0;
  }
  RejectToken(parser, u"IfcInteger");
  return 0;
}

std::int32_t ReadBinary(Parser& parser) {
  if (parser.IsStopped()) return 0;
  if (IsAbsent(parser)) return AbsentNumberOf(parser);
  const Token& token = *parser.scanner->PeekToken();
  if (token.Is(TokenType::IntegerDataTypeToken)) {
    if (token.integer != token.real) parser.RaiseMisfit();
    return parser.scanner->NextToken()->integer;
  }
  RejectToken(parser, u"IfcBinary");
  return 0;
}

ModelText ReadString(Parser& parser) {
  if (parser.IsStopped()) return kEmptyWide;
  Scanner& scanner = *parser.scanner;
  if (std::string_view plain; scanner.TakeString(plain)) return parser.Pool().InternText(plain);
  if (IsAbsent(parser)) return parser.Pool().EmptyWide();
  // `IFCLABEL('x')` in the place of a string: its ")" stays, and reads as an absent value.
  if (scanner.PeekToken()->Is(TokenType::EntityNameToken)) {
    parser.RaiseMisfit();
    scanner.NextToken();
    TakeOpenBracket(parser);
  }
  if (scanner.PeekToken()->Is(TokenType::WstringToken)) {
    // What stands behind a NUL would not be written.
    if (scanner.PeekToken()->decoded.Holds('\0')) parser.RaiseMisfit();
    const DecodedText& text = scanner.NextToken()->decoded;
    return text.IsPlain() ? parser.Pool().InternText(text.Bytes())
                          : parser.Pool().InternText(text.Units());
  }
  RejectToken(parser, u"String");
  return parser.Pool().EmptyWide();
}

const char* ReadGuid(Parser& parser) {
  if (parser.IsStopped()) return kEmptyNarrow;
  std::string_view plain;
  if (parser.scanner->TakeString(plain)) return parser.Pool().InternNarrow(plain);
  if (IsAbsent(parser)) return parser.Pool().EmptyNarrow();
  if (!parser.scanner->PeekToken()->Is(TokenType::WstringToken)) {
    RejectToken(parser, u"CharString");
    return parser.Pool().EmptyNarrow();
  }
  Token& token = *parser.scanner->NextToken();
  const DecodedText& text = token.decoded;
  if (!text.IsPlain() || text.Holds('\0')) parser.RaiseMisfit();
  if (text.IsPlain()) return parser.Pool().InternNarrow(text.Bytes());
  token.text.clear();
  for (const char16_t unit : text.Units()) token.text.push_back(static_cast<char>(unit & 0xFF));
  return parser.Pool().InternNarrow(token.text);
}

std::int32_t ReadEnum(Parser& parser, const EnumTable& table) {
  if (parser.IsStopped()) return table.Fallback();
  Scanner& scanner = *parser.scanner;
  std::string_view name;
  if (!scanner.TakeEnumeration(name)) {
    if (!scanner.PeekToken()->Is(TokenType::EnumerationToken)) {
      RejectEnumToken(parser);
      return table.Fallback();
    }
    name = scanner.NextToken()->text;
  }
  if (const EnumRow* const row = table.FindByName(name)) return row->number;
  parser.RaiseMisfit();
  parser.showError(
      "", u"Enume " + WideString(table.name) + u" does not contain: \"" + Widen(name) + u"\"",
      parser.ignoreEnumErrors ? kReportLog : kReportShow);
  if (!parser.ignoreEnumErrors) parser.Cancel();
  return table.Fallback();
}

std::int32_t ReadBoolean(Parser& parser) { return ReadEnum(parser, kBooleanDataType); }

std::int32_t ReadLogical(Parser& parser) { return ReadEnum(parser, kLogicalDataType); }

std::int32_t ReadBooleanValue(Parser& parser) {
  if (!IsAbsent(parser)) return ReadBoolean(parser);
  AbsentNumberOf(parser);
  return kBooleanDataType.Fallback();
}

std::int32_t ReadLogicalValue(Parser& parser) {
  if (!IsAbsent(parser)) return ReadLogical(parser);
  AbsentNumberOf(parser);
  return kLogicalDataType.Fallback();
}

IFC::IfcEntity* ReadEntityRef(Parser& parser, ClassTest& admitted) {
  if (parser.IsStopped()) return nullptr;
  std::uint32_t number = 0;
  if (TakeIdentifier(*parser.scanner, number)) [[likely]] {
    if (parser.ahead != nullptr) return parser.ahead->Find(number, admitted);
    IFC::IfcEntity* const entity = parser.mainContainer->GetEntityByOrginalNumber(number);
    if (admitted.Admits(entity)) [[likely]]
      return entity;
    if (entity == nullptr) {
      parser.forwardReference = true;
      if (!parser.carrying.allAreFiled) return nullptr;
    }
    return parser.tolerance == nullptr ? nullptr : KeepReference(parser, entity, number);
  }
  if (IsAbsent(parser)) return nullptr;
  IFC::IfcEntity* const value = ReadUnusualRef(parser, admitted);
  if (parser.ahead != nullptr) return parser.ahead->Admits(admitted, value) ? value : nullptr;
  if (admitted.Admits(value)) return value;
  return parser.tolerance == nullptr ? nullptr : KeepValue(parser, value);
}

void ReadEntityRef(Parser& parser, ClassTest& admitted, IFC::IfcEntity*& value) {
  value = ReadEntityRef(parser, admitted);
  if (RecordBatch::IsPending(value)) parser.ahead->BindLater(value, admitted);
}

void ReadEntityRefList(Parser& parser, ClassTest& admitted, EntityList& list) {
  ReadMembers(parser, admitted, list);
  if (parser.ahead != nullptr) parser.ahead->BindLater(list, admitted);
}

void ReadEntityRefLists(Parser& parser, ClassTest& admitted, List<EntityList>& lists) {
  ReadLists(parser, lists, [&](EntityList& inner) { ReadMembers(parser, admitted, inner); });
  if (parser.ahead == nullptr) return;
  for (EntityList& inner : lists) parser.ahead->BindLater(inner, admitted);
}

void ReadRealList(Parser& parser, List<double>& list) { ReadValueList(parser, list, ReadReal); }

void ReadIntegerList(Parser& parser, List<std::int32_t>& list) {
  ReadValueList(parser, list, ReadInteger);
}

void ReadBinaryList(Parser& parser, List<std::int32_t>& list) {
  ReadValueList(parser, list, ReadBinary);
}

void ReadStringList(Parser& parser, List<ModelText>& list) {
  ReadValueList(parser, list, ReadString);
}

void ReadBooleanList(Parser& parser, List<std::int32_t>& list) {
  ReadValueList(parser, list, ReadBooleanValue);
}

void ReadLogicalList(Parser& parser, List<std::int32_t>& list) {
  ReadValueList(parser, list, ReadLogicalValue);
}

void ReadEnumList(Parser& parser, const EnumTable& table, List<std::int32_t>& list) {
  ReadValueList(parser, list, [&table](Parser& p) { return ReadEnum(p, table); });
}

void ReadRealLists(Parser& parser, List<List<double>>& lists) {
  ReadLists(parser, lists, [&](List<double>& inner) { ReadRealList(parser, inner); });
}

void ReadIntegerLists(Parser& parser, List<List<std::int32_t>>& lists) {
  ReadLists(parser, lists, [&](List<std::int32_t>& inner) { ReadIntegerList(parser, inner); });
}

}  // namespace corvel
