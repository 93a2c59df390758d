// Loading of the vendor library and the command call.
//
// Three kinds of controllers have a library slot each (MR, IR, IR2). Only the MR slot is ever loaded; requests for the
// other kinds are refused because their flags stay clear.
#pragma once

#include "storelib/records/request.h"
#include "storelib/records/status.h"

#include <cstdint>

using ProcessLibCommandFn = std::uint32_t (*)(_SL_LIB_CMD_PARAM_T*);
using MemAllocFailedFn = void (*)();

extern bool libMRPresent;
extern bool libIRPresent;
extern bool libIR2Present;
extern ProcessLibCommandFn pfnProcessLibCommandMR;
extern ProcessLibCommandFn pfnProcessLibCommandIR;
extern ProcessLibCommandFn pfnProcessLibCommandIR2;
extern _SL_CTRL_LIST_T gCtrlListMR;
extern _SL_CTRL_LIST_T gCtrlListIR;
extern _SL_CTRL_LIST_T gCtrlListIR2;

/// The merged list. Its index is the controller number (contNo) that everything else uses.
extern _SL_CTRL_LIST_T ctrlList;

/// Tells that a wrapper could not allocate its work buffer.
extern MemAllocFailedFn pfnMemAllocFailed;

/// Loads the library, initialises it and builds the merged list. The callback is kept as pfnMemAllocFailed. Returns 0,
/// 0x8002 when the library or its entry point is missing, else the library's own initialisation status.
std::uint32_t SLInitLib(MemAllocFailedFn callback);

/// Closes what is loaded; safe to call at any time and more than once. Returns 0.
std::uint32_t SLExitLib();

/// What unloadDLL may be asked to close.
inline constexpr int kSlotMR = 0;
inline constexpr int kAllSlots = 255;

/// Closes the MR slot when it is loaded and is meant, kSlotMR or kAllSlots. Anything else closes nothing.
void unloadDLL(int which);

/// Asks a library for its controllers. The list is cleared first, and stays clear on failure. Returns the library's
/// status.
std::uint32_t InitializeLibrary(_SL_CTRL_LIST_T* list, ProcessLibCommandFn entry);

/// Tells a library that it is no longer needed. Returns its status.
std::uint32_t UnInitializeLibrary(ProcessLibCommandFn entry);

/// Builds the merged list from the lists of the slots, in ascending order of the controller ids. Entries beyond the
/// room of the list are left out; its count is the sum of the slots' counts all the same.
void mergeControllerLists();

/// Copies the merged list. Returns 0.
std::uint32_t SLGetCtrlList(_SL_CTRL_LIST_T* list);

/// Sends one request to the library that serves the controller. Returns the library's status, or 0x8019 when no loaded
/// library serves it.
std::uint32_t ProcessLibCommandCall(_SL_LIB_CMD_PARAM_T* request, unsigned char contNo);

/// Leaves the trace of a request: a dump of its 40 bytes when it is given, then one line with the status in words.
int SLLogging(const char* label, int line, const char* func, std::uint32_t status, const _SL_LIB_CMD_PARAM_T* request);

/// The same for a controller command.
int SLLoggingPassThru(const char* label, int line, const char* func, std::uint32_t status,
                      const _SL_DCMD_INPUT_T* input);
