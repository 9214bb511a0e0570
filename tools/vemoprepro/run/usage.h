// Answers to command lines that cannot be run.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace tool::run {

// The options do not fit together; exit status 2.
class UsageError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The word that was probably meant by the one that was typed; empty when none is near. Two words
// are near that differ in a few letters left out, put in, replaced or swapped.
std::string nearest_word(const std::string& typed, const std::vector<std::string>& words);

// "; did you mean 'clean'?", or nothing.
std::string did_you_mean(const std::string& typed, const std::vector<std::string>& words);

// For a command line without a command. first: what stands in its place, empty when there is
// nothing.
void explain_commands(const std::string& first, const std::vector<std::string>& commands);

// What is wrong with the options of a command, and where they are explained.
void explain_usage(const std::string& command, const std::string& what);

}  // namespace tool::run
