// The tokens of the filter language.
#ifndef IDXBASE_FILTER_FILTER_LEXER_H_
#define IDXBASE_FILTER_FILTER_LEXER_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace idxbase::detail {

enum class TokenKind {
  kEnd,
  kError,  // `value` holds the message
  kOpenParen,
  kCloseParen,
  kOpenBrace,
  kCloseBrace,
  kComma,
  kOperator,  // an operator's spelling in symbols ("=", "<>", "!", "&", ...)
  kInteger,
  kFloat,
  kString,    // `value` holds the unquoted bytes
  kTime,      // `text` is the whole "@..." literal
  kName,      // letters, digits, "_" and "." (keywords too)
  kVariable,  // `text` is "$name"
};

struct Token {
  TokenKind kind = TokenKind::kEnd;
  std::string_view text;  // the token as written
  std::size_t offset = 0;
  std::string value;
};

// Splits filter text into tokens, one at a time. Holds a view of the text:
// the caller keeps it alive.
class Lexer {
 public:
  explicit Lexer(std::string_view text) : text_(text) {}
  Token Next();

 private:
  Token Make(TokenKind kind, std::size_t begin, std::size_t end);
  Token Error(std::size_t at, std::string message);
  Token Number(std::size_t begin);
  Token Quoted(std::size_t begin);
  Token Word(std::size_t begin, TokenKind kind);

  std::string_view text_;
  std::size_t pos_ = 0;
};

// True for a keyword spelling, compared without case.
bool IsKeyword(std::string_view word, std::string_view keyword);

}  // namespace idxbase::detail

#endif  // IDXBASE_FILTER_FILTER_LEXER_H_
