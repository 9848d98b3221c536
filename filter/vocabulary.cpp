#include "idxbase/filter_vocabulary.h"

// Columns by operator value: 0-2 logical, 3-6 equal, 7-9 between, 10-21
// lower/higher, 22 KINDOF, 23 LIKE, 24-27 different, 28-31 IN, 32 multival,
// 33 NOT_LIKE, 34-40 time, 41 unsupported.
const int IDX_Filter_Infos::NumberOfOperands[kOperatorCount] = {
    0,  0,  0,                               // ! | &
    1,  1,  1,  1,                           // =
    2,  2,  2,                               // BETWEEN
    1,  1,  1,  1,  1, 1, 1, 1, 1, 1, 1, 1,  // < <= > >=
    -1,                                      // KINDOF
    1,                                       // LIKE
    1,  1,  1,  1,                           // <>
    -1, -1, -1, -1,                          // IN
    1,                                       // multival
    1,                                       // NOT_LIKE
    1,  1,  2,  1,  1, 1, 1,                 // time = <> BETWEEN < <= > >=
    0,                                       // UNSUPPORTED_OP
};

namespace {
constexpr IDX_Filter_ValueType I = IDX_Filter_Type_Int;
constexpr IDX_Filter_ValueType S = IDX_Filter_Type_String;
constexpr IDX_Filter_ValueType F = IDX_Filter_Type_Float;
constexpr IDX_Filter_ValueType B = IDX_Filter_Type_Boolean;
constexpr IDX_Filter_ValueType SET = IDX_Filter_Type_Set;
constexpr IDX_Filter_ValueType T = IDX_Filter_Type_Time;
}  // namespace

const IDX_Filter_ValueType IDX_Filter_Infos::OperatorType[kOperatorCount] = {
    B,   B, B,                             // ! | &
    I,   S, F, B,                          // =
    S,   I, F,                             // BETWEEN
    S,   I, F, S, I, F, S, I, F, S, I, F,  // < <= > >=
    S,                                     // KINDOF
    S,                                     // LIKE
    I,   S, F, B,                          // <>
    I,   S, F, B,                          // IN
    SET,                                   // multival
    S,                                     // NOT_LIKE
    T,   T, T, T, T, T, T,                 // time
    I,                                     // UNSUPPORTED_OP
};
