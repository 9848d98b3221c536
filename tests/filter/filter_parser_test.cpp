// The filter language: round trips of rendered trees, evaluation of parsed
// filters against plain C++ predicates, typing, variables, errors and
// limits.
#include "idxbase/filter_parser.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "filter_test_support.h"
#include "support/stdout_capture.h"

namespace {

using idxbase_test::FakeOccurrence;

// One record of the test table; an empty optional is "not available".
struct Part {
  std::optional<std::string> name;
  std::optional<float> mass;
  std::optional<int> count;
  std::optional<bool> released;
  std::optional<std::int64_t> modified;  // seconds since the epoch
};

enum Column { kName, kMass, kCount, kReleased, kModified };

// The part's columns: attribute i reads with the pair (7, i).
const BBDFilterSimpleSchema& PartSchema() {
  static const BBDFilterSimpleSchema schema = [] {
    BBDFilterSimpleSchema parts("Part", 7);
    parts.Add("name", IDX_Filter_Type_String);
    parts.Add("mass", IDX_Filter_Type_Float);
    parts.Add("count", IDX_Filter_Type_Int);
    parts.Add("released", IDX_Filter_Type_Boolean);
    parts.Add("modified", IDX_Filter_Type_Time);
    return parts;
  }();
  return schema;
}

// Reads the current part's columns by the pair's attribute number.
class PartReader : public BBDIAttributeRead {
 public:
  const Part* part = nullptr;

  int ReadInt(const BBDOccurrence&, unsigned int, AttributeTypePair* pair, int& value) override {
    return Give(pair, kCount, part->count, value);
  }
  int ReadFloat(const BBDOccurrence&, unsigned int, AttributeTypePair* pair,
                float& value) override {
    return Give(pair, kMass, part->mass, value);
  }
  int ReadString(const BBDOccurrence&, unsigned int, AttributeTypePair* pair, const char*& value,
                 int& length) override {
    if (!Is(pair, kName) || !part->name) return 0;
    value = part->name->c_str();
    length = static_cast<int>(part->name->size());
    return 1;
  }
  int ReadTime(const BBDOccurrence&, unsigned int, AttributeTypePair* pair,
               KORTime& value) override {
    if (!Is(pair, kModified) || !part->modified) return 0;
    value = KORTime::FromEpochSeconds(*part->modified);
    return 1;
  }
  int ReadBool(const BBDOccurrence&, unsigned int, AttributeTypePair* pair, int& value) override {
    return Give(pair, kReleased, part->released, value);
  }
  int IsOfType(const BBDOccurrence&, unsigned int, BBDTypeInfo*, int&) override { return 0; }
  AttributeTypePair ResolvePair(const char*, int, unsigned int) override { return {}; }
  AttributeTypePair ResolveStringPair(const char*, int, unsigned int) override { return {}; }

 private:
  static bool Is(const AttributeTypePair* pair, Column column) {
    return pair != nullptr && pair->GetType() == 7 && pair->GetAttribute() == column;
  }
  // A boolean is given as 1 or 0.
  template <class T, class Out>
  int Give(const AttributeTypePair* pair, Column column, const std::optional<T>& field,
           Out& value) {
    if (!Is(pair, column) || !field) return 0;
    value = *field;
    return 1;
  }
};

// The filter's answer for `part`.
KORStatus Answer(BBDExpression& filter, const Part& part) {
  PartReader reader;
  reader.part = &part;
  return filter.eval(FakeOccurrence(), 0, reader, true);
}

// A missing tree (an or of NA and a missing side compiles to nothing)
// renders as a missing part does.
std::string Render(BBDExpression* expression) {
  if (expression == nullptr) return "NULL";
  KORUnicodeString text;
  expression->toString(text);
  return text.ConvertToChar();
}

// Parses `text` with the part schema; fails the test on a parse error.
std::unique_ptr<BBDExpression> MustParse(const BBDFilterParser& parser, const std::string& text) {
  BBDExpression* root = nullptr;
  BBDFilterParseError error;
  EXPECT_EQ(parser.Parse(text, root, error), KOR_S_OK) << text << "\n" << error.Describe();
  return std::unique_ptr<BBDExpression>(root);
}

BBDFilterParseError MustFail(const BBDFilterParser& parser, const std::string& text) {
  BBDExpression* root = nullptr;
  BBDFilterParseError error;
  EXPECT_EQ(parser.Parse(text, root, error), KOR_E_FAIL) << text;
  EXPECT_EQ(root, nullptr);
  delete root;
  return error;
}

// What Format writes for `tree`, or "refused: " and what it left in the
// text.
std::string Formatted(const BBDFilterParser& parser, const BBDExpression* tree) {
  std::string text = "old";
  const KORStatus status = parser.Format(tree, text);
  return (status == KOR_S_OK ? "" : status == KOR_E_FAIL ? "refused: " : "bad status: ") + text;
}

// ---------------------------------------------------------------------------
// Evaluation: parsed filters against the same conditions written in C++.

// The three-valued value of a C++ condition: nullopt when a value it needs
// is missing.
using Truth = std::optional<bool>;
using Expected = std::function<Truth(const Part&)>;

// The engine's or: decided by any decided side.
Truth Or(Truth a, Truth b) {
  if (a == true || b == true) return true;
  return a == false || b == false ? Truth(false) : std::nullopt;
}
Truth And(Truth a, Truth b) { return a && b ? Truth(*a && *b) : std::nullopt; }
Truth Not(Truth a) { return a ? Truth(!*a) : std::nullopt; }
template <class T, class Test>
Truth If(const std::optional<T>& field, Test test) {
  return field ? Truth(test(*field)) : std::nullopt;
}

std::vector<Part> SampleParts() {
  std::mt19937 random(7);
  std::vector<Part> parts;
  static const char* const kNames[] = {"bolt M6", "Bolt M8", "nut", "washer", "bracket", ""};
  for (int i = 0; i < 400; ++i) {
    Part part;
    if (random() % 9 != 0) part.name = kNames[random() % 6];
    if (random() % 9 != 0) part.mass = static_cast<float>(random() % 100) / 8.0f;
    if (random() % 9 != 0) part.count = static_cast<int>(random() % 20) - 5;
    if (random() % 9 != 0) part.released = random() % 2 == 0;
    if (random() % 9 != 0)
      part.modified = 1763800000 + static_cast<std::int64_t>(random() % 200000);
    parts.push_back(part);
  }
  return parts;
}

// Every column of a part, for failure messages.
std::string Describe(const Part& p) {
  using testing::PrintToString;
  return "name " + PrintToString(p.name) + ", mass " + PrintToString(p.mass) + ", count " +
         PrintToString(p.count) + ", released " + PrintToString(p.released) + ", modified " +
         PrintToString(p.modified);
}

TEST(FilterParserEvaluation, ParsedFiltersDecideLikeTheirCppConditions) {
  BBDFilterParser parser(&PartSchema());
  static constexpr std::int64_t kNoon = 1763812800;  // 2025-11-22T12:00:00Z
  const struct {
    const char* filter;
    Expected expected;
  } kCases[] = {
      {"count > 3 AND mass <= 4.5 OR NOT released = true",
       [](const Part& p) {
         return Or(And(If(p.count, [](int c) { return c > 3; }),
                       If(p.mass, [](float m) { return m <= 4.5f; })),
                   Not(If(p.released, [](bool r) { return r; })));
       }},
      {"count > 3 AND (mass <= 4.5 OR NOT released = true)",
       [](const Part& p) {
         return And(If(p.count, [](int c) { return c > 3; }),
                    Or(If(p.mass, [](float m) { return m <= 4.5f; }),
                       Not(If(p.released, [](bool r) { return r; }))));
       }},
      // The operator carries the float type: integer constants become
      // floats beside float ones.
      {"mass BETWEEN 2 AND 5.5",
       [](const Part& p) { return If(p.mass, [](float m) { return m >= 2 && m <= 5.5f; }); }},
      {"mass IN {2 2.25}",
       [](const Part& p) { return If(p.mass, [](float m) { return m == 2 || m == 2.25f; }); }},
      {"count IN {1, -2 3}",
       [](const Part& p) {
         return If(p.count, [](int c) { return c == 1 || c == -2 || c == 3; });
       }},
      {"name LIKE 'olt'",  // LIKE patterns are found anywhere in the subject
       [](const Part& p) {
         return If(p.name, [](const std::string& n) { return n.find("olt") != std::string::npos; });
       }},
      {"name NOT LIKE \"*t*\"",
       [](const Part& p) {
         return If(p.name, [](const std::string& n) { return n.find('t') == std::string::npos; });
       }},
      {"name >= \"nut\" | count <> 0",
       [](const Part& p) {
         return Or(If(p.name, [](const std::string& n) { return n >= "nut"; }),
                   If(p.count, [](int c) { return c != 0; }));
       }},
      {"modified < @2025-11-22T12:00:00Z & released != false",
       [](const Part& p) {
         return And(If(p.modified, [](std::int64_t t) { return t < kNoon; }),
                    If(p.released, [](bool r) { return r; }));
       }},
      {"NOT NOT count = NAOperand OR mass > 10",  // the NA side of the or folds away
       [](const Part& p) { return If(p.mass, [](float m) { return m > 10; }); }},
  };
  for (const auto& c : kCases) {
    const auto filter = MustParse(parser, c.filter);
    ASSERT_NE(filter, nullptr);
    int decided = 0;
    for (const Part& part : SampleParts()) {
      const Truth expected = c.expected(part);
      const KORStatus want = !expected   ? IDX_FILTER_UNDECIDABLE
                             : *expected ? IDX_FILTER_HOLDS
                                         : IDX_FILTER_DOES_NOT;
      ASSERT_EQ(Answer(*filter, part), want) << c.filter << "\n" << Describe(part);
      decided += expected ? 1 : 0;
    }
    EXPECT_GT(decided, 100) << c.filter;  // the sample exercises both answers
  }
}

TEST(FilterParserEvaluation, VariablesAreReadAtEveryEvaluation) {
  BBDFilterParser parser(&PartSchema());
  const char* wanted = "nut";
  parser.BindVariable("wanted", &wanted);
  const auto filter = MustParse(parser, "name = $wanted");
  ASSERT_NE(filter, nullptr);
  Part nut;
  nut.name = "nut";
  EXPECT_EQ(Answer(*filter, nut), IDX_FILTER_HOLDS);
  wanted = "bolt";
  EXPECT_EQ(Answer(*filter, nut), IDX_FILTER_DOES_NOT);
  EXPECT_EQ(MustFail(parser, "name = $other").message, "unknown variable '$other'");
}

// ---------------------------------------------------------------------------
// Typing and rendering of the infix form.

TEST(FilterParserTyping, ChoosesTypedOperatorsAndPromotesIntegerConstants) {
  BBDFilterParser parser(&PartSchema());
  const struct {
    const char* text;
    const char* rendering;
  } kCases[] = {
      {"mass = 2", "( Part.mass = 2.000000000 )"},
      {"3 < mass", "( 3.000000000 < Part.mass )"},
      {"Part.count BETWEEN -1 7", "( Part.count BETWEEN -1 7 )"},
      {"mass IN {1 2.5}", "( Part.mass IN  )"},
      {"released <> TRUE", "( Part.released <> true )"},
      {"name = 'it''s' OR name = \"say \"\"hi\"\"\"",
       "( ( Part.name = \"it's\" ) | ( Part.name = \"say \"hi\"\" ) )"},
  };
  for (const auto& c : kCases) EXPECT_EQ(Render(MustParse(parser, c.text).get()), c.rendering);

  const struct {
    const char* text;
    const char* message;
  } kErrors[] = {
      {"count = 2.5", "type mismatch: 'count' is an integer but '2.5' is a float"},
      {"name = 3", "type mismatch: '3' is an integer but 'name' is a string"},
      {"released < true", "'<' does not apply to a boolean value"},
      {"count LIKE 3", "'LIKE' does not apply to an integer value"},
      {"modified IN {@2026-01-01}", "'IN' does not apply to a time value"},
      {"mass IN {1 \"x\"}", "type mismatch: '\"x\"' is a string but 'mass' is a float"},
      {"weight > 1", "unknown attribute 'weight'"},
      {"Other.mass > 1", "unknown attribute 'Other.mass'"},
  };
  for (const auto& c : kErrors) EXPECT_EQ(MustFail(parser, c.text).message, c.message) << c.text;
}

// ---------------------------------------------------------------------------
// Errors: position, message and caret; limits.

TEST(FilterParserErrors, NameTheLineAndColumnAndPointAtTheFault) {
  BBDFilterParser parser(&PartSchema());
  const struct {
    const char* text;
    int line;
    int column;
    const char* message;
  } kCases[] = {
      {"", 1, 1, "expected an operand, found the end of the filter"},
      {"count >", 1, 8, "expected an operand, found the end of the filter"},
      {"count 3", 1, 7,
       "expected a comparison (=, <>, <, <=, >, >=, BETWEEN, IN, LIKE, NOT_LIKE) after 'count'"},
      {"(count = 1", 1, 11, "expected ')' to close the '(' at line 1, column 1"},
      {"count = 1)", 1, 10, "expected AND, OR or the end of the filter"},
      {"count = 1 AND\n  name = \"x", 2, 10, "unterminated string"},
      {"name = \"é\" AND # ", 1, 16, "unexpected character '#'"},
      {"count = 99999999999", 1, 9, "integer out of range"},
      {"mass = 1e39", 1, 8, "float out of range"},
      {"count = 12abc", 1, 9, "malformed number"},
      {"modified = @2026-02-29", 1, 12,
       "invalid date or time '@2026-02-29' (write @YYYY-MM-DD or @YYYY-MM-DDTHH:MM:SS)"},
      {"count = AND", 1, 9, "expected an operand, found 'AND'"},
      {"count IN 1", 1, 10, "expected '{' to open the set of IN"},
      {"name NOT = 'x'", 1, 10, "expected LIKE after NOT"},
      {"NULL", 1, 1, "NULL stands for a missing part and cannot be the whole filter"},
      {"count = $", 1, 9, "expected a variable name after '$'"},
  };
  for (const auto& c : kCases) {
    const BBDFilterParseError error = MustFail(parser, c.text);
    EXPECT_EQ(error.message, c.message) << c.text;
    EXPECT_EQ(error.line, c.line) << c.text;
    EXPECT_EQ(error.column, c.column) << c.text;
  }
  const BBDFilterParseError error = MustFail(parser, "count = 1 AND\n\tname é= 2");
  EXPECT_EQ(error.Describe(),
            "line 2, column 7: unexpected character 'é'\n\tname é= 2\n\t     ^\n");
}

TEST(FilterParserErrors, DeepNestingIsRefusedNotOverflowed) {
  BBDFilterParser parser(&PartSchema());
  for (const char open : {'(', '!'}) {
    EXPECT_EQ(MustFail(parser, std::string(100000, open)).message,
              "more than 1024 parentheses and NOTs nested");
  }
  // 255 nots over a comparison: 256 levels, rendered with 510 nestings.
  const auto nots = MustParse(parser, std::string(255, '!') + "count = 1");
  EXPECT_NE(MustParse(parser, Render(nots.get())), nullptr);
  std::string chain = "count = 0";
  for (int i = 1; i < 256; ++i) chain += " OR count = " + std::to_string(i);
  EXPECT_NE(MustParse(parser, chain), nullptr);  // 255 ors: 256 levels
  for (const std::string& deeper :
       {std::string(256, '!') + "count = 1", chain + " OR count = 256"}) {
    EXPECT_EQ(MustFail(parser, deeper).message, "filter nested deeper than 256 levels");
  }
  EXPECT_EQ(MustFail(BBDFilterParser(), "count = 1").message, "unknown attribute 'count'");
}

// Valid texts read as glibc's strptime and timegm read them.
TEST(FilterParserTime, ReadsIsoDatesAsUtcAndRefusesImpossibleDays) {
  for (const char* text : {"1970-01-01", "2000-02-29T12:00:00", "2026-11-22T10:30:00Z",
                           "1900-03-01", "9999-12-31T23:59:59", "1969-12-31T23:59:59"}) {
    std::tm fields{};
    const char* format = std::strlen(text) > 10 ? "%Y-%m-%dT%H:%M:%S" : "%Y-%m-%d";
    ASSERT_NE(strptime(text, format, &fields), nullptr) << text;
    KORTime time = KORTime::FromEpochSeconds(-1);
    ASSERT_TRUE(BBDFilterParser::ParseTime(text, time)) << text;
    EXPECT_EQ(time.GetEpochSeconds(), timegm(&fields)) << text;
  }
  for (const char* text : {"2026-02-29", "1900-02-29", "2026-13-01", "2026-04-31", "2026-00-10",
                           "2026-11-22T24:00:00", "2026-11-22T10:60:00", "2026-11-22T10:30",
                           "2026-11-2", "0000-01-01", "2026-11-22Z1", "2026/11/22", ""}) {
    KORTime time = KORTime::FromEpochSeconds(42);
    EXPECT_FALSE(BBDFilterParser::ParseTime(text, time)) << text;
    EXPECT_EQ(time.GetEpochSeconds(), 42) << text;
  }
}

// ---------------------------------------------------------------------------
// Format: trees written back as filter text.

TEST(FilterParserFormat, WritesEachFormAsFilterText) {
  static const char* wanted = "nut";
  BBDFilterParser parser(&PartSchema());
  parser.BindVariable("who", &wanted);
  parser.SetCompile(false);
  const struct {
    const char* filter;
    const char* text;
  } kCases[] = {
      {"count IN {1, -2 3}", "Part.count IN {1, -2, 3}"},
      {"mass BETWEEN 1e-3 AND 2", "Part.mass BETWEEN 0.001 AND 2.0"},
      {"mass > 3.4028235e38 OR mass < -0.0", "(Part.mass > 3.4028235e+38 OR Part.mass < -0.0)"},
      {"name = 'say \"hi\"' AND name IN {$who}",
       "(Part.name = \"say \"\"hi\"\"\" AND Part.name IN {$who})"},
      {"modified >= @0001-01-01 | modified < @2026-11-22T10:30:05Z",
       "(Part.modified >= @0001-01-01T00:00:00 OR Part.modified < @2026-11-22T10:30:05)"},
      {"NOT NOT released <> true", "NOT NOT Part.released <> true"},
      {"name NOT LIKE 'a*b' & NULL", "(Part.name NOT_LIKE \"a*b\" AND NULL)"},
      {"( NAExpression | ( NullOperand = NAOperand ) )",
       "(NAExpression OR NullOperand = NAOperand)"},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(Formatted(parser, MustParse(parser, c.filter).get()), c.text) << c.filter;
  }
  // What the language cannot write: a variable this parser does not bind,
  // an operator without a spelling, an infinite float, no tree at all.
  const char* unbound = "x";
  const BBDBasicExpression variable(IDX_Filter_Op_EqualString, new BBDOperandStringUser(&unbound),
                                    new BBDOperandStringConst(nullptr));
  const BBDBasicExpression kindOf(IDX_Filter_Op_KindOf, new BBDNAOperand(), new BBDOperandSet());
  const BBDBasicExpression infinite(IDX_Filter_Op_EqualFloat, new BBDNAOperand(),
                                    new BBDOperandFloatConst(INFINITY));
  for (const BBDExpression* tree :
       std::initializer_list<const BBDExpression*>{&variable, &kindOf, &infinite, nullptr}) {
    EXPECT_EQ(Formatted(parser, tree), "refused: ");
  }
}

// Random filter text over every operand form the parser reads.
// Times render as local dates, sets and variables render no text, and
// strings render between bare quotes, so only filters without these read
// back from their rendering.
class FilterTextGenerator {
 public:
  explicit FilterTextGenerator(unsigned seed) : random_(seed) {}

  // Whether the last filter's rendering reads back.
  bool renderable = true;

  std::string Filter(int depth) {
    renderable = true;
    return Expression(depth);
  }

 private:
  std::string Expression(int depth) {
    const int pick = Below(depth <= 0 ? 6 : 10);
    if (pick < 5) return Comparison();
    if (pick == 5) return Below(3) == 0 ? "NAExpression" : Comparison();
    if (pick == 6) return "NOT " + Side(depth);
    return "(" + Side(depth) + (Below(2) == 0 ? " AND " : " OR ") + Side(depth) + ")";
  }

  int Below(int n) { return std::uniform_int_distribution<int>(0, n - 1)(random_); }
  std::string Side(int depth) { return Below(15) == 0 ? "NULL" : Expression(depth - 1); }

  std::string Value(int column) {
    switch (column) {
      case kName: {
        if (Below(5) == 0) {
          renderable = false;  // a variable renders as nothing
          return "$who";
        }
        static const char* const kPieces[] = {"olt", "\"\"", "B",   " ", "*",  "é",
                                              "nut", "'",    "AND", "{", "\\", "@x",
                                              "(",   "$x",   "%",   "_", ">="};
        std::string text = "\"";
        for (int i = Below(4); i > 0; --i) {
          const int piece = Below(17);
          renderable = renderable && piece != 1;
          text += kPieces[piece];
        }
        renderable = renderable && text.size() > 1;  // an empty string renders as nothing
        return text + "\"";
      }
      case kMass: {
        static const char* const kFloats[] = {"2.5",     "-1e-3",        "7",    "0.1",
                                              "12.375",  "3.4028235e38", "-0.0", "1e-45",
                                              "1.5e-38", "-123456.7"};
        return kFloats[Below(10)];
      }
      case kCount: {
        static const char* const kExtremes[] = {"-2147483648", "2147483647"};
        return Below(10) == 0 ? kExtremes[Below(2)] : std::to_string(Below(30) - 8);
      }
      case kReleased:
        return Below(2) == 0 ? "true" : "false";
      default: {
        renderable = false;
        char text[64];
        std::snprintf(text, sizeof text, "@%04d-%02d-%02dT%02d:00:00", 1 + Below(2100),
                      1 + Below(12), 1 + Below(28), Below(24));
        return text;
      }
    }
  }

  std::string Comparison() {
    static const char* const kColumns[] = {"name", "mass", "count", "released", "modified"};
    const int column = Below(5);
    const std::string subject = Below(12) == 0   ? "NAOperand"
                                : Below(12) == 0 ? "NullOperand"
                                                 : kColumns[column];
    const int form = Below(column == kReleased ? 3 : 6);
    if (form == 0 && column != kModified) {
      renderable = false;
      std::string set = subject + " IN {";
      for (int i = Below(4); i > 0; --i) set += Value(column) + (Below(2) == 0 ? ", " : " ");
      return set + "}";
    }
    if (form == 1) return subject + (Below(2) == 0 ? " = " : " <> ") + Value(column);
    if (form == 2 && column != kReleased) {
      return subject + " BETWEEN " + Value(column) + " AND " + Value(column);
    }
    if (form == 3 && column == kName) {
      return subject + (Below(2) == 0 ? " LIKE " : " NOT LIKE ") + Value(column);
    }
    static const char* const kOrders[] = {" < ", " <= ", " > ", " >= "};
    return column == kReleased ? subject + " = " + Value(column)
                               : subject + kOrders[Below(4)] + Value(column);
  }

  std::mt19937 random_;
};

// Each generated filter that parses formats to text that parses to a tree
// rendering, formatting and answering the same, compiled or as written;
// and its rendering, where it can be read, parses to the same rendering.
TEST(FilterParserFormat, GeneratedFiltersReadBackAsTheSameFilter) {
  static const char* wanted = "nut";
  const std::vector<Part> parts = SampleParts();
  FilterTextGenerator generator(20261124);
  int checked = 0;
  int rendered = 0;
  idxbase_test::StdoutCapture quiet;  // evaluating a missing part prints
  for (int i = 0; i < 1500; ++i) {
    BBDFilterParser parser(&PartSchema());
    parser.BindVariable("who", &wanted);
    parser.SetCompile(i % 2 == 0);
    const std::string filter = generator.Filter(4);
    BBDExpression* root = nullptr;
    BBDFilterParseError error;
    if (parser.Parse(filter, root, error) != KOR_S_OK) continue;  // a typing error
    const std::unique_ptr<BBDExpression> tree(root);
    const std::string text = Formatted(parser, tree.get());
    const auto again = MustParse(parser, text);
    ASSERT_NE(again, nullptr) << filter;
    ASSERT_EQ(Formatted(parser, again.get()), text) << filter;
    const std::string rendering = Render(tree.get());
    ASSERT_EQ(Render(again.get()), rendering) << filter;
    if (generator.renderable) {
      ASSERT_EQ(Render(MustParse(parser, rendering).get()), rendering) << filter;
      ++rendered;
    }
    for (const Part& part : parts) {
      ASSERT_EQ(Answer(*again, part), Answer(*tree, part)) << filter << "\n" << text;
    }
    ++checked;
  }
  quiet.Finish();
  EXPECT_GT(checked, 600);
  EXPECT_GT(rendered, 200);
}

}  // namespace
