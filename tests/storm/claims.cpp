#include "tests/storm/claims.h"

#include <algorithm>
#include <set>

#include "simulator/scenario.h"
#include "tests/support/patterns.h"

namespace zebstorm {
namespace {

using namespace zebsim;

/// The lines by which commands say that they have changed something.
constexpr const char* kChanged[] = {"ettings have been changed", "state have been changed", "has been deleted.",
                                    "has been created.",         "have been created.",      "has been started.",
                                    "has been stopped.",         "Start Manual Rebuild on", "Blink PD(Physical Drive)",
                                    "Off PD(Physical Drive)",    " on LD(Logical Drive) ",  "differs from the plan."};

bool saysItChanged(const std::string& printed) {
    return std::ranges::any_of(
        kChanged, [&](const char* text) { return printed.find(text) != std::string::npos; });
}

bool othersAct(const Step& step) {
    return std::ranges::any_of(
        std::initializer_list<const char*>{"\"also\"", "\"bumpSeq\"", "\"kill\""},
        [&](const char* key) { return step.faults.find(key) != std::string::npos; });
}

/// Whether the command may end without a word on what it has done. A "no" at a question of pdhsp ends it at once; the
/// drives before that one stay changed and are not named. ctrlsetprop writes two records and says only that it failed,
/// whichever of them was refused.
bool mayEndSilently(const Step& step) {
    const bool several = std::ranges::any_of(
        step.args, [](const std::string& arg) { return arg.find(',') != std::string::npos || arg == "-aAll"; });
    return (step.args.front() == "-pdhsp" && several) || step.args.front() == "-ctrlsetprop";
}

std::string asText(Model model) {
    model.savedAt.reset();
    return writeScenario(model);
}

/// LDs as "controller number:id".
using LdNames = std::set<std::string>;

LdNames ldsOf(const Model& model) {
    std::vector<const Controller*> controllers;
    for (const Controller& ctrl : model.controllers)
        controllers.push_back(&ctrl);
    std::ranges::sort(controllers, {}, [](const Controller* ctrl) { return ctrl->id; });
    LdNames names;
    for (std::size_t contNo = 0; contNo < controllers.size(); ++contNo)
        for (const LogicalDrive& ld : controllers[contNo]->lds)
            names.insert(std::to_string(contNo) + ":" + std::to_string(ld.id));
    return names;
}

/// The LDs that lines like "Information - Controller[0] LD(Logical Drive) 5,6 has been created." name.
LdNames ldsThatHaveBeen(const std::string& what, const std::string& printed) {
    const std::string line =
        "Information - Controller\\[(\\d+)\\] LD\\(Logical Drive\\) ([\\d,]+) has been " + what + "\\.";
    LdNames names;
    for (const zebtest::Match& match : zebtest::matchesIn(printed, line)) {
        const std::string& ids = match[2];
        for (std::size_t at = 0; at <= ids.size();) {
            const std::size_t comma = std::min(ids.find(',', at), ids.size());
            names.insert(match[1] + ":" + ids.substr(at, comma - at));
            at = comma + 1;
        }
    }
    return names;
}

LdNames onlyIn(const LdNames& these, const LdNames& others) {
    LdNames names;
    std::ranges::set_difference(these, others, std::inserter(names, names.end()));
    return names;
}

std::string listed(const LdNames& names) {
    std::string text;
    for (const std::string& name : names)
        text += " " + name;
    return names.empty() ? " none" : text;
}

} // namespace

std::string brokenClaim(const Model& before, const Model& after, const Step& step, const std::string& printed) {
    if (othersAct(step))
        return "";
    if (!saysItChanged(printed) && !mayEndSilently(step) && asText(before) != asText(after))
        return "the hardware changed, and nothing was said of it";
    const LdNames were = ldsOf(before);
    const LdNames are = ldsOf(after);
    const LdNames gone = onlyIn(were, are);
    const LdNames come = onlyIn(are, were);
    const LdNames saidGone = ldsThatHaveBeen("deleted", printed);
    const LdNames saidCome = ldsThatHaveBeen("created", printed);
    const bool faulty = !step.faults.empty();
    // With a fault a request may be answered without being done, or be done and misread.
    if (faulty ? !std::ranges::includes(saidGone, gone) : gone != saidGone)
        return "deleted:" + listed(gone) + ", said to be deleted:" + listed(saidGone);
    const bool doubted = printed.find("differs from the plan.") != std::string::npos;
    if (faulty ? !doubted && !std::ranges::includes(saidCome, come) : come != saidCome)
        return "created:" + listed(come) + ", said to be created:" + listed(saidCome);
    return "";
}

} // namespace zebstorm
