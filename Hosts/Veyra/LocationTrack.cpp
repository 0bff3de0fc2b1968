#include "Hosts/Veyra/LocationTrack.h"

#include <glib.h>

#include <cerrno>
#include <cmath>
#include <optional>

namespace veyra {

namespace {

constexpr double unknownAltitudeAccuracy = -1; // what a location without an altitude has
constexpr double metersPerDilution = 5;        // of a good receiver under open sky

/// The whole text as a finite decimal number, in the C locale.
std::optional<double> readNumber(const std::string& text) {
    char* end = nullptr;
    const double number = g_ascii_strtod(text.c_str(), &end);
    if (text.empty() || text.find_first_not_of("+-.0123456789eE") != std::string::npos || *end ||
        !std::isfinite(number))
        return std::nullopt;
    return number;
}

std::string stripped(std::string text) {
    return g_strstrip(text.data());
}

bool isOnEarth(const std::optional<double>& latitude, const std::optional<double>& longitude) {
    return latitude && longitude && std::abs(*latitude) <= 90 && std::abs(*longitude) <= 180;
}

struct GPXPoint {
    double latitude = 0, longitude = 0;
    std::optional<double> time, elevation, dilution; // seconds since 1970, metres, no unit
};

/// What a GMarkup parser builds up.
struct GPXReader {
    std::vector<GPXPoint> trackPoints, routePoints;
    std::vector<GPXPoint>* target = nullptr; // of the point that is being read
    std::string text;                        // of the element that is being read
};

void startElement(GMarkupParseContext*, const char* element, const char** names, const char** values, gpointer data,
                  GError** error) {
    auto& reader = *static_cast<GPXReader*>(data);
    reader.text.clear();
    const std::string_view name = element;
    if (name != "trkpt" && name != "rtept")
        return;
    std::optional<double> latitude, longitude;
    for (; *names; ++names, ++values) {
        if (std::string_view(*names) == "lat")
            latitude = readNumber(*values);
        else if (std::string_view(*names) == "lon")
            longitude = readNumber(*values);
    }
    if (!isOnEarth(latitude, longitude)) {
        g_set_error(error, G_MARKUP_ERROR, G_MARKUP_ERROR_INVALID_CONTENT, "a point without a legal lat and lon");
        return;
    }
    reader.target = name == "trkpt" ? &reader.trackPoints : &reader.routePoints;
    reader.target->push_back({*latitude, *longitude, {}, {}, {}});
}

std::optional<double> readTime(const std::string& text) {
    GTimeZone* zone = g_time_zone_new_utc(); // of times that do not say theirs
    GDateTime* time = g_date_time_new_from_iso8601(text.c_str(), zone);
    g_time_zone_unref(zone);
    if (!time)
        return std::nullopt;
    const double seconds =
        static_cast<double>(g_date_time_to_unix(time)) + static_cast<double>(g_date_time_get_microsecond(time)) / 1e6;
    g_date_time_unref(time);
    return seconds;
}

void endElement(GMarkupParseContext*, const char* element, gpointer data, GError**) {
    auto& reader = *static_cast<GPXReader*>(data);
    const std::string_view name = element;
    if (name == "trkpt" || name == "rtept")
        reader.target = nullptr;
    if (!reader.target)
        return;
    GPXPoint& point = reader.target->back();
    const std::string text = stripped(reader.text);
    if (name == "ele")
        point.elevation = readNumber(text);
    else if (name == "hdop")
        point.dilution = readNumber(text);
    else if (name == "time")
        point.time = readTime(text);
}

void addText(GMarkupParseContext*, const char* text, gsize length, gpointer data, GError**) {
    static_cast<GPXReader*>(data)->text.append(text, length);
}

std::string_view withoutByteOrderMark(std::string_view text) {
    constexpr std::string_view mark = "\xef\xbb\xbf";
    return text.substr(text.starts_with(mark) ? mark.size() : 0);
}

LocationTrack trackOf(const std::vector<GPXPoint>& points) {
    LocationTrack track;
    std::optional<double> start;
    for (const GPXPoint& point : points) {
        const double previous = track.empty() ? -1 : track.back().time;
        if (!start && point.time)
            start = *point.time - (previous + 1);
        const double time = point.time ? *point.time - *start : previous + 1;
        const double accuracy = metersPerDilution * std::max(point.dilution.value_or(1), 0.0);
        track.push_back({time < previous ? previous + 1 : time,
                         std::make_shared<CLLocation>(CLLocationCoordinate2DMake(point.latitude, point.longitude),
                                                      point.elevation.value_or(0), accuracy,
                                                      point.elevation ? accuracy : unknownAltitudeAccuracy)});
    }
    return track;
}

} // namespace

LocationTrack readLocation(const std::string& text, std::string& problem) {
    gchar** parts = g_strsplit(text.c_str(), ",", -1);
    const guint count = g_strv_length(parts);
    std::optional<double> numbers[4] = {std::nullopt, std::nullopt, 10.0, 0.0};
    bool isLegal = count >= 2 && count <= 4;
    for (guint i = 0; isLegal && i < count; ++i) {
        numbers[i] = readNumber(parts[i]);
        isLegal = numbers[i].has_value();
    }
    g_strfreev(parts);
    if (!isLegal || !isOnEarth(numbers[0], numbers[1]) || *numbers[2] < 0) {
        problem = text + " is no location such as 48.2,16.4 or 48.2,16.4,25,170 (degrees, then metres)";
        return {};
    }
    return {{0, std::make_shared<CLLocation>(CLLocationCoordinate2DMake(*numbers[0], *numbers[1]), *numbers[3],
                                             *numbers[2], count == 4 ? *numbers[2] : unknownAltitudeAccuracy)}};
}

LocationTrack readGPX(const std::string& path, std::string& problem) {
    gchar* content = nullptr;
    gsize length = 0;
    if (!g_file_get_contents(path.c_str(), &content, &length, nullptr)) {
        problem = "cannot read " + path + ": " + g_strerror(errno);
        return {};
    }
    const GMarkupParser parser{startElement, endElement, addText, nullptr, nullptr};
    GPXReader reader;
    GMarkupParseContext* context =
        g_markup_parse_context_new(&parser, G_MARKUP_PREFIX_ERROR_POSITION, &reader, nullptr);
    GError* error = nullptr;
    const std::string_view text = withoutByteOrderMark({content, length});
    const bool isRead = g_markup_parse_context_parse(context, text.data(), static_cast<gssize>(text.size()), &error) &&
                        g_markup_parse_context_end_parse(context, &error);
    g_markup_parse_context_free(context);
    g_free(content);
    if (!isRead) {
        problem = path + ": " + error->message;
        g_error_free(error);
        return {};
    }
    LocationTrack track = trackOf(reader.trackPoints.empty() ? reader.routePoints : reader.trackPoints);
    if (track.empty())
        problem = path + ": no track and no route with points";
    return track;
}

} // namespace veyra
