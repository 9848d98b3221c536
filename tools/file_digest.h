// The MD5 digest of a file, computed with the library's MD5 primitives
// block by block, so that a progress bar can follow it.
#ifndef IDXBASE_TOOLS_FILE_DIGEST_H_
#define IDXBASE_TOOLS_FILE_DIGEST_H_

#include <string>

#include "input_file.h"
#include "progress_bar.h"

namespace idxbase_tool {

// Reads `file` to its end in blocks of IDX_Base_Constants::MD5_BUFFERS_SIZE
// bytes, advancing `progress`, and sets `digest` to the 32 upper-case
// hexadecimal digits of a checksum file. False on a read error (the
// reason is in file.error()).
[[nodiscard]] bool DigestFile(InputFile& file, ProgressBar& progress, std::string& digest);

}  // namespace idxbase_tool

#endif  // IDXBASE_TOOLS_FILE_DIGEST_H_
