// Export control for the idxbase shared library.
//
// The library is built with hidden symbols by default; every class and
// function of the interface carries IDXBASE_API so that it, and only it,
// is visible to programs that link libidxbase.
#ifndef IDXBASE_EXPORT_H_
#define IDXBASE_EXPORT_H_

#if defined(IDXBASE_BUILDING_LIBRARY)
#define IDXBASE_API __attribute__((visibility("default")))
#else
#define IDXBASE_API
#endif

// Marks a private member of an exported class that stays internal (member
// templates instantiated inside the library).
#define IDXBASE_LOCAL __attribute__((visibility("hidden")))

// printf-style format checking for variadic functions of the interface.
#define IDXBASE_PRINTF(format_index, first_arg) \
  __attribute__((format(printf, format_index, first_arg)))

#endif  // IDXBASE_EXPORT_H_
