// The filter language's recursive-descent parser.
#include "idxbase/filter_parser.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

#include "filter/filter_lexer.h"
#include "filter/operator_choice.h"
#include "filter/resolved_attribute.h"

namespace {

using idxbase::detail::IsKeyword;
using idxbase::detail::kOperatorRows;
using idxbase::detail::Lexer;
using idxbase::detail::OperatorKind;
using idxbase::detail::OperatorRow;
using idxbase::detail::ParsedOperand;
using idxbase::detail::Token;
using idxbase::detail::TokenKind;

// An expression under construction and the depth of its tree. A null
// expression with `isNull` set is a written NULL (a missing part).
struct Node {
  std::unique_ptr<BBDExpression> expression;
  int depth = 0;
  bool isNull = false;
};

// Reserved besides the operators' spellings.
constexpr const char* kReserved[] = {"true",         "false",     "NULL",
                                     "NAExpression", "NAOperand", "NullOperand"};

// The row of the operator that `token` spells (the first row of its
// kind), or null.
const OperatorRow* SpelledOperator(const Token& token) {
  if (token.kind != TokenKind::kOperator && token.kind != TokenKind::kName) return nullptr;
  for (const OperatorRow& row : kOperatorRows) {
    if (row.kind == OperatorKind::kUnwritten) continue;
    for (const std::string_view spelling : {std::string_view(row.name), row.alias}) {
      if (spelling.empty()) continue;
      if (token.kind == TokenKind::kOperator ? token.text == spelling
                                             : IsKeyword(token.text, spelling)) {
        return &row;
      }
    }
  }
  return nullptr;
}

bool IsReserved(const Token& token) {
  for (const char* keyword : kReserved) {
    if (IsKeyword(token.text, keyword)) return true;
  }
  return SpelledOperator(token) != nullptr;
}

// "=, <>, ..., NOT_LIKE": the name of each comparison kind, in kind order.
std::string ComparisonNames() {
  std::string names;
  for (int kind = 0; kind < static_cast<int>(OperatorKind::kUnwritten); ++kind) {
    for (const OperatorRow& row : kOperatorRows) {
      if (static_cast<int>(row.kind) != kind || row.operands == 0) continue;
      names += (names.empty() ? "" : ", ") + std::string(row.name);
      break;
    }
  }
  return names;
}

// Fills in the line, the column (in characters) and the line's text of
// byte `offset`.
void Locate(std::string_view text, std::size_t offset, BBDFilterParseError& error) {
  offset = std::min(offset, text.size());
  const std::size_t lineStart = text.rfind('\n', offset == 0 ? std::string_view::npos : offset - 1);
  const std::size_t begin = offset == 0 || lineStart == std::string_view::npos ? 0 : lineStart + 1;
  std::size_t end = text.find('\n', begin);
  if (end == std::string_view::npos) end = text.size();
  std::string_view line = text.substr(begin, end - begin);
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  error.line = 1;
  for (std::size_t at = 0; at < begin; ++at) error.line += text[at] == '\n' ? 1 : 0;
  error.column = 1;
  for (std::size_t at = begin; at < offset; ++at) {
    error.column += (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80 ? 0 : 1;
  }
  error.sourceLine = std::string(line);
}

constexpr int kMaxTextNesting = 4 * BBDFilterParser::kMaxDepth;

class Parser {
 public:
  Parser(std::string_view text, const BBDFilterSchema* schema,
         const std::map<std::string, const char* const*>& variables)
      : text_(text), lexer_(text), schema_(schema), variables_(variables) {}

  // The whole filter; null (with the error set) when the text is refused.
  std::unique_ptr<BBDExpression> Filter();
  std::size_t errorOffset() const { return errorOffset_; }
  const std::string& errorMessage() const { return errorMessage_; }

 private:
  bool Advance();
  bool Fail(std::size_t offset, std::string message);
  bool AtKeyword(const char* keyword) const {
    return current_.kind == TokenKind::kName && IsKeyword(current_.text, keyword);
  }
  bool At(IDX_Filter_Operator op) const { return SpelledOperator(current_) == &kOperatorRows[op]; }
  bool Enter(std::size_t offset);

  bool Chain(IDX_Filter_Operator op, bool (Parser::*next)(Node&), Node& node);
  bool Or(Node& node);
  bool And(Node& node);
  bool Not(Node& node);
  bool Primary(Node& node);
  bool Comparison(Node& node);
  bool Compose(IDX_Filter_Operator op, Node& first, Node second, std::size_t offset);
  bool Operand(ParsedOperand& operand);
  bool NameOperand(ParsedOperand& operand);
  bool SetElements(std::vector<ParsedOperand>& elements);
  bool Build(const OperatorRow& spelled, std::vector<ParsedOperand*> operands,
             std::size_t operatorOffset, Node& node);

  std::string_view text_;
  Lexer lexer_;
  Token current_;
  const BBDFilterSchema* schema_;
  const std::map<std::string, const char* const*>& variables_;
  int nesting_ = 0;
  bool failed_ = false;
  std::size_t errorOffset_ = 0;
  std::string errorMessage_;
};

bool Parser::Fail(std::size_t offset, std::string message) {
  if (!failed_) {
    failed_ = true;
    errorOffset_ = offset;
    errorMessage_ = std::move(message);
  }
  return false;
}

bool Parser::Advance() {
  current_ = lexer_.Next();
  if (current_.kind == TokenKind::kError) return Fail(current_.offset, current_.value);
  return true;
}

// Counts one more parenthesis or NOT around the text to come, so that no
// input can exhaust the stack. A tree of kMaxDepth levels renders with up
// to two of them per level, which stays well within the bound.
bool Parser::Enter(std::size_t offset) {
  if (++nesting_ > kMaxTextNesting) {
    return Fail(offset,
                "more than " + std::to_string(kMaxTextNesting) + " parentheses and NOTs nested");
  }
  return true;
}

std::unique_ptr<BBDExpression> Parser::Filter() {
  Node root;
  if (!Advance() || !Or(root)) return nullptr;
  if (current_.kind != TokenKind::kEnd) {
    Fail(current_.offset, "expected AND, OR or the end of the filter");
    return nullptr;
  }
  if (root.isNull) {
    Fail(0, "NULL stands for a missing part and cannot be the whole filter");
    return nullptr;
  }
  return std::move(root.expression);
}

bool Parser::Compose(IDX_Filter_Operator op, Node& first, Node second, std::size_t offset) {
  const int depth = 1 + std::max(first.depth, second.depth);
  if (depth > BBDFilterParser::kMaxDepth) {
    return Fail(offset, "filter nested deeper than " + std::to_string(BBDFilterParser::kMaxDepth) +
                            " levels");
  }
  first.expression = std::make_unique<BBDComposedExpression>(op, first.expression.release(),
                                                             second.expression.release());
  first.depth = depth;
  first.isNull = false;
  return true;
}

// A left-associative chain of `next` joined by `op`.
bool Parser::Chain(IDX_Filter_Operator op, bool (Parser::*next)(Node&), Node& node) {
  if (!(this->*next)(node)) return false;
  while (At(op)) {
    const std::size_t offset = current_.offset;
    Node right;
    if (!Advance() || !(this->*next)(right) || !Compose(op, node, std::move(right), offset)) {
      return false;
    }
  }
  return true;
}

bool Parser::Or(Node& node) { return Chain(IDX_Filter_Op_Or, &Parser::And, node); }

bool Parser::And(Node& node) { return Chain(IDX_Filter_Op_And, &Parser::Not, node); }

bool Parser::Not(Node& node) {
  if (!At(IDX_Filter_Op_Not)) return Primary(node);
  const std::size_t offset = current_.offset;
  if (!Enter(offset) || !Advance() || !Not(node)) return false;
  --nesting_;
  return Compose(IDX_Filter_Op_Not, node, Node(), offset);
}

bool Parser::Primary(Node& node) {
  if (current_.kind == TokenKind::kOpenParen) {
    const std::size_t open = current_.offset;
    if (!Enter(open) || !Advance() || !Or(node)) return false;
    --nesting_;
    if (current_.kind != TokenKind::kCloseParen) {
      BBDFilterParseError where;
      Locate(text_, open, where);
      return Fail(current_.offset, "expected ')' to close the '(' at line " +
                                       std::to_string(where.line) + ", column " +
                                       std::to_string(where.column));
    }
    return Advance();
  }
  if (AtKeyword("NAExpression")) {
    node.expression = std::make_unique<BBDNAExpression>();
    node.depth = 1;
    return Advance();
  }
  if (AtKeyword("NULL")) {
    node.isNull = true;
    node.depth = 1;
    return Advance();
  }
  return Comparison(node);
}

bool Parser::Comparison(Node& node) {
  ParsedOperand subject;
  if (!Operand(subject)) return false;
  const std::size_t offset = current_.offset;
  const OperatorRow* spelled = SpelledOperator(current_);
  if (AtKeyword("NOT")) {  // NOT LIKE, in two words
    if (!Advance() || !AtKeyword("LIKE")) return Fail(current_.offset, "expected LIKE after NOT");
    spelled = &kOperatorRows[IDX_Filter_Op_NotLikeString];
  } else if (spelled == nullptr || spelled->operands == 0) {
    return Fail(offset, "expected a comparison (" + ComparisonNames() + ") after '" +
                            std::string(subject.text) + "'");
  }
  if (!Advance()) return false;
  std::vector<ParsedOperand> values;
  if (spelled->operands < 0) {
    if (!SetElements(values)) return false;
  } else {
    values.resize(spelled->operands);
    for (int i = 0; i < spelled->operands; ++i) {
      // The bounds of a range may be joined by AND.
      if (i > 0 && AtKeyword("AND") && !Advance()) return false;
      if (!Operand(values[i])) return false;
    }
  }
  std::vector<ParsedOperand*> operands{&subject};
  for (ParsedOperand& value : values) operands.push_back(&value);
  return Build(*spelled, std::move(operands), offset, node);
}

bool Parser::SetElements(std::vector<ParsedOperand>& elements) {
  if (current_.kind != TokenKind::kOpenBrace) {
    return Fail(current_.offset, "expected '{' to open the set of IN");
  }
  if (!Advance()) return false;
  while (current_.kind != TokenKind::kCloseBrace) {
    ParsedOperand element;
    if (!Operand(element)) return false;
    elements.push_back(std::move(element));
    if (current_.kind == TokenKind::kComma && !Advance()) return false;
  }
  return Advance();
}

// Types the comparison and builds its basic expression, handing the
// operands over to it (a set's elements to a new set).
bool Parser::Build(const OperatorRow& spelled, std::vector<ParsedOperand*> operands,
                   std::size_t operatorOffset, Node& node) {
  const idxbase::detail::OperatorChoice choice =
      idxbase::detail::ChooseOperator(spelled.kind, operands, operatorOffset);
  if (!choice.error.empty()) return Fail(choice.errorOffset, choice.error);
  BBDOperand* subject = operands[0]->operand.release();
  if (spelled.operands < 0) {
    auto set = std::make_unique<BBDOperandSet>();
    for (std::size_t i = 1; i < operands.size(); ++i) set->Append(operands[i]->operand.release());
    node.expression = std::make_unique<BBDBasicExpression>(choice.op, subject, set.release());
  } else if (spelled.operands == 2) {
    node.expression = std::make_unique<BBDBasicExpression>(
        choice.op, subject, operands[1]->operand.release(), operands[2]->operand.release());
  } else {
    node.expression =
        std::make_unique<BBDBasicExpression>(choice.op, subject, operands[1]->operand.release());
  }
  node.depth = 1;
  return true;
}

bool Parser::Operand(ParsedOperand& operand) {
  operand.text = current_.text;
  operand.offset = current_.offset;
  operand.typed = true;
  const std::string_view text = current_.text;
  switch (current_.kind) {
    case TokenKind::kInteger: {
      const auto result = std::from_chars(text.data(), text.data() + text.size(), operand.intValue);
      if (result.ec != std::errc()) return Fail(operand.offset, "integer out of range");
      operand.operand = std::make_unique<BBDOperandIntConst>(operand.intValue);
      operand.type = IDX_Filter_Type_Int;
      operand.isIntConstant = true;
      break;
    }
    case TokenKind::kFloat: {
      float value = 0;
      const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
      if (result.ec != std::errc()) return Fail(operand.offset, "float out of range");
      operand.operand = std::make_unique<BBDOperandFloatConst>(value);
      operand.type = IDX_Filter_Type_Float;
      break;
    }
    case TokenKind::kString: {
      // The constant takes over a malloc'ed, zero-terminated buffer.
      const std::string& value = current_.value;
      char* buffer = static_cast<char*>(std::malloc(value.size() + 1));
      if (buffer == nullptr) return Fail(operand.offset, "out of memory");
      std::memcpy(buffer, value.c_str(), value.size() + 1);
      operand.operand = std::make_unique<BBDOperandStringConst>(buffer);
      operand.type = IDX_Filter_Type_String;
      break;
    }
    case TokenKind::kTime: {
      KORTime time = KORTime::FromEpochSeconds(0);
      if (!BBDFilterParser::ParseTime(text.substr(1), time)) {
        return Fail(operand.offset, "invalid date or time '" + std::string(text) +
                                        "' (write @YYYY-MM-DD or @YYYY-MM-DDTHH:MM:SS)");
      }
      operand.operand = std::make_unique<BBDOperandTimeConst>(time);
      operand.type = IDX_Filter_Type_Time;
      break;
    }
    case TokenKind::kVariable: {
      const auto found = variables_.find(std::string(text.substr(1)));
      if (found == variables_.end()) {
        return Fail(operand.offset, "unknown variable '" + std::string(text) + "'");
      }
      operand.operand = std::make_unique<BBDOperandStringUser>(found->second);
      operand.type = IDX_Filter_Type_String;
      break;
    }
    case TokenKind::kName:
      if (!NameOperand(operand)) return false;
      break;
    case TokenKind::kEnd:
      return Fail(operand.offset, "expected an operand, found the end of the filter");
    default:
      return Fail(operand.offset, "expected an operand, found '" + std::string(text) + "'");
  }
  return Advance();
}

bool Parser::NameOperand(ParsedOperand& operand) {
  const std::string_view text = current_.text;
  if (IsKeyword(text, "true") || IsKeyword(text, "false")) {
    operand.operand = std::make_unique<BBDOperandBooleanConst>(IsKeyword(text, "true"));
    operand.type = IDX_Filter_Type_Boolean;
    return true;
  }
  if (IsKeyword(text, "NAOperand") || IsKeyword(text, "NullOperand")) {
    if (IsKeyword(text, "NAOperand")) operand.operand = std::make_unique<BBDNAOperand>();
    operand.typed = false;
    return true;
  }
  if (IsReserved(current_)) {
    return Fail(operand.offset, "expected an operand, found '" + std::string(text) + "'");
  }
  BBDFilterAttribute attribute;
  if (schema_ == nullptr || !schema_->Resolve(std::string(text), attribute)) {
    return Fail(operand.offset, "unknown attribute '" + std::string(text) + "'");
  }
  switch (attribute.valueType) {
    case IDX_Filter_Type_Int:
    case IDX_Filter_Type_String:
    case IDX_Filter_Type_Float:
    case IDX_Filter_Type_Boolean:
    case IDX_Filter_Type_Time:
      break;
    default:
      return Fail(operand.offset, "attribute '" + std::string(text) + "' has no comparable type");
  }
  operand.operand = std::make_unique<idxbase::detail::ResolvedAttribute>(attribute);
  operand.type = attribute.valueType;
  return true;
}

}  // namespace

bool BBDFilterParser::IsNamePart(std::string_view word) {
  Lexer lexer(word);
  const Token token = lexer.Next();
  if (token.kind != TokenKind::kName || token.text != word ||
      word.find('.') != std::string_view::npos) {
    return false;
  }
  return !IsReserved(token);
}

void BBDFilterParser::BindVariable(const std::string& name, const char* const* variable) {
  m_Variables[name] = variable;
}

KORStatus BBDFilterParser::Parse(std::string_view text, BBDExpression*& root,
                                 BBDFilterParseError& error) const {
  root = nullptr;
  Parser parser(text, m_Schema, m_Variables);
  std::unique_ptr<BBDExpression> tree = parser.Filter();
  if (tree == nullptr) {
    error = BBDFilterParseError();
    error.message = parser.errorMessage();
    Locate(text, parser.errorOffset(), error);
    return KOR_E_FAIL;
  }
  root = tree.release();
  if (m_Compile) BBDExpression::Compile(root);
  if (root == nullptr) root = new BBDNAExpression();
  return KOR_S_OK;
}
