// Questions to the operator, and the terminal mode that they are asked in.
#pragma once

#include <cstddef>
#include <span>
#include <termios.h>

/// Set to 1 once new_term_set is in force, so that old_term_set is to be put back at exit.
extern int term_set_flg;
extern termios old_term_set;
extern termios new_term_set;

/// The longest answer that is read at once, its newline and NUL included.
inline constexpr std::size_t kAnswerSize = 65536;

/// Reads one line from standard input, newline included, with echo on meanwhile. The mode in force before and during
/// the input lands in old_term_set on purpose: after any question the mode that is put back at exit is the one of the
/// last input. At the end of the input the answer is empty and 100 ms have passed, so that asking again cannot spin a
/// processor. Returns false when asking again is in vain, since nobody reads the questions any more.
bool readAnswer(std::span<char, kAnswerSize> answer);

/// The kinds of questions that handlers ask by name.
enum QuestionKind : unsigned char {
    kAskAlwaysWriteBackWithBackup = 7,
    kAskAlwaysWriteBackWithoutBackup = 8,
    kAskOverwriteLog = 9,
    kAskGhsInterface = 10,
    kAskGhsMedia = 11,
    kAskGhsCapacity = 12,
    kAskReleaseSpare = 13,
    kAskMenuFirst = 18,
    kAskMenuLast = 20,
    kAskLdListFirst = 21,
    kAskLdListLast = 22,
    kAskAssociateCacheCade = 24,
    kAskDisableAutoRebuild = 25,
};

/// Asks the question of a kind until it is answered.
///
/// A yes/no kind takes exactly one letter: Y or y returns 1; N or n returns 0 with errno ECANCELED. For kind 24 text is
/// the list of LDs that it shows. Kinds 18 to 20 take a menu number from 1 to c (any number when c is 0), which lands
/// in a[0]; kinds 21 and 22 take a comma-separated list of LD numbers, which lands in the 64 entries of a (255 =
/// unused), each of which must be among the entries of b when that is given. For these kinds Q or q returns 0.
/// Where asking again is in vain the answer is no.
int ComChk(unsigned char* a, unsigned char* b, unsigned char* text, unsigned char kind, unsigned char c);
