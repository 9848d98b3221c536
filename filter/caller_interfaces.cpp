// Out-of-line members of the caller-side interfaces, so that their tables
// of virtual operations live in the library.
#include <cstdio>

#include "idxbase/filter_attributes.h"

AttributeTypePair::~AttributeTypePair() = default;
void AttributeTypePair::print() { std::printf("<todoType.%d>", m_Type); }

BBDTypeInfo::~BBDTypeInfo() = default;
BBDOccurrence::~BBDOccurrence() = default;
BBDIAttributeRead::~BBDIAttributeRead() = default;
int BBDIAttributeRead::Reserved() { return 0; }
