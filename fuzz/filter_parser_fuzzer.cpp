// The filter-language parser on arbitrary text: it never crashes, every
// refusal names a position inside the text, every accepted filter
// evaluates to one of the three answers, and a filter whose rendering can
// be read back renders the same once parsed again.
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

// Sets, variables and time constants render as nothing readable, and a
// string holding a double quote renders ambiguously: their renderings are
// not expected to read back.
bool MayRenderUnreadably(std::string_view text) {
  const auto has = [text](std::string_view what) {
    return text.find(what) != std::string_view::npos;
  };
  return has("{") || has("$") || has("@") || has("\"\"") || (has("'") && has("\""));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const BBDFilterSimpleSchema* const schema = idxbase_fuzz::PartSchema();
  static const char* variable = "nut";
  BBDFilterParser parser(schema);
  parser.BindVariable("v", &variable);

  const std::string_view text(reinterpret_cast<const char*>(data), size);
  BBDExpression* parsed = nullptr;
  BBDFilterParseError error;
  if (parser.Parse(text, parsed, error) != KOR_S_OK) {
    Check(parsed == nullptr, "a refused text gave a tree");
    Check(error.line >= 1 && error.column >= 1 && !error.message.empty(),
          "a refusal without a position or message");
    Check(!error.Describe().empty(), "an empty description");
    return 0;
  }
  const std::unique_ptr<BBDExpression> tree(parsed);
  FixedReader reader;
  const KORStatus answer = tree->eval(OneLevel(), 0, reader, size % 2 == 0);
  Check(answer == IDX_FILTER_HOLDS || answer == IDX_FILTER_DOES_NOT ||
            answer == IDX_FILTER_UNDECIDABLE,
        "an answer outside the three");

  const std::string rendering = Render(*tree);
  if (MayRenderUnreadably(text)) return 0;
  BBDExpression* reparsed = nullptr;
  Check(parser.Parse(rendering, reparsed, error) == KOR_S_OK, "a rendering does not read back");
  const std::unique_ptr<BBDExpression> again(reparsed);
  Check(Render(*again) == rendering, "a rendering reads back as another filter");
  return 0;
}
