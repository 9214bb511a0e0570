#include "run/output_collector.h"

#include <exception>
#include <utility>

#include "run/messages.h"

namespace tool::run {
namespace {

// A name that promises a bitmap must not hold something else.
void check_fit(const std::string& name, const Page& page) {
    const std::string end = name.size() < 4 ? "" : name.substr(name.size() - 4);
    if (page.kind != PageKind::kBitonal && (end == ".pbm" || end == ".PBM")) {
        throw files::FileError(name, std::string("a ") + name_of(page.kind) +
                                         " page does not fit into a PBM file, name it .pnm");
    }
}

}  // namespace

void OutputSeries::append(const std::string& name, Page page) {
    check_fit(name, page);
    if (!writer_ || files_.back()->name() != name) {
        finish();
        files_.push_back(std::make_unique<files::OutputFile>(name, overwrite_));
        writer_ = files::make_page_writer(format_, *files_.back());
    }
    writer_->append(std::move(page));
}

void OutputSeries::finish() {
    if (!writer_) return;
    writer_->finish();
    writer_.reset();
    files_.back()->close();
}

void OutputSet::append(std::size_t index, Page page, std::optional<Page> kept) {
    pages_.append(names_.of_page(index), std::move(page));
    if (kept) kept_.append(names_.kept_of_page(index), std::move(*kept));
}

void OutputSet::publish() {
    std::vector<files::OutputFile*> files;
    for (OutputSeries* series : {&pages_, &kept_}) {
        series->finish();
        for (const auto& file : series->files()) files.push_back(file.get());
    }
    std::size_t published = 0;
    try {
        for (; published < files.size(); ++published) files[published]->publish();
    } catch (const files::FileError&) {
        while (published > 0) files[--published]->withdraw();
        throw;
    }
}

void OutputCollector::deliver(PageResult& result) {
    if (result.input == failed_) return;
    if (result.error) return fail(result, *result.error);
    if (!result.existing.empty()) return console_.skip_input(result.input->name, result.existing);
    try {
        write(result);
    } catch (const files::FileError& error) {
        fail(result, error);
    } catch (const std::exception& error) {
        fail(result, files::FileError(result.input->name, what_failed(error)));
    }
}

void OutputCollector::write(PageResult& result) {
    const Input& input = *result.input;
    if (result.page == 0) {
        outputs_.emplace(input.outputs, overwrite_);
        current_ = result.input;
        console_.start(input.name, name_of(input.file->format()), input.page_count());
    }
    outputs_->append(result.page, std::move(result.data), std::move(result.kept));
    if (pictures_ != nullptr && result.pictures) {
        reported_ = true;
        pictures_->page(input.name, input.page_count(), result.record, *result.pictures);
    }
    console_.page(std::move(result.record), input.outputs.of_page(result.page));
    if (result.page + 1 < input.page_count()) return;
    outputs_->publish();
    outputs_.reset();
    current_.reset();
    console_.finish_input(input.outputs.all());
}

void OutputCollector::fail(PageResult& result, const files::FileError& error) {
    result.input->fail_from(result.page);
    failed_ = result.input;
    outputs_.reset();
    current_.reset();
    if (result.page == 0) console_.start(result.input->name, "", 0);
    console_.fail_input(error);
    if (pictures_ == nullptr) return;
    reported_ = true;
    pictures_->fail(result.input->name, error.what());
}

void OutputCollector::interrupt() {
    outputs_.reset();
    if (pictures_ == nullptr || !reported_) return;
    if (current_) pictures_->fail(current_->name, "interrupted");
    pictures_->finish();
}

}  // namespace tool::run
