// Draws the test card.
#include "commands/test_card.h"

#include <algorithm>
#include <cmath>

namespace zelm_tool {
namespace {

constexpr float kPi = 3.14159265f;
constexpr Rgb kWhite = {255, 255, 255};
constexpr Rgb kDark = {24, 28, 40};
constexpr float kFontRows = 7;
constexpr float kFontColumns = 6;  // with the gap behind a letter

struct Glyph {
  char letter;
  uint8_t rows[7];  // five bits each, the leftmost is the highest
};

constexpr Glyph kFont[] = {
    {'0', {0x0E, 0x11, 0x13, 0x15, 0x19, 0x11, 0x0E}},
    {'1', {0x04, 0x0C, 0x04, 0x04, 0x04, 0x04, 0x0E}},
    {'2', {0x0E, 0x11, 0x01, 0x02, 0x04, 0x08, 0x1F}},
    {'3', {0x1F, 0x02, 0x04, 0x02, 0x01, 0x11, 0x0E}},
    {'4', {0x02, 0x06, 0x0A, 0x12, 0x1F, 0x02, 0x02}},
    {'5', {0x1F, 0x10, 0x1E, 0x01, 0x01, 0x11, 0x0E}},
    {'6', {0x06, 0x08, 0x10, 0x1E, 0x11, 0x11, 0x0E}},
    {'7', {0x1F, 0x01, 0x02, 0x04, 0x08, 0x08, 0x08}},
    {'8', {0x0E, 0x11, 0x11, 0x0E, 0x11, 0x11, 0x0E}},
    {'9', {0x0E, 0x11, 0x11, 0x0F, 0x01, 0x02, 0x0C}},
    {'E', {0x1F, 0x10, 0x10, 0x1E, 0x10, 0x10, 0x1F}},
    {'L', {0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x1F}},
    {'M', {0x11, 0x1B, 0x15, 0x15, 0x11, 0x11, 0x11}},
    {'O', {0x0E, 0x11, 0x11, 0x11, 0x11, 0x11, 0x0E}},
    {'P', {0x1E, 0x11, 0x11, 0x1E, 0x10, 0x10, 0x10}},
    {'T', {0x1F, 0x04, 0x04, 0x04, 0x04, 0x04, 0x04}},
    {'Z', {0x1F, 0x01, 0x02, 0x04, 0x08, 0x10, 0x1F}},
    {'x', {0x00, 0x00, 0x11, 0x0A, 0x04, 0x0A, 0x11}},
};

Rgb mix(const Rgb& a, const Rgb& b, float t) {
  return {a.red + (b.red - a.red) * t, a.green + (b.green - a.green) * t,
          a.blue + (b.blue - a.blue) * t};
}

float clampUnit(float value) { return std::clamp(value, 0.0f, 1.0f); }

bool glyphBit(char letter, int column, int row) {
  for (const Glyph& glyph : kFont) {
    if (glyph.letter == letter)
      return column < 5 && (glyph.rows[row] >> (4 - column) & 1);
  }
  return false;
}

std::function<Rgb(float, float)> plain(Rgb colour) {
  return [colour](float, float) { return colour; };
}

// A disc whose edge is one pixel soft.
std::function<float(float, float)> disc(float cx, float cy, float radius) {
  return [=](float x, float y) {
    return clampUnit(radius + 0.5f - std::hypot(x - cx, y - cy));
  };
}

uint8_t toByte(float value) {
  return static_cast<uint8_t>(std::lround(std::clamp(value, 0.0f, 255.0f)));
}

// Full range, BT.601.
float luma(const Rgb& c) { return 0.299f * c.red + 0.587f * c.green + 0.114f * c.blue; }

}  // namespace

TestCard::TestCard(Size size)
    : size_(size),
      width_(static_cast<float>(size.width)),
      height_(static_cast<float>(size.height)),
      unit_(std::min(width_, height_) / 100),
      pixels_(size_t{size.width} * size.height) {
  const std::string label =
      "ZELM " + std::to_string(size.width) + "x" + std::to_string(size.height);
  paintLandscape();
  paintStar(width_ * 0.17f, height_ * 0.40f, unit_ * 17);
  paintZonePlate(width_ * 0.83f, height_ * 0.40f, unit_ * 17);
  paintArrow(width_ * 0.5f, unit_ * 6, unit_ * 22);
  const float large = std::max(1.0f, std::round(unit_ * 1.8f));
  paintText(width_ * 0.5f - large * (kFontColumns * 3 - 1) / 2, unit_ * 31, large,
            "TOP", kWhite);
  // The label ends before the arrow begins.
  const float room = (width_ * 0.5f - unit_ * 16) / kFontColumns;
  cell_ = std::floor(std::min(unit_ * 0.95f, room / static_cast<float>(label.size())));
  cell_ = std::max(1.0f, cell_);
  paintText(unit_ * 4, unit_ * 4, cell_, label, kWhite);
  paintBars();
  still_ = pixels_;
}

void TestCard::draw(uint64_t index, uint8_t* frame) {
  pixels_ = still_;
  paintBall(index);
  std::string number = std::to_string(index);
  number.insert(0, number.size() < 4 ? 4 - number.size() : 0, '0');
  const float textWidth = cell_ * kFontColumns * static_cast<float>(number.size());
  paintText(width_ - unit_ * 4 - textWidth, unit_ * 4, cell_, number, kWhite);
  store(frame);
}

void TestCard::paint(float left, float top, float right, float bottom,
                     const Coverage& coverage, const Colour& colour) {
  const auto first = [](float edge) {
    return static_cast<uint32_t>(std::max(0.0f, std::floor(edge)));
  };
  const auto end = [](float edge, uint32_t limit) {
    return std::min(limit, static_cast<uint32_t>(std::max(0.0f, std::ceil(edge))));
  };
  for (uint32_t y = first(top); y < end(bottom, size_.height); ++y) {
    for (uint32_t x = first(left); x < end(right, size_.width); ++x) {
      const float cx = static_cast<float>(x) + 0.5f, cy = static_cast<float>(y) + 0.5f;
      Rgb& pixel = pixels_[size_t{y} * size_.width + x];
      pixel = mix(pixel, colour(cx, cy), coverage(cx, cy));
    }
  }
}

void TestCard::paintText(float left, float top, float cell, const std::string& text,
                         const Rgb& colour) {
  const float right = left + cell * kFontColumns * static_cast<float>(text.size());
  const auto letters = [&](float x, float y) {
    const int column = static_cast<int>(std::floor((x - left) / cell));
    const int row = static_cast<int>(std::floor((y - top) / cell));
    if (column < 0 || row < 0 || static_cast<float>(row) >= kFontRows) return 0.0f;
    const size_t letter = static_cast<size_t>(column) / 6;
    return letter < text.size() && glyphBit(text[letter], column % 6, row) ? 1.0f
                                                                           : 0.0f;
  };
  paint(left, top, right, top + cell * kFontRows, letters, plain(colour));
}

void TestCard::paintLandscape() {
  const auto all = [](float, float) { return 1.0f; };
  const float horizon = height_ * 0.66f;
  paint(0, 0, width_, height_, all, [=](float, float y) {
    const float t = clampUnit(y / horizon);
    return t < 0.6f ? mix({22, 52, 120}, {112, 140, 200}, t / 0.6f)
                    : mix({112, 140, 200}, {255, 206, 150}, (t - 0.6f) / 0.4f);
  });
  const float sunX = width_ * 0.62f, sunY = horizon - unit_ * 13;
  paint(
      0, 0, width_, height_,
      [=](float x, float y) {
        return 0.8f * std::exp(-std::hypot(x - sunX, y - sunY) / (unit_ * 14));
      },
      plain({255, 236, 180}));
  paint(0, 0, width_, height_, disc(sunX, sunY, unit_ * 5), plain({255, 246, 214}));
  const float u = unit_;
  for (int range = 0; range < 3; ++range) {
    const float k = static_cast<float>(range);
    const auto ridge = [=](float x) {
      return horizon - u * (9 - 6 * k) +
             u * 5 * std::sin(x / (u * (19 - 4 * k)) + 2 * k) +
             u * 2 * std::sin(x / (u * (7 - k)) + k);
    };
    const Rgb top = mix({116, 118, 160}, {30, 84, 66}, k / 2);
    const Rgb foot = mix({150, 140, 170}, {58, 132, 76}, k / 2);
    paint(
        0, horizon - u * 20, width_, height_,
        [=](float x, float y) { return clampUnit(y - ridge(x) + 0.5f); },
        [=](float x, float y) { return mix(top, foot, (y - ridge(x)) / (u * 24)); });
  }
}

// Spokes that grow finer towards the centre.
void TestCard::paintStar(float cx, float cy, float radius) {
  paint(cx - radius - 1, cy - radius - 1, cx + radius + 1, cy + radius + 1,
        disc(cx, cy, radius), [=](float x, float y) {
          const float angle = std::atan2(y - cy, x - cx);
          const float edge = std::hypot(x - cx, y - cy) / 18;
          return mix(kDark, kWhite, clampUnit(0.5f + std::sin(angle * 36) * edge));
        });
}

// Rings that grow finer towards the edge, down to three pixels from ring to ring.
void TestCard::paintZonePlate(float cx, float cy, float radius) {
  paint(cx - radius - 1, cy - radius - 1, cx + radius + 1, cy + radius + 1,
        disc(cx, cy, radius), [=](float x, float y) {
          const float d = std::hypot(x - cx, y - cy);
          const float wave = std::cos(kPi * d * d / (std::max(radius, 1.0f) * 3));
          return mix(kDark, kWhite, 0.5f + 0.5f * wave);
        });
}

void TestCard::paintArrow(float cx, float top, float height) {
  const float head = height * 0.5f;
  paint(
      cx - head, top, cx + head, top + height,
      [=](float x, float y) {
        const float side = std::fabs(x - cx), down = y - top;
        const float half = down < head ? down * 0.8f : height * 0.14f;
        return clampUnit(half - side + 0.5f);
      },
      [=](float, float y) {
        return mix({255, 214, 64}, {236, 84, 40}, (y - top) / height);
      });
}

void TestCard::paintBars() {
  constexpr Rgb kBars[] = {{255, 255, 255}, {255, 255, 0}, {0, 255, 255}, {0, 255, 0},
                           {255, 0, 255},   {255, 0, 0},   {0, 0, 255},   {0, 0, 0}};
  const auto all = [](float, float) { return 1.0f; };
  const float ramp = std::floor(height_ * 0.80f), bars = std::floor(height_ * 0.86f);
  paint(0, ramp, width_, bars, all, [this](float x, float) {
    const float level = 255 * x / width_;
    return Rgb{level, level, level};
  });
  paint(0, bars, width_, height_, all, [&](float x, float) {
    return kBars[std::min(7, static_cast<int>(x * 8 / width_))];
  });
}

void TestCard::paintBall(uint64_t index) {
  const float phase = 2 * kPi * static_cast<float>(index % 100) / 100;
  const float radius = unit_ * 5;
  const float cx = width_ * (0.5f - 0.38f * std::cos(phase));
  const float cy =
      height_ * 0.80f - radius - unit_ * 12 * std::fabs(std::sin(phase * 3));
  paint(cx - radius - 1, cy - radius - 1, cx + radius + 1, cy + radius + 1,
        disc(cx, cy, radius), [=](float x, float y) {
          const float light =
              std::hypot(x - cx + radius * 0.35f, y - cy + radius * 0.4f) / radius;
          return mix({255, 120, 110}, {150, 8, 24}, clampUnit(light * 0.75f));
        });
}

void TestCard::store(uint8_t* frame) const {
  const size_t w = size_.width, h = size_.height;
  std::transform(pixels_.begin(), pixels_.end(), frame,
                 [](const Rgb& pixel) { return toByte(luma(pixel)); });
  uint8_t* pair = frame + w * h;
  for (size_t y = 0; y < h; y += 2) {
    const Rgb* upper = &pixels_[y * w];
    const Rgb* lower = y + 1 < h ? upper + w : upper;
    for (size_t x = 0; x < w; x += 2, pair += 2) {
      const size_t next = x + 1 < w ? x + 1 : x;
      const Rgb mean =
          mix(mix(upper[x], upper[next], 0.5f), mix(lower[x], lower[next], 0.5f), 0.5f);
      pair[0] = toByte(128 + (mean.red - luma(mean)) / 1.402f);
      pair[1] = toByte(128 + (mean.blue - luma(mean)) / 1.772f);
    }
  }
}

}  // namespace zelm_tool
