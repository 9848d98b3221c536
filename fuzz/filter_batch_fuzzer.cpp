// The column evaluator on fuzzed trees and columns: when it accepts a
// tree, every row's answer is what `eval` answers through a reader over
// the same columns, for both case settings, and Select picks exactly the
// rows that hold; when it refuses one, it writes nothing.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "filter/column_table.h"
#include "filter/random_filters.h"
#include "fixed_filter_reader.h"
#include "fuzz_check.h"
#include "idxbase/filter_batch.h"

namespace {

using idxbase_fuzz::Check;
using idxbase_test::ColumnTable;

class Builder {
 public:
  Builder(FuzzedDataProvider& in, const char* const* user) : in_(in), user_(user) {}

  BBDExpression* Expression(int depth) {
    const int kind = in_.ConsumeIntegralInRange(0, depth >= 4 ? 1 : 4);
    if (kind == 0) return nullptr;
    if (kind == 1 || kind == 2) {
      const auto op = static_cast<IDX_Filter_Operator>(in_.ConsumeIntegralInRange(-1, 42));
      BBDOperand* first = Operand(0);
      BBDOperand* second = Operand(0);
      return new BBDBasicExpression(op, first, second, Operand(0));
    }
    const auto op = static_cast<IDX_Filter_Operator>(in_.ConsumeIntegralInRange(0, 3));
    BBDExpression* first = Expression(depth + 1);
    return new BBDComposedExpression(op, first, Expression(depth + 1));
  }

 public:
  // Any bit pattern: NaNs, infinities and signed zeros included.
  float Float() {
    const std::uint32_t bits = in_.ConsumeIntegral<std::uint32_t>();
    float value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
  }
  // A few days around two dates, so that times often share a day.
  std::int64_t Seconds() {
    const std::int64_t base = in_.ConsumeBool() ? 0 : 1795305600;
    return base + in_.ConsumeIntegralInRange<std::int64_t>(-2 * 86400, 2 * 86400);
  }

 private:
  BBDOperand* Operand(int depth) {
    switch (in_.ConsumeIntegralInRange(0, depth > 0 ? 8 : 9)) {
      case 0:
        return nullptr;
      case 1:
        return new BBDNAOperand();
      case 2:
        return new BBDOperandIntConst(in_.ConsumeIntegralInRange(-3, 3));
      case 3:
        return new BBDOperandFloatConst(Float());
      case 4:
        return new BBDOperandBooleanConst(in_.ConsumeBool());
      case 5:
        return new BBDOperandStringConst(strdup(in_.ConsumeRandomLengthString(6).c_str()));
      case 6:
        return new BBDOperandTimeConst(KORTime::FromEpochSeconds(Seconds()));
      case 7:
        return new BBDOperandStringUser(user_);
      case 8: {
        const int type = in_.ConsumeIntegralInRange(0, idxbase_test::kColumnTypes - 1);
        const int attribute = in_.ConsumeIntegralInRange(0, idxbase_test::kColumnAttributes - 1);
        const auto valueType = static_cast<IDX_Filter_ValueType>(in_.ConsumeIntegralInRange(0, 6));
        return new BBDOperandAttribute(new AttributeTypePair(type, attribute), valueType);
      }
      default: {
        auto* set = new BBDOperandSet();
        for (int n = in_.ConsumeIntegralInRange(0, 5); n > 0; --n) set->Append(Operand(depth + 1));
        return set;
      }
    }
  }

  FuzzedDataProvider& in_;
  const char* const* user_;
};

void Fill(FuzzedDataProvider& in, Builder& values, ColumnTable& table) {
  table.rows =
      in.ConsumeBool() ? in.ConsumeIntegralInRange(2040, 2100) : in.ConsumeIntegralInRange(0, 40);
  for (auto& ofType : table.of) {
    for (idxbase_test::Column& c : ofType) {
      for (std::int64_t row = 0; row < table.rows; ++row) {
        const bool available = in.ConsumeIntegralInRange(0, 7) != 0;
        c.Add(row, available, in.ConsumeIntegralInRange(-3, 3), values.Float(), in.ConsumeBool(),
              values.Seconds(), in.ConsumeRandomLengthString(5));
      }
    }
  }
}

void Agrees(BBDExpression* tree, const ColumnTable& table) {
  BBDFilterBatch batch(tree);
  Check(table.BindAll(batch), "a column could not be bound");
  idxbase_test::ColumnReader reader(table);
  idxbase_fuzz::OneLevel occurrence;
  for (bool caseSensitive : {true, false}) {
    std::vector<KORStatus> results(static_cast<std::size_t>(table.rows) + 1, 7);
    if (batch.Evaluate(table.rows, results.data(), caseSensitive) != KOR_S_OK) {
      Check(results[0] == 7, "a refused call wrote answers");
      std::vector<std::int64_t> rows(static_cast<std::size_t>(table.rows) + 1);
      Check(batch.Select(table.rows, rows.data(), caseSensitive) == -1,
            "Select accepted what Evaluate refused");
      return;
    }
    std::vector<std::int64_t> holding;
    for (reader.row = 0; reader.row < table.rows; ++reader.row) {
      const KORStatus expected = tree->eval(occurrence, 0, reader, caseSensitive);
      Check(results[static_cast<std::size_t>(reader.row)] == expected,
            "an answer differs from eval");
      if (expected == IDX_FILTER_HOLDS) holding.push_back(reader.row);
    }
    std::vector<std::int64_t> selected(static_cast<std::size_t>(table.rows) + 1);
    selected.resize(
        static_cast<std::size_t>(batch.Select(table.rows, selected.data(), caseSensitive)));
    Check(selected == holding, "Select differs from the rows that hold");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider in(data, size);
  const std::string user = in.ConsumeRandomLengthString(6);
  const char* userVariable = in.ConsumeBool() ? user.c_str() : nullptr;
  Builder builder(in, &userVariable);
  BBDExpression* tree = builder.Expression(0);
  if (in.ConsumeBool()) BBDExpression::Compile(tree);
  std::unique_ptr<BBDExpression> owner(tree);
  ColumnTable table;
  Fill(in, builder, table);
  if (tree != nullptr) Agrees(tree, table);
  return 0;
}
