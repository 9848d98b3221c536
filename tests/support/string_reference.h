// The filter engine's string ordering and "*" matcher written out byte by
// byte, as the plain models that the tests, the fuzz targets and the
// benchmark hold the engine's against.
#ifndef IDXBASE_TESTS_SUPPORT_STRING_REFERENCE_H_
#define IDXBASE_TESTS_SUPPORT_STRING_REFERENCE_H_

namespace idxbase_test {

// The ordering: signed bytes, A-Z folded onto a-z unless case sensitive,
// then the shorter string first; a length of 0 or less reads nothing.
inline int ReferenceCompare(bool caseSensitive, int lengthA, const char* a, int lengthB,
                            const char* b) {
  for (int k = 0; k < lengthA && k < lengthB; ++k) {
    int x = static_cast<signed char>(a[k]);
    int y = static_cast<signed char>(b[k]);
    if (!caseSensitive && x >= 'A' && x <= 'Z') x += 'a' - 'A';
    if (!caseSensitive && y >= 'A' && y <= 'Z') y += 'a' - 'A';
    if (x != y) return x < y ? -1 : 1;
  }
  return lengthA < lengthB ? -1 : (lengthA > lengthB ? 1 : 0);
}

// The matcher: each segment of the pattern is searched from the end of the
// previous match, restarting one byte further on each mismatch.

inline int ReferenceLike(bool caseSensitive, int lengthS, const char* s, int lengthP,
                         const char* p) {
  auto fold = [caseSensitive](char c) {
    return (!caseSensitive && c >= 'A' && c <= 'Z') ? static_cast<char>(c + 32) : c;
  };
  auto onlyStars = [&](int from) {
    for (int k = from; k < lengthP; ++k) {
      if (p[k] != '*') return false;
    }
    return true;
  };
  if (lengthS == 0) {
    if (lengthP == 0) return 0;
    if (lengthP < 0) return 1;
    return onlyStars(0) ? 0 : 1;
  }
  if (lengthS < 0) return 0;
  int i = 0;
  int j = 0;
  for (;;) {
    if (j >= lengthP) return 0;
    while (j < lengthP && p[j] == '*') ++j;
    if (j >= lengthP) return 0;
    const int segment = j;
    for (int start = i;; ++start) {
      if (start == lengthS) return 1;
      int a = start;
      int b = segment;
      bool complete = false;
      for (;;) {
        if (p[b] == '*') {
          complete = true;
          break;
        }
        if (a >= lengthS || fold(s[a]) != fold(p[b])) break;
        ++a;
        ++b;
        if (b >= lengthP) {
          complete = true;
          break;
        }
      }
      if (complete) {
        i = a;
        j = b;
        break;
      }
    }
    if (i == lengthS) return onlyStars(j) ? 0 : 1;
  }
}

}  // namespace idxbase_test

#endif  // IDXBASE_TESTS_SUPPORT_STRING_REFERENCE_H_
