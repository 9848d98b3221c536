// Filter text from an expression tree: the inverse of the parser.
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <typeinfo>

#include "filter/constant_values.h"
#include "filter/operator_table.h"
#include "filter/resolved_attribute.h"
#include "filter/tree_access.h"
#include "idxbase/filter_parser.h"

namespace {

using idxbase::detail::ConstantValues;
using idxbase::detail::kOperatorRows;
using idxbase::detail::OperatorKind;
using idxbase::detail::OperatorRow;
using idxbase::detail::StringValue;
using idxbase::detail::TreeAccess;

class Formatter {
 public:
  explicit Formatter(const std::map<std::string, const char* const*>& variables)
      : variables_(variables) {}

  bool Expression(const BBDExpression* expression, std::string& out) const;

 private:
  bool Composed(const BBDComposedExpression& composed, std::string& out) const;
  bool Basic(const BBDBasicExpression& basic, std::string& out) const;
  bool Operand(const BBDOperand* operand, std::string& out) const;
  bool Set(const BBDOperand* set, std::string& out) const;
  bool Variable(const BBDOperandStringUser& user, std::string& out) const;
  static bool Attribute(const BBDOperandAttribute& attribute, std::string& out);
  static bool Float(float value, std::string& out);
  static bool Time(const KORTime& time, std::string& out);
  static bool String(const StringValue& value, std::string& out);

  const std::map<std::string, const char* const*>& variables_;
};

// A missing sub-expression is NULL, which the parser takes only as a side
// of NOT, AND and OR, where it is written.
bool Formatter::Expression(const BBDExpression* expression, std::string& out) const {
  if (expression == nullptr) {
    out += "NULL";
    return true;
  }
  const std::type_info& type = typeid(*expression);
  if (type == typeid(BBDNAExpression)) {
    out += "NAExpression";
    return true;
  }
  if (type == typeid(BBDComposedExpression)) {
    return Composed(static_cast<const BBDComposedExpression&>(*expression), out);
  }
  if (type == typeid(BBDBasicExpression)) {
    return Basic(static_cast<const BBDBasicExpression&>(*expression), out);
  }
  return false;
}

// NOT binds tighter than any comparison's neighbours; AND and OR are
// parenthesised whatever their parent, so the text keeps the tree's shape.
bool Formatter::Composed(const BBDComposedExpression& composed, std::string& out) const {
  const IDX_Filter_Operator op = const_cast<BBDComposedExpression&>(composed).GetOperator();
  if (op == IDX_Filter_Op_Not) {
    out += "NOT ";
    return Expression(TreeAccess::First(composed), out);
  }
  if (op != IDX_Filter_Op_Or && op != IDX_Filter_Op_And) return false;
  out += '(';
  if (!Expression(TreeAccess::First(composed), out)) return false;
  out += ' ';
  out += kOperatorRows[op].alias;
  out += ' ';
  if (!Expression(TreeAccess::Second(composed), out)) return false;
  out += ')';
  return true;
}

bool Formatter::Basic(const BBDBasicExpression& basic, std::string& out) const {
  const IDX_Filter_Operator op = const_cast<BBDBasicExpression&>(basic).GetOperator();
  if (op < 0 || op >= IDX_Filter_Infos::kOperatorCount) return false;
  const OperatorRow& row = kOperatorRows[op];
  if (row.kind == OperatorKind::kUnwritten || row.operands == 0) return false;
  if (!Operand(TreeAccess::OperandOf(basic, 0), out)) return false;
  out += ' ';
  out += row.name;
  out += ' ';
  if (row.operands < 0) return Set(TreeAccess::OperandOf(basic, 1), out);
  if (!Operand(TreeAccess::OperandOf(basic, 1), out)) return false;
  if (row.operands == 1) return true;
  out += " AND ";
  return Operand(TreeAccess::OperandOf(basic, 2), out);
}

bool Formatter::Set(const BBDOperand* set, std::string& out) const {
  if (set == nullptr || typeid(*set) != typeid(BBDOperandSet)) return false;
  const auto& elements = ConstantValues::Elements(*set);
  out += '{';
  for (int position = 1; position <= elements.Size(); ++position) {
    const BBDOperand* element = elements[position];
    if (element == nullptr || typeid(*element) == typeid(BBDOperandSet)) return false;
    if (position > 1) out += ", ";
    if (!Operand(element, out)) return false;
  }
  out += '}';
  return true;
}

bool Formatter::Operand(const BBDOperand* operand, std::string& out) const {
  if (operand == nullptr) {
    out += "NullOperand";
    return true;
  }
  const std::type_info& type = typeid(*operand);
  if (type == typeid(BBDNAOperand)) {
    out += "NAOperand";
    return true;
  }
  if (type == typeid(BBDOperandIntConst)) {
    int value = 0;
    ConstantValues::Read(*operand, value);
    out += std::to_string(value);
    return true;
  }
  if (type == typeid(BBDOperandFloatConst)) {
    float value = 0;
    ConstantValues::Read(*operand, value);
    return Float(value, out);
  }
  if (type == typeid(BBDOperandBooleanConst)) {
    bool value = false;
    ConstantValues::Read(*operand, value);
    out += value ? "true" : "false";
    return true;
  }
  if (type == typeid(BBDOperandStringConst)) {
    StringValue value;
    ConstantValues::Read(*operand, value);
    return String(value, out);
  }
  if (type == typeid(BBDOperandTimeConst)) {
    KORTime value = KORTime::FromEpochSeconds(0);
    ConstantValues::Read(*operand, value);
    return Time(value, out);
  }
  if (type == typeid(BBDOperandStringUser)) {
    return Variable(static_cast<const BBDOperandStringUser&>(*operand), out);
  }
  if (type == typeid(idxbase::detail::ResolvedAttribute) || type == typeid(BBDOperandAttribute)) {
    return Attribute(static_cast<const BBDOperandAttribute&>(*operand), out);
  }
  return false;
}

bool Formatter::Variable(const BBDOperandStringUser& user, std::string& out) const {
  const char* const* address = TreeAccess::VariableOf(user);
  for (const auto& binding : variables_) {
    if (binding.second == address && address != nullptr) {
      out += '$';
      out += binding.first;
      return true;
    }
  }
  return false;
}

bool Formatter::Attribute(const BBDOperandAttribute& attribute, std::string& out) {
  const std::string_view type = TreeAccess::TypeNameOf(attribute).ConvertToChar();
  const std::string_view name = TreeAccess::AttributeNameOf(attribute).ConvertToChar();
  if (!BBDFilterParser::IsNamePart(name)) return false;
  if (!type.empty()) {
    if (!BBDFilterParser::IsNamePart(type)) return false;
    out += type;
    out += '.';
  }
  out += name;
  return true;
}

// The shortest digits that read back as the same float; a "." keeps an
// integral value a float (an integer literal would type the comparison
// as one of integers).
bool Formatter::Float(float value, std::string& out) {
  if (!std::isfinite(value)) return false;
  char digits[32];
  const auto result = std::to_chars(digits, digits + sizeof digits, value);
  const std::string_view text(digits, static_cast<std::size_t>(result.ptr - digits));
  out += text;
  if (text.find_first_of(".e") == std::string_view::npos) out += ".0";
  return true;
}

// The language reads four-digit years: 0001-01-01T00:00:00 to
// 9999-12-31T23:59:59 UTC.
bool Formatter::Time(const KORTime& time, std::string& out) {
  constexpr std::int64_t kFirst = -62135596800;
  constexpr std::int64_t kLast = 253402300799;
  const std::int64_t seconds = time.GetEpochSeconds();
  if (seconds < kFirst || seconds > kLast) return false;
  char text[64];
  std::snprintf(text, sizeof text, "@%04d-%02d-%02dT%02d:%02d:%02d", time.GetYear(KORTzUTC),
                time.GetMonth(KORTzUTC), time.GetDay(KORTzUTC), time.GetHour(KORTzUTC),
                time.GetMinute(KORTzUTC), time.GetSecond(KORTzUTC));
  out += text;
  return true;
}

bool Formatter::String(const StringValue& value, std::string& out) {
  const std::string_view text(value.text, static_cast<std::size_t>(value.length));
  if (text.find('\0') != std::string_view::npos) return false;
  out += '"';
  for (const char c : text) {
    if (c == '"') out += '"';
    out += c;
  }
  out += '"';
  return true;
}

}  // namespace

KORStatus BBDFilterParser::Format(const BBDExpression* root, std::string& text) const {
  text.clear();
  if (root == nullptr || !Formatter(m_Variables).Expression(root, text)) {
    text.clear();
    return KOR_E_FAIL;
  }
  return KOR_S_OK;
}
