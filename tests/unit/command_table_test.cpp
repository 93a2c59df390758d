// Every option word of every command stands in its option table, in the usage, in the man page and in the completion;
// none of the four has one that the others lack.
#include "main/command_table.h"

#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>

#include <gmock/gmock.h>

#include "tests/support/paths.h"
#include "tests/support/patterns.h"

namespace zebtest {
namespace {

using Words = std::set<std::string>; // option words; targets as "CTRL", "LD", "PD"
using Commands = std::map<std::string, Words>;

std::string fileText(const std::string& name) {
    std::ifstream file(std::string(paths::sourceDir) + "/" + name);
    EXPECT_TRUE(file.is_open()) << name;
    return {std::istreambuf_iterator<char>(file), {}};
}

/// What matches in a text, its first group.
std::vector<std::string> allOf(const std::string& text, const char* pattern) {
    std::vector<std::string> found;
    for (const Match& match : matchesIn(text, pattern))
        found.push_back(match[1]);
    return found;
}

Words wordsOf(const OptionTable& table) {
    Words words;
    for (const OptionWord& word : table.words)
        if (word.offered)
            words.insert(word.word);
    if (table.takesControllers)
        words.insert("CTRL");
    if (table.takesLds)
        words.insert("LD");
    if (table.takesPds)
        words.insert("PD");
    return words;
}

Words usageWords(std::string usage) {
    Words words;
    for (const auto& [shown, name] :
         {std::pair{"{-aN|-a0,1,2|-aAll}", "CTRL"}, {"{-Lx|-L0,1,2|-Lall}", "LD"}, {"-pd[{E0}:S0,{E1}:S1,...]", "PD"}})
        for (std::size_t at = 0; (at = usage.find(shown)) != usage.npos; words.insert(name))
            usage.replace(at, std::string(shown).size(), " ");
    for (const std::string& word : allOf(usage, "[ {|]-([a-z]+)(?=[ }|]|$|\n)"))
        if (usage.find("zebcli -" + word) == usage.npos)
            words.insert(word);
    return words;
}

/// The forms of the synopsis: behind each ".Nm" a line of command words, then their options.
Commands synopsis() {
    const std::string page = fileText("packaging/zebcli.8");
    const std::size_t begin = page.find(".Sh SYNOPSIS");
    std::istringstream lines(page.substr(begin, page.find(".Sh DESCRIPTION") - begin));
    Commands commands;
    std::vector<std::string> named;
    for (std::string line; std::getline(lines, line);) {
        if (line == ".Nm") {
            named.clear();
            continue;
        }
        const bool first = named.empty();
        Words words;
        for (const std::string& word : allOf(line, "(?:Fl|\\|) (?:\\\\&)?([a-z?]+)"))
            if (first)
                named.push_back(word);
            else
                words.insert(word);
        for (const auto& [shown, name] : {std::pair{"Ar controllers", "CTRL"}, {"Ar LDs", "LD"}, {"Ar PDs", "PD"}})
            if (line.find(shown) != line.npos)
                words.insert(name);
        for (const std::string& command : named)
            commands[command].merge(Words(words));
    }
    return commands;
}

/// The heads of the outermost lists of the man page's section COMMANDS.
Words manPageHeads() {
    const std::string page = fileText("packaging/zebcli.8");
    const std::size_t begin = page.find(".Sh COMMANDS");
    std::istringstream lines(page.substr(begin, page.find("\n.Sh ", begin) - begin));
    Words heads;
    int depth = 0;
    for (std::string line; std::getline(lines, line);) {
        depth += line.starts_with(".Bl") ? 1 : line.starts_with(".El") ? -1 : 0;
        if (depth == 1 && line.starts_with(".It Fl "))
            heads.insert(allOf(line, "^\\.It Fl (?:\\\\&)?([a-z?]+)").at(0));
    }
    return heads;
}

Commands completion() {
    Commands commands;
    for (const Match& row : matchesIn(fileText("packaging/zebcli.bash"), "\n    \\[([a-z?]+)\\]='([^']*)'")) {
        const auto words = allOf(row[2], "-?([A-Za-z]+)");
        commands[row[1]] = Words(words.begin(), words.end());
    }
    return commands;
}

TEST(CommandTable, EveryOptionWordStandsInUsageManPageAndCompletion) {
    const Commands shown = synopsis();
    const Commands offered = completion();
    const Words heads = manPageHeads();
    Words words;
    for (const CommandRow& row : commandRows()) {
        SCOPED_TRACE(row.word);
        EXPECT_TRUE(words.insert(row.word).second) << "two rows";
        EXPECT_TRUE(heads.contains(row.word)) << "no entry in the man page";
        ASSERT_TRUE(offered.contains(row.word)) << "not in the completion";
        if (row.options == nullptr) {
            const auto form = shown.find(row.word);
            EXPECT_EQ(form != shown.end() ? form->second : Words(), offered.at(row.word)) << "synopsis and completion";
            continue;
        }
        EXPECT_STREQ(row.source, row.options->source);
        ASSERT_TRUE(shown.contains(row.word)) << "not in the synopsis";
        const Words wanted = wordsOf(*row.options);
        EXPECT_EQ(wanted, usageWords(row.usage));
        EXPECT_EQ(wanted, shown.at(row.word)) << "synopsis of the man page";
        EXPECT_EQ(wanted, offered.at(row.word)) << "completion";
    }
    EXPECT_EQ(words, heads) << "commands of the man page";
    for (const auto& [word, options] : shown)
        EXPECT_TRUE(words.contains(word)) << word << " of the synopsis";
    EXPECT_EQ(words.size(), offered.size()) << "commands of the completion";
}

} // namespace
} // namespace zebtest
