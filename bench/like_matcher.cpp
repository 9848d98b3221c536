// The "*" matcher of the filter engine against a plain byte-by-byte
// matcher, on the same subjects and patterns in one run. Each pair of
// results reads BM_Like_Reference/<pattern>/<case>/<length> against
// BM_Like_Idxbase/<pattern>/<case>/<length>; one iteration is one match.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "filter/string_compare.h"
#include "tests/support/string_reference.h"

namespace {

using idxbase_test::ReferenceLike;

// Identifiers such as "part-004217-" followed by mixed-case words, digits
// and separators, cut to `length` bytes.
std::vector<std::string> Subjects(int length, unsigned seed) {
  static const char kText[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_ ./";
  std::mt19937 engine(seed);
  std::uniform_int_distribution<int> pick(0, static_cast<int>(sizeof(kText)) - 2);
  std::uniform_int_distribution<unsigned> number(0, 999999);
  std::vector<std::string> subjects(1024);
  for (std::string& subject : subjects) {
    char prefix[32];
    std::snprintf(prefix, sizeof prefix, "part-%06u-", number(engine));
    subject = prefix;
    while (static_cast<int>(subject.size()) < length) subject += kText[pick(engine)];
    subject.resize(static_cast<size_t>(length));
  }
  return subjects;
}

using Matcher = int (*)(bool, int, const char*, int, const char*);

void RunLike(benchmark::State& state, Matcher match, std::string pattern, bool caseSensitive,
             int length) {
  const std::vector<std::string> subjects = Subjects(length, 20240611u);
  const int lengthP = static_cast<int>(pattern.size());
  size_t next = 0;
  int matches = 0;
  for (auto _ : state) {
    const std::string& s = subjects[next++ & (subjects.size() - 1)];
    const int result =
        match(caseSensitive, static_cast<int>(s.size()), s.data(), lengthP, pattern.data());
    benchmark::DoNotOptimize(result);
    matches += result == 0 ? 1 : 0;
  }
  state.counters["match%"] = benchmark::Counter(
      100.0 * matches / static_cast<double>(state.iterations() > 0 ? state.iterations() : 1));
}

void RegisterAll() {
  const char* const patterns[] = {"*12*", "12", "ab*cd", "*x*y*z"};
  for (const char* pattern : patterns) {
    for (bool caseSensitive : {true, false}) {
      for (int length : {16, 64, 256}) {
        const std::string suffix = std::string("/") + pattern +
                                   (caseSensitive ? "/sensitive/" : "/insensitive/") +
                                   std::to_string(length);
        benchmark::RegisterBenchmark(("BM_Like_Reference" + suffix).c_str(), RunLike,
                                     &ReferenceLike, pattern, caseSensitive, length);
        benchmark::RegisterBenchmark(("BM_Like_Idxbase" + suffix).c_str(), RunLike,
                                     &idxbase::detail::CompareLikeStrings, pattern, caseSensitive,
                                     length);
      }
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  RegisterAll();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
