// How the commands that change a controller's settings say what came of it.
#pragma once

#include "main/zebcli_cmd_com/base/trace.h"

void saySettingsChanged(unsigned char contNo, int line = __builtin_LINE());

/// Says that a change failed, and leaves the trace of the wrapper that did; the text names it.
void saySettingsFailed(const TraceOrigin& origin, const char* text, unsigned char contNo);

/// Says that what was asked for does not go with the controller or its present settings.
void sayParameterNotSupported(int line = __builtin_LINE());
