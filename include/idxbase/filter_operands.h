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

namespace idxbase::detail {

// The evaluation's direct reads of the library's own constants, and the
// column evaluator's view of a tree (internal).
struct ConstantValues;
struct TreeAccess;

// A string value as an operand delivers it: bytes and their length.
struct StringValue {
  const char* text = nullptr;
  int length = 0;
};

// Which of the library's constant classes (or its set), if any, an operand
// is exactly; a derived class is kOther.
enum class ExactOperand : unsigned char { kOther, kInt, kFloat, kBoolean, kString, kTime, kSet };

// The element slot of an untyped pointer list, as the typed pointer it
// holds. Object pointers share one size and representation on every
// platform we build for (checked below); the compilers we support give all
// pointer types one aliasing class, so the slot may be read and written
// through either type.
template <class T>
T*& TypedSlot(void*& slot) {
  static_assert(sizeof(T*) == sizeof(void*) && alignof(T*) == alignof(void*),
                "typed and untyped element pointers must share their layout");
  return reinterpret_cast<T*&>(slot);
}

}  // namespace idxbase::detail

// A list of operand pointers, positions from 1. Never owns the operands:
// the operand that holds a list deletes its elements. One thread at a time.
//
// operator[] gives the element pointer itself, so `BBDOperand*& r =
// list[1];` and `BBDOperand::Compile(list[1])` change the element. Out of
// range it behaves as KORRawCollPV's: the const form gives null, the
// non-const form a scratch slot of the list that is reset to null at each
// such access and is not an element (writing it changes nothing).
class IDXBASE_API KORListPtrBBDOperand : public KORRawCollPV {
 public:
  explicit KORListPtrBBDOperand(int initialCapacity = 0) : KORRawCollPV(initialCapacity) {}
  KORListPtrBBDOperand(const KORListPtrBBDOperand&) = default;
  KORListPtrBBDOperand& operator=(const KORListPtrBBDOperand&) = default;
  ~KORListPtrBBDOperand() override;

  BBDOperand*& operator[](int position) {
    return idxbase::detail::TypedSlot<BBDOperand>(KORRawCollPV::operator[](position));
  }
  BBDOperand* operator[](int position) const {
    return static_cast<BBDOperand*>(KORRawCollPV::operator[](position));
  }
  int Append(BBDOperand* element) { return KORRawCollPV::Append(element); }
};

// A list of type-descriptor pointers, positions from 1. Never owns the
// descriptors. One thread at a time. Each operation forwards to the
// KORRawCollPV operation of the same name and returns its result;
// operator[] gives the element pointer itself, as KORListPtrBBDOperand's.
class IDXBASE_API KORListPtrBBDTypeInfo : public KORRawCollPV {
 public:
  explicit KORListPtrBBDTypeInfo(int initialCapacity = 0) : KORRawCollPV(initialCapacity) {}
  KORListPtrBBDTypeInfo(const KORListPtrBBDTypeInfo&) = default;
  KORListPtrBBDTypeInfo& operator=(const KORListPtrBBDTypeInfo&) = default;
  ~KORListPtrBBDTypeInfo() override;

  BBDTypeInfo*& operator[](int position) {
    return idxbase::detail::TypedSlot<BBDTypeInfo>(KORRawCollPV::operator[](position));
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

// Elements owned jointly by every copy of their holder: an element is
// deleted once, with the last copy that holds it. Positions run from 1;
// Release lets go of the elements in position order. Null elements are
// kept and skipped.
template <class T>
class SharedElements {
 public:
  SharedElements() = default;
  SharedElements(const SharedElements&) = default;
  SharedElements& operator=(const SharedElements& other) {
    if (this != &other) {
      Release();
      elements_ = other.elements_;
    }
    return *this;
  }
  ~SharedElements() { Release(); }

  // Appends `element` and takes a share of it; returns its position.
  int Adopt(T* element) {
    elements_.emplace_back(element);
    return Size();
  }
  void Release() {
    for (std::shared_ptr<T>& element : elements_) element.reset();
    elements_.clear();
  }
  int Size() const { return static_cast<int>(elements_.size()); }
  // The element at `position`; null outside 1..Size().
  T* operator[](int position) const {
    return position >= 1 && position <= Size()
               ? elements_[static_cast<std::size_t>(position - 1)].get()
               : nullptr;
  }
  // Replaces the content of `list` by the element pointers, in order.
  template <class List>
  void CopyTo(List& list) const {
    list.RemoveAll(KORCollec::KeepMemory);
    for (const std::shared_ptr<T>& element : elements_) list.Append(element.get());
  }

 private:
  std::vector<std::shared_ptr<T>> elements_;
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
  friend struct idxbase::detail::ConstantValues;
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
  friend struct idxbase::detail::ConstantValues;
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
  friend struct idxbase::detail::ConstantValues;
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
  friend struct idxbase::detail::ConstantValues;
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
  friend struct idxbase::detail::ConstantValues;
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
  friend struct idxbase::detail::TreeAccess;
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
  int Size() const { return m_Elements.Size(); }

  IDX_Filter_OperandType GetOperandType() override;
  IDX_Filter_ValueType GetValueType() override;
  // Replaces `value`'s content by the element pointers, which stay owned by
  // the set. The set keeps no list object of its own, so `value` is never
  // the set's storage.
  KORStatus GetValSet(const BBDOccurrence&, unsigned int, BBDIAttributeRead&,
                      KORListPtrBBDOperand& value) override;
  void print() override;

 private:
  friend struct idxbase::detail::ConstantValues;
  idxbase::detail::SharedElements<BBDOperand> m_Elements;
};

#endif  // IDXBASE_FILTER_OPERANDS_H_
