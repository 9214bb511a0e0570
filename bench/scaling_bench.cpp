// Scaling beside libyuv, OpenCV and libswscale.
#include <libyuv/scale.h>
#include <libyuv/scale_rgb.h>

extern "C" {
#include <libswscale/swscale.h>
}

#include <cmath>
#include <memory>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "harness.h"
#include "vemoprepro/scaling.h"

namespace {

using Bytes = std::shared_ptr<std::vector<std::uint8_t>>;
using Scale = int(const unsigned char*, int, int, int, unsigned char*, int, int, int);

constexpr std::size_t kPixels = std::size_t{2480} * 3508;

// A page and the size that it is scaled to, with room for the result.
struct Job {
    Job(const bench::Page& from, double by, int bytes)
        : page(&from),
          pixel_bytes(bytes),
          height(static_cast<int>(from.height * by)),
          width(static_cast<int>(from.width * by)),
          dst(std::make_shared<std::vector<std::uint8_t>>(
              static_cast<std::size_t>(height) * static_cast<std::size_t>(width * bytes))) {}

    int stride() const { return width * pixel_bytes; }

    std::function<void()> ours(Scale* scale) const {
        return [*this, scale] {
            scale(page->data.data(), page->height, page->width, page->stride, dst->data(), height,
                  width, stride());
        };
    }
    std::function<void()> by_opencv(int interpolation) const {
        cv::setNumThreads(1);
        const int type = pixel_bytes == 3 ? CV_8UC3 : CV_8UC1;
        // OpenCV's type has no form for pixels that are only read.
        const cv::Mat from(page->height, page->width, type,
                           const_cast<std::uint8_t*>(page->data.data()));
        const cv::Mat to(height, width, type, dst->data());
        return [from, to, interpolation, keep = dst] {
            cv::resize(from, to, to.size(), 0, 0, interpolation);
        };
    }
    std::function<void()> by_libyuv() const {
        return [*this] {
            if (pixel_bytes == 3) {
                libyuv::RGBScale(page->data.data(), page->stride, page->width, page->height,
                                 dst->data(), stride(), width, height, libyuv::kFilterBilinear);
            } else {
                libyuv::ScalePlane(page->data.data(), page->stride, page->width, page->height,
                                   dst->data(), stride(), width, height, libyuv::kFilterBilinear);
            }
        };
    }
    std::function<void()> by_swscale() const {
        const std::shared_ptr<SwsContext> context(
            sws_getContext(page->width, page->height, AV_PIX_FMT_GRAY8, width, height,
                           AV_PIX_FMT_GRAY8, SWS_BICUBIC, nullptr, nullptr, nullptr),
            sws_freeContext);
        return [*this, context] {
            const std::uint8_t* from[] = {page->data.data()};
            std::uint8_t* to[] = {dst->data()};
            const int to_stride = stride();
            sws_scale(context.get(), from, &page->stride, 0, page->height, to, &to_stride);
        };
    }

    const bench::Page* page;
    int pixel_bytes;
    int height;
    int width;
    Bytes dst;
};

enum class Peer { kLibyuv, kLinearOpenCv, kCubicOpenCv, kSwscale };

bench::Sides scale_page(Scale* scale, int pixel_bytes, double by, Peer peer) {
    const Job job(pixel_bytes == 3 ? bench::colour_page() : bench::grey_page(), by, pixel_bytes);
    return {.ours = job.ours(scale),
            .theirs = peer == Peer::kLibyuv         ? job.by_libyuv()
                      : peer == Peer::kSwscale      ? job.by_swscale()
                      : peer == Peer::kLinearOpenCv ? job.by_opencv(cv::INTER_LINEAR)
                                                    : job.by_opencv(cv::INTER_CUBIC)};
}

// OpenCV has no bitonal pixels: it scales the page and makes it bitonal, a byte per pixel.
bench::Sides scale_bitonal() {
    const bench::Page& page = bench::bitonal_page();
    const int height = page.height * 4 / 3, width = page.width * 4 / 3;
    const int stride = (width + 31) / 32 * 4;
    const auto dst = std::make_shared<std::vector<std::uint8_t>>(static_cast<std::size_t>(height) *
                                                                 static_cast<std::size_t>(stride));
    const Job theirs(bench::grey_page(), 4 / 3.0, 1);
    return {.ours =
                [=, &page] {
                    bicubic_bitonal(page.data.data(), page.height, page.width, page.stride,
                                    dst->data(), height, width, stride);
                },
            .theirs =
                [theirs, resize = theirs.by_opencv(cv::INTER_CUBIC)] {
                    resize();
                    cv::Mat scaled(theirs.height, theirs.width, CV_8UC1, theirs.dst->data());
                    cv::threshold(scaled, scaled, 128, 255, cv::THRESH_BINARY);
                }};
}

bool add(const char* name, const char* peer_name, double required, Scale* scale, int pixel_bytes,
         double by, Peer peer) {
    const auto bytes = static_cast<double>(kPixels) * pixel_bytes;
    return bench::add({.name = name,
                       .peer = peer_name,
                       .required = required,
                       .floor_bytes = static_cast<std::size_t>(bytes * (1 + by * by)),
                       .prepare = [=] { return scale_page(scale, pixel_bytes, by, peer); }});
}

constexpr double kFourThirds = 4 / 3.0;

const bool registered =
    add("bilinear 2, grey", "libyuv ScalePlane", 1, bilinear_grey, 1, 2, Peer::kLibyuv) &&
    add("bilinear 1/2, grey", "libyuv ScalePlane", 1, bilinear_grey, 1, 0.5, Peer::kLibyuv) &&
    add("bilinear 4/3, grey", "OpenCV resize", 3, bilinear_grey, 1, kFourThirds,
        Peer::kLinearOpenCv) &&
    add("bilinear 1.37, grey", "OpenCV resize", 1, bilinear_grey, 1, 1.37, Peer::kLinearOpenCv) &&
    add("bicubic 2, grey", "libswscale bicubic", 3, bicubic_grey, 1, 2, Peer::kSwscale) &&
    add("bicubic 4/3, grey", "libswscale bicubic", 2, bicubic_grey, 1, kFourThirds,
        Peer::kSwscale) &&
    add("bicubic 1.37, grey", "libswscale bicubic", 1, bicubic_grey, 1, 1.37, Peer::kSwscale) &&
    add("bilinear 2, colour", "libyuv RGBScale", 1, bilinear_rgb, 3, 2, Peer::kLibyuv) &&
    add("bilinear 4/3, colour", "libyuv RGBScale", 1, bilinear_rgb, 3, kFourThirds,
        Peer::kLibyuv) &&
    add("bilinear 1.37, colour", "libyuv RGBScale", 0.8, bilinear_rgb, 3, 1.37, Peer::kLibyuv) &&
    add("bicubic 2, colour", "OpenCV INTER_CUBIC", 4, bicubic_rgb, 3, 2, Peer::kCubicOpenCv) &&
    add("bicubic 4/3, colour", "OpenCV INTER_CUBIC", 4, bicubic_rgb, 3, kFourThirds,
        Peer::kCubicOpenCv) &&
    add("bicubic 1.37, colour", "OpenCV INTER_CUBIC", 2, bicubic_rgb, 3, 1.37,
        Peer::kCubicOpenCv) &&
    bench::add({.name = "bicubic 4/3, bitonal",
                .peer = "OpenCV resize + threshold",
                .required = 2,
                .floor_bytes = kPixels / 8 + kPixels * 2 / 9,
                .prepare = scale_bitonal});

}  // namespace
