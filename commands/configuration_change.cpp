#include "commands/configuration_change.h"

#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/input/dialogue.h"
#include "main/zebcli_cmd_com/model/live_questions.h"
#include "main/zebcli_cmd_com/text/text_field.h"
#include "main/zebcli_cmd_com/text/vocabulary.h"

#include <array>
#include <numeric>
#include <span>

bool refuseSoftwareRaid(const char* source, int line) {
    if (IsSoftwareRAID() == 0)
        return false;
    CliLogging(kPrintAndLog, source, line, "Error - This command is not supported at the current configuration.");
    return true;
}

void sayController(const char* source, Controller ctrl, int line) {
    CliLogging(kPrint, source, line, "RAID Controller: %d %s", ctrl.contNo,
               fieldText(ctrl.cont().ctrlInfo.productName).c_str());
}

std::optional<Controller> chooseController(const char* source, const _AFCONT* conts, int contCount, int line) {
    if (contCount == 1)
        return Controller{0, conts};
    std::array<unsigned char, kMaxControllers> numbers{};
    std::iota(numbers.begin(), numbers.end(), static_cast<unsigned char>(0));
    const auto offered = std::span(numbers).first(static_cast<std::size_t>(contCount));
    for (const unsigned char contNo : offered)
        sayController(source, {contNo, conts}, line);
    const auto chosen = chooseNumber("Controller No.(\"Q\"->Quit) :", offered, AtEndOfInput::Quits);
    return chosen ? std::optional(Controller{*chosen, conts}) : std::nullopt;
}

bool lookAgain(const char* source, _AFCONT* conts, int contCount, int line) {
    if (UpdateDriveInfo(conts, contCount) == 1)
        return true;
    CliLogging(kPrintAndLog, source, line, kAccessError);
    return false;
}

void sayConfigurationChanged(const char* source, unsigned char contNo, int line) {
    CliLogging(kPrintAndLog, source, line,
               "Error - Controller[%d] The configuration has been changed.\n"
               "Nothing has been done. Please execute the command again.",
               contNo);
}
