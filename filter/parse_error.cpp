#include "idxbase/filter_parser.h"

std::string BBDFilterParseError::Describe() const {
  std::string text = "line " + std::to_string(line) + ", column " + std::to_string(column) + ": " +
                     message + "\n" + sourceLine + "\n";
  // The caret sits under the column's character: one space per character
  // before it, a tab kept as a tab so that it lines up the same way.
  int character = 1;
  for (std::size_t at = 0; at < sourceLine.size() && character < column; ++at) {
    const unsigned char c = static_cast<unsigned char>(sourceLine[at]);
    if ((c & 0xC0) == 0x80) continue;  // a continuation byte of the same character
    text += c == '\t' ? '\t' : ' ';
    ++character;
  }
  for (; character < column; ++character) text += ' ';
  return text + "^\n";
}
