// vemoprepro: cleans up scanned pages from the command line.
#include <exception>

#include "files/file_error.h"
#include "files/image_file.h"
#include "files/unfinished.h"
#include "page/page_memory.h"
#include "run/info.h"
#include "run/make_pages.h"
#include "run/messages.h"
#include "run/usage.h"

namespace {

int run_command(const tool::run::Options& options) {
    try {
        return options.info ? tool::run::print_info(options) : tool::run::make_pages(options);
    } catch (const tool::run::UsageError& error) {
        tool::run::explain_usage(options.command, error.what());
        return tool::run::kExitUsage;
    } catch (const tool::files::FileError& error) {
        tool::run::complain(error.file(), error.what());
    } catch (const std::exception& error) {
        tool::run::complain(tool::run::what_failed(error));
    }
    return tool::run::kExitFailed;
}

}  // namespace

int main(int argc, char** argv) {
    tool::run::hold_standard_streams();
    tool::run::take_standard_error();
    tool::set_up_page_memory();
    int exit_status = tool::run::kExitDone;
    const auto options = tool::run::parse_options(argc, argv, exit_status);
    if (!options) return exit_status;
    tool::files::remove_unfinished_on_signals();
    tool::files::prepare_decoders();
    return run_command(*options);
}
