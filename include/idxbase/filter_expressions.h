// Filter expressions: comparisons over operands (basic expressions),
// logical not/or/and over expressions (composed expressions), the NA
// expression that compilation puts in place of comparisons over
// unavailable values, compilation itself and rendering.
#ifndef IDXBASE_FILTER_EXPRESSIONS_H_
#define IDXBASE_FILTER_EXPRESSIONS_H_

#include <memory>
#include <vector>

#include "idxbase/export.h"
#include "idxbase/filter_operands.h"
#include "idxbase/kor_string.h"
#include "idxbase/kor_time.h"

// The expression interface. eval answers IDX_FILTER_HOLDS (0),
// IDX_FILTER_DOES_NOT (1) or IDX_FILTER_UNDECIDABLE (0x80004005) for one
// occurrence; the context arguments travel unchanged down the tree to the
// operands.
//
// Build a tree, compile it once with Compile(root), evaluate it any number
// of times, delete the root (which deletes the whole tree). A tree is
// compiled and evaluated by one thread at a time, and all evaluations of a
// process that may use different case settings are serialised by the
// caller: the case switch is one process-wide setting.
//
// Copies are deep: sub-expressions are duplicated (through Duplicate);
// operands, which expressions never change, are shared by the copies and
// deleted once, with the last expression holding them.
class IDXBASE_API BBDExpression {
 public:
  explicit BBDExpression(IDX_Filter_Operator op) : m_Operator(op) {}
  BBDExpression(const BBDExpression&) = default;
  BBDExpression& operator=(const BBDExpression&) = default;
  virtual ~BBDExpression();

  // Writes the toString text to standard output, without a line end.
  virtual void print();
  virtual IDX_Filter_Operator GetOperator();
  virtual KORStatus eval(const BBDOccurrence& occurrence, unsigned int context,
                         BBDIAttributeRead& reader, bool caseSensitive) = 0;
  // True when the result is fixed whatever the occurrence (the NA
  // expression); GetConstantResult then gives it.
  virtual bool IsConstant();
  virtual KORStatus GetConstantResult();
  // False for every expression of the library.
  virtual bool IsSpecial();
  // True for every expression of the library.
  virtual bool IsActive();
  // Renders the expression into `text` (the base writes nothing).
  virtual void toString(KORUnicodeString& text);

 protected:
  // The expression to use in place of this one (this one by default).
  virtual BBDExpression* Compile();

 public:
  // Declared after Compile so that the virtual slots 0-9 (destructor,
  // print, GetOperator, eval, IsConstant, GetConstantResult, IsSpecial,
  // IsActive, toString, Compile) keep their order; additions go after them.
  //
  // A new copy of this expression, owned by the caller; null when the class
  // cannot be duplicated (the base). A copy of a tree holds an NA
  // expression where a sub-expression could not be duplicated.
  virtual BBDExpression* Duplicate() const;

  // Compiles `root` in place: a comparison over an unavailable (NA) operand
  // becomes an NA expression, an and above it becomes NA, an or above it
  // becomes its other side, which may be missing: the result is then null
  // (an or over an NA side and a missing side compiles to nothing). When
  // the compiled form is another object the old one is deleted. A null
  // root stays null; a caller must test the root for null after compiling
  // before evaluating it.
  static void Compile(BBDExpression*& root);

 protected:
  // The operator, without a virtual call (for evaluation paths).
  IDX_Filter_Operator Operator() const { return m_Operator; }

 private:
  IDX_Filter_Operator m_Operator;
  bool m_Active = true;
};

// A comparison: the operator (which carries the compared type) applied to
// a subject (first operand) and one value, a low and a high bound
// (between), a set (in) or a pattern (like). The evaluation function is
// chosen once, at construction; evaluating costs one indirect call plus
// the operands' reads. An operator without evaluation (none in its
// operator-table row, or outside 0..41) prints "No evaluation function
// defined.\n" and is undecidable.
//
// Every evaluation asks every operand it needs for its value as it is
// then. An operand whose dynamic type is exactly one of the library's
// constant classes (integer, float, boolean, string, time) is read
// directly, without the virtual call, which gives what its GetValX would:
// an assignment to it after compilation is seen. Any other operand (an
// attribute, a user string, a caller's class, even one derived from a
// library constant) is asked through its virtual read. A membership test
// over the library's set walks the set's own elements while they are such
// constants, allocating nothing; from the first element that is not, it
// copies the remaining element pointers into a local list, as it does for
// any other set operand, so a read that calls back into the caller cannot
// disturb the walk.
//
// Owns its operands (any may be null). Copies share the operands; the last
// expression holding them deletes them, first, second, then third.
// Evaluation writes into the expression (its value slots) and into the
// process-wide case switch.
class IDXBASE_API BBDBasicExpression : public BBDExpression {
  friend struct idxbase::detail::OperatorTable;  // its rows name the Eval functions
  friend struct idxbase::detail::TreeAccess;     // the column evaluator reads the operands
 public:
  BBDBasicExpression(IDX_Filter_Operator op, BBDOperand* first, BBDOperand* second);
  BBDBasicExpression(IDX_Filter_Operator op, BBDOperand* first, BBDOperand* second,
                     BBDOperand* third);
  BBDBasicExpression(const BBDBasicExpression& other);
  BBDBasicExpression& operator=(const BBDBasicExpression& other);
  ~BBDBasicExpression() override;

  KORStatus eval(const BBDOccurrence& occurrence, unsigned int context, BBDIAttributeRead& reader,
                 bool caseSensitive) override;
  // Appends "( first NAME second[ third] )"; a missing operand reads
  // "NullOperand" and an operator outside 0..41 "UNKNOWN_OP".
  void toString(KORUnicodeString& text) override;
  BBDExpression* Duplicate() const override;

 protected:
  // A new NA expression when an operand is of value type NA; this one
  // otherwise, and also (after "Warning : null operand in
  // BBDBasicExpression::Compile()\n") when the first or second is missing.
  BBDExpression* Compile() override;

 private:
  using EvalFunction = KORStatus (BBDBasicExpression::*)(const BBDOccurrence&, unsigned int,
                                                         BBDIAttributeRead&);
  using StringSlot = idxbase::detail::StringValue;

  static const EvalFunction m_EvalFunctionTable[42];
  static bool _IsCaseSensitive;

  static int CompareStrings(int lengthA, const char* a, int lengthB, const char* b);
  static int CompareLikeStrings(int lengthS, const char* s, int lengthP, const char* p);

  // The value slot of type Value for operand `position` (0, 1 or 2).
  template <class Value>
  IDXBASE_LOCAL Value& SlotOf(int position);
  // Reads operand `position` into its slot: KOR_S_OK, or KOR_E_FAIL when the
  // operand is missing or gives no value.
  template <class Value>
  IDXBASE_LOCAL KORStatus Read(int position, const BBDOccurrence& o, unsigned int c,
                               BBDIAttributeRead& r);
  // Reads the first two operands and tests holds(a, b).
  template <class Value, class Holds>
  IDXBASE_LOCAL KORStatus Compare(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r,
                                  Holds holds);
  // Reads the three operands and tests holds(a, lo, hi).
  template <class Value, class Holds>
  IDXBASE_LOCAL KORStatus CompareRange(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r,
                                       Holds holds);
  // Reads the subject and the set, and looks for an element same(a, e).
  template <class Value, class Same>
  IDXBASE_LOCAL KORStatus IsMember(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r,
                                   Same same);
  // Looks through the library set's own elements, reading its constants
  // directly, until an element that must be asked through its virtual read.
  template <class Value, class Same>
  IDXBASE_LOCAL KORStatus FindInLibrarySet(const BBDOccurrence& o, unsigned int c,
                                           BBDIAttributeRead& r, Same same);
  // Looks through `elements`, asking each for its value.
  template <class Value, class Same>
  IDXBASE_LOCAL KORStatus FindMember(const KORListPtrBBDOperand& elements, const BBDOccurrence& o,
                                     unsigned int c, BBDIAttributeRead& r, Same same);

  KORStatus EvalEqualInt(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalEqualString(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalEqualFloat(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalEqualBoolean(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalEqualTime(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalDifferentInt(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalDifferentString(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalDifferentFloat(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalDifferentBoolean(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalDifferentTime(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalLowerInt(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalLowerString(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalLowerFloat(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalLowerTime(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalLowerEqInt(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalLowerEqString(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalLowerEqFloat(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalLowerEqTime(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalHigherInt(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalHigherString(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalHigherFloat(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalHigherTime(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalHigherEqInt(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalHigherEqString(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalHigherEqFloat(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalHigherEqTime(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalBetweenInt(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalBetweenString(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalBetweenFloat(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalBetweenTime(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalInInt(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalInString(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalInFloat(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalLikeString(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalNotLikeString(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);
  KORStatus EvalUnsupported(const BBDOccurrence&, unsigned int, BBDIAttributeRead&);

  // The operands, first, second and third; copies of the expression share
  // them, and the last one holding them deletes them in that order.
  std::shared_ptr<BBDOperand> m_Operand[3];
  // Which of the library's constants (or its set) each operand is exactly:
  // those are read directly, as they are at each evaluation.
  idxbase::detail::ExactOperand m_Exact[3];
  // Value slots, one of each kind per operand position.
  int m_IntValue[3] = {};
  float m_FloatValue[3] = {};
  bool m_BoolValue[3] = {};
  StringSlot m_StringValue[3];
  KORTime m_TimeValue[3];
  EvalFunction m_EvalFunction;
};

// A logical not of one expression, or an or / and of two, with the
// three-valued logic: an or is decided by any decided side, an and is
// undecidable as soon as either side is. An or stops after a first side
// that holds; an and stops after a first side that is undecidable (and
// evaluates its second side after one that does not hold). A missing
// first side, or second side of an or / and, prints
// "Error in BBDComposedExpression::eval : null expression\n" and is
// undecidable. Other operators are undecidable.
//
// Owns its sub-expressions (either may be null).
class IDXBASE_API BBDComposedExpression : public BBDExpression {
 public:
  BBDComposedExpression(IDX_Filter_Operator op, BBDExpression* first, BBDExpression* second);
  BBDComposedExpression(const BBDComposedExpression& other);
  BBDComposedExpression& operator=(const BBDComposedExpression& other);
  ~BBDComposedExpression() override;

  KORStatus eval(const BBDOccurrence& occurrence, unsigned int context, BBDIAttributeRead& reader,
                 bool caseSensitive) override;
  // Replaces `text` by "( ! first )" or "( first NAME second )", a missing
  // side reading "NULL".
  void toString(KORUnicodeString& text) override;
  BBDExpression* Duplicate() const override;

 protected:
  // Compiles both sides in place, then folds: an and with an NA side
  // becomes a new NA expression; an or with an NA side becomes its other
  // side, detached from this node, or null when that side is missing. A
  // not is kept. A side is asked IsConstant (then GetConstantResult) only
  // as far as the operator needs: the second only when the first is not
  // NA, and nothing for a not.
  BBDExpression* Compile() override;

 private:
  friend struct idxbase::detail::TreeAccess;
  KORStatus EvalNot(const BBDOccurrence&, unsigned int, BBDIAttributeRead&, bool);
  KORStatus EvalOr(const BBDOccurrence&, unsigned int, BBDIAttributeRead&, bool);
  KORStatus EvalAnd(const BBDOccurrence&, unsigned int, BBDIAttributeRead&, bool);
  void Release();

  BBDExpression* m_First;
  BBDExpression* m_Second;
};

// Stands for a comparison over a value that is not available: always
// undecidable (IsConstant true). Renders as "NAExpression". Created by
// compilation.
class IDXBASE_API BBDNAExpression : public BBDExpression {
 public:
  BBDNAExpression() : BBDExpression(IDX_Filter_Op_Not) {}
  KORStatus eval(const BBDOccurrence&, unsigned int, BBDIAttributeRead&, bool) override;
  bool IsConstant() override;
  void toString(KORUnicodeString& text) override;
  BBDExpression* Duplicate() const override;
};

#endif  // IDXBASE_FILTER_EXPRESSIONS_H_
