// What a change to a drive does to the rest of the controller.
#pragma once

#include "simulator/model.h"

namespace zebsim {

/// Gives the drive a state, ends the work that the old one meant, and lets its LDs follow.
void changeDriveState(Controller& ctrl, Drive& drive, std::uint16_t state);

/// Lets the state of each LD on the array follow its drives. An LD that goes offline loses its background work.
void refreshLds(Controller& ctrl, std::uint16_t arrayRef);

/// Ends a copyback in which the drive is source or target; the target is unconfigured good again.
void endCopyback(Controller& ctrl, Drive& drive);

/// Where automatic rebuild is on: puts a fitting hot spare in the place of each lost drive of a redundant LD and starts
/// its rebuild. A dedicated spare goes before a global one. The lost drive leaves its array and is unconfigured bad.
void startSpares(Controller& ctrl);

/// True when a drive of the controller could stand in the array: size, interface and media fit.
bool fitsArray(const Controller& ctrl, const Drive& drive, const Array& array);

/// A drive in the array, to compare others with; null when all positions are empty.
const Drive* anyDriveOf(const Controller& ctrl, const Array& array);

/// Removes an LD and the arrays that no other LD uses; frees the drives of these, and the spares that served only them.
void removeLd(Controller& ctrl, LogicalDrive& ld);

/// Gives the drive a state that nobody asked the controller for, as a failure or another actor does: a spare that gets
/// another state serves no longer, a lone drive that gets the spare's state is a global spare, a lost member is
/// replaced by a hot spare. False when the drive's place does not admit the state; nothing has changed then.
bool imposeState(Controller& ctrl, Drive& drive, std::uint16_t state);

/// Takes the drive out of the controller, as pulling it does. Its position in an array is empty from then on.
void removeDrive(Controller& ctrl, const Drive& drive);

} // namespace zebsim
