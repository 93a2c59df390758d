// Gauges: what sensors and the cache backup unit read, on a dial, and how that is judged.
#include "zebstat/page_parts.h"
#include "zebstat/page_words.h"

#include <algorithm>
#include <cmath>

namespace zebstat {

namespace {

using namespace facts;

constexpr double kMostCelsius = 80; ///< where the dials of temperatures end, unless one reads more
constexpr double kMostVolts = 15; ///< the same of voltages

struct Gauge {
    std::string name;
    std::string look; ///< class: good, weak, bad, idle
    std::string status;
    std::string reading; ///< "27 °C"; empty where nothing is read
    std::optional<double> share; ///< of the dial, 0 to 1
    std::string scale; ///< "0 to 80 °C"
    std::string anchor;
};

void writeGauge(Markup& out, const Gauge& gauge) {
    const auto item = out.element("li", {{"class", "gauge " + gauge.look}, {"id", gauge.anchor}});
    {
        const auto dial = out.element("svg", {{"viewBox", "0 0 100 62"}, {"role", "img"}});
        out.leaf("title", gauge.name + ": " + joined({gauge.reading, gauge.status}, ", ") +
                              (gauge.share ? "; the dial shows " + gauge.scale : ""));
        if (gauge.share) {
            out.raw("<path class=\"dial\" d=\"M12 44A38 38 0 0 1 88 44\"/>");
            out.empty("path", {{"class", "needle"},
                               {"d", "M12 44A38 38 0 0 1 88 44"},
                               {"pathLength", "100"},
                               {"stroke-dasharray", numberText(*gauge.share * 100, 1) + " 200"}});
        } else {
            out.raw("<circle class=\"lamp\" cx=\"50\" cy=\"30\" r=\"13\"/>");
        }
        out.leaf("text", gauge.reading, {{"x", "50"}, {"y", "57"}, {"text-anchor", "middle"}});
    }
    out.leaf("strong", gauge.name);
    if (!gauge.status.empty())
        out.leaf("span", gauge.status, {{"class", "status"}});
}

/// A gauge whose dial shows the value, without its sign; it ends at most there, or where the value is.
Gauge dialOf(std::string name, double value, int decimals, double most, const std::string& unit) {
    const double end = std::max(most, std::abs(value));
    Gauge gauge;
    gauge.name = std::move(name);
    gauge.reading = numberText(value, decimals) + kNoBreak + unit;
    gauge.share = std::abs(value) / end;
    gauge.scale = "0 to " + numberText(end, 0) + kNoBreak + unit;
    return gauge;
}

std::string lookOfStatus(const Word& status) {
    if (status == "ok")
        return "good";
    if (status == "critical" || status == "unrecoverable")
        return "bad";
    return status == "noncritical" ? "weak" : "idle";
}

Gauge gaugeOf(const Sensor& sensor) {
    constexpr double kMostRpm = 10230; // the largest speed that a sensor can tell
    const std::string name = wordText(sensor.type) + " " + std::to_string(sensor.index);
    Gauge gauge;
    if (sensor.celsius)
        gauge = dialOf(name, *sensor.celsius, 0, kMostCelsius, kCelsius);
    else if (sensor.rpm)
        gauge = dialOf(name, *sensor.rpm, 0, kMostRpm, "rpm");
    else if (sensor.volts)
        gauge = dialOf(name, *sensor.volts, 2, kMostVolts, "V");
    gauge.name = name;
    gauge.look = lookOfStatus(sensor.status);
    gauge.status = wordText(sensor.status);
    return gauge;
}

std::string statusText(const CacheBackup& unit) {
    if (!unit.status)
        return kUntoldText;
    std::vector<std::string> words;
    for (const std::string_view word : *unit.status)
        words.push_back(wordText(word));
    if (unit.statusCode)
        words.push_back("unknown (" + std::to_string(*unit.statusCode) + ")");
    return words.empty() ? "nothing to tell" : joined(words, ", ");
}

void writeBackupGauges(ControllerPart& part, const CacheBackup& unit) {
    const auto severity = part.severityOf(CacheBackupObject{});
    const auto list = part.out.element("ul", {{"class", "gauges"}});
    const auto write = [&](Gauge gauge, std::string_view flag, const char* word) {
        const bool isSet = unit.status && std::ranges::count(*unit.status, flag) != 0;
        gauge.look = isSet ? "weak" : "good";
        gauge.status = isSet ? word : "";
        writeGauge(part.out, gauge);
    };
    if (unit.remainingCapacityJoules && unit.fullCapacityJoules && *unit.fullCapacityJoules != 0) {
        const double percent = 100.0 * *unit.remainingCapacityJoules / *unit.fullCapacityJoules;
        Gauge gauge = dialOf("capacity", std::floor(percent), 0, 100, "%");
        gauge.look = !severity ? "good" : *severity == Severity::Critical ? "bad" : "weak";
        gauge.status = std::to_string(*unit.remainingCapacityJoules) + " / " + numberText(unit.fullCapacityJoules, "J");
        writeGauge(part.out, gauge);
    }
    if (unit.temperatureCelsius)
        write(dialOf("temperature", *unit.temperatureCelsius, 0, kMostCelsius, kCelsius), "temperature_high", "high");
    if (unit.voltageVolts)
        write(dialOf("voltage", *unit.voltageVolts, 2, kMostVolts, "V"), "voltage_low", "low");
}

} // namespace

void writeSensors(ControllerPart& part, const Enclosure& enclosure) {
    if (!enclosure.sensors) {
        part.note("The sensors of this enclosure could not be read.");
        return;
    }
    if (enclosure.sensors->empty())
        return;
    const auto list = part.out.element("ul", {{"class", "gauges"}});
    for (const Sensor& sensor : *enclosure.sensors) {
        Gauge gauge = gaugeOf(sensor);
        gauge.anchor = part.claim(SensorObject{enclosure.deviceId, sensor.type, sensor.index});
        writeGauge(part.out, gauge);
    }
}

void writeCacheBackup(ControllerPart& part) {
    Markup& out = part.out;
    const CacheBackupObject object;
    const auto box =
        out.element("section", {{"class", "backup " + part.severityClass(object)}, {"id", part.claim(object)}});
    out.leaf("h3", "Cache backup unit");
    if (!part.controller.cacheBackup) {
        out.leaf("p", "None is fitted.", {{"class", "sub"}});
        return;
    }
    const CacheBackup& unit = *part.controller.cacheBackup;
    if (unit.error)
        part.note("Not all of it could be read: " + unit.error->text);
    {
        const auto line = out.element("p", {{"class", "sub"}});
        out.text(joined(
            {wordText(unit.type), unit.serial ? "serial number " + *unit.serial : "", "status: " + statusText(unit)},
            kDot));
    }
    writeBackupGauges(part, unit);
    writeBackupTable(part, unit);
}

} // namespace zebstat
