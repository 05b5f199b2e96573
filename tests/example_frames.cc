// What the examples' test needs to make and to compare frames, without the libraries:
//   example_frames mirror WIDTH <nv12 >nv12    exchanges left and right
//   example_frames video WIDTH <nv12 >nv12     BT.601 full range to BT.709 limited
//   range example_frames compare FILE FILE DECIBELS  fails if the bytes are less alike
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

Bytes contents(FILE* file) {
  Bytes all;
  if (file == nullptr) return all;
  for (size_t had = 0, got = 1; got != 0; had += got) {
    all.resize(had + (1 << 20));
    got = std::fread(all.data() + had, 1, all.size() - had, file);
    if (got == 0) all.resize(had);
  }
  return all;
}

void mirror(Bytes* frame, size_t width) {
  const size_t luma = frame->size() / 3 * 2;
  for (size_t row = 0; row < frame->size(); row += width) {
    uint8_t* const bytes = frame->data() + row;
    std::reverse(bytes, bytes + width);
    if (row < luma) continue;
    for (size_t x = 0; x < width; x += 2) std::swap(bytes[x], bytes[x + 1]);
  }
}

uint8_t rounded(double value) {
  return static_cast<uint8_t>(std::lround(std::clamp(value, 0.0, 255.0)));
}

// In real numbers, by way of RGB. Every pixel has the chroma of its pair.
void makeVideo(Bytes* frame, size_t width) {
  const size_t luma = frame->size() / 3 * 2;
  const Bytes from = *frame;
  for (size_t i = 0; i < luma; ++i) {
    const size_t x = i % width, y = i / width, c = luma + y / 2 * width + x / 2 * 2;
    const double u = from[c] - 128.0, v = from[c + 1] - 128.0;
    const double r = from[i] + 1.402 * v, b = from[i] + 1.772 * u;
    const double g = (from[i] - 0.299 * r - 0.114 * b) / 0.587;
    const double grey = 0.2126 * r + 0.7152 * g + 0.0722 * b;
    (*frame)[i] = rounded(16 + grey * 219 / 255);
    // Colour differences do not depend on which of the four pixels they are taken from.
    (*frame)[c] = rounded(128 + (b - grey) / 1.8556 * 224 / 255);
    (*frame)[c + 1] = rounded(128 + (r - grey) / 1.5748 * 224 / 255);
  }
}

bool alike(const Bytes& a, const Bytes& b, double decibels) {
  if (a.size() != b.size() || a.empty()) {
    std::printf("%zu and %zu bytes\n", a.size(), b.size());
    return false;
  }
  double sum = 0;
  for (size_t i = 0; i < a.size(); ++i) sum += (a[i] - b[i]) * (a[i] - b[i]);
  const double mean = sum / static_cast<double>(a.size());
  const double psnr = 10 * std::log10(255 * 255 / mean);
  std::printf("%.1f dB, wanted are %.1f\n", psnr, decibels);
  return psnr >= decibels;
}

}  // namespace

int main(int count, char** words) {
  const std::string what = count > 1 ? words[1] : "";
  if (what == "compare" && count == 5) {
    return !alike(contents(std::fopen(words[2], "rb")),
                  contents(std::fopen(words[3], "rb")), std::atof(words[4]));
  }
  if (count != 3 || (what != "mirror" && what != "video")) return 2;
  Bytes frame = contents(stdin);
  (what == "mirror" ? mirror : makeVideo)(&frame, std::strtoul(words[2], nullptr, 10));
  return std::fwrite(frame.data(), 1, frame.size(), stdout) != frame.size();
}
