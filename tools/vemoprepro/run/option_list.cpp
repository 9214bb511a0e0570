// Words follow the habits of the field's other command-line programs: -j, --dpi, --overwrite, -q,
// -v.
#include "run/option_list.h"

#include "run/help_text.h"

namespace tool::run {
namespace {

// CLI11 takes an empty text for the number 0.
CLI::Validator not_empty() {
    return {[](std::string& text) { return std::string(text.empty() ? "the value is empty" : ""); },
            ""};
}

void add_inputs(CLI::App& command, Options& options) {
    command
        .add_option(
            "INPUT", options.inputs,
            "Image files, or folders, which stand for their image files; - is standard input")
        ->required();
    command.add_flag("-r,--recursive", options.recursive, "With folders: what is below them, too");
}

void add_words(CLI::App& command, Options& options) {
    auto* quiet = command.add_flag("-q,--quiet", options.quiet, "Print errors and warnings only");
    command.add_flag("-v,--verbose", options.verbose, "Say for every step what was done and why")
        ->excludes(quiet);
}

void add_files(CLI::App& command, Options& options, RawOptions& raw) {
    command
        .add_option("-o,--output", options.output,
                    "A file for one input, a folder for several (made if its parent exists); - is "
                    "standard output")
        ->type_name("OUT")
        ->required();
    command
        .add_option("--format", raw.format,
                    "tiff, png or pbm (default: by the output's name, else tiff)")
        ->check(CLI::IsMember({"tiff", "png", "pbm"}, CLI::ignore_case));
    auto* overwrite =
        command.add_flag("--overwrite", options.overwrite, "Replace outputs that exist");
    command
        .add_flag("--skip-existing", options.skip_existing, "Leave out inputs whose outputs exist")
        ->excludes(overwrite);
    command
        .add_option("-j,--jobs", options.jobs, "Pages worked on side by side (default: all cores)")
        ->check(CLI::Range(1, 1024));
    command.add_flag("--json", options.json, "Print a record of what was found as JSON");
    command
        .add_option("--report", options.report_folder,
                    "Write a page to look at, before and after, into this folder: index.html")
        ->type_name("DIR")
        ->check(not_empty());
    add_words(command, options);
}

void add_outputs(CLI::App& command, Options& options, RawOptions& raw) {
    add_files(command, options, raw);
    command
        .add_option(
            "--dpi", raw.dpi,
            "Resolution in place of the file's (default: the file's, or as the letters look)")
        ->check(CLI::Range(1, 100000));
}

CLI::Option* add_threshold(CLI::App& command, RawOptions& raw) {
    auto* method =
        command
            .add_option("--binarize", raw.method,
                        "paper (default): by how much darker than its paper ink is; gradient: by "
                        "edges around every spot; otsu: one threshold for "
                        "the page")
            ->check(CLI::IsMember({"paper", "gradient", "otsu"}));
    auto* threshold = command.add_option(
        "--threshold", raw.threshold,
        "One threshold: darker greys become black, 1 .. 255, or auto (Otsu's method)");
    threshold->type_name("N|auto")->excludes(method);
    return threshold;
}

// A number of pixels that scales with the resolution unless it is given.
CLI::Option* add_pixels(CLI::App& command, const char* name, int& value, const std::string& what) {
    return command.add_option(name, value, what)->check(CLI::Range(0, 1000000000));
}

void add_keep_near(CLI::App& command, RawOptions& raw) {
    command
        .add_option("--keep-near,--despeckle-keep-near", raw.keep_near,
                    "Keep specks within this many pixels of larger ink")
        ->check(CLI::Range(0, 32767));
}

void add_force(CLI::App& command, Options& options) {
    command.add_flag("--force", options.steps.force,
                     "Do a step even when it takes more than a tenth of the ink");
}

CLI::Option* add_directions(CLI::App& command, const char* name, RawOptions& raw) {
    return command
        .add_option(name, raw.lines, "horizontal, vertical, or both with a comma between them")
        ->delimiter(',')
        ->type_name("LIST")
        ->allow_extra_args(false)  // what follows the list is an input
        ->check(CLI::IsMember({"horizontal", "vertical"}));
}

void add_line_sizes(CLI::App& command, RawOptions& raw) {
    add_pixels(command, "--min-length", raw.min_length,
               "A line is at least this long, in pixels (default: 12.7 mm)");
    add_pixels(command, "--max-thickness", raw.max_thickness,
               "What is at least this thick is no line, in pixels (default: 0.85 mm)");
}

CLI::Option* add_skew(CLI::App& command, RawOptions& raw) {
    return command
        .add_option("--skew", raw.skew_degrees,
                    "Skew in degrees instead of measuring it, positive when text lines rise to the "
                    "right")
        ->type_name("DEGREES")
        ->check(not_empty());
}

void add_cleaning_steps(CLI::App& command, Options& options, RawOptions& raw) {
    command
        .add_option(
            "--for", raw.purpose,
            "Preset; ocr: what recognition reads best, without ruled lines, specks and borders")
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
    command.add_flag("--no-doubling", raw.no_doubling,
                     "Keep the resolution of pages whose letters have few pixels");
    command.add_flag("--no-remove-lines", raw.no_remove_lines, "Keep lines, with --for ocr")
        ->excludes(lines);
    command.add_flag("--keep-colour", options.steps.keep_colour,
                     "Write the straightened page in its own kind, too: NAME-colour beside NAME");
    add_force(command, options);
}

void add_clean(CLI::App& app, Options& options, RawOptions& raw) {
    CLI::App* command = app.add_subcommand("clean", "Binarize, despeckle and straighten pages");
    add_inputs(*command, options);
    add_outputs(*command, options, raw);
    auto* threshold = add_threshold(*command, raw);
    add_cleaning_steps(*command, options, raw);
    auto* skew = add_skew(*command, raw);
    auto* no_deskew = command->add_flag("--no-deskew", raw.no_deskew, "Do not straighten");
    no_deskew->excludes(skew);
    command->add_flag("--no-turn", raw.no_turn,
                      "Do not turn pages whose text lies sideways or upside down");
    command
        ->add_option("--apply", options.findings,
                     "Use skews and thresholds of a record that --json printed, page by page")
        ->type_name("FILE")
        ->check(not_empty())
        ->excludes(threshold)
        ->excludes(skew);
}

void add_bitonal_steps(CLI::App& app, Options& options, RawOptions& raw) {
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
                     "Text has this many pixels for every pixel of its longer side (default: 1)")
        ->check(CLI::Range(0, 32767));
}

void add_single_steps(CLI::App& app, Options& options, RawOptions& raw) {
    CLI::App* binarize = app.add_subcommand("binarize", "Turn pages bitonal, nothing else");
    add_inputs(*binarize, options);
    add_outputs(*binarize, options, raw);
    add_threshold(*binarize, raw);

    CLI::App* crop = app.add_subcommand(
        "crop", "Paint dark borders over, nothing else; the kind and the size are kept");
    add_inputs(*crop, options);
    add_outputs(*crop, options, raw);
    add_force(*crop, options);
}

void add_background(CLI::App& command, RawOptions& raw, const std::string& preset) {
    command
        .add_option("--background", raw.background,
                    "What the page does not cover: white, border (as its edge is), a grey 0 .. 255 "
                    "or a colour R,G,B (default: " +
                        preset + ")")
        ->type_name("COLOUR");
}

void add_scale(CLI::App& app, Options& options, RawOptions& raw) {
    CLI::App* scale = app.add_subcommand("scale", "Bring pages to another size; the kind is kept");
    add_inputs(*scale, options);
    add_files(*scale, options, raw);
    auto* size = scale->add_option("--size", raw.size, "The size of the result, in pixels");
    size->type_name("WxH");
    auto* factor = scale->add_option("--factor", raw.factor, "So many times as wide and high");
    factor->type_name("F")->excludes(size);
    scale->add_option("--dpi", raw.dpi, "To this resolution, from the one that the file states")
        ->check(CLI::Range(1, 100000))
        ->excludes(size)
        ->excludes(factor);
    scale->add_option("--from-dpi", raw.from_dpi, "Resolution of the page in place of the file's")
        ->check(CLI::Range(1, 100000));
    scale->add_option("--filter", raw.filter, "bicubic (default) or bilinear")
        ->check(CLI::IsMember({"bilinear", "bicubic"}));
}

void add_geometry(CLI::App& app, Options& options, RawOptions& raw) {
    CLI::App* deskew =
        app.add_subcommand("deskew", "Straighten pages, nothing else; the kind is kept");
    add_inputs(*deskew, options);
    add_outputs(*deskew, options, raw);
    add_skew(*deskew, raw);
    add_background(*deskew, raw, "border, on bitonal pages white");

    CLI::App* rotate = app.add_subcommand("rotate", "Turn pages by any angle; the kind is kept");
    rotate
        ->add_option("ANGLE", raw.angle,
                     "Degrees clockwise, between -360 and 360; right angles move pixels only")
        ->required();
    add_inputs(*rotate, options);
    add_outputs(*rotate, options, raw);
    add_background(*rotate, raw, "white");

    CLI::App* perspective = app.add_subcommand(
        "perspective", "Make photographed pages upright and rectangular; the kind is kept");
    add_inputs(*perspective, options);
    add_outputs(*perspective, options, raw);
    perspective
        ->add_option("--corners", raw.corners,
                     "The page's corners in pixels of the upright picture, in any order (default: "
                     "found where they are clear)")
        ->expected(4)
        ->type_name("x,y x,y x,y x,y");

    add_scale(app, options, raw);
}

void add_info(CLI::App& app, Options& options) {
    CLI::App* command = app.add_subcommand("info", "Print what files hold: pages, sizes, kinds");
    add_inputs(*command, options);
    command->add_flag("--json", options.json, "Print it as JSON");
    add_words(*command, options);
}

}  // namespace

void describe_options(CLI::App& app, Options& options, RawOptions& raw) {
    lay_out_help(app);
    app.require_subcommand(1);
    add_clean(app, options, raw);
    add_single_steps(app, options, raw);
    add_geometry(app, options, raw);
    add_bitonal_steps(app, options, raw);
    add_info(app, options);
    for (CLI::App* command : app.get_subcommands({})) add_examples(*command);
}

}  // namespace tool::run
