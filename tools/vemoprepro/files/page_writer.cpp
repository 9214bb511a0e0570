// TIFF is written through libtiff itself, which keeps the file open from page to page; appending
// through Leptonica would reopen it and follow the chain of pages each time.
#include "files/page_writer.h"

#include <cstring>
#include <new>
#include <string>
#include <utility>

#include "files/bit_rows.h"
#include "files/file_error.h"
#include "files/pix.h"
#include "files/temporary_file.h"
#include "files/tiff_file.h"

namespace tool::files {
namespace {

class TiffWriter final : public PageWriter {
  public:
    explicit TiffWriter(const OutputFile& file) : file_(file) {
        const TiffErrors errors;
        tiff_ = TIFFFdOpen(file.descriptor(), file.name().c_str(), "w");
        if (tiff_ == nullptr) fail(errors);
    }
    // Unlike TIFFClose() this leaves the descriptor to its owner.
    ~TiffWriter() override {
        if (tiff_ != nullptr) TIFFCleanup(tiff_);
    }

    void append(Page page) override {
        const TiffErrors errors;
        describe(page);
        bool good = true;
        for (int y = 0; good && y < page.height; ++y) {
            good = TIFFWriteScanline(tiff_, page.row(y), static_cast<std::uint32_t>(y), 0) == 1;
        }
        if (!good || TIFFWriteDirectory(tiff_) != 1 || !errors.first().empty()) fail(errors);
    }

    void finish() override {
        const TiffErrors errors;
        if (TIFFFlush(tiff_) != 1 || !errors.first().empty()) fail(errors);
    }

  private:
    void describe(const Page& page) {
        const bool bitonal = page.kind == PageKind::kBitonal;
        const int samples = page.kind == PageKind::kColour ? 3 : 1;
        TIFFSetField(tiff_, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(page.width));
        TIFFSetField(tiff_, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(page.height));
        TIFFSetField(tiff_, TIFFTAG_BITSPERSAMPLE, bitonal ? 1 : 8);
        TIFFSetField(tiff_, TIFFTAG_SAMPLESPERPIXEL, samples);
        TIFFSetField(tiff_, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
        TIFFSetField(tiff_, TIFFTAG_PHOTOMETRIC,
                     bitonal        ? PHOTOMETRIC_MINISWHITE
                     : samples == 3 ? PHOTOMETRIC_RGB
                                    : PHOTOMETRIC_MINISBLACK);
        TIFFSetField(tiff_, TIFFTAG_COMPRESSION, bitonal ? COMPRESSION_CCITTFAX4 : COMPRESSION_LZW);
        if (!bitonal) TIFFSetField(tiff_, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
        TIFFSetField(
            tiff_, TIFFTAG_ROWSPERSTRIP,
            bitonal ? static_cast<std::uint32_t>(page.height) : TIFFDefaultStripSize(tiff_, 0));
        TIFFSetField(tiff_, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
        TIFFSetField(tiff_, TIFFTAG_XRESOLUTION, static_cast<double>(page.dpi.x));
        TIFFSetField(tiff_, TIFFTAG_YRESOLUTION, static_cast<double>(page.dpi.y));
        TIFFSetField(tiff_, TIFFTAG_SOFTWARE, "vemoprepro " VEMOPREPRO_VERSION);
    }

    [[noreturn]] void fail(const TiffErrors& errors) const {
        if (errors.system_error() != 0) throw system_error_of(file_.name(), errors.system_error());
        throw FileError(file_.name(), "cannot be written: " + errors.first());
    }

    const OutputFile& file_;
    TIFF* tiff_ = nullptr;
};

// The file is made in memory: Leptonica loses a block whenever it cannot write to a stream.
class PngWriter final : public PageWriter {
  public:
    explicit PngWriter(const OutputFile& file) : file_(file) {}

    void append(Page page) override {
        try {
            const std::string bytes = packed(std::move(page));
            write_all(file_.descriptor(), bytes.data(), bytes.size(), file_.name());
        } catch (const std::bad_alloc&) {
            throw FileError(file_.name(), "not enough memory");
        }
    }
    void finish() override {}

  private:
    static std::string packed(Page page) {
        const PixOwner image = pix_of(page);
        pixSetResolution(image.get(), page.dpi.x, page.dpi.y);
        page.bytes.reset();
        return png_of(image.get());
    }

    const OutputFile& file_;
};

class PnmWriter final : public PageWriter {
  public:
    explicit PnmWriter(const OutputFile& file) : file_(file) {}

    void append(Page page) override {
        const bool bitonal = page.kind == PageKind::kBitonal;
        std::string header = bitonal ? "P4\n" : page.kind == PageKind::kGrey ? "P5\n" : "P6\n";
        header += std::to_string(page.width) + " " + std::to_string(page.height) + "\n";
        if (!bitonal) header += "255\n";
        write_all(file_.descriptor(), header.data(), header.size(), file_.name());
        const std::size_t row_size = bitonal ? bytes_of_bits(page.width) : page.stride();
        // Rows of bitonal pages move together to lose their padding.
        for (int y = 1; y < page.height; ++y) {
            std::memmove(page.bytes.get() + row_size * static_cast<std::size_t>(y), page.row(y),
                         row_size);
        }
        write_all(file_.descriptor(), page.bytes.get(),
                  row_size * static_cast<std::size_t>(page.height), file_.name());
    }
    void finish() override {}

  private:
    const OutputFile& file_;
};

}  // namespace

std::unique_ptr<PageWriter> make_page_writer(OutputFormat format, const OutputFile& file) {
    switch (format) {
        case OutputFormat::kTiff:
            return std::make_unique<TiffWriter>(file);
        case OutputFormat::kPng:
            return std::make_unique<PngWriter>(file);
        case OutputFormat::kPnm:
            break;
    }
    return std::make_unique<PnmWriter>(file);
}

}  // namespace tool::files
