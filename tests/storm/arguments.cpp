#include "tests/storm/arguments.h"

#include <algorithm>
#include <functional>
#include <optional>

namespace zebstorm {
namespace {

using namespace zebsim;

/// Whoever chooses arguments: the hardware as the tool numbers it, and the controller that is meant.
struct View {
    Random& random;
    std::vector<const Controller*> controllers; ///< by controller number
    std::size_t contNo = 0;
    const Controller* ctrl = nullptr; ///< null when there is none
};

template <class T>
std::string joined(const std::vector<T>& items) {
    std::string text;
    for (const T& item : items)
        text += (text.empty() ? "" : ",") + item;
    return text;
}

std::string controllerWord(View& view) {
    switch (view.random.below(24)) {
    case 0:
    case 1:
    case 2:
        return "-aAll";
    case 3:
        return "-a0,1";
    case 4: {
        constexpr const char* kOdd[] = {"-a", "-a9", "-aX", "-a0,,1", "-a00", "-aall", "-A0", "-a0-1", "-a4294967296"};
        return view.random.oneOf(kOdd);
    }
    default:
        return "-a" + std::to_string(view.contNo);
    }
}

std::string ldWord(View& view) {
    const std::size_t fate = view.random.below(16);
    if (fate < 2)
        return "-Lall";
    if (fate == 2) {
        constexpr const char* kOdd[] = {"-L", "-L64", "-L99", "-Lx", "-L0,", "-l0", "-L0,0", "-L00"};
        return view.random.oneOf(kOdd);
    }
    std::vector<std::string> ids;
    for (const LogicalDrive& ld : view.ctrl == nullptr ? std::vector<LogicalDrive>{} : view.ctrl->lds)
        if (view.random.percent(40))
            ids.push_back(std::to_string(ld.id));
    return "-L" + (ids.empty() ? std::to_string(view.random.below(4)) : joined(ids));
}

std::string place(View& view, const Drive& drive) {
    const bool named = drive.enclosureId != kNoDevice && view.random.percent(70);
    return (named ? std::to_string(drive.enclosureId) : "") + ":" + std::to_string(drive.slot);
}

/// "[252:1,:2]" of drives that the wish holds for; of any when there are too few or now and then.
std::string bracket(View& view, std::size_t count, const std::function<bool(const Drive&)>& wish) {
    std::vector<std::string> places;
    std::vector<std::string> others;
    for (const Drive& drive : view.ctrl == nullptr ? std::vector<Drive>{} : view.ctrl->drives)
        (wish(drive) ? places : others).push_back(place(view, drive));
    view.random.shuffle(places);
    if (!others.empty() && (view.random.percent(7) || places.empty()))
        places.insert(places.begin(), view.random.oneOf(others));
    places.resize(std::min(places.size(), count));
    if (view.random.percent(4)) {
        constexpr const char* kOdd[] = {":255", ":256", "9:0", "x:1", "1", "", ":0:1", ":00"};
        places.emplace_back(view.random.oneOf(kOdd));
    }
    return "[" + joined(places) + (view.random.percent(2) ? "" : "]");
}

bool anyDrive(const Drive&) {
    return true;
}
bool isUnused(const Drive& drive) {
    return drive.state == kPdUnconfiguredGood && !drive.foreign;
}
bool isLost(const Drive& drive) {
    return drive.state == kPdOffline || drive.state == kPdFailed;
}
bool isOnline(const Drive& drive) {
    return drive.state == kPdOnline;
}
bool isSpare(const Drive& drive) {
    return drive.state == kPdHotSpare;
}
bool isBad(const Drive& drive) {
    return drive.state == kPdUnconfiguredBad;
}

/// One command of the table: its word, groups of words of which one or none is given, and the targets it takes.
struct Shape {
    const char* word;
    std::vector<std::vector<const char*>> groups = {};
    bool controllers = true;
    bool lds = false;
    bool (*drives)(const Drive&) = nullptr; ///< those that it is mostly meant for; null: it takes none
    unsigned weight = 1;
};

const std::vector<Shape>& shapes() {
    using Words = std::vector<std::vector<const char*>>;
    static const Words kStartStop{{"start", "stop"}};
    static const Words kPolicies{{"nora", "ra"},
                                 {"wt", "wb", "wbcb"},
                                 {"direct", "cached"},
                                 {"rw", "ro", "blocked"},
                                 {"endskcache", "disdskcache", "unchanged"}};
    static const Words kProperties{{"trh", "trm", "trl"},
                                   {"hddcpybkenbl", "hddcpybkdsbl"},
                                   {"ssdcpybkenbl", "ssdcpybkdsbl"},
                                   {"pdfailenbl", "pdfaildsbl"}};
    static const Words kPatrolRead{
        {"dsbl", "enblauto", "enblman"}, {"hour", "day", "week", "month"}, {"start", "stop"}};
    static const std::vector<Shape> kShapes{
        {.word = "h", .controllers = false},
        {.word = "v", .controllers = false},
        {.word = "log", .controllers = false},
        {.word = "ctrlinfo"},
        {.word = "cbinfo"},
        {.word = "enclinfo"},
        {.word = "ldpdprog", .controllers = false, .weight = 2},
        {.word = "ldpdinfo", .lds = true, .weight = 3},
        {.word = "pdinfo", .drives = anyDrive, .weight = 2},
        {.word = "tstevt", .groups = {{"inf", "wrn", "err"}}, .controllers = false},
        {.word = "cblearn"},
        {.word = "snapshot"},
        {.word = "sse"},
        {.word = "ctrlautorbld", .groups = {{"enbl", "dsbl"}}, .weight = 2},
        {.word = "ctrlsetprop", .groups = kProperties, .weight = 3},
        {.word = "ctrlpr", .groups = kPatrolRead, .weight = 6},
        {.word = "ldinit", .groups = kStartStop, .lds = true, .weight = 4},
        {.word = "ldcc", .groups = kStartStop, .lds = true, .weight = 4},
        {.word = "ldsetprop", .groups = kPolicies, .lds = true, .weight = 5},
        {.word = "pdlocate", .groups = kStartStop, .drives = anyDrive},
        {.word = "pdonline", .drives = isLost, .weight = 3},
        {.word = "pdoffline", .drives = isOnline, .weight = 4},
        {.word = "pdmakegood", .drives = isBad, .weight = 5},
        {.word = "pdrbld", .groups = {{"start"}}, .drives = isLost, .weight = 4},
        {.word = "pdhsp", .groups = {{"ghs", "dhs"}}, .drives = isUnused, .weight = 6},
        {.word = "pdhsp", .groups = {{"rmv"}, {"nochk"}}, .drives = isSpare, .weight = 4},
        {.word = "lddel", .controllers = false, .lds = true, .weight = 9},
        {.word = "ldc", .drives = isUnused, .weight = 26},
        {.word = "lde", .controllers = false, .drives = isUnused, .weight = 9},
    };
    return kShapes;
}

bool findsTargets(const View& view, const Shape& shape) {
    if (view.ctrl == nullptr)
        return false;
    return (!shape.lds || !view.ctrl->lds.empty()) &&
           (shape.drives == nullptr || std::ranges::any_of(view.ctrl->drives, shape.drives));
}

/// A command by weight, mostly one that finds something to work on.
const Shape& randomShape(View& view) {
    std::size_t all = 0;
    for (const Shape& shape : shapes())
        all += shape.weight;
    const Shape* chosen = nullptr;
    for (int tries = 0; tries < 4 && (chosen == nullptr || !findsTargets(view, *chosen)); ++tries) {
        std::size_t at = view.random.below(all);
        chosen = shapes().data();
        for (; at >= chosen->weight; ++chosen)
            at -= chosen->weight;
    }
    return *chosen;
}

/// Drives for a new LD: mostly unused ones that are alike, sometimes all drives of an array that is there.
std::string drivesForLd(View& view, std::size_t count) {
    if (view.ctrl != nullptr && !view.ctrl->arrays.empty() && view.random.percent(20)) {
        const Array& array = view.random.oneOf(view.ctrl->arrays);
        return bracket(view, array.drives.size(), [&](const Drive& drive) {
            return std::ranges::find(array.drives, drive.deviceId) != array.drives.end();
        });
    }
    std::vector<const Drive*> unused;
    for (const Drive& drive : view.ctrl == nullptr ? std::vector<Drive>{} : view.ctrl->drives)
        if (isUnused(drive))
            unused.push_back(findDrive(*view.ctrl, drive.deviceId));
    const Drive* like = unused.empty() ? nullptr : view.random.oneOf(unused);
    return bracket(view, count, [&](const Drive& drive) {
        return isUnused(drive) && !drive.clear &&
               (like == nullptr || (drive.media == like->media && drive.interface == like->interface));
    });
}

void addPolicies(View& view, std::vector<std::string>& words) {
    constexpr const char* kWrite[] = {"-wt", "-wb", "-wbcb"};
    constexpr const char* kRead[] = {"-nora", "-ra"};
    constexpr const char* kIo[] = {"-direct", "-cached"};
    if (view.random.percent(30))
        words.emplace_back(view.random.oneOf(kWrite));
    if (view.random.percent(30))
        words.emplace_back(view.random.oneOf(kRead));
    if (view.random.percent(30))
        words.emplace_back(view.random.oneOf(kIo));
    for (std::size_t count = view.random.percent(40) ? view.random.between(1, 3) : 0; count > 0; --count) {
        constexpr const char* kSizes[] = {"1", "100", "1000", "1000", "51200", "102400"};
        constexpr const char* kOdd[] = {"999999999", "0", "01", "1G", "", "1000000000"};
        words.push_back(std::string("-sz") +
                        (view.random.percent(8) ? view.random.oneOf(kOdd) : view.random.oneOf(kSizes)));
    }
}

std::vector<std::string> creationWords(View& view) {
    struct Layout {
        const char* word;
        std::size_t least;
        std::size_t most;
    };
    static constexpr Layout kLayouts[] = {{"-r0", 1, 3},  {"-r0", 1, 3},  {"-r1", 2, 2},
                                          {"-r5", 3, 6},  {"-r5", 3, 3},  {"-r6", 3, 6},
                                          {"-r10", 2, 3}, {"-r10", 2, 2}, {"-cachecade", 1, 3}};
    Random& random = view.random;
    const Layout& layout = random.oneOf(kLayouts);
    const std::string word = layout.word;
    const std::size_t count = random.percent(92) ? random.between(layout.least, layout.most) : random.between(1, 8);
    std::vector<std::string> words{word};
    if (word != "-r10") {
        words.back() += drivesForLd(view, count);
    } else {
        // One row of drives, two to each span, so that mostly none is named twice.
        std::string drives = drivesForLd(view, 2 * count);
        for (std::size_t span = 0; span < count; ++span) {
            const std::size_t first = drives.find(',');
            const std::size_t cut = first == std::string::npos ? first : drives.find(',', first + 1);
            words.push_back("-array" + std::to_string(random.percent(97) ? span : random.below(12)) +
                            drives.substr(0, cut) + (cut == std::string::npos ? "" : "]"));
            if (cut == std::string::npos)
                break;
            drives = "[" + drives.substr(cut + 1);
        }
    }
    addPolicies(view, words);
    if (random.percent(10))
        random.shuffle(words);
    return words;
}

/// Arguments that belong to no command, or not here.
void spoil(View& view, std::vector<std::string>& args) {
    constexpr const char* kJunk[] = {"",    "-",       "--",    "-start", "-stop", "-nochk", "junk",
                                     "-L0", "-pd[:0]", "-name", "%s%n",   "-aAll", "-h"};
    const std::size_t at = view.random.between(1, args.size());
    switch (view.random.below(3)) {
    case 0:
        args.insert(args.begin() + static_cast<std::ptrdiff_t>(at), view.random.oneOf(kJunk));
        return;
    case 1:
        if (at < args.size())
            args.erase(args.begin() + static_cast<std::ptrdiff_t>(at));
        return;
    default:
        args.push_back(args[view.random.below(args.size())]);
    }
}

/// What is typed: the answers of the command's own dialogue, or a few at random. Whatever comes after them ends every
/// question.
std::string answers(View& view, const std::string& word) {
    Random& random = view.random;
    std::vector<std::string> lines;
    if ((word == "lddel" || word == "lde") && view.controllers.size() > 1)
        lines.push_back(std::to_string(view.contNo));
    if (word == "lddel") {
        std::vector<std::string> ids;
        for (const LogicalDrive& ld : view.ctrl == nullptr ? std::vector<LogicalDrive>{} : view.ctrl->lds)
            if (random.percent(35))
                ids.push_back(std::to_string(ld.id));
        lines.push_back(ids.empty() ? "0" : joined(ids));
    }
    if (word == "lde")
        for (std::size_t menus = random.between(1, 4); menus > 0; --menus)
            lines.push_back(std::to_string(random.between(1, random.percent(60) ? 2 : 9)));
    if (word == "pdhsp" && random.percent(70))
        lines.push_back(std::to_string(random.below(4)));
    constexpr const char* kReplies[] = {"y", "y", "y", "Y", "n"};
    for (int i = 0; i < 6; ++i)
        lines.emplace_back(random.oneOf(kReplies));
    constexpr const char* kOdd[] = {"", "q", "Q", "yes", "0", "99", "1x", " 1", "0,0", "%s%n", "\x1b[A", "1,"};
    if (random.percent(25))
        lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(random.below(lines.size())), random.oneOf(kOdd));
    if (random.percent(2))
        lines.insert(lines.begin(), std::string(3000, 'y'));
    std::string text;
    for (const std::string& line : lines)
        text += line + "\n";
    return text;
}

} // namespace

void chooseCommand(Random& random, const Model& model, Step& step) {
    View view{random, {}};
    for (const Controller& ctrl : model.controllers)
        view.controllers.push_back(&ctrl);
    std::ranges::sort(view.controllers, {}, [](const Controller* ctrl) { return ctrl->id; });
    view.contNo = random.below(view.controllers.size());
    view.ctrl = view.controllers.empty() ? nullptr : view.controllers[view.contNo];

    const Shape& shape = randomShape(view);
    const std::string word = shape.word;
    step.args = {"-" + word};
    for (const auto& group : shape.groups)
        if (random.percent(shape.groups.size() == 1 ? 95 : 45))
            step.args.push_back(std::string("-") + random.oneOf(group));
    if (word == "ldc")
        for (std::string& part : creationWords(view))
            step.args.push_back(std::move(part));
    if (word == "ctrlpr" && random.percent(15)) {
        constexpr const char* kTimes[] = {"0101203000", "1231200000", "0229202800", "0229202500", "0101200023", "1"};
        step.args.insert(step.args.end(), {"-setstarttime", random.oneOf(kTimes)});
    }
    if (word == "ldsetprop" && random.percent(30)) {
        constexpr const char* kNames[] = {"NEW", "", "%s%n", "fifteen letters", "sixteen letters.", "-L0"};
        step.args.insert(step.args.end(), {"-name", random.oneOf(kNames)});
    }
    if (shape.lds && word != "lddel" && random.percent(90))
        step.args.push_back(ldWord(view));
    if (shape.drives != nullptr && word != "ldc" && word != "lde" && random.percent(word == "pdinfo" ? 50 : 95))
        step.args.push_back("-pd" + bracket(view, random.between(1, 3), shape.drives));
    if (random.percent(shape.controllers ? (view.controllers.size() > 1 ? 92 : 50) : 3))
        step.args.push_back(controllerWord(view));
    if (random.percent(6))
        spoil(view, step.args);
    step.input = answers(view, word);
}

} // namespace zebstorm
