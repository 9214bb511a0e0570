// While it lives, the process has a global locale that writes 1.234,5: what a host may set.
#pragma once

#include <locale>
#include <string>

namespace support {

class PunctuatingLocale {
  public:
    PunctuatingLocale()
        : before_(std::locale::global(std::locale(std::locale::classic(), new Punctuation))) {}
    PunctuatingLocale(const PunctuatingLocale&) = delete;
    PunctuatingLocale& operator=(const PunctuatingLocale&) = delete;
    ~PunctuatingLocale() { std::locale::global(before_); }

  private:
    class Punctuation : public std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };

    std::locale before_;
};

}  // namespace support
