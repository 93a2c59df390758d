// Gauges: what sensors and the cache backup unit read, on a dial, and how that is judged.
#include "zebstat/page_parts.h"
#include "zebstat/page_words.h"

#include <algorithm>
#include <cmath>

namespace zebstat {

namespace {

using namespace facts;

constexpr char kCelsius[] = " \xC2\xB0"
                            "C";
constexpr double kMostCelsius = 80; ///< where the dials of temperatures end, unless one reads more

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
        const auto dial = out.element("svg", {{"viewBox", "0 0 100 58"}, {"role", "img"}});
        out.leaf("title", gauge.name + ": " + joined({gauge.reading, gauge.status}, ", ") +
                              (gauge.share ? "; the dial shows " + gauge.scale : ""));
        if (gauge.share) {
            out.raw("<path class=\"dial\" d=\"M10 52A40 40 0 0 1 90 52\"/>");
            out.empty("path", {{"class", "needle"},
                               {"d", "M10 52A40 40 0 0 1 90 52"},
                               {"pathLength", "100"},
                               {"stroke-dasharray", numberText(*gauge.share * 100, 1) + " 200"}});
        } else {
            out.raw("<circle class=\"lamp\" cx=\"50\" cy=\"22\" r=\"12\"/>");
        }
        out.raw("<text x=\"50\" y=\"52\" text-anchor=\"middle\">");
        out.text(gauge.reading.empty() ? "" : gauge.reading);
        out.raw("</text>");
    }
    out.leaf("strong", gauge.name);
    if (!gauge.status.empty())
        out.leaf("span", gauge.status, {{"class", "status"}});
}

/// Where on a dial that ends at most something stands; the dial ends later for more.
void setDial(Gauge& gauge, double value, double most, const std::string& unit) {
    const double end = std::max(most, value);
    gauge.share = end > 0 ? std::clamp(value / end, 0.0, 1.0) : 0;
    gauge.scale = "0 to " + numberText(end, 0) + unit;
}

std::string lookOf(const Word& status) {
    if (status == "ok")
        return "good";
    if (status == "critical" || status == "unrecoverable")
        return "bad";
    return status == "noncritical" ? "weak" : "idle";
}

Gauge gaugeOf(const Sensor& sensor) {
    constexpr double kMostRpm = 10230; // the largest speed that a sensor can tell
    constexpr double kMostVolts = 15;
    Gauge gauge;
    gauge.name = wordText(sensor.type) + " " + std::to_string(sensor.index);
    gauge.look = lookOf(sensor.status);
    gauge.status = wordText(sensor.status);
    if (sensor.celsius) {
        gauge.reading = std::to_string(*sensor.celsius) + kCelsius;
        setDial(gauge, *sensor.celsius, kMostCelsius, kCelsius);
    } else if (sensor.rpm) {
        gauge.reading = std::to_string(*sensor.rpm) + " rpm";
        setDial(gauge, *sensor.rpm, kMostRpm, " rpm");
    } else if (sensor.volts) {
        gauge.reading = numberText(*sensor.volts, 2) + " V";
        setDial(gauge, std::abs(*sensor.volts), kMostVolts, " V, without the sign");
    }
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
    const std::string look = !severity ? "good" : *severity == Severity::Critical ? "bad" : "weak";
    const auto list = part.out.element("ul", {{"class", "gauges"}});
    if (unit.remainingCapacityJoules && unit.fullCapacityJoules && *unit.fullCapacityJoules != 0) {
        const double share = static_cast<double>(*unit.remainingCapacityJoules) / *unit.fullCapacityJoules;
        Gauge gauge{"capacity",
                    look,
                    std::to_string(*unit.remainingCapacityJoules) + " of " + std::to_string(*unit.fullCapacityJoules) +
                        " J",
                    numberText(std::floor(share * 100), 0) + " %",
                    std::min(share, 1.0),
                    "0 to 100 % of the design",
                    ""};
        writeGauge(part.out, gauge);
    }
    if (unit.temperatureCelsius) {
        const bool isHot = unit.status && std::ranges::count(*unit.status, "temperature_high") != 0;
        Gauge gauge{"temperature",
                    isHot ? "weak" : "good",
                    isHot ? "high" : "",
                    std::to_string(*unit.temperatureCelsius) + kCelsius,
                    {},
                    "",
                    ""};
        setDial(gauge, *unit.temperatureCelsius, kMostCelsius, kCelsius);
        writeGauge(part.out, gauge);
    }
    if (unit.voltageVolts) {
        constexpr double kMostVolts = 15;
        const bool isLow = unit.status && std::ranges::count(*unit.status, "voltage_low") != 0;
        Gauge gauge{
            "voltage", isLow ? "weak" : "good", isLow ? "low" : "", numberText(*unit.voltageVolts, 2) + " V", {}, "",
            ""};
        setDial(gauge, std::abs(*unit.voltageVolts), kMostVolts, " V");
        writeGauge(part.out, gauge);
    }
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
            " \xC2\xB7 "));
    }
    writeBackupGauges(part, unit);
    writeBackupTable(part, unit);
}

} // namespace zebstat
