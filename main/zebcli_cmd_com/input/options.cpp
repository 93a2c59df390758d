#include "main/zebcli_cmd_com/input/options.h"

#include "log/zebcli_log.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <string_view>

namespace {

/// Walks the arguments of one command.
class OptionParser {
  public:
    OptionParser(const OptionTable& table, OwnArguments* own, int argc, char** argv, int contCount, Options& options,
                 int line)
        : table_(table), own_(own), argc_(argc), argv_(argv), contCount_(contCount), options_(options), line_(line) {}

    bool parse() {
        for (index_ = 2; index_ < argc_; ++index_)
            if (!parseArgument())
                return false;
        return true;
    }

  private:
    bool parseArgument() {
        const OptionText option = optionText(argv_[index_]);
        const std::string_view text(option.text);
        const auto word = std::find_if(table_.words.begin(), table_.words.end(),
                                       [&](const OptionWord& row) { return text == row.word; });
        if (word != table_.words.end())
            return takeWord(*word);
        if (own_ != nullptr)
            if (const auto verdict = own_->take(option, argv_[index_]); verdict != OwnArguments::Verdict::NotMine)
                return verdict == OwnArguments::Verdict::Taken || refuse();
        if (table_.takesPds && text.starts_with("pd["))
            return takePds(option);
        if (table_.takesControllers && text.starts_with('a'))
            return takeControllers(option);
        if (table_.takesLds && text.starts_with('l'))
            return takeLds(option);
        return refuse();
    }

    bool takeWord(const OptionWord& word) {
        if (options_.has(word.refusedAfter))
            return refuse();
        options_.bits |= word.bit;
        if (word.acceptsValue == nullptr)
            return true;
        if (index_ + 1 >= argc_)
            return refuse();
        options_.value = argv_[++index_];
        return word.acceptsValue(options_.value) || refuse();
    }

    bool takeControllers(const OptionText& option) {
        if (options_.ctrlGiven)
            return refuse();
        options_.ctrlGiven = true;
        switch (GetAdapterNo(option.text, options_.ctrls, contCount_)) {
        case kAdapterMissing:
            CliLogging(kPrintAndLog, table_.source, line_, "Error - The specified Controller %d: doesn't exist.",
                       options_.ctrls[0]);
            return false;
        case kAdapterMalformed:
            return refuse();
        default:
            return true;
        }
    }

    bool takeLds(const OptionText& option) {
        if (options_.ldGiven)
            return refuse();
        options_.ldGiven = true;
        return GetLogicalDriveNo(option.text, options_.lds) == 1 || refuse();
    }

    bool takePds(const OptionText& option) {
        if (options_.pdGiven)
            return refuse();
        options_.pdGiven = true;
        return GetPhysicalDriveNo(option.text, options_.pds, 0) == 1 || refuse();
    }

    bool refuse() {
        refuseToken(table_.source, line_, argv_[table_.badToken == BadToken::Before ? index_ - 1 : index_]);
        return false;
    }

    const OptionTable& table_;
    OwnArguments* own_;
    int argc_;
    char** argv_;
    int contCount_;
    Options& options_;
    int line_;
    int index_ = 0;
};

} // namespace

OptionText optionText(const char* argument) {
    OptionText out{};
    const char* dash = std::strchr(argument, '-');
    const std::string_view text(dash != nullptr ? dash + 1 : argument);
    std::transform(text.begin(), text.begin() + std::min(text.size(), kMaxOptionLength), out.text,
                   [](char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); });
    return out;
}

bool parseOptions(const OptionTable& table, int argc, char** argv, int contCount, Options& options, int line) {
    return OptionParser(table, nullptr, argc, argv, contCount, options, line).parse();
}

bool parseOptions(const OptionTable& table, OwnArguments& own, int argc, char** argv, int contCount, Options& options,
                  int line) {
    return OptionParser(table, &own, argc, argv, contCount, options, line).parse();
}

bool selectDefaultTargets(const OptionTable& table, int contCount, Options& options) {
    if (table.takesControllers && !options.ctrlGiven && GetAdapterNo("", options.ctrls, contCount) != kAdapterOk)
        return false;
    if (table.takesLds && !options.ldGiven)
        GetLogicalDriveNo("", options.lds);
    return true;
}

bool readArguments(const OptionTable& table, int argc, char** argv, int contCount, Options& options, int line) {
    if (!parseOptions(table, argc, argv, contCount, options, line))
        return false;
    if (table.needsWord && options.bits == 0) {
        refuseToken(table.source, line, argc > 2 ? argv[2] : nullptr);
        return false;
    }
    return selectDefaultTargets(table, contCount, options);
}

void refuseToken(const char* source, int line, const char* argument) {
    CliLogging(kPrintAndLog, source, line, "Error - Invalid input at or near token %s.",
               argument != nullptr ? argument : "(null)");
}

bool refuseArguments(const char* source, int argc, char** argv, int line) {
    if (argc < 3)
        return false;
    refuseToken(source, line, argv[1]);
    return true;
}

std::span<const unsigned char> selectedControllers(const CtrlList& list, int contCount) {
    const std::span<const unsigned char> all(list);
    const auto end = std::find(all.begin(), all.end(), kNoTarget);
    return all.first(std::min({static_cast<std::size_t>(end - all.begin()), static_cast<std::size_t>(contCount)}));
}
