// Takes what CLI11 has parsed, checks what it cannot know, and completes the options by the
// defaults of each command.
#include "run/options.h"

#include <sys/stat.h>
#include <unistd.h>
#include <vemoprepro/frame.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <map>
#include <thread>
#include <utility>

#include "run/messages.h"
#include "run/option_list.h"

namespace tool::run {
namespace {

[[noreturn]] void refuse(const std::string& what) {
    throw CLI::ValidationError(what, 1);
}

std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return text;
}

std::optional<files::OutputFormat> format_named(const std::string& name) {
    static const std::map<std::string, files::OutputFormat> kFormats = {
        {"tif", files::OutputFormat::kTiff}, {"tiff", files::OutputFormat::kTiff},
        {"png", files::OutputFormat::kPng},  {"pbm", files::OutputFormat::kPnm},
        {"pgm", files::OutputFormat::kPnm},  {"ppm", files::OutputFormat::kPnm},
        {"pnm", files::OutputFormat::kPnm}};
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

steps::Skew skew_from(double degrees) {
    const std::optional<steps::Skew> skew = steps::skew_of_degrees(degrees);
    if (!skew) refuse("--skew: beyond the largest skew of 10.6 degrees to either side");
    return *skew;
}

steps::Command command_named(const std::string& name) {
    static const std::map<std::string, steps::Command> kCommands = {
        {"clean", steps::Command::kClean},           {"binarize", steps::Command::kBinarize},
        {"deskew", steps::Command::kDeskew},         {"rotate", steps::Command::kRotate},
        {"despeckle", steps::Command::kDespeckle},   {"unline", steps::Command::kUnline},
        {"underlines", steps::Command::kUnderlines}, {"crop", steps::Command::kCrop},
        {"textmask", steps::Command::kTextmask}};
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

steps::Pixels pixels_of(const CLI::App& command, const char* name, int value) {
    return given(command, name) ? steps::Pixels(value) : steps::Pixels();
}

void take_binarization(const CLI::App& command, Options& options, const RawOptions& raw) {
    options.steps.threshold = threshold_from(raw.threshold);
    if (options.steps.threshold > 0) {
        options.steps.binarization = steps::Binarization::kFixed;
    } else if (given(command, "--threshold") || raw.method == "otsu") {
        options.steps.binarization = steps::Binarization::kOtsu;
    }
}

// What clean does by default, what --for ocr adds, and what single steps are asked for.
void take_steps(const CLI::App& command, Options& options, const RawOptions& raw) {
    const bool reading = raw.purpose == "ocr";
    options.steps.for_reading = reading;
    options.steps.prepare = reading && !raw.no_prepare;
    options.steps.crop_border |= reading && !raw.no_crop_border;
    options.steps.crop_border |= options.steps.command == steps::Command::kCrop;

    const char* area =
        options.steps.command == steps::Command::kClean ? "--despeckle" : "--max-area";
    options.steps.despeckle.max_area = pixels_of(command, area, raw.max_area);
    options.steps.despeckle.keep_near = pixels_of(command, "--keep-near", raw.keep_near);
    options.steps.despeckle.wanted = !raw.no_despeckle && options.steps.despeckle.max_area != 0;

    const bool both =
        options.steps.command == steps::Command::kUnline || (reading && !raw.no_remove_lines);
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

Options options_from(const CLI::App& command, Options options, const RawOptions& raw) {
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
        return flush_output() ? kExitDone : kExitFailed;
    }
    std::fprintf(error_stream(), "vemoprepro: %s\nTry 'vemoprepro --help'.\n", error.what());
    return kExitUsage;
}

}  // namespace

std::optional<files::OutputFormat> format_by_name(const std::string& name) {
    const std::size_t dot = name.rfind('.');
    if (dot == std::string::npos || name.find('/', dot) != std::string::npos) return std::nullopt;
    return format_named(name.substr(dot + 1));
}

std::optional<Options> parse_options(int argc, char** argv, int& exit_status) {
    Options options;
    options.jobs = std::max(1U, std::thread::hardware_concurrency());
    RawOptions raw;
    CLI::App app("Cleans up scanned pages: bitonal, straight, ready to read.", "vemoprepro");
    app.set_version_flag("--version", version_text());
    describe_options(app, options, raw);
    try {
        app.parse(argc, argv);
        return options_from(*app.get_subcommands().front(), std::move(options), raw);
    } catch (const CLI::ParseError& error) {
        exit_status = answer(app, error);
        return std::nullopt;
    }
}

}  // namespace tool::run
