#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "filter_test_support.h"
#include "idxbase/filter_attributes.h"
#include "support/stdout_capture.h"

namespace {

using idxbase_test::FakeOccurrence;
using idxbase_test::MockAttributeReader;
using testing::_;
using testing::DoAll;
using testing::InSequence;
using testing::Invoke;
using testing::Matcher;
using testing::Ref;
using testing::Return;
using testing::SetArgReferee;
using testing::StrictMock;

class MockOccurrence : public BBDOccurrence {
 public:
  MOCK_METHOD(unsigned int, GetLevelKey, (unsigned int), (const, override));
  MOCK_METHOD(unsigned int, GetLevelCount, (), (const, override));
};

class LoggedPair : public AttributeTypePair {
 public:
  LoggedPair(int type, int attribute, std::vector<int>* log)
      : AttributeTypePair(type, attribute), log_(log) {}
  ~LoggedPair() override { log_->push_back(GetType()); }

 private:
  std::vector<int>* log_;
};

class LoggedType : public BBDTypeInfo {
 public:
  LoggedType(int id, std::vector<int>* log) : id_(id), log_(log) {}
  ~LoggedType() override { log_->push_back(id_); }

 private:
  int id_;
  std::vector<int>* log_;
};

KORListPtrBBDTypeInfo Path(const std::vector<BBDTypeInfo*>& types) {
  KORListPtrBBDTypeInfo path;
  for (BBDTypeInfo* type : types) path.Append(type);
  return path;
}

std::string Rendered(BBDOperand& operand, const char* initial = "") {
  KORUnicodeString text(initial);
  operand.toString(text);
  return text.ConvertToChar();
}

// The pair that a resolved read hands the reader: a temporary, so it is
// recognised by its values.
Matcher<AttributeTypePair*> PairOf(int type, int attribute) {
  return testing::AllOf(testing::NotNull(),
                        testing::Pointee(testing::AllOf(
                            testing::Property(&AttributeTypePair::GetType, type),
                            testing::Property(&AttributeTypePair::GetAttribute, attribute))));
}

const IDX_Filter_ValueType kReadTypes[] = {IDX_Filter_Type_String, IDX_Filter_Type_Int,
                                           IDX_Filter_Type_Float,  IDX_Filter_Type_Boolean,
                                           IDX_Filter_Type_Time,   IDX_Filter_Type_Set};

KORStatus ReadAs(BBDOperand& op, IDX_Filter_ValueType type, const BBDOccurrence& occurrence,
                 unsigned int level, BBDIAttributeRead& reader) {
  const char* s = nullptr;
  int n = 0;
  float f = 0;
  bool b = false;
  KORTime t;
  KORListPtrBBDOperand list;
  switch (type) {
    case IDX_Filter_Type_String:
      return op.GetValString(occurrence, level, reader, s, n);
    case IDX_Filter_Type_Int:
      return op.GetValInt(occurrence, level, reader, n);
    case IDX_Filter_Type_Float:
      return op.GetValFloat(occurrence, level, reader, f);
    case IDX_Filter_Type_Boolean:
      return op.GetValBool(occurrence, level, reader, b);
    case IDX_Filter_Type_Time:
      return op.GetValTime(occurrence, level, reader, t);
    default:
      return op.GetValSet(occurrence, level, reader, list);
  }
}

// Expects exactly one reader read of `type` at `level`, succeeding.
void ExpectRead(MockAttributeReader& reader, IDX_Filter_ValueType type, unsigned int level,
                const Matcher<AttributeTypePair*>& pair) {
  switch (type) {
    case IDX_Filter_Type_String:
      EXPECT_CALL(reader, ReadString(_, level, pair, _, _)).WillOnce(Return(1));
      break;
    case IDX_Filter_Type_Int:
      EXPECT_CALL(reader, ReadInt(_, level, pair, _)).WillOnce(Return(1));
      break;
    case IDX_Filter_Type_Float:
      EXPECT_CALL(reader, ReadFloat(_, level, pair, _)).WillOnce(Return(1));
      break;
    case IDX_Filter_Type_Boolean:
      EXPECT_CALL(reader, ReadBool(_, level, pair, _)).WillOnce(Return(1));
      break;
    case IDX_Filter_Type_Time:
      EXPECT_CALL(reader, ReadTime(_, level, pair, _)).WillOnce(Return(1));
      break;
    default:
      break;
  }
}

TEST(AttributeOperand, ReadsOnlyItsValueTypeThroughTheReader) {
  const IDX_Filter_ValueType held[] = {
      IDX_Filter_Type_String, IDX_Filter_Type_Int, IDX_Filter_Type_Float, IDX_Filter_Type_Boolean,
      IDX_Filter_Type_Time,   IDX_Filter_Type_NA,  IDX_Filter_Type_Set};
  FakeOccurrence occurrence(3);
  for (IDX_Filter_ValueType type : held) {
    auto* pair = new AttributeTypePair(3, 12);
    BBDOperandAttribute op(pair, type);
    for (IDX_Filter_ValueType read : kReadTypes) {
      SCOPED_TRACE(testing::Message() << "held " << type << ", read " << read);
      StrictMock<MockAttributeReader> reader;
      const bool matches = read == type && read != IDX_Filter_Type_Set;
      if (matches) ExpectRead(reader, read, 2, pair);
      EXPECT_EQ(matches ? KOR_S_OK : KOR_E_FAIL, ReadAs(op, read, occurrence, 2, reader));
    }
  }
}

// An attribute operand of `type` over a pair of its own, with the pair.
struct PairOperand {
  explicit PairOperand(IDX_Filter_ValueType type)
      : pair(new AttributeTypePair(3, 12)), op(pair, type) {}
  AttributeTypePair* pair;
  BBDOperandAttribute op;
};

TEST(AttributeOperand, DeliversWhatTheReaderReads) {
  FakeOccurrence occurrence(3);
  StrictMock<MockAttributeReader> reader;
  PairOperand ints(IDX_Filter_Type_Int), floats(IDX_Filter_Type_Float),
      strings(IDX_Filter_Type_String), times(IDX_Filter_Type_Time);
  static const char kText[] = "value";
  const KORTime when(2021, 3, 4, 5, 6, 7);
  EXPECT_CALL(reader, ReadInt(Ref(occurrence), 6u, ints.pair, _))
      .WillOnce(DoAll(SetArgReferee<3>(-42), Return(1)));
  EXPECT_CALL(reader, ReadFloat(Ref(occurrence), 6u, floats.pair, _))
      .WillOnce(DoAll(SetArgReferee<3>(2.25f), Return(1)));
  EXPECT_CALL(reader, ReadString(Ref(occurrence), 6u, strings.pair, _, _))
      .WillOnce(DoAll(SetArgReferee<3>(kText), SetArgReferee<4>(5), Return(1)));
  EXPECT_CALL(reader, ReadTime(Ref(occurrence), 6u, times.pair, _))
      .WillOnce(DoAll(SetArgReferee<3>(when), Return(7)));  // any nonzero succeeds

  int i = 0;
  EXPECT_EQ(KOR_S_OK, ints.op.GetValInt(occurrence, 6, reader, i));
  EXPECT_EQ(-42, i);
  float f = 0;
  EXPECT_EQ(KOR_S_OK, floats.op.GetValFloat(occurrence, 6, reader, f));
  EXPECT_EQ(2.25f, f);
  const char* s = nullptr;
  int length = 0;
  EXPECT_EQ(KOR_S_OK, strings.op.GetValString(occurrence, 6, reader, s, length));
  EXPECT_EQ(kText, s);
  EXPECT_EQ(5, length);
  KORTime t;
  EXPECT_EQ(KOR_S_OK, times.op.GetValTime(occurrence, 6, reader, t));
  EXPECT_TRUE(t == when);
}

TEST(AttributeOperand, BooleanIsTrueOnlyForOne) {
  struct Case {
    int readerValue;
    int readerResult;
    bool initial;
    KORStatus status;
    bool expected;
  };
  const Case cases[] = {
      {1, 1, false, KOR_S_OK, true},  {2, 1, true, KOR_S_OK, false},
      {0, 1, true, KOR_S_OK, false},  {-1, 1, true, KOR_S_OK, false},
      {1, 5, false, KOR_S_OK, true},  {1, 0, false, KOR_E_FAIL, false},
      {0, 0, true, KOR_E_FAIL, true},
  };
  FakeOccurrence occurrence(1);
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message()
                 << "reader gives " << c.readerValue << ", returns " << c.readerResult);
    StrictMock<MockAttributeReader> reader;
    PairOperand bools(IDX_Filter_Type_Boolean);
    EXPECT_CALL(reader, ReadBool(_, 0u, bools.pair, _))
        .WillOnce(DoAll(SetArgReferee<3>(c.readerValue), Return(c.readerResult)));
    bool value = c.initial;
    EXPECT_EQ(c.status, bools.op.GetValBool(occurrence, 0, reader, value));
    EXPECT_EQ(c.expected, value);
  }
}

TEST(AttributeOperand, FailedReadsKeepTheOutputs) {
  FakeOccurrence occurrence(1);
  StrictMock<MockAttributeReader> reader;
  PairOperand ints(IDX_Filter_Type_Int), floats(IDX_Filter_Type_Float),
      strings(IDX_Filter_Type_String), times(IDX_Filter_Type_Time);
  EXPECT_CALL(reader, ReadInt(_, _, _, _)).WillOnce(DoAll(SetArgReferee<3>(42), Return(0)));
  EXPECT_CALL(reader, ReadFloat(_, _, _, _)).WillOnce(DoAll(SetArgReferee<3>(4.5f), Return(0)));
  EXPECT_CALL(reader, ReadString(_, _, _, _, _)).WillOnce(DoAll(SetArgReferee<4>(3), Return(0)));
  EXPECT_CALL(reader, ReadTime(_, _, _, _)).WillOnce(Return(0));
  int i = 5;
  EXPECT_EQ(KOR_E_FAIL, ints.op.GetValInt(occurrence, 0, reader, i));
  EXPECT_EQ(5, i);
  float f = 1.0f;
  EXPECT_EQ(KOR_E_FAIL, floats.op.GetValFloat(occurrence, 0, reader, f));
  EXPECT_EQ(1.0f, f);
  const char* s = nullptr;
  int length = 77;
  EXPECT_EQ(KOR_E_FAIL, strings.op.GetValString(occurrence, 0, reader, s, length));
  EXPECT_EQ(77, length);
  KORTime t;
  EXPECT_EQ(KOR_E_FAIL, times.op.GetValTime(occurrence, 0, reader, t));
}

TEST(AttributeOperand, Rendering) {
  KORUnicodeString second("Name");
  BBDOperandAttribute named(KORUnicodeString("Part"), second, IDX_Filter_Type_Int);
  EXPECT_EQ("Part.Name", Rendered(named));
  BBDOperandAttribute paired(new AttributeTypePair(3, 12), IDX_Filter_Type_Int);
  EXPECT_EQ("12.3", Rendered(paired));
  BBDOperandAttribute neither(nullptr, IDX_Filter_Type_Int);
  EXPECT_EQ("ErrorBBDoperandAttributeToString", Rendered(neither));

  idxbase_test::StdoutCapture capture;
  AttributeTypePair(3, 12).print();
  AttributeTypePair().print();
  EXPECT_EQ("<todoType.3><todoType.-1>", capture.Finish());
}

TEST(AttributeOperand, CopiesShareThePairDeletedOnce) {
  for (bool originalFirst : {true, false}) {
    SCOPED_TRACE(originalFirst ? "original destroyed first" : "copy destroyed first");
    std::vector<int> log;
    auto* original = new BBDOperandAttribute(new LoggedPair(1, 0, &log), IDX_Filter_Type_Int);
    auto* copy = new BBDOperandAttribute(*original);
    delete (originalFirst ? original : copy);
    EXPECT_TRUE(log.empty());
    delete (originalFirst ? copy : original);
    EXPECT_EQ(std::vector<int>{1}, log);
  }
  std::vector<int> log;
  auto* source = new BBDOperandAttribute(new LoggedPair(1, 0, &log), IDX_Filter_Type_Int);
  auto* target = new BBDOperandAttribute(new LoggedPair(2, 0, &log), IDX_Filter_Type_Int);
  *target = *source;
  EXPECT_EQ(std::vector<int>{2}, log);
  EXPECT_EQ("0.1", Rendered(*target));
  delete source;
  delete target;
  EXPECT_EQ((std::vector<int>{2, 1}), log);
}

// A path of three logged descriptors (ids 1, 2, 3) and a logged pair (id 9).
template <class Operand>
Operand* LoggedMultiType(std::vector<int>* log) {
  return new Operand(Path({new LoggedType(1, log), new LoggedType(2, log), new LoggedType(3, log)}),
                     new LoggedPair(9, 0, log), IDX_Filter_Type_Int);
}

template <class Operand>
void CheckSharedDescriptors() {
  for (bool originalFirst : {true, false}) {
    SCOPED_TRACE(originalFirst ? "original destroyed first" : "copy destroyed first");
    std::vector<int> log;
    Operand* original = LoggedMultiType<Operand>(&log);
    auto* copy = new Operand(*original);
    delete (originalFirst ? original : copy);
    EXPECT_TRUE(log.empty());
    delete (originalFirst ? copy : original);
    EXPECT_EQ(1, std::count(log.begin(), log.end(), 9));
    log.erase(std::remove(log.begin(), log.end(), 9), log.end());
    EXPECT_EQ((std::vector<int>{1, 2, 3}), log) << "descriptors go in path order";
  }
}

TEST(MultiTypeOperand, CopiesSharePathAndPairDeletedOnce) {
  CheckSharedDescriptors<BBDOperandMultiType>();
  CheckSharedDescriptors<BBDOperandMultiTypeClient>();

  std::vector<int> log;
  BBDOperandMultiType* source = LoggedMultiType<BBDOperandMultiType>(&log);
  auto* target = new BBDOperandMultiType(Path({new LoggedType(4, &log), new LoggedType(5, &log)}),
                                         new LoggedPair(8, 0, &log), IDX_Filter_Type_Int);
  *target = *source;
  std::sort(log.begin(), log.end());
  EXPECT_EQ((std::vector<int>{4, 5, 8}), log) << "the target's own descriptors go at assignment";
  BBDOperandMultiType& alias = *target;
  *target = alias;
  delete source;
  EXPECT_EQ(3u, log.size());
  delete target;
  std::sort(log.begin(), log.end());
  EXPECT_EQ((std::vector<int>{1, 2, 3, 4, 5, 8, 9}), log);
}

TEST(MultiTypeOperand, ReadsLikeAnAttributeWithoutConsultingThePath) {
  FakeOccurrence occurrence(1);
  StrictMock<MockAttributeReader> reader;
  auto* pair = new AttributeTypePair(3, 12);
  BBDOperandMultiType op(Path({new BBDTypeInfo, new BBDTypeInfo, new BBDTypeInfo}), pair,
                         IDX_Filter_Type_Int);
  EXPECT_CALL(reader, ReadInt(Ref(occurrence), 5u, pair, _))
      .WillOnce(DoAll(SetArgReferee<3>(11), Return(1)));
  int value = 0;
  EXPECT_EQ(KOR_S_OK, op.GetValInt(occurrence, 5, reader, value));
  EXPECT_EQ(11, value);
  EXPECT_EQ("12.3", Rendered(op));
}

TEST(MultiTypeClient, TypePathNeedsTheLevelsAndTheTypes) {
  struct Case {
    unsigned int types;
    unsigned int level;
    unsigned int levelCount;
    bool passes;
  };
  const Case cases[] = {
      {3, 2, 5, true},  {3, 2, 4, false}, {1, 0, 1, true},
      {1, 0, 0, false}, {0, 0, 5, false},  // 0 - 1 + 0 wraps around
      {0, 1, 1, true},  {2, 0, 1, false}, {2, 0, 2, true},
      {4, 1, 5, true},  {4, 1, 4, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message()
                 << c.types << " types at level " << c.level << " of " << c.levelCount);
    std::vector<BBDTypeInfo*> types;
    for (unsigned int k = 0; k < c.types; ++k) types.push_back(new BBDTypeInfo);
    auto* pair = new AttributeTypePair(3, 12);
    BBDOperandMultiTypeClient op(Path(types), pair, IDX_Filter_Type_Int);
    FakeOccurrence occurrence(c.levelCount);
    StrictMock<MockAttributeReader> reader;
    if (c.passes) {
      InSequence order;
      for (unsigned int k = 1; k < c.types; ++k) {
        EXPECT_CALL(reader, IsOfType(Ref(occurrence), c.level + k - 1, types[k - 1], _))
            .WillOnce(DoAll(SetArgReferee<3>(2), Return(3)));  // nonzero means yes
      }
      EXPECT_CALL(reader, ReadInt(Ref(occurrence), c.level + c.types - 1, pair, _))
          .WillOnce(DoAll(SetArgReferee<3>(8), Return(1)));
    }
    int value = -1;
    EXPECT_EQ(c.passes ? KOR_S_OK : KOR_E_FAIL, op.GetValInt(occurrence, c.level, reader, value));
    EXPECT_EQ(c.passes ? 8 : -1, value);
  }
}

TEST(MultiTypeClient, TypePathStopsAtTheFirstFailure) {
  for (unsigned int failing = 1; failing <= 3; ++failing) {
    for (bool callFails : {true, false}) {
      SCOPED_TRACE(testing::Message() << "type " << failing << (callFails ? " call" : " no"));
      std::vector<BBDTypeInfo*> types = {new BBDTypeInfo, new BBDTypeInfo, new BBDTypeInfo,
                                         new BBDTypeInfo};
      BBDOperandMultiTypeClient op(Path(types), new AttributeTypePair(3, 12), IDX_Filter_Type_Int);
      FakeOccurrence occurrence(10);
      StrictMock<MockAttributeReader> reader;
      InSequence order;
      for (unsigned int k = 1; k < failing; ++k) {
        EXPECT_CALL(reader, IsOfType(_, 1 + k - 1, types[k - 1], _))
            .WillOnce(DoAll(SetArgReferee<3>(1), Return(1)));
      }
      EXPECT_CALL(reader, IsOfType(_, failing, types[failing - 1], _))
          .WillOnce(DoAll(SetArgReferee<3>(callFails ? 1 : 0), Return(callFails ? 0 : 1)));
      int value = -1;
      EXPECT_EQ(KOR_E_FAIL, op.GetValInt(occurrence, 1, reader, value));
      EXPECT_EQ(-1, value);
    }
  }
}

constexpr char kClientName[] = "sizeA";

TEST(MultiTypeClient, NamedIntegerReadCallOrder) {
  BBDTypeInfo* t1 = new BBDTypeInfo;
  BBDTypeInfo* t2 = new BBDTypeInfo;
  auto copy = std::make_unique<BBDOperandMultiTypeClient>(
      Path({t1, t2, new BBDTypeInfo}), KORUnicodeString(kClientName), IDX_Filter_Type_Int);
  // The copy must hold the name on its own.
  BBDOperandMultiTypeClient op(*copy);
  copy.reset();
  EXPECT_EQ("BBDOperandMultiTypeClient", Rendered(op));

  StrictMock<MockOccurrence> occurrence;
  StrictMock<MockAttributeReader> reader;
  auto nameIs = [](const char* name, int length, unsigned int) {
    EXPECT_EQ(kClientName, std::string(name, static_cast<size_t>(length)));
    return AttributeTypePair(7, 9);
  };
  {
    InSequence order;
    EXPECT_CALL(occurrence, GetLevelCount()).WillOnce(Return(5));
    EXPECT_CALL(reader, IsOfType(Ref(occurrence), 2u, t1, _))
        .WillOnce(DoAll(SetArgReferee<3>(1), Return(1)));
    EXPECT_CALL(reader, IsOfType(Ref(occurrence), 3u, t2, _))
        .WillOnce(DoAll(SetArgReferee<3>(1), Return(1)));
    EXPECT_CALL(occurrence, GetLevelKey(2u)).WillOnce(Return(4242));
    EXPECT_CALL(reader, ResolvePair(_, 5, 4242u)).WillOnce(Invoke(nameIs));
    EXPECT_CALL(reader, ReadInt(Ref(occurrence), 4u, PairOf(7, 9), _))
        .WillOnce(DoAll(SetArgReferee<3>(31), Return(1)));
  }
  int value = 0;
  EXPECT_EQ(KOR_S_OK, op.GetValInt(occurrence, 2, reader, value));
  EXPECT_EQ(31, value);
}

TEST(MultiTypeClient, NamedStringReadResolvesAtTheAttributeLevel) {
  BBDTypeInfo* t1 = new BBDTypeInfo;
  BBDTypeInfo* t2 = new BBDTypeInfo;
  BBDOperandMultiTypeClient op(Path({t1, t2, new BBDTypeInfo}), KORUnicodeString(kClientName),
                               IDX_Filter_Type_String);
  StrictMock<MockOccurrence> occurrence;
  StrictMock<MockAttributeReader> reader;
  static const char kText[] = "blue";
  {
    InSequence order;
    EXPECT_CALL(occurrence, GetLevelCount()).WillOnce(Return(5));
    EXPECT_CALL(reader, IsOfType(_, 2u, t1, _)).WillOnce(DoAll(SetArgReferee<3>(1), Return(1)));
    EXPECT_CALL(reader, IsOfType(_, 3u, t2, _)).WillOnce(DoAll(SetArgReferee<3>(1), Return(1)));
    EXPECT_CALL(occurrence, GetLevelKey(4u)).WillOnce(Return(77));
    EXPECT_CALL(reader, ResolveStringPair(testing::StartsWith(kClientName), 5, 77u))
        .WillOnce(Return(AttributeTypePair(6, 1)));
    EXPECT_CALL(reader, ReadString(Ref(occurrence), 4u, PairOf(6, 1), _, _))
        .WillOnce(DoAll(SetArgReferee<3>(kText), SetArgReferee<4>(4), Return(1)));
  }
  const char* s = nullptr;
  int length = 0;
  EXPECT_EQ(KOR_S_OK, op.GetValString(occurrence, 2, reader, s, length));
  EXPECT_EQ(kText, s);
  EXPECT_EQ(4, length);
}

TEST(MultiTypeClient, OtherNamedReadsResolveAtTheStartingLevel) {
  const IDX_Filter_ValueType types[] = {IDX_Filter_Type_Int, IDX_Filter_Type_Float,
                                        IDX_Filter_Type_Boolean, IDX_Filter_Type_Time};
  FakeOccurrence occurrence(4);
  for (IDX_Filter_ValueType type : types) {
    SCOPED_TRACE(type);
    BBDOperandMultiTypeClient op(Path({new BBDTypeInfo, new BBDTypeInfo}),
                                 KORUnicodeString(kClientName), type);
    StrictMock<MockAttributeReader> reader;
    EXPECT_CALL(reader, IsOfType(_, 1u, _, _)).WillOnce(DoAll(SetArgReferee<3>(1), Return(1)));
    EXPECT_CALL(reader, ResolvePair(testing::StartsWith(kClientName), 5, FakeOccurrence::KeyOf(1)))
        .WillOnce(Return(AttributeTypePair(4, 2)));
    ExpectRead(reader, type, 2, PairOf(4, 2));
    EXPECT_EQ(KOR_S_OK, ReadAs(op, type, occurrence, 1, reader));
  }
}

TEST(MultiTypeClient, UnresolvedNameFailsStringReadsOnly) {
  FakeOccurrence occurrence(2);
  StrictMock<MockAttributeReader> reader;
  BBDOperandMultiTypeClient strings(Path({new BBDTypeInfo}), KORUnicodeString(kClientName),
                                    IDX_Filter_Type_String);
  EXPECT_CALL(reader, ResolveStringPair(_, 5, _)).WillOnce(Return(AttributeTypePair(-1, 4)));
  const char* s = nullptr;
  int length = 13;
  idxbase_test::StdoutCapture capture;
  EXPECT_EQ(KOR_E_FAIL, strings.GetValString(occurrence, 1, reader, s, length));
  EXPECT_EQ("ERROR : null pair\n", capture.Finish());
  EXPECT_EQ(13, length);

  BBDOperandMultiTypeClient ints(Path({new BBDTypeInfo}), KORUnicodeString(kClientName),
                                 IDX_Filter_Type_Int);
  EXPECT_CALL(reader, ResolvePair(_, 5, _)).WillOnce(Return(AttributeTypePair(-1, 4)));
  EXPECT_CALL(reader, ReadInt(_, 1u, PairOf(-1, 4), _)).WillOnce(Return(1));
  int value = 0;
  EXPECT_EQ(KOR_S_OK, ints.GetValInt(occurrence, 1, reader, value));
}

TEST(MultiTypeNoCompiled, RendersNamesAndNeverReads) {
  KORListValKORUnicodeString names;
  names.Append("A");
  names.Append("B");
  BBDOperandMultiTypeNoCompiled op(names, "x", IDX_Filter_Type_Int);
  EXPECT_EQ("A.B.x", Rendered(op));
  EXPECT_EQ("pre:A.B.x", Rendered(op, "pre:"));
  BBDOperandMultiTypeNoCompiled bare(KORListValKORUnicodeString(), "x", IDX_Filter_Type_String);
  EXPECT_EQ("x", Rendered(bare));

  FakeOccurrence occurrence(3);
  StrictMock<MockAttributeReader> reader;
  for (IDX_Filter_ValueType read : kReadTypes) {
    EXPECT_EQ(KOR_E_FAIL, ReadAs(op, read, occurrence, 0, reader)) << "read " << read;
    EXPECT_EQ(KOR_E_FAIL, ReadAs(bare, read, occurrence, 0, reader)) << "read " << read;
  }

  BBDOperand* compiled = new BBDOperandMultiTypeNoCompiled(names, "x", IDX_Filter_Type_Int);
  BBDOperand* const before = compiled;
  idxbase_test::StdoutCapture capture;
  BBDOperand::Compile(compiled);
  EXPECT_EQ("BBDOperandMultiTypeNoCompiled::Compile not implemented or not tested\n",
            capture.Finish());
  EXPECT_EQ(before, compiled);
  EXPECT_EQ("A.B.x", Rendered(*compiled));
  delete compiled;
}

}  // namespace
