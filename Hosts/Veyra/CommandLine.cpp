#include "Hosts/Veyra/CommandLine.h"

#include "Hosts/Veyra/TileOptions.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <cmath>
#include <unistd.h>

namespace veyra {

namespace {

constexpr int largestSide = 16384; // device pixels
constexpr double snapshotTimeout = 30;

std::optional<int> readSide(std::string_view text) {
    int side = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), side);
    if (error != std::errc() || end != text.data() + text.size() || side < 1 || side > largestSide)
        return std::nullopt;
    return side;
}

void readSize(const std::string& text, CommandLine& line) {
    const size_t separator = text.find('x');
    const auto width = readSide(std::string_view(text).substr(0, separator));
    const auto height =
        separator == std::string::npos ? std::nullopt : readSide(std::string_view(text).substr(separator + 1));
    if (!width || !height)
        throw CLI::ValidationError("--size", text + " is no size such as 1024x768, with sides of 1 to 16384");
    line.width = *width;
    line.height = *height;
}

void addSizeAndScale(CLI::App& command, CommandLine& line) {
    command
        .add_option_function<std::string>(
            "--size", [&line](const std::string& text) { readSize(text, line); },
            "width and height in CSS pixels (1024x768)")
        ->type_name("WxH");
    command.add_option("--scale", line.scale, "device pixels a CSS pixel (1)")->type_name("S");
}

/// A range that "nan", which is less than nothing and more than nothing, is not in.
CLI::Validator numberBetween(double least, double most) {
    const CLI::Range range(least, most);
    return {[range](std::string& text) {
                double number = 0;
                return CLI::detail::lexical_cast(text, number) && std::isnan(number) ? text + " is no number"
                                                                                     : range(text);
            },
            range.get_description()};
}

void addTimeout(CLI::App& command, CommandLine& line, const char* description) {
    command.add_option("--timeout", line.timeout, description)->type_name("SECONDS")->check(numberBetween(1e-3, 1e6));
}

LocationTrack checkedTrack(LocationTrack (*read)(const std::string&, std::string&), const std::string& text,
                           const char* option) {
    std::string problem;
    LocationTrack track = read(text, problem);
    if (!problem.empty())
        throw CLI::ValidationError(option, problem);
    return track;
}

void addLocation(CLI::App& command, CommandLine& line, const char* whoIsAsked) {
    const std::map<std::string, GeolocationPolicy> policies{
        {"ask", GeolocationPolicy::Ask}, {"allow", GeolocationPolicy::Allow}, {"deny", GeolocationPolicy::Deny}};
    command.add_option("--geolocation", line.geolocation, whoIsAsked)
        ->transform(CLI::CheckedTransformer(policies).description(""))
        ->type_name("ask|allow|deny")
        ->option_text("ask|allow|deny");
    CLI::Option* place =
        command
            .add_option_function<std::string>(
                "--location",
                [&line](const std::string& text) { line.location = checkedTrack(readLocation, text, "--location"); },
                "where the user is said to be (degrees, metres)")
            ->type_name("LAT,LON[,ACCURACY[,ALTITUDE]]");
    CLI::Option* track =
        command
            .add_option_function<std::string>(
                "--location-track",
                [&line](const std::string& path) { line.location = checkedTrack(readGPX, path, "--location-track"); },
                "a recorded track that the user is said to follow")
            ->type_name("F.gpx")
            ->excludes(place);
    command.add_option("--speed", line.locationSpeed, "how many times faster than recorded (1)")
        ->type_name("N")
        ->check(numberBetween(1e-3, 1e6))
        ->needs(track);
}

/// Without a terminal there is nobody to ask.
void denyWithoutTerminal(const CLI::App& command, CommandLine& line) {
    if (command.count("--geolocation") == 0 && !isatty(STDIN_FILENO))
        line.geolocation = GeolocationPolicy::Deny;
}

void addPage(CLI::App& command, CommandLine& line) {
    command.add_option("PAGE", line.input, "the page: an address or a file")->required();
}

void addOpen(CLI::App& app, CommandLine& line) {
    CLI::App* open = app.add_subcommand("open", "show a page in a window, and its console in the terminal");
    CLI::Option* page = open->add_option("PAGE", line.input, "the page: an address or a file");
    // For WebKitWebDriver, which opens pages itself.
    CLI::Option* automation = open->add_flag("--automation", line.automation)->group("");
    addLocation(*open, line, "whether pages may know where the user is (ask)");
    open->final_callback([page, automation] {
        if (page->empty() == automation->empty())
            throw CLI::RequiredError("PAGE");
    });
}

void checkPictureSize(const CommandLine& line) {
    if (std::max(line.width, line.height) * line.scale > largestSide)
        throw CLI::ValidationError("--scale", "the picture would be larger than 16384 pixels a side");
}

void addSnapshot(CLI::App& app, CommandLine& line) {
    CLI::App* snapshot = app.add_subcommand("snapshot", "write a picture of a page once all its maps are complete");
    addPage(*snapshot, line);
    snapshot->add_option("--output", line.output, "the picture to write (PNG)")->type_name("F.png")->required();
    addSizeAndScale(*snapshot, line);
    snapshot
        ->add_option("--wait-for-title", line.titlePrefix,
                     "take the picture when the page's title begins so, whatever its maps do")
        ->type_name("PREFIX");
    addTimeout(*snapshot, line, "give up after so long (30)");
    addLocation(*snapshot, line, "whether the page may know where the user is (ask in the terminal)");
    snapshot->final_callback([&line, snapshot] {
        denyWithoutTerminal(*snapshot, line);
        // GTK 3 knows whole scales only.
        if (line.scale != std::floor(line.scale) || line.scale < 1 || line.scale > 8)
            throw CLI::ValidationError("--scale", "the scale of a page is a whole number from 1 to 8");
        checkPictureSize(line);
        if (!line.timeout)
            line.timeout = snapshotTimeout;
    });
}

void addScript(CLI::App& app, CommandLine& line) {
    CLI::App* script = app.add_subcommand("script", "run a script with a map, without page and display");
    script->add_option("FILE", line.input, "the script")->type_name("FILE.js")->required();
    script->add_option("--output", line.output, "write a picture of the map at the end (PNG)")->type_name("F.png");
    addSizeAndScale(*script, line);
    addTimeout(*script, line, "give up after so long (no limit)");
    addLocation(*script, line, "whether the script may know where the user is (ask in the terminal)");
    script->final_callback([&line, script] {
        denyWithoutTerminal(*script, line);
        if (!(line.scale >= 0.25 && line.scale <= 8))
            throw CLI::ValidationError("--scale", "the scale of a script's map is a number from 0.25 to 8");
        checkPictureSize(line);
    });
}

CommandLine::Command chosenCommand(const CLI::App& app) {
    if (app.got_subcommand("open"))
        return CommandLine::Command::Open;
    return app.got_subcommand("snapshot") ? CommandLine::Command::Snapshot : CommandLine::Command::Script;
}

} // namespace

std::variant<CommandLine, ExitStatus> readCommandLine(int argc, char** argv) {
    CommandLine line;
    CLI::App app("Native interactive maps in web pages.", "veyra");
    app.set_version_flag("--version", "veyra " VEYRA_VERSION);
    app.add_flag("--verbose", line.verbose, "log what a map quietly ignores");
    TileOptions tiles(app);
    app.require_subcommand(1);
    app.fallthrough();
    app.get_formatter()->column_width(34);
    addOpen(app, line);
    addSnapshot(app, line);
    addScript(app, line);
    try {
        app.parse(argc, argv);
        line.tileSources = tiles.setting();
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? ExitStatus::Success : ExitStatus::BadArguments;
    }
    line.command = chosenCommand(app);
    return line;
}

} // namespace veyra
