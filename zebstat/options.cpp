#include "zebstat/options.h"

#include "facts/word.h"
#include "zebstat/library.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <cstdlib>

namespace zebstat {

namespace {

const std::string kVersion = "zebstat " ZEB_VERSION;
constexpr double kShortest = 0.1;
constexpr double kLongest = 86400;
constexpr double kLongestWait = 31536000;

/// A number as a whole text, with or without decimals. Nothing for anything else.
std::optional<double> numberOf(const std::string& text) {
    constexpr char kDigits[] = "0123456789";
    const bool isDecimal = text.find_first_not_of("0123456789.") == text.npos &&
                           text.find_first_of(kDigits) != text.npos && std::ranges::count(text, '.') <= 1;
    if (!isDecimal)
        return std::nullopt;
    return std::strtod(text.c_str(), nullptr);
}

std::string plain(double number) {
    std::string text = std::to_string(number);
    text.erase(text.find_last_not_of('0') + 1);
    return text.ends_with('.') ? text.substr(0, text.size() - 1) : text;
}

/// An option that takes seconds within limits.
void addSeconds(CLI::App& app, const std::string& name, Seconds& seconds, double lowest, double highest,
                const std::string& help) {
    app.add_option_function<std::string>(
           name, [&seconds](const std::string& text) { seconds = Seconds(*numberOf(text)); }, help)
        ->type_name("SECONDS")
        ->multi_option_policy(CLI::MultiOptionPolicy::Throw)
        ->check([lowest, highest](const std::string& text) -> std::string {
            const auto number = numberOf(text);
            if (number && *number >= lowest && *number <= highest)
                return {};
            return "'" + text + "' is no time; give seconds from " + plain(lowest) + " to " + plain(highest);
        });
}

void addTemperature(CLI::App& app, const std::string& name, int& celsius, const std::string& help) {
    constexpr int kHighest = 254;
    app.add_option_function<std::string>(
           name, [&celsius](const std::string& text) { celsius = static_cast<int>(*numberOf(text)); }, help)
        ->type_name("C")
        ->check([](const std::string& text) -> std::string {
            const bool digits = !text.empty() && text.size() <= 3 && text.find_first_not_of("0123456789") == text.npos;
            if (digits && *numberOf(text) <= kHighest)
                return {};
            return "'" + text + "' is no temperature; give whole degrees Celsius from 0 to " + std::to_string(kHighest);
        });
}

/// The parts between commas.
std::vector<std::string> listOf(const std::string& text) {
    std::vector<std::string> parts;
    std::size_t at = 0;
    for (std::size_t comma = 0; comma != text.npos; at = comma + 1) {
        comma = text.find(',', at);
        parts.push_back(text.substr(at, comma - at));
    }
    return parts;
}

std::string workWords() {
    std::string words;
    for (const facts::WordRow& row : facts::operationTypes())
        words += (words.empty() ? "" : ", ") + std::string(row.text);
    return words;
}

/// The row's own word for what was typed; empty for none.
std::string_view workNamed(const std::string& text) {
    const auto rows = facts::operationTypes();
    const auto row = std::find_if(rows.begin(), rows.end(), [&](const facts::WordRow& r) { return r.text == text; });
    return row != rows.end() ? row->text : std::string_view{};
}

/// A decimal number without a sign or leading zeros, up to a limit.
std::optional<std::uint8_t> smallNumber(const std::string& text, unsigned highest) {
    unsigned number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc{} || stop != end || number > highest || (text.size() > 1 && text[0] == '0'))
        return std::nullopt;
    return static_cast<std::uint8_t>(number);
}

/// "3" or "1:3"
std::optional<LdTarget> ldTarget(const std::string& text) {
    constexpr unsigned kHighestController = 3;
    constexpr unsigned kHighestLd = 254;
    const std::size_t colon = text.find(':');
    LdTarget target;
    if (colon != text.npos) {
        target.controller = smallNumber(text.substr(0, colon), kHighestController);
        if (!target.controller)
            return std::nullopt;
    }
    const auto number = smallNumber(colon == text.npos ? text : text.substr(colon + 1), kHighestLd);
    if (!number)
        return std::nullopt;
    target.number = *number;
    return target;
}

void addRedact(CLI::App& command, Options& options) {
    command.add_flag("--redact", options.redact,
                     "Replace serial numbers, SAS addresses, host name, LD names and logical ids by words");
}

void addOutput(CLI::App& command, Options& options) {
    command.add_option("--output", options.output, "Replace this file, whole, instead of printing")
        ->type_name("FILE")
        ->check([](const std::string& text) { return text.empty() ? "an empty name; give the name of a file" : ""; });
}

void addJson(CLI::App& app, Options& options) {
    CLI::App* command = app.add_subcommand("json", "Print the facts as one JSON document");
    command->add_flag("--pretty", options.pretty, "Lay the document out for a person");
    addRedact(*command, options);
    command->callback([&options] { options.command = Command::kJson; });
}

void addMetrics(CLI::App& app, Options& options) {
    CLI::App* command = app.add_subcommand("metrics", "Print metrics in the text format of Prometheus");
    addOutput(*command, options);
    command->callback([&options] { options.command = Command::kMetrics; });
}

void addHtml(CLI::App& app, Options& options) {
    CLI::App* command = app.add_subcommand("html", "Print one self-contained page for a browser");
    addOutput(*command, options);
    addRedact(*command, options);
    command->callback([&options] { options.command = Command::kHtml; });
}

void addCheck(CLI::App& app, Options& options) {
    CLI::App* command = app.add_subcommand("check", "Print one line and performance data, as monitoring plugins do");
    addTemperature(*command, "--warn-temperature", options.thresholds.warnTemperature,
                   "A drive hotter than this is a warning (default 55)");
    addTemperature(*command, "--critical-temperature", options.thresholds.criticalTemperature,
                   "A drive hotter than this is critical (default 65)");
    command
        ->add_option_function<std::string>(
            "--no-spare-is",
            [&options](const std::string& word) {
                options.thresholds.noSpare = word == "critical" ? facts::Severity::Critical : facts::Severity::Warning;
            },
            "What a redundant RAID group without a fitting hot spare is: warning or critical (default: nothing)")
        ->type_name("WORD")
        ->check([](const std::string& text) {
            return text == "warning" || text == "critical" ? "" : "'" + text + "' is unknown; give warning or critical";
        });
    command->callback([&options] {
        options.command = Command::kCheck;
        const facts::Thresholds& limits = options.thresholds;
        if (limits.warnTemperature > limits.criticalTemperature)
            throw CLI::ValidationError("--warn-temperature " + std::to_string(limits.warnTemperature),
                                       "lies above --critical-temperature " +
                                           std::to_string(limits.criticalTemperature) + "; give a lower one");
    });
}

void addWait(CLI::App& app, Options& options, Seconds& longest) {
    CLI::App* command = app.add_subcommand("wait", "Wait until no background work is under way");
    command
        ->add_option_function<std::string>(
            "--for",
            [&options](const std::string& text) {
                for (const std::string& word : listOf(text))
                    options.work.push_back(workNamed(word));
            },
            "Only for such work: " + workWords())
        ->type_name("WORK,...")
        ->check([](const std::string& text) -> std::string {
            for (const std::string& word : listOf(text))
                if (workNamed(word).empty())
                    return "'" + word + "' is no background work; give " + workWords();
            return {};
        });
    command
        ->add_option_function<std::string>(
            "--for-logical-drive",
            [&options](const std::string& text) {
                for (const std::string& word : listOf(text))
                    options.logicalDrives.push_back(*ldTarget(word));
            },
            "Only for work on these LDs and their drives: N of every controller, C:N of one")
        ->type_name("[C:]N,...")
        ->check([](const std::string& text) -> std::string {
            for (const std::string& word : listOf(text))
                if (!ldTarget(word))
                    return "'" + word + "' names no LD; give its number, or controller:number, such as 0:3";
            return {};
        });
    addSeconds(*command, "--max", longest, 0, kLongestWait, "Give up after this time");
    addSeconds(*command, "--interval", options.interval, kShortest, kLongest, "Look this often (default 5)");
    command->callback([&options, &longest, command] {
        options.command = Command::kWait;
        if (command->count("--max") != 0)
            options.longest = longest;
    });
}

void addWatch(CLI::App& app, Options& options) {
    CLI::App* command = app.add_subcommand("watch", "Show background work as progress bars, until q is pressed");
    addSeconds(*command, "--interval", options.interval, kShortest, kLongest, "Look this often (default 5)");
    CLI::Option* once = command->add_flag("--once", options.once, "Show it once");
    command->add_flag("--until-done", options.untilDone, "End when no work is left")->excludes(once);
    command->callback([&options] { options.command = Command::kWatch; });
}

void addAll(CLI::App& app, Options& options, Seconds& longest) {
    app.set_version_flag("--version", kVersion, "Print the version");
    app.set_help_flag("-h,--help", "Print this help");
    app.add_option("-a", options.controllers, "The controllers: numbers such as 0,2, or all (default)")
        ->type_name("LIST")
        ->check(controllersComplaint);
    addSeconds(app, "--timeout", options.timeout, kShortest, kLongest,
               "End with status 3 when the library takes longer than this (default 60)");
    app.require_subcommand(1);
    app.option_defaults()->multi_option_policy(CLI::MultiOptionPolicy::Throw);
    addJson(app, options);
    addMetrics(app, options);
    addCheck(app, options);
    addWait(app, options, longest);
    addWatch(app, options);
    addHtml(app, options);
    app.add_subcommand("schema", "Print the JSON schema of the document of json")->callback([&options] {
        options.command = Command::kSchema;
    });
}

/// One line that names what is wrong and the mend.
std::string complaintOf(const CLI::App& app, const CLI::ParseError& error) {
    const auto unknown = app.remaining();
    if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr && app.get_subcommands().empty())
        return unknown.empty()
                   ? "a command is missing; give json, metrics, check, wait, watch, html or schema"
                   : "'" + unknown.front() + "' is no command; give json, metrics, check, wait, watch, html or schema";
    std::string text = error.what();
    std::ranges::replace(text, '\n', ' ');
    return text.find(';') == text.npos ? text + "; see zebstat --help" : text;
}

} // namespace

Reading readOptions(int argc, const char* const* argv) {
    Reading reading;
    if (argc == 2 &&
        std::string_view(argv[1]) == "--version") { // what is asked most often need not wait for the parser
        reading.answer = kVersion + "\n";
        return reading;
    }
    Options options;
    Seconds longest{0};
    CLI::App app("Facts about hardware RAID controllers, for programs and for eyes. It changes nothing.", "zebstat");
    try {
        addAll(app, options, longest);
        app.parse(argc, argv);
        reading.options = options;
    } catch (const CLI::CallForHelp&) {
        reading.answer = app.help();
    } catch (const CLI::CallForVersion& version) {
        reading.answer = std::string(version.what()) + "\n";
    } catch (const CLI::ParseError& error) {
        reading.complaint = complaintOf(app, error);
    }
    reading.forCheck = app.got_subcommand("check");
    return reading;
}

} // namespace zebstat
