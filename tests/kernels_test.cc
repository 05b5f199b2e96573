// Kernels that another library calls through their headers, where the stages do not
// show all that they can do: parts of planes, samples of every size, strides of either
// sign.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <vector>

#include "comparison.h"
#include "convert/chroma_422.h"
#include "convert/pairs.h"
#include "convert/yuv_to_rgb.h"
#include "reference.h"
#include "resize/axis.h"
#include "resize/box_average.h"
#include "resize/scale_plane.h"
#include "rotate/turn.h"
#include "simd/copy.h"

namespace zelm {
namespace {

using harness::Random;
using Bytes = std::vector<uint8_t>;
using Guard = GuardedBuffer::Guard;

Bytes randomBytes(size_t size, Random* random) {
  Bytes bytes(size);
  for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random->next());
  return bytes;
}

// ------------------------------------------------------------------------ scaling

struct Range {
  size_t first, end;
};

// A method, and which source samples the destination samples of a range are made of.
struct Method {
  const char* name;
  ScalePart* (*kernelOf)(size_t sample, size_t bytes);
  reference::Scale* rule;
  bool nearest;
  size_t before, behind;

  Range sources(const Axis& axis, const Range& made) const {
    const size_t last = made.end - 1;
    if (nearest) return {axis.nearest(made.first), axis.nearest(last) + 1};
    const size_t first = axis.before(made.first);
    return {first - std::min(first, before),
            axis.clamp(axis.before(last) + behind) + 1};
  }
};

const Method methods[] = {
    {"nearest", nearestKernel, reference::scaleNearest, true, 0, 0},
    {"bilinear", bilinearKernel, reference::scaleLinear, false, 0, 1},
    {"bicubic", bicubicKernel, reference::scaleCubic, false, 1, 2},
};

struct Extents {
  size_t columns, rows;
};

// Makes a part of a plane out of no more than what may be read, between guards.
class PartTest {
 public:
  PartTest(const Method& method, size_t sample, Extents from, Extents to)
      : method_(method),
        sample_(sample),
        from_(from),
        to_(to),
        source_(randomBytes(from.columns * from.rows * sample, &random_)),
        whole_(to.columns * to.rows * sample) {
    method.rule(plane(&whole_, to), plane(&source_, from));
  }

  // The destination rows are stored from the bottom up every other time.
  void check(const Range& columns, const Range& rows, Guard guard) {
    const Range fromRows = method_.sources(Axis(from_.rows, to_.rows), rows);
    const Range fromColumns =
        method_.sources(Axis(from_.columns, to_.columns), columns);
    const Range readable = {
        fromColumns.first * sample_ - std::min<size_t>(64, fromColumns.first * sample_),
        std::min(fromColumns.end * sample_ + 64, rowBytes(from_))};
    const size_t stride = readable.end - readable.first;
    uint8_t* block = buffer_.place(stride * (fromRows.end - fromRows.first), guard);
    for (size_t y = fromRows.first; y < fromRows.end; ++y) {
      std::copy_n(&source_[y * rowBytes(from_) + readable.first], stride,
                  block + (y - fromRows.first) * stride);
    }
    const Region from = {block - fromRows.first * stride - readable.first,
                         static_cast<ptrdiff_t>(stride), from_.columns, from_.rows};

    const size_t bytes = (columns.end - columns.first) * sample_;
    const size_t count = rows.end - rows.first, toStride = bytes + 5;
    Bytes made(toStride * count, 0xA5), expected = made;
    Region to = {made.data(), static_cast<ptrdiff_t>(toStride),
                 columns.end - columns.first, count};
    if (upwards_) to = {to.row(count - 1), -to.stride, to.columns, to.rows};
    for (size_t y = 0; y < count; ++y) {
      std::copy_n(&whole_[(rows.first + y) * rowBytes(to_) + columns.first * sample_],
                  bytes, &expected[(upwards_ ? count - 1 - y : y) * toStride]);
    }
    method_.kernelOf(sample_, std::min(to.columns, from.columns) * sample_)(
        to, from, {columns.first, rows.first, to_.columns, to_.rows});
    upwards_ = !upwards_;
    ASSERT_EQ(made, expected) << method_.name << ", " << sample_ << " bytes, "
                              << from_.columns << " x " << from_.rows << " to "
                              << to_.columns << " x " << to_.rows << ", columns "
                              << columns.first << " to " << columns.end << ", rows "
                              << rows.first << " to " << rows.end;
  }

 private:
  size_t rowBytes(const Extents& plane) const { return plane.columns * sample_; }
  reference::Plane plane(Bytes* bytes, const Extents& of) const {
    return {bytes->data(), rowBytes(of), static_cast<int>(of.rows),
            static_cast<int>(of.columns), static_cast<int>(sample_)};
  }

  const Method& method_;
  const size_t sample_;
  const Extents from_, to_;
  Random random_{7};
  Bytes source_, whole_;
  GuardedBuffer buffer_;
  bool upwards_ = false;
};

Range someOf(size_t extent, Random* random) {
  const size_t first = static_cast<size_t>(random->below(static_cast<int>(extent)));
  return {
      first,
      first + 1 + static_cast<size_t>(random->below(static_cast<int>(extent - first)))};
}

TEST(Scaling, PartsAreThoseOfTheWholePlane) {
  // Enlarged, the same, halved, reduced as far as vectors go and further; the wide ones
  // are made in more than one strip, the high ones in more than one run down the rows.
  const Extents sizes[][2] = {
      {{300, 7}, {450, 11}}, {{97, 9}, {97, 9}},      {{400, 10}, {200, 5}},
      {{700, 9}, {210, 13}}, {{1500, 8}, {190, 3}},   {{1300, 3}, {1100, 5}},
      {{5, 3}, {200, 4}},    {{3000, 2}, {9, 2}},     {{1, 1}, {80, 3}},
      {{64, 99}, {48, 75}},  {{1100, 60}, {999, 37}}, {{90, 3}, {70, 150}},
  };
  Random random(3);
  for (const Method& method : methods) {
    for (size_t sample = 1; sample <= 4; ++sample) {
      for (const auto& [from, to] : sizes) {
        PartTest test(method, sample, from, to);
        for (int i = 0; i < 8; ++i) {
          // The whole, then bands of rows, bands of columns, and both.
          const Range columns =
              i & 2 ? someOf(to.columns, &random) : Range{0, to.columns};
          const Range rows = i & 4 ? someOf(to.rows, &random) : Range{0, to.rows};
          test.check(columns, rows, i & 1 ? Guard::kBefore : Guard::kBehind);
          if (testing::Test::HasFatalFailure()) return;
        }
      }
    }
  }
}

TEST(Scaling, RowsReducedByTwoToFour) {
  // Positions that move on by two or three exactly, by a little more, and by almost
  // four; rows of a vector, of a sample more, of so few more that no sample has a block
  // of source before it, of whole vectors, and of more than one strip.
  Random random(5);
  for (size_t sample = 1; sample <= 4; ++sample) {
    for (const size_t columns : {32, 33, 34, 39, 64, 65, 71, 96, 131, 2080}) {
      for (const size_t from : {2 * columns - 1, 2 * columns, 3 * columns - 2,
                                3 * columns, 4 * columns - 5}) {
        PartTest test(methods[1], sample, {from, 11}, {columns, 5});
        for (const Guard guard : {Guard::kBehind, Guard::kBefore}) {
          test.check({0, columns}, {0, 5}, guard);
          test.check(someOf(columns, &random), someOf(5, &random), guard);
        }
        if (testing::Test::HasFatalFailure()) return;
      }
    }
  }
}

TEST(Scaling, NarrowRowsThatEndInHalfAVector) {
  // Rows of a vector and half of one, a byte less and a byte more; reduced by less than
  // two and by more, and enlarged.
  Random random(6);
  for (size_t sample = 1; sample <= 4; ++sample) {
    for (const size_t columns : {32, 33, 47, 48, 49, 64, 80, 81, 240}) {
      for (const size_t from : {columns * 4 / 3, columns * 5 / 2, columns * 2 / 3}) {
        for (const Method& method : {methods[0], methods[1]}) {
          PartTest test(method, sample, {from, 9}, {columns, 7});
          test.check({0, columns}, {0, 7}, Guard::kBehind);
          test.check(someOf(columns, &random), someOf(7, &random), Guard::kBefore);
          if (testing::Test::HasFatalFailure()) return;
        }
      }
    }
  }
}

// A buffer of random bytes that ends, or begins, at an inaccessible page.
class Noise {
 public:
  uint8_t* place(size_t bytes, Guard guard, Random* random) {
    uint8_t* start = buffer_.place(bytes, guard);
    for (size_t i = 0; i < bytes; ++i) start[i] = static_cast<uint8_t>(random->next());
    return start;
  }

 private:
  GuardedBuffer buffer_;
};

TEST(BoxAverages, AreMeansRoundedDown) {
  Random random(11);
  Noise from, to;
  for (size_t factor = 2; factor <= 4; factor += 2) {
    for (size_t sample = 1; sample <= 4; ++sample) {
      for (const size_t samples : {1, 7, 16, 33, 64, 131}) {
        for (const Guard guard : {Guard::kBehind, Guard::kBefore}) {
          const size_t bytes = samples * sample, rowBytes = factor * bytes, rows = 3;
          uint8_t* first = from.place(rows * factor * rowBytes, guard, &random);
          uint8_t* made = to.place(rows * bytes, guard, &random);
          Region source = {first, static_cast<ptrdiff_t>(rowBytes), 0, 0};
          Region result = {made, static_cast<ptrdiff_t>(bytes), samples, rows};
          if (guard == Guard::kBefore) {
            source = {source.row(rows * factor - 1), -source.stride, 0, 0};
          }
          averagePlane(result, source, factor, sample);
          for (size_t i = 0; i < rows * bytes; ++i) {
            size_t sum = 0;
            for (size_t k = 0; k < factor * factor; ++k) {
              const size_t x = i % bytes / sample * factor + k % factor;
              const size_t y = i / bytes * factor + k / factor;
              sum += source.row(y)[x * sample + i % sample];
            }
            ASSERT_EQ(made[i], sum / (factor * factor))
                << factor << ", " << sample << " bytes, " << samples << ", byte " << i;
          }
        }
      }
    }
  }
}

// -------------------------------------------------------------------------- turns

TEST(Turns, TransposeWithStridesOfEitherSign) {
  Random random(5);
  Noise from, to;
  const Extents sizes[] = {{1, 1},   {3, 40},  {64, 16}, {17, 63},
                           {130, 9}, {70, 70}, {8, 129}, {33, 200}};
  for (size_t sample = 1; sample <= 4; ++sample) {
    for (const Extents& size : sizes) {
      for (int signs = 0; signs < 4; ++signs) {
        const Guard guard = signs % 3 == 0 ? Guard::kBehind : Guard::kBefore;
        const size_t fromBytes = size.rows * sample, toBytes = size.columns * sample;
        uint8_t* source = from.place(fromBytes * size.columns, guard, &random);
        uint8_t* made = to.place(toBytes * size.rows, guard, &random);
        Region in = {source, static_cast<ptrdiff_t>(fromBytes), size.rows,
                     size.columns};
        Region out = {made, static_cast<ptrdiff_t>(toBytes), size.columns, size.rows};
        if (signs & 1) in = {in.row(in.rows - 1), -in.stride, in.columns, in.rows};
        if (signs & 2)
          out = {out.row(out.rows - 1), -out.stride, out.columns, out.rows};
        transposeKernel(sample, out.columns)(out.origin, out.stride, in.origin,
                                             in.stride, size.columns, size.rows);
        for (size_t y = 0; y < size.rows; ++y) {
          for (size_t x = 0; x < size.columns; ++x) {
            ASSERT_TRUE(std::equal(in.row(x) + y * sample, in.row(x) + (y + 1) * sample,
                                   out.row(y) + x * sample))
                << sample << " bytes, " << size.columns << " x " << size.rows
                << ", signs " << signs << ", column " << x << ", row " << y;
          }
        }
      }
    }
  }
}

TEST(Turns, ReverseRowsOfSamples) {
  Random random(6);
  Noise from, to;
  for (size_t sample = 1; sample <= 4; ++sample) {
    for (const size_t samples : {1, 2, 5, 6, 16, 31, 64, 100, 1000, 3 << 20}) {
      for (const Guard guard : {Guard::kBehind, Guard::kBefore}) {
        const size_t bytes = samples * sample;
        const uint8_t* source = from.place(bytes, guard, &random);
        uint8_t* made = to.place(bytes, guard, &random);
        reverseKernel(sample)(made, source, samples);
        for (size_t i = 0; i < bytes; ++i) {
          const size_t at = bytes - sample - i / sample * sample + i % sample;
          ASSERT_EQ(made[i], source[at])
              << sample << " bytes, " << samples << ", " << i;
        }
      }
    }
  }
}

// A plane in one row that no cache holds, whose lines begin and end elsewhere.
TEST(Turns, ReverseWhatNoCacheHolds) {
  Random random(8);
  Noise from, to;
  const size_t bytes = (size_t{8} << 20) + 37;
  const uint8_t* source = from.place(bytes, Guard::kBefore, &random);
  uint8_t* made = to.place(bytes, Guard::kBehind, &random);
  reverseKernel(1)(made, source, bytes);
  EXPECT_TRUE(
      std::equal(made, made + bytes, std::make_reverse_iterator(source + bytes)));
}

// ------------------------------------------------------------------------- copies

// Destinations that begin and end at any place of a line, and sizes on either side of
// those where another way of copying takes over.
TEST(Copies, AreTheBytesAndNoMore) {
  Random random(10);
  Noise from, to;
  for (const size_t bytes :
       {0, 63, 1023, 1024, 1151, 1152, 3072, 16384, 16385, 20000}) {
    for (const size_t place : {0, 1, 33, 63}) {
      for (const bool stream : {false, true}) {
        const uint8_t* source = from.place(bytes, Guard::kBehind, &random);
        uint8_t* made = to.place(bytes + 128, Guard::kBehind, &random);
        const Bytes before(made, made + bytes + 128);
        copyBytes(made + place, source, bytes, stream);
        for (size_t i = 0; i < bytes + 128; ++i) {
          const bool inside = i >= place && i < place + bytes;
          ASSERT_EQ(made[i], inside ? source[i - place] : before[i])
              << bytes << " bytes, place " << place << ", byte " << i;
        }
      }
    }
  }
}

// -------------------------------------------------------------------------- pairs

TEST(Pairs, AreJoinedSplitSwappedAndExpanded) {
  Random random(9);
  Noise from, to, also;
  for (const size_t pairs : {1, 5, 32, 33, 64, 127, 200}) {
    for (const bool stream : {false, true}) {
      const Guard guard = stream ? Guard::kBefore : Guard::kBehind;
      const size_t bytes = 2 * pairs;
      const auto expect = [&](const uint8_t* made, const char* what, auto rule) {
        for (size_t i = 0; i < bytes; ++i) {
          ASSERT_EQ(made[i], rule(i)) << what << ", " << pairs << " pairs, byte " << i;
        }
      };
      const uint8_t* source = from.place(2 * bytes, guard, &random);
      uint8_t* made = to.place(bytes, guard, &random);
      joinPairsKernel(pairs)(made, source, source + bytes, pairs, stream);
      expect(made, "join", [&](size_t i) { return source[i / 2 + i % 2 * bytes]; });
      splitPairsKernel(pairs)(made, made + pairs, source, pairs, stream);
      expect(made, "split",
             [&](size_t i) { return source[i % pairs * 2 + i / pairs]; });
      swapPairsKernel(bytes)(made, source, bytes, stream);
      expect(made, "swap", [&](size_t i) { return source[i ^ 1]; });
      uint8_t* odd = also.place(bytes, guard, &random);
      for (const bool swap : {false, true}) {
        expandRowKernel(swap, bytes)(made, odd, source, source + bytes, bytes, stream);
        const size_t flip = swap ? 1 : 0;
        expect(made, "even", [&](size_t i) { return source[i ^ flip]; });
        expect(odd, "odd", [&](size_t i) {
          return (source[i ^ flip] + source[bytes + (i ^ flip)]) / 2;
        });
      }
    }
  }
}

// ------------------------------------------------------------------------- colour

// The weights as the descriptions define them.
YuvToRgb describe(double kr, double kb, bool limited) {
  const double kg = 1 - kr - kb;
  const double luma = limited ? 255.0 / 219 : 1, chroma = limited ? 255.0 / 224 : 1;
  const auto weight = [](double value) {
    return static_cast<int>(std::lround(16384 * value));
  };
  YuvToRgb c = {};
  c.offset = limited ? 16 : 0;
  c.y = weight(luma);
  c.rv = weight(chroma * 2 * (1 - kr));
  c.gu = weight(chroma * 2 * (1 - kb) * kb / kg);
  c.gv = weight(chroma * 2 * (1 - kr) * kr / kg);
  c.bu = weight(chroma * 2 * (1 - kb));
  if (c.bu > 32767) c.bu = 2 * weight(chroma * (1 - kb));
  c.bt601Full = !limited && kr == 0.299;
  return c;
}

int limitedTo8Bits(int64_t value) {
  return static_cast<int>(std::clamp<int64_t>(value >> 16, 0, 255));
}

struct Rgb {
  int r, g, b;
};

// One pixel by the rule.
Rgb rgbOf(const YuvToRgb& c, const uint8_t* luma, const ChromaRows& rows, size_t x,
          size_t pixels) {
  const size_t pair = x / 2, last = (pixels + 1) / 2 - 1;
  const size_t next = x % 2 == 1 && pair > 0 && pair < last ? pair + 1 : pair;
  const auto difference = [&](bool u) {
    const size_t byte = u == rows.uFirst ? 0 : 1;
    const uint8_t* also = (byte == 0) == rows.loneFirst ? rows.own : rows.other;
    return rows.own[2 * pair + byte] + rows.own[2 * next + byte] +
           also[2 * pair + byte] + also[2 * next + byte] - 512;
  };
  const int64_t u = difference(true), v = difference(false);
  const int64_t y = 4LL * c.y * (luma[x] - c.offset) + 32768;
  return {limitedTo8Bits(y + c.rv * v), limitedTo8Bits(y - c.gu * u - c.gv * v),
          limitedTo8Bits(y + c.bu * u)};
}

size_t bytesOf(RgbLayout layout) {
  if (layout == RgbLayout::kRgba || layout == RgbLayout::kBgra) return 4;
  return layout == RgbLayout::kRgb24 || layout == RgbLayout::kBgr24 ? 3 : 2;
}

// The bytes of a pixel, the first one lowest.
uint32_t pixelOf(RgbLayout layout, const Rgb& c) {
  const auto bits = [](int value) { return static_cast<uint32_t>(value); };
  const bool bgr = layout == RgbLayout::kBgr24 || layout == RgbLayout::kBgra ||
                   layout == RgbLayout::kBgr565;
  const uint32_t first = bits(bgr ? c.b : c.r), third = bits(bgr ? c.r : c.b);
  if (bytesOf(layout) == 2) return first >> 3 << 11 | bits(c.g) >> 2 << 5 | third >> 3;
  const uint32_t alpha = bytesOf(layout) == 4 ? 0xFF000000 : 0;
  return first | bits(c.g) << 8 | third << 16 | alpha;
}

// Whether a row of pixels is what the rule makes of its luma and chroma.
testing::AssertionResult isRowOf(const uint8_t* made, RgbLayout layout,
                                 const YuvToRgb& colour, const uint8_t* luma,
                                 const ChromaRows& chroma, size_t pixels) {
  const size_t pixelBytes = bytesOf(layout);
  for (size_t x = 0; x < pixels; ++x) {
    uint32_t pixel = 0;
    for (size_t i = 0; i < pixelBytes; ++i) {
      pixel |= static_cast<uint32_t>(made[x * pixelBytes + i]) << (8 * i);
    }
    const uint32_t expected = pixelOf(layout, rgbOf(colour, luma, chroma, x, pixels));
    if (pixel != expected) {
      return testing::AssertionFailure()
             << "pixel " << x << " of " << pixels << ": " << std::hex << pixel
             << " instead of " << expected;
    }
  }
  return testing::AssertionSuccess();
}

TEST(Colour, RowsFollowTheRuleInAllDescriptionsAndLayouts) {
  Random random(13);
  Noise lumaNoise[2], pairsNoise[2], toNoise[2];
  const double matrices[][2] = {{0.299, 0.114}, {0.2126, 0.0722}, {0.2627, 0.0593}};
  for (int description = 0; description < 6; ++description) {
    const double* k = matrices[description / 2];
    const YuvToRgb colour = describe(k[0], k[1], description % 2 == 1);
    for (int layout = 0; layout < 6; ++layout) {
      const RgbLayout format = static_cast<RgbLayout>(layout);
      for (const size_t pixels : {1,  2,  3,  4,  15, 16, 17, 18,  31,  32, 33,
                                  34, 35, 36, 49, 50, 66, 67, 130, 131, 200}) {
        for (int order = 0; order < 8; ++order) {
          const Guard guard = order % 2 == 0 ? Guard::kBehind : Guard::kBefore;
          const size_t chromaBytes = (pixels + 1) / 2 * 2;
          uint8_t *luma[2], *pairs[2], *to[2];
          for (size_t i = 0; i < 2; ++i) {
            luma[i] = lumaNoise[i].place(pixels, guard, &random);
            pairs[i] = pairsNoise[i].place(chromaBytes, guard, &random);
            to[i] = toNoise[i].place(pixels * bytesOf(format), guard, &random);
            // Every other time all bytes are the lowest and the highest ones there are.
            if (order < 4) continue;
            for (size_t x = 0; x < pixels; ++x) luma[i][x] = luma[i][x] < 128 ? 0 : 255;
            for (size_t x = 0; x < chromaBytes; ++x) {
              pairs[i][x] = pairs[0][x] < 128 ? 0 : 255;
            }
          }
          if (pixels % 3 == 0) pairs[1] = pairs[0];
          const bool uFirst = order / 2 % 2 == 0;
          const RgbKernels kernels =
              rgbKernels(bytesOf(format), colour.bt601Full, pixels);
          const std::string which = "description " + std::to_string(description) +
                                    ", layout " + std::to_string(layout) + ", order " +
                                    std::to_string(order);
          for (const bool loneFirst : {false, true}) {
            const ChromaRows chroma = {pairs[0], pairs[1], uFirst, loneFirst};
            kernels.row(to[0], luma[0], chroma, pixels, colour, blueFirst(format));
            ASSERT_TRUE(isRowOf(to[0], format, colour, luma[0], chroma, pixels))
                << which << ", one row";
          }
          kernels.twoRows({{to[0], to[1]},
                           {luma[0], luma[1]},
                           {pairs[0], pairs[1]},
                           uFirst,
                           order % 3 == 0},
                          pixels, colour, blueFirst(format));
          // The lower row averages U, the upper one V.
          ASSERT_TRUE(isRowOf(to[0], format, colour, luma[0],
                              {pairs[0], pairs[1], uFirst, !uFirst}, pixels))
              << which << ", lower row";
          ASSERT_TRUE(isRowOf(to[1], format, colour, luma[1],
                              {pairs[1], pairs[0], uFirst, uFirst}, pixels))
              << which << ", upper row";
        }
      }
    }
  }
}

}  // namespace
}  // namespace zelm
