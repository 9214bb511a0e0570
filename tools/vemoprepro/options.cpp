/* Describes the options to CLI11 and checks what it cannot know. Words follow the habits of the
 * field's other command-line programs: -j, --dpi, --overwrite, -q, -v. */
#include "options.h"

#include <vemoprepro/frame.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <thread>

#include "messages.h"

namespace tool {
namespace {

constexpr const char* kExamples =
    "Examples:\n"
    "  vemoprepro clean scan.jpg -o page.tif           straight bitonal page, Group 4\n"
    "  vemoprepro clean book.tif -o book-clean.tif     all pages of a file, in order\n"
    "  vemoprepro clean scans/*.png -o out/ -j 4       several files into a folder\n"
    "  vemoprepro clean - -o - <a.png >a.tif           as a filter\n"
    "  vemoprepro clean a.tif -o b.tif --json >a.json  with a record of what was found\n"
    "  vemoprepro clean c.tif -o d.tif --apply a.json  the same skews and thresholds again\n"
    "  vemoprepro rotate 90 page.png -o turned.png     a quarter turn clockwise\n"
    "  vemoprepro info scans/*.tif                     what the files hold\n"
    "\n"
    "Exit status: 0 all done, 1 a file failed (the others are done), 2 wrong usage.\n"
    "'vemoprepro COMMAND --help' lists the options of a command.";

constexpr double kDegreesPerRadian = 57.29577951308232;

/* What CLI11 fills in, before it becomes Options. */
struct Raw {
    std::string format;
    std::string threshold = "auto";
    std::string method = "threshold";
    double skew_degrees = 0;
    int dpi = 0;
    int angle = 0;
    bool no_deskew = false;
};

[[noreturn]] void refuse(const std::string& what) {
    throw CLI::ValidationError(what, 1);
}

void add_inputs(CLI::App& command, Options& options) {
    command
        .add_option("INPUT", options.inputs, "TIFF, PNG, JPEG or PNM files; - is standard input")
        ->required();
}

void add_words(CLI::App& command, Options& options) {
    auto* quiet = command.add_flag("-q,--quiet", options.quiet, "Print errors only");
    command.add_flag("-v,--verbose", options.verbose, "Say for every step what was done and why")
        ->excludes(quiet);
}

void add_outputs(CLI::App& command, Options& options, Raw& raw) {
    command
        .add_option("-o,--output", options.output,
                    "A file for one input, a folder for several; - is standard output")
        ->required();
    command
        .add_option("--format", raw.format,
                    "tiff, png or pbm (default: by the output's name, else tiff)")
        ->check(CLI::IsMember({"tiff", "png", "pbm"}, CLI::ignore_case));
    command.add_flag("--overwrite", options.overwrite, "Replace outputs that exist");
    command
        .add_option("-j,--jobs", options.jobs, "Pages worked on side by side (default: all cores)")
        ->check(CLI::Range(1, 1024));
    command
        .add_option("--dpi", raw.dpi,
                    "Resolution in place of the file's (default: the file's, else 300)")
        ->check(CLI::Range(1, 100000));
    command.add_flag("--json", options.json, "Print a record of what was found as JSON");
    add_words(command, options);
}

CLI::Option* add_threshold(CLI::App& command, Raw& raw) {
    command.add_option("--binarize", raw.method, "Method: threshold (one for the page)")
        ->check(CLI::IsMember({"threshold"}))
        ->capture_default_str();
    return command
        .add_option("--threshold", raw.threshold,
                    "Darker greys become black: 1 .. 255, or auto (Otsu's method)")
        ->capture_default_str();
}

CLI::Option* add_skew(CLI::App& command, Raw& raw) {
    return command.add_option("--skew", raw.skew_degrees,
                              "Skew in degrees instead of measuring it, positive when text lines "
                              "rise to the right");
}

void add_clean(CLI::App& app, Options& options, Raw& raw) {
    CLI::App* command = app.add_subcommand("clean", "Binarize and straighten pages");
    add_inputs(*command, options);
    add_outputs(*command, options, raw);
    auto* threshold = add_threshold(*command, raw);
    auto* skew = add_skew(*command, raw);
    auto* no_deskew = command->add_flag("--no-deskew", raw.no_deskew, "Do not straighten");
    no_deskew->excludes(skew);
    command
        ->add_option("--apply", options.findings,
                     "Use skews and thresholds of a record that --json printed, page by page")
        ->excludes(threshold)
        ->excludes(skew);
}

void add_single_steps(CLI::App& app, Options& options, Raw& raw) {
    CLI::App* binarize = app.add_subcommand("binarize", "Turn pages bitonal, nothing else");
    add_inputs(*binarize, options);
    add_outputs(*binarize, options, raw);
    add_threshold(*binarize, raw);

    CLI::App* deskew = app.add_subcommand("deskew", "Straighten bitonal pages, nothing else");
    add_inputs(*deskew, options);
    add_outputs(*deskew, options, raw);
    add_skew(*deskew, raw);

    CLI::App* rotate = app.add_subcommand("rotate", "Turn pages by right angles; the kind is kept");
    rotate->add_option("ANGLE", raw.angle, "Degrees clockwise: 90, 180 or 270")
        ->required()
        ->check(CLI::IsMember({90, 180, 270}));
    add_inputs(*rotate, options);
    add_outputs(*rotate, options, raw);
}

void add_info(CLI::App& app, Options& options) {
    CLI::App* command = app.add_subcommand("info", "Print what files hold: pages, sizes, kinds");
    add_inputs(*command, options);
    command->add_flag("--json", options.json, "Print it as JSON");
    add_words(*command, options);
}

std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return text;
}

std::optional<OutputFormat> format_named(const std::string& name) {
    static const std::map<std::string, OutputFormat> kFormats = {
        {"tif", OutputFormat::tiff}, {"tiff", OutputFormat::tiff}, {"png", OutputFormat::png},
        {"pbm", OutputFormat::pnm},  {"pgm", OutputFormat::pnm},   {"ppm", OutputFormat::pnm},
        {"pnm", OutputFormat::pnm}};
    const auto found = kFormats.find(lower(name));
    if (found == kFormats.end()) return std::nullopt;
    return found->second;
}

int threshold_from(const std::string& text) {
    if (lower(text) == "auto") return 0;
    const bool digits = !text.empty() && text.size() <= 3 &&
                        text.find_first_not_of("0123456789") == std::string::npos;
    const int value = digits ? std::stoi(text) : 0;
    if (value < 1 || value > 255) refuse("--threshold: " + text + " is neither 1 .. 255 nor auto");
    return value;
}

Skew skew_from(double degrees) {
    constexpr double kSteepest = 89;
    const double units = std::abs(degrees) < kSteepest
                             ? std::round(std::tan(degrees / kDegreesPerRadian) * Skew::kScale)
                             : Skew::kScale;
    if (!(std::abs(units) <= Skew::kLargest))
        refuse("--skew: beyond the largest skew of 10.6 degrees to either side");
    return {static_cast<int>(units), Skew::kScale};
}

Command command_named(const std::string& name) {
    static const std::map<std::string, Command> kCommands = {{"clean", Command::clean},
                                                             {"binarize", Command::binarize},
                                                             {"deskew", Command::deskew},
                                                             {"rotate", Command::rotate},
                                                             {"info", Command::info}};
    return kCommands.at(name);
}

void check_inputs(const Options& options) {
    const auto stdins = std::count(options.inputs.begin(), options.inputs.end(), "-");
    if (stdins > 1) refuse("standard input can be read only once");
    if (options.output_is_stdout() && options.inputs.size() > 1)
        refuse("-o -: standard output takes one input");
}

Options options_from(const CLI::App& command, Options options, const Raw& raw) {
    options.command = command_named(command.get_name());
    check_inputs(options);
    if (options.command == Command::info) return options;
    if (!raw.format.empty()) options.format = format_named(raw.format);
    if (command.count("--dpi")) options.dpi = raw.dpi;
    options.threshold = threshold_from(raw.threshold);
    options.straighten = !raw.no_deskew;
    if (const auto* skew = command.get_option_no_throw("--skew"); skew && skew->count())
        options.skew = skew_from(raw.skew_degrees);
    options.quarter_turns = raw.angle / 90;
    return options;
}

std::string version_text() {
    return "vemoprepro " VEMOPREPRO_VERSION "\n" + std::string(prepro_get_version_number()) + "\n" +
           prepro_get_branch_name() + "\n" + prepro_get_sha();
}

int answer(const CLI::App& app, const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) {
        app.exit(error);
        return std::fflush(stdout) == 0 ? kExitDone : kExitFailed;
    }
    std::fprintf(error_stream(), "vemoprepro: %s\nTry 'vemoprepro --help'.\n", error.what());
    return kExitUsage;
}

}  // namespace

std::optional<OutputFormat> format_by_name(const std::string& name) {
    const std::size_t dot = name.rfind('.');
    if (dot == std::string::npos || name.find('/', dot) != std::string::npos) return std::nullopt;
    return format_named(name.substr(dot + 1));
}

std::optional<Options> parse_options(int argc, char** argv, int& exit_status) {
    Options options;
    options.jobs = std::max(1U, std::thread::hardware_concurrency());
    Raw raw;
    CLI::App app("Cleans up scanned pages: bitonal, straight, ready to read.", "vemoprepro");
    app.footer(kExamples);
    app.set_version_flag("--version", version_text());
    app.require_subcommand(1);
    add_clean(app, options, raw);
    add_single_steps(app, options, raw);
    add_info(app, options);
    try {
        app.parse(argc, argv);
        return options_from(*app.get_subcommands().front(), std::move(options), raw);
    } catch (const CLI::ParseError& error) {
        exit_status = answer(app, error);
        return std::nullopt;
    }
}

}  // namespace tool
