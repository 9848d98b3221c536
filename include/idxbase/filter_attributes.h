// Attribute operands and the caller-side interfaces through which they
// read the occurrence under evaluation: the attribute reader, the
// occurrence, attribute/type pairs and type descriptors.
#ifndef IDXBASE_FILTER_ATTRIBUTES_H_
#define IDXBASE_FILTER_ATTRIBUTES_H_

#include <memory>
#include <string>
#include <vector>

#include "idxbase/export.h"
#include "idxbase/filter_operands.h"

// Names one attribute of one type. A copyable value; type number -1 names
// nothing (an unresolved name).
class IDXBASE_API AttributeTypePair {
 public:
  AttributeTypePair() = default;
  AttributeTypePair(int typeNumber, int attributeNumber)
      : m_Type(typeNumber), m_Attribute(attributeNumber) {}
  AttributeTypePair(const AttributeTypePair&) = default;
  AttributeTypePair& operator=(const AttributeTypePair&) = default;
  virtual ~AttributeTypePair();
  // Writes "<todoType.%d>" with the type number to standard output.
  virtual void print();

  int GetType() const { return m_Type; }
  int GetAttribute() const { return m_Attribute; }

 private:
  int m_Type = -1;
  int m_Attribute = -1;
};

// A caller-defined descriptor of one type. The library stores descriptors,
// hands them to BBDIAttributeRead::IsOfType and deletes those given to it;
// it never reads their content.
class IDXBASE_API BBDTypeInfo {
 public:
  BBDTypeInfo() = default;
  BBDTypeInfo(const BBDTypeInfo&) = default;
  BBDTypeInfo& operator=(const BBDTypeInfo&) = default;
  virtual ~BBDTypeInfo();
};

// The occurrence under evaluation, implemented by the caller: a path of
// levels, one object per level. Called on the evaluating thread.
class IDXBASE_API BBDOccurrence {
 public:
  virtual ~BBDOccurrence();
  // Identifies the object at `level` for name resolution.
  virtual unsigned int GetLevelKey(unsigned int level) const = 0;
  // The number of levels.
  virtual unsigned int GetLevelCount() const = 0;
};

// The attribute reader, implemented by the caller. Each read returns
// nonzero on success and 0 on failure, and receives the occurrence, the
// level at which to read and the attribute's pair (null for an attribute
// operand built from names: its meaning is the reader's own affair).
// ReadString and ReadTime write straight into the operand's caller's
// output, even when they then fail. Called on the evaluating thread.
class IDXBASE_API BBDIAttributeRead {
 public:
  virtual ~BBDIAttributeRead();
  virtual int ReadInt(const BBDOccurrence& occurrence, unsigned int level, AttributeTypePair* pair,
                      int& value) = 0;
  virtual int ReadFloat(const BBDOccurrence& occurrence, unsigned int level,
                        AttributeTypePair* pair, float& value) = 0;
  virtual int ReadString(const BBDOccurrence& occurrence, unsigned int level,
                         AttributeTypePair* pair, const char*& value, int& length) = 0;
  virtual int ReadTime(const BBDOccurrence& occurrence, unsigned int level, AttributeTypePair* pair,
                       KORTime& value) = 0;
  // The boolean is true exactly when `value` is set to 1.
  virtual int ReadBool(const BBDOccurrence& occurrence, unsigned int level, AttributeTypePair* pair,
                       int& value) = 0;
  // Sets `isOfType` nonzero when the object at `level` is of `type`.
  virtual int IsOfType(const BBDOccurrence& occurrence, unsigned int level, BBDTypeInfo* type,
                       int& isOfType) = 0;
  // Not called by the library; a reader may override it for its own use.
  // Returns 0 by default.
  virtual int Reserved();
  // The pair named by `name` (`length` bytes) for the object identified by
  // `levelKey`: for integer, float, boolean and time reads.
  virtual AttributeTypePair ResolvePair(const char* name, int length, unsigned int levelKey) = 0;
  // The same for string reads; a pair of type number -1 means unresolved.
  virtual AttributeTypePair ResolveStringPair(const char* name, int length,
                                              unsigned int levelKey) = 0;
};

// One attribute of the occurrence, read at the context level through the
// reader in the operand's value type; a read of another type fails without
// calling the reader. Renders as "first.second" when built from names, as
// "<attribute>.<type>" from a pair, "ErrorBBDoperandAttributeToString"
// without either.
//
// Owns its pair. Copies share the pair, which is deleted once, with the
// last operand holding it. Reads do not change the operand: several threads
// may read one at once if the reader allows it.
class IDXBASE_API BBDOperandAttribute : public BBDOperand {
 public:
  BBDOperandAttribute(const KORUnicodeString& first, KORUnicodeString& second,
                      IDX_Filter_ValueType valueType);
  // Takes over `pair` (may be null).
  BBDOperandAttribute(AttributeTypePair* pair, IDX_Filter_ValueType valueType);
  BBDOperandAttribute(const BBDOperandAttribute&) = default;
  BBDOperandAttribute& operator=(const BBDOperandAttribute&) = default;
  ~BBDOperandAttribute() override;

  IDX_Filter_OperandType GetOperandType() override;
  IDX_Filter_ValueType GetValueType() override;
  KORStatus GetValString(const BBDOccurrence& occurrence, unsigned int level,
                         BBDIAttributeRead& reader, const char*& value, int& length) override;
  KORStatus GetValInt(const BBDOccurrence& occurrence, unsigned int level,
                      BBDIAttributeRead& reader, int& value) override;
  KORStatus GetValFloat(const BBDOccurrence& occurrence, unsigned int level,
                        BBDIAttributeRead& reader, float& value) override;
  KORStatus GetValBool(const BBDOccurrence& occurrence, unsigned int level,
                       BBDIAttributeRead& reader, bool& value) override;
  KORStatus GetValTime(const BBDOccurrence& occurrence, unsigned int level,
                       BBDIAttributeRead& reader, KORTime& value) override;
  void toString(KORUnicodeString& text) override;

 protected:
  // The reads with a given pair, at a given level.
  KORStatus ReadString(AttributeTypePair* pair, const BBDOccurrence& occurrence, unsigned int level,
                       BBDIAttributeRead& reader, const char*& value, int& length);
  KORStatus ReadInt(AttributeTypePair* pair, const BBDOccurrence& occurrence, unsigned int level,
                    BBDIAttributeRead& reader, int& value);
  KORStatus ReadFloat(AttributeTypePair* pair, const BBDOccurrence& occurrence, unsigned int level,
                      BBDIAttributeRead& reader, float& value);
  KORStatus ReadBool(AttributeTypePair* pair, const BBDOccurrence& occurrence, unsigned int level,
                     BBDIAttributeRead& reader, bool& value);
  KORStatus ReadTime(AttributeTypePair* pair, const BBDOccurrence& occurrence, unsigned int level,
                     BBDIAttributeRead& reader, KORTime& value);
  AttributeTypePair* GetPair() const { return m_Pair.get(); }

 private:
  friend struct idxbase::detail::TreeAccess;
  std::shared_ptr<AttributeTypePair> m_Pair;
  KORUnicodeString m_FirstName;
  KORUnicodeString m_SecondName;
  IDX_Filter_ValueType m_ValueType;
};

// An attribute operand that also holds a path of types; it reads like
// BBDOperandAttribute (the path is not consulted).
//
// Owns the descriptors of its path. Copies share them: each is deleted once
// (in path order), with the last operand holding it.
class IDXBASE_API BBDOperandMultiType : public BBDOperandAttribute {
 public:
  // Copies the pointers of `types` and takes over the descriptors; takes
  // over `pair` (may be null).
  BBDOperandMultiType(const KORListPtrBBDTypeInfo& types, AttributeTypePair* pair,
                      IDX_Filter_ValueType valueType);
  BBDOperandMultiType(const BBDOperandMultiType& other) = default;
  BBDOperandMultiType& operator=(const BBDOperandMultiType& other) = default;
  ~BBDOperandMultiType() override;

 protected:
  BBDOperandMultiType(const KORListPtrBBDTypeInfo& types, IDX_Filter_ValueType valueType);

  int GetTypesNumber() const { return m_Types.Size(); }
  // KOR_S_OK when the occurrence has the levels level .. level + N - 1
  // (N the path's length, computed in unsigned 32-bit arithmetic, so N = 0
  // at level 0 fails) and the object at level + i - 1 is of the path's
  // type i for i = 1 .. N - 1; else KOR_E_FAIL. The last type is not tested:
  // the attribute read at the last level stands for it.
  KORStatus CheckTypePath(const BBDOccurrence& occurrence, unsigned int level,
                          BBDIAttributeRead& reader);

 private:
  idxbase::detail::SharedElements<BBDTypeInfo> m_Types;
};

// An attribute at the end of a path of types: each read first checks the
// path (CheckTypePath), then reads at level + N - 1. The attribute is given
// as a pair, or by a client name that the reader resolves at every read
// (ResolvePair with the key of the starting level for integer, float,
// boolean and time reads; ResolveStringPair with the key of the attribute
// level for string reads, where an unresolved pair prints
// "ERROR : null pair\n" and fails). Renders as "BBDOperandMultiTypeClient".
//
// The resolved pair lives only for the read and is passed to the reader
// directly; the operand never keeps it, so reads do not change the operand.
// The client name is kept whole (all bytes of its UTF-8 form); copies have
// their own copy of it.
class IDXBASE_API BBDOperandMultiTypeClient : public BBDOperandMultiType {
 public:
  BBDOperandMultiTypeClient(const KORListPtrBBDTypeInfo& types, const KORUnicodeString& name,
                            IDX_Filter_ValueType valueType);
  BBDOperandMultiTypeClient(const KORListPtrBBDTypeInfo& types, AttributeTypePair* pair,
                            IDX_Filter_ValueType valueType);
  BBDOperandMultiTypeClient(const BBDOperandMultiTypeClient&) = default;
  BBDOperandMultiTypeClient& operator=(const BBDOperandMultiTypeClient&) = default;
  ~BBDOperandMultiTypeClient() override;

  KORStatus GetValString(const BBDOccurrence& occurrence, unsigned int level,
                         BBDIAttributeRead& reader, const char*& value, int& length) override;
  KORStatus GetValInt(const BBDOccurrence& occurrence, unsigned int level,
                      BBDIAttributeRead& reader, int& value) override;
  KORStatus GetValFloat(const BBDOccurrence& occurrence, unsigned int level,
                        BBDIAttributeRead& reader, float& value) override;
  KORStatus GetValBool(const BBDOccurrence& occurrence, unsigned int level,
                       BBDIAttributeRead& reader, bool& value) override;
  KORStatus GetValTime(const BBDOccurrence& occurrence, unsigned int level,
                       BBDIAttributeRead& reader, KORTime& value) override;
  void toString(KORUnicodeString& text) override;

 private:
  template <class Read>
  IDXBASE_LOCAL KORStatus ReadResolved(const BBDOccurrence& occurrence, unsigned int level,
                                       BBDIAttributeRead& reader, Read read);

  bool m_HasClientName;
  std::string m_ClientName;
};

// An attribute named by type names and an attribute name only. It renders
// (appending "Type1.Type2.attribute") but cannot be read: every read
// fails, and compiling it prints
// "BBDOperandMultiTypeNoCompiled::Compile not implemented or not tested\n"
// and keeps it.
class IDXBASE_API BBDOperandMultiTypeNoCompiled : public BBDOperand {
 public:
  BBDOperandMultiTypeNoCompiled(const KORListValKORUnicodeString& typeNames,
                                const KORUnicodeString& attributeName,
                                IDX_Filter_ValueType valueType);
  ~BBDOperandMultiTypeNoCompiled() override;
  IDX_Filter_OperandType GetOperandType() override;
  IDX_Filter_ValueType GetValueType() override;
  void toString(KORUnicodeString& text) override;

 protected:
  BBDOperand* Compile() override;

 private:
  KORListValKORUnicodeString m_TypeNames;
  KORUnicodeString m_AttributeName;
  IDX_Filter_ValueType m_ValueType;
};

#endif  // IDXBASE_FILTER_ATTRIBUTES_H_
