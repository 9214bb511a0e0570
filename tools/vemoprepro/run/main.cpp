// vemoprepro: cleans up scanned pages from the command line.
#include <cstdio>
#include <exception>

#include "files/file_error.h"
#include "files/image_file.h"
#include "files/unfinished.h"
#include "page/page_memory.h"
#include "run/info.h"
#include "run/make_pages.h"
#include "run/messages.h"
#include "run/output_plan.h"

namespace {

int run_command(const tool::Options& options) {
    try {
        return options.info ? tool::print_info(options) : tool::make_pages(options);
    } catch (const tool::UsageError& error) {
        std::fprintf(tool::error_stream(), "vemoprepro: %s\nTry 'vemoprepro --help'.\n",
                     error.what());
        return tool::kExitUsage;
    } catch (const tool::FileError& error) {
        tool::complain(error.file(), error.what());
    } catch (const std::exception& error) {
        std::fprintf(tool::error_stream(), "vemoprepro: %s\n", error.what());
    }
    return tool::kExitFailed;
}

}  // namespace

int main(int argc, char** argv) {
    tool::hold_standard_streams();
    tool::take_standard_error();
    tool::set_up_page_memory();
    int exit_status = tool::kExitDone;
    const auto options = tool::parse_options(argc, argv, exit_status);
    if (!options) return exit_status;
    tool::remove_unfinished_on_signals();
    tool::prepare_decoders();
    return run_command(*options);
}
