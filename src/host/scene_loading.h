// The scenes of several files, read by several threads at once.
#pragma once

#include <memory>
#include <vector>

#include "host/model_scene.h"
#include "platform/worker_pool.h"

namespace corvel::host {

struct SceneOrder {
  WideString path;
  SceneTexts texts = SceneTexts::kNone;
};

// Files share nothing, so that a scene is the same whichever thread has read it. Each thread has
// one file open.
class SceneLoading {
 public:
  // Begins. `threads` in all, that of the caller among them.
  SceneLoading(const std::vector<SceneOrder>& orders, bool tolerant, unsigned threads);
  // Files that nobody has begun are left alone, others are read to their ends.
  ~SceneLoading();
  SceneLoading(const SceneLoading&) = delete;
  SceneLoading& operator=(const SceneLoading&) = delete;

  // The scene of an order, as of ReadScene; each once, best in their order.
  ModelScene Take(std::size_t index);

 private:
  class Reading;

  std::vector<std::unique_ptr<Reading>> readings_;
  platform::WorkerPool pool_;  // gone first
};

}  // namespace corvel::host
