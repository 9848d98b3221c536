// The column evaluator against per-record evaluation: random trees over
// random columns must answer row by row what eval answers through a reader
// over the same columns; Arrow arrays of every accepted format read as the
// plain columns do.
#include "idxbase/filter_batch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "column_table.h"
#include "filter_test_support.h"
#include "random_filters.h"
#include "support/stdout_capture.h"

namespace {

using idxbase_test::Generator;
using idxbase_test::Type;

constexpr KORStatus H = IDX_FILTER_HOLDS;
constexpr KORStatus D = IDX_FILTER_DOES_NOT;

BBDOperand* Int(int value) { return new BBDOperandIntConst(value); }
BBDOperand* Float(float value) { return new BBDOperandFloatConst(value); }
BBDOperand* Bool(bool value) { return new BBDOperandBooleanConst(value); }
BBDOperand* String(const char* text) { return new BBDOperandStringConst(strdup(text)); }
BBDOperand* Time(const KORTime& time) { return new BBDOperandTimeConst(time); }
// The attribute of pair (0, attribute), read as `type`.
BBDOperand* Column(IDX_Filter_ValueType type = IDX_Filter_Type_Int, int attribute = 0) {
  return new BBDOperandAttribute(new AttributeTypePair(0, attribute), type);
}
BBDExpression* Compare(int op, BBDOperand* a, BBDOperand* b, BBDOperand* c = nullptr) {
  return new BBDBasicExpression(static_cast<IDX_Filter_Operator>(op), a, b, c);
}
BBDExpression* Compose(int op, BBDExpression* a, BBDExpression* b) {
  return new BBDComposedExpression(static_cast<IDX_Filter_Operator>(op), a, b);
}

// Random columns, some rows not available.
idxbase_test::ColumnTable RandomColumns(Generator& g, std::int64_t rows) {
  idxbase_test::ColumnTable table;
  table.rows = rows;
  for (auto& ofType : table.of) {
    for (idxbase_test::Column& c : ofType) {
      for (std::int64_t row = 0; row < rows; ++row) {
        c.Add(row, !g.Chance(10), g.Int(), g.Float(), g.Chance(50),
              g.Time().ToKORTime().GetEpochSeconds(), g.String());
      }
    }
  }
  return table;
}

// Whether a model has every part that evaluation needs: an expression
// missing, or an operator without evaluation, makes eval print a message
// for every row, and the batch refuses such trees.
bool Whole(const idxbase_test::Expr& e) {
  using idxbase_test::ExprModel;
  if (!e) return false;
  if (e->kind == ExprModel::kBasic) {
    return idxbase_test::MeaningOf(e->op).comparison != idxbase_test::Comparison::kNone;
  }
  if (e->op == IDX_Filter_Op_Not) return Whole(e->first);
  if (e->op == IDX_Filter_Op_Or || e->op == IDX_Filter_Op_And) {
    return Whole(e->first) && Whole(e->second);
  }
  return e->first != nullptr;
}

struct Tally {
  int trees = 0;
  int accepted = 0;
  std::int64_t rows = 0;
  std::int64_t answers[3] = {};
};

// Evaluates `tree` both ways for every row and case setting; the first
// disagreement, or an empty text. (Compiling writes warnings on standard
// output, which the test captures, gtest's reports with them: failures are
// reported once it is back.)
std::string Disagreement(BBDExpression* tree, const idxbase_test::ColumnTable& columns,
                         bool mustAccept, Tally& tally) {
  BBDFilterBatch batch(tree);
  if (!columns.BindAll(batch)) return "a column could not be bound";
  idxbase_test::ColumnReader reader(columns);
  idxbase_test::FakeOccurrence occurrence;
  for (bool caseSensitive : {true, false}) {
    std::vector<KORStatus> results(static_cast<std::size_t>(columns.rows), 7);
    if (batch.Evaluate(columns.rows, results.data(), caseSensitive) != KOR_S_OK) {
      if (mustAccept) return "a whole tree was refused";
      if (!results.empty() && results[0] != 7) return "a refused call wrote answers";
      return "";
    }
    ++tally.accepted;
    std::vector<std::int64_t> holding;
    for (reader.row = 0; reader.row < columns.rows; ++reader.row) {
      const KORStatus expected = tree->eval(occurrence, 0, reader, caseSensitive);
      const KORStatus got = results[static_cast<std::size_t>(reader.row)];
      if (got != expected) {
        return "row " + std::to_string(reader.row) + " case " + std::to_string(caseSensitive) +
               ": eval " + std::to_string(expected) + ", batch " + std::to_string(got);
      }
      if (expected == H) holding.push_back(reader.row);
      ++tally.answers[expected == H ? 0 : (expected == D ? 1 : 2)];
    }
    tally.rows += columns.rows;
    std::vector<std::int64_t> selected(static_cast<std::size_t>(columns.rows));
    selected.resize(
        static_cast<std::size_t>(batch.Select(columns.rows, selected.data(), caseSensitive)));
    if (selected != holding) return "Select differs from the rows that hold";
  }
  return "";
}

TEST(FilterBatch, AnswersAsEvalDoesForRandomTreesAndColumns) {
  Generator generator(20261124);
  generator.attributesInSets = false;
  const char* userVariable = nullptr;
  const idxbase_test::TreeBuilder builder(&userVariable);
  Tally tally;
  std::string failure;
  idxbase_test::StdoutCapture compileWarnings;
  // 600 trees (about 1,000,000 row evaluations) for the soak's count.
  const int trees =
      std::max(30, static_cast<int>(600LL * idxbase_test::SoakEvaluations() / 1000000));
  for (int t = 0; t < trees && failure.empty(); ++t) {
    const idxbase_test::Expr model = generator.Tree(0);
    if (!model) continue;
    // Row counts around the chunk size (2,048) now and then.
    const std::int64_t rows =
        generator.Chance(5) ? generator.Uniform(2040, 4200) : generator.Uniform(0, 120);
    const idxbase_test::ColumnTable columns = RandomColumns(generator, rows);
    const std::string user = generator.String();
    userVariable = generator.Chance(15) ? nullptr : user.c_str();
    std::unique_ptr<BBDExpression> uncompiled(builder.Build(model));
    BBDExpression* compiled = uncompiled->Duplicate();
    BBDExpression::Compile(compiled);
    std::unique_ptr<BBDExpression> compiledOwner(compiled);
    ++tally.trees;
    failure = Disagreement(uncompiled.get(), columns, Whole(model), tally);
    if (failure.empty() && compiled != nullptr) {
      failure = Disagreement(compiled, columns, false, tally);
      if (!failure.empty()) failure += " (compiled)";
    }
    if (!failure.empty())
      failure += " in tree " + std::to_string(t) + " " + idxbase_test::Rendered(*uncompiled);
  }
  compileWarnings.Finish();
  ASSERT_EQ("", failure);
  // Most trees are whole, and every answer is reached.
  EXPECT_GT(tally.accepted, tally.trees);
  for (std::int64_t answers : tally.answers) EXPECT_GT(answers, tally.rows / 10);
}

// Constants, sets and user strings are read at each call.
TEST(FilterBatch, SeesAssignmentsAndVariablesBetweenCalls) {
  const std::int32_t counts[] = {1, 2, 3};
  auto* bound = new BBDOperandIntConst(2);
  auto* set = new BBDOperandSet(Int(3));
  const char* word = "b";
  BBDExpression* tree = Compose(
      IDX_Filter_Op_Or, Compare(IDX_Filter_Op_LowerInt, Column(), bound),
      Compose(IDX_Filter_Op_And, Compare(IDX_Filter_Op_InInt, Column(), set),
              Compare(IDX_Filter_Op_EqualString, new BBDOperandStringUser(&word), String("a"))));
  std::unique_ptr<BBDExpression> owner(tree);
  BBDFilterBatch batch(tree);
  ASSERT_EQ(KOR_S_OK, batch.BindInt(AttributeTypePair(0, 0), counts, nullptr));
  std::int64_t rows[3];
  ASSERT_EQ(1, batch.Select(3, rows, true));  // count < 2
  *bound = BBDOperandIntConst(3);
  ASSERT_EQ(2, batch.Select(3, rows, true));  // count < 3
  word = "a";
  ASSERT_EQ(3, batch.Select(3, rows, true));  // ... or count in {3} and "a" = "a"
  word = nullptr;                             // the user string gives no value
  ASSERT_EQ(2, batch.Select(3, rows, true));
  word = "a";
  *set = BBDOperandSet(Int(7));
  ASSERT_EQ(2, batch.Select(3, rows, true));
}

TEST(FilterBatch, RefusesWhatItCannotEvaluateAndWritesNothing) {
  struct Derived : BBDOperandIntConst {
    using BBDOperandIntConst::BBDOperandIntConst;
  };
  const std::int32_t values[] = {1, 2};
  const struct {
    const char* what;
    BBDExpression* tree;
  } rows[] = {
      {"a pair not bound", Compare(IDX_Filter_Op_EqualInt, Column(IDX_Filter_Type_Int, 1), Int(1))},
      {"a caller's operand", Compare(IDX_Filter_Op_EqualInt, Column(), new Derived(1))},
      {"a multi-type operand",
       Compare(IDX_Filter_Op_EqualInt,
               new BBDOperandMultiType(KORListPtrBBDTypeInfo(), new AttributeTypePair(0, 0),
                                       IDX_Filter_Type_Int),
               Int(1))},
      {"an attribute in a set", Compare(IDX_Filter_Op_InInt, Int(1), new BBDOperandSet(Column()))},
      {"an and without second side",
       Compose(IDX_Filter_Op_And, Compare(IDX_Filter_Op_EqualInt, Column(), Int(1)), nullptr)},
      {"an operator without evaluation", Compare(IDX_Filter_Op_KindOf, Column(), Int(1))},
  };
  for (const auto& row : rows) {
    std::unique_ptr<BBDExpression> owner(row.tree);
    BBDFilterBatch batch(row.tree);
    ASSERT_EQ(KOR_S_OK, batch.BindInt(AttributeTypePair(0, 0), values, nullptr));
    KORStatus answers[2] = {7, 7};
    std::int64_t selected[2];
    EXPECT_EQ(KOR_E_FAIL, batch.Evaluate(2, answers, true)) << row.what;
    EXPECT_EQ(7, answers[0]) << row.what;
    EXPECT_EQ(-1, batch.Select(2, selected, true)) << row.what;
  }
}

// ---------------------------------------------------------------------
// Arrow arrays, built by hand.

struct ArrowColumn {
  ArrowSchema schema{};
  ArrowArray array{};
  const void* buffers[3] = {};

  ArrowColumn(const ArrowColumn&) = delete;  // the array points into this object
  ArrowColumn(const char* format, std::int64_t length, std::int64_t offset, const void* validity,
              const void* values, const void* bytes = nullptr) {
    schema.format = format;
    buffers[0] = validity;
    buffers[1] = values;
    buffers[2] = bytes;
    array.length = length;
    array.offset = offset;
    array.null_count = validity != nullptr ? -1 : 0;
    array.n_buffers = bytes != nullptr ? 3 : 2;
    array.buffers = buffers;
  }
};

// Answers of `op` (subject: the Arrow column; then `value` and `upper`) for
// `rows` rows, as letters: H holds, D does not, U undecidable.
std::string Answers(const ArrowColumn& column, IDX_Filter_Operator op, BBDOperand* value,
                    BBDOperand* upper, std::int64_t rows) {
  std::unique_ptr<BBDExpression> tree(
      Compare(op, Column(IDX_Filter_Infos::OperatorType[op]), value, upper));
  BBDFilterBatch batch(tree.get());
  std::vector<KORStatus> answers(static_cast<std::size_t>(rows), 7);
  if (batch.BindArrow(AttributeTypePair(0, 0), &column.schema, &column.array) != KOR_S_OK ||
      batch.Evaluate(rows, answers.data(), true) != KOR_S_OK) {
    return answers[0] == 7 ? "refused" : "refused after writing";
  }
  std::string letters;
  for (KORStatus answer : answers) letters += answer == H ? 'H' : answer == D ? 'D' : 'U';
  return letters;
}

TEST(FilterBatch, ReadsArrowColumnsWithOffsetsAndNulls) {
  // Rows after an offset of 1: the second value is null in each column.
  const std::uint8_t validity[] = {0b1011};
  const std::int32_t ints[] = {9, 5, 5, 6};
  const float floats[] = {9, 5, 5, 6};
  const double doubles[] = {9, 5.0000001, 5, 6};  // narrows to 5
  const std::uint8_t bits[] = {0b1010};
  const std::int32_t offsets[] = {0, 1, 3, 5, 7};
  const char bytes[] = "xababac";
  const std::int64_t largeOffsets[] = {0, 1, 3, 5, 7};
  const std::int64_t day = 19000;  // 2022-01-08
  const std::int64_t ms[] = {0, (day * 86400 + 3600) * 1000, 0, -1};
  const std::int64_t us[] = {0, (day * 86400 + 3600) * 1000000, 0, -1};
  const std::int64_t ns[] = {0, (day * 86400 + 3600) * 1000000000, 0, -1};
  const std::int64_t s[] = {0, day * 86400 + 3600, 0, -1};
  const std::int32_t days[] = {0, static_cast<std::int32_t>(day), 0, 0};
  const KORTime midnight = KORTime::FromEpochSeconds(day * 86400);
  const KORTime beforeEpoch = KORTime::FromEpochSeconds(-1);
  // Timestamps have no nulls; -1 ms falls in the second before 1970, not in
  // its first second. A date reads as midnight UTC of its day.
  const struct {
    ArrowColumn column;
    IDX_Filter_Operator op;
    BBDOperand* value;
    const char* expected;
    BBDOperand* upper = nullptr;
    std::int64_t rows = 3;
  } rows[] = {
      // clang-format off
      {{"i", 3, 1, validity, ints}, IDX_Filter_Op_EqualInt, Int(5), "HUD"},
      {{"f", 3, 1, validity, floats}, IDX_Filter_Op_EqualFloat, Float(5), "HUD"},
      {{"g", 3, 1, validity, doubles}, IDX_Filter_Op_EqualFloat, Float(5), "HUD"},
      {{"b", 3, 1, validity, bits}, IDX_Filter_Op_EqualBoolean, Bool(true), "HUH"},
      {{"u", 3, 1, validity, offsets, bytes}, IDX_Filter_Op_EqualString, String("ab"), "HUD"},
      {{"U", 3, 1, validity, largeOffsets, bytes}, IDX_Filter_Op_EqualString, String("ab"), "HUD"},
      {{"tsm:UTC", 3, 1, nullptr, ms}, IDX_Filter_Op_LowerTime, Time(midnight), "DHH"},
      {{"tsm:", 3, 1, nullptr, ms}, IDX_Filter_Op_HigherTime, Time(beforeEpoch), "HHD"},
      {{"tss:", 3, 1, nullptr, s}, IDX_Filter_Op_HigherTime, Time(beforeEpoch), "HHD"},
      {{"tsu:", 3, 1, nullptr, us}, IDX_Filter_Op_HigherTime, Time(beforeEpoch), "HHD"},
      {{"tsn:Europe/Paris", 3, 1, nullptr, ns}, IDX_Filter_Op_LowerTime, Time(midnight), "DHH"},
      {{"tdD", 3, 1, validity, days}, IDX_Filter_Op_BetweenTime, Time(midnight), "HUD",
       Time(midnight)},
      // More rows than the array holds.
      {{"i", 3, 1, validity, ints}, IDX_Filter_Op_EqualInt, Int(5), "refused", nullptr, 4},
      // clang-format on
  };
  for (const auto& row : rows) {
    EXPECT_EQ(row.expected, Answers(row.column, row.op, row.value, row.upper, row.rows))
        << row.column.schema.format;
  }
}

TEST(FilterBatch, RefusesArrowFormatsItDoesNotRead) {
  const std::int64_t values[] = {1, 2};
  const std::uint8_t noneValid[] = {0};
  BBDFilterBatch batch(nullptr);
  const auto bind = [&batch](const ArrowColumn& column) {
    return batch.BindArrow(AttributeTypePair(0, 0), &column.schema, &column.array);
  };
  for (const char* format : {"l", "s", "tdm", "tss", "z", "+l", ""}) {
    EXPECT_EQ(KOR_E_FAIL, bind(ArrowColumn(format, 2, 0, nullptr, values))) << format;
  }
  ArrowColumn nullsWithoutBitmap("i", 2, 0, nullptr, values);
  nullsWithoutBitmap.array.null_count = 1;
  EXPECT_EQ(KOR_E_FAIL, bind(nullsWithoutBitmap));
  ArrowColumn dictionary("i", 2, 0, noneValid, values);
  ArrowSchema values32{};
  dictionary.schema.dictionary = &values32;
  EXPECT_EQ(KOR_E_FAIL, bind(dictionary));
}

}  // namespace
