// What must hold of the answers if the records are laid out as they are declared. Each function looks at one part.
#pragma once

#include "recorder/probe/survey.h"
#include "recorder/probe/verdicts.h"

namespace zebprobe {

/// What the checks look at, and where they put what they find.
struct Inspection {
    const Survey& survey;
    Verdicts& verdicts;
    std::size_t ctrl = 0; ///< the controller in question

    Cell cell(Question question, std::uint32_t reference = 0, bool again = false) const {
        return survey.cell(ctrl, question, reference, again);
    }
    void tells(const char* check, bool holds, std::initializer_list<Cell> cells) const {
        verdicts.judge(check, holds, Weight::kTells, cells);
    }
    void bounds(const char* check, bool holds, std::initializer_list<Cell> cells) const {
        verdicts.judge(check, holds, Weight::kBounds, cells);
    }
};

// Checks that many records share.

/// Printable and, behind its end, filled up. A text that people type may hold any character above ASCII.
void judgeText(const Inspection& inspection, const Cell& text, bool typed = false);
/// Seconds since 2000-01-01, from 2000 to 2099. Neither 0 nor all ones is a time.
void judgeTime(const Inspection& inspection, const Cell& time);
/// The same, and within ten years of the controller's clock.
void judgeNearClock(const Inspection& inspection, const Cell& time);
/// The most of what is said in percent.
inline constexpr std::uint64_t kPercent = 100;
/// Not above the most that its unit or its table admits.
void judgeAtMost(const Inspection& inspection, const Cell& number, std::uint64_t most);
/// Both say the same of one thing. Where both are one kind of record, that says nothing of its own fields.
void judgeSame(const Inspection& inspection, const char* check, const Cell& one, const Cell& other);

/// One kind of background work: the bits that say it is under way, and the field that says how far it is.
struct Work {
    std::uint64_t bits;
    const char* field;
};
/// The work that has come somewhere is work that is under way.
void judgeWork(const Inspection& inspection, const Cell& progress, std::initializer_list<Work> kinds);
/// From one reading to the next the work's seconds count no faster than the controller's clock.
void judgeElapsed(const Inspection& inspection, const Cell& first, const Cell& second,
                  std::initializer_list<Work> kinds);

/// The parts of a configuration.
struct ConfigCells {
    Cell head;
    std::vector<Cell> arrays;
    std::vector<Cell> lds;
    std::vector<Cell> spares;
};
ConfigCells configOf(const Survey& survey, std::size_t ctrl, Question question = kConfig);

void judgeLibrary(const Inspection& inspection);
void judgeController(const Inspection& inspection);
void judgeDrives(const Inspection& inspection);
void judgeLds(const Inspection& inspection);
void judgeConfiguration(const Inspection& inspection);
void judgeBackupUnit(const Inspection& inspection);
void judgeEnclosures(const Inspection& inspection);
/// Asked twice, answered alike but for what moves by itself.
void judgeReadings(const Inspection& inspection);

/// All of them.
Verdicts judge(const Survey& survey);

} // namespace zebprobe
