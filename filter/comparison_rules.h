// How each comparison decides, written once for the per-record evaluation
// of basic expressions and for the column evaluator, so that both give the
// same answer for the same values.
//
// A rule takes the values as the operands delivered them. For strings it
// takes what CompareStrings gave instead (negative, zero or positive),
// since the case setting belongs to the evaluation. Each rule keeps its
// own form of the test: with a NaN, !(a > b) and b >= a differ.
#ifndef IDXBASE_FILTER_COMPARISON_RULES_H_
#define IDXBASE_FILTER_COMPARISON_RULES_H_

#include "idxbase/kor_time.h"

namespace idxbase::detail::rules {

// Times are equal when they fall on the same calendar day, in the local
// time zone; the time of day is ignored.
inline bool SameDay(const KORTime& a, const KORTime& b) {
  return a.GetYear(KORTzLocal) == b.GetYear(KORTzLocal) &&
         a.GetMonth(KORTzLocal) == b.GetMonth(KORTzLocal) &&
         a.GetDay(KORTzLocal) == b.GetDay(KORTzLocal);
}

struct Equal {
  bool operator()(int a, int b) const { return a == b; }
  bool operator()(float a, float b) const { return a == b; }
  bool operator()(bool a, bool b) const { return a == b; }
  bool operator()(const KORTime& a, const KORTime& b) const { return SameDay(a, b); }
  static bool Order(int order) { return order == 0; }
};

// Times have no rule of their own: a time difference holds whenever the
// time equality does not hold, also when it is undecidable.
struct Different {
  bool operator()(int a, int b) const { return a != b; }
  bool operator()(float a, float b) const { return !(a == b); }
  bool operator()(bool a, bool b) const { return a != b; }
  static bool Order(int order) { return order != 0; }
};

struct Lower {
  bool operator()(int a, int b) const { return a < b; }
  bool operator()(float a, float b) const { return b > a; }
  bool operator()(const KORTime& a, const KORTime& b) const { return a < b; }
  static bool Order(int order) { return order < 0; }
};

struct LowerEq {
  bool operator()(int a, int b) const { return !(a > b); }
  bool operator()(float a, float b) const { return b >= a; }
  bool operator()(const KORTime& a, const KORTime& b) const { return !(a > b); }
  static bool Order(int order) { return order <= 0; }
};

struct Higher {
  bool operator()(int a, int b) const { return a > b; }
  bool operator()(float a, float b) const { return a > b; }
  bool operator()(const KORTime& a, const KORTime& b) const { return a > b; }
  static bool Order(int order) { return order > 0; }
};

struct HigherEq {
  bool operator()(int a, int b) const { return !(a < b); }
  bool operator()(float a, float b) const { return a >= b; }
  bool operator()(const KORTime& a, const KORTime& b) const { return a >= b; }
  static bool Order(int order) { return order >= 0; }
};

// Both bounds inclusive.
struct Between {
  bool operator()(int a, int lo, int hi) const { return !(a < lo) && !(a > hi); }
  bool operator()(float a, float lo, float hi) const { return !(lo > a) && !(a > hi); }
  bool operator()(const KORTime& a, const KORTime& lo, const KORTime& hi) const {
    return !(a < lo) && !(a > hi);
  }
  // `orderLow` compares the value with the low bound, `orderHigh` with the
  // high one.
  static bool Order(int orderLow, int orderHigh) { return orderLow >= 0 && orderHigh <= 0; }
};

}  // namespace idxbase::detail::rules

#endif  // IDXBASE_FILTER_COMPARISON_RULES_H_
