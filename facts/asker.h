// Sends the questions of one collection about one controller, counts them and keeps what fails.
#pragma once

#include "facts/collection.h"
#include "storelib/records/status.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace facts {

/// The failure that a status tells of; nothing for success.
std::optional<Failure> failureOf(std::uint32_t status);

class Asker {
  public:
    Asker(Collection& collection, std::uint8_t contNo) : collection_(collection), contNo_(contNo) {}

    std::uint8_t contNo() const { return contNo_; }

    /// Asks by a wrapper that takes the controller's number first. The name is the wrapper's. Returns what went wrong;
    /// it stands in the collection's errors then.
    template <class Wrapper, class... Arguments>
    std::optional<Failure> ask(const Object& about, std::string_view name, Wrapper wrapper, Arguments... arguments) {
        ++collection_.requests;
        return keep(about, name, wrapper(contNo_, arguments...));
    }

    /// The same for a command to the drive itself, whose refusal is an answer too: no error, but nothing told.
    template <class Wrapper, class... Arguments>
    bool tells(const Object& about, std::string_view name, Wrapper wrapper, Arguments... arguments) {
        ++collection_.requests;
        const std::uint32_t status = wrapper(contNo_, arguments...);
        return status != kSlScsiStatus && !keep(about, name, status);
    }

  private:
    std::optional<Failure> keep(const Object& about, std::string_view name, std::uint32_t status) {
        auto failure = failureOf(status);
        if (failure)
            collection_.errors.push_back({{contNo_, about}, name, *failure});
        return failure;
    }

    Collection& collection_;
    std::uint8_t contNo_;
};

} // namespace facts
