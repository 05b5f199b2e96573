// A test picture that moves.
#ifndef ZELM_TOOLS_COMMANDS_TEST_CARD_H
#define ZELM_TOOLS_COMMANDS_TEST_CARD_H

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "frame/geometry.h"

namespace zelm_tool {

struct Rgb {
  float red, green, blue;  // 0 to 255
};

// A picture to judge conversions by: a landscape with smooth gradients, a zone plate
// and a star with fine detail, saturated bars and a gray ramp at the bottom, an
// arrow and words that show which way is up, and a ball and a counter that move.
class TestCard {
 public:
  explicit TestCard(Size size);

  // Draws frame number `index`, from 0, as packed NV21 of full-range BT.601.
  void draw(uint64_t index, uint8_t* frame);

 private:
  // 0 where nothing is painted to 1 where all is, in pixels.
  using Coverage = std::function<float(float x, float y)>;
  using Colour = std::function<Rgb(float x, float y)>;

  void paint(float left, float top, float right, float bottom, const Coverage& coverage,
             const Colour& colour);
  void paintText(float left, float top, float cell, const std::string& text,
                 const Rgb& colour);
  void paintLandscape();
  void paintStar(float x, float y, float radius);
  void paintZonePlate(float x, float y, float radius);
  void paintArrow(float x, float top, float height);
  void paintBars();
  void paintBall(uint64_t index);
  void store(uint8_t* frame) const;

  const Size size_;
  const float width_;
  const float height_;
  const float unit_;  // a hundredth of the shorter side
  float cell_;        // side of a letter's dot
  std::vector<Rgb> still_;
  std::vector<Rgb> pixels_;
};

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_COMMANDS_TEST_CARD_H
