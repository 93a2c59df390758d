// The names under which the source units leave their messages.
#pragma once

inline constexpr char kComSource[] = "zebcli_cmd_com";
inline constexpr char kCtrlSource[] = "zebcli_cmd_ctrl";
inline constexpr char kLdSource[] = "zebcli_cmd_ld";
inline constexpr char kPdSource[] = "zebcli_cmd_pd";
