// A prepared conversion of the library, with its errors as failures.
#ifndef ZELM_TOOLS_PROCESS_PLAN_H
#define ZELM_TOOLS_PROCESS_PLAN_H

#include <zelm_frames.h>

#include <memory>

namespace zelm_tool {

class Plan {
 public:
  // Fails with the library's sentence.
  Plan(const ZelmFrame& to, const ZelmFrame& from, const ZelmEdit& edit);

  // To be called by any thread.
  void run(const ZelmFrame& to, const ZelmFrame& from) const;

 private:
  std::unique_ptr<ZelmPlan, void (*)(ZelmPlan*)> plan_;
};

// Makes the whole frame black.
void fillBlack(const ZelmFrame& frame);

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_PROCESS_PLAN_H
