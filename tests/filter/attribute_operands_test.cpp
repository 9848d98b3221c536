#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "filter_test_support.h"
#include "idxbase/filter_attributes.h"

namespace {

using idxbase_test::FakeOccurrence;
using idxbase_test::kReadTypes;
using idxbase_test::MockAttributeReader;
using idxbase_test::OutputOf;
using idxbase_test::ReadAs;
using idxbase_test::ReadOutcome;
using idxbase_test::Rendered;
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
  LoggedPair(int type, std::vector<int>* log) : AttributeTypePair(type, 0), log_(log) {}
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

// The pair that a resolved read hands the reader: a temporary, so it is
// recognised by its values.
Matcher<AttributeTypePair*> PairOf(int type, int attribute) {
  return testing::AllOf(testing::NotNull(),
                        testing::Pointee(testing::AllOf(
                            testing::Property(&AttributeTypePair::GetType, type),
                            testing::Property(&AttributeTypePair::GetAttribute, attribute))));
}

// Expects one reader read of `type` at `level`, answering `answer`. The
// reader writes a value other than ReadAs's sentinels into the scalar outputs
// (and the string length) even when it fails, into the string pointer and
// the time only when it succeeds: those go straight to the caller.
void ExpectRead(MockAttributeReader& reader, const BBDOccurrence& occurrence,
                IDX_Filter_ValueType type, unsigned int level,
                const Matcher<AttributeTypePair*>& pair, int answer = 1) {
  static const char kText[] = "value";
  const char* const text = answer != 0 ? kText : idxbase_test::kSentinelText;
  const KORTime time = answer != 0 ? KORTime(2021, 3, 4, 5, 6, 7) : idxbase_test::SentinelTime();
  switch (type) {
    case IDX_Filter_Type_String:
      EXPECT_CALL(reader, ReadString(Ref(occurrence), level, pair, _, _))
          .WillOnce(DoAll(SetArgReferee<3>(text), SetArgReferee<4>(5), Return(answer)));
      break;
    case IDX_Filter_Type_Int:
      EXPECT_CALL(reader, ReadInt(Ref(occurrence), level, pair, _))
          .WillOnce(DoAll(SetArgReferee<3>(42), Return(answer)));
      break;
    case IDX_Filter_Type_Float:
      EXPECT_CALL(reader, ReadFloat(Ref(occurrence), level, pair, _))
          .WillOnce(DoAll(SetArgReferee<3>(2.25f), Return(answer)));
      break;
    case IDX_Filter_Type_Boolean:
      EXPECT_CALL(reader, ReadBool(Ref(occurrence), level, pair, _))
          .WillOnce(DoAll(SetArgReferee<3>(0), Return(answer)));
      break;
    case IDX_Filter_Type_Time:
      EXPECT_CALL(reader, ReadTime(Ref(occurrence), level, pair, _))
          .WillOnce(DoAll(SetArgReferee<3>(time), Return(answer)));
      break;
    default:
      break;
  }
}

// An attribute operand, with or without a path (which it never consults),
// reads only its value type, through the reader at the given level with its
// pair; any nonzero answer succeeds and delivers the value, a failed read
// keeps the outputs. The values themselves are checked by the soak.
TEST(AttributeOperand, ReadsOnlyItsValueTypeThroughTheReader) {
  const IDX_Filter_ValueType held[] = {
      IDX_Filter_Type_String, IDX_Filter_Type_Int, IDX_Filter_Type_Float, IDX_Filter_Type_Boolean,
      IDX_Filter_Type_Time,   IDX_Filter_Type_NA,  IDX_Filter_Type_Set};
  FakeOccurrence occurrence(3);
  for (IDX_Filter_ValueType type : held) {
    auto* pair = new AttributeTypePair(3, 12);
    auto* pathPair = new AttributeTypePair(3, 12);
    BBDOperandAttribute plain(pair, type);
    BBDOperandMultiType withPath(Path({new BBDTypeInfo, new BBDTypeInfo}), pathPair, type);
    for (IDX_Filter_ValueType read : kReadTypes) {
      for (int answer : {0, 7}) {
        SCOPED_TRACE(testing::Message()
                     << "held " << type << ", read " << read << ", reader answers " << answer);
        StrictMock<MockAttributeReader> reader;
        const bool calls = read == type && read != IDX_Filter_Type_Set;
        if (calls) {
          ExpectRead(reader, occurrence, read, 2, pair, answer);
          ExpectRead(reader, occurrence, read, 2, pathPair, answer);
        }
        for (BBDOperand* op : std::initializer_list<BBDOperand*>{&plain, &withPath}) {
          const ReadOutcome outcome = ReadAs(*op, read, occurrence, 2, reader);
          EXPECT_EQ(calls && answer != 0 ? KOR_S_OK : KOR_E_FAIL, outcome.status);
          EXPECT_EQ(outcome.status != KOR_S_OK, outcome.kept);
        }
      }
    }
  }
}

TEST(AttributeOperand, Rendering) {
  KORUnicodeString second("Name");
  BBDOperandAttribute named(KORUnicodeString("Part"), second, IDX_Filter_Type_Int);
  EXPECT_EQ("Part.Name", Rendered(named));
  BBDOperandAttribute paired(new AttributeTypePair(3, 12), IDX_Filter_Type_Int);
  EXPECT_EQ("12.3", Rendered(paired));
  BBDOperandMultiType withPath(Path({new BBDTypeInfo}), new AttributeTypePair(3, 12),
                               IDX_Filter_Type_Int);
  EXPECT_EQ("12.3", Rendered(withPath));
  BBDOperandAttribute neither(nullptr, IDX_Filter_Type_Int);
  EXPECT_EQ("ErrorBBDoperandAttributeToString", Rendered(neither));
  BBDOperandMultiTypeClient client(Path({}), KORUnicodeString("size"), IDX_Filter_Type_Int);
  EXPECT_EQ("BBDOperandMultiTypeClient", Rendered(client));
  EXPECT_EQ("<todoType.3><todoType.-1>", OutputOf([] {
              AttributeTypePair(3, 12).print();
              AttributeTypePair().print();
            }));
}

// An operand of pair id `base` + 9 and, for the path operands, a path of
// descriptors of ids `base` + 1, 2, 3; all of them logged when deleted.
template <class Operand>
Operand* Logged(std::vector<int>* log, int base) {
  auto* pair = new LoggedPair(base + 9, log);
  if constexpr (std::is_same_v<Operand, BBDOperandAttribute>) {
    return new Operand(pair, IDX_Filter_Type_Int);
  } else {
    return new Operand(Path({new LoggedType(base + 1, log), new LoggedType(base + 2, log),
                             new LoggedType(base + 3, log)}),
                       pair, IDX_Filter_Type_Int);
  }
}

// Checks that `log` holds what Logged(base) owned, each once, the
// descriptors in path order (the pair may come anywhere).
void ExpectDeletedOnce(std::vector<int> log, int base, bool withPath) {
  EXPECT_EQ(1, std::count(log.begin(), log.end(), base + 9));
  log.erase(std::remove(log.begin(), log.end(), base + 9), log.end());
  const std::vector<int> path = {base + 1, base + 2, base + 3};
  EXPECT_EQ(withPath ? path : std::vector<int>(), log);
}

// Copies share the pair and the path: whichever goes first deletes
// nothing, the last deletes them. Assignment deletes the target's own at
// once and shares the source's.
template <class Operand>
void CheckSharing() {
  constexpr bool kPath = !std::is_same_v<Operand, BBDOperandAttribute>;
  for (bool originalFirst : {true, false}) {
    SCOPED_TRACE(originalFirst ? "original destroyed first" : "copy destroyed first");
    std::vector<int> log;
    Operand* original = Logged<Operand>(&log, 0);
    auto* copy = new Operand(*original);
    delete (originalFirst ? original : copy);
    EXPECT_TRUE(log.empty());
    delete (originalFirst ? copy : original);
    ExpectDeletedOnce(log, 0, kPath);
  }
  std::vector<int> log;
  Operand* source = Logged<Operand>(&log, 0);
  Operand* target = Logged<Operand>(&log, 10);
  *target = *source;
  ExpectDeletedOnce(log, 10, kPath);
  const std::size_t own = log.size();
  Operand& alias = *target;
  *target = alias;
  delete source;
  EXPECT_EQ(own, log.size());
  delete target;
  ExpectDeletedOnce({log.begin() + static_cast<std::ptrdiff_t>(own), log.end()}, 0, kPath);
}

TEST(AttributeOperand, CopiesShareThePairDeletedOnce) { CheckSharing<BBDOperandAttribute>(); }

TEST(MultiTypeOperand, CopiesSharePathAndPairDeletedOnce) {
  CheckSharing<BBDOperandMultiType>();
  CheckSharing<BBDOperandMultiTypeClient>();
}

// A read at `level` needs the levels level .. level + types - 1, and the
// objects at the levels before the last of the path's types in order; it
// stops at the first that is not (`failing`, from 1; its call fails, or it
// answers no), else reads at the last level.
TEST(MultiTypeClient, TypePathNeedsTheLevelsAndTheTypes) {
  struct Case {
    unsigned int types, level, levelCount;
    bool levelsSuffice;
    unsigned int failing;
    bool callFails;
  };
  const Case cases[] = {
      {3, 2, 5, true, 0, false},  {3, 2, 4, false, 0, false}, {1, 0, 1, true, 0, false},
      {1, 0, 0, false, 0, false}, {0, 0, 5, false, 0, false},  // 0 - 1 + 0 wraps around
      {0, 1, 1, true, 0, false},  {2, 0, 1, false, 0, false}, {2, 0, 2, true, 0, false},
      {4, 1, 5, true, 0, false},  {4, 1, 4, false, 0, false}, {4, 1, 10, true, 1, true},
      {4, 1, 10, true, 1, false}, {4, 1, 10, true, 2, true},  {4, 1, 10, true, 2, false},
      {4, 1, 10, true, 3, true},  {4, 1, 10, true, 3, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.types << " types at level " << c.level << " of "
                                    << c.levelCount << ", failing " << c.failing);
    std::vector<BBDTypeInfo*> types;
    for (unsigned int k = 0; k < c.types; ++k) types.push_back(new BBDTypeInfo);
    auto* pair = new AttributeTypePair(3, 12);
    BBDOperandMultiTypeClient op(Path(types), pair, IDX_Filter_Type_Int);
    FakeOccurrence occurrence(c.levelCount);
    StrictMock<MockAttributeReader> reader;
    const bool passes = c.levelsSuffice && c.failing == 0;
    if (c.levelsSuffice) {
      InSequence order;
      for (unsigned int k = 1; k < c.types && (c.failing == 0 || k <= c.failing); ++k) {
        const bool no = k == c.failing;
        // Nonzero means yes.
        EXPECT_CALL(reader, IsOfType(Ref(occurrence), c.level + k - 1, types[k - 1], _))
            .WillOnce(DoAll(SetArgReferee<3>(no && !c.callFails ? 0 : 2),
                            Return(no && c.callFails ? 0 : 3)));
      }
      if (passes) ExpectRead(reader, occurrence, IDX_Filter_Type_Int, c.level + c.types - 1, pair);
    }
    const ReadOutcome outcome = ReadAs(op, IDX_Filter_Type_Int, occurrence, c.level, reader);
    EXPECT_EQ(passes ? KOR_S_OK : KOR_E_FAIL, outcome.status);
    EXPECT_EQ(!passes, outcome.kept);
  }
}

constexpr char kClientName[] = "sizeA";

// A named read checks the path (after the level count), then resolves the
// name at every read: a string read with the key of the attribute level,
// the others with the key of the starting level, which read even with an
// unresolved pair (type -1). A copy holds the name on its own.
TEST(MultiTypeClient, NamedReadsResolveTheNameAtEachRead) {
  for (IDX_Filter_ValueType type :
       {IDX_Filter_Type_String, IDX_Filter_Type_Int, IDX_Filter_Type_Float, IDX_Filter_Type_Boolean,
        IDX_Filter_Type_Time}) {
    SCOPED_TRACE(type);
    BBDTypeInfo* t1 = new BBDTypeInfo;
    BBDTypeInfo* t2 = new BBDTypeInfo;
    auto original = std::make_unique<BBDOperandMultiTypeClient>(
        Path({t1, t2, new BBDTypeInfo}), KORUnicodeString(kClientName), type);
    BBDOperandMultiTypeClient op(*original);
    original.reset();
    const bool isString = type == IDX_Filter_Type_String;
    const AttributeTypePair resolved(isString ? 7 : -1, 9);
    auto resolve = [&resolved](const char* name, int length, unsigned int) {
      EXPECT_EQ(kClientName, std::string(name, static_cast<size_t>(length)));
      return resolved;
    };
    StrictMock<MockOccurrence> occurrence;
    StrictMock<MockAttributeReader> reader;
    InSequence order;
    EXPECT_CALL(occurrence, GetLevelCount()).WillOnce(Return(5));
    EXPECT_CALL(reader, IsOfType(Ref(occurrence), 2u, t1, _))
        .WillOnce(DoAll(SetArgReferee<3>(1), Return(1)));
    EXPECT_CALL(reader, IsOfType(Ref(occurrence), 3u, t2, _))
        .WillOnce(DoAll(SetArgReferee<3>(1), Return(1)));
    EXPECT_CALL(occurrence, GetLevelKey(isString ? 4u : 2u)).WillOnce(Return(4242));
    if (isString) {
      EXPECT_CALL(reader, ResolveStringPair(_, 5, 4242u)).WillOnce(Invoke(resolve));
    } else {
      EXPECT_CALL(reader, ResolvePair(_, 5, 4242u)).WillOnce(Invoke(resolve));
    }
    ExpectRead(reader, occurrence, type, 4, PairOf(resolved.GetType(), 9));
    const ReadOutcome outcome = ReadAs(op, type, occurrence, 2, reader);
    EXPECT_EQ(KOR_S_OK, outcome.status);
    EXPECT_FALSE(outcome.kept);
  }
}

TEST(MultiTypeClient, UnresolvedNameFailsAStringRead) {
  FakeOccurrence occurrence(2);
  StrictMock<MockAttributeReader> reader;
  BBDOperandMultiTypeClient op(Path({new BBDTypeInfo}), KORUnicodeString(kClientName),
                               IDX_Filter_Type_String);
  EXPECT_CALL(reader, ResolveStringPair(_, 5, _)).WillOnce(Return(AttributeTypePair(-1, 4)));
  ReadOutcome outcome{};
  EXPECT_EQ("ERROR : null pair\n",
            OutputOf([&] { outcome = ReadAs(op, IDX_Filter_Type_String, occurrence, 1, reader); }));
  EXPECT_EQ(KOR_E_FAIL, outcome.status);
  EXPECT_TRUE(outcome.kept);
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
    for (BBDOperand* each : std::initializer_list<BBDOperand*>{&op, &bare}) {
      const ReadOutcome outcome = ReadAs(*each, read, occurrence, 0, reader);
      EXPECT_EQ(KOR_E_FAIL, outcome.status) << "read " << read;
      EXPECT_TRUE(outcome.kept) << "read " << read;
    }
  }

  BBDOperand* compiled = new BBDOperandMultiTypeNoCompiled(names, "x", IDX_Filter_Type_Int);
  BBDOperand* const before = compiled;
  EXPECT_EQ("BBDOperandMultiTypeNoCompiled::Compile not implemented or not tested\n",
            OutputOf([&] { BBDOperand::Compile(compiled); }));
  EXPECT_EQ(before, compiled);
  EXPECT_EQ("A.B.x", Rendered(*compiled));
  delete compiled;
}

}  // namespace
