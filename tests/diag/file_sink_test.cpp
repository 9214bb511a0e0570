#include "diag/file_sink.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <boost/filesystem.hpp>
#include <boost/iostreams/stream.hpp>
#include <fstream>
#include <sstream>
#include <thread>
#include <vector>

#include "diag/debug_file.h"
#include "diag/folder.h"
#include "support/punctuating_locale.h"

namespace {

namespace fs = boost::filesystem;
using std::ios_base;

std::string contents(const fs::path& path) {
    std::ifstream in(path.string());
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

class DebugFiles : public ::testing::Test {
  protected:
    void SetUp() override {
        folder = fs::temp_directory_path() / fs::unique_path("vemoprepro-%%%%-%%%%");
        fs::create_directory(folder);
    }
    void TearDown() override { fs::remove_all(folder); }

    std::string failure(const fs::path& path, ios_base::openmode mode) {
        try {
            diag::open_file(path.string(), mode);
        } catch (const std::string& text) {
            return text;
        }
        return "";
    }

    fs::path folder;
};

TEST_F(DebugFiles, ModesThatMakeNoSenseAreRefused) {
    EXPECT_EQ(failure(folder / "a", ios_base::in),
              "ofstream can not be used to read files, please use ifstream instead.");
    EXPECT_EQ(failure(folder / "a", ios_base::app), "selected openmode not managed");
    EXPECT_EQ(failure(folder / "a", ios_base::trunc), "selected openmode not managed");
    EXPECT_FALSE(fs::exists(folder / "a"));
}

TEST_F(DebugFiles, AppendKeepsAndWriteReplaces) {
    const fs::path path = folder / "deep" / "er" / "log";
    const auto write = [&](ios_base::openmode mode, const char* text) {
        diag::easy_file_sink<char> sink;
        sink.open(path.string(), mode);
        boost::iostreams::stream<diag::easy_file_sink<char>> out;
        out.open(sink);
        EXPECT_THROW(out.open(sink), std::ios_base::failure);
        out << text;
    };
    write(ios_base::out, "one");
    write(ios_base::out | ios_base::app | ios_base::binary, "two");
    EXPECT_EQ(contents(path), "onetwo");
    write(ios_base::in | ios_base::out | ios_base::app, "three");
    EXPECT_EQ(contents(path), "onetwothree");
    // A new file, not the old one cut short: whoever holds the old one open keeps it.
    std::ifstream reader(path.string());
    write(ios_base::in | ios_base::out, "new");
    EXPECT_EQ(contents(path), "new");
    std::string old;
    reader >> old;
    EXPECT_EQ(old, "onetwothree");
}

TEST_F(DebugFiles, TheStreamReadsAndSeeks) {
    diag::easy_file_sink<char> sink;
    sink.open((folder / "log").string(), ios_base::in | ios_base::out);
    boost::iostreams::stream<diag::easy_file_sink<char>> file(sink);
    file << "hello" << std::flush;
    file.seekg(1);
    std::string text;
    file >> text;
    EXPECT_EQ(text, "ello");
}

TEST_F(DebugFiles, WhatCannotBeMadeSaysWhy) {
    std::ofstream((folder / "file").string()) << "x";
    const auto starts = [](const std::string& text, const std::string& start) {
        EXPECT_EQ(text.substr(0, start.size()), start);
    };
    const std::string creation = "creation of easy_file_sink failed for file: ";
    const fs::path log = folder / "file" / "log";
    starts(failure(log, ios_base::out), creation + log.string().substr(0, 2));
    const fs::path b = folder / "file" / "b";
    starts(failure(b / "log", ios_base::out), "error while creating directory " + b.string());
    starts(failure(b / "c" / "log", ios_base::out),
           "while creating: \"" + (b / "c").string() + "\"\n");
    EXPECT_EQ(failure("log", ios_base::out), "could not create: \"\" root does not exist");
    EXPECT_FALSE(fs::exists("log"));
    fs::create_directory(folder / "empty");
    starts(failure(folder / "empty", ios_base::app | ios_base::out), "creation of");
    EXPECT_EQ(failure(folder / "empty", ios_base::out), "");
    EXPECT_TRUE(fs::is_regular_file(folder / "empty"));
    fs::create_directories(folder / "full" / "log" / "inside");
    ::testing::internal::CaptureStdout();
    const std::string removal = failure(folder / "full" / "log", ios_base::out);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), removal + "\n");
    starts(removal, "error could not remove file : ");
}

TEST_F(DebugFiles, ThreadsMakeOverlappingFoldersTogether) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&, i] {
            const fs::path path =
                folder / "a" / "b" / "c" / std::to_string(i % 2) / std::to_string(i);
            EXPECT_NO_THROW(diag::open_file(path.string(), ios_base::out));
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_TRUE(fs::exists(folder / "a" / "b" / "c" / "1" / "7"));
}

TEST_F(DebugFiles, TracesLandInTheNamedOrTheCurrentFolder) {
    const std::string deep = (folder / "x" / "y" / "z").string();
    *diag::open_debug_file(deep.c_str(), "trace.log") << "there";
    EXPECT_EQ(contents(deep + "/trace.log"), "there");
    const fs::path before = fs::current_path();
    fs::current_path(folder);
    const support::PunctuatingLocale host;  // must not show
    *diag::open_debug_file(nullptr, "trace.log") << 1.0 / 3 << ' ' << 12345;
    fs::current_path(before);
    EXPECT_EQ(contents(folder / "trace.log"), "0.333333 12345");
}

}  // namespace
