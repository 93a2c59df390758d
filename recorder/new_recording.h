// The file of a recording, from its head to what is said about it at the end.
#pragma once

#include "recorder/start.h"

#include <memory>
#include <optional>
#include <string>

namespace zebrec {

class NewRecording {
  public:
    /// Makes the file, private and new, with its head. Null on failure; the reason was said and no file is left.
    static std::unique_ptr<NewRecording> make(const std::string& program, const std::string& path, const Start& start,
                                              bool redacted);
    /// Removes the file when nobody has kept it.
    ~NewRecording();
    NewRecording(const NewRecording&) = delete;
    NewRecording& operator=(const NewRecording&) = delete;

    /// The path under which the processes of the command open it.
    std::string pathForCommand() const;

    /// From here on there is something in it.
    void keep() { kept_ = true; }

    /// Completes the head with what was learned and says what is to be said about the recording.
    void end() const;

  private:
    NewRecording(const std::string& program, const std::string& path, SessionPage& page)
        : program_(program), path_(path), page_(page) {}
    int open();
    int putHead() const;

    std::string program_;
    std::string path_;
    SessionPage& page_;
    int file_ = -1;
    bool kept_ = false;
};

} // namespace zebrec
