// Operands, the leaves of filter expressions: the operand interface, the
// NA operand, constants, the user-string operand, sets, and the typed
// pointer lists.
#ifndef IDXBASE_FILTER_OPERANDS_H_
#define IDXBASE_FILTER_OPERANDS_H_

#include <memory>
#include <vector>

#include "idxbase/export.h"
#include "idxbase/filter_vocabulary.h"
#include "idxbase/kor_collections.h"
#include "idxbase/kor_string.h"
#include "idxbase/kor_time.h"

class BBDIAttributeRead;
class BBDOccurrence;
class BBDOperand;
class BBDTypeInfo;

// A reference to one element of a typed pointer list: reads as, and
// assigns, the element pointer.
template <class T>
class KORListPtrRef {
 public:
  explicit KORListPtrRef(void*& slot) : slot_(slot) {}
  operator T*() const { return static_cast<T*>(slot_); }  // NOLINT: reads like a T*&
  T* operator->() const { return static_cast<T*>(slot_); }
  KORListPtrRef& operator=(T* element) {
    slot_ = element;
    return *this;
  }
  KORListPtrRef& operator=(const KORListPtrRef& other) { return *this = static_cast<T*>(other); }

 private:
  void*& slot_;
};

// A list of operand pointers, positions from 1. Never owns the operands:
// the operand that holds a list deletes its elements. One thread at a time.
// operator[] out of range behaves as KORRawCollPV's (null; a scratch slot).
class IDXBASE_API KORListPtrBBDOperand : public KORRawCollPV {
 public:
  explicit KORListPtrBBDOperand(int initialCapacity = 0) : KORRawCollPV(initialCapacity) {}
  KORListPtrBBDOperand(const KORListPtrBBDOperand&) = default;
  KORListPtrBBDOperand& operator=(const KORListPtrBBDOperand&) = default;
  ~KORListPtrBBDOperand() override;

  KORListPtrRef<BBDOperand> operator[](int position) {
    return KORListPtrRef<BBDOperand>(KORRawCollPV::operator[](position));
  }
  BBDOperand* operator[](int position) const {
    return static_cast<BBDOperand*>(KORRawCollPV::operator[](position));
  }
  int Append(BBDOperand* element) { return KORRawCollPV::Append(element); }
};

// A list of type-descriptor pointers, positions from 1. Never owns the
// descriptors. One thread at a time. Each operation forwards to the
// KORRawCollPV operation of the same name and returns its result.
class IDXBASE_API KORListPtrBBDTypeInfo : public KORRawCollPV {
 public:
  explicit KORListPtrBBDTypeInfo(int initialCapacity = 0) : KORRawCollPV(initialCapacity) {}
  KORListPtrBBDTypeInfo(const KORListPtrBBDTypeInfo&) = default;
  KORListPtrBBDTypeInfo& operator=(const KORListPtrBBDTypeInfo&) = default;
  ~KORListPtrBBDTypeInfo() override;

  KORListPtrRef<BBDTypeInfo> operator[](int position) {
    return KORListPtrRef<BBDTypeInfo>(KORRawCollPV::operator[](position));
  }
  BBDTypeInfo* operator[](int position) const {
    return static_cast<BBDTypeInfo*>(KORRawCollPV::operator[](position));
  }
  int Append(BBDTypeInfo* element) { return KORRawCollPV::Append(element); }
  int InsertAt(int position, BBDTypeInfo* element) {
    return KORRawCollPV::InsertAt(position, element);
  }
  int Locate(BBDTypeInfo* element, int from) const { return KORRawCollPV::Locate(element, from); }
  int RemoveValue(BBDTypeInfo* element) { return KORRawCollPV::RemoveValue(element); }
  int RemovePosition(int position, unsigned int count) {
    return KORRawCollPV::RemovePosition(position, count);
  }
  int RemovePosition(int position) { return KORRawCollPV::RemovePosition(position, 1); }
  int RemoveDuplicates(KORListPtrBBDTypeInfo* removed) {
    return KORRawCollPV::RemoveDuplicates(removed);
  }
};

namespace idxbase::detail {

// A pointer list whose elements are owned jointly by every copy of it: an
// element is deleted once, with the last copy that holds it. Release lets
// go of the elements in list order. Null elements are kept and skipped.
template <class T, class List>
class SharedElements {
 public:
  SharedElements() = default;
  SharedElements(const SharedElements&) = default;
  SharedElements& operator=(const SharedElements& other) {
    if (this != &other) {
      Release();
      list_ = other.list_;
      owners_ = other.owners_;
    }
    return *this;
  }
  ~SharedElements() { Release(); }

  // Appends `element` and takes a share of it; returns its position.
  int Adopt(T* element) {
    owners_.emplace_back(element);
    return list_.Append(element);
  }
  void Release() {
    for (std::shared_ptr<T>& owner : owners_) owner.reset();
    owners_.clear();
    list_.RemoveAll(KORCollec::KeepMemory);
  }
  List& list() { return list_; }
  const List& list() const { return list_; }

 private:
  List list_;
  std::vector<std::shared_ptr<T>> owners_;  // same order as list_
};

}  // namespace idxbase::detail

// The operand interface. An operand delivers one value, in the value type
// that a comparison asks for, for the occurrence under evaluation.
//
// Every value read takes the evaluation context (occurrence, context
// number, attribute reader), which operands of this header ignore, and
// returns KOR_S_OK with the output set, or KOR_E_FAIL (0x80004005) leaving
// the output untouched. A read of a type that the operand does not hold
// fails: nothing converts.
//
// Operands are owned by the expression (or set) that they are given to.
// Constants, the NA operand and the user-string operand do not change when
// read, so several threads may read them at once.
class IDXBASE_API BBDOperand {
 public:
  BBDOperand() = default;
  BBDOperand(const BBDOperand&) {}
  BBDOperand& operator=(const BBDOperand&) { return *this; }
  virtual ~BBDOperand();

  virtual IDX_Filter_OperandType GetOperandType() = 0;
  virtual IDX_Filter_ValueType GetValueType() = 0;
  virtual KORStatus GetValString(const BBDOccurrence& occurrence, unsigned int context,
                                 BBDIAttributeRead& reader, const char*& value, int& length);
  virtual KORStatus GetValInt(const BBDOccurrence& occurrence, unsigned int context,
                              BBDIAttributeRead& reader, int& value);
  virtual KORStatus GetValFloat(const BBDOccurrence& occurrence, unsigned int context,
                                BBDIAttributeRead& reader, float& value);
  virtual KORStatus GetValBool(const BBDOccurrence& occurrence, unsigned int context,
                               BBDIAttributeRead& reader, bool& value);
  virtual KORStatus GetValTime(const BBDOccurrence& occurrence, unsigned int context,
                               BBDIAttributeRead& reader, KORTime& value);
  virtual KORStatus GetValSet(const BBDOccurrence& occurrence, unsigned int context,
                              BBDIAttributeRead& reader, KORListPtrBBDOperand& value);
  // Writes the toString text to standard output (no line end).
  virtual void print();
  // Renders the operand into `text`; the base leaves `text` unchanged.
  virtual void toString(KORUnicodeString& text);

  // Compiles `operand` in place: when its compiled form is another object,
  // the old operand is deleted and replaced. A null pointer stays null.
  static void Compile(BBDOperand*& operand);

 protected:
  // The operand to use in place of this one; this one by default.
  virtual BBDOperand* Compile();
};

// Not available: fails every read; expressions over it fold when compiled.
// Renders as "NAOperand".
class IDXBASE_API BBDNAOperand : public BBDOperand {
 public:
  BBDNAOperand() = default;
  IDX_Filter_OperandType GetOperandType() override;
  IDX_Filter_ValueType GetValueType() override;
  void toString(KORUnicodeString& text) override;
};

// An integer constant; renders with "%d".
class IDXBASE_API BBDOperandIntConst : public BBDOperand {
 public:
  explicit BBDOperandIntConst(int value) : m_Value(value) {}
  IDX_Filter_OperandType GetOperandType() override;
  IDX_Filter_ValueType GetValueType() override;
  KORStatus GetValInt(const BBDOccurrence&, unsigned int, BBDIAttributeRead&, int& value) override;
  void toString(KORUnicodeString& text) override;

 private:
  int m_Value;
};

// A float constant; renders with "%.9f".
class IDXBASE_API BBDOperandFloatConst : public BBDOperand {
 public:
  explicit BBDOperandFloatConst(float value) : m_Value(value) {}
  IDX_Filter_OperandType GetOperandType() override;
  IDX_Filter_ValueType GetValueType() override;
  KORStatus GetValFloat(const BBDOccurrence&, unsigned int, BBDIAttributeRead&,
                        float& value) override;
  void toString(KORUnicodeString& text) override;

 private:
  float m_Value;
};

// A boolean constant; renders as "true" or "false".
class IDXBASE_API BBDOperandBooleanConst : public BBDOperand {
 public:
  explicit BBDOperandBooleanConst(bool value) : m_Value(value) {}
  IDX_Filter_OperandType GetOperandType() override;
  IDX_Filter_ValueType GetValueType() override;
  KORStatus GetValBool(const BBDOccurrence&, unsigned int, BBDIAttributeRead&,
                       bool& value) override;
  void toString(KORUnicodeString& text) override;

 private:
  bool m_Value;
};

// A string constant. Takes over a zero-terminated buffer allocated with
// malloc and frees it when destroyed; the length is the byte count before
// the zero. A null buffer is taken as the empty string. toString appends
// the string between double quotes.
//
// Not copy-constructible. Assignment gives this operand its own copy of
// the other's bytes (its previous buffer is freed; when the copy cannot be
// allocated the operand keeps its previous string), so every buffer is
// freed exactly once.
class IDXBASE_API BBDOperandStringConst : public BBDOperand {
 public:
  explicit BBDOperandStringConst(char* buffer);
  BBDOperandStringConst& operator=(const BBDOperandStringConst& other);
  ~BBDOperandStringConst() override;
  IDX_Filter_OperandType GetOperandType() override;
  IDX_Filter_ValueType GetValueType() override;
  KORStatus GetValString(const BBDOccurrence&, unsigned int, BBDIAttributeRead&, const char*& value,
                         int& length) override;
  void toString(KORUnicodeString& text) override;

 private:
  BBDOperandStringConst(const BBDOperandStringConst&);

  char* m_Buffer;  // owned (malloc); null for the empty string
  int m_Length;
};

// A time constant, held by value; renders as "time unsupported".
class IDXBASE_API BBDOperandTimeConst : public BBDOperand {
 public:
  explicit BBDOperandTimeConst(const KORTime& value) : m_Value(value) {}
  IDX_Filter_OperandType GetOperandType() override;
  IDX_Filter_ValueType GetValueType() override;
  KORStatus GetValTime(const BBDOccurrence&, unsigned int, BBDIAttributeRead&,
                       KORTime& value) override;
  void toString(KORUnicodeString& text) override;

 private:
  KORTime m_Value;
};

// A string read, at every evaluation, from a caller's `const char*`
// variable, whose address is given at construction; the caller keeps the
// variable alive while the operand is used and may point it at another
// zero-terminated string between evaluations. The read fails while the
// variable holds null. A null address reads "" forever. Owns nothing;
// copies copy the address. Renders as nothing.
class IDXBASE_API BBDOperandStringUser : public BBDOperand {
 public:
  explicit BBDOperandStringUser(const void* variableAddress);
  IDX_Filter_OperandType GetOperandType() override;
  IDX_Filter_ValueType GetValueType() override;
  KORStatus GetValString(const BBDOccurrence&, unsigned int, BBDIAttributeRead&, const char*& value,
                         int& length) override;

 private:
  const char* const* m_Variable;
};

// A set of operands, for the IN comparisons. Owns its elements.
//
// Copies share the elements: each element is deleted once, when the last
// set holding it goes (elements are deleted in list order). Append adds to
// this set only. Null elements are kept (a membership test meeting one is
// undecidable) but skipped by printing and deletion. print writes "{ ",
// each element's print followed by " ", then "}"; toString renders
// nothing. One thread at a time.
class IDXBASE_API BBDOperandSet : public BBDOperand {
 public:
  BBDOperandSet();
  // A set whose only element is `element` (taken over; may be null).
  explicit BBDOperandSet(BBDOperand* element);
  BBDOperandSet(const BBDOperandSet& other) = default;
  BBDOperandSet& operator=(const BBDOperandSet& other) = default;
  ~BBDOperandSet() override;

  // Appends `element` and takes it over; returns its position.
  int Append(BBDOperand* element);
  int Size() const { return m_Elements.list().Size(); }

  IDX_Filter_OperandType GetOperandType() override;
  IDX_Filter_ValueType GetValueType() override;
  // Replaces `value`'s content by the element pointers (which stay owned by
  // the set); nothing happens when `value` is this set's own list.
  KORStatus GetValSet(const BBDOccurrence&, unsigned int, BBDIAttributeRead&,
                      KORListPtrBBDOperand& value) override;
  void print() override;

 private:
  idxbase::detail::SharedElements<BBDOperand, KORListPtrBBDOperand> m_Elements;
};

#endif  // IDXBASE_FILTER_OPERANDS_H_
