#include "filter/filter_lexer.h"

#include <cctype>
#include <utility>

#include "filter/operator_table.h"

namespace idxbase::detail {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsWordStart(char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0 || c == '_'; }
bool IsWordChar(char c) { return IsWordStart(c) || IsDigit(c); }

// The character that `text` starts with, quoted: a whole UTF-8 sequence,
// or the byte in hexadecimal when it is a control or not valid UTF-8.
std::string Shown(std::string_view text) {
  const unsigned char lead = static_cast<unsigned char>(text[0]);
  const std::size_t length = lead < 0x80    ? 1
                             : lead >= 0xF5 ? 0
                             : lead >= 0xF0 ? 4
                             : lead >= 0xE0 ? 3
                             : lead >= 0xC2 ? 2
                                            : 0;
  bool valid = length > 0 && length <= text.size() && (lead >= 0x20 && lead != 0x7F);
  for (std::size_t i = 1; valid && i < length; ++i) {
    valid = (static_cast<unsigned char>(text[i]) & 0xC0) == 0x80;
  }
  if (valid) return "'" + std::string(text.substr(0, length)) + "'";
  static const char kHex[] = "0123456789ABCDEF";
  return std::string("byte 0x") + kHex[lead >> 4] + kHex[lead & 0xF];
}

// The length of the longest operator spelling in symbols that `text`
// starts with; 0 when there is none.
std::size_t SymbolLength(std::string_view text) {
  std::size_t longest = 0;
  for (const OperatorRow& row : kOperatorRows) {
    if (row.kind == OperatorKind::kUnwritten) continue;
    for (const std::string_view spelling : {std::string_view(row.name), row.alias}) {
      if (!spelling.empty() && !IsWordStart(spelling[0]) && spelling.size() > longest &&
          text.substr(0, spelling.size()) == spelling) {
        longest = spelling.size();
      }
    }
  }
  return longest;
}

}  // namespace

bool IsKeyword(std::string_view word, std::string_view keyword) {
  if (word.size() != keyword.size()) return false;
  for (std::size_t i = 0; i < word.size(); ++i) {
    if (std::toupper(static_cast<unsigned char>(word[i])) !=
        std::toupper(static_cast<unsigned char>(keyword[i]))) {
      return false;
    }
  }
  return true;
}

Token Lexer::Make(TokenKind kind, std::size_t begin, std::size_t end) {
  pos_ = end;
  Token token;
  token.kind = kind;
  token.text = text_.substr(begin, end - begin);
  token.offset = begin;
  return token;
}

Token Lexer::Error(std::size_t at, std::string message) {
  Token token;
  token.kind = TokenKind::kError;
  token.offset = at;
  token.value = std::move(message);
  pos_ = text_.size();
  return token;
}

Token Lexer::Next() {
  while (pos_ < text_.size() && std::isspace(static_cast<unsigned char>(text_[pos_])) != 0) ++pos_;
  if (pos_ == text_.size()) return Make(TokenKind::kEnd, pos_, pos_);
  const std::size_t begin = pos_;
  const char c = text_[begin];
  const char next = begin + 1 < text_.size() ? text_[begin + 1] : '\0';
  switch (c) {
    case '(':
      return Make(TokenKind::kOpenParen, begin, begin + 1);
    case ')':
      return Make(TokenKind::kCloseParen, begin, begin + 1);
    case '{':
      return Make(TokenKind::kOpenBrace, begin, begin + 1);
    case '}':
      return Make(TokenKind::kCloseBrace, begin, begin + 1);
    case ',':
      return Make(TokenKind::kComma, begin, begin + 1);
    case '"':
    case '\'':
      return Quoted(begin);
    case '@':
      return Word(begin, TokenKind::kTime);
    case '$':
      if (!IsWordStart(next)) return Error(begin, "expected a variable name after '$'");
      return Word(begin, TokenKind::kVariable);
    default:
      break;
  }
  if (IsDigit(c) || ((c == '-' || c == '.') && (IsDigit(next) || next == '.')))
    return Number(begin);
  if (IsWordStart(c)) return Word(begin, TokenKind::kName);
  if (const std::size_t length = SymbolLength(text_.substr(begin)); length > 0) {
    return Make(TokenKind::kOperator, begin, begin + length);
  }
  return Error(begin, "unexpected character " + Shown(text_.substr(begin)));
}

// -?digits[.digits][e[+-]digits], or -?.digits[...]; a "." or an exponent
// makes it a float.
Token Lexer::Number(std::size_t begin) {
  std::size_t end = begin;
  if (text_[end] == '-') ++end;
  bool isFloat = false;
  std::size_t digits = 0;
  const auto skipDigits = [&] {
    const std::size_t start = end;
    while (end < text_.size() && IsDigit(text_[end])) ++end;
    digits += end - start;
  };
  skipDigits();
  if (end < text_.size() && text_[end] == '.') {
    isFloat = true;
    ++end;
    skipDigits();
  }
  if (digits == 0) return Error(begin, "malformed number");
  if (end < text_.size() && (text_[end] == 'e' || text_[end] == 'E')) {
    isFloat = true;
    ++end;
    if (end < text_.size() && (text_[end] == '+' || text_[end] == '-')) ++end;
    if (end == text_.size() || !IsDigit(text_[end])) return Error(begin, "malformed number");
    while (end < text_.size() && IsDigit(text_[end])) ++end;
  }
  if (end < text_.size() && (IsWordChar(text_[end]) || text_[end] == '.')) {
    return Error(begin, "malformed number");
  }
  return Make(isFloat ? TokenKind::kFloat : TokenKind::kInteger, begin, end);
}

// A quoted string; the quote character doubled stands for itself.
Token Lexer::Quoted(std::size_t begin) {
  const char quote = text_[begin];
  std::string value;
  std::size_t at = begin + 1;
  for (;;) {
    if (at == text_.size()) return Error(begin, "unterminated string");
    const char c = text_[at];
    if (c == quote) {
      if (at + 1 < text_.size() && text_[at + 1] == quote) {
        value += quote;
        at += 2;
        continue;
      }
      break;
    }
    if (c == '\0') return Error(at, "a string cannot hold a NUL byte");
    value += c;
    ++at;
  }
  Token token = Make(TokenKind::kString, begin, at + 1);
  token.value = std::move(value);
  return token;
}

// A name (dotted words), a "$variable" or an "@time" literal: the run of
// word characters and the separators that the kind allows.
Token Lexer::Word(std::size_t begin, TokenKind kind) {
  std::size_t end = begin + (kind == TokenKind::kName ? 0 : 1);
  for (; end < text_.size(); ++end) {
    const char c = text_[end];
    if (IsWordChar(c)) continue;
    if (kind == TokenKind::kTime && (c == '-' || c == ':')) continue;
    if (c == '.' && kind == TokenKind::kName && end + 1 < text_.size() &&
        IsWordStart(text_[end + 1])) {
      continue;
    }
    break;
  }
  return Make(kind, begin, end);
}

}  // namespace idxbase::detail
