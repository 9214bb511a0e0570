// Describes the options to CLI11 and checks what it cannot know. Words follow the habits of the
// field's other command-line programs: -j, --dpi, --overwrite, -q, -v.
#include "run/options.h"

#include <sys/stat.h>
#include <unistd.h>
#include <vemoprepro/frame.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <thread>

#include "run/messages.h"

namespace tool {
namespace {

constexpr const char* kExamples =
    "Examples:\n"
    "  vemoprepro clean scan.jpg -o page.tif           straight bitonal page, Group 4\n"
    "  vemoprepro clean book.tif -o book-clean.tif     all pages of a file, in order\n"
    "  vemoprepro clean scans/*.png -o out/ -j 4       several files into a folder\n"
    "  vemoprepro clean - -o - <a.png >a.tif           as a filter\n"
    "  vemoprepro clean form.jpg -o form.tif --for ocr what recognition reads best\n"
    "  vemoprepro clean a.tif -o b.tif --json >a.json  with a record of what was found\n"
    "  vemoprepro clean c.tif -o d.tif --apply a.json  the same skews and thresholds again\n"
    "  vemoprepro clean a.tif -o b.tif --report look   the pages before and after, in a browser\n"
    "  vemoprepro rotate 90 page.png -o turned.png     a quarter turn clockwise\n"
    "  vemoprepro info scans/*.tif                     what the files hold\n"
    "\n"
    "Exit status: 0 all done, 1 a file failed (the others are done), 2 wrong usage.\n"
    "'vemoprepro COMMAND --help' lists the options of a command.";

// What CLI11 fills in, before it becomes Options.
struct Raw {
    std::string format;
    std::string threshold = "auto";
    std::string method = "gradient";
    std::string purpose;
    std::vector<std::string> lines;
    bool no_despeckle = false;
    bool no_crop_border = false;
    bool no_remove_lines = false;
    bool no_prepare = false;
    int max_area = 0;
    int keep_near = 0;
    int min_length = 0;
    int max_thickness = 0;
    int max_height = 0;
    double skew_degrees = 0;
    int dpi = 0;
    int angle = 0;
    bool no_deskew = false;
};

[[noreturn]] void refuse(const std::string& what) {
    throw CLI::ValidationError(what, 1);
}

// CLI11 takes an empty text for the number 0.
CLI::Validator not_empty() {
    return {[](std::string& text) { return std::string(text.empty() ? "the value is empty" : ""); },
            ""};
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
    command
        .add_option("--report", options.report_folder,
                    "Write a page to look at, before and after, into this folder: index.html")
        ->check(not_empty());
    add_words(command, options);
}

CLI::Option* add_threshold(CLI::App& command, Raw& raw) {
    auto* method =
        command
            .add_option("--binarize", raw.method,
                        "gradient: a threshold for every spot of the page; otsu: one for "
                        "the page")
            ->check(CLI::IsMember({"gradient", "otsu"}))
            ->capture_default_str();
    auto* threshold = command.add_option(
        "--threshold", raw.threshold,
        "One threshold: darker greys become black, 1 .. 255, or auto (Otsu's method)");
    threshold->excludes(method);
    return threshold;
}

// A number of pixels that scales with the resolution unless it is given.
CLI::Option* add_pixels(CLI::App& command, const char* name, int& value, const std::string& what) {
    return command.add_option(name, value, what)->check(CLI::Range(0, 1000000000));
}

void add_keep_near(CLI::App& command, Raw& raw) {
    command
        .add_option("--keep-near,--despeckle-keep-near", raw.keep_near,
                    "Keep specks within this many pixels of larger ink")
        ->check(CLI::Range(0, 32767));
}

void add_force(CLI::App& command, Options& options) {
    command.add_flag("--force", options.steps.force,
                     "Do a step even when it takes more than a tenth of the ink");
}

CLI::Option* add_directions(CLI::App& command, const char* name, Raw& raw) {
    return command
        .add_option(name, raw.lines, "horizontal, vertical, or both with a comma between them")
        ->delimiter(',')
        ->allow_extra_args(false)  // what follows the list is an input
        ->check(CLI::IsMember({"horizontal", "vertical"}));
}

void add_line_sizes(CLI::App& command, Raw& raw) {
    add_pixels(command, "--min-length", raw.min_length,
               "A line is at least this long, in pixels (default: 12.7 mm)");
    add_pixels(command, "--max-thickness", raw.max_thickness,
               "What is at least this thick is no line, in pixels (default: 0.85 mm)");
}

CLI::Option* add_skew(CLI::App& command, Raw& raw) {
    return command
        .add_option("--skew", raw.skew_degrees,
                    "Skew in degrees instead of measuring it, positive when text lines rise to the "
                    "right")
        ->check(not_empty());
}

void add_cleaning_steps(CLI::App& command, Options& options, Raw& raw) {
    command
        .add_option("--for", raw.purpose,
                    "Preset; ocr: what recognition reads best, without rules, specks and borders")
        ->check(CLI::IsMember({"ocr"}));
    auto* area = add_pixels(command, "--despeckle", raw.max_area,
                            "Remove specks of up to this many pixels; 0: none (default: very small "
                            "ones, scaled by the resolution)");
    command.add_flag("--no-despeckle", raw.no_despeckle, "Keep all specks")->excludes(area);
    add_keep_near(command, raw);
    auto* crop = command.add_flag("--crop-border", options.steps.crop_border,
                                  "Paint dark borders over and print the content's rectangle");
    command.add_flag("--no-crop-border", raw.no_crop_border, "Keep borders, with --for ocr")
        ->excludes(crop);
    auto* lines = add_directions(command, "--remove-lines", raw);
    command
        .add_flag("--no-prepare", raw.no_prepare,
                  "Leave light, resolution and strong specks alone, with --for ocr")
        ->needs("--for");
    command.add_flag("--no-remove-lines", raw.no_remove_lines, "Keep lines, with --for ocr")
        ->excludes(lines);
    add_force(command, options);
}

void add_clean(CLI::App& app, Options& options, Raw& raw) {
    CLI::App* command = app.add_subcommand("clean", "Binarize, despeckle and straighten pages");
    add_inputs(*command, options);
    add_outputs(*command, options, raw);
    auto* threshold = add_threshold(*command, raw);
    add_cleaning_steps(*command, options, raw);
    auto* skew = add_skew(*command, raw);
    auto* no_deskew = command->add_flag("--no-deskew", raw.no_deskew, "Do not straighten");
    no_deskew->excludes(skew);
    command
        ->add_option("--apply", options.findings,
                     "Use skews and thresholds of a record that --json printed, page by page")
        ->check(not_empty())
        ->excludes(threshold)
        ->excludes(skew);
}

void add_bitonal_steps(CLI::App& app, Options& options, Raw& raw) {
    const auto add = [&](const char* name, const char* what) {
        CLI::App* command = app.add_subcommand(name, what);
        add_inputs(*command, options);
        add_outputs(*command, options, raw);
        return command;
    };
    CLI::App* despeckle = add("despeckle", "Remove specks from bitonal pages, nothing else");
    add_pixels(*despeckle, "--max-area", raw.max_area,
               "Specks have up to this many pixels (default: very small ones, by the resolution)");
    add_keep_near(*despeckle, raw);
    add_force(*despeckle, options);

    CLI::App* unline = add("unline", "Remove ruled lines from bitonal pages, nothing else");
    add_directions(*unline, "--lines", raw);
    add_line_sizes(*unline, raw);
    add_force(*unline, options);

    CLI::App* underlines = add("underlines", "Keep nothing but the lines of bitonal pages");
    underlines->add_flag("--vertical", options.steps.lines.vertical,
                         "Vertical lines, not horizontal");
    add_line_sizes(*underlines, raw);

    CLI::App* textmask = add("textmask", "Keep nothing but the text of bitonal pages");
    add_pixels(*textmask, "--max-height", raw.max_height,
               "Higher ink is no text, in pixels (default: 21 mm)");
    textmask
        ->add_option("--min-density", options.steps.text.min_density,
                     "Text has this many pixels for every pixel of its longer side")
        ->check(CLI::Range(0, 32767))
        ->capture_default_str();
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

    CLI::App* crop = app.add_subcommand(
        "crop", "Paint dark borders over, nothing else; the kind and the size are kept");
    add_inputs(*crop, options);
    add_outputs(*crop, options, raw);
    add_force(*crop, options);

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
        {"tif", OutputFormat::kTiff}, {"tiff", OutputFormat::kTiff}, {"png", OutputFormat::kPng},
        {"pbm", OutputFormat::kPnm},  {"pgm", OutputFormat::kPnm},   {"ppm", OutputFormat::kPnm},
        {"pnm", OutputFormat::kPnm}};
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
    const std::optional<Skew> skew = skew_of_degrees(degrees);
    if (!skew) refuse("--skew: beyond the largest skew of 10.6 degrees to either side");
    return *skew;
}

Command command_named(const std::string& name) {
    static const std::map<std::string, Command> kCommands = {
        {"clean", Command::kClean},           {"binarize", Command::kBinarize},
        {"deskew", Command::kDeskew},         {"rotate", Command::kRotate},
        {"despeckle", Command::kDespeckle},   {"unline", Command::kUnline},
        {"underlines", Command::kUnderlines}, {"crop", Command::kCrop},
        {"textmask", Command::kTextmask}};
    return kCommands.at(name);
}

void check_inputs(const Options& options) {
    const auto stdins = std::count(options.inputs.begin(), options.inputs.end(), "-");
    if (stdins > 1) refuse("standard input can be read only once");
    if (options.output_is_stdout() && options.inputs.size() > 1) {
        refuse("-o -: standard output takes one input");
    }
}

bool given(const CLI::App& command, const char* name) {
    const auto* option = command.get_option_no_throw(name);
    return option != nullptr && option->count() > 0;
}

Pixels pixels_of(const CLI::App& command, const char* name, int value) {
    return given(command, name) ? Pixels(value) : Pixels();
}

void take_binarization(const CLI::App& command, Options& options, const Raw& raw) {
    options.steps.threshold = threshold_from(raw.threshold);
    if (options.steps.threshold > 0) {
        options.steps.binarization = Binarization::kFixed;
    } else if (given(command, "--threshold") || raw.method == "otsu") {
        options.steps.binarization = Binarization::kOtsu;
    }
}

// What clean does by default, what --for ocr adds, and what single steps are asked for.
void take_steps(const CLI::App& command, Options& options, const Raw& raw) {
    const bool reading = raw.purpose == "ocr";
    options.steps.for_reading = reading;
    options.steps.force |= reading;
    options.steps.prepare = reading && !raw.no_prepare;
    options.steps.crop_border |= reading && !raw.no_crop_border;
    options.steps.crop_border |= options.steps.command == Command::kCrop;

    const char* area = options.steps.command == Command::kClean ? "--despeckle" : "--max-area";
    options.steps.despeckle.max_area = pixels_of(command, area, raw.max_area);
    options.steps.despeckle.keep_near = pixels_of(command, "--keep-near", raw.keep_near);
    options.steps.despeckle.wanted = !raw.no_despeckle && options.steps.despeckle.max_area != 0;

    const bool both =
        options.steps.command == Command::kUnline || (reading && !raw.no_remove_lines);
    for (const std::string& direction : raw.lines) {
        (direction == "vertical" ? options.steps.lines.vertical : options.steps.lines.horizontal) =
            true;
    }
    if (both && raw.lines.empty())
        options.steps.lines.horizontal = options.steps.lines.vertical = true;
    options.steps.lines.min_length = pixels_of(command, "--min-length", raw.min_length);
    options.steps.lines.max_thickness = pixels_of(command, "--max-thickness", raw.max_thickness);
    options.steps.text.max_height = pixels_of(command, "--max-height", raw.max_height);
}

// True for /dev/stdout and the like where that is a pipe: words must keep off it as with "-".
bool is_piped_stdout(const std::string& output) {
    struct stat named {
    }, standard{};
    return stat(output.c_str(), &named) == 0 && fstat(STDOUT_FILENO, &standard) == 0 &&
           (S_ISFIFO(named.st_mode) || S_ISSOCK(named.st_mode)) &&
           named.st_dev == standard.st_dev && named.st_ino == standard.st_ino;
}

Options options_from(const CLI::App& command, Options options, const Raw& raw) {
    options.info = command.get_name() == "info";
    if (is_piped_stdout(options.output)) options.output = "-";
    check_inputs(options);
    if (options.info) return options;
    options.steps.command = command_named(command.get_name());
    if (!raw.format.empty()) options.format = format_named(raw.format);
    if (command.count("--dpi") != 0) options.steps.dpi = raw.dpi;
    take_binarization(command, options, raw);
    take_steps(command, options, raw);
    options.steps.straighten = !raw.no_deskew;
    if (given(command, "--skew")) options.steps.skew = skew_from(raw.skew_degrees);
    options.steps.quarter_turns = raw.angle / 90;
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
    add_bitonal_steps(app, options, raw);
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
