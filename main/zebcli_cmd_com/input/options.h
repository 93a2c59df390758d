// Options of a command, as data: a table per command says its words, what excludes what, which targets it takes and how
// it names a bad token. One parser reads them all.
#pragma once

#include "main/zebcli_cmd_com/input/targets.h"

#include <cstddef>
#include <span>

/// One option word.
struct OptionWord {
    const char* word;
    unsigned bit;
    unsigned refusedAfter; ///< the bits of the words before which this one is refused, its own among them
    bool (*acceptsValue)(const char* value) = nullptr; ///< null where no value follows; one not accepted is refused
    bool offered = true; ///< false: taken, but named in no usage, since it does not do what it says
};

/// Which argument a refusal names.
enum class BadToken {
    Before, ///< the one before the offending argument; deliberate, scripts know it so
    Itself,
};

struct OptionTable {
    const char* source; ///< the source unit that the messages carry
    BadToken badToken;
    std::span<const OptionWord> words{};
    bool needsWord = false; ///< at least one of them
    bool takesControllers = false;
    bool takesLds = false;
    bool takesPds = false;
};

/// What was given.
struct Options {
    unsigned bits = 0;
    const char* value = nullptr; ///< of the word that takes one, as it was typed
    bool ctrlGiven = false;
    bool ldGiven = false;
    bool pdGiven = false;
    CtrlList ctrls;
    LdList lds;
    PdList pds;

    Options() {
        ctrls.fill(kNoTarget);
        lds.fill(kNoTarget);
        pds.fill(kNoTarget);
    }
    bool has(unsigned bit) const { return (bits & bit) != 0; }
};

inline constexpr std::size_t kMaxOptionLength = 256;

/// An argument in lower case, without the text up to and including its first "-".
struct OptionText {
    char text[kMaxOptionLength + 1];
    const char* c_str() const { return text; }
};
OptionText optionText(const char* argument);

/// Arguments of a command that carry more than a word, such as "sz100". The object keeps what it reads.
class OwnArguments {
  public:
    enum class Verdict { NotMine, Taken, Refused };
    /// Judges one argument that is no word of the table: its text, and as it was typed. They come from left to right.
    virtual Verdict take(const OptionText& option, const char* argument) = 0;

  protected:
    ~OwnArguments() = default;
};

/// Reads the arguments behind the command word. Returns true, or false after the refusal has been said, under the line
/// of the handler.
bool parseOptions(const OptionTable& table, int argc, char** argv, int contCount, Options& options,
                  int line = __builtin_LINE());

/// The same for a command that has arguments of its own. They are looked at before any target.
bool parseOptions(const OptionTable& table, OwnArguments& own, int argc, char** argv, int contCount, Options& options,
                  int line = __builtin_LINE());

/// Selects the default of the targets that the command takes and that were not given: all LDs, the only controller.
/// There is none for PDs, so that no command changes a drive that nobody named. Returns false when there are several
/// controllers, which has been said.
bool selectDefaultTargets(const OptionTable& table, int contCount, Options& options);

/// Reads the arguments of a command and selects its default targets. Where a word is needed and there is none, the
/// third argument is named. Returns false when the command is over; what is due has been said, under the line of the
/// handler.
bool readArguments(const OptionTable& table, int argc, char** argv, int contCount, Options& options,
                   int line = __builtin_LINE());

/// Says that the named argument cannot be. A null argument is shown as the formatter of the C library shows it.
void refuseToken(const char* source, int line, const char* argument);

/// For a command without options: refuses any argument behind the command word, and names that word. Returns whether it
/// did.
bool refuseArguments(const char* source, int argc, char** argv, int line = __builtin_LINE());

/// The controllers of a list, in its order.
std::span<const unsigned char> selectedControllers(const CtrlList& list, int contCount);
