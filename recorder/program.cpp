#include "recorder/program.h"

#include <cstdio>
#include <exception>
#include <new>

namespace zebrec {

int refuse(const std::string& program, const std::string& message) {
    std::fprintf(stderr, "%s: %s\n", program.c_str(), message.c_str());
    return kCannotStart;
}

int runProgram(const char* program, const std::function<int()>& run) {
    try {
        return run();
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "%s: not enough memory\n", program);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", program, error.what());
    }
    return kCannotStart;
}

void sayAtEnd(const char* program, const std::function<void()>& say) {
    try {
        say();
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "%s: not enough memory to say all about the command\n", program);
    }
}

std::optional<std::string> Arguments::value(const char* option) const {
    const auto found = options.find(option);
    return found == options.end() ? std::nullopt : std::optional(found->second);
}

Arguments parseArguments(int argc, char** argv, const std::map<std::string, bool>& known) {
    Arguments arguments;
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        if (word == "--") {
            arguments.command.assign(argv + i + 1, argv + argc);
            break;
        }
        const std::size_t equals = word.find('=');
        const auto option = known.find(word.substr(0, equals));
        if (word.size() < 2 || word[0] != '-') {
            arguments.words.push_back(word);
        } else if (option == known.end() || (!option->second && equals != std::string::npos)) {
            arguments.error = "unknown option " + word;
        } else if (!option->second) {
            arguments.options[word];
        } else if (equals != std::string::npos) {
            arguments.options[option->first] = word.substr(equals + 1);
        } else if (i + 1 < argc) {
            arguments.options[word] = argv[++i];
        } else {
            arguments.error = "option " + word + " needs a value";
        }
    }
    return arguments;
}

} // namespace zebrec
