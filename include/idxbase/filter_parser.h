// The filter language: text that reads back into a compiled expression
// tree. It accepts the text that BBDExpression::toString renders, and a
// friendlier infix form:
//
//   mass > 2.5 AND (name LIKE "bolt*M6" OR count IN {1 2 3})
//   NOT released = true OR modified >= @2026-11-22T10:30:00
//   name = $wanted
//
// Grammar (keywords are case-insensitive and reserved; `&`, `|`, `!` are
// the rendered spellings of AND, OR, NOT):
//
//   filter     := or
//   or         := and { ("OR" | "|") and }
//   and        := not { ("AND" | "&") not }
//   not        := ("NOT" | "!") not | primary
//   primary    := "(" or ")" | "NAExpression" | "NULL" | comparison
//   comparison := operand ("=" | "<>" | "!=" | "<" | "<=" | ">" | ">=") operand
//               | operand "BETWEEN" operand ["AND"] operand
//               | operand ("LIKE" | "NOT_LIKE" | "NOT" "LIKE") operand
//               | operand "IN" "{" { operand [","] } "}"
//   operand    := integer | float | string | "true" | "false" | time
//               | name | "$"variable | "NAOperand" | "NullOperand"
//
// - integer: optional "-" and decimal digits, within 32-bit int range.
// - float: digits with a "." and/or an exponent ("2.5", "-1e3", ".5"),
//   within float range (an overflow is an error, so inf and nan never
//   come out of a literal).
// - string: "..." or '...'; the quote itself is written twice inside
//   ("say ""hi"""). No backslash escapes, so rendered strings read back
//   unchanged. A NUL byte is refused.
// - time: "@" and an ISO date, "@2026-11-22", or date and time,
//   "@2026-11-22T10:30:00" (a trailing "Z" is allowed), in UTC.
// - name: letters, digits and "_" (not starting with a digit), joined by
//   "."; the schema resolves it. "$name" reads the caller's variable bound
//   with BindVariable.
// - LIKE and NOT_LIKE take the engine's patterns: "*" stands for any run
//   of characters and the pattern may match anywhere in the subject.
// - "NULL" (a missing sub-expression) is accepted only as a side of NOT,
//   AND or OR; "NullOperand" is a missing operand. Both are what toString
//   renders for missing parts.
//
// Typing. Each comparison takes the typed operator of its operands' value
// type (EqualInt, LowerFloat, InString, ...). Where one side is a float
// and the other an integer constant, the constant becomes a float; any
// other difference of types is an error. An NA or missing operand takes
// the other side's type (integer when no side has one). Booleans take only
// "=", "<>" and IN; LIKE and NOT_LIKE take strings; time has no IN.
//
// Round trip: toString renders for traces and does not always read back
// (sets and variables render as nothing, times as "time unsupported",
// quotes inside strings are not doubled). BBDFilterParser::Format writes
// filter text instead: every tree the parser builds formats to text that
// parses, with the same bindings and schema, to an equivalent tree (the
// same shape, operators and operand values).
#ifndef IDXBASE_FILTER_PARSER_H_
#define IDXBASE_FILTER_PARSER_H_

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "idxbase/export.h"
#include "idxbase/filter_attributes.h"
#include "idxbase/filter_expressions.h"
#include "idxbase/kor_time.h"
#include "idxbase/kor_types.h"

// An attribute that filters may name: how it renders, its value type and
// the pair handed to the reader at every read.
struct BBDFilterAttribute {
  std::string typeName;       // rendered before the dot
  std::string attributeName;  // rendered after the dot
  IDX_Filter_ValueType valueType = IDX_Filter_Type_Int;
  AttributeTypePair pair;
};

// The names a filter may use, implemented by the caller. Called by the
// parsing thread only.
class IDXBASE_API BBDFilterSchema {
 public:
  virtual ~BBDFilterSchema();
  // Resolves `name` as written (a bare name or a dotted one); true when
  // the name is known, with `attribute` filled in.
  virtual bool Resolve(const std::string& name, BBDFilterAttribute& attribute) const = 0;
};

// A schema of one type's attributes, numbered in the order they are
// added: attribute i (from 0) reads with the pair (type number, i). A name
// resolves written bare ("mass") or with the type name ("Part.mass").
// A plain value; one thread at a time.
class IDXBASE_API BBDFilterSimpleSchema : public BBDFilterSchema {
 public:
  BBDFilterSimpleSchema(std::string typeName, int typeNumber);
  // Adds an attribute; returns its number, or -1 (nothing added) when the
  // name is already there.
  int Add(const std::string& attributeName, IDX_Filter_ValueType valueType);
  int Size() const { return static_cast<int>(m_Attributes.size()); }
  const BBDFilterAttribute& At(int number) const { return m_Attributes[number]; }
  bool Resolve(const std::string& name, BBDFilterAttribute& attribute) const override;

 private:
  std::string m_TypeName;
  int m_TypeNumber;
  std::vector<BBDFilterAttribute> m_Attributes;
};

// Where and why a text was refused. Line and column count from 1; the
// column counts characters (UTF-8 sequences), not bytes.
struct IDXBASE_API BBDFilterParseError {
  int line = 0;
  int column = 0;
  std::string message;
  std::string sourceLine;  // the text's line at fault, without its line end

  // "line L, column C: message", then the line and a caret under the
  // column, each on its own line (ending with a line end).
  std::string Describe() const;
};

// Reads filter text into an expression tree.
//
// Holds a pointer to the schema and the variable bindings; the caller
// keeps the schema and every bound variable alive while the parser and
// the trees it built are used (a tree reads its variables at every
// evaluation). Without a schema every name is refused. One thread at a
// time per parser; parsers are independent.
//
// Statuses: Parse gives KOR_S_OK with `root` set to a new tree, owned by
// the caller (delete it), or KOR_E_FAIL with `root` null and `error`
// filled in. No input makes it crash: a tree deeper than kMaxDepth levels
// is refused, and so is text with more than 4 * kMaxDepth parentheses and
// NOTs nested (what keeps the parser's own recursion bounded).
class IDXBASE_API BBDFilterParser {
 public:
  static constexpr int kMaxDepth = 256;

  explicit BBDFilterParser(const BBDFilterSchema* schema = nullptr) : m_Schema(schema) {}

  // Makes "$name" read the caller's `const char*` variable at `variable`
  // (see BBDOperandStringUser). Binding a name again replaces it.
  void BindVariable(const std::string& name, const char* const* variable);
  // Whether Parse compiles the tree (BBDExpression::Compile) before
  // handing it over; on by default. A filter that compiles to nothing (an
  // or of an NA side and a missing side, "( NAExpression | NULL )") is
  // handed over as an NA expression: undecidable for every occurrence, as
  // the uncompiled tree was, so `root` is never null on success.
  void SetCompile(bool compile) { m_Compile = compile; }

  KORStatus Parse(std::string_view text, BBDExpression*& root, BBDFilterParseError& error) const;

  // Writes `root` as filter text that this parser reads back into an
  // equivalent tree: fully parenthesised AND and OR, NOT, comparisons in
  // infix form, sets as {a, b}, times as @YYYY-MM-DDTHH:MM:SS, strings in
  // double quotes (a quote doubled), floats in their shortest exact form
  // with a "." or an exponent, a user-string operand as "$name" of the
  // variable bound to its address, attributes as "Type.attribute" (or the
  // bare attribute name when the type name is empty), missing parts as
  // NULL and NullOperand. KOR_S_OK with `text` replaced; KOR_E_FAIL with
  // `text` empty for a tree the language cannot write: a class other than
  // the library's own expressions and the operands the parser builds (and
  // BBDOperandAttribute), an operator without a spelling, a variable not
  // bound here, a name that is not a filter name, a float that is not
  // finite, a time outside years 1 to 9999, a string holding a NUL, a
  // set element that is a set or missing, or a null root.
  KORStatus Format(const BBDExpression* root, std::string& text) const;

  // True when `word` reads as one name part in a filter: letters, digits
  // and "_", not starting with a digit (ASCII only), and not a keyword.
  static bool IsNamePart(std::string_view word);

  // Reads an ISO date "YYYY-MM-DD" or date and time "YYYY-MM-DDTHH:MM:SS"
  // (optionally followed by "Z"), in UTC, years 1 to 9999. False, leaving
  // `time` unchanged, when the text is not such a date or names a day
  // that does not exist.
  static bool ParseTime(std::string_view text, KORTime& time);

 private:
  const BBDFilterSchema* m_Schema;
  std::map<std::string, const char* const*> m_Variables;
  bool m_Compile = true;
};

#endif  // IDXBASE_FILTER_PARSER_H_
