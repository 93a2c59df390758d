// From a request record to its handler: the table of commands and the checks that all of them share.
#pragma once

#include "simulator/session.h"

namespace zebsim {

/// Answers the request of the stage, one of a session that is under way; initialise and exit are not among them.
/// Returns its status.
std::uint32_t dispatch(Session& session, Stage& stage, const Strike& strike);

/// Answers the controller list (the initialise request): the ids of all controllers, in the scenario's order. Returns
/// the status.
std::uint32_t answerControllerList(Stage& stage, const Strike& strike);

/// The opcode of a controller-command request; none for every other request.
std::optional<std::uint32_t> opcodeOf(const _SL_LIB_CMD_PARAM_T& request);

/// The bytes that the request carries out of the host, as the trace shows them: hexadecimal, or "-".
std::string outgoingBytes(const _SL_LIB_CMD_PARAM_T& request);

} // namespace zebsim
