#include "tests/storm/steps.h"

#include <algorithm>
#include <cstdio>

#include "tests/storm/arguments.h"

namespace zebstorm {
namespace {

using namespace zebsim;

/// A request that a fault may pick.
struct Code {
    int type;
    int cmd;
};
constexpr Code kReads[] = {{1, 0},  {1, 1}, {1, 4}, {1, 5}, {1, 12}, {1, 13}, {1, 15}, {2, 0}, {3, 0},
                           {3, 11}, {4, 0}, {4, 8}, {5, 0}, {5, 4},  {0, 8},  {6, 0},  {6, 3}, {8, 5}};
constexpr Code kChanges[] = {{1, 2},  {1, 16}, {1, 17}, {1, 18}, {2, 1}, {2, 2}, {2, 5},  {2, 10}, {2, 11}, {2, 13},
                             {2, 19}, {3, 2},  {3, 3},  {3, 6},  {3, 7}, {3, 9}, {3, 10}, {5, 3},  {6, 3}};
constexpr const char* kStatuses[] = {"2", "4", "12", "50", "84", "103", "32777", "32789", "32796"};

/// What happens to the hardware: a drive or an LD of it, sometimes one that is not there.
std::string randomEvent(Random& random, const Model& model) {
    const Controller& ctrl = random.oneOf(model.controllers);
    const std::string where = "{\"ctrl\": " + std::to_string(ctrl.id);
    if (random.percent(20)) {
        const std::size_t id = ctrl.lds.empty() || random.percent(10) ? random.below(64) : random.oneOf(ctrl.lds).id;
        return where + ", \"ld\": " + std::to_string(id) + ", \"gone\": true}";
    }
    const std::size_t device =
        ctrl.drives.empty() || random.percent(5) ? random.between(8, 40) : random.oneOf(ctrl.drives).deviceId;
    const std::string drive = where + ", \"drive\": {\"deviceId\": " + std::to_string(device) + "}, ";
    constexpr const char* kStates[] = {"failed", "failed", "offline", "online", "good", "bad", "spare", "rebuild"};
    if (random.percent(20))
        return drive + "\"gone\": true}";
    return drive + "\"state\": \"" + random.oneOf(kStates) + "\"}";
}

std::string randomAction(Random& random, const Model& model) {
    switch (random.below(10)) {
    case 0:
        return "\"truncate\": " + std::to_string(random.below(700));
    case 1:
        return "\"random\": " + std::to_string(random.below(1000000));
    case 2:
        return "\"fill\": " + std::to_string(random.percent(50) ? 255 : random.below(256));
    case 3: {
        char hex[8];
        std::snprintf(hex, sizeof hex, "%02x", static_cast<unsigned>(random.below(256)));
        return "\"patch\": [{\"offset\": " + std::to_string(random.below(random.percent(50) ? 64 : 512)) +
               ", \"hex\": \"" + hex + "\"}]";
    }
    case 4:
        return "\"bumpSeq\": true";
    case 5:
    case 6:
        return "\"also\": " + randomEvent(random, model);
    default:
        return std::string("\"status\": ") + random.oneOf(kStatuses);
    }
}

std::string randomFault(Random& random, const Model& model) {
    if (random.percent(15)) // killed at any request
        return "[{\"nth\": " + std::to_string(random.between(1, 60)) + ", \"kill\": \"" +
               (random.percent(50) ? "before" : "after") + "\"}]";
    const Code code = random.percent(50) ? random.oneOf(kReads) : random.oneOf(kChanges);
    const std::string when = (random.percent(80) ? "\"nth\": " : "\"from\": ") + std::to_string(random.between(1, 4));
    std::string action = randomAction(random, model);
    if (random.percent(10)) // any request: the snapshot's as well as those of the last look
        return "[{\"nth\": " + std::to_string(random.between(1, 120)) + ", " + action + "}]";
    return "[{\"type\": " + std::to_string(static_cast<std::size_t>(code.type)) +
           ", \"cmd\": " + std::to_string(static_cast<std::size_t>(code.cmd)) + ", " + when + ", " + action + "}]";
}

std::string quoted(const std::string& text) {
    std::string all = "'";
    for (const char c : text)
        all += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return all + "'";
}

} // namespace

Step randomStep(Random& random, const Model& model) {
    Step step;
    const std::size_t fate = random.below(100);
    if (fate < 8 && !model.controllers.empty()) {
        step.kind = Step::Kind::event;
        step.event = randomEvent(random, model);
        return step;
    }
    if (fate < 16) {
        constexpr double kSpans[] = {1, 60, 600, 3600, 36000, 700000};
        step.kind = Step::Kind::time;
        step.seconds = random.oneOf(kSpans);
        return step;
    }
    chooseCommand(random, model, step);
    if (random.percent(22) && !model.controllers.empty())
        step.faults = randomFault(random, model);
    return step;
}

std::string lastAnswers() {
    std::string text;
    for (int round = 0; round < 24; ++round) {
        text += "n\n";
        for (int choice = 0; choice < 24; ++choice)
            text += std::to_string(static_cast<std::size_t>(choice)) + "\n";
    }
    for (int round = 0; round < 40; ++round)
        text += "n\nq\n";
    return text;
}

std::string Step::asCommand() const {
    if (kind == Kind::time)
        return "# " + std::to_string(static_cast<std::size_t>(seconds)) + " seconds pass";
    if (kind == Kind::event)
        return "# this happens: " + event;
    std::string line = faults.empty() ? "" : "ZEBSIM_FAULTS=" + quoted(faults) + " ";
    line += "zebcli";
    for (const std::string& arg : args)
        line += " " + (arg.find_first_not_of("-:,abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789") ==
                                   std::string::npos &&
                               !arg.empty()
                           ? arg
                           : quoted(arg));
    if (!input.empty())
        line = "printf " + quoted(input) + " | " + line;
    return line;
}

} // namespace zebstorm
