// idxbase names: the on-disk vocabulary of an index (IDX_Base_Constants).
#include <cstdio>

#include "command_line.h"
#include "commands.h"
#include "idxbase/settings.h"

namespace idxbase_tool {
namespace {

constexpr CommandHelp kHelp{
    "names", "[--all]",
    "Prints the names of the directories and files of an index, one\n"
    "\"NAME value\" line each, NAME being the IDX_Base_Constants member.\n"
    "\n"
    "  --all   also the step-log markers, the domain words and the numeric\n"
    "          constants\n"};

struct Name {
  const char* name;
  const char* value;
};

#define IDXBASE_NAME(member) \
  Name { #member, IDX_Base_Constants::member }

const Name kIndexNames[] = {
    IDXBASE_NAME(SYNCHRO_INDEX_FILE_DIR_NAME),
    IDXBASE_NAME(MODEL_INDEX_FILE_DIR_NAME),
    IDXBASE_NAME(OV_INDEX_FILE_DIR_NAME),
    IDXBASE_NAME(DIH_INDEX_FILE_DIR_NAME),
    IDXBASE_NAME(IMPACTLOG_FILE_DIR_NAME),
    IDXBASE_NAME(ENTITIESIDS_INDEX_FILE_DIR_NAME),
    IDXBASE_NAME(SECURITY_INDEX_DIRECTORY),
    IDXBASE_NAME(URLMAP_INDEX_DIRECTORY),
    IDXBASE_NAME(DWH_INDEX_DIRECTORY),
    IDXBASE_NAME(PATH_EXPORT),
    IDXBASE_NAME(INDEX_REPORTS_FRAME_NAME),
    IDXBASE_NAME(IMPACTLOG_TYPE_FILE_NAME),
    IDXBASE_NAME(CURRENT_GEN_FILE_BASE_NAME),
    IDXBASE_NAME(ATTRIBUTES_INDEX_FILE_BASE_NAME),
    IDXBASE_NAME(INSTANCES_INDEX_FILE_BASE_NAME),
    IDXBASE_NAME(REVERSE_INSTANCES_INDEX_FILE_BASE_NAME),
    IDXBASE_NAME(RTREE_INDEX_FILE_BASE_NAME),
    IDXBASE_NAME(SECURITY_INDEX_FILE_BASE_NAME),
    IDXBASE_NAME(IDXBUFFER_FILE_BASE_NAME),
    IDXBASE_NAME(OCCURENCES_INDEX_FILE_BASE_NAME),
    IDXBASE_NAME(RTREEOCCURENCES_INDEX_FILE_BASE_NAME),
    IDXBASE_NAME(IMPACTED_SLOTS_LOG),
    IDXBASE_NAME(IMPACTED_NON3D_LOG),
    IDXBASE_NAME(LOG_INDEX_FILE_BASE_NAME),
    IDXBASE_NAME(DERIVED_LOG_INDEX_FILE_BASE_NAME),
    IDXBASE_NAME(FAILED_DERIVED_LOG_INDEX_FILE_BASE_NAME),
    IDXBASE_NAME(INDEX_URL_FILE_NAME),
    IDXBASE_NAME(INDEX_DWH_FILE_NAME),
    IDXBASE_NAME(DISPLAYNAMES_FILE_BASE_NAME),
    IDXBASE_NAME(SETTINGS_INDEX_FILE_BASE_NAME),
    IDXBASE_NAME(ALT_SETTINGS_INDEX_FILE_BASE_NAME),
    IDXBASE_NAME(SETTINGS_BACKUP_FILE_NAME),
    IDXBASE_NAME(INDEX_REPORTS_FILE_BASE_NAME),
    IDXBASE_NAME(INDEX_CUSTOPLMTYPE_FILE_NAME),
    IDXBASE_NAME(INDEX_XMLATTRIBUTES_FILE_BASE),
    IDXBASE_NAME(INDEX_XMLATTRIBUTES_WITH_DATE_FILE_NAME),
    IDXBASE_NAME(DIH_FILE_BASE_NAME),
    IDXBASE_NAME(MAJOR_DIH_FILE_BASE_NAME),
    IDXBASE_NAME(OV_FILE_BASE_NAME),
    IDXBASE_NAME(OV_DIH_FILE_BASE_NAME),
    IDXBASE_NAME(OV_ROLE_DIH_FILE_BASE_NAME),
    IDXBASE_NAME(OV_ORG_DIH_FILE_BASE_NAME),
    IDXBASE_NAME(OV_OWNERSHIP_DIH_FILE_BASE_NAME),
    IDXBASE_NAME(INDEXING_PARAM_FILE_NAME),
    IDXBASE_NAME(EXPORT_DB_NAME),
    IDXBASE_NAME(EXPORT_DERIVED_DB_NAME),
    IDXBASE_NAME(META_MEMORY_TRACES),
    IDXBASE_NAME(SYNC_MEMORY_TRACES),
    IDXBASE_NAME(CHECKSUM_FILENAME),
};

const Name kOtherWords[] = {
    IDXBASE_NAME(BEGINIDXSTEP),
    IDXBASE_NAME(CURIDXSTEP),
    IDXBASE_NAME(ENDIDXSTEP),
    IDXBASE_NAME(PID),
    IDXBASE_NAME(CNX),
    IDXBASE_NAME(NEWREF),
    IDXBASE_NAME(NEWREPREF),
    IDXBASE_NAME(NEWINST),
    IDXBASE_NAME(NEWREPINST),
    IDXBASE_NAME(ETL),
    IDXBASE_NAME(DELOBJ),
    IDXBASE_NAME(REPORT_CREATED),
    IDXBASE_NAME(MODEL),
    IDXBASE_NAME(CFG),
    IDXBASE_NAME(ATTR),
    IDXBASE_NAME(OCTREE),
    IDXBASE_NAME(IDXGEO),
    IDXBASE_NAME(CONSOLIDATION),
    IDXBASE_NAME(DERIVED),
    IDXBASE_NAME(SECU),
    IDXBASE_NAME(LOG),
    IDXBASE_NAME(MAGIC_NO_OCTREE),
    IDXBASE_NAME(PATH_SEPARATOR_STR),
};

#undef IDXBASE_NAME

void PrintNumbers() {
  using C = IDX_Base_Constants;
  std::printf("PATH_SEPARATOR %c\n", C::PATH_SEPARATOR);
  std::printf("MAX_OCTREE_SIZE %u\n", C::MAX_OCTREE_SIZE);
  std::printf("MIN_OCTREE_VOXEL_SIZE %g\n", static_cast<double>(C::MIN_OCTREE_VOXEL_SIZE));
  std::printf("OCTREE_EPSILON %g\n", static_cast<double>(C::OCTREE_EPSILON));
  std::printf("INVALID_OVDID %d\n", C::INVALID_OVDID);
  std::printf("MD5_BUFFERS_SIZE %u\n", C::MD5_BUFFERS_SIZE);
}

}  // namespace

int NamesCommand(int argc, char** argv) {
  ParsedArguments arguments;
  if (!ParseArguments(kHelp, argc, argv, {{"--all", false}}, arguments)) return kExitUsage;
  if (arguments.help) return PrintHelp(kHelp);
  if (!arguments.operands.empty() || arguments.sawSeparator) {
    return UsageError(kHelp, "takes no operands");
  }
  for (const Name& name : kIndexNames) std::printf("%s %s\n", name.name, name.value);
  if (!arguments.Has("--all")) return kExitSuccess;
  for (const Name& name : kOtherWords) std::printf("%s %s\n", name.name, name.value);
  PrintNumbers();
  return kExitSuccess;
}

}  // namespace idxbase_tool
