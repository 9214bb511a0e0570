// Pages are decoded and worked on side by side, one per job, and written in order. Between the two
// wait at most as many finished pages as there are jobs; with bitonal results these are small, else
// none wait.
#include "run/run.h"

#include <chrono>

#include "report/page_pictures.h"
#include "run/ordered_queue.h"
#include "run/output_collector.h"
#include "steps/steps.h"

namespace tool {
namespace {

constexpr int kDefaultDpi = 300;

void settle_resolution(const Options& options, Page& page, PageRecord& record) {
    record.dpi_source = "file";
    if (options.dpi || page.dpi.x <= 0) {
        record.dpi_source = options.dpi ? "option" : "default";
        page.dpi.x = page.dpi.y = options.dpi.value_or(kDefaultDpi);
    }
}

// Results that are not bitonal.
bool large_results(Command command) {
    return command == Command::kRotate || command == Command::kCrop;
}

std::string page_prefix(const PageTask& task) {
    if (task.input->page_count() == 1) return "";
    return "page " + std::to_string(task.page + 1) + ": ";
}

void work_on(const Options& options, const Pipeline& pipeline, const PageTask& task,
             PageResult& result) {
    const auto start = std::chrono::steady_clock::now();
    result.data = task.input->file->read_page(task.page);
    settle_resolution(options, result.data, result.record);
    result.record.number = task.page + 1;
    describe_source(result.record, result.data);
    const PageFindings findings =
        task.input->findings.empty() ? PageFindings{} : task.input->findings[task.page];
    const bool measures = options.straighten && !options.skew && !findings.skew;
    PagePainter painter(measures);
    const bool pictured = !options.report_folder.empty();
    process(pipeline, result.data, findings, result.record, pictured ? &painter : nullptr);
    if (pictured) result.pictures = painter.take(result.record);
    result.record.seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() -
        painter.seconds();
}

PageResult result_of(const Options& options, const Pipeline& pipeline, const PageTask& task) {
    PageResult result;
    result.input = task.input;
    result.page = task.page;
    result.error = task.error;
    if (result.error || task.page > task.input->failed_page) return result;
    try {
        work_on(options, pipeline, task, result);
        return result;
    } catch (const FileError& error) {
        result.error = error;
    } catch (const PageError& error) {
        result.error = FileError(task.input->name, page_prefix(task) + error.what());
    } catch (const std::bad_alloc&) {
        result.error = FileError(task.input->name, page_prefix(task) + "not enough memory");
    }
    result.data = {};
    result.pictures.reset();
    task.input->fail_from(task.page);
    return result;
}

}  // namespace

int run(const Options& options) {
    const Pipeline pipeline = make_pipeline(options);
    InputFeeder feeder(options);
    Report report(options);
    std::optional<PictureReport> pictures;
    if (!options.report_folder.empty()) pictures.emplace(options);
    OutputCollector collector(options, report, pictures ? &*pictures : nullptr);
    const std::size_t window = large_results(options.command) ? options.jobs : 2 * options.jobs;
    OrderedQueue<PageTask, PageResult> queue(
        window, [&] { return feeder.next(); },
        [&](PageTask& task) { return result_of(options, pipeline, task); });
    queue.run(options.jobs, [&](PageResult& result) { collector.deliver(result); });
    const bool shown = !pictures || pictures->finish();
    const int status = report.finish();
    return shown ? status : kExitFailed;
}

}  // namespace tool
