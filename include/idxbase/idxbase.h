// idxbase: base services for an indexing and search engine. Including this
// header gives the whole interface.
#ifndef IDXBASE_IDXBASE_H_
#define IDXBASE_IDXBASE_H_

#include "idxbase/base_types.h"
#include "idxbase/bit_array.h"
#include "idxbase/byte_runs.h"
#include "idxbase/checksum.h"
#include "idxbase/dev_flags.h"
#include "idxbase/export.h"
#include "idxbase/filter_attributes.h"
#include "idxbase/filter_batch.h"
#include "idxbase/filter_expressions.h"
#include "idxbase/filter_operands.h"
#include "idxbase/filter_parser.h"
#include "idxbase/filter_vocabulary.h"
#include "idxbase/geometry.h"
#include "idxbase/geometry_lists.h"
#include "idxbase/hash_table.h"
#include "idxbase/hashing.h"
#include "idxbase/lock.h"
#include "idxbase/matrix.h"
#include "idxbase/performance.h"
#include "idxbase/platform.h"
#include "idxbase/settings.h"
#include "idxbase/spatial_index.h"
#include "idxbase/strings.h"
#include "idxbase/trace.h"
#include "idxbase/utf8_string.h"

#endif  // IDXBASE_IDXBASE_H_
