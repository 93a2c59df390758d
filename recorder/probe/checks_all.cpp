// Every check, of the library and of each controller.
#include "recorder/probe/checks.h"

namespace zebprobe {

Verdicts judge(const Survey& survey) {
    Verdicts verdicts;
    for (const Answered& answered : survey.all())
        verdicts.note(answered);
    judgeLibrary({survey, verdicts});
    for (std::size_t ctrl = 0; ctrl < survey.controllers(); ++ctrl) {
        const Inspection inspection{survey, verdicts, ctrl};
        for (const auto part : {judgeController, judgeDrives, judgeLds, judgeConfiguration, judgeBackupUnit,
                                judgeEnclosures, judgeReadings})
            part(inspection);
    }
    return verdicts;
}

} // namespace zebprobe
