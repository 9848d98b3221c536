#!/usr/bin/env bash
# Checks the dynamic symbols that libidxbase defines: the interface must be
# there, and nothing of the library's own beyond it.
set -euo pipefail
library=$1
symbols=$(nm -D --defined-only "$library" | c++filt)

fail=0
# Names that must be exported (one per interface class or function family).
for name in 'KORUnicodeString::KORUnicodeString(char const\*)' 'KORSysTSUnicodeString::' \
    'KORTime::ConvertToString' 'KORRawCollPV::Append' 'KORListValKORUnicodeString::Append' \
    'KORThreads::Kill' 'KORSettingRepository::GetRepository' 'KORGetEnv' 'KORMakePath' \
    '_KORCreateDirectory' '_KORDeleteFile' 'KOROpenDirectory' 'KORReadDirectory' \
    'KORCloseDirectory' 'KORSleep' 'KORSysIsProcessAlive' 'KORFatalError' \
    'KORGetMERLOLevelInfo' 'KORGetProcessTimes' 'KORGetTickCount' \
    'IDX_DEV_LA::_FastCV' 'IDX_DEV_LA::KeepGeneration()' 'IDX_DEV_LA::RunWithCVServlet()' \
    'IDX_Base_Constants::CHECKSUM_FILENAME' 'IDX_Base_Settings::GetIdxBaseSettings()' \
    'IDX_Base_Trace::Debug(' 'IDX_Base_Trace::RedirectStdoutToTraces' \
    'PLMIdxPerfTrace::Trace(' 'PLMSearchTimer::StartTimer' 'GetAboutInfo(' \
    'typeinfo for KORThreads' 'vtable for PLMSearchTimer' \
    'IDX_Filter_Infos::NumberOfOperands' 'IDX_Filter_Infos::OperatorType' \
    'BBDOperand::Compile(BBDOperand*&)' 'BBDOperandSet::Append' 'vtable for BBDOperandStringConst' \
    'typeinfo for BBDIAttributeRead' 'vtable for BBDOccurrence' 'typeinfo for BBDTypeInfo' \
    'AttributeTypePair::print()' 'BBDOperandMultiTypeClient::GetValInt' \
    'BBDExpression::Compile(BBDExpression*&)' 'BBDBasicExpression::eval' \
    'BBDComposedExpression::toString' 'vtable for BBDNAExpression' \
    'BBDFilterParser::Parse' 'BBDFilterParser::ParseTime' 'BBDFilterParseError::Describe' \
    'vtable for BBDFilterSimpleSchema' \
    'IDX_Base_Buffer::GetDataForWriting' 'IDX_Base_ByteArray::GetHashKey' \
    'IDX_Base_String::SortCompare' 'vtable for IDX_Base_Identifier' \
    'KORListValIDX_Base_String::Append' 'IDX_StringHash(' 'ConvertToHexaPreAlloc(' \
    'IDX_Base_Endian::swap(float&)' 'BBDVerySimpleHashTable::PutElem' \
    'BBDVerySimpleHashTable::BBDVerySimpleHashTable(BBDVerySimpleHashTable const&)' \
    'BBDVerySimpleHashTable::BBDVerySimpleHashTableIterator::Next()' \
    'vtable for BBDVerySimpleHashTable' 'PLMIdxBitArray::GetBitValue' 'vtable for PLMIdxBitArray' \
    'BBDUTF8String::ConvertToUTF8' 'BBDUTF8String::operator=(BBDUTF8String const&)' \
    'IDX_Base_3x3Matrix::IDX_Base_3x3Matrix(IDX_Base_3x3Matrix const&)' \
    'IDX_Base_3x3Matrix::RightMultiply' 'IDX_Base_4x4Matrix::operator=' \
    'IDX_Base_4x4Matrix::Multiply' 'IDX_Base_BoundingBox::Union' 'IDX_Base_BoundingBox::Volume' \
    'IDX_Base_GeometryServices::GetTransfoType' 'IDX_Base_GeometryServices::TriangleToBox' \
    'PLMIdxMatrix::PLMIdxMatrix(PLMIdxMatrix const&)' 'PLMIdxMatrix::SetAsMultiply' \
    'PLMIdxMatrix::GetInvertedMatrix' 'PLMIdxMatrix::Multiply(KORMathVectorf const&' \
    'PLMIdxMatrix::IdentityMatrix' 'vtable for PLMIdxIBaseOctree' \
    'PLMIdxIBaseOctree::GetOctreeType' 'vtable for IDX_Base_RTree' 'IDX_Base_RTree::IDX_Base_RTree()' \
    'IDX_Base_ListOf_Point::Append' 'IDX_Base_ListOf_Triangle::GetArray' \
    'BBDLock::Lock(' 'vtable for BBDLock' 'RealIsProcessAlive(' \
    'IDX_Checksum::ComputeCheckSum(' 'MD5Init' 'MD5Update' 'MD5Final' 'MD5Transform' \
    'idxbase::DigestDescriptor(' 'idxbase::FileReplacement::Commit()' 'idxbase::Descriptor::Close()' \
    'idxbase::OpenDescriptor(' 'idxbase::WriteAll(' 'idxbase::DescribeDevFlag(' \
    'idxbase::DescribeFlagRules('; do
  if ! grep -qF -- "${name//\\/}" <<<"$symbols"; then
    echo "missing from the exports: $name"
    fail=1
  fi
done

# Everything exported must belong to the interface: no instantiation of the
# standard library's templates (the library's version script makes them
# local), nothing of the library's own beyond the interface.
names=$(awk '{ $1=""; $2=""; sub(/^  /, ""); print }' <<<"$symbols")
standard_re='^((vtable|typeinfo|typeinfo name|VTT|guard variable|construction vtable) for |[^(]* )?(std|__gnu_cxx|__cxxabiv1)::'
standard=$(grep -E "$standard_re" <<<"$names" || true)
if [ -n "$standard" ]; then
  echo "standard-library symbols are exported:"
  echo "$standard"
  fail=1
fi
interface='^(vtable for |typeinfo for |typeinfo name for |VTT for |guard variable for |non-virtual thunk to )?(KOR|_KOR|IDX_|PLM|BBD|AttributeTypePair|GetAboutInfo|RealIsProcessAlive|MD5|ConvertToHexa|idxbase::|operator[+=!<>]|_init$|_fini$)'
leaks=$(grep -vE "$interface" <<<"$names" | grep -vE "$standard_re|^\$" || true)
if [ -n "$leaks" ]; then
  echo "exported but not part of the interface:"
  echo "$leaks"
  fail=1
fi
for internal in 'idxbase::detail' '(anonymous namespace)' 'idxbase_tool'; do
  if grep -qF -- "$internal" <<<"$symbols"; then
    echo "internal names are exported: $internal"
    fail=1
  fi
done
exit $fail
