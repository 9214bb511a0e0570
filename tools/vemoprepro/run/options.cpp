// Takes what CLI11 has parsed, checks what it cannot know, and completes the options by the
// defaults of each command.
#include "run/options.h"

#include <sys/stat.h>
#include <unistd.h>
#include <vemoprepro/frame.h>

#include <algorithm>
#include <map>
#include <thread>
#include <utility>

#include "run/file_names.h"
#include "run/geometry_options.h"
#include "run/messages.h"
#include "run/option_list.h"
#include "run/usage.h"

namespace tool::run {
namespace {

[[noreturn]] void refuse(const std::string& what) {
    throw CLI::ValidationError(what, 1);
}

int threshold_from(const std::string& text) {
    if (text == "auto" || text == "AUTO" || text == "Auto") return 0;
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
        {"clean", steps::Command::kClean},
        {"binarize", steps::Command::kBinarize},
        {"deskew", steps::Command::kDeskew},
        {"rotate", steps::Command::kRotate},
        {"despeckle", steps::Command::kDespeckle},
        {"unline", steps::Command::kUnline},
        {"underlines", steps::Command::kUnderlines},
        {"crop", steps::Command::kCrop},
        {"textmask", steps::Command::kTextmask},
        {"scale", steps::Command::kScale},
        {"perspective", steps::Command::kPerspective}};
    return kCommands.at(name);
}

void check_inputs(const Options& options) {
    const auto stdins = std::count(options.inputs.begin(), options.inputs.end(), "-");
    if (stdins > 1) refuse("standard input can be read only once");
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
    } else if (raw.method == "gradient") {
        options.steps.binarization = steps::Binarization::kGradient;
    }
}

// What clean does by default, what --for ocr adds, and what single steps are asked for.
void take_steps(const CLI::App& command, Options& options, const RawOptions& raw) {
    const bool reading = raw.purpose == "ocr";
    options.steps.for_reading = reading;
    options.steps.prepare = reading && !raw.no_prepare;
    options.steps.double_small_letters =
        options.steps.command == steps::Command::kClean && !reading && !raw.no_doubling;
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
    options.command = command.get_name();
    options.info = options.command == "info";
    if (is_piped_stdout(options.output)) options.output = "-";
    check_inputs(options);
    if (options.info) return options;
    options.steps.command = command_named(options.command);
    if (!raw.format.empty()) options.format = format_named(raw.format);
    options.format_name = raw.format;
    // What --dpi asks scale for is the result's.
    if (options.steps.command == steps::Command::kScale) {
        if (given(command, "--from-dpi")) options.steps.dpi = raw.from_dpi;
    } else if (given(command, "--dpi")) {
        options.steps.dpi = raw.dpi;
    }
    take_binarization(command, options, raw);
    take_steps(command, options, raw);
    options.steps.straighten = !raw.no_deskew;
    options.steps.turn_by_text = !raw.no_turn;
    if (given(command, "--skew")) options.steps.skew = skew_from(raw.skew_degrees);
    take_geometry(command, options.steps, raw);
    return options;
}

std::string version_text() {
    return "vemoprepro " VEMOPREPRO_VERSION "\n" + std::string(prepro_get_version_number()) + "\n" +
           prepro_get_branch_name() + "\n" + prepro_get_sha();
}

std::vector<std::string> commands_of(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* command : app.get_subcommands({})) names.push_back(command->get_name());
    return names;
}

// Whether CLI11 finds a command or a question for the program there.
bool is_start(const CLI::App& app, const std::string& word) {
    const std::vector<std::string> commands = commands_of(app);
    return std::find(commands.begin(), commands.end(), word) != commands.end() ||
           app.get_option_no_throw(word) != nullptr;
}

// What CLI11 has to say, and what a missing value is for.
std::string plain(const CLI::ParseError& error) {
    const std::string what = error.what();
    if (error.get_name() == "ArgumentMismatch") {
        const bool again = what.find("received") != std::string::npos;
        return what.substr(0, what.find(':')) +
               (again ? ": is given twice" : ": the value is missing");
    }
    const std::string no_number = "Could not convert: ";
    if (what.rfind(no_number, 0) == 0) return what.substr(no_number.size()) + " is no number";
    if (what == "ANGLE is required") return "ANGLE is missing: how many degrees clockwise?";
    if (what == "INPUT is required") return "INPUT is missing: which files or folders?";
    if (what == "--output is required") return "-o OUT is missing: where is the result to go?";
    return what;
}

std::string unexpected(const CLI::App& command, const std::string& word) {
    std::vector<std::string> options;
    for (const CLI::Option* option : command.get_options()) {
        for (const std::string& name : option->get_lnames()) options.push_back("--" + name);
    }
    if (word[0] != '-') return "'" + word + "' is not expected here";
    const std::string name = word.substr(0, word.find('='));
    return "there is no option '" + name + "'" + did_you_mean(name, options);
}

int answer(const CLI::App& app, const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) {
        app.exit(error);
        return flush_output() ? kExitDone : kExitFailed;
    }
    const std::vector<CLI::App*> commands = app.get_subcommands();
    std::vector<std::string> extras = app.remaining(true);
    std::erase(extras, "--");
    // A mistyped option is often why something else is missing.
    const bool mistyped = error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ExtrasError) ||
                          error.get_exit_code() == static_cast<int>(CLI::ExitCodes::RequiredError);
    if (mistyped && !commands.empty() && !extras.empty()) {
        explain_usage(commands.front()->get_name(), unexpected(*commands.front(), extras.front()));
    } else {
        explain_usage(commands.empty() ? "" : commands.front()->get_name(), plain(error));
    }
    return kExitUsage;
}

}  // namespace

std::optional<Options> parse_options(int argc, char** argv, int& exit_status) {
    Options options;
    options.jobs = std::max(1U, std::thread::hardware_concurrency());
    RawOptions raw;
    CLI::App app("Cleans up scanned pages: bitonal, straight, ready to read.", "vemoprepro");
    app.set_version_flag("--version", version_text());
    describe_options(app, options, raw);
    const std::string first = argc > 1 ? argv[1] : "";
    if (!is_start(app, first)) {
        explain_commands(first, commands_of(app));
        exit_status = kExitUsage;
        return std::nullopt;
    }
    try {
        app.parse(argc, argv);
        return options_from(*app.get_subcommands().front(), std::move(options), raw);
    } catch (const CLI::ParseError& error) {
        exit_status = answer(app, error);
        return std::nullopt;
    }
}

}  // namespace tool::run
