#include "tests/support/paths.h"

namespace paths {

const char* const zebcli = ZEB_ZEBCLI;
const char* const zebstat = ZEB_ZEBSTAT;
const char* const zebstatSchema = ZEB_SOURCE_DIR "/share/zebstat/zebstat.schema.json";
const char* const zebstatExpectedDir = ZEB_SOURCE_DIR "/tests/zebstat/expected";
const char* const libraryDir = ZEB_LIBRARY_DIR;
const char* const expectedDir = ZEB_EXPECTED_DIR;
const char* const sourceDir = ZEB_SOURCE_DIR;
const char* const scenarioDir = ZEB_SCENARIO_DIR;
const char* const patternFile = ZEB_SOURCE_DIR "/share/confpat1.csv";
const char* const libNoEntryDir = ZEB_LIB_NO_ENTRY;
const char* const failingCalls = ZEB_FAILING_CALLS;
const char* const recorderDir = ZEB_RECORDER_DIR;
const char* const libRoughDir = ZEB_LIB_ROUGH;
const char* const libRearrangedDir = ZEB_LIB_REARRANGED;
#ifdef ZEB_RELEASE_DIR
const char* const releaseZebcli = ZEB_RELEASE_DIR "/zebcli";
const char* const releaseZebstat = ZEB_RELEASE_DIR "/zebstat/zebstat";
const char* const releaseLibraryDir = ZEB_RELEASE_DIR "/simulator";
const char* const releaseRecorderDir = ZEB_RELEASE_DIR "/recorder";
#else
const char* const releaseZebcli = "";
const char* const releaseZebstat = "";
const char* const releaseLibraryDir = "";
const char* const releaseRecorderDir = "";
#endif

} // namespace paths
