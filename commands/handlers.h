// The command handlers and their option tables. Each handler gets the arguments as they were typed and the controller
// snapshot; what it returns is ignored.
#pragma once

#include <span>

struct CommandRow;
struct OptionTable;
struct _AFCONT;

/// Gives help the rows whose usage it prints, before any handler runs: the rows name the handlers, so help cannot ask
/// for them itself.
void setHelpRows(std::span<const CommandRow> rows);

// zebcli_cmd_ctrl
int CliCmdExecHelp(int argc, char** argv, _AFCONT* conts, int contCount);
int CliCmdExecVersion(int argc, char** argv, _AFCONT* conts, int contCount);
int CliCmdExecAdpInfo(int argc, char** argv, _AFCONT* conts, int contCount);
int CliCmdExecAdpSetProp(int argc, char** argv, _AFCONT* conts, int contCount);
int CliCmdExecAdpRbldMode(int argc, char** argv, _AFCONT* conts, int contCount);
int CliCmdExecAdpPR(int argc, char** argv, _AFCONT* conts, int contCount);
int CliCmdExecCacheBkupInfo(int argc, char** argv, _AFCONT* conts, int contCount);
int CliCmdExecCacheBkup(int argc, char** argv, _AFCONT* conts, int contCount);
int CliCmdExecLog(int argc, char** argv, _AFCONT* conts, int contCount);
int CliCmdExecTSTEVT(int argc, char** argv, _AFCONT* conts, int contCount);
extern const OptionTable kCtrlInfoOptions;
extern const OptionTable kCtrlSetPropOptions;
extern const OptionTable kCtrlAutoRebuildOptions;
extern const OptionTable kPatrolReadOptions;
extern const OptionTable kCacheBackupOptions;
extern const OptionTable kTestEventOptions;

// zebcli_cmd_ld
int CliCmdExecLDInfo(int argc, char** argv, _AFCONT* conts, int contCount);
int CliCmdExecLDINIT(int argc, char** argv, _AFCONT* conts, int contCount);
int CliCmdExecLDCC(int argc, char** argv, _AFCONT* conts, int contCount);
int CliCmdExecLDPDProg(int argc, char** argv, _AFCONT* conts, int contCount);
int CliCmdExecLDSetProp(int argc, char** argv, _AFCONT* conts, int contCount);
int CliCmdExecCfgLDEasyMakeAdd(int argc, char** argv, _AFCONT* conts, int contCount);
int CliCmdExecCfgLDCustomMakeAdd(int argc, char** argv, _AFCONT* conts, int contCount);
int CliCmdExecCfgLDDel(int argc, char** argv, _AFCONT* conts, int contCount);
int CliCmdExecSSEnableEasy(int argc, char** argv, _AFCONT* conts, int contCount);
int CliCmdExecSnapshot(int argc, char** argv, _AFCONT* conts, int contCount);
extern const OptionTable kLdInfoOptions;
extern const OptionTable kLdBackgroundOptions;
extern const OptionTable kLdSetPropOptions;

// zebcli_cmd_pd
int CliCmdExecPDInfo(int argc, char** argv, _AFCONT* conts, int contCount);
int CliCmdExecEnclInfo(int argc, char** argv, _AFCONT* conts, int contCount);
int CliCmdExecPDMakeGood(int argc, char** argv, _AFCONT* conts, int contCount);
int CliCmdExecPDOffline(int argc, char** argv, _AFCONT* conts, int contCount);
int CliCmdExecPDOnline(int argc, char** argv, _AFCONT* conts, int contCount);
int CliCmdExecPDRbld(int argc, char** argv, _AFCONT* conts, int contCount);
int CliCmdExecPDLocate(int argc, char** argv, _AFCONT* conts, int contCount);
int CliCmdExecPDHSP(int argc, char** argv, _AFCONT* conts, int contCount);
extern const OptionTable kPdInfoOptions;
extern const OptionTable kEnclInfoOptions;
extern const OptionTable kPdStateOptions;
extern const OptionTable kPdRebuildOptions;
extern const OptionTable kPdLocateOptions;
extern const OptionTable kHotSpareOptions;
