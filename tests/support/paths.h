// Where the build keeps what the tests run and compare with. One file knows, so that the tests themselves compile alike
// in every build folder.
#pragma once

namespace paths {

extern const char* const zebcli;
extern const char* const zebstat;
extern const char* const zebstatSchema; ///< as it is shipped
extern const char* const zebstatExpectedDir;
extern const char* const libraryDir; ///< of the simulated library
extern const char* const sourceDir; ///< of the whole project
extern const char* const expectedDir;
extern const char* const scenarioDir;
extern const char* const patternFile; ///< as it is shipped
extern const char* const libNoEntryDir; ///< of a library without the entry point
extern const char* const failingCalls; ///< preloaded to let calls of the C library fail
extern const char* const recorderDir; ///< of the recorder, laid out as it is installed
extern const char* const libRoughDir; ///< of a library that misbehaves
extern const char* const libRearrangedDir; ///< of the simulated library with one record laid out differently
extern const char* const releaseZebcli; ///< of a release build; empty where there is none
extern const char* const releaseZebstat;
extern const char* const releaseLibraryDir;
extern const char* const releaseRecorderDir;

} // namespace paths
