// Small value types shared by the core data types.
#ifndef IDXBASE_BASE_TYPES_H_
#define IDXBASE_BASE_TYPES_H_

// The library's two-valued truth type. Operations that test an IDX_Bool
// argument compare it with IDX_True (1); any other value counts as false.
enum IDX_Bool : int {
  IDX_False = 0,
  IDX_True = 1,
};

#endif  // IDXBASE_BASE_TYPES_H_
