// The library error registry: the last failure that code without an operator to tell left behind.
#pragma once

/// Codes that the log code leaves.
inline constexpr unsigned int kErrSystemCall = 512;
inline constexpr unsigned int kErrNoFileName = 0x100010;

/// Keeps a code and the name of the call that failed, replacing what was there. The name must be a constant.
void DLLSetLastError(unsigned int code, const char* call);

/// The last code kept, 0 when there is none. Where call is given it gets the failing call's name, "" when there is
/// none.
unsigned int DLLGetLastError(const char** call = nullptr);
