#include "tests/recorder/originals.h"

#include "recorder/recording.h"
#include "tests/support/expected.h"
#include "tests/support/paths.h"
#include "tests/support/sandbox.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace fs = std::filesystem;

namespace zebtest {

namespace {

/// Every serial number, address, LD, device and configuration name that a scenario's file gives.
void collect(const nlohmann::json& value, bool inLds, Originals& originals) {
    for (const auto& [key, item] : value.items()) {
        const bool names = key == "serial" || (key == "name" && inLds) || key == "guid";
        if (names && item.is_string())
            originals.text(item.get<std::string>());
        for (const auto& one : item.is_array() ? item : nlohmann::json::array()) {
            if (key == "osDevices" && one.is_string())
                originals.text(one.get<std::string>());
            if ((key == "sasAddresses" || key == "portAddresses") && one.is_string())
                originals.number(std::stoull(one.get<std::string>(), nullptr, 16));
        }
        if (key == "logicalId" && item.is_string())
            originals.number(std::stoull(item.get<std::string>(), nullptr, 16));
        if (item.is_structured())
            collect(item, key == "lds" || (inLds && value.is_array()), originals);
    }
}

/// The names of images and connectors, which are texts of the controllers' maker.
void collectHarmless(const nlohmann::json& value, bool inLds, Originals& originals) {
    for (const auto& [key, item] : value.items()) {
        if (key == "name" && !inLds && item.is_string())
            originals.harmless(item.get<std::string>());
        if (item.is_structured())
            collectHarmless(item, key == "lds" || (inLds && value.is_array()), originals);
    }
}

} // namespace

void Originals::number(std::uint64_t number) {
    std::string bytes(reinterpret_cast<const char*>(&number), sizeof number);
    found_.insert(bytes);
    std::ranges::reverse(bytes);
    found_.insert(bytes);
    char digits[17];
    for (const char* format : {"%016lX", "%016lx"}) {
        std::snprintf(digits, sizeof digits, format, number);
        found_.insert(digits);
    }
}

std::string Originals::in(const std::string& text) const {
    std::string found;
    for (const std::string& original : found_)
        if (::memmem(text.data(), text.size(), original.data(), original.size()) != nullptr)
            found += visible(original) + " ";
    return found;
}

Originals originalsOf(const std::string& scenario) {
    Originals originals;
    // What the simulated hardware has by itself: the makers' serial number, addresses by their common beginning.
    originals.text("QV00000001");
    originals.text("ZEBSIM FOREIGN CONFIG");
    originals.text(std::string("\xC0\xB0\xA0\x50", 4));
    originals.text("/dev/sd");
    originals.text("50A0B0C");
    originals.text("50a0b0c");
    originals.text("c0b0a050");
    const auto value = nlohmann::json::parse(scenario);
    collect(value, false, originals);
    collectHarmless(value, false, originals);
    return originals;
}

std::string everythingIn(const fs::path& file) {
    std::string text = readFile(file);
    std::string reason;
    const auto recording = zebrec::readRecording(text, reason);
    EXPECT_TRUE(recording) << reason;
    const auto add = [&](const auto& bytes) { text.append(bytes.begin(), bytes.end()).append(1, '|'); };
    if (recording)
        for (const zebrec::Line& line : recording->lines) {
            add(line.header);
            for (const auto* out : {&line.out, &line.innerOut})
                if (*out)
                    add(**out);
            for (const auto* in : {&line.in, &line.innerIn})
                if (*in)
                    add((*in)->bytes);
        }
    return text;
}

fs::path scenarioFile(const std::string& name) {
    return name == "built_in" ? fs::path(paths::sourceDir) / "simulator/built_in.json"
                              : fs::path(paths::scenarioDir) / (name + ".json");
}

} // namespace zebtest
