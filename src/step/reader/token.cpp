#include "step/reader/token.h"

namespace corvel {

const char16_t* NameOf(TokenType type) {
  switch (type) {
    case TokenType::EndsecToken: return u"EndsecToken";
    case TokenType::OpenBracketToken: return u"OpenBracketToken";
    case TokenType::CloseBracketToken: return u"CloseBracketToken";
    case TokenType::EqualToken: return u"EqualToken";
    case TokenType::SemicolonToken: return u"SemicolonToken";
    case TokenType::UnknownSignToken: return u"UnknownSignToken";
    case TokenType::DataToken: return u"DataToken";
    case TokenType::EndOfFileToken: return u"EndOfFileToken";
    case TokenType::EmptyParameterToken: return u"EmptyParameterToken";
    case TokenType::NewLineToken: return u"NewLineToken";
    case TokenType::IdentifierToken: return u"IdentifierToken";
    case TokenType::EntityNameToken: return u"EntityNameToken";
    case TokenType::WstringToken: return u"WStringToken";
    case TokenType::RealDataTypeToken: return u"RealDataTypeToken";
    case TokenType::IntegerDataTypeToken: return u"IntegerDataTypeToken";
    case TokenType::EnumerationToken: return u"EnumerationToken";
    case TokenType::IsoToken: return u"IsoToken";
    case TokenType::EndIsoToken: return u"EndIsoToken";
    case TokenType::HeaderToken: return u"HeaderToken";
  }
  return u"";
}

}  // namespace corvel
