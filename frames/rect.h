// Sizes and rectangles of samples.
#ifndef ZELM_FRAMES_RECT_H_
#define ZELM_FRAMES_RECT_H_

#include <cstddef>

namespace zelm {

struct Size {
  size_t columns, rows;
};

inline bool operator==(const Size& a, const Size& b) {
  return a.columns == b.columns && a.rows == b.rows;
}

struct Rect {
  size_t column, row, columns, rows;

  Size size() const { return {columns, rows}; }
};

// The samples of chroma that serve the pixels of a rectangle. It begins at a sample.
inline Rect sharedBy(const Rect& pixels, size_t columnsShared, size_t rowsShared) {
  return {pixels.column / columnsShared, pixels.row / rowsShared,
          (pixels.columns + columnsShared - 1) / columnsShared,
          (pixels.rows + rowsShared - 1) / rowsShared};
}

}  // namespace zelm

#endif  // ZELM_FRAMES_RECT_H_
