// Export control for the idxbase shared library.
//
// The library is built with hidden symbols by default; every class and
// function of the interface carries IDXBASE_API so that it, and only it,
// is visible to programs that link libidxbase.
//
// Names of data members in the public headers: private and protected data
// members of exported classes are m_ followed by an UpperCamelCase name
// (m_Rep, m_BucketCount, m_Text); the interface's fixed names keep their
// own spelling (the switches' _FastCV, _IsCaseSensitive, _pOut). Public
// fields of plain records (IDX_Base_BufferRep::data, LinkedListElem::key,
// IDX_Base_Matrix::type) are lowerCamelCase. Internal classes (namespace
// idxbase::detail, the sources, the tests) end their members with an
// underscore (array_), which keeps them apart from the interface's.
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
