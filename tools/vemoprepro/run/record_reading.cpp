// Nothing but what is used is kept while the text is read, piece by piece, so that neither the
// number of keys nor of pages costs more than reading them; the depth is bounded all the same.
#include "run/record_reading.h"

#include <cstdint>
#include <cstdio>
#include <exception>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <utility>

#include "files/file_error.h"
#include "run/shown_text.h"

namespace tool::run {
namespace {

using Json = nlohmann::json;

// Twice the depth of a record.
constexpr std::size_t kDeepest = 16;
// Some 100,000 pages.
constexpr std::size_t kLargestRecord = std::size_t{256} << 20;
constexpr std::size_t kLongestReason = 200;

// What is used lies in one another like this; nothing else that holds something is looked into.
enum Level { kRecord, kFiles, kFile, kPages, kPage, kSkew, kLevels };

struct LevelShape {
    const char* name;
    bool is_list;
    const char* keys[2];  // of an object, each of which it must have; the next level first
};

constexpr LevelShape kShapes[kLevels] = {
    {"the record", false, {"files", nullptr}}, {"files", true, {}},
    {"a file", false, {"pages", nullptr}},     {"pages", true, {}},
    {"a page", false, {"skew", "threshold"}},  {"skew", false, {"numerator", "denominator"}}};

class RecordReader : public nlohmann::json_sax<Json> {
  public:
    RecordedFindings take() { return std::move(files_); }

    bool null() override {
        if (here() == kPage) return true;
        return value(std::nullopt);
    }
    bool boolean(bool) override { return value(std::nullopt); }
    bool number_float(double, const std::string&) override { return value(std::nullopt); }
    bool string(std::string&) override { return value(std::nullopt); }
    bool binary(Json::binary_t&) override { return value(std::nullopt); }
    bool number_integer(std::int64_t number) override {
        return value(number < INT32_MIN ? std::nullopt : std::optional(static_cast<int>(number)));
    }
    bool number_unsigned(std::uint64_t number) override {
        return value(number > INT32_MAX ? std::nullopt : std::optional(static_cast<int>(number)));
    }

    bool start_object(std::size_t) override { return open(false); }
    bool start_array(std::size_t) override { return open(true); }
    bool end_object() override { return close(); }
    bool end_array() override { return close(); }

    bool key(std::string& name) override {
        if (here() == kLevels) return true;
        member_ = kNone;
        for (int i = 0; i < 2; ++i) {
            const char* known = kShapes[here()].keys[i];
            if (known != nullptr && name == known) member_ = i;
        }
        if (member_ != kNone) found_[here()][member_] = true;
        return true;
    }

    bool parse_error(std::size_t, const std::string&, const Json::exception& error) override {
        throw std::runtime_error(error.what());
    }

  private:
    static constexpr int kNone = -1;

    // The level that the next piece is directly inside of, kLevels where that is not used or the
    // record has not begun.
    Level here() const {
        return depth_ == used_ && used_ > 0 ? static_cast<Level>(used_ - 1) : kLevels;
    }

    // Whether the next piece is the next level.
    bool leads_on() const {
        if (depth_ != used_ || used_ == kLevels) return false;
        return used_ == 0 || kShapes[here()].is_list || member_ == 0;
    }

    bool open(bool list) {
        const bool used = leads_on();
        if (used && kShapes[used_].is_list != list) refuse_next();
        if (!used) value(std::nullopt);
        if (++depth_ > kDeepest) throw std::length_error("nested too deeply");
        if (used) begin(static_cast<Level>(used_++));
        return true;
    }

    bool close() {
        if (here() != kLevels) {
            end(here());
            --used_;
        }
        --depth_;
        return true;
    }

    void begin(Level level) {
        found_[level][0] = found_[level][1] = false;
        if (level == kFiles) files_.clear();
        if (level == kFile) files_.emplace_back();
        if (level == kPages) files_.back().clear();
        if (level == kPage) files_.back().emplace_back();
        if (level == kSkew) page().skew = steps::Skew{};
    }

    void end(Level level) {
        for (int i = 0; i < 2; ++i) {
            const char* key = kShapes[level].keys[i];
            if (key == nullptr || found_[level][i]) continue;
            throw std::out_of_range(std::string(kShapes[level].name) + " has no " + key);
        }
        if (level == kSkew && !page().skew->in_range()) {
            throw std::out_of_range("a skew beyond 10.6 degrees");
        }
    }

    // A piece that holds nothing, or no level that is used: a whole number of 32 bits, or something
    // else.
    bool value(std::optional<int> number) {
        if (leads_on()) refuse_next();
        if (here() == kLevels || member_ == kNone) return true;
        if (!number) {
            throw std::out_of_range(std::string(kShapes[here()].keys[member_]) +
                                    " is no whole number of 32 bits");
        }
        if (here() == kSkew) {
            (member_ == 0 ? page().skew->numerator : page().skew->denominator) = *number;
        } else if (*number < 1 || *number > 255) {
            throw std::out_of_range("a threshold beyond 1 .. 255");
        } else {
            page().threshold = *number;
        }
        return true;
    }

    [[noreturn]] void refuse_next() const {
        const LevelShape& shape = kShapes[used_];
        throw std::out_of_range(std::string(shape.name) + " is no " +
                                (shape.is_list ? "list" : "object"));
    }

    steps::Findings& page() { return files_.back().back(); }

    RecordedFindings files_;
    std::size_t depth_ = 0;  // lists and objects that are open
    std::size_t used_ = 0;   // the outer ones of them that are levels
    int member_ = kNone;     // which of the keys the next piece of an object belongs to
    bool found_[kLevels][2] = {};
};

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

std::string text_of(const std::string& path) {
    const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "rb"));
    if (!file) throw files::system_error_of(path);
    std::string text;
    char buffer[1 << 16];
    while (const std::size_t count = std::fread(buffer, 1, sizeof buffer, file.get())) {
        text.append(buffer, count);
        if (text.size() > kLargestRecord) {
            throw files::FileError(path, "larger than 256 MB, which no record of --json is");
        }
    }
    if (std::ferror(file.get()) != 0) throw files::system_error_of(path);
    return text;
}

// Without "[json.exception.parse_error.101] ", which nobody needs to know.
std::string reason_of(const std::exception& error) {
    std::string reason = error.what();
    if (reason.front() == '[') reason.erase(0, reason.find("] ") + 2);
    return shortened(reason, kLongestReason);
}

}  // namespace

RecordedFindings findings_in(const std::string& text, const std::string& path) {
    try {
        RecordReader reader;
        Json::sax_parse(text, &reader);
        return reader.take();
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        throw files::FileError(path, "not a record of --json: " + reason_of(error));
    }
}

RecordedFindings read_findings(const std::string& path) {
    return findings_in(text_of(path), path);
}

}  // namespace tool::run
