// Numbers joined with ",", as the summaries show them.
#pragma once

#include "main/zebcli_cmd_com/base/limits.h"
#include "main/zebcli_cmd_com/base/string_shims.h"

class NumberList {
  public:
    void add(unsigned number) {
        char item[8];
        wsprintf(item, empty() ? "%u" : ",%u", number);
        lstrcat(text_, item);
    }
    bool empty() const { return text_[0] == '\0'; }
    const char* c_str() const { return text_; }

  private:
    /// Room for twice as many numbers as a PD list has.
    char text_[std::size_t{2} * kMaxSlots * (sizeof "255," - 1) + 1] = {};
};
