// Questions to the operator, by kind.
#pragma once

/// The kinds of questions.
enum QuestionKind : unsigned char {
    kAskExecute = 0,
    kAskCreateDifferentSizes = 1,
    kAskCreateWriteBackWithoutBackup = 2,
    kAskCreateWriteBackWithBackup = 3,
    kAskLoseData = 4,
    kAskDelete = 5,
    kAskDisablePatrolRead = 6,
    kAskWriteBackWithBackup = 7,
    kAskWriteBackWithoutBackup = 8,
    kAskOverwriteLog = 9,
    kAskGhsInterface = 10,
    kAskGhsMedia = 11,
    kAskGhsCapacity = 12,
    kAskReleaseSpare = 13,
    kAskEnableSnapshot = 14,
    kAskDisableSnapshot = 15,
    kAskUpdateOldestSnapshot = 16,
    kAskDeleteOldestSnapshot = 17,
    kAskMenuFirst = 18,
    kAskMenuLast = 20,
    kAskLdListFirst = 21,
    kAskLdListLast = 22,
    kAskCreateCacheCadeDifferentSizes = 23,
    kAskAssociateCacheCade = 24,
    kAskDisableAutoRebuild = 25,
};

/// Asks the question of a kind until it is answered. Leaves an entry mark in the command log.
///
/// A yes/no kind takes exactly one letter: Y or y returns 1; N or n returns 0 with errno ECANCELED. For kind 24 text is
/// the list of LDs that it shows. Kinds above 25 ask the question of kind 0.
///
/// Kinds 18 to 20 take a menu number from 1 to rows (any up to 255 when rows is 0), which lands in chosen[0]. Kinds 21
/// and 22 take LD numbers joined by ",", which land in the 64 entries of chosen (255 = unused); each must be among the
/// 64 entries of allowed when that is given. For these kinds Q, q or the end of the input returns 0.
///
/// Where asking again is in vain, since nobody reads the questions any more, the answer is no.
int ComChk(unsigned char* chosen, unsigned char* allowed, unsigned char* text, unsigned char kind, unsigned char rows);

/// Whether the yes/no question of a kind is answered with yes.
bool confirmed(QuestionKind kind);
