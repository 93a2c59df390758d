// What the checks found, gathered by record.
#pragma once

#include "recorder/probe/cell.h"

#include <initializer_list>
#include <map>

namespace zebprobe {

/// What a check that holds is worth. One that bounds a value holds for most bytes that could stand there, so it speaks
/// for nothing; one that tells holds by chance only seldom.
enum class Weight { kBounds, kTells };

enum class Verdict { kNotAsked, kNothingAgainst, kConfirmed, kContradicted };

struct Contradiction {
    std::string check;
    std::vector<std::string> places; ///< the bytes of the first case, each with where they stand
    std::size_t more = 0; ///< further cases
};

/// All about one record.
struct RecordFindings {
    std::size_t asked = 0; ///< requests for it that were answered
    std::size_t errors = 0; ///< that were answered with an error
    std::uint32_t lastError = 0;
    std::size_t declared = 0;
    std::size_t wrote = 0; ///< the most
    std::size_t past = 0;
    bool inside = false; ///< it stands inside another record that was answered
    bool told = false; ///< a check held that would not hold by chance
    std::vector<Contradiction> contradictions;

    Verdict verdict() const;
};

class Verdicts {
  public:
    /// Notes an answer.
    void note(const Answered& answered);

    /// Notes what a check came to. Every record in which one of the cells lies gets it. Cells that are not there are no
    /// part of it; with none there is nothing to be said. A check that tells says nothing while all its bytes are zero.
    void judge(const char* check, bool holds, Weight weight, std::initializer_list<Cell> cells);

    /// Notes whether a record that is sent was understood, as far as the answers tell.
    void judgeSent(const wire::RecordLayout& record, const char* check, bool holds);

    /// The records of all.h by name; those that no answer can hold are missing.
    const std::map<std::string_view, RecordFindings>& records() const { return records_; }

  private:
    std::map<std::string_view, RecordFindings> records_;
};

} // namespace zebprobe
