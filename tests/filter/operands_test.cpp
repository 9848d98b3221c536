#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "filter_test_support.h"
#include "idxbase/filter_attributes.h"
#include "idxbase/filter_operands.h"

namespace {

using idxbase_test::FakeOccurrence;
using idxbase_test::kReadTypes;
using idxbase_test::MockAttributeReader;
using idxbase_test::OutputOf;
using idxbase_test::ReadAs;
using idxbase_test::ReadOutcome;
using idxbase_test::Rendered;
using testing::StrictMock;

char* Malloced(const char* text) {
  char* copy = static_cast<char*>(std::malloc(std::strlen(text) + 1));
  std::strcpy(copy, text);
  return copy;
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

// The value types whose read succeeds, as a bit set; a failed read must
// fail with KOR_E_FAIL and keep its output.
unsigned SucceedingReads(BBDOperand& op) {
  Context c;
  unsigned ok = 0;
  for (IDX_Filter_ValueType type : kReadTypes) {
    const ReadOutcome read = ReadAs(op, type, c.occurrence, 0, c.reader);
    if (read.status == KOR_S_OK) {
      ok |= 1u << type;
    } else {
      EXPECT_EQ(KOR_E_FAIL, read.status) << "read of type " << type;
      EXPECT_TRUE(read.kept) << "read of type " << type;
    }
  }
  return ok;
}

// The bytes that a string read delivers, or "failed" for a failed read.
std::string StringRead(BBDOperand& op) {
  Context c;
  const char* s = nullptr;
  int length = 0;
  if (op.GetValString(c.occurrence, 0, c.reader, s, length) != KOR_S_OK) return "failed";
  return length == 0 ? "" : std::string(s, static_cast<size_t>(length));
}

const char* const kUserVariable = "user";

// Every operand of this header compiles to itself; a null one stays null.
TEST(Operands, KindsReadsRenderingAndCompile) {
  BBDOperand* none = nullptr;
  BBDOperand::Compile(none);
  EXPECT_EQ(nullptr, none);
  const struct {
    BBDOperand* operand;
    IDX_Filter_OperandType operandType;
    IDX_Filter_ValueType valueType;
    const char* rendering;  // toString into an empty text
  } cases[] = {
      {new BBDNAOperand(), IDX_Filter_Operand_Constant, IDX_Filter_Type_NA, "NAOperand"},
      {new BBDOperandIntConst(7), IDX_Filter_Operand_Constant, IDX_Filter_Type_Int, "7"},
      {new BBDOperandIntConst(-42), IDX_Filter_Operand_Constant, IDX_Filter_Type_Int, "-42"},
      {new BBDOperandFloatConst(1.5f), IDX_Filter_Operand_Constant, IDX_Filter_Type_Float,
       "1.500000000"},
      {new BBDOperandBooleanConst(false), IDX_Filter_Operand_Constant, IDX_Filter_Type_Boolean,
       "false"},
      {new BBDOperandBooleanConst(true), IDX_Filter_Operand_Constant, IDX_Filter_Type_Boolean,
       "true"},
      {new BBDOperandStringConst(Malloced("abc")), IDX_Filter_Operand_Constant,
       IDX_Filter_Type_String, "\"abc\""},
      {new BBDOperandStringConst(nullptr), IDX_Filter_Operand_Constant, IDX_Filter_Type_String,
       "\"\""},
      {new BBDOperandTimeConst(KORTime(2020, 1, 1, 0, 0, 0)), IDX_Filter_Operand_Constant,
       IDX_Filter_Type_Time, "time unsupported"},
      {new BBDOperandStringUser(&kUserVariable), IDX_Filter_Operand_User, IDX_Filter_Type_String,
       ""},
      {new BBDOperandSet(new BBDOperandIntConst(1)), IDX_Filter_Operand_Constant,
       IDX_Filter_Type_Set, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << "value type " << c.valueType << ", " << c.rendering);
    BBDOperand* op = c.operand;
    BBDOperand::Compile(op);
    std::unique_ptr<BBDOperand> owner(op);
    ASSERT_EQ(c.operand, op);
    EXPECT_EQ(c.operandType, op->GetOperandType());
    EXPECT_EQ(c.valueType, op->GetValueType());
    const unsigned expected = c.valueType == IDX_Filter_Type_NA ? 0u : 1u << c.valueType;
    EXPECT_EQ(expected, SucceedingReads(*op));
    EXPECT_EQ(c.rendering, Rendered(*op));
    if (c.valueType != IDX_Filter_Type_Set) {
      EXPECT_EQ(c.rendering, OutputOf([&] { op->print(); })) << "print writes the rendering";
    }
  }
}

// Strings without bytes, and a user string without a variable to point to,
// read as empty; one whose variable is null fails every read.
TEST(Operands, StringReadsDeliverTheHeldBytes) {
  BBDOperandStringConst empty(Malloced("")), null(nullptr);
  BBDOperandStringUser unbound(nullptr);
  for (BBDOperand* op : std::initializer_list<BBDOperand*>{&empty, &null, &unbound}) {
    EXPECT_EQ("", StringRead(*op));
  }
  const char* variable = "v";
  BBDOperandStringUser user(&variable);
  EXPECT_EQ("v", StringRead(user));
  variable = nullptr;
  EXPECT_EQ(0u, SucceedingReads(user));
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
  EXPECT_EQ("abc", StringRead(target));

  BBDOperandStringConst& alias = target;
  target = alias;
  EXPECT_EQ("\"abc\"", Rendered(target));

  BBDOperandStringConst empty(nullptr);
  target = empty;
  EXPECT_EQ("", StringRead(target));
  EXPECT_EQ("\"\"", Rendered(target));
}

// A set counts its null elements, prints only the others, and hands out
// its element pointers in place of what the list held.
TEST(OperandSet, AppendPrintAndGetValSet) {
  BBDOperandSet empty;
  EXPECT_EQ(0, empty.Size());
  EXPECT_EQ("{ }", OutputOf([&] { empty.print(); }));

  BBDOperand* abc = new BBDOperandStringConst(Malloced("abc"));
  BBDOperand* real = new BBDOperandFloatConst(1.5f);
  BBDOperandSet set(nullptr);
  EXPECT_EQ(1, set.Size());
  EXPECT_EQ(2, set.Append(abc));
  EXPECT_EQ(3, set.Append(nullptr));
  EXPECT_EQ(4, set.Append(real));
  EXPECT_EQ(4, set.Size());
  EXPECT_EQ("{ \"abc\" 1.500000000 }", OutputOf([&] { set.print(); }));

  Context r;
  BBDOperandIntConst outsider(0);
  KORListPtrBBDOperand list;
  for (int k = 0; k < 5; ++k) list.Append(&outsider);
  EXPECT_EQ(KOR_S_OK, set.GetValSet(r.occurrence, 0, r.reader, list));
  const KORListPtrBBDOperand& view = list;
  ASSERT_EQ(4, view.Size());
  EXPECT_EQ((std::vector<BBDOperand*>{nullptr, abc, nullptr, real}),
            (std::vector<BBDOperand*>{view[1], view[2], view[3], view[4]}));
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
