// Pages are decoded and worked on side by side, one per job, and written in order. Between the two
// wait at most as many finished pages as there are jobs; with bitonal results these are small, else
// none wait.
#include "run/make_pages.h"

#include <mutex>
#include <utility>

#include "files/unfinished.h"
#include "report/page_pictures.h"
#include "run/messages.h"
#include "run/ordered_queue.h"
#include "run/output_collector.h"
#include "steps/pipeline.h"
#include "steps/resolution.h"
#include "steps/stopwatch.h"

namespace tool::run {
namespace {

void work_on(const Options& options, const steps::Pipeline& pipeline, const PageTask& task,
             PageResult& result) {
    const steps::Stopwatch watch;
    const bool pictured = !options.report_folder.empty();
    steps::PageWork work;
    work.page = task.input->file->read_page(task.page);
    if (!task.input->findings.empty()) work.given = task.input->findings[task.page];
    steps::settle_resolution(work, options.steps);
    report::PagePainter painter;
    steps::process(pipeline, work, pictured ? &painter : nullptr);
    if (pictured) result.pictures = painter.take(work.page, work.fan);
    result.record = report::record_of(task.page + 1, work, watch.seconds() - painter.seconds());
    if (work.kept) {
        result.record.kept = {shape_of(*work.kept), task.input->outputs.kept_of_page(task.page)};
    }
    result.data = std::move(work.page);
    result.kept = std::move(work.kept);
}

PageResult result_of(const Options& options, const steps::Pipeline& pipeline,
                     const PageTask& task) {
    PageResult result;
    result.input = task.input;
    result.page = task.page;
    result.error = task.error;
    result.existing = task.existing;
    if (result.error || !result.existing.empty() || task.page > task.input->failed_page)
        return result;
    try {
        work_on(options, pipeline, task, result);
        return result;
    } catch (const files::FileError& error) {
        result.error = error;
    } catch (const std::exception& error) {
        result.error = files::FileError(
            task.input->name, task.input->file->page_prefix(task.page) + what_failed(error));
    }
    result.data = {};
    result.kept.reset();
    result.pictures.reset();
    task.input->fail_from(task.page);
    return result;
}

std::vector<std::string> paths_of(const InputList& inputs) {
    std::vector<std::string> paths;
    for (const InputName& input : inputs.files) paths.push_back(input.path);
    return paths;
}

}  // namespace

int make_pages(const Options& options) {
    const steps::Pipeline pipeline = steps::make_pipeline(options.steps);
    const InputList inputs = list_inputs(options);
    InputFeeder feeder(options, inputs);
    Console console(options);
    for (const std::string& note : inputs.notes) console.note(note);
    std::optional<report::HtmlReport> pictures;
    if (!options.report_folder.empty()) {
        pictures.emplace(options.report_folder, paths_of(inputs), options.overwrite);
    }
    OutputCollector collector(options, console, pictures ? &*pictures : nullptr);
    const bool large = steps::keeps_kind(options.steps.command) || options.steps.keep_colour;
    const std::size_t window = large ? options.jobs : 2 * options.jobs;
    OrderedQueue<PageTask, PageResult> queue(
        window, [&] { return feeder.next(); },
        [&](PageTask& task) { return result_of(options, pipeline, task); });
    // One of both has the last word: the end of the run or a signal.
    std::mutex speaking;
    bool finished = false;
    const files::LastWords last_words([&] {
        speaking.lock();  // for good: nothing is delivered any more
        if (finished) return speaking.unlock();
        collector.interrupt();
        console.interrupt(inputs.files.size());
    });
    queue.run(options.jobs, [&](PageResult& result) {
        const std::lock_guard guard(speaking);
        collector.deliver(result);
    });
    const std::lock_guard guard(speaking);
    finished = true;
    if (pictures) {
        if (const std::optional<files::FileError> error = pictures->finish()) console.fail(*error);
    }
    return console.finish();
}

}  // namespace tool::run
