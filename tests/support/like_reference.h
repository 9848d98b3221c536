// The "*" matcher written out byte by byte, as the plain model that the
// tests and the benchmark hold the filter engine's matcher against: each
// segment of the pattern is searched from the end of the previous match,
// restarting one byte further on each mismatch.
#ifndef IDXBASE_TESTS_SUPPORT_LIKE_REFERENCE_H_
#define IDXBASE_TESTS_SUPPORT_LIKE_REFERENCE_H_

namespace idxbase_test {

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

#endif  // IDXBASE_TESTS_SUPPORT_LIKE_REFERENCE_H_
