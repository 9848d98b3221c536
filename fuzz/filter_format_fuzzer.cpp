// The filter formatter on every tree the parser builds from arbitrary
// text: the formatted text parses again, to a tree that renders and
// formats the same and answers the same. Both with and without the
// parser's compilation (the input's first byte chooses).
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "fixed_filter_reader.h"
#include "fuzz_check.h"
#include "idxbase/filter_parser.h"

namespace {

using idxbase_fuzz::Check;
using idxbase_fuzz::FixedReader;
using idxbase_fuzz::OneLevel;
using idxbase_fuzz::Render;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const BBDFilterSimpleSchema* const schema = idxbase_fuzz::PartSchema();
  static const char* variable = "nut";
  static const char* other = "bolt";
  if (size == 0) return 0;
  BBDFilterParser parser(schema);
  parser.BindVariable("v", &variable);
  parser.BindVariable("w", &other);
  parser.SetCompile(data[0] % 2 == 0);

  const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
  BBDExpression* parsed = nullptr;
  BBDFilterParseError error;
  if (parser.Parse(text, parsed, error) != KOR_S_OK) return 0;
  const std::unique_ptr<BBDExpression> tree(parsed);

  std::string formatted;
  Check(parser.Format(tree.get(), formatted) == KOR_S_OK, "a parsed tree does not format");
  BBDExpression* reparsed = nullptr;
  Check(parser.Parse(formatted, reparsed, error) == KOR_S_OK, "formatted text does not parse");
  const std::unique_ptr<BBDExpression> again(reparsed);
  std::string reformatted;
  Check(parser.Format(again.get(), reformatted) == KOR_S_OK, "a reparsed tree does not format");
  Check(reformatted == formatted, "formatted text parses to a tree that formats otherwise");
  Check(Render(*again) == Render(*tree), "formatted text parses to a tree that renders otherwise");
  FixedReader reader;
  for (const bool caseSensitive : {true, false}) {
    Check(tree->eval(OneLevel(), 0, reader, caseSensitive) ==
              again->eval(OneLevel(), 0, reader, caseSensitive),
          "formatted text parses to a tree that answers otherwise");
  }
  return 0;
}
