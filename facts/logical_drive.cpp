#include "facts/logical_drive.h"

namespace facts {

bool LogicalDriveInfo::writeBackLost() const {
    return (defaultWritePolicy == "write_back" || defaultWritePolicy == "always_write_back") &&
           currentWritePolicy == "write_through";
}

} // namespace facts
