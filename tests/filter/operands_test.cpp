#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "filter_test_support.h"
#include "idxbase/filter_attributes.h"
#include "idxbase/filter_operands.h"
#include "support/stdout_capture.h"

namespace {

using idxbase_test::FakeOccurrence;
using idxbase_test::MockAttributeReader;
using testing::StrictMock;

char* Malloced(const char* text) {
  char* copy = static_cast<char*>(std::malloc(std::strlen(text) + 1));
  std::strcpy(copy, text);
  return copy;
}

std::string Rendered(BBDOperand& operand, const char* initial = "") {
  KORUnicodeString text(initial);
  operand.toString(text);
  return text.ConvertToChar();
}

template <class F>
std::string Printed(F&& f) {
  idxbase_test::StdoutCapture capture;
  f();
  return capture.Finish();
}

// An integer constant that logs its id when destroyed.
class LoggedOperand : public BBDOperandIntConst {
 public:
  LoggedOperand(int id, std::vector<int>* log) : BBDOperandIntConst(id), id_(id), log_(log) {}
  ~LoggedOperand() override { log_->push_back(id_); }

 private:
  int id_;
  std::vector<int>* log_;
};

// What a read needs besides the output; never consulted by these operands.
struct Context {
  FakeOccurrence occurrence{3};
  StrictMock<MockAttributeReader> reader;
};

// Runs every read with sentinel outputs; returns the set of value types
// whose read succeeded, checking that the failed ones kept their output.
unsigned SucceedingReads(BBDOperand& op) {
  Context c;
  unsigned ok = 0;
  auto record = [&ok](IDX_Filter_ValueType type, KORStatus status, bool outputKept) {
    if (status == KOR_S_OK) {
      ok |= 1u << type;
      return;
    }
    EXPECT_EQ(KOR_E_FAIL, status) << "read of type " << type;
    EXPECT_TRUE(outputKept) << "read of type " << type;
  };
  const char* const marker = "m";
  const char* s = marker;
  int n = -77;
  KORStatus status = op.GetValString(c.occurrence, 0, c.reader, s, n);
  record(IDX_Filter_Type_String, status, s == marker && n == -77);
  n = -77;
  status = op.GetValInt(c.occurrence, 0, c.reader, n);
  record(IDX_Filter_Type_Int, status, n == -77);
  float f = -9.5f;
  status = op.GetValFloat(c.occurrence, 0, c.reader, f);
  record(IDX_Filter_Type_Float, status, f == -9.5f);
  bool b = true;
  status = op.GetValBool(c.occurrence, 0, c.reader, b);
  record(IDX_Filter_Type_Boolean, status, b);
  const KORTime sentinel(2001, 2, 3, 4, 5, 6);
  KORTime t = sentinel;
  status = op.GetValTime(c.occurrence, 0, c.reader, t);
  record(IDX_Filter_Type_Time, status, t == sentinel);
  BBDOperandIntConst outsider(0);
  KORListPtrBBDOperand list;
  list.Append(&outsider);
  status = op.GetValSet(c.occurrence, 0, c.reader, list);
  record(IDX_Filter_Type_Set, status,
         list.Size() == 1 && static_cast<BBDOperand*>(list[1]) == &outsider);
  return ok;
}

struct OperandCase {
  const char* label;
  std::function<BBDOperand*()> make;
  IDX_Filter_OperandType operandType;
  IDX_Filter_ValueType valueType;
  const char* rendering;  // toString into an empty text
};

const char* const kUserVariable = "user";

std::vector<OperandCase> AllOperands() {
  return {
      {"na", [] { return new BBDNAOperand(); }, IDX_Filter_Operand_Constant, IDX_Filter_Type_NA,
       "NAOperand"},
      {"int", [] { return new BBDOperandIntConst(7); }, IDX_Filter_Operand_Constant,
       IDX_Filter_Type_Int, "7"},
      {"negative int", [] { return new BBDOperandIntConst(-42); }, IDX_Filter_Operand_Constant,
       IDX_Filter_Type_Int, "-42"},
      {"float", [] { return new BBDOperandFloatConst(1.5f); }, IDX_Filter_Operand_Constant,
       IDX_Filter_Type_Float, "1.500000000"},
      {"false", [] { return new BBDOperandBooleanConst(false); }, IDX_Filter_Operand_Constant,
       IDX_Filter_Type_Boolean, "false"},
      {"true", [] { return new BBDOperandBooleanConst(true); }, IDX_Filter_Operand_Constant,
       IDX_Filter_Type_Boolean, "true"},
      {"string", [] { return new BBDOperandStringConst(Malloced("abc")); },
       IDX_Filter_Operand_Constant, IDX_Filter_Type_String, "\"abc\""},
      {"null string", [] { return new BBDOperandStringConst(nullptr); },
       IDX_Filter_Operand_Constant, IDX_Filter_Type_String, "\"\""},
      {"time", [] { return new BBDOperandTimeConst(KORTime(2020, 1, 1, 0, 0, 0)); },
       IDX_Filter_Operand_Constant, IDX_Filter_Type_Time, "time unsupported"},
      {"user string", [] { return new BBDOperandStringUser(&kUserVariable); },
       IDX_Filter_Operand_User, IDX_Filter_Type_String, ""},
      {"set", [] { return new BBDOperandSet(new BBDOperandIntConst(1)); },
       IDX_Filter_Operand_Constant, IDX_Filter_Type_Set, ""},
  };
}

TEST(Operands, OnlyTheHeldTypeReadsKindsAndRendering) {
  for (const OperandCase& c : AllOperands()) {
    SCOPED_TRACE(c.label);
    std::unique_ptr<BBDOperand> op(c.make());
    EXPECT_EQ(c.operandType, op->GetOperandType());
    EXPECT_EQ(c.valueType, op->GetValueType());
    const unsigned expected = c.valueType == IDX_Filter_Type_NA ? 0u : 1u << c.valueType;
    EXPECT_EQ(expected, SucceedingReads(*op));
    EXPECT_EQ(c.rendering, Rendered(*op));
    if (c.valueType != IDX_Filter_Type_Set) {
      EXPECT_EQ(c.rendering, Printed([&] { op->print(); })) << "print writes the rendering";
    }
  }
}

TEST(Operands, CompileKeepsEveryOperandOfThisHeader) {
  BBDOperand* none = nullptr;
  BBDOperand::Compile(none);
  EXPECT_EQ(nullptr, none);
  for (const OperandCase& c : AllOperands()) {
    SCOPED_TRACE(c.label);
    BBDOperand* op = c.make();
    BBDOperand* const before = op;
    BBDOperand::Compile(op);
    EXPECT_EQ(before, op);
    EXPECT_EQ(c.rendering, Rendered(*op));  // still alive
    delete op;
  }
  std::vector<int> log;
  BBDOperand* set = new BBDOperandSet(new LoggedOperand(1, &log));
  BBDOperand::Compile(set);
  EXPECT_TRUE(log.empty());
  delete set;
  EXPECT_EQ(std::vector<int>{1}, log);
}

// The soak builds no null or empty string constant.
TEST(Operands, EmptyStringConstantsDeliverNoBytes) {
  Context r;
  for (char* empty : {Malloced(""), static_cast<char*>(nullptr)}) {
    BBDOperandStringConst op(empty);
    const char* s = nullptr;
    int length = -1;
    EXPECT_EQ(KOR_S_OK, op.GetValString(r.occurrence, 9, r.reader, s, length));
    EXPECT_EQ(0, length);
    EXPECT_EQ("\"\"", Rendered(op));
  }
}

TEST(Operands, RenderingAppendsOnlyForStringConstants) {
  BBDOperandStringConst abc(Malloced("abc"));
  EXPECT_EQ("x=\"abc\"", Rendered(abc, "x="));
  const char* variable = "v";
  BBDOperandStringUser user(&variable);
  EXPECT_EQ("keep", Rendered(user, "keep"));
  BBDOperandSet set(new BBDOperandIntConst(3));
  EXPECT_EQ("keep", Rendered(set, "keep"));
}

// Rereading the variable is checked by the soak; a failed read keeps the
// outputs, and no variable at all reads as empty.
TEST(Operands, UserStringWithoutVariable) {
  Context r;
  const char* variable = nullptr;
  BBDOperandStringUser op(&variable);
  const char* s = "unchanged";
  const char* const before = s;
  int length = 99;
  EXPECT_EQ(KOR_E_FAIL, op.GetValString(r.occurrence, 0, r.reader, s, length));
  EXPECT_EQ(before, s);
  EXPECT_EQ(99, length);

  BBDOperandStringUser unbound(nullptr);
  EXPECT_EQ(KOR_S_OK, unbound.GetValString(r.occurrence, 0, r.reader, s, length));
  EXPECT_EQ(0, length);
}

TEST(Operands, StringConstantAssignmentCopiesTheBytes) {
  Context r;
  auto source = std::make_unique<BBDOperandStringConst>(Malloced("abc"));
  BBDOperandStringConst target(Malloced("longer text"));
  target = *source;
  const char* fromSource = nullptr;
  const char* fromTarget = nullptr;
  int length = 0;
  source->GetValString(r.occurrence, 0, r.reader, fromSource, length);
  target.GetValString(r.occurrence, 0, r.reader, fromTarget, length);
  EXPECT_NE(fromSource, fromTarget);
  source.reset();  // the target's bytes must survive it
  EXPECT_EQ(KOR_S_OK, target.GetValString(r.occurrence, 0, r.reader, fromTarget, length));
  EXPECT_EQ(3, length);
  EXPECT_EQ("abc", std::string(fromTarget, 3));

  BBDOperandStringConst& alias = target;
  target = alias;
  EXPECT_EQ("\"abc\"", Rendered(target));

  BBDOperandStringConst empty(nullptr);
  target = empty;
  EXPECT_EQ(KOR_S_OK, target.GetValString(r.occurrence, 0, r.reader, fromTarget, length));
  EXPECT_EQ(0, length);
  EXPECT_EQ("\"\"", Rendered(target));
}

TEST(OperandSet, SizeAppendAndPrint) {
  BBDOperandSet empty;
  EXPECT_EQ(0, empty.Size());
  EXPECT_EQ("{ }", Printed([&] { empty.print(); }));

  BBDOperandSet one(new BBDOperandIntConst(7));
  EXPECT_EQ(1, one.Size());
  EXPECT_EQ("{ 7 }", Printed([&] { one.print(); }));

  BBDOperandSet withNull(nullptr);
  EXPECT_EQ(1, withNull.Size());
  EXPECT_EQ(2, withNull.Append(new BBDOperandStringConst(Malloced("abc"))));
  EXPECT_EQ(3, withNull.Append(nullptr));
  EXPECT_EQ(4, withNull.Append(new BBDOperandFloatConst(1.5f)));
  EXPECT_EQ(4, withNull.Size());
  EXPECT_EQ("{ \"abc\" 1.500000000 }", Printed([&] { withNull.print(); }));
}

TEST(OperandSet, GetValSetReplacesTheListContent) {
  Context r;
  BBDOperand* a = new BBDOperandIntConst(1);
  BBDOperand* b = new BBDOperandIntConst(2);
  BBDOperandSet set(a);
  set.Append(nullptr);
  set.Append(b);
  BBDOperandIntConst outsider(0);
  KORListPtrBBDOperand list;
  for (int k = 0; k < 5; ++k) list.Append(&outsider);
  EXPECT_EQ(KOR_S_OK, set.GetValSet(r.occurrence, 0, r.reader, list));
  const KORListPtrBBDOperand& view = list;
  ASSERT_EQ(3, view.Size());
  EXPECT_EQ(a, view[1]);
  EXPECT_EQ(nullptr, view[2]);
  EXPECT_EQ(b, view[3]);
}

// The lists hand out the element pointer itself, so an element can be
// compiled or replaced in place; out of range, a scratch slot that is no
// element.
TEST(OperandLists, SubscriptGivesTheElementPointer) {
  BBDOperandIntConst one(1), two(2);
  KORListPtrBBDOperand operands;
  operands.Append(&one);
  BBDOperand*& first = operands[1];
  first = &two;
  EXPECT_EQ(&two, static_cast<const KORListPtrBBDOperand&>(operands)[1]);
  BBDOperand::Compile(operands[1]);
  EXPECT_EQ(&two, operands[1]);
  operands[5] = &one;
  EXPECT_EQ(1, operands.Size());
  EXPECT_EQ(nullptr, operands[5]);

  BBDTypeInfo type;
  KORListPtrBBDTypeInfo types;
  types.Append(nullptr);
  BBDTypeInfo*& slot = types[1];
  slot = &type;
  EXPECT_EQ(1, types.Locate(&type, 1));
}

// Builds {1, null, 2, 3} of logged operands.
BBDOperandSet* LoggedSet(std::vector<int>* log) {
  auto* set = new BBDOperandSet(new LoggedOperand(1, log));
  set->Append(nullptr);
  set->Append(new LoggedOperand(2, log));
  set->Append(new LoggedOperand(3, log));
  return set;
}

TEST(OperandSet, CopiesShareElementsDeletedOnceWithTheLastSet) {
  for (bool originalFirst : {true, false}) {
    SCOPED_TRACE(originalFirst ? "original destroyed first" : "copy destroyed first");
    std::vector<int> log;
    BBDOperandSet* original = LoggedSet(&log);
    auto* copy = new BBDOperandSet(*original);
    EXPECT_EQ(4, copy->Size());
    delete (originalFirst ? original : copy);
    EXPECT_TRUE(log.empty());
    delete (originalFirst ? copy : original);
    EXPECT_EQ((std::vector<int>{1, 2, 3}), log);
  }
}

TEST(OperandSet, AssignmentAndAppendOnACopy) {
  std::vector<int> log;
  BBDOperandSet* source = LoggedSet(&log);
  auto* target = new BBDOperandSet(new LoggedOperand(9, &log));
  *target = *source;
  EXPECT_EQ(std::vector<int>{9}, log) << "the target's own element goes at assignment";
  EXPECT_EQ(4, target->Size());

  BBDOperandSet& alias = *target;
  *target = alias;
  EXPECT_EQ(4, target->Size());
  EXPECT_EQ(std::vector<int>{9}, log);

  EXPECT_EQ(5, target->Append(new LoggedOperand(5, &log)));
  EXPECT_EQ(4, source->Size()) << "Append adds to one set only";
  delete target;
  EXPECT_EQ((std::vector<int>{9, 5}), log);
  delete source;
  EXPECT_EQ((std::vector<int>{9, 5, 1, 2, 3}), log);
}

}  // namespace
