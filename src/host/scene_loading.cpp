#include "host/scene_loading.h"

#include <utility>

namespace corvel::host {

class SceneLoading::Reading final : public platform::Job {
 public:
  Reading(SceneOrder order, bool tolerant) : order_(std::move(order)), tolerant_(tolerant) {}

  ModelScene TakeScene() { return std::move(scene_); }

 private:
  void Run() override { scene_ = ReadScene(order_.path, order_.texts, tolerant_); }

  SceneOrder order_;
  bool tolerant_;
  ModelScene scene_;
};

// A tolerant look asks classes in ways that remember, for one thread.
SceneLoading::SceneLoading(const std::vector<SceneOrder>& orders, bool tolerant, unsigned threads)
    : pool_(tolerant ? 1 : threads) {
  for (const SceneOrder& order : orders) {
    readings_.push_back(std::make_unique<Reading>(order, tolerant));
    pool_.Submit(*readings_.back());
  }
}

SceneLoading::~SceneLoading() = default;

ModelScene SceneLoading::Take(std::size_t index) {
  pool_.Finish(*readings_[index]);
  return readings_[index]->TakeScene();
}

}  // namespace corvel::host
