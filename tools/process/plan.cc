// Calls the library.
#include "process/plan.h"

#include <new>

#include "failure.h"

namespace zelm_tool {

Plan::Plan(const ZelmFrame& to, const ZelmFrame& from, const ZelmEdit& edit)
    : plan_(nullptr, zelmPlanDestroy) {
  ZelmPlan* plan;
  ZelmMessage message;
  const int result = zelmPlanCreate(&plan, &to, &from, &edit, &message);
  if (result == ZELM_NO_MEMORY) throw std::bad_alloc();
  if (result != ZELM_OK) fail(message.text);
  plan_.reset(plan);
}

void Plan::run(const ZelmFrame& to, const ZelmFrame& from) const {
  const int result = zelmPlanRun(plan_.get(), &to, &from);
  if (result == ZELM_NO_MEMORY) throw std::bad_alloc();
  if (result != ZELM_OK) fail("a frame was refused with ", result);
}

// A black pixel of RGB, enlarged, is black in every format and colour.
void fillBlack(const ZelmFrame& frame) {
  uint8_t pixel[3] = {0, 0, 0};
  ZelmFrame black;
  zelmFrameInit(&black, ZELM_RGB24, 1, 1, pixel, sizeof pixel, 1);
  Plan(frame, black, {}).run(frame, black);
}

}  // namespace zelm_tool
