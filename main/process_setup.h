// What a run makes of the descriptors and signals that its caller left it.
#pragma once

/// Occupies the standard descriptors that the caller left closed, so that no file that is opened later, the log above
/// all, gets one of their numbers. What is read from or written to them fails as it would on a closed descriptor.
void occupyStandardDescriptors();

/// Makes a write to a pipe without a reader, or past the allowed file size, fail instead of ending the run.
void surviveWriteSignals();

/// Lets a report go out in one piece, except to a terminal, where it is to be seen as it comes. Where another program
/// left the descriptor in a mode that does not wait for room, the writing waits, so that no report is cut.
void gatherOutput();
