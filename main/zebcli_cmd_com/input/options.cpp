#include "main/zebcli_cmd_com/input/options.h"

#include "log/zebcli_log.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <string_view>

namespace {

constexpr std::size_t kLongestValue = 15;

/// Walks the arguments of one command.
class OptionParser {
  public:
    OptionParser(const OptionTable& table, int argc, char** argv, int contCount, Options& options)
        : table_(table), argc_(argc), argv_(argv), contCount_(contCount), options_(options) {}

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
        if (table_.takesPds && text.starts_with("pd["))
            return takePds(option);
        if (table_.takesControllers && text.starts_with('a'))
            return takeControllers(option);
        if (table_.takesLds && text.starts_with('l'))
            return takeLds(option);
        return refuse();
    }

    bool takeWord(const OptionWord& word) {
        if (options_.has(word.group))
            return refuse();
        options_.bits |= word.bit;
        if (!word.takesValue)
            return true;
        if (index_ + 1 >= argc_)
            return refuse();
        options_.value = argv_[++index_];
        return std::strlen(options_.value) <= kLongestValue || refuse();
    }

    bool takeControllers(const OptionText& option) {
        if (options_.ctrlGiven)
            return refuse();
        options_.ctrlGiven = true;
        switch (GetAdapterNo(option.text, options_.ctrls, contCount_)) {
        case kAdapterMissing:
            CliLogging(kPrintAndLog, table_.source, __LINE__, "Error - The specified Controller %d: doesn't exist.",
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
        refuseToken(table_.source, __LINE__, argv_[table_.badToken == BadToken::Before ? index_ - 1 : index_]);
        return false;
    }

    const OptionTable& table_;
    int argc_;
    char** argv_;
    int contCount_;
    Options& options_;
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

bool parseOptions(const OptionTable& table, int argc, char** argv, int contCount, Options& options) {
    return OptionParser(table, argc, argv, contCount, options).parse();
}

bool selectDefaultTargets(const OptionTable& table, int contCount, Options& options) {
    if (table.takesControllers && !options.ctrlGiven && GetAdapterNo("", options.ctrls, contCount) != kAdapterOk)
        return false;
    if (table.takesLds && !options.ldGiven)
        GetLogicalDriveNo("", options.lds);
    return true;
}

bool readArguments(const OptionTable& table, int argc, char** argv, int contCount, Options& options) {
    if (!parseOptions(table, argc, argv, contCount, options))
        return false;
    if (!table.words.empty() && options.bits == 0) {
        refuseToken(table.source, __LINE__, argc > 2 ? argv[2] : nullptr);
        return false;
    }
    return selectDefaultTargets(table, contCount, options);
}

void refuseToken(const char* source, int line, const char* argument) {
    CliLogging(kPrintAndLog, source, line, "Error - Invalid input at or near token %s.",
               argument != nullptr ? argument : "(null)");
}

std::span<const unsigned char> selectedControllers(const CtrlList& list, int contCount) {
    const std::span<const unsigned char> all(list);
    const auto end = std::find(all.begin(), all.end(), kNoTarget);
    return all.first(std::min({static_cast<std::size_t>(end - all.begin()), static_cast<std::size_t>(contCount)}));
}
