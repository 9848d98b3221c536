// Process-wide configuration of the indexing engine: the development
// switches read from the environment when the library is loaded, the names
// of the files and directories of an index on disk, and the settings
// repository of the engine.
#ifndef IDXBASE_SETTINGS_H_
#define IDXBASE_SETTINGS_H_

#include <cstdint>

#include "idxbase/export.h"
#include "idxbase/kor_settings.h"
#include "idxbase/kor_string.h"

// The development and tuning switches of the indexing engine.
//
// The static members are set from environment variables while the library
// is loaded, before any caller can run, and never change afterwards: they
// are safe to read from any thread. Five accessors (RunWithCVServlet,
// dontKillOrpheanBuilders, getKORIndexStoragePath, isPlmIndexDisabled,
// isPlmIndexInProcess) read their variables afresh at every call instead.
//
// Every switch's variable, reading rule and default are listed once, in
// the library's switch table, which the loader reads; idxbase/dev_flags.h
// describes its rows with the values in effect, as `idxbase flags` prints
// them.
//
// The library itself consults none of these switches; the engine does.
class IDXBASE_API IDX_DEV_LA {
 public:
  IDX_DEV_LA& operator=(const IDX_DEV_LA&) { return *this; }
  IDX_DEV_LA& operator=(IDX_DEV_LA&&) noexcept { return *this; }

  static bool UseVLMSimplified();
  static bool DWHIndexing();
  static bool AdvancedMigration();
  static bool IsIndexTextOnly();
  static bool ForcePostProcRep();
  static bool EvalAllAtMaybe();
  static bool IsPersistantConfigCacheActive();
  // Returns a copy.
  static KORUnicodeString GetPersistantConfigCacheDir();
  static bool IsRTreeBuildActive();
  static bool IsRTreeDisabledRT();
  static bool CheckMemoryConsistency();
  static bool IsRecoverInstance();
  static int RecoverInstanceSeconds();
  static bool KeepLocalTaskLog();
  static bool IndexPrivateReps();
  static bool ReadableTimeStampsForBBDMonitorFolders();
  static bool UseDeleteLog();
  static bool IsSimilarBSFFilter();
  static bool IsNewSecuEnabled();
  static std::uint32_t QueryTimerMilliSecond();
  static std::uint32_t DerivedObjectComputationTimeLimitForBuilderLogsInMs();
  static std::uint32_t MaxMemorySizeForBuilderInMB();
  static std::uint32_t MaxMemorySizeForAllBuildersinMB();
  static int KeepGeneration();

  // Read at every call.
  static bool RunWithCVServlet();
  static bool dontKillOrpheanBuilders();
  // The variable's text is owned by the environment; null when not defined.
  static const char* getKORIndexStoragePath();
  static bool isPlmIndexDisabled();
  static bool isPlmIndexInProcess();

  // Set at load (the accessors above return most of them).
  static bool _FastCV;
  static bool _FastCVWrap;
  static bool _FastCVNames;
  static bool _FastCVRootIds;
  static bool _FastCVBBoxes;
  static bool _Log2CV;
  static bool _Log2CVPerfo;
  static bool _ForceOctreeWithThbOnly;
  static bool _UseVLMSimplified;
  static bool _DWHIndexing;
  static bool _AdvancedMigration;
  static bool _IndexTextOnly;
  static bool _postProcRep;
  static bool _postProcAllObjects;
  static bool _PersistantConfigCacheActive;
  static KORUnicodeString _PersistantConfigCacheDir;
  static bool _BuildRTree;
  static bool _DisableRTree;
  static bool _OldBBComputation;
  static bool _CheckMemoryConsistency;
  static bool _RecoverInstance;
  static int _RecoverInstanceSeconds;
  static bool _KeepLocalTaskLog;
  static bool _IndexPrivateReps;
  static bool _ReadableTimeStampsForBBDMonitorFolders;
  static bool IDXUseQuillonSecurityInsteadOfOCDX;
  static bool _UseDeleteLog;
  static bool _SimilarBSFFilter;
  static bool _newSecuEnabled;
  static std::uint32_t _QueryTimerMilliSecond;
  static std::uint32_t _DerivedObjectComputationTimeLimitForBuilderLogsInMs;
  static std::uint32_t _MaxMemorySizeForBuilderInMB;
  static std::uint32_t _MaxMemorySizeForAllBuildersInMB;
  static int _KeepGeneration1;
  static int _KeepGeneration2;
  static int _KeepGeneration;
};

// The on-disk vocabulary of an index: names of its directories and files,
// markers of step logs, domain words and a few numeric constants. Every
// text is a static NUL-terminated string; the values are part of the index
// format and never change. Safe to read from any thread.
class IDXBASE_API IDX_Base_Constants {
 public:
  IDX_Base_Constants& operator=(const IDX_Base_Constants&) { return *this; }
  IDX_Base_Constants& operator=(IDX_Base_Constants&&) noexcept { return *this; }

  // Directories of an index.
  static const char* const SYNCHRO_INDEX_FILE_DIR_NAME;
  static const char* const MODEL_INDEX_FILE_DIR_NAME;
  static const char* const OV_INDEX_FILE_DIR_NAME;
  static const char* const DIH_INDEX_FILE_DIR_NAME;
  static const char* const IMPACTLOG_FILE_DIR_NAME;
  static const char* const ENTITIESIDS_INDEX_FILE_DIR_NAME;
  static const char* const SECURITY_INDEX_DIRECTORY;
  static const char* const URLMAP_INDEX_DIRECTORY;
  static const char* const DWH_INDEX_DIRECTORY;
  static const char* const PATH_EXPORT;
  static const char* const INDEX_REPORTS_FRAME_NAME;

  // Names and base names of index files.
  static const char* const IMPACTLOG_TYPE_FILE_NAME;
  static const char* const CURRENT_GEN_FILE_BASE_NAME;
  static const char* const ATTRIBUTES_INDEX_FILE_BASE_NAME;
  static const char* const INSTANCES_INDEX_FILE_BASE_NAME;
  static const char* const REVERSE_INSTANCES_INDEX_FILE_BASE_NAME;
  static const char* const RTREE_INDEX_FILE_BASE_NAME;
  static const char* const SECURITY_INDEX_FILE_BASE_NAME;
  static const char* const IDXBUFFER_FILE_BASE_NAME;
  static const char* const OCCURENCES_INDEX_FILE_BASE_NAME;
  static const char* const RTREEOCCURENCES_INDEX_FILE_BASE_NAME;
  static const char* const IMPACTED_SLOTS_LOG;
  static const char* const IMPACTED_NON3D_LOG;
  static const char* const LOG_INDEX_FILE_BASE_NAME;
  static const char* const DERIVED_LOG_INDEX_FILE_BASE_NAME;
  static const char* const FAILED_DERIVED_LOG_INDEX_FILE_BASE_NAME;
  static const char* const INDEX_URL_FILE_NAME;
  static const char* const INDEX_DWH_FILE_NAME;
  static const char* const DISPLAYNAMES_FILE_BASE_NAME;
  static const char* const SETTINGS_INDEX_FILE_BASE_NAME;
  static const char* const ALT_SETTINGS_INDEX_FILE_BASE_NAME;
  static const char* const SETTINGS_BACKUP_FILE_NAME;
  static const char* const INDEX_REPORTS_FILE_BASE_NAME;
  static const char* const INDEX_CUSTOPLMTYPE_FILE_NAME;
  static const char* const INDEX_XMLATTRIBUTES_FILE_BASE;
  static const char* const INDEX_XMLATTRIBUTES_WITH_DATE_FILE_NAME;
  static const char* const DIH_FILE_BASE_NAME;
  static const char* const MAJOR_DIH_FILE_BASE_NAME;
  static const char* const OV_FILE_BASE_NAME;
  static const char* const OV_DIH_FILE_BASE_NAME;
  static const char* const OV_ROLE_DIH_FILE_BASE_NAME;
  static const char* const OV_ORG_DIH_FILE_BASE_NAME;
  static const char* const OV_OWNERSHIP_DIH_FILE_BASE_NAME;
  static const char* const INDEXING_PARAM_FILE_NAME;
  static const char* const EXPORT_DB_NAME;
  static const char* const EXPORT_DERIVED_DB_NAME;
  static const char* const META_MEMORY_TRACES;
  static const char* const SYNC_MEMORY_TRACES;
  static const char* const CHECKSUM_FILENAME;

  // Markers of step logs and reports.
  static const char* const BEGINIDXSTEP;
  static const char* const CURIDXSTEP;
  static const char* const ENDIDXSTEP;
  static const char* const PID;
  static const char* const CNX;
  static const char* const NEWREF;
  static const char* const NEWREPREF;
  static const char* const NEWINST;
  static const char* const NEWREPINST;
  static const char* const ETL;
  static const char* const DELOBJ;
  static const char* const REPORT_CREATED;

  // Domain words.
  static const char* const MODEL;
  static const char* const CFG;
  static const char* const ATTR;
  static const char* const OCTREE;
  static const char* const IDXGEO;
  static const char* const CONSOLIDATION;
  static const char* const DERIVED;
  static const char* const SECU;
  static const char* const LOG;
  // The platform's directory separator, so that every path built from these
  // names designates a real place: '/' here.
  static const char PATH_SEPARATOR;
  static const char* const PATH_SEPARATOR_STR;
  static const unsigned int MAX_OCTREE_SIZE;   // 2^25
  static const float MIN_OCTREE_VOXEL_SIZE;    // 0.001f
  static const float OCTREE_EPSILON;           // 0.0001f
  static const int INVALID_OVDID;              // -1
  static const unsigned int MD5_BUFFERS_SIZE;  // read-buffer size of checksums, 1 MiB
  static const char* const MAGIC_NO_OCTREE;
};

// The engine's settings repository "BBDEnvSettings", opened on first use.
//
// The singleton is created by the first GetIdxBaseSettings call that finds
// the repository; it lives until the process ends and is never deleted by
// callers. The repository belongs to the platform. GetIdxBaseSettings may be
// called from several threads at once: creation is serialised.
class IDXBASE_API IDX_Base_Settings {
 public:
  // The singleton, or null when the repository is not available (a later
  // call tries again).
  static IDX_Base_Settings* GetIdxBaseSettings();

  // The repository; never null for the singleton.
  KORSettingRepository* GetRepository() const { return m_pRepository; }

  IDX_Base_Settings(const IDX_Base_Settings&) = delete;
  IDX_Base_Settings& operator=(const IDX_Base_Settings&) = delete;

 private:
  IDX_Base_Settings();

  KORSettingRepository* m_pRepository;  // not owned

  static const char* const m_pBBDEnvSettings;  // "BBDEnvSettings"
  static IDX_Base_Settings* m_pIdxBaseSettings;
};

#endif  // IDXBASE_SETTINGS_H_
