// Three-way comparison and "*" matching of length-delimited byte strings,
// the two string services of the filter engine's comparisons.
#ifndef IDXBASE_FILTER_STRING_COMPARE_H_
#define IDXBASE_FILTER_STRING_COMPARE_H_

namespace idxbase::detail {

// -1, 0 or 1 as a sorts before, with or after b: bytes compared as signed
// 8-bit values, folding A-Z onto a-z unless `caseSensitive`; a proper
// prefix sorts first. Lengths of 0 or below read no byte.
int CompareStrings(bool caseSensitive, int lengthA, const char* a, int lengthB, const char* b);

// 0 when subject s matches pattern p, 1 when it does not. The segments of
// p between runs of "*" must appear in s in order, without overlapping;
// the pattern is anchored at neither end. A negative subject length
// matches everything; the empty subject matches only a pattern of "*"s
// (or an empty one). Reads no byte at or beyond either length.
int CompareLikeStrings(bool caseSensitive, int lengthS, const char* s, int lengthP, const char* p);

// The first position at or after `from` where the `length` bytes of
// `segment` (no wildcard among them) occur in s[0, lengthS), folding A-Z
// onto a-z unless `caseSensitive`; -1 when there is none. The search that
// CompareLikeStrings makes for each segment.
int FindSegment(bool caseSensitive, const char* s, int from, int lengthS, const char* segment,
                int length);

// True when pattern p is one segment between runs of "*" (either run may
// be empty: "ab", "*ab", "**ab*"), with the segment's place in p. Such a
// pattern matches exactly the subjects of negative length and those that
// hold the segment (FindSegment from 0), so a caller matching many
// subjects against it may search the segment directly.
bool IsOneSegment(int lengthP, const char* p, int& start, int& length);

}  // namespace idxbase::detail

#endif  // IDXBASE_FILTER_STRING_COMPARE_H_
