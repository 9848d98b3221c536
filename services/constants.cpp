#include "idxbase/kor_system.h"
#include "idxbase/settings.h"

// Directories of an index.
const char* const IDX_Base_Constants::SYNCHRO_INDEX_FILE_DIR_NAME = "IndexSynchro";
const char* const IDX_Base_Constants::MODEL_INDEX_FILE_DIR_NAME = "IndexModel";
const char* const IDX_Base_Constants::OV_INDEX_FILE_DIR_NAME = "IndexOV";
const char* const IDX_Base_Constants::DIH_INDEX_FILE_DIR_NAME = "DIH";
const char* const IDX_Base_Constants::IMPACTLOG_FILE_DIR_NAME = "ImpactLog";
const char* const IDX_Base_Constants::ENTITIESIDS_INDEX_FILE_DIR_NAME = "DerivedIndex";
const char* const IDX_Base_Constants::SECURITY_INDEX_DIRECTORY = "SecurityIndex";
const char* const IDX_Base_Constants::URLMAP_INDEX_DIRECTORY = "URLMap";
const char* const IDX_Base_Constants::DWH_INDEX_DIRECTORY = "IndexDWH";
const char* const IDX_Base_Constants::PATH_EXPORT = "Export";
const char* const IDX_Base_Constants::INDEX_REPORTS_FRAME_NAME = "frames";

// Names and base names of index files.
const char* const IDX_Base_Constants::IMPACTLOG_TYPE_FILE_NAME = "ImpactLogTypes";
const char* const IDX_Base_Constants::CURRENT_GEN_FILE_BASE_NAME = "IndexGen";
const char* const IDX_Base_Constants::ATTRIBUTES_INDEX_FILE_BASE_NAME = "IndexAttribute";
const char* const IDX_Base_Constants::INSTANCES_INDEX_FILE_BASE_NAME = "IndexInstance";
const char* const IDX_Base_Constants::REVERSE_INSTANCES_INDEX_FILE_BASE_NAME =
    "IndexReverseInstance";
const char* const IDX_Base_Constants::RTREE_INDEX_FILE_BASE_NAME = "IndexRTree";
const char* const IDX_Base_Constants::SECURITY_INDEX_FILE_BASE_NAME = "IndexSecurity";
const char* const IDX_Base_Constants::IDXBUFFER_FILE_BASE_NAME = "IndexCurrent";
const char* const IDX_Base_Constants::OCCURENCES_INDEX_FILE_BASE_NAME = "IndexOccurence";
const char* const IDX_Base_Constants::RTREEOCCURENCES_INDEX_FILE_BASE_NAME = "IndexRTreeOccurence";
const char* const IDX_Base_Constants::IMPACTED_SLOTS_LOG = "IndexImpactedSlotsLog";
const char* const IDX_Base_Constants::IMPACTED_NON3D_LOG = "IndexNon3DLog";
const char* const IDX_Base_Constants::LOG_INDEX_FILE_BASE_NAME = "IndexLog";
const char* const IDX_Base_Constants::DERIVED_LOG_INDEX_FILE_BASE_NAME = "DerivedLog";
const char* const IDX_Base_Constants::FAILED_DERIVED_LOG_INDEX_FILE_BASE_NAME = "FailedDerivedLog";
const char* const IDX_Base_Constants::INDEX_URL_FILE_NAME = "IndexURL";
const char* const IDX_Base_Constants::INDEX_DWH_FILE_NAME = "DWHIndex";
const char* const IDX_Base_Constants::DISPLAYNAMES_FILE_BASE_NAME = "DisplayNameConfiguration.txt";
const char* const IDX_Base_Constants::SETTINGS_INDEX_FILE_BASE_NAME = "IndexSettings.idx";
const char* const IDX_Base_Constants::ALT_SETTINGS_INDEX_FILE_BASE_NAME = "IdxFile.idx";
const char* const IDX_Base_Constants::SETTINGS_BACKUP_FILE_NAME = "IndexMemory";
const char* const IDX_Base_Constants::INDEX_REPORTS_FILE_BASE_NAME = "Index.report";
const char* const IDX_Base_Constants::INDEX_CUSTOPLMTYPE_FILE_NAME = "CustoPLMTypeAttr.dic";
const char* const IDX_Base_Constants::INDEX_XMLATTRIBUTES_FILE_BASE = "PLMAttrDico";
const char* const IDX_Base_Constants::INDEX_XMLATTRIBUTES_WITH_DATE_FILE_NAME =
    "PLMAttrDicoWithDate";
const char* const IDX_Base_Constants::DIH_FILE_BASE_NAME = "IndexDIH";
const char* const IDX_Base_Constants::MAJOR_DIH_FILE_BASE_NAME = "IndexDIHMajors";
const char* const IDX_Base_Constants::OV_FILE_BASE_NAME = "IndexOV";
const char* const IDX_Base_Constants::OV_DIH_FILE_BASE_NAME = "IndexDIHOV";
const char* const IDX_Base_Constants::OV_ROLE_DIH_FILE_BASE_NAME = "IndexDIHOVRole";
const char* const IDX_Base_Constants::OV_ORG_DIH_FILE_BASE_NAME = "IndexDIHOVOrg";
const char* const IDX_Base_Constants::OV_OWNERSHIP_DIH_FILE_BASE_NAME = "IndexDIHOVOwnership";
const char* const IDX_Base_Constants::INDEXING_PARAM_FILE_NAME = "IndexingParam";
const char* const IDX_Base_Constants::EXPORT_DB_NAME = "index.sqlite3";
const char* const IDX_Base_Constants::EXPORT_DERIVED_DB_NAME = "derived.sqlite3";
const char* const IDX_Base_Constants::META_MEMORY_TRACES = "MetaMem.csv";
const char* const IDX_Base_Constants::SYNC_MEMORY_TRACES = "SyncMem.csv";
const char* const IDX_Base_Constants::CHECKSUM_FILENAME = "checksum.txt";

// Markers of step logs and reports.
const char* const IDX_Base_Constants::BEGINIDXSTEP = "##BEGINIDXSTEP";
const char* const IDX_Base_Constants::CURIDXSTEP = "##CURIDXSTEP";
const char* const IDX_Base_Constants::ENDIDXSTEP = "##ENDIDXSTEP";
const char* const IDX_Base_Constants::PID = "##PID";
const char* const IDX_Base_Constants::CNX = "##CNX";
const char* const IDX_Base_Constants::NEWREF = "##NEWREF";
const char* const IDX_Base_Constants::NEWREPREF = "##NEWREPREF";
const char* const IDX_Base_Constants::NEWINST = "##NEWINST";
const char* const IDX_Base_Constants::NEWREPINST = "##NEWREPINST";
const char* const IDX_Base_Constants::ETL = "##ETL";
const char* const IDX_Base_Constants::DELOBJ = "##DELOBJ";
const char* const IDX_Base_Constants::REPORT_CREATED = "##REPORT_CREATED";

// Domain words.
const char* const IDX_Base_Constants::MODEL = "MODEL";
const char* const IDX_Base_Constants::CFG = "CONFIG";
const char* const IDX_Base_Constants::ATTR = "ATTRIBUTE";
const char* const IDX_Base_Constants::OCTREE = "OCTREE";
const char* const IDX_Base_Constants::IDXGEO = "GEOMETRY";
const char* const IDX_Base_Constants::CONSOLIDATION = "CONSOLIDATION";
const char* const IDX_Base_Constants::DERIVED = "DERIVED";
const char* const IDX_Base_Constants::SECU = "SECURITY";
const char* const IDX_Base_Constants::LOG = "LOG";
const char IDX_Base_Constants::PATH_SEPARATOR = KOR_PATH_SEPARATOR;
const char* const IDX_Base_Constants::PATH_SEPARATOR_STR = "/";
const unsigned int IDX_Base_Constants::MAX_OCTREE_SIZE = 33554432u;
const float IDX_Base_Constants::MIN_OCTREE_VOXEL_SIZE = 0.001f;
const float IDX_Base_Constants::OCTREE_EPSILON = 0.0001f;
const int IDX_Base_Constants::INVALID_OVDID = -1;
const unsigned int IDX_Base_Constants::MD5_BUFFERS_SIZE = 1048576u;
const char* const IDX_Base_Constants::MAGIC_NO_OCTREE = "MAGIC_NO_OCTREE";
